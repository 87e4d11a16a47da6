// SPDX-License-Identifier: MIT
// The order in which the vertices of a batch enter the mesh.
#include "lookahead/InsertionOrder.h"
#include "ardo_tools/Bits.h"

namespace TULO3D {

namespace {

/// How often a list of n vertices is halved.
unsigned numHalvings(std::uint32_t n)
{
	// The logarithm of n to base 2, rounded up. Deliberate: that of 2^29 is 30, since a quotient of logarithms in
	// doubles makes it so, which the order was once defined by.
	unsigned halvings = n > 1 ? highestBit(n - 1) + 1 : 0;
	if (n == 1U << 29U) halvings = 30;
	// Runs of seven to sixteen vertices are left between neighbouring middles for the last round.
	return halvings > 4 ? halvings - 4 : 0;
}

} // namespace

InsertionOrder::InsertionOrder(std::uint32_t n) : InsertionOrder(n, numHalvings(n))
{
}

InsertionOrder InsertionOrder::lastToFirst(std::uint32_t n)
{
	return {n, 0};
}

InsertionOrder::InsertionOrder(std::uint32_t n, unsigned depthOfLast)
    : numVertices(n), lastDepth(depthOfLast)
{
	if (n == 0) depth = 1; // at the end
	findRun();
}

std::uint32_t InsertionOrder::placeOf(std::uint32_t position, std::uint32_t n)
{
	const unsigned lastDepth = numHalvings(n);
	std::uint32_t first = 0;
	std::uint32_t last = n;
	std::uint32_t part = 0; // of those between the middles of the rounds before
	for (unsigned depth = 0; depth < lastDepth; ++depth) {
		const std::uint32_t middle = first + (last - first) / 2;
		if (position == middle) {
			const std::uint32_t numBefore = (std::uint32_t{1} << depth) - 1;
			return numBefore + (isBackward(depth) ? numBefore - part : part);
		}
		part *= 2;
		if (position > middle) {
			++part;
			first = middle + 1;
		} else {
			last = middle;
		}
	}
	const std::uint32_t numMiddles = (std::uint32_t{1} << lastDepth) - 1;
	const std::uint32_t place = position - part;
	return numMiddles + (isBackward(lastDepth) ? n - numMiddles - 1 - place : place);
}

void InsertionOrder::nextRun()
{
	if (++numRuns >> depth != 0) {
		++depth;
		numRuns = 0;
	}
	findRun();
}

void InsertionOrder::findRun()
{
	if (isAtEnd()) return;
	const std::uint32_t numParts = std::uint32_t{1} << depth;
	const std::uint32_t part = isBackward() ? numParts - 1 - numRuns : numRuns;
	first = 0;
	last = numVertices;
	for (unsigned level = depth; level-- > 0;) {
		const std::uint32_t middle = first + (last - first) / 2;
		if ((part >> level & 1U) != 0) {
			first = middle + 1;
		} else {
			last = middle;
		}
	}
	if (depth < lastDepth) { // the middle alone
		first += (last - first) / 2;
		last = first + 1;
	}
}

} // namespace TULO3D
