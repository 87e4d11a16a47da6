// SPDX-License-Identifier: MIT
// The volumes of whole Voronoi cells, without the cells.
#pragma once

#include "Mesh.h"

#include <vector>

namespace TULO3D::shapes {

/// The volume of each vertex' cell: infinite on the hull and where a corner of the cell is at infinity, 0 for a vertex
/// that is in no tetrahedron. Arms as `circumsphere` returns them; those of bAtInfinity are not read.
std::vector<double> wholeVolumes(
    const Mesh& mesh, const std::vector<Vec>& vArms, const std::vector<bool>& bAtInfinity);

} // namespace TULO3D::shapes
