// SPDX-License-Identifier: MIT
// What a host can choose: where the library's messages go, and what happens instead of a hard stop.
#pragma once

/// @file
/// What a host can choose: where the library's messages go, and what happens instead of a hard stop.

#include "tulo3dExport.h"

#include <iosfwd>

namespace TULO3D {

/// Chooses the stream for all messages that calls from this thread print, and returns the one
/// chosen before, so that a scope can put it back.
///
/// Wherever these documents say that something is printed to standard output, it is printed to this
/// stream. `std::cout` is the default; while it is chosen, the lines of `Triangle3` about a wrong
/// corner go to standard error. Null stands for silence. A stream must outlive its choice. Threads may
/// share one. While a message is printed, all other messages wait, whatever their streams: a stream must
/// not wait for another thread that may print.
TULO3D_API std::ostream* setMessageStream(std::ostream* pStream);

/// Why the library cannot go on.
enum class StopReason {
	kOutOfMemory, ///< no block of memory for further vertices or tetrahedra
	kFileNotOpen, ///< a drawing cannot be written
	kWrongUse,    ///< an argument that the called operation excludes
	kBrokenMesh   ///< a mesh whose links do not fit together: changed by the host, or by a defect
};

/// What a host does instead of a hard stop. `text` is the message that has been printed, if any, without
/// the records printed with it and the frame around it; it is valid until the handler returns or
/// throws.
using StopHandler = void (*)(StopReason reason, const char* text);

/// Chooses what is called where a call from this thread would end the process, and returns the
/// handler chosen before. Null, the default, stands for none.
///
/// The handler may throw. The exception leaves the library through the call that failed; then an object
/// that was being inserted into can only be destroyed, which frees all its memory. When the handler
/// returns, the process ends: with status 1, or abnormally where a pointer is null that only a defect
/// can make so. Assertions, where compiled in, end it without asking.
TULO3D_API StopHandler setStopHandler(StopHandler handler);

} // namespace TULO3D
