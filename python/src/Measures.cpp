// SPDX-License-Identifier: MIT
// What can be read off a mesh.
#include "Measures.h"
#include "Vec.h"

#include <algorithm>
#include <limits>

namespace binding {

namespace {

bool isCorner(const FlatMesh& mesh, std::int32_t t, std::int32_t v)
{
	const std::int32_t* pCorner = mesh.corners(t);
	return std::find(pCorner, pCorner + 4, v) != pCorner + 4;
}

/// True when the neighbour behind facet k of `t` has this facet, and `t` behind it.
bool agrees(const FlatMesh& mesh, std::int32_t t, int k)
{
	const std::int32_t neighbor = mesh.neighbors(t)[k];
	const int back = mesh.facetTowards(neighbor, t);
	if (neighbor == t || back == 4 || isCorner(mesh, t, mesh.corners(neighbor)[back])) return false;
	for (int i = 0; i < 4; ++i) {
		if (i != k && !isCorner(mesh, neighbor, mesh.corners(t)[i])) return false;
	}
	return true;
}

/// True when no hull facet next to hull facet k of `t` bends outwards.
bool isConvexAround(const FlatMesh& mesh, ExactTests& exact, std::int32_t t, int k)
{
	for (const int third : kOutside[k]) {
		// Around the edge that avoids k and `third`, as far as the hull.
		std::int32_t tet = t;
		int out = third;
		std::int32_t apex = mesh.corners(t)[k];
		for (std::int32_t next = mesh.neighbors(tet)[out]; next >= 0;) {
			const int in = mesh.facetTowards(next, tet);
			const std::int32_t newApex = mesh.corners(next)[in];
			out = static_cast<int>(
			    std::find(mesh.corners(next), mesh.corners(next) + 4, apex) - mesh.corners(next));
			apex = newApex;
			tet = next;
			next = mesh.neighbors(tet)[out];
		}
		exact.setTet(t);
		exact.setQuery(mesh.point(apex));
		if (exact.isBeyond(k)) return false;
	}
	return true;
}

} // namespace

void transforms(const FlatMesh& mesh, double* pTransforms)
{
	for (std::size_t t = 0; t < mesh.numTets; ++t, pTransforms += 12) {
		const std::int32_t* pCorner = mesh.pCorners + 4 * t;
		const double* p3 = mesh.point(pCorner[3]);
		const Vec a = between(p3, mesh.point(pCorner[0])), b = between(p3, mesh.point(pCorner[1])),
		          c = between(p3, mesh.point(pCorner[2]));
		const ThreeEquations equations({a.x, b.x, c.x}, {a.y, b.y, c.y}, {a.z, b.z, c.z});
		const Vec columns[3] = {
		    equations.solve({1, 0, 0}), equations.solve({0, 1, 0}), equations.solve({0, 0, 1})};
		for (int j = 0; j < 3; ++j) {
			pTransforms[j] = columns[j].x;
			pTransforms[3 + j] = columns[j].y;
			pTransforms[6 + j] = columns[j].z;
		}
		if (!equations.isRegular()) {
			std::fill(pTransforms, pTransforms + 9, std::numeric_limits<double>::quiet_NaN());
		}
		std::copy(p3, p3 + 3, pTransforms + 9);
	}
}

void stars(const FlatMesh& mesh, std::int64_t* pBegins, std::int32_t* pTets)
{
	const std::size_t numCorners = 4 * mesh.numTets;
	std::vector<std::int64_t> vNext(mesh.numPoints + 1, 0);
	for (std::size_t i = 0; i < numCorners; ++i) { // a counting sort
		++vNext[static_cast<std::size_t>(mesh.pCorners[i]) + 1];
	}
	for (std::size_t v = 0; v < mesh.numPoints; ++v) vNext[v + 1] += vNext[v];
	std::copy(vNext.begin(), vNext.end(), pBegins);
	for (std::size_t i = 0; i < numCorners; ++i) {
		pTets[vNext[static_cast<std::size_t>(mesh.pCorners[i])]++] =
		    static_cast<std::int32_t>(i / 4);
	}
}

std::vector<std::int32_t> adjacency(const FlatMesh& mesh, const std::int64_t* pStarBegins,
    const std::int32_t* pStarTets, std::int64_t* pBegins)
{
	std::vector<std::int32_t> vAll;
	std::vector<std::int32_t> vLastSeenBy(mesh.numPoints, -1);
	vAll.reserve(mesh.numTets * 5 / 2);
	pBegins[0] = 0;
	for (std::size_t v = 0; v < mesh.numPoints; ++v) {
		const auto me = static_cast<std::int32_t>(v);
		const auto begin = static_cast<std::ptrdiff_t>(vAll.size());
		vLastSeenBy[v] = me;
		for (std::int64_t n = pStarBegins[v]; n < pStarBegins[v + 1]; ++n) {
			for (int i = 0; i < 4; ++i) {
				const std::int32_t other = mesh.corners(pStarTets[n])[i];
				std::int32_t& lastSeenBy = vLastSeenBy[static_cast<std::size_t>(other)];
				if (lastSeenBy == me) continue;
				lastSeenBy = me;
				vAll.push_back(other);
			}
		}
		std::sort(vAll.begin() + begin, vAll.end());
		pBegins[v + 1] = static_cast<std::int64_t>(vAll.size());
	}
	return vAll;
}

bool isValid(const FlatMesh& mesh)
{
	ExactTests exact(mesh);
	for (std::size_t i = 0; i < mesh.numTets; ++i) {
		const auto t = static_cast<std::int32_t>(i);
		exact.setTet(t);
		if (!exact.isPositive()) return false;
		for (int k = 0; k < 4; ++k) {
			const std::int32_t neighbor = mesh.neighbors(t)[k];
			if (neighbor < 0) continue;
			if (!agrees(mesh, t, k)) return false;
			exact.setQuery(mesh.point(mesh.corners(neighbor)[mesh.facetTowards(neighbor, t)]));
			if (!exact.isBeyond(k) || exact.isInSphere()) return false;
		}
	}
	for (std::size_t i = 0; i < mesh.numTets; ++i) {
		const auto t = static_cast<std::int32_t>(i);
		for (int k = 0; k < 4; ++k) {
			if (mesh.neighbors(t)[k] < 0 && !isConvexAround(mesh, exact, t, k)) return false;
		}
	}
	return true;
}

} // namespace binding
