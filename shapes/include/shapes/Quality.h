// SPDX-License-Identifier: MIT
// How large and how well shaped the tetrahedra are.
#pragma once

#include "shapes/MeshView.h"

#include <cstddef>
#include <vector>

namespace TULO3D::shapes {

/// Where `measureQuality` writes; null for what is not wanted. Volumes and lengths are in the unit of the
/// coordinates. The radius ratio is that of P. L. George and H. Borouchaki, Delaunay Triangulation and Meshing
/// (1998): scaled to 1 for a regular tetrahedron.
struct QualityArrays
{
	double* pVolumes = nullptr; ///< one a tetrahedron
	/// 6 a tetrahedron, in radians: at the edges between corners 0 1, 0 2, 0 3, 1 2, 1 3, 2 3.
	double* pDihedralAngles = nullptr;
	/// 3 times the radius of the inscribed over that of the circumscribed sphere: 1 at best, 0 when flat.
	double* pRadiusRatios = nullptr;
	double* pShortestEdges = nullptr;
	double* pLongestEdges = nullptr;
	/// 3 a tetrahedron, x, y, z; infinite where it is beyond the range of doubles. Computed as `AlphaShapes` does it.
	double* pCircumcentres = nullptr;
	double* pCircumradii = nullptr; ///< infinite there, too
};

/// Writes the qualities of all tetrahedra, in their order.
void measureQuality(const MeshView& view, const QualityArrays& arrays);

/// Counts values in `numBins` bins of equal width between `low` and `high`. A value equal to `high` counts in the
/// last bin, values out of the range and those that are not a number in none. Throws `std::invalid_argument`
/// unless `low` is below `high`, both are finite and there is a bin.
std::vector<std::size_t> histogram(
    const double* pValues, std::size_t numValues, double low, double high, std::size_t numBins);

} // namespace TULO3D::shapes
