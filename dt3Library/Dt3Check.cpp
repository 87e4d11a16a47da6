// SPDX-License-Identifier: MIT
// Verifies the mesh facet by facet, and shows the first place where it is wrong.
#include "Dt3.h"
#include "Message.h"
#include "Visualizer3.h"
#include "geometry/printing.h"
#include "geometry/vectors.h"

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

} // namespace

bool Dt3::checkValidity(const std::string& name, bool bCheckSphereInc) const
{
	std::vector<Tet3*> vTets;
	getAllTetrahedra(vTets);
	printHeader(name, vTets.size(), bCheckSphereInc);

	for (const Tet3* pTet : vTets) {
		checkNotVisited(*pTet);
		for (int i = 0; i < 4; ++i) {
			Point3* pVtx = pTet->getOppVtxInOppTet(i, true);
			if (!pVtx) continue;
			const Orientation3 side = predicates.getOrientation3(pTet, i, pVtx);
			if (side != ORIENTATION3_NEGATIVE) {
				printErrorBanner("ERROR: checkValidity at [" + name + "]");
				Message() << "Dt3::checkValidity, HUH, vertex " << *pVtx
				          << " should be on the negative side, tet=" << *pTet << "oppIndex=" << i
				          << ", Vertex=" << *pVtx << std::endl;
				ArdoTest3::printOrientation(side, "checkValidity");
				show(nextDebugFilePrefix() + "negSideBug.list", pVtx);
				return false;
			}
			if (!bCheckSphereInc) continue;
			if (predicates.sphereInclusionTest(pTet, pVtx) == SIC_INSIDE) {
				reportSphere(*pTet, *pVtx);
				return false;
			}
		}
	}
	Message() << "** CheckValidity at (" << name << ") has been finished, seems OK" << std::endl;
	return true;
}

} // namespace TULO3D
