// SPDX-License-Identifier: MIT
// Circulates around an edge: visits its tetrahedra from neighbour to neighbour.
#pragma once

#include "Edge3.h"

#include <cassert>
#include <cstddef>

namespace TULO3D {

/// Circulates around an edge, always in one sense of rotation.
///
/// Around an inner edge the circulation comes back to where it started; around an edge of the hull
/// it ends where `nextIsNull()` is true. A second circulation with the two indices of the edge
/// swapped runs the other way.
class TULO3D_API TetAroundEdgeIterator
{
public:
	/// Starts at the tetrahedron through which `edge` is named.
	explicit TetAroundEdgeIterator(const Edge3& edge) : curEdge(edge) {}

	/// Deliberate: the parked tetrahedron is copied, the parked index is not.
	TetAroundEdgeIterator(const TetAroundEdgeIterator& other)
	    : curEdge(other.curEdge), storedPayload(other.storedPayload)
	{
	}
	/// Copies the parked tetrahedron and the parked index.
	TetAroundEdgeIterator& operator=(const TetAroundEdgeIterator& other) = default;
	~TetAroundEdgeIterator() = default;

	/// The current tetrahedron.
	Tet3* operator*() const { return curEdge.getTet(); }

	/// Steps to the next tetrahedron around the edge, which must exist.
	TetAroundEdgeIterator& operator++();

	/// The tetrahedron that the next step leads to; null at a hull facet.
	Tet3* previewNextTet() const { return curEdge.getTet()->getOppTet(curEdge.getOpp2Index()); }

	/// True when the circulation has come to a hull facet.
	bool nextIsNull() const { return previewNextTet() == nullptr; }

	/// The edge, named through the current tetrahedron.
	Edge3 getEdge() const { return curEdge; }
	/// The facet that the last step crossed, once there has been one.
	int getOpp3Index() const { return curEdge.getOpp3Index(); }
	/// The facet that the next step crosses.
	int getOpp2Index() const { return curEdge.getOpp2Index(); }

	/// Equal when at the same tetrahedron around the same edge.
	bool operator==(const TetAroundEdgeIterator& other) const
	{
		return **this == *other && curEdge == other.curEdge;
	}
	/// True at different tetrahedra or around different edges.
	bool operator!=(const TetAroundEdgeIterator& other) const { return !(*this == other); }

	/// Parks a tetrahedron in the empty slot; the iterator itself never reads it.
	void setPayload(Tet3* pTet)
	{
		assert(storedPayload==NULL);
		storedPayload = pTet;
	}
	/// The parked tetrahedron; there must be one.
	Tet3* getPayload() const
	{
		assert(storedPayload!=NULL);
		return storedPayload;
	}

	/// Parks an index other than -1 in the empty slot.
	void setPayloadICI(int ici)
	{
		assert(storedPayloadICI==-1);
		storedPayloadICI = ici;
	}
	/// The parked index; there must be one.
	int getPayloadICI() const
	{
		assert(storedPayloadICI!=-1);
		return storedPayloadICI;
	}

	/// Prints the current edge to standard output.
	void debug() const;

private:
	Edge3 curEdge;
	Tet3* storedPayload = nullptr;
	int storedPayloadICI = -1;
};

} // namespace TULO3D
