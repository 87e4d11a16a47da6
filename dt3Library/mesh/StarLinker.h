// SPDX-License-Identifier: MIT
// Links the new tetrahedra around a vertex to one another.
#pragma once

#include "Point3.h"
#include "Tet3.h"
#include "ardo_tools/ScratchArray.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace TULO3D {

/// Pairs the inner facets of a star of ordinary size through a table of directed edges.
///
/// Each new tetrahedron joins the inserted vertex, its corner 0, to a triangle (its corners 1, 2, 3), and
/// all triangles have the same orientation as seen from the vertex. So an edge between two triangles runs
/// from a to b in one and from b to a in the other. The table `edges` has a row and a column for each vertex
/// of the star and an entry for each directed edge; a tetrahedron finds its neighbours at its edges
/// reversed.
///
/// ~~~
///          c              edges    a     b     c     d     (column: to)
///         / \               a      .    pTet   .     pU
///        /   \              b      pU    .    pTet   .
///       / pTet\             c     pTet   .     .     .
///      a-------b            d      .     pU    .     .
///       \  pU /          (row: from)
///        \   /
///         \ /            pTet fills edges[rowA + b], edges[rowB + c], edges[rowC + a];
///          d             its neighbour across the edge ab is edges[rowB + a]: pU
/// ~~~
///
/// There is no unpredictable branch; the table of pending halves, which takes stars of any size, has one
/// for each half: whether it is the first or the second.
///
/// The rows are found without a search, too: while a star is being linked, the `pOneTet` of each vertex
/// holds the number of its row instead of a pointer (values up to 64 are numbers, others pointers), and gets
/// the pointer back at the end.
class StarLinker
{
public:
	/// The tetrahedra of the star, as they are made, and its vertices in any order, each at least once: those of the
	/// tetrahedra of the cavity, that is the corners of the first one and the apices through which others were found.
	ScratchArray<Tet3*> vTets;
	ScratchArray<Point3*> vCorners;

	void clear()
	{
		vTets.clear();
		vCorners.clear();
	}

	/// Adds a tetrahedron, and its vertices in case they are not there yet.
	void addWithCorners(Tet3* pTet)
	{
		vTets.add(pTet);
		for (int i = 1; i < 4; ++i) vCorners.add(pTet->getCorner(i));
	}

	/// Links a star whose triangles close around the vertex. False, with nothing linked, when there
	/// are too many vertices, or when the triangles cannot form a closed surface: that is a defect.
	bool linkClosed()
	{
		// Euler's formula: a closed surface of V vertices has 2 V - 4 triangles. Without this check, an
		// edge without a partner would read an entry that an earlier star has left.
		const bool bLinks = numberVertices() && vTets.size() + 4 == 2 * std::size_t{numVertices};
		if (bLinks) linkNumbered();
		giveLinksBack();
		return bLinks;
	}

	/// Links a star that ends at the hull: facets without a partner get a null neighbour, for which the
	/// entries that will be read are cleared first. False, with nothing linked, when there are too many vertices.
	bool linkOpen()
	{
		const bool bLinks = numberVertices();
		if (bLinks) {
			for (const Tet3* pTet : vTets) {
				const Places at = placesOfNeighbours(*pTet);
				edges[at.facet1] = edges[at.facet2] = edges[at.facet3] = nullptr;
			}
			linkNumbered();
		}
		giveLinksBack();
		return bLinks;
	}

private:
	static constexpr std::uint32_t kMaxVertices = 64; // an ordinary star has 15
	static constexpr std::size_t kMaxTets = 2 * std::size_t{kMaxVertices};

	/// Where the table has the neighbours across facets 1, 2 and 3.
	struct Places
	{
		std::uint32_t facet1, facet2, facet3;
	};

	struct Vertex
	{
		Point3* pVtx;
		Tet3* pOneTet;
	};

	/// Gives each vertex a number; false when there are too many.
	///
	/// No vertex lies strictly inside the cavity, because an insertion removes none. So each of them is a corner
	/// of a new tetrahedron, which `Tet3::initialize` has made its incident one: no link is null.
	bool numberVertices()
	{
		std::uintptr_t n = 0;
		for (Point3* pVtx : vCorners) {
			// A number that was given before is below n, an address is above it. Whether the vertex is new
			// decides only which value is kept: no branch.
			Tet3* const pLink = pVtx->getOneTet();
			const auto link = reinterpret_cast<std::uintptr_t>(pLink);
			vertices[n] = {pVtx, pLink};
			pVtx->setOneTet(reinterpret_cast<Tet3*>(std::min(link, n)));
			n += link > n;
			if (n > kMaxVertices) break;
		}
		numVertices = static_cast<std::uint32_t>(n);
		return n <= kMaxVertices && vTets.size() <= kMaxTets;
	}

	static std::uint32_t numberOf(const Point3* pVtx)
	{
		return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pVtx->getOneTet()));
	}

	/// The edges of its triangle reversed.
	static Places placesOfNeighbours(const Tet3& tet)
	{
		const std::uint32_t a = numberOf(tet.getCorner(1));
		const std::uint32_t b = numberOf(tet.getCorner(2));
		const std::uint32_t c = numberOf(tet.getCorner(3));
		return {c * kMaxVertices + b, a * kMaxVertices + c, b * kMaxVertices + a};
	}

	void giveLinksBack()
	{
		for (std::uint32_t i = 0; i < numVertices; ++i) {
			vertices[i].pVtx->setOneTet(vertices[i].pOneTet);
		}
	}

	void linkNumbered()
	{
		Places* pPlaces = places;
		for (Tet3* pTet : vTets) {
			const std::uint32_t a = numberOf(pTet->getCorner(1));
			const std::uint32_t b = numberOf(pTet->getCorner(2));
			const std::uint32_t c = numberOf(pTet->getCorner(3));
			const std::uint32_t rowA = a * kMaxVertices, rowB = b * kMaxVertices,
			                    rowC = c * kMaxVertices;
			edges[rowA + b] = edges[rowB + c] = edges[rowC + a] = pTet;
			*pPlaces++ = {rowC + b, rowA + c, rowB + a};
		}
		pPlaces = places;
		for (Tet3* pTet : vTets) {
			const Places at = *pPlaces++;
			pTet->linkInside(edges[at.facet1], edges[at.facet2], edges[at.facet3]);
		}
	}

	std::uint32_t numVertices = 0;
	Vertex vertices[kMaxVertices + 1]; // with room for one that is not kept
	Places places[kMaxTets];
	Tet3* edges[kMaxVertices * kMaxVertices]; // whose triangle runs from row to column
};

} // namespace TULO3D
