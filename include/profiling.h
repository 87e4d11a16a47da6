// SPDX-License-Identifier: MIT
// Two instruments for a host's own measurements, for all threads together.
#pragma once

/// @file
/// A stopwatch and counters for a host's own measurements, for all threads together.

#include "tulo3dExport.h"

#include <string>

namespace TULO3D {

/// A named stopwatch: the first call with a name starts it, the second stops it and returns the
/// seconds between the two, the third starts it again, and so on. Both print a line to standard
/// output; a start returns 0.
TULO3D_API double timer(const std::string& name);

} // namespace TULO3D

/// Counts one event under `name`; the name "GETCOUNTERS" prints all counters to standard output.
TULO3D_API void benchCounter(std::string& name);
