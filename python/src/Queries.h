// SPDX-License-Identifier: MIT
// Many query points in an order that keeps the walks between them short.
#pragma once

#include "FlatMesh.h"
#include "store/MortonOrder.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <numeric>
#include <vector>

namespace binding {

/// Called now and then during long work; ends it by an exception.
using Poll = std::function<void()>;

/// Indices of the `num` points at `p` in an order along which each is near the one before.
inline std::vector<std::uint32_t> spatialOrder(const double* p, std::size_t num)
{
	constexpr std::size_t kFew = 16;
	std::vector<std::uint32_t> vOrder;
	if (num <= kFew) {
		vOrder.resize(num);
		std::iota(vOrder.begin(), vOrder.end(), 0U);
		return vOrder;
	}
	std::vector<TULO3D::Point3> vPoints;
	std::vector<const TULO3D::Point3*> vPointers;
	vPoints.reserve(num);
	vPointers.reserve(num);
	const auto finite = [](double x) { return std::isfinite(x) ? x : 0.0; };
	for (std::size_t i = 0; i < num; ++i, p += 3) {
		vPoints.emplace_back(finite(p[0]), finite(p[1]), finite(p[2]));
		vPointers.push_back(&vPoints.back());
	}
	return TULO3D::mortonOrder(vPointers);
}

/// Calls visit(i, p, t) for each of the query points, in an order of its own; `t` is the tetrahedron that
/// contains point `p`, the i-th one, or -1.
template <typename Visit>
void forEachLocated(const FlatMesh& mesh, const double* pQueries, std::size_t numQueries,
    const Poll& poll, Visit visit)
{
	constexpr std::size_t kBlock = std::size_t{1} << 19U; // bounds the memory for the order
	constexpr std::size_t kPollMask = 255;
	Walker walker(mesh);
	for (std::size_t first = 0; first < numQueries; first += kBlock) {
		const std::size_t num = std::min(kBlock, numQueries - first);
		std::size_t numDone = 0;
		for (const std::uint32_t position : spatialOrder(pQueries + 3 * first, num)) {
			const std::size_t i = first + position;
			const double* p = pQueries + 3 * i;
			visit(i, p, walker.locate(p));
			if ((++numDone & kPollMask) == 0) poll();
		}
	}
}

} // namespace binding
