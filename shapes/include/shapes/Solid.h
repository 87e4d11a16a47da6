// SPDX-License-Identifier: MIT
// Some tetrahedra of a mesh as a body: its components and its boundary.
#pragma once

#include "shapes/MeshView.h"

#include <vector>

namespace TULO3D::shapes {

/// Tetrahedra of a mesh and the boundary of their union. The boundary is a closed surface around each component;
/// where components, or parts of one, touch in an edge or a vertex, so does the surface. A component is connected
/// across facets.
struct Solid
{
	std::vector<std::int32_t> vTets; ///< the tetrahedra, ascending
	std::vector<std::int32_t>
	    vComponents;              ///< of each of them; 0, 1, ... in the order of first tetrahedra
	std::vector<double> vVolumes; ///< of each component
	std::vector<std::int32_t>
	    vTriangles; ///< the boundary: 3 vertices each, counter-clockwise from outside
	std::vector<std::int32_t> vTetsOfTriangles; ///< the tetrahedron behind each triangle
	double area = 0;                            ///< of the boundary
	double volume = 0;                          ///< of all components
};

/// The tetrahedra that `vKept`, which has a value for each, names. Throws `std::invalid_argument` when its size is
/// another than the number of tetrahedra.
Solid solidOf(const MeshView& view, const std::vector<bool>& vKept);

} // namespace TULO3D::shapes
