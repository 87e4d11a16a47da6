// SPDX-License-Identifier: MIT
// Reads CPU time and memory from the statistics that Linux keeps of a process.
#include "Meter.h"

#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

#include <fstream>
#include <string>

namespace {

double seconds(const timeval& t)
{
	return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
}

} // namespace

CpuTime operator-(const CpuTime& end, const CpuTime& start)
{
	return {end.user - start.user, end.system - start.system, end.sum - start.sum};
}

CpuTime cpuTime()
{
	timespec sum{};
	clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &sum);
	rusage parts{};
	getrusage(RUSAGE_SELF, &parts);
	return {seconds(parts.ru_utime), seconds(parts.ru_stime),
	    static_cast<double>(sum.tv_sec) + static_cast<double>(sum.tv_nsec) * 1e-9};
}

long residentKilobytes()
{
	long size = 0, resident = 0;
	std::ifstream("/proc/self/statm") >> size >> resident;
	return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

long peakKilobytes()
{
	// Deliberate: not ru_maxrss, which remembers the process that this one was forked from.
	std::ifstream status("/proc/self/status");
	for (std::string word; status >> word;) {
		long kilobytes = 0;
		if (word == "VmHWM:" && status >> kilobytes) return kilobytes;
	}
	return 0;
}
