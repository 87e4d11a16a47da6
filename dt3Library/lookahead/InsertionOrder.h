// SPDX-License-Identifier: MIT
// The order in which the vertices of a batch enter the mesh.
#pragma once

#include <cstdint>

namespace TULO3D {

/// Iterates over the positions in a list of vertices in curve order, in rounds of growing density: the
/// middle of the list, the middles of its halves, and so on (binary subdivision); the last round takes
/// the short runs that are left. The first round goes backwards, and so does every second one.
///
/// This is a deterministic variant of BRIO (N. Amenta, S. Choi, G. Rote: Incremental Constructions con
/// BRIO, Symposium on Computational Geometry, 2003): within a round, the curve keeps each walk short; the
/// rounds spread the vertices evenly, which keeps the stars small while the mesh grows. The order is
/// computed on the fly: a stored one would occupy memory until the batch is inserted.
class InsertionOrder
{
public:
	/// Of `n` vertices.
	explicit InsertionOrder(std::uint32_t n);

	/// Another order: one round, from the last vertex to the first.
	static InsertionOrder lastToFirst(std::uint32_t n);

	/// After how many others a position of `n` vertices comes.
	static std::uint32_t placeOf(std::uint32_t position, std::uint32_t n);

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
	InsertionOrder(std::uint32_t n, unsigned depthOfLast);
	static bool isBackward(unsigned depth) { return depth % 2 == 0; }
	bool isBackward() const { return isBackward(depth); }
	/// The next run of this round, or the first one of the next round.
	void nextRun();
	void findRun();

	std::uint32_t numVertices;
	unsigned depth = 0;        // of the round: how often the list has been halved
	unsigned lastDepth = 0;    // of the round that takes the remaining runs
	std::uint32_t numRuns = 0; // in this round up to now
	std::uint32_t first = 0;   // the run [first, last)
	std::uint32_t last = 0;
};

} // namespace TULO3D
