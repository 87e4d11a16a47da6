// SPDX-License-Identifier: MIT
// The in-sphere tests of a cavity, four at a time: one point against the neighbours of one
// tetrahedron, which share its corners.
#pragma once

#include "Point3.h"

#include <cstdint>

namespace TULO3D {

/// A tetrahedron and, for each of its facets, the corner of the neighbour that lies beyond it. Where
/// there is nothing to test, any point may stand in.
struct NeighbourBatch
{
	const Point3* corner[4];
	const Point3* opposite[4];
};

/// What is certain about the query point and facet i. A flag that is set is the exact sign; where
/// neither kInside nor kOutside is, the adaptive test has to decide.
struct NeighbourVerdicts
{
	static constexpr std::int64_t kInside = 1;   ///< strictly inside the sphere of neighbour i
	static constexpr std::int64_t kOutside = 2;  ///< strictly outside
	static constexpr std::int64_t kPositive = 4; ///< strictly on the tetrahedron's side of facet i

	bool isInside(int i) const { return (flags[i] & kInside) != 0; }
	bool isOutside(int i) const { return (flags[i] & kOutside) != 0; }
	bool isPositive(int i) const { return (flags[i] & kPositive) != 0; }

	alignas(32) std::int64_t flags[4];
};

/// A variant of the test. Variants may differ in what they leave undecided, never in a sign.
using NeighbourTest = void (*)(
    const NeighbourBatch& batch, const Point3& query, NeighbourVerdicts& verdicts);

/// For any CPU.
void testNeighboursPortable(
    const NeighbourBatch& batch, const Point3& query, NeighbourVerdicts& verdicts);

/// With four doubles to a register; null where the CPU or the compiler has none such.
NeighbourTest neighbourTestAvx2();

/// The fastest variant for this CPU.
NeighbourTest bestNeighbourTest();

} // namespace TULO3D
