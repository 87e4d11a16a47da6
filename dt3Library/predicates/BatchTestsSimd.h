// SPDX-License-Identifier: MIT
// The first stage of the batched tests, inlined into the loops that use it: a floating-point filter on
// two or four facets at a time. Bounds.h derives the bounds.
#pragma once

#include "geometry/TetIndices.h"
#include "predicates/BatchTests.h"
#include "predicates/Bounds.h"
#include "predicates/Determinants.h"
#include "predicates/DoubleDouble.h"

#include <cstdint>

namespace TULO3D {

// The corners of facet i stand in lane i of these columns. They are the rows of kOutside, each
// turned so that a register of corners 0 1 2 3 becomes a column by swapping pairs or halves.
inline constexpr int kColumnA[4] = {1, 0, 3, 2};
inline constexpr int kColumnB[4] = {2, 3, 0, 1};
inline constexpr int kColumnC[4] = {3, 2, 1, 0};

constexpr bool columnsAreTheFacets()
{
	for (int i = 0; i < 4; ++i) {
		const int turn = placeInFacet(i, kColumnA[i]);
		if (kOutside[i][(turn + 1) % 3] != kColumnB[i]) return false;
		if (kOutside[i][(turn + 2) % 3] != kColumnC[i]) return false;
	}
	return true;
}
static_assert(columnsAreTheFacets(), "a lane would test another facet");

#if defined(__GNUC__)

// A register holds the facets of a batch side by side: all four, or the two of one half. A CPU whose
// registers are shorter than the type would be slowed down rather than helped.
typedef double Lanes2 __attribute__((vector_size(16)));
typedef double Lanes4 __attribute__((vector_size(32)));

template <typename Lanes>
struct IntegersOf
{
	typedef std::int64_t Flags __attribute__((vector_size(sizeof(Lanes)))); // all ones or all zeros
	typedef std::uint64_t Words __attribute__((vector_size(sizeof(Lanes)))); // the bits of numbers
};
template <typename Lanes>
using Flags = typename IntegersOf<Lanes>::Flags;
template <typename Lanes>
using Words = typename IntegersOf<Lanes>::Words;
using Flags2 = Flags<Lanes2>;
using Flags4 = Flags<Lanes4>;

TULO3D_ALWAYS_INLINE Lanes2 swapPairs(const Lanes2& v)
{
	return __builtin_shufflevector(v, v, 1, 0);
}

TULO3D_ALWAYS_INLINE Lanes4 swapPairs(const Lanes4& v)
{
	return __builtin_shufflevector(v, v, 1, 0, 3, 2);
}

TULO3D_ALWAYS_INLINE Lanes4 swapHalves(const Lanes4& v)
{
	return __builtin_shufflevector(v, v, 2, 3, 0, 1);
}

template <typename Lanes>
TULO3D_ALWAYS_INLINE DoubleDouble<Lanes> swapPairs(const DoubleDouble<Lanes>& v)
{
	return {swapPairs(v.hi), swapPairs(v.lo)};
}

template <typename N>
TULO3D_ALWAYS_INLINE Row<N> swapPairs(const Row<N>& r)
{
	return {swapPairs(r.x), swapPairs(r.y), swapPairs(r.z)};
}

template <typename N>
TULO3D_ALWAYS_INLINE SphereRow<N> swapPairs(const SphereRow<N>& r)
{
	return {swapPairs(static_cast<const Row<N>&>(r)), swapPairs(r.l)};
}

TULO3D_ALWAYS_INLINE Row<Lanes4> swapHalves(const Row<Lanes4>& r)
{
	return {swapHalves(r.x), swapHalves(r.y), swapHalves(r.z)};
}

TULO3D_ALWAYS_INLINE SphereRow<Lanes4> swapHalves(const SphereRow<Lanes4>& r)
{
	return {swapHalves(static_cast<const Row<Lanes4>&>(r)), swapHalves(r.l)};
}

/// At least the square roots but for their last bit, at most a sixteenth more. Halving exponent and significand as one
/// number follows the tangents of the root at the powers of 4, and they run above it. The constant is half the
/// exponent's bias.
template <typename Lanes>
TULO3D_ALWAYS_INLINE Lanes aboveRoot(const Lanes& v)
{
	return (Lanes)(((Words<Lanes>)v >> 1) + 0x1ff8000000000000);
}

/// Points side by side, by their coordinates.
template <typename Lanes>
using Points = Row<Lanes>;

TULO3D_ALWAYS_INLINE Points<Lanes2> gather(const Point3* pP, const Point3* pQ)
{
	return {Lanes2{pP->x(), pQ->x()}, Lanes2{pP->y(), pQ->y()}, Lanes2{pP->z(), pQ->z()}};
}

/// A register of pairs: x and y of two points are loaded together and sorted out afterwards.
TULO3D_ALWAYS_INLINE Points<Lanes4> gather(const Point3* const (&p)[4])
{
	const auto xyOf = [](const Point3* pP) TULO3D_INLINE_LAMBDA {
		return Lanes2{pP->x(), pP->y()};
	};
	const Lanes2 xy0 = xyOf(p[0]), xy1 = xyOf(p[1]), xy2 = xyOf(p[2]), xy3 = xyOf(p[3]);
	const Lanes4 even = __builtin_shufflevector(xy0, xy2, 0, 1, 2, 3);
	const Lanes4 odd = __builtin_shufflevector(xy1, xy3, 0, 1, 2, 3);
	const Lanes2 z01 = {p[0]->z(), p[1]->z()}, z23 = {p[2]->z(), p[3]->z()};
	return {__builtin_shufflevector(even, odd, 0, 4, 2, 6),
	    __builtin_shufflevector(even, odd, 1, 5, 3, 7),
	    __builtin_shufflevector(z01, z23, 0, 1, 2, 3)};
}

template <typename Lanes>
struct LaneVerdicts
{
	Flags<Lanes> inside, outside, positive;
};

/// A facet in each lane and a fourth point for each: four points, or their rows.
template <typename R>
struct Quad
{
	R a, b, c, d;
};

/// The facets from outside, with points beyond them: columns A, B and C of the table above.
template <typename R>
TULO3D_ALWAYS_INLINE Quad<R> facetsAnd(const R& own, const R& other, const R& beyond)
{
	return {swapPairs(own), other, swapPairs(other), beyond};
}

/// The tetrahedron itself, in each lane with another facet, from inside, and the corner opposite it.
template <typename R>
TULO3D_ALWAYS_INLINE Quad<R> facetsFromInside(const R& own, const R& other)
{
	return {other, swapPairs(own), swapPairs(other), own};
}

/// The points seen from one query point, or from one in each lane.
template <typename Lanes>
TULO3D_ALWAYS_INLINE SphereRow<Lanes> rowsOf(const Points<Lanes>& p, const Point3& query)
{
	return lifted<Lanes>({p.x - query.x(), p.y - query.y(), p.z - query.z()});
}

template <typename Lanes>
TULO3D_ALWAYS_INLINE SphereRow<Lanes> rowsOf(const Points<Lanes>& p, const Points<Lanes>& query)
{
	return lifted<Lanes>({p.x - query.x, p.y - query.y, p.z - query.z});
}

/// `map` of each of the four.
template <typename R, typename Map>
TULO3D_ALWAYS_INLINE auto mapped(const Quad<R>& q, const Map& map)
{
	return Quad<decltype(map(q.a))>{map(q.a), map(q.b), map(q.c), map(q.d)};
}

template <typename N>
TULO3D_ALWAYS_INLINE SphereDeterminant<N> determinants(const Quad<SphereRow<N>>& q)
{
	return sphereDeterminant(q.a, q.b, q.c, q.d);
}

/// Doubles with a cheap, generous bound, which nearly always decides all lanes.
template <typename Lanes>
TULO3D_ALWAYS_INLINE LaneVerdicts<Lanes> quickStage(const Quad<SphereRow<Lanes>>& q)
{
	const SphereDeterminant<Lanes> d = determinants(q);
	const Lanes sumL = q.a.l + q.b.l + q.c.l + q.d.l;
	const Lanes volume = sumL * aboveRoot(sumL);
	const Lanes bound = kQuickSphereBound * volume * sumL + kLostInQuickStage;
	return {(Flags<Lanes>)(d.det < -bound), (Flags<Lanes>)(d.det > bound),
	    (Flags<Lanes>)(d.xyz > kQuickFacetBound * volume + kLostInQuickStage)};
}

/// On which sides of the facets the query point certainly lies.
template <typename Lanes>
struct LaneSides
{
	Flags<Lanes> positive, negative;
};

template <typename Lanes>
TULO3D_ALWAYS_INLINE LaneSides<Lanes> sidesOfFacets(
    const SphereRow<Lanes>& own, const SphereRow<Lanes>& other)
{
	const Lanes xyz = orientationDeterminant(swapPairs(own), other, swapPairs(other));
	const Lanes sumL = swapPairs(own.l) + other.l + swapPairs(other.l);
	const Lanes bound = kQuickFacetBound * (sumL * aboveRoot(sumL)) + kLostInQuickStage;
	return {(Flags<Lanes>)(xyz > bound), (Flags<Lanes>)(xyz < -bound)};
}

/// A bit for each lane.
TULO3D_ALWAYS_INLINE unsigned bitsOf(const Flags2& flags)
{
	return static_cast<unsigned>((flags[0] & 1) | (flags[1] & 2));
}

/// Three sets of flags in one word, four bits each.
TULO3D_ALWAYS_INLINE unsigned packedBits(const Flags4& a, const Flags4& b, const Flags4& c)
{
	const Flags4 word = (a & Flags4{0x001, 0x002, 0x004, 0x008}) |
	    (b & Flags4{0x010, 0x020, 0x040, 0x080}) | (c & Flags4{0x100, 0x200, 0x400, 0x800});
	const Flags2 half =
	    __builtin_shufflevector(word, word, 0, 1) | __builtin_shufflevector(word, word, 2, 3);
	return static_cast<unsigned>(half[0] | half[1]);
}

TULO3D_ALWAYS_INLINE NeighbourVerdicts unpacked(const LaneVerdicts<Lanes4>& lanes)
{
	const unsigned bits = packedBits(lanes.inside, lanes.outside, lanes.positive);
	return {bits & 0xFU, bits >> 4U & 0xFU, bits >> 8U};
}

TULO3D_ALWAYS_INLINE NeighbourVerdicts unpacked(
    const LaneVerdicts<Lanes2>& low, const LaneVerdicts<Lanes2>& high)
{
	return {bitsOf(low.inside) | bitsOf(high.inside) << 2U,
	    bitsOf(low.outside) | bitsOf(high.outside) << 2U,
	    bitsOf(low.positive) | bitsOf(high.positive) << 2U};
}

// A variant of the tests holds its facets in registers of one length. It offers
//
//   compiled   calls a function that was compiled for the CPUs that have these registers; what is to run on them
//              must be inlined into it
//   decide     gathers the points, maps each group of them to rows, and calls a stage for each register
//   verdicts   the first stage of the neighbour test
//   delaunay   the first stage of the test for locally Delaunay facets
//   sides      the first stage of the facet test, which has no other

/// The first stage of a variant, alone.
template <typename Variant>
struct FirstStage
{
	static TULO3D_ALWAYS_INLINE NeighbourVerdicts verdicts(
	    const NeighbourBatch& batch, const Point3& query)
	{
		return Variant::decide(
		    batch,
		    [&query](const auto& points) TULO3D_INLINE_LAMBDA { return rowsOf(points, query); },
		    [](const auto& own, const auto& other, const auto& beyond, int /*firstFacet*/)
		        TULO3D_INLINE_LAMBDA { return quickStage(facetsAnd(own, other, beyond)); });
	}

