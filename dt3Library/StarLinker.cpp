// SPDX-License-Identifier: MIT
// Links the new tetrahedra around a vertex to one another.
#include "StarLinker.h"

#include <algorithm>

namespace TULO3D {

StarLinker::StarLinker() : vEdges(kMaxVertices * kMaxVertices, nullptr), slotVertex{}
{
}

void StarLinker::clear()
{
	const std::size_t numUsed = std::min<std::size_t>(numVertices, kMaxVertices);
	for (std::size_t i = 0; i < numUsed; ++i) slotVertex[usedSlot[i]] = nullptr;
	numVertices = 0;
	vTets.clear();
	vTriangles.clear();
}

std::uint8_t StarLinker::numberOf(const Point3* pVtx)
{
	static_assert(kSlots == 256, "the top 8 bits of the product choose a slot");
	const auto address = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pVtx));
	auto slot = static_cast<std::uint8_t>((address * 0x9E3779B97F4A7C15U) >> 56U);
	while (slotVertex[slot] != pVtx) {
		if (slotVertex[slot] == nullptr) {
			if (numVertices >= kMaxVertices) {
				numVertices = kMaxVertices + 1; // does not fit
				return 0;
			}
			slotVertex[slot] = pVtx;
			slotNumber[slot] = static_cast<std::uint8_t>(numVertices);
			usedSlot[numVertices] = slot;
			++numVertices;
			break;
		}
		++slot; // wraps around
	}
	return slotNumber[slot];
}

void StarLinker::add(Tet3* pTet)
{
	vTets.push_back(pTet);
	if (!fits()) return;
	vTriangles.push_back(
	    {numberOf(pTet->getCorner(1)), numberOf(pTet->getCorner(2)), numberOf(pTet->getCorner(3))});
}

void StarLinker::link()
{
	const std::size_t n = vTets.size();
	for (std::size_t i = 0; i < n; ++i) {
		const Triangle t = vTriangles[i];
		edge(t.a, t.b) = edge(t.b, t.c) = edge(t.c, t.a) = vTets[i];
	}
	for (std::size_t i = 0; i < n; ++i) {
		const Triangle t = vTriangles[i];
		vTets[i]->setOppTet(1, edge(t.c, t.b));
		vTets[i]->setOppTet(2, edge(t.a, t.c));
		vTets[i]->setOppTet(3, edge(t.b, t.a));
	}
}

void StarLinker::linkClosed()
{
	link();
}

void StarLinker::linkOpen()
{
	for (unsigned row = 0; row < numVertices; ++row) {
		Tet3** pRow = &edge(row, 0);
		std::fill(pRow, pRow + numVertices, nullptr);
	}
	link();
}

} // namespace TULO3D
