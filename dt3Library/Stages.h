// SPDX-License-Identifier: MIT
// The order in which the vertices of a batch enter the mesh.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace TULO3D {

/// Positions in a list of vertices, in the order of insertion.
using Stage = std::vector<std::uint32_t>;

/// Stages of growing density for `n` vertices that follow one another along a curve, n above 0: the
/// middle of the list, the middles of its halves, and so on; at last the short runs that are left. The
/// first stage goes backwards, and so does every second one.
///
/// Along the curve each walk is short; the growing density keeps the mesh balanced meanwhile.
std::vector<Stage> insertionStages(std::size_t n);

} // namespace TULO3D
