// SPDX-License-Identifier: MIT
// A handle of an edge: a tetrahedron and the two corners that the edge avoids.
#pragma once

#include "Tet3.h"

#include <iosfwd>

namespace TULO3D {

/// Names an edge through one of the tetrahedra around it. Copied by value.
///
/// The direction runs in the order in which facet opp3ICI lists its corners seen from outside, so
/// swapping the two indices reverses it.
class TULO3D_API Edge3
{
public:
	/// The edge of `pT` that avoids the corners opp3 and opp2, which must differ.
	Edge3(Tet3* pT, int opp3, int opp2);

	/// The tetrahedron through which the edge is named; one of those around it.
	Tet3* getTet() const { return pTet; }
	///@{
	/// A corner index, 0..3, that is not on the edge.
	int getOpp3Index() const { return opp3ICI; }
	int getOpp2Index() const { return opp2ICI; }
	///@}

	///@{
	/// The corner index, 0..3, of one end; -99 when the two indices name no edge.
	int getSourceIndex() const;
	int getTargetIndex() const;
	///@}

	///@{
	/// One end.
	Point3* getSourceVtx() const { return pTet->getCorner(getSourceIndex()); }
	Point3* getTargetVtx() const { return pTet->getCorner(getTargetIndex()); }
	///@}

	/// True when the two edges have the same ends now, in either direction.
	bool operator==(const Edge3& other) const;
	/// True when at least one end differs.
	bool operator!=(const Edge3& other) const { return !(*this == other); }

	/// An order by the addresses that the ends had when the handles were made, so that handles in a
	/// set keep their order; the two names of one edge are equivalent.
	bool operator<(const Edge3& other) const;

private:
	Tet3* pTet;
	int opp3ICI;
	int opp2ICI;
	Point3* pLowerEnd;
	Point3* pHigherEnd;
};

/// Prints the handle: its tetrahedron, and index and address of the four corners.
TULO3D_API std::ostream& operator<<(std::ostream& stream, const Edge3& edge);

} // namespace TULO3D
