// SPDX-License-Identifier: MIT
// Links the new tetrahedra around a vertex to one another.
#pragma once

#include "Point3.h"
#include "Tet3.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace TULO3D {

/// Pairs the inner facets of a small star by a table of directed edges.
///
/// Each new tetrahedron joins the inserted vertex to a triangle, and all triangles are seen from it
/// in the same sense. So the edge between two triangles runs from a to b in one and from b to a in
/// the other: a table with a row and a column for each vertex of the star takes one entry for each
/// directed edge, and every tetrahedron finds its neighbours by looking up its edges reversed.
/// Nothing is searched and nothing depends on what came before, which is what makes it fast; the
/// table of pending halves, which takes stars of any size, mispredicts one branch in two.
class StarLinker
{
public:
	/// The largest number of vertices, besides the inserted one, that a star may have here. An
	/// ordinary star has 15.
	static constexpr unsigned kMaxVertices = 64;

	StarLinker();

	/// Begins a star.
	void clear();

	/// Adds a tetrahedron whose corner 0 is the inserted vertex.
	void add(Tet3* pTet);

	/// All tetrahedra added since `clear`, in that order.
	const std::vector<Tet3*>& tets() const { return vTets; }

	/// True when `linkClosed` or `linkOpen` can be used.
	bool fits() const { return numVertices <= kMaxVertices; }

	/// True when the triangles can form a closed surface, by Euler's formula. False after a defect.
	bool canBeClosed() const { return vTets.size() + 4 == 2 * numVertices; }

	/// Links a star whose triangles close around the vertex: every edge is there in both directions.
	void linkClosed();

	/// Links a star that ends at the hull: facets without a partner keep a null neighbour.
	void linkOpen();

private:
	/// The numbers of corners 1, 2 and 3 in this star.
	struct Triangle
	{
		std::uint8_t a, b, c;
	};

	static constexpr unsigned kSlots = 4 * kMaxVertices;

	std::uint8_t numberOf(const Point3* pVtx);
	void link();
	Tet3*& edge(unsigned from, unsigned to) { return vEdges[from * kMaxVertices + to]; }

	std::vector<Tet3*> vTets;
	std::vector<Triangle> vTriangles;
	std::vector<Tet3*> vEdges; // the tetrahedron whose triangle runs from row to column
	std::size_t numVertices = 0;
	const Point3* slotVertex[kSlots];    // vertices by their hash; null where free
	std::uint8_t slotNumber[kSlots];     // their numbers in this star
	std::uint8_t usedSlot[kMaxVertices]; // the slots by number
};

} // namespace TULO3D
