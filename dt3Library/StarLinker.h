// SPDX-License-Identifier: MIT
// Links the new tetrahedra around a vertex to one another.
#pragma once

#include "Point3.h"
#include "ScratchArray.h"
#include "Tet3.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace TULO3D {

/// Pairs the inner facets of a star of ordinary size through a table of directed edges.
///
/// Each new tetrahedron joins the inserted vertex to a triangle, and all triangles are seen from it
/// in the same sense. So the edge between two triangles runs from a to b in one and from b to a in
/// the other: a table with a row and a column for each vertex of the star takes one entry for each
/// directed edge, and a tetrahedron finds its neighbours by looking up its edges reversed. Nothing
/// is searched for, so no branch is guessed wrong; the table of pending halves, which takes stars
/// of any size, guesses for every half whether it is the first or the second.
class StarLinker
{
public:
	/// Begins a star.
	void clear()
	{
		for (std::uint32_t i = 0; i < numVertices; ++i) slots[usedSlot[i]].pVtx = nullptr;
		numVertices = 0;
		bFits = true;
		vTets.clear();
	}

	/// Announces a vertex of the star. `add` does so itself; but it meets each vertex some five times,
	/// and whether for the first time it would have to guess, where here nothing hangs on it.
	void announce(const Point3* pVtx)
	{
		bFits = bFits && numVertices < kMaxVertices;
		if (!bFits) return;
		std::uint32_t slot = slotOf(pVtx);
		while ((slots[slot].pVtx != nullptr) & (slots[slot].pVtx != pVtx))
			slot = (slot + 1) % kSlots;
		const std::uint32_t bNew = slots[slot].pVtx == nullptr;
		slots[slot] = {pVtx, bNew != 0 ? numVertices : slots[slot].number};
		usedSlot[numVertices] = slot;
		numVertices += bNew;
	}

	/// Adds a tetrahedron whose corner 0 is the inserted vertex.
	void add(Tet3* pTet)
	{
		const std::size_t n = vTets.size();
		vTets.makeRoom(1);
		vTets.push(pTet);
		bFits = bFits && numVertices + 3 <= kMaxVertices && n < kMaxTets;
		if (!bFits) return;
		triangles[n] = {numberOf(pTet->getCorner(1)), numberOf(pTet->getCorner(2)),
		    numberOf(pTet->getCorner(3))};
	}

	/// All tetrahedra added since `clear`, in that order.
	const ScratchArray<Tet3*>& tets() const { return vTets; }

	/// True when the star is small enough for the table.
	bool fits() const { return bFits; }

	/// True when the triangles can form a closed surface, by Euler's formula: false after a defect.
	bool canBeClosed() const { return vTets.size() + 4 == 2 * std::size_t{numVertices}; }

	/// Links a star whose triangles close around the vertex: every edge is there in both directions.
	void linkClosed()
	{
		const std::size_t n = vTets.size();
		Tet3* const* pTets = vTets.begin();
		for (std::size_t i = 0; i < n; ++i) {
			const Triangle t = triangles[i];
			edges[t.a][t.b] = edges[t.b][t.c] = edges[t.c][t.a] = pTets[i];
		}
		for (std::size_t i = 0; i < n; ++i) {
			const Triangle t = triangles[i];
			pTets[i]->setOppTet(1, edges[t.c][t.b]);
			pTets[i]->setOppTet(2, edges[t.a][t.c]);
			pTets[i]->setOppTet(3, edges[t.b][t.a]);
		}
	}

	/// Links a star that ends at the hull: facets without a partner keep a null neighbour.
	void linkOpen()
	{
		for (std::uint32_t i = 0; i < numVertices; ++i) {
			std::fill(edges[i], edges[i] + numVertices, nullptr);
		}
		linkClosed();
	}

private:
	static constexpr std::uint32_t kMaxVertices = 64; // an ordinary star has 15
	static constexpr std::size_t kMaxTets = 2 * kMaxVertices;
	static constexpr unsigned kSlots = 256;

	/// The numbers of corners 1, 2 and 3 in this star.
	struct Triangle
	{
		std::uint32_t a, b, c;
	};

	/// A vertex of the star and its number; the vertex is null where the slot is free.
	struct Slot
	{
		const Point3* pVtx;
		std::uint32_t number;
	};

	/// Fibonacci hashing: the top 8 bits of the product choose one of 256 slots.
	static std::uint32_t slotOf(const Point3* pVtx)
	{
		const auto address = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pVtx));
		return static_cast<std::uint32_t>((address * 0x9E3779B97F4A7C15U) >> 56U);
	}

	std::uint32_t numberOf(const Point3* pVtx)
	{
		std::uint32_t slot = slotOf(pVtx);
		while (slots[slot].pVtx != pVtx) {
			if (slots[slot].pVtx == nullptr) {
				slots[slot] = {pVtx, numVertices};
				usedSlot[numVertices] = slot;
				return numVertices++;
			}
			slot = (slot + 1) % kSlots;
		}
		return slots[slot].number;
	}

	ScratchArray<Tet3*> vTets;
	Triangle triangles[kMaxTets];
	Tet3* edges[kMaxVertices]
	           [kMaxVertices]; // the tetrahedron whose triangle runs from row to column
	std::uint32_t numVertices = 0;
	bool bFits = true;
	Slot slots[kSlots] = {}; // vertices by their hash
	std::uint32_t usedSlot[kMaxVertices];
};

} // namespace TULO3D
