// SPDX-License-Identifier: MIT
// A few tasks in a few threads.
#include "tiles/parallel.h"
#include "messages.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace TULO3D {

namespace {

/// Messages of this thread go nowhere while it lives.
class Silence
{
public:
	Silence() : pFormer(setMessageStream(nullptr)) {}
	Silence(const Silence&) = delete;
	Silence& operator=(const Silence&) = delete;
	~Silence() { setMessageStream(pFormer); }

private:
	std::ostream* pFormer;
};

} // namespace

void inParallel(
    std::size_t numTasks, unsigned numThreads, const std::function<void(std::size_t)>& task)
{
	std::atomic<std::size_t> next{0};
	std::exception_ptr pFirst;
	std::mutex mutex;
	const auto work = [&]() noexcept {
		const Silence silence;
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
