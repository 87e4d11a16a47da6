// SPDX-License-Identifier: MIT
// What can go wrong in a run, each kind with the exit status that a script sees.
#pragma once

#include <stdexcept>
#include <string>

namespace app {

// clang-format off
enum ExitStatus {
	kDone         = 0,
	kInternalError = 1, // or out of memory; the library itself stops the process with it, too
	kWrongUse     = 2,
	kBadInput     = 3,
	kNoMesh       = 4, // fewer than four points, or all in one plane
	kNotWritten   = 5,
	kNotValid     = 6
};
// clang-format on

/// A failure with the text for the person and the status for the script.
class Failure : public std::runtime_error
{
public:
	Failure(ExitStatus exitStatus, const std::string& text)
	    : std::runtime_error(text), status(exitStatus)
	{
	}
	const ExitStatus status;
};

} // namespace app
