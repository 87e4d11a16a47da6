// SPDX-License-Identifier: MIT
// Numbering the mesh, and the check of its links.
#include "Mesh.h"

#include <algorithm>
#include <cstdint>

using TULO3D::Point3;
using TULO3D::Tet3;

namespace app {

namespace {

// An edge as one number, the same in both directions.
std::uint64_t edgeKey(const Point3* p, const Point3* q)
{
	const auto i = static_cast<std::uint64_t>(p->customIndex);
	const auto j = static_cast<std::uint64_t>(q->customIndex);
	return std::min(i, j) << 32 | std::max(i, j);
}

std::size_t numDistinct(std::vector<std::uint64_t>& vKeys)
{
	std::sort(vKeys.begin(), vKeys.end());
	return static_cast<std::size_t>(std::unique(vKeys.begin(), vKeys.end()) - vKeys.begin());
}

bool isLinked(const Mesh& mesh, const Tet3* pTet, int ith)
{
	const Tet3* pNeigh = pTet->getOppTet(ith);
	const auto index = static_cast<std::size_t>(pNeigh->getCustomIndex());
	if (index >= mesh.vTets.size() || mesh.vTets[index] != pNeigh) return false;
	for (int back = 0; back < 4; ++back) {
		if (pNeigh->getOppTet(back) != pTet) continue;
		const FacetCorners facet = facetCorners(pTet, ith);
		return std::all_of(std::begin(facet.aVtx), std::end(facet.aVtx), [&](const Point3* pVtx) {
			return pNeigh->hasVertex(pVtx) && pNeigh->getCorner(back) != pVtx;
		});
	}
	return false;
}

bool isClosedHull(const Mesh& mesh)
{
	std::vector<std::uint64_t> vEdges;
	forEachHullFacet(mesh, [&](const Tet3* pTet, int ith) {
		const auto [a, b, c] = facetCorners(pTet, ith).aVtx;
		for (const auto key : {edgeKey(a, b), edgeKey(b, c), edgeKey(c, a)}) vEdges.push_back(key);
	});
	std::sort(vEdges.begin(), vEdges.end());
	for (std::size_t i = 0; i + 1 < vEdges.size(); i += 2) {
		if (vEdges[i] != vEdges[i + 1]) return false;
		if (i + 2 < vEdges.size() && vEdges[i + 2] == vEdges[i]) return false;
	}
	return vEdges.size() % 2 == 0;
}

bool holdsEuler(const Mesh& mesh)
{
	std::vector<std::uint64_t> vEdges;
	vEdges.reserve(6 * mesh.vTets.size());
	for (const auto* pTet : mesh.vTets)
		for (int i = 0; i < 4; ++i)
			for (int j = i + 1; j < 4; ++j)
				vEdges.push_back(edgeKey(pTet->getCorner(i), pTet->getCorner(j)));
	const std::size_t numFacets = (4 * mesh.vTets.size() + mesh.numHullFacets) / 2;
	return mesh.vVertices.size() + numFacets == 1 + numDistinct(vEdges) + mesh.vTets.size();
}

} // namespace

Mesh makeMesh(const TULO3D::Tulo_3D& triangulation, const std::vector<Point3*>& vHandles)
{
	Mesh mesh;
	for (auto* pVtx : vHandles) pVtx->customIndex = -1;
	for (std::size_t i = 0; i < vHandles.size(); ++i) {
		if (vHandles[i]->customIndex >= 0) continue;
		vHandles[i]->customIndex = static_cast<int>(mesh.vVertices.size());
		mesh.vVertices.push_back(vHandles[i]);
		mesh.vFirstInput.push_back(i);
	}
	if (!triangulation.is3D()) return mesh;
	triangulation.getTetrahedra(mesh.vTets);
	int index = 0;
	for (auto* pTet : mesh.vTets) pTet->setCustomIndex(index++);
	forEachHullFacet(mesh, [&](const Tet3*, int) { ++mesh.numHullFacets; });
	return mesh;
}

FacetCorners facetCorners(const Tet3* pTet, int opp3)
{
	int i = 0, j = 0, k = 0;
	pTet->getFacetIndices(opp3, i, j, k);
	return {{pTet->getCorner(i), pTet->getCorner(j), pTet->getCorner(k)}};
}

const char* findBrokenLink(const Mesh& mesh)
{
	for (const auto* pVtx : mesh.vVertices)
		if (!pVtx->getOneTet() || !pVtx->getOneTet()->hasVertex(pVtx))
			return "a vertex does not know a tetrahedron that has it";
	for (const auto* pTet : mesh.vTets)
		for (int i = 0; i < 4; ++i)
			if (pTet->getOppTet(i) && !isLinked(mesh, pTet, i))
				return "two neighbours do not know each other";
	if (!isClosedHull(mesh)) return "the hull is not closed";
	if (!holdsEuler(mesh)) return "V - E + F - T is not 1";
	return nullptr;
}

} // namespace app
