// SPDX-License-Identifier: MIT
// A speculative cavity: found ahead of the insertion of its vertex.
#pragma once

#include "ardo_tools/ScratchArray.h"
#include "mesh/Surroundings.h"

#include "Point3.h"
#include "Tet3.h"

#include <cstdint>
#include <utility>

namespace TULO3D {

/// The speculative cavity of one vertex: valid as long as no insertion changes it.
///
/// Other vertices may be inserted before this one. So the search reserves every tetrahedron of the
/// cavity and every neighbour of one, and the reservation is aborted when an insertion removes any of these.
/// Otherwise the cavity is unchanged:
///
///   1  the tetrahedra in conflict with a vertex are connected across facets;
///   2  so a new tetrahedron in conflict has, with others that are new, a chain of facets to the cavity;
///   3  the first facet of the chain that is not new belonged to a tetrahedron that has been removed,
///      and which was reserved; or to the hull, where the search aborts.
class Reservation
{
public:
	/// Which reservations hold a tetrahedron, one bit each.
	using Bits = std::uint16_t;
	/// The bit of a reservation that is not part of a queue.
	static constexpr Bits kSingle = 1U << 15U;

	/// Begins with the tetrahedron that contains `vtx`. `mine` is the bit of this reservation.
	void begin(Bits mine, const Point3& vtx, Tet3* pTet);

	/// Releases all reserved tetrahedra; the reservation is then invalid.
	void abort();
	void abortIfAmong(Bits disturbed)
	{
		if ((disturbed & myBit) != 0) abort();
	}

	/// Called when the vertex is in the mesh: its cavity has been removed and its neighbours released.
	void clear()
	{
		vCavity.clear();
		bValid = false;
	}

	/// After the search: true when the following describes the cavity.
	bool isComplete() const { return bValid; }

	/// The tetrahedra in conflict with the vertex, first the one that contains it.
	const ScratchArray<CavityTet>& cavity() const { return vCavity; }

	/// Releases one tetrahedron; true when it was reserved.
	bool release(Tet3& tet) const
	{
		const bool bReserved = (tet.reservations & myBit) != 0;
		tet.reservations &= static_cast<Bits>(~myBit);
		return bReserved;
	}

	/// The neighbours of a tetrahedron of the cavity, once all of the cavity bears its mark: the part of
	/// Surroundings by which a cavity grows. What is still reserved has not joined the cavity yet.
	class Neighbours;

	/// All reservations of a tetrahedron that has been removed.
	static Bits takeBits(Tet3& tet) { return std::exchange(tet.reservations, Bits{0}); }

private:
	friend class CavitySearch;
	friend class Neighbours;

	/// True when it was not reserved yet.
	static bool reserve(Tet3& tet, Bits mine)
	{
		const bool bNew = (tet.reservations & mine) == 0;
		tet.reservations |= mine;
		return bNew;
	}

	bool bValid = false;
	bool bPositive = true; // strictly on the cavity's side of all facets of the cavity boundary
	Bits myBit = 0;
	const Point3* pVtx = nullptr;
	ScratchArray<CavityTet> vCavity;
};

class Reservation::Neighbours
{
public:
	Neighbours(const Reservation& theReservation, const Tet3& theTet)
	    : positive(theReservation.bPositive ? 0xFU : 0), reservation(theReservation), tet(theTet)
	{
	}

	/// Without the corner beyond: cavity() has it.
	CavityTet neighbour(unsigned i) const { return {tet.getOppTet(static_cast<int>(i)), nullptr}; }
	/// To be called once for each facet: releases the neighbour.
	bool joins(unsigned i) const
	{
		Tet3& neigh = *neighbour(i).pTet;
		const bool bReserved = reservation.release(neigh);
		return CavityMark::isSet(neigh) && bReserved;
	}
	bool isBoundary(unsigned i) const { return !CavityMark::isSet(*neighbour(i).pTet); }

	const unsigned positive;

private:
	const Reservation& reservation;
	const Tet3& tet;
};

} // namespace TULO3D