	static TULO3D_ALWAYS_INLINE unsigned delaunay(const NeighbourBatch& batch)
	{
		const NeighbourVerdicts verdicts = Variant::decide(
		    batch, [](const auto& points) TULO3D_INLINE_LAMBDA { return points; },
		    [](const auto& own, const auto& other, const auto& opposite, int /*firstFacet*/)
		        TULO3D_INLINE_LAMBDA {
			        return quickStage(mapped(facetsFromInside(own, other),
			            [&opposite](const auto& p)
			                TULO3D_INLINE_LAMBDA { return rowsOf(p, opposite); }));
		        });
		return verdicts.outside & verdicts.positive;
	}
};

/// All four facets in one register, for AVX2.
struct FourLaneVariant : FirstStage<FourLaneVariant>
{
	static constexpr bool bAvx2 = true;

	template <typename Function>
	static TULO3D_AVX2 auto compiled(Function function)
	{
		return function();
	}

	template <typename ToRow, typename Stage>
	static TULO3D_ALWAYS_INLINE NeighbourVerdicts decide(
	    const NeighbourBatch& batch, ToRow toRow, Stage stage)
	{
		const auto own = toRow(gather(batch.corner));
		return unpacked(stage(own, swapHalves(own), toRow(gather(batch.opposite)), 0));
	}

