// SPDX-License-Identifier: MIT
// What a view must be like.
#include "Mesh.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <string>

namespace TULO3D::shapes {

namespace {

/// Throws unless all of the four numbers of each tetrahedron are below `end` and not below `begin`, which is 0 or the
/// least number there is.
void expectInRange(
    const Index* pNumbers, std::size_t numTets, Index begin, Index end, const char* what)
{
	const Index* const pEnd = pNumbers + 4 * numTets;
	// The first bit of a number is set when it is negative, and that of `last - number` when it is beyond the end;
	// of a negative number that may overflow. A loop without an exit is vectorised.
	const auto last = static_cast<std::uint32_t>(end - 1);
	std::uint32_t bad = 0;
	const std::uint32_t negative = begin == 0 ? ~0U : 0;
	for (const Index* p = pNumbers; p != pEnd; ++p) {
		const auto number = static_cast<std::uint32_t>(*p);
		bad |= (number & negative) | (~number & (last - number));
	}
	if (bad >> 31 == 0) return;
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
