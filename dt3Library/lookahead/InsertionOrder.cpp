// SPDX-License-Identifier: MIT
// The order in which the vertices of a batch enter the mesh.
#include "lookahead/InsertionOrder.h"

#include <cmath>

namespace TULO3D {

InsertionOrder::InsertionOrder(std::uint32_t n) : numVertices(n)
{
	// Runs of seven to sixteen vertices are left between neighbouring middles for the last round.
	const double halvings = std::ceil(std::log(static_cast<double>(n)) / std::log(2.0));
	if (halvings > 4.0) lastDepth = static_cast<unsigned>(halvings - 4.0);
	if (n == 0) depth = 1; // at the end
	findRun();
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
