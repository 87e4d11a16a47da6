// SPDX-License-Identifier: MIT
// Verifies the mesh facet by facet, and shows the first place where it is wrong.
#include "Dt3.h"
#include "Message.h"
#include "Visualizer3.h"
#include "geometry/printing.h"
#include "geometry/vectors.h"
#include "mesh/LiveTets.h"
#include "mesh/Prefetch.h"
#include "predicates/BatchTestsSimd.h"

#include <algorithm>
#include <cstddef>

namespace TULO3D {

namespace {

void printHeader(const std::string& name, std::size_t numTets, bool bCheckSphereInc)
{
	Message() << "\n\n** CheckValidity at [ " << name << "]:"
	          << " Number of tetrahedra: " << numTets << std::endl
	          << "   with --checkvisited" << std::endl
	          << (bCheckSphereInc ? "   with" : "   without") << " --checkSphereInc" << std::endl
	          << "   vTets.size()=" << numTets << std::endl;
}

void checkNotVisited(const Tet3& tet)
{
	if (!tet.hasBeenVisited) return;
	printError("Dt3::CheckValidity()", "pcurrentTet->hasBeenvisited=true");
	Message() << tet;
	CONDITION_CHECK(false);
}

void reportSphere(const Tet3& tet, const Point3& vtx)
{
	printErrorBanner("checkValidity: ERROR ERROR ERROR");
	Message() << "Dt3::checkValidity, HUH - sphereIncTest failed: " << tet << ", Vertex=" << vtx
	          << std::endl;

	const Point3 center = tet.getCircumcenter();
	const Vector3 radius = *tet.getCorner(0) - center;
	Visualizer3 vis(nextDebugFilePrefix() + "sphereIncBug.list");
	vis.writeTet(&tet, RED);
	vis.writePoint(&vtx, kMarkWidth, RED);
	vis.writeBall(center, dot(radius, radius));
	vis.close();
}

/// So many tetrahedra are gathered before they are tested, so that the cache misses of their vertices overlap;
/// meanwhile the neighbours of the next ones are prefetched.
constexpr std::ptrdiff_t kBlock = 16;

/// A tetrahedron with the corners opposite its facets, as the batched test takes them.
struct OppositeCorners
{
	NeighbourBatch batch;
	unsigned hull; ///< facets without a neighbour, where a corner of the tetrahedron stands in
	int bRegular;  ///< no corner is null, and every neighbour names the tetrahedron
};

TULO3D_ALWAYS_INLINE OppositeCorners oppositeCorners(const Tet3& tet)
{
	OppositeCorners around;
	around.hull = 0;
	around.bRegular = 1;
	for (int i = 0; i < 4; ++i) {
		const Tet3* pNeigh = tet.getOppTet(i);
		const bool bHull = pNeigh == nullptr;
		pNeigh = bHull ? &tet : pNeigh;
		// As in getIntraTetIndex, but that ends the process where there is no such index.
		const int bLast = pNeigh->getOppTet(3) == &tet;
		const int j =
		    ((pNeigh->getOppTet(1) == &tet) | bLast) + 2 * ((pNeigh->getOppTet(2) == &tet) | bLast);
		around.batch.corner[i] = tet.getCorner(i);
		around.batch.opposite[i] = pNeigh->getCorner(j);
		around.hull |= static_cast<unsigned>(bHull) << i;
		around.bRegular &= (int{bHull} | int{pNeigh->getOppTet(j) == &tet}) &
		    int{tet.getCorner(i) != nullptr} & int{pNeigh->getCorner(j) != nullptr};
	}
	return around;
}

TULO3D_ALWAYS_INLINE void prefetchPoints(const NeighbourBatch& batch)
{
	for (int i = 0; i < 4; ++i) {
		prefetchVertex(batch.corner[i]);
		prefetchVertex(batch.opposite[i]);
	}
}

/// True when all facets are certainly sound. Otherwise each of them is to be tested alone, in order: whatever
/// is wrong with the mesh is found there.
template <typename Variant>
TULO3D_ALWAYS_INLINE bool isCertainlyDelaunay(
    const OppositeCorners& around, const BatchTests& tests)
{
	if (around.bRegular == 0) return false;
	const unsigned passed = around.hull | Variant::delaunay(around.batch);
	return passed == 0xFU || (passed | tests.delaunay(around.batch)) == 0xFU;
}

} // namespace

bool Dt3::checkValidity(const std::string& name, bool bCheckSphereInc) const
{
	expectFinished();
	const LiveTets tets = listedTets();
	printHeader(name, tets.size(), bCheckSphereInc);

	bool bValid = true;
	tets.forEachRun(0, tets.size(), [&](const Tet3* pFirst, const Tet3* pLast) {
		runLoop(batchTests, [&](auto variant) TULO3D_INLINE_LAMBDA {
			OppositeCorners aAround[kBlock];
			while (bValid && pFirst != pLast) {
				const std::ptrdiff_t num = std::min(kBlock, pLast - pFirst);
				for (std::ptrdiff_t i = 0; i < num; ++i) {
					if (pLast - pFirst > kBlock + i) prefetchNeighbours(pFirst[kBlock + i]);
					aAround[i] = oppositeCorners(pFirst[i]);
					prefetchPoints(aAround[i].batch);
				}
				for (std::ptrdiff_t i = 0; bValid && i < num; ++i) {
					checkNotVisited(pFirst[i]);
					bValid = isCertainlyDelaunay<decltype(variant)>(aAround[i], batchTests) ||
					    checkFacets(pFirst[i], name, bCheckSphereInc);
				}
				pFirst += num;
			}
		});
	});
	if (bValid) {
		Message() << "** CheckValidity at (" << name << ") has been finished, seems OK"
		          << std::endl;
	}
	return bValid;
}

bool Dt3::checkFacets(const Tet3& tet, const std::string& name, bool bCheckSphereInc) const
{
	for (int i = 0; i < 4; ++i) {
		Point3* pVtx = tet.getOppVtxInOppTet(i, true);
		if (!pVtx) continue;
		const Orientation3 side = predicates.getOrientation3(&tet, i, pVtx);
		if (side != ORIENTATION3_NEGATIVE) {
			printErrorBanner("ERROR: checkValidity at [" + name + "]");
			Message() << "Dt3::checkValidity, HUH, vertex " << *pVtx
			          << " should be on the negative side, tet=" << tet << "oppIndex=" << i
			          << ", Vertex=" << *pVtx << std::endl;
			ArdoTest3::printOrientation(side, "checkValidity");
			show(nextDebugFilePrefix() + "negSideBug.list", pVtx);
			return false;
		}
		if (bCheckSphereInc && predicates.sphereInclusionTest(&tet, pVtx) == SIC_INSIDE) {
			reportSphere(tet, *pVtx);
			return false;
		}
	}
	return true;
}

} // namespace TULO3D
