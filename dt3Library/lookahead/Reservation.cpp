// SPDX-License-Identifier: MIT
// A speculative cavity: found ahead of the insertion of its vertex.
#include "lookahead/Reservation.h"

namespace TULO3D {

void Reservation::begin(Bits mine, const Point3& vtx, Tet3* pTet)
{
	abort();                                 // a reservation that an exception has left
	vCavity.add({pTet, pTet->getCorner(0)}); // before the bit is set: this may throw std::bad_alloc
	myBit = mine;
	reserve(*pTet, mine);
	pVtx = &vtx;
	bPositive = true;
	bValid = true;
}

void Reservation::abort()
{
	// Every reserved tetrahedron is in the cavity or next to it. A removed record keeps its neighbour
	// pointers, and has no bits; the reuse of a record clears them as well.
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