	static TULO3D_ALWAYS_INLINE FacetSides sides(
	    const Point3* const (&corner)[4], const Point3& query)
	{
		const SphereRow<Lanes4> own = rowsOf(gather(corner), query);
		const LaneSides<Lanes4> lanes = sidesOfFacets(own, swapHalves(own));
		const unsigned bits = packedBits(lanes.positive, lanes.negative, Flags4{});
		return {bits & 0xFU, bits >> 4U};
	}
};

/// Facets 0 and 1 in one register, 2 and 3 in the other, for any CPU.
struct TwoLaneVariant : FirstStage<TwoLaneVariant>
{
	static constexpr bool bAvx2 = false;

	template <typename Function>
	static __attribute__((noinline)) auto compiled(Function function)
	{
		return function();
	}

	template <typename ToRow, typename Stage>
	static TULO3D_ALWAYS_INLINE NeighbourVerdicts decide(
	    const NeighbourBatch& batch, ToRow toRow, Stage stage)
	{
		const auto rows01 = toRow(gather(batch.corner[0], batch.corner[1]));
		const auto rows23 = toRow(gather(batch.corner[2], batch.corner[3]));
		const auto beyond01 = toRow(gather(batch.opposite[0], batch.opposite[1]));
		const auto beyond23 = toRow(gather(batch.opposite[2], batch.opposite[3]));
		return unpacked(stage(rows01, rows23, beyond01, 0), stage(rows23, rows01, beyond23, 2));
	}

