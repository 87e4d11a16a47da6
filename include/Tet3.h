// SPDX-License-Identifier: MIT
// A tetrahedron (cell) of the mesh: four corners, and the neighbour behind each facet.
#pragma once

#include "Point3.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <utility>

namespace TULO3D {

class CavityMark;
class Dt3;
class Facet3;
class Edge3;
class Reservation;
class StarLinker;

// clang-format off
/// A tetrahedron of the mesh.
///
/// ~~~
///             3              corner i      a vertex; 0 1 2 3 are in positive order
///            /|\             facet i       the triangle without corner i
///           / | \            neighbour i   lies behind facet i, null on the convex hull
///          /  2  \           edge (i, j)   the one that avoids corners i and j
///         / .   . \       2 is at the back; seen from 3,
///        0---------1         corners 0 1 2 run counter-clockwise
/// ~~~
///
/// Positive order means ((c1 - c0) x (c2 - c0)) . (c3 - c0) > 0. The records live in their engine
/// and are reused: a pointer to one is valid until the next insertion.
// clang-format on
class TULO3D_API Tet3
{
public:
	/// Prints a line that says so: the engine never constructs records one by one.
	Tet3();

	/// Deliberate: prints a line and copies nothing, because tetrahedra are never copied by value.
	Tet3(const Tet3& other);
	/// Copies the record with its label and links; no neighbour knows of the copy.
	Tet3& operator=(const Tet3& other) = default;
	~Tet3() = default;

	/// Makes this record a new tetrahedron: a fresh label, the corners as given (none null), no
	/// neighbours, not visited, custom index -1. Each corner now names it as its incident one.
	void setProperties(Point3* pI, Point3* pJ, Point3* pK, Point3* pL)
	{
		initialize(takeLabels(1), pI, pJ, pK, pL);
	}

	/// Corner ith, 0..3.
	Point3* getCorner(int ith) const
	{
		assert(range03(ith));
		return aVertexPointer[ith];
	}

	/// Sets corner ith; the vertex' own link to a tetrahedron stays as it is.
	void setCorner(int ith, Point3* p)
	{
		assert(range03(ith));
		aVertexPointer[ith] = p;
	}

	/// The four corners in order.
	void getCorners(Point3*& p0, Point3*& p1, Point3*& p2, Point3*& p3) const
	{
		p0 = aVertexPointer[0];
		p1 = aVertexPointer[1];
		p2 = aVertexPointer[2];
		p3 = aVertexPointer[3];
	}

	/// The neighbour behind facet ith, 0..3; null on the convex hull.
	Tet3* getOppTet(int ith) const
	{
		assert(range03(ith));
		return aNeighbours[ith];
	}

	/// The neighbour behind the facet opposite corner `p`, which must be a corner.
	Tet3* getOppTet(const Point3* p) const { return aNeighbours[getIntraTetIndex(p)]; }

	/// Links neighbour ith, which may be null. Linking a tetrahedron to itself is reported.
	void setOppTet(int ith, Tet3* pC)
	{
		if (pC != nullptr && pC == this) reportSelfLink(ith, pC);
		assert(range03(ith));
		aNeighbours[ith] = pC;
	}

	/// The index 0..3 of corner `p`, which must be one; of several the first.
	int getIntraTetIndex(const Point3* pp) const
	{
		// Conditional moves, no branches: which of the four it is cannot be predicted.
		int i = 3;
		i = aVertexPointer[2] == pp ? 2 : i;
		i = aVertexPointer[1] == pp ? 1 : i;
		i = aVertexPointer[0] == pp ? 0 : i;
		if (i == 3) {
			assert(aVertexPointer[3]==pp);
		}
		return i;
	}

	/// The index 0..3 of neighbour `pT`. Ends the process when it is none.
	int getIntraTetIndex(const Tet3* pT) const
	{
		// Branch-free, from comparison bits: which of the four it is cannot be predicted.
		const int bLast = aNeighbours[3] == pT;
		const int i = ((aNeighbours[1] == pT) | bLast) + 2 * ((aNeighbours[2] == pT) | bLast);
		if (aNeighbours[i] != pT || pT == nullptr) return searchNeighbour(pT);
		return i;
	}

	/// The index under which neighbour ith, which must exist, knows this tetrahedron.
	int getIntraTetIndexInOppTet(int ith) const { return getOppTet(ith)->getIntraTetIndex(this); }

	/// The index of this tetrahedron's corner that is none of the other three corners of facet ith
	/// of `pOther`; works before the two are linked. -1 when ith is outside 0..3.
	int getIntraTetIndexInOppTetForReg(const Tet3* pOther, int ith) const;

	/// The corner of neighbour ith that lies opposite the shared facet. Without a neighbour: null
	/// when `bMayBeNull`, otherwise the process ends.
	Point3* getOppVtxInOppTet(int ith, bool bMayBeNull) const;

	/// True when `p` is a corner.
	bool hasVertex(const Point3* p) const
	{
		return aVertexPointer[0] == p || aVertexPointer[1] == p || aVertexPointer[2] == p ||
		    aVertexPointer[3] == p;
	}

