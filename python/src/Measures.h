// SPDX-License-Identifier: MIT
// What can be read off a mesh and is no shape: barycentric transforms, stars, adjacency, validity.
#pragma once

#include "FlatMesh.h"

#include <cstdint>
#include <vector>

namespace binding {

/// For each tetrahedron 12 numbers: the inverse of the matrix whose columns lead from corner 3 to the
/// others, by rows, and corner 3. Not numbers where a tetrahedron is flat up to rounding.
void transforms(const FlatMesh& mesh, double* pTransforms);

/// The tetrahedra around each point, one after the other, and where those of each point begin:
/// numPoints + 1 numbers.
void stars(const FlatMesh& mesh, std::int64_t* pBegins, std::int32_t* pTets);

/// The same for the points that share an edge with each point, ascending.
std::vector<std::int32_t> adjacency(const FlatMesh& mesh, const std::int64_t* pStarBegins,
    const std::int32_t* pStarTets, std::int64_t* pBegins);

/// True when neighbours agree, all tetrahedra are positive, no sphere has the opposite corner of a
/// neighbour inside, and the hull is convex: when it is a Delaunay mesh of its corners. Exact.
bool isValid(const FlatMesh& mesh);

} // namespace binding
