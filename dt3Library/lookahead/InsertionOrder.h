// SPDX-License-Identifier: MIT
// The order in which the vertices of a batch enter the mesh.
#pragma once

#include <cstdint>

namespace TULO3D {

/// Goes through the positions in a list of vertices that follow one another along a curve, in stages of
/// growing density: the middle of the list, the middles of its halves, and so on; at last the short
/// runs that are left. The first stage goes backwards, and so does every second one.
///
/// Along the curve each walk is short; the growing density keeps the mesh balanced meanwhile. The order
/// is computed as it goes: a list of it would be there as long as the mesh grows.
class InsertionOrder
{
public:
	/// Of `n` vertices.
	explicit InsertionOrder(std::uint32_t n);

	bool isAtEnd() const { return depth > lastDepth; }
	/// The position that comes next, unless at the end.
	std::uint32_t operator*() const { return isBackward() ? last - 1 : first; }
	InsertionOrder& operator++()
	{
		if (isBackward()) {
			--last;
		} else {
			++first;
		}
		if (first == last) nextRun();
		return *this;
	}

private:
	bool isBackward() const { return depth % 2 == 0; }
	/// The next run of this stage, or the first one of the next stage.
	void nextRun();
	void findRun();

	std::uint32_t numVertices;
	unsigned depth = 0;        // of the stage: how often the list has been halved
	unsigned lastDepth = 0;    // where no middle is taken, but all that is left
	std::uint32_t numRuns = 0; // in this stage up to now
	std::uint32_t first = 0;   // the run [first, last)
	std::uint32_t last = 0;
};

} // namespace TULO3D
