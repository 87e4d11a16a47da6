// SPDX-License-Identifier: MIT
// The order in which the vertices of a batch enter the mesh.
#include "Stages.h"

#include <algorithm>
#include <cmath>

namespace TULO3D {

namespace {

/// Appends the middle of [lo, hi) to the stage of this depth and its halves to the deeper stages;
/// at the last depth, everything that is left.
void distribute(std::uint32_t lo, std::uint32_t hi, std::size_t depth, std::vector<Stage>& stages)
{
	while (hi - lo >= 2 && depth + 1 < stages.size()) {
		const std::uint32_t mid = lo + (hi - lo) / 2;
		stages[depth].push_back(mid);
		++depth;
		distribute(lo, mid, depth, stages);
		lo = mid + 1;
	}
	for (; lo < hi; ++lo) stages[depth].push_back(lo);
}

} // namespace

std::vector<Stage> insertionStages(std::size_t n)
{
	const double halvings = std::ceil(std::log(static_cast<double>(n)) / std::log(2.0));
	const int brioLevels = static_cast<int>(halvings - 4.0);
	std::vector<Stage> stages(static_cast<std::size_t>(brioLevels > 0 ? brioLevels : 0) + 1);
	stages.back().reserve(n); // nearly all of them
	distribute(0, static_cast<std::uint32_t>(n), 0, stages);
	for (std::size_t depth = 0; depth < stages.size(); depth += 2) {
		std::reverse(stages[depth].begin(), stages[depth].end());
	}
	return stages;
}

} // namespace TULO3D
