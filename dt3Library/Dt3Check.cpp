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

// Distances of prefetching, in tetrahedra: a record must have come before its neighbours and corners can be
// prefetched. Those of the neighbours are corners of tetrahedra nearby, and mostly in the cache.
constexpr std::ptrdiff_t kTetsAhead = 32;
constexpr std::ptrdiff_t kNeighboursAhead = 16;
constexpr std::ptrdiff_t kVerticesAhead = 8;

/// A tetrahedron with the corners opposite its facets, as the batched test takes them.
struct OppositeCorners
{
	NeighbourBatch batch;
	unsigned hull = 0; ///< facets without a neighbour, where a corner of the tetrahedron stands in
	bool bRegular = true; ///< no corner is null, and every neighbour names the tetrahedron
};

TULO3D_ALWAYS_INLINE OppositeCorners oppositeCorners(const Tet3& tet)
{
	OppositeCorners around;
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
		around.bRegular &= (bHull | (pNeigh->getOppTet(j) == &tet)) &
		    (tet.getCorner(i) != nullptr) & (pNeigh->getCorner(j) != nullptr);
	}
	return around;
}

/// True when all facets are certainly sound. Otherwise each of them is to be tested alone, in order: whatever
/// is wrong with the mesh is found there.
template <typename Variant>
TULO3D_ALWAYS_INLINE bool isCertainlyDelaunay(const Tet3& tet, const BatchTests& tests)
{
	const OppositeCorners around = oppositeCorners(tet);
	if (!around.bRegular) return false;
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
			for (const Tet3* pTet = pFirst; bValid && pTet != pLast; ++pTet) {
				if (pLast - pTet > kTetsAhead) {
					prefetchTet(pTet + kTetsAhead);
					prefetchNeighbours(pTet[kNeighboursAhead]);
					prefetchCorners(pTet[kVerticesAhead]);
				}
				checkNotVisited(*pTet);
				bValid = isCertainlyDelaunay<decltype(variant)>(*pTet, batchTests) ||
				    checkFacets(*pTet, name, bCheckSphereInc);
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
