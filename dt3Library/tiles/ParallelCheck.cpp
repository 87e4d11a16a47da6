// SPDX-License-Identifier: MIT
// Verifies a mesh of arrays facet by facet, in several threads, with the predicates and nothing else of what made it.
#include "ArdoTest3.h"
#include "ParallelMesh.h"
#include "geometry/TetIndices.h"
#include "mesh/Prefetch.h"
#include "predicates/BatchTests.h"
#include "predicates/Underflow.h"
#include "tiles/parallel.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <thread>
#include <vector>

namespace TULO3D {

namespace {

/// A tetrahedron with the corners opposite its facets, as the batched test takes them.
struct OppositeCorners
{
	NeighbourBatch batch;
	unsigned hull; ///< facets without a neighbour, where a corner of the tetrahedron stands in
};

class FacetCheck
{
public:
	FacetCheck(const ParallelMesh& theMesh, const double* pCoordinates);

	/// Of the tetrahedra from number `first` on, up to number `last`.
	bool areDelaunay(std::size_t first, std::size_t last);

private:
	/// False when a number is none of a vertex or a tetrahedron, or the neighbour does not name the tetrahedron.
	bool gather(std::size_t tet, OppositeCorners& around);
	bool areDelaunay(const OppositeCorners& around) const;
	/// The vertex in a place of the corners; null when there is none.
	Point3* cornerAt(std::size_t place)
	{
		const auto vertex = static_cast<std::size_t>(mesh.corners[place]);
		return vertex < vVertices.size() ? &vVertices[vertex] : nullptr;
	}

	const ParallelMesh& mesh;
	std::vector<Point3> vVertices;
	const BatchTests* pTests = &bestTests();
	const ArdoTest3 predicates;
};

FacetCheck::FacetCheck(const ParallelMesh& theMesh, const double* pCoordinates) : mesh(theMesh)
{
	vVertices.reserve(mesh.numVertices);
	bool bTiny = false;
	for (std::size_t i = 0; i < mesh.numVertices; ++i, pCoordinates += 3) {
		vVertices.emplace_back(pCoordinates[0], pCoordinates[1], pCoordinates[2]);
		bTiny |= mayUnderflow(vVertices.back());
	}
	if (bTiny && pTests->pForTiny != nullptr) pTests = pTests->pForTiny;
}

bool FacetCheck::gather(std::size_t tet, OppositeCorners& around)
{
	around.hull = 0;
	for (std::size_t i = 0; i < 4; ++i) {
		around.batch.corner[i] = around.batch.opposite[i] = cornerAt(4 * tet + i);
		if (around.batch.corner[i] == nullptr) return false;
		prefetchVertex(around.batch.corner[i]);
		if (mesh.neighbours[4 * tet + i] == -1) {
			around.hull |= 1U << i;
			continue;
		}
		const auto neigh = static_cast<std::size_t>(mesh.neighbours[4 * tet + i]);
		if (neigh >= mesh.numTets) return false;
		const std::int32_t* const pRow = &mesh.neighbours[4 * neigh];
		const std::int32_t* const pBack = std::find(pRow, pRow + 4, static_cast<std::int32_t>(tet));
		if (pBack == pRow + 4) return false;
		around.batch.opposite[i] = cornerAt(4 * neigh + static_cast<std::size_t>(pBack - pRow));
		if (around.batch.opposite[i] == nullptr) return false;
		prefetchVertex(around.batch.opposite[i]);
	}
	return true;
}

bool FacetCheck::areDelaunay(const OppositeCorners& around) const
{
	const unsigned passed = around.hull | pTests->delaunay(around.batch);
	const auto& corner = around.batch.corner;
	for (int f = 0; f < 4; ++f) {
		if ((passed >> f & 1U) != 0) continue;
		const Point3* const pOpposite = around.batch.opposite[f];
		const auto [i, j, k] = insideFacet(f);
		if (predicates.getOrientation3(corner[i], corner[j], corner[k], pOpposite) !=
		        ORIENTATION3_NEGATIVE ||
		    predicates.sphereInclusionTest(
		        *corner[0], *corner[1], *corner[2], *corner[3], *pOpposite) == SIC_INSIDE) {
			return false;
		}
	}
	return true;
}

bool FacetCheck::areDelaunay(std::size_t first, std::size_t last)
{
	// So many are gathered before they are tested, so that the cache misses of their vertices overlap.
	constexpr std::size_t kBlock = 16;
	OppositeCorners aAround[kBlock];
	for (; first < last; first += kBlock) {
		const std::size_t num = std::min(kBlock, last - first);
		for (std::size_t i = 0; i < num; ++i) {
			if (!gather(first + i, aAround[i])) return false;
		}
		for (std::size_t i = 0; i < num; ++i) {
			if (!areDelaunay(aAround[i])) return false;
		}
	}
	return true;
}

} // namespace

bool isDelaunay(const ParallelMesh& mesh, const double* pCoordinates, unsigned numThreads)
{
	if (numThreads == 0) numThreads = std::max(1U, std::thread::hardware_concurrency());
	FacetCheck check(mesh, pCoordinates);
	constexpr std::size_t kPiece = 1U << 16;
	std::atomic<bool> bDelaunay{true};
	inParallel((mesh.numTets + kPiece - 1) / kPiece, numThreads, [&](std::size_t i) {
		const std::size_t first = i * kPiece;
		if (bDelaunay && !check.areDelaunay(first, std::min(first + kPiece, mesh.numTets)))
			bDelaunay = false;
	});
	return bDelaunay;
}

} // namespace TULO3D
