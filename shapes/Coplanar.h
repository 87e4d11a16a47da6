// SPDX-License-Identifier: MIT
// Whether four points lie in one plane, decided exactly.
#pragma once

namespace TULO3D::shapes {

/// True if and only if the four points (x, y, z each) are coplanar, for coordinates up to 1e60. Provided
/// that their differences, those that are not zero, are within a factor of 1e150 of each other, so that no product
/// underflows.
bool areCoplanar(const double* a, const double* b, const double* c, const double* d);

} // namespace TULO3D::shapes
