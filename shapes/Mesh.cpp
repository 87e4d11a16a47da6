// SPDX-License-Identifier: MIT
// What a view must be like.
#include "Mesh.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <string>

namespace TULO3D::shapes {

namespace {

/// Throws unless all of the four numbers of each tetrahedron are below `end` and not below `begin`.
void expectInRange(
    const Index* pNumbers, std::size_t numTets, Index begin, Index end, const char* what)
{
	const Index* const pEnd = pNumbers + 4 * numTets;
	Index least = begin, most = begin; // a loop without an exit is vectorised
	for (const Index* p = pNumbers; p != pEnd; ++p) {
		least = std::min(least, *p);
		most = std::max(most, *p);
	}
	if (least >= begin && most < end) return;
	const Index* const pBad =
	    std::find_if(pNumbers, pEnd, [=](Index i) { return i < begin || i >= end; });
	throw std::invalid_argument("Tetrahedron " + std::to_string((pBad - pNumbers) / 4) +
	    " has the " + what + " " + std::to_string(*pBad) + ", of " + std::to_string(end) + ".");
}

} // namespace

Mesh::Mesh(const MeshView& view) : MeshView(view)
{
	constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<Index>::max());
	if (numTets > kMost || numVertices > kMost) {
		throw std::invalid_argument(
		    "A mesh of more than 2,147,483,647 vertices or tetrahedra has no shapes.");
	}
	if (numTets == 0) return;
	if (pCoordinates == nullptr || pCorners == nullptr || pNeighbours == nullptr) {
		throw std::invalid_argument("The mesh lacks its coordinates, corners or neighbours.");
	}
	constexpr Index kLeast = std::numeric_limits<Index>::min();
	expectInRange(pCorners, numTets, 0, static_cast<Index>(numVertices), "corner");
	expectInRange(pNeighbours, numTets, kLeast, static_cast<Index>(numTets), "neighbour");
}

} // namespace TULO3D::shapes
