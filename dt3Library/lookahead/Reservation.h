// SPDX-License-Identifier: MIT
// The cavity of one vertex, found before the vertex is inserted.
#pragma once

#include "ardo_tools/ScratchArray.h"
#include "mesh/Surroundings.h"

#include "Point3.h"
#include "Tet3.h"

#include <cstdint>
#include <utility>

namespace TULO3D {

/// A speculative cavity: the tetrahedra in conflict with a vertex, as long as they stay the same.
///
/// Other vertices may be inserted before this one. So the search reserves every tetrahedron of the
/// cavity and every neighbour of one, and the cavity is given up when an insertion removes any of these.
/// Otherwise it is the cavity still:
///
///   1  the tetrahedra in conflict with a vertex are connected across facets;
///   2  so a new tetrahedron in conflict has, with others that are new, a chain of facets to the cavity;
///   3  the first facet of the chain that is not new belonged to a tetrahedron that has been removed,
///      and which was reserved; or to the hull, and a search that meets the hull gives up.
class Reservation
{
public:
	/// Which reservations hold a tetrahedron, one bit each.
	using Bits = std::uint16_t;
	/// The bit of a reservation that is not part of a queue.
	static constexpr Bits kSingle = 1U << 15U;

	/// Begins with the tetrahedron that contains `vtx`. `mine` is the bit of this reservation.
	void begin(Bits mine, const Point3& vtx, Tet3* pTet);

	/// Releases everything: the cavity is not known.
	void abort();
	void abortIfAmong(Bits disturbed)
	{
		if ((disturbed & myBit) != 0) abort();
	}

	/// The vertex is in the mesh: its cavity is gone and everything else has been released.
	void clear()
	{
		vCavity.clear();
		bValid = false;
	}

	/// After the search: true when the following describes the cavity.
	bool isComplete() const { return bValid; }

	/// The tetrahedra in conflict with the vertex, first the one that contains it.
	const ScratchArray<CavityTet>& cavity() const { return vCavity; }
	/// The vertex is known to lie strictly on the cavity's side of all facets of the cavity.
	bool seesPositive() const { return bPositive; }

	/// Releases one tetrahedron; true when it was reserved.
	bool release(Tet3& tet) const
	{
		const bool bReserved = (tet.reservations & myBit) != 0;
		tet.reservations &= static_cast<Bits>(~myBit);
		return bReserved;
	}

	/// All reservations of a tetrahedron that has been removed.
	static Bits takeBits(Tet3& tet) { return std::exchange(tet.reservations, Bits{0}); }

private:
	friend class CavitySearch;

	/// True when it was not reserved yet.
	static bool reserve(Tet3& tet, Bits mine)
	{
		const bool bNew = (tet.reservations & mine) == 0;
		tet.reservations |= mine;
		return bNew;
	}

	bool bValid = false;
	bool bPositive = true;
	Bits myBit = 0;
	const Point3* pVtx = nullptr;
	ScratchArray<CavityTet> vCavity;
};

} // namespace TULO3D
