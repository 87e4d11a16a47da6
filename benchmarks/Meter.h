// SPDX-License-Identifier: MIT
// What a piece of work costs this process.
#pragma once

/// Processor time so far, in seconds. The sum is finer than its two parts.
struct CpuTime
{
	double user;
	double system;
	double sum;
};

CpuTime operator-(const CpuTime& end, const CpuTime& start);

CpuTime cpuTime();

/// Physical memory in use now, in kilobytes.
long residentKilobytes();

/// The most physical memory that was ever in use, in kilobytes.
long peakKilobytes();
