// SPDX-License-Identifier: MIT
// The table of temporary files, which a signal handler may read at any moment.
#include "TemporaryFile.h"

#include "Failure.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

#ifdef _WIN32
#  include <cwchar>
#else
#  include <unistd.h>
#endif

namespace app {

namespace {

using Name = const std::filesystem::path::value_type*;

// An output is four files at the most: those of TetGen and the map. Null where no file is.
std::atomic<Name> aNames[4];
static_assert(std::atomic<Name>::is_always_lock_free, "a signal handler must not wait");

void removeAll()
{
	for (const auto& name : aNames) {
		const Name file = name.load();
		if (!file) continue;
#ifdef _WIN32
		_wremove(file);
#else
		unlink(file);
#endif
	}
}

#ifndef _WIN32
extern "C" void removeAllAndEnd(int signalNumber)
{
	removeAll();
	// The handler was there for one signal only, so this one ends the program as if unhandled.
	raise(signalNumber);
}

void handleSignals()
{
	for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) {
		struct sigaction former = {};
		sigaction(signalNumber, nullptr, &former);
		if (former.sa_handler == SIG_IGN) continue; // nohup means it
		struct sigaction action = {};
		action.sa_handler = removeAllAndEnd;
		action.sa_flags = static_cast<int>(SA_RESETHAND);
		sigaction(signalNumber, &action, nullptr);
	}
	// A write beyond the limit of a file's size then fails like one onto a full disk.
	signal(SIGXFSZ, SIG_IGN);
}
#endif

void watchTheEnd()
{
	std::atexit(removeAll);
#ifndef _WIN32
	handleSignals();
#endif
}

} // namespace

TemporaryFile::TemporaryFile(const std::filesystem::path& file)
{
	static const bool bOnce = (watchTheEnd(), true);
	static_cast<void>(bOnce);
	for (slot = 0; slot < std::size(aNames); ++slot) {
		Name none = nullptr;
		if (aNames[slot].compare_exchange_strong(none, file.c_str())) return;
	}
	throw Failure(kInternalError, "too many temporary files");
}

TemporaryFile::~TemporaryFile()
{
	aNames[slot] = nullptr;
}

} // namespace app