	static TULO3D_ALWAYS_INLINE FacetSides sides(
	    const Point3* const (&corner)[4], const Point3& query)
	{
		const SphereRow<Lanes2> rows01 = rowsOf(gather(corner[0], corner[1]), query);
		const SphereRow<Lanes2> rows23 = rowsOf(gather(corner[2], corner[3]), query);
		const LaneSides<Lanes2> first = sidesOfFacets(rows01, rows23);
		const LaneSides<Lanes2> second = sidesOfFacets(rows23, rows01);
		return {bitsOf(first.positive) | bitsOf(second.positive) << 2U,
		    bitsOf(first.negative) | bitsOf(second.negative) << 2U};
	}
};

#else

/// Without vector types this stage decides nothing; the adaptive tests do.
struct TwoLaneVariant
{
	static constexpr bool bAvx2 = false;

	template <typename Function>
	static auto compiled(Function function)
	{
		return function();
	}
	static NeighbourVerdicts verdicts(const NeighbourBatch&, const Point3&) { return {0, 0, 0}; }
	static unsigned delaunay(const NeighbourBatch&) { return 0; }
	static FacetSides sides(const Point3* const (&)[4], const Point3&) { return {0, 0}; }
};
using FourLaneVariant = TwoLaneVariant;

#endif

/// Runs a loop that tests one batch after another, in the variant of `tests`: `loop` is given an empty object whose
/// type is that variant. The loop exists once in the sources and is compiled once for each variant, with the first
/// stage inlined: called out of line instead, it makes building a mesh up to 8 % slower.
template <typename Loop>
TULO3D_ALWAYS_INLINE void runLoop(const BatchTests& tests, const Loop& loop)
{
	if (tests.bAvx2) {
		FourLaneVariant::compiled([&loop]() TULO3D_INLINE_LAMBDA { loop(FourLaneVariant()); });
	} else {
		TwoLaneVariant::compiled([&loop]() TULO3D_INLINE_LAMBDA { loop(TwoLaneVariant()); });
	}
}

} // namespace TULO3D
