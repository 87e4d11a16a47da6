// SPDX-License-Identifier: MIT
// The command line of the program.
#pragma once

#include "Shape.h"
#include "read/Reader.h"

#include <optional>
#include <string>
#include <vector>

namespace app {

enum class Check { kNone, kGeometry, kAll };

struct Options
{
	std::string file = "-";
	ReadOptions reading;
	std::vector<std::string> vOutputs;
	/// The format of standard output, where that is an output.
	std::string stdoutFormat;
	bool bCompact = false;
	ShapeRequest shape;
	/// 1 for one engine, 0 for as many threads as the machine has.
	unsigned numThreads = 1;
	Check check = Check::kGeometry;
	bool bStatistics = false;
	bool bJson = false;
	bool bQuiet = false;
	bool bVerbose = false;
};

/// Reads the arguments. Returns the exit status when there is nothing more to do: after a text that
/// was asked for, or after a mistake, which is printed.
std::optional<int> parseCommandLine(int argc, char** argv, Options& options);

} // namespace app
