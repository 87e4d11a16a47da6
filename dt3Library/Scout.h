// SPDX-License-Identifier: MIT
// A cavity that is found before its insertion.
#pragma once

#include "CavityBorder.h"
#include "Point3.h"
#include "ScratchArray.h"
#include "Tet3.h"

#include <cstdint>
#include <utility>

namespace TULO3D {

/// Goes ahead of one vertex into its cavity.
///
/// Before the vertex itself comes, others may be inserted. So the scout claims every tetrahedron of the
/// cavity and every one around it, and gives up when an insertion removes one of these, or where the
/// hull is near. While all of them are there, the tetrahedra in conflict with the vertex stay the same:
/// a new one would hang together with them across a facet of one that has been removed, and which was
/// claimed; or across a facet of the hull, and with one of these the scout had given up.
class Scout
{
public:
	/// The scouts that claim a tetrahedron, one bit each.
	using Claims = std::uint16_t;
	/// That of a scout who is not in a row.
	static constexpr Claims kLoneClaim = 1U << 15U;

	/// Enters the cavity of `vtx` by the tetrahedron around it. `mine` is the scout's own bit.
	void enter(Claims mine, const Point3& vtx, Tet3* pTet);

	/// Gives up when its bit is among these.
	void giveUpIfAmong(Claims claims)
	{
		if ((claims & myClaim) != 0) giveUp();
	}
	/// Nothing is claimed any more.
	void giveUp();

	/// The vertex is in the mesh, and nothing is claimed any more.
	void rest()
	{
		vCavity.clear();
		bInside = false;
	}

	/// After the search: the scout has its cavity, and the following is known.
	bool hasFound() const { return bInside; }

	/// What is in conflict with the vertex, first the tetrahedron around it.
	const ScratchArray<CavityTet>& cavity() const { return vCavity; }
	/// The vertex is known to lie strictly on the cavity's side of all its facets.
	bool seesPositive() const { return bPositive; }
	/// Claims this tetrahedron no more; true when it did.
	bool release(Tet3& tet) const
	{
		const bool bClaimed = (tet.claims & myClaim) != 0;
		tet.claims &= static_cast<Claims>(~myClaim);
		return bClaimed;
	}

	/// All claims to a tetrahedron that has been removed.
	static Claims takeClaims(Tet3& tet) { return std::exchange(tet.claims, Claims{0}); }

private:
	friend class CavitySearch;

	/// Claims a tetrahedron; true when that is new.
	static bool claim(Tet3& tet, Claims mine)
	{
		const bool bNew = (tet.claims & mine) == 0;
		tet.claims |= mine;
		return bNew;
	}

	bool bInside = false;
	bool bPositive = true;
	Claims myClaim = 0;
	const Point3* pVtx = nullptr;
	ScratchArray<CavityTet> vCavity;
};

} // namespace TULO3D