	/// True when a corner has the coordinates of `p`.
	bool hasVertex(const Point3& p) const
	{
		return *aVertexPointer[0] == p || *aVertexPointer[1] == p || *aVertexPointer[2] == p ||
		    *aVertexPointer[3] == p;
	}

	///@{
	/// An index that the host may attach; -1 when unset. The next insertion may drop it with the
	/// tetrahedron.
	int getCustomIndex() const { return customIndex; }
	void setCustomIndex(int index) { customIndex = index; }
	///@}

	/// A handle of facet ith.
	Facet3 getFacet(int ith);

	/// A handle of the edge that avoids the corners opp3ICI and opp2ICI, which must differ.
	Edge3 getEdge(int opp3ICI, int opp2ICI);

	/// The corner indices of facet opp3, counter-clockwise seen from outside.
	void getFacetIndices(int opp3, int& i0, int& i1, int& i2) const;

	/// Edge j (0..2) of facet i (0..3) as the indices of its two ends, the facet walked clockwise
	/// seen from outside.
	static std::pair<int, int> getEdgeIndices(int i, int j);

	/// True when facet i0 of pT0 and facet i1 of pT1 have the same three vertices. Otherwise both
	/// are printed and the process ends.
	static bool haveCommonFacet(Tet3* pT0, int i0, Tet3* pT1, int i1);

	/// The centre of the sphere through the four corners, by Cramer's rule in plain floating point:
	/// inexact, far away or not a number for a nearly flat tetrahedron.
	Point3 getCircumcenter() const;

	/// Deliberate: a stub that prints a line and returns 0, or -1 without a line on the hull.
	int debug_getOppTetIndex(int ith) const;

	/// A mark for the host's traversals, to be false when an insertion begins: one that would start at a
	/// marked tetrahedron, or join a vertex to it at the hull, throws.
	bool hasBeenVisited;

	/// The label of the next tetrahedron made in this process. Labels are for printing, and tell how old
	/// a tetrahedron is. Not to be read while another thread inserts.
	static int runningLabel;

private:
	friend class CavityMark;
	friend class Dt3;
	friend class Reservation;
	friend class StarLinker;
	friend TULO3D_API std::ostream& operator<<(std::ostream& stream, const Tet3& tet);

	/// setProperties with a label that has been drawn already.
	void initialize(int newLabel, Point3* pI, Point3* pJ, Point3* pK, Point3* pL)
	{
		assert((pI!=NULL && pJ!=NULL && pK!=NULL && pL!=NULL));
		hasBeenVisited = false;
		bInCavity = false;
		reservations = 0;
		label = newLabel;
		aVertexPointer[0] = pI;
		aVertexPointer[1] = pJ;
		aVertexPointer[2] = pK;
		aVertexPointer[3] = pL;
		for (Tet3*& pNeighbour : aNeighbours) pNeighbour = nullptr;
		customIndex = -1;
		pI->setOneTet(this);
		pJ->setOneTet(this);
		pK->setOneTet(this);
		pL->setOneTet(this);
	}

	/// Links neighbours 1, 2 and 3 at once, none of which is this tetrahedron.
	void linkInside(Tet3* p1, Tet3* p2, Tet3* p3)
	{
		aNeighbours[1] = p1;
		aNeighbours[2] = p2;
		aNeighbours[3] = p3;
	}

	/// Takes the next `count` labels and returns the first of them. A very long run uses up all
	/// integers; then they start again from below.
	static int takeLabels(unsigned count, int& counter = runningLabel)
	{
		const int taken = loadLabel(counter);
		storeLabel(counter, static_cast<int>(static_cast<unsigned>(taken) + count));
		return taken;
	}

	static bool range03(int i) { return static_cast<unsigned>(i) < 4U; }
	void reportSelfLink(int ith, const Tet3* pC) const;
	/// The first index of `pT`, which may be null, among the neighbours. Ends the process when it is none.
	int searchNeighbour(const Tet3* pT) const;

	// Threads share `runningLabel`. Deliberate: loaded and stored, not incremented in one locked step,
	// which would cost more than the rest of a label. So two threads may draw the same one.
	static int loadLabel(const int& counter)
	{
#if defined(__GNUC__)
		return __atomic_load_n(&counter, __ATOMIC_RELAXED);
#else
		return counter;
#endif
	}
	static void storeLabel(int& counter, int next)
	{
#if defined(__GNUC__)
		__atomic_store_n(&counter, next, __ATOMIC_RELAXED);
#else
		counter = next;
#endif
	}

	bool bInCavity; // CavityMark: in the cavity of the insertion under way
	std::uint16_t
	    reservations; // Reservation: by cavities found ahead of their insertion, a bit each
	int label;
	Point3* aVertexPointer[4];
	Tet3* aNeighbours[4];
	int customIndex;
};

/// Prints label, address, visited mark, orientation, and a line for each corner and neighbour.
TULO3D_API std::ostream& operator<<(std::ostream& stream, const Tet3& tet);

} // namespace TULO3D
