// SPDX-License-Identifier: MIT
// The only exception type that the library throws by itself.
#pragma once

#include "tulo3dExport.h"

#include <exception>

namespace TULO3D {

/// Thrown when a checked condition fails: wrong use of the library, or a defect in it.
///
/// The failed condition and its place in the source are printed to standard output before the
/// throw; the exception itself carries neither. Allocation failures are not reported by this type
/// but by `std::bad_alloc`.
struct TULO3D_API TuloException : public std::exception
{
	/// The same text for every instance; owned by the library, never null.
	const char* what() const noexcept override;
};

} // namespace TULO3D
