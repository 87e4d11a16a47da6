// SPDX-License-Identifier: MIT
// The cavity of one vertex, found before the vertex is inserted.
#include "lookahead/Reservation.h"

namespace TULO3D {

void Reservation::begin(Bits mine, const Point3& vtx, Tet3* pTet)
{
	abort();                                 // what an exception has left
	vCavity.add({pTet, pTet->getCorner(0)}); // before the bit is set: memory may run out here
	myBit = mine;
	reserve(*pTet, mine);
	pVtx = &vtx;
	bPositive = true;
	bValid = true;
}

void Reservation::abort()
{
	// All that is reserved is in the cavity or next to it. A removed record still knows its neighbours; it
	// has no bits, and its reuse has cleared them.
	for (const CavityTet& found : vCavity) {
		release(*found.pTet);
		for (int i = 0; i < 4; ++i) {
			Tet3* const pNeigh = found.pTet->getOppTet(i);
			if (pNeigh != nullptr) release(*pNeigh);
		}
	}
	clear();
}

} // namespace TULO3D
