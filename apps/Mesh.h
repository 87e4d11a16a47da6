// SPDX-License-Identifier: MIT
// The triangulation with numbers: what every writer, the check and the statistics work on.
#pragma once

#include <Tulo_3D.h>

#include <cstddef>
#include <vector>

namespace app {

/// The vertices in the order in which their points first came up in the input, so that vertex i is
/// input point i when no point is repeated. The custom index of each vertex and of each tetrahedron
/// is its place in these arrays.
struct Mesh
{
	std::vector<TULO3D::Point3*> vVertices;
	/// The first input point of each vertex.
	std::vector<std::size_t> vFirstInput;
	std::vector<TULO3D::Tet3*> vTets;
	std::size_t numHullFacets = 0;
};

/// Numbers the mesh; `vHandles` are those of the one batch that was inserted.
Mesh makeMesh(const TULO3D::Tulo_3D& triangulation, const std::vector<TULO3D::Point3*>& vHandles);

/// The three vertices of a facet, counter-clockwise seen from outside its tetrahedron.
struct FacetCorners
{
	TULO3D::Point3* aVtx[3];
};
FacetCorners facetCorners(const TULO3D::Tet3* pTet, int opp3);

/// Calls `visit(pTet, ith)` for each facet of the convex hull.
template <class Visit>
void forEachHullFacet(const Mesh& mesh, Visit visit)
{
	for (auto* pTet : mesh.vTets)
		for (int i = 0; i < 4; ++i)
			if (!pTet->getOppTet(i)) visit(pTet, i);
}

/// Checks the links of the whole mesh: neighbours point to each other and share their facet, every vertex
/// has an incident tetrahedron that has it as a corner, the hull is closed, and V - E + F - T = 1. Returns
/// what is wrong, or null. The library's own check, which tests the geometry, complements this one.
const char* findBrokenLink(const Mesh& mesh);

} // namespace app
