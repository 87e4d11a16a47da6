// SPDX-License-Identifier: MIT
// Named counters and named stopwatches, in tables that live until the process ends.
#include "profiling.h"

#include "Message.h"

#include <chrono>
#include <iomanip>
#include <map>
#include <mutex>
#include <optional>

namespace {

using Clock = std::chrono::steady_clock;

/// The clock as a performance counter: its ticks now. It never goes back, whatever is done to the
/// time of day.
long long performanceCounter()
{
	return Clock::now().time_since_epoch().count();
}

/// Writes the ticks in a second; false on a system that has no such clock.
bool performanceFrequency(long long& frequency)
{
	frequency = Clock::period::den / Clock::period::num;
	return Clock::is_steady;
}

} // namespace

// Both tables are locked without printing: a host's stream may use these instruments itself.

namespace TULO3D {

double timer(const std::string& name)
{
	static std::mutex mutex;
	static std::map<std::string, long long> startReadings;

	const long long now = performanceCounter();
	std::optional<long long> start;
	{
		const std::lock_guard<std::mutex> lock(mutex);
		const auto [it, bStarts] = startReadings.emplace(name, now);
		if (!bStarts) {
			start = it->second;
			startReadings.erase(it);
		}
	}
	if (!start) {
		Message() << "*** Timer [" + name + "] start" << std::endl;
		return 0;
	}

	long long frequency = 1;
	if (!performanceFrequency(frequency)) Message() << "no timer present,sorry" << std::endl;
	const double elapsed = static_cast<double>(now - *start) / static_cast<double>(frequency);
	// Deliberate: the precision goes back to six digits, the fixed notation stays.
	Message() << "*** Timer [" + name + "] stop, elapsed time: " << std::fixed
	          << std::setprecision(3) << elapsed << " s" << std::endl
	          << std::endl
	          << std::setprecision(6);
	return elapsed;
}

} // namespace TULO3D

void benchCounter(std::string& name)
{
	static std::mutex mutex;
	static std::map<std::string, int> counters;

	std::unique_lock<std::mutex> lock(mutex);
	if (name != "GETCOUNTERS") {
		++counters[name];
		return;
	}
	const std::map<std::string, int> counted(counters);
	lock.unlock();
	TULO3D::Message message;
	message << std::endl << "Counters: " << std::endl;
	for (const auto& [counterName, count] : counted) {
		message << counterName << "\t" << count << std::endl;
	}
	message << std::endl;
}
