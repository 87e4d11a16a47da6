// SPDX-License-Identifier: MIT
// A cavity that is found before its insertion.
#include "Scout.h"

namespace TULO3D {

void Scout::enter(Claims mine, const Point3& vtx, Tet3* pTet)
{
	giveUp();                                // what an exception has left
	vCavity.add({pTet, pTet->getCorner(0)}); // before the claim: it may run out of memory
	myClaim = mine;
	claim(*pTet, mine);
	pVtx = &vtx;
	bPositive = true;
	bInside = true;
}

void Scout::giveUp()
{
	// All that is claimed is next to the cavity. What has just been removed still knows its neighbours;
	// it is claimed by nobody, and neither is what has come instead.
	for (const CavityTet& found : vCavity) {
		release(*found.pTet);
		for (int i = 0; i < 4; ++i) {
			Tet3* const pNeigh = found.pTet->getOppTet(i);
			if (pNeigh != nullptr) release(*pNeigh);
		}
	}
	rest();
}

} // namespace TULO3D
