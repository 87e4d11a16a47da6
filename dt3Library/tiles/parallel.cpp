// SPDX-License-Identifier: MIT
// A few tasks in a few threads.
#include "tiles/parallel.h"
#include "TuloException.h"
#include "messages.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <new>
#include <thread>
#include <vector>

namespace TULO3D {

namespace {

[[noreturn]] void throwInstead(StopReason reason, const char* /*text*/)
{
	if (reason == StopReason::kOutOfMemory) throw std::bad_alloc();
	throw TuloException();
}

/// While it lives, messages of this thread go nowhere, and hard stops are exceptions, which can be taken to the thread
/// of the caller.
class QuietThread
{
public:
	QuietThread()
	    : pFormerStream(setMessageStream(nullptr)), formerHandler(setStopHandler(throwInstead))
	{
	}
	QuietThread(const QuietThread&) = delete;
	QuietThread& operator=(const QuietThread&) = delete;
	~QuietThread()
	{
		setMessageStream(pFormerStream);
		setStopHandler(formerHandler);
	}

private:
	std::ostream* pFormerStream;
	StopHandler formerHandler;
};

} // namespace

void inParallel(
    std::size_t numTasks, unsigned numThreads, const std::function<void(std::size_t)>& task)
{
	std::atomic<std::size_t> next{0};
	std::exception_ptr pFirst;
	std::mutex mutex;
	const auto work = [&]() noexcept {
		const QuietThread quiet;
		for (std::size_t i = next++; i < numTasks; i = next++) {
			try {
				task(i);
			} catch (...) {
				const std::lock_guard<std::mutex> lock(mutex);
				if (!pFirst) pFirst = std::current_exception();
				next = numTasks;
			}
		}
	};
	std::vector<std::thread> vThreads;
	const std::size_t numOthers = std::min<std::size_t>(numThreads, numTasks);
	try {
		for (std::size_t i = 1; i < numOthers; ++i) vThreads.emplace_back(work);
	} catch (...) { // no more threads to be had: those that there are do the rest
	}
	work();
	for (std::thread& thread : vThreads) thread.join();
	if (pFirst) std::rethrow_exception(pFirst);
}

} // namespace TULO3D
