// SPDX-License-Identifier: MIT
// Where the library's messages go.
#pragma once

/// @file
/// Where the library's messages go.

#include "tulo3dExport.h"

#include <iosfwd>

namespace TULO3D {

/// Chooses the stream for all messages that calls from this thread print, and returns the one
/// chosen before, so that a scope can put it back.
///
/// Wherever these documents say that something is printed to standard output, it is printed to this
/// stream. `std::cout` is the default; while it is chosen, the lines of `Triangle3` about a wrong
/// corner go to standard error. Null stands for silence. A stream must outlive its choice. Threads may
/// share one: while one of them prints a message, the others wait.
TULO3D_API std::ostream* setMessageStream(std::ostream* pStream);

} // namespace TULO3D
