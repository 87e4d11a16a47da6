// SPDX-License-Identifier: MIT
// The predicates in batches of four (SIMD): one query point against the four facets of a tetrahedron, or
// against the circumspheres of its four neighbours, which share its corners.
#pragma once

#include "Point3.h"

namespace TULO3D {

class ArdoTest3;
class Tet3;

/// A tetrahedron and, for each of its facets, the corner of the neighbour that lies beyond it. Where
/// there is nothing to test, any point may stand in.
struct NeighbourBatch
{
	const Point3* corner[4];
	Point3* opposite[4];
};

/// What the test has decided, one bit for each facet. A set bit is the exact sign (T1); where neither
/// `inside` nor `outside` is set, the adaptive test has to decide.
struct NeighbourVerdicts
{
	unsigned inside;   ///< the query point lies strictly inside the sphere of the neighbour
	unsigned outside;  ///< on the sphere or outside of it
	unsigned positive; ///< strictly on the tetrahedron's own side of the facet
};

/// A variant of the test. Variants may differ in what they leave undecided, never in a sign (T7). Stages end once
/// the facets `wanted` are decided: a stand-in would be no reason to go on.
using NeighbourTest = NeighbourVerdicts (*)(
    const NeighbourBatch& batch, const Point3& query, unsigned wanted);

/// On which sides of a tetrahedron's facets a point lies, one bit for each facet; exact where set.
/// Where both are clear it is in the plane of the facet, or too close to tell.
struct FacetSides
{
	unsigned positive; ///< strictly on the tetrahedron's own side
	unsigned negative; ///< strictly beyond the facet
};

using FacetTest = FacetSides (*)(const Point3* const (&corner)[4], const Point3& query);

/// The facets, one bit for each, that are certainly locally Delaunay: the opposite corner lies strictly
/// beyond the facet, and not inside the sphere of the tetrahedron.
using DelaunayTest = unsigned (*)(const NeighbourBatch& batch);

/// True when a vertex is in conflict with a tetrahedron; by all stages.
using ConflictTest = bool (*)(const ArdoTest3& predicates, const Tet3& tet, const Point3& vtx);

/// The tests of one variant.
struct BatchTests
{
	/// The stages after the first, which is inlined in loops; these would cost loops registers.
	NeighbourTest neighbours;
	FacetTest facets;
	DelaunayTest delaunay; ///< likewise
	ConflictTest conflict; ///< for what they leave undecided
	bool bAvx2;            ///< which copy runLoop runs of a loop with an inlined first stage
	/// Replace these once a nonzero coordinate below kLeastSafe is stored (T5): they compute at a scale where no
	/// product underflows, or decide nothing. Null in themselves.
	const BatchTests* pForTiny;
	/// Where vertices do not come in the order of their ranks: a vertex on a sphere is in conflict or not by the
	/// ranks (RankRule.h), which `neighbours` therefore leaves undecided. Null in themselves.
	const BatchTests* pByRank;
};

/// For any CPU.
extern const BatchTests kPortableTests;

/// For AVX2, with four doubles to a register; null where the CPU or the compiler does not support it.
const BatchTests* avx2Tests();

/// The fastest variant for this CPU.
const BatchTests& bestTests();

} // namespace TULO3D
