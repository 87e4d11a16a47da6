// SPDX-License-Identifier: MIT
// Named counters and named stopwatches, in tables that live until the process ends.
#include "profiling.h"

#include "Message.h"

#include <chrono>
#include <iomanip>
#include <map>

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

namespace TULO3D {

double timer(const std::string& name)
{
	static std::map<std::string, long long> startReadings;

	const auto it = startReadings.find(name);
	if (it == startReadings.end()) {
		startReadings[name] = performanceCounter();
		Message() << "*** Timer [" + name + "] start" << std::endl;
		return 0;
	}

	const long long now = performanceCounter();
	long long frequency = 1;
	if (!performanceFrequency(frequency)) Message() << "no timer present,sorry" << std::endl;
	const double elapsed = static_cast<double>(now - it->second) / static_cast<double>(frequency);
	// Deliberate: the precision goes back to six digits, the fixed notation stays.
	Message() << "*** Timer [" + name + "] stop, elapsed time: " << std::fixed
	          << std::setprecision(3) << elapsed << " s" << std::endl
	          << std::endl
	          << std::setprecision(6);
	startReadings.erase(it);
	return elapsed;
}

} // namespace TULO3D

void benchCounter(std::string& name)
{
	static std::map<std::string, int> counters;

	if (name != "GETCOUNTERS") {
		++counters[name];
		return;
	}
	TULO3D::Message message;
	message << std::endl << "Counters: " << std::endl;
	for (const auto& [counterName, count] : counters) {
		message << counterName << "\t" << count << std::endl;
	}
	message << std::endl;
}
