// SPDX-License-Identifier: MIT
// How the interpreter and the library live together: silence, no hard stops, Ctrl-C, progress.
#pragma once

#include "Tulo_3D.h"
#include "messages.h"

#include <nanobind/nanobind.h>

#include <chrono>
#include <sstream>
#include <stdexcept>
#include <string>

namespace binding {

/// The library has found a state that only a defect can bring about.
struct InternalError : std::runtime_error
{
	using std::runtime_error::runtime_error;
};

/// While it lives, calls of the library from this thread print nothing and end no process: out of memory
/// becomes `std::bad_alloc`, all else InternalError.
class LibraryScope
{
public:
	LibraryScope()
	    : pStream(TULO3D::setMessageStream(&messages)), handler(TULO3D::setStopHandler(&stop))
	{
	}
	LibraryScope(const LibraryScope&) = delete;
	LibraryScope& operator=(const LibraryScope&) = delete;
	~LibraryScope()
	{
		TULO3D::setMessageStream(pStream);
		TULO3D::setStopHandler(handler);
	}
	/// What the library has printed.
	std::string text() const { return messages.str(); }

private:
	[[noreturn]] static void stop(TULO3D::StopReason reason, const char* text)
	{
		if (reason == TULO3D::StopReason::kOutOfMemory) throw std::bad_alloc();
		throw InternalError(text);
	}

	std::ostringstream messages;
	std::ostream* pStream;
	TULO3D::StopHandler handler;
};

/// Looks after the interpreter during long work without its lock: lets Ctrl-C through, and tells a
/// Python function how far the work is. Takes the lock only some twenty times a second, as other threads
/// may hold it for long.
class Watch
{
public:
	/// `progress` is None or a function of two counts; to be made with the lock held.
	explicit Watch(nanobind::handle theProgress = nanobind::none())
	    : progress(theProgress), next(Clock::now() + kPause)
	{
	}

	/// Throws what a signal handler or the function throws.
	void look(std::size_t numDone = 0, std::size_t numAll = 0)
	{
		const auto now = Clock::now();
		if (now < next && (numDone < numAll || progress.is_none())) return;
		const nanobind::gil_scoped_acquire lock;
		if (PyErr_CheckSignals() != 0) throw nanobind::python_error();
		if (!progress.is_none()) progress(numDone, numAll);
		next = Clock::now() + kPause;
	}

private:
	using Clock = std::chrono::steady_clock;
	static constexpr std::chrono::milliseconds kPause{40};

	nanobind::handle progress;
	Clock::time_point next;
};

} // namespace binding
