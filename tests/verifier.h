// SPDX-License-Identifier: MIT
// Proves a whole mesh right or says what is wrong, sharing nothing with the engine: it reads the
// links through the public accessors and decides by the oracle.
#pragma once

#include "Tulo_3D.h"
#include "points.h"

#include <set>
#include <string>
#include <vector>

namespace verifier {

using TULO3D::Point3;

/// Every kind of violation found; empty for a right mesh.
///
/// `input` and `handles` are all points ever inserted, and their vertices. Vertices in `leftOut`
/// may be without a tetrahedron although the mesh is three-dimensional; all others must be in it.
std::vector<std::string> violations(const TULO3D::Tulo_3D& mesh, const points::Cloud& input,
    const std::vector<Point3*>& handles, const std::set<const Point3*>& leftOut = {});

} // namespace verifier
