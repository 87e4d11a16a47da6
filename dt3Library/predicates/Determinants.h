// SPDX-License-Identifier: MIT
// The two determinants, written once for numbers of any kind.
//
// Let rows a, b, c, d be points seen from an origin, and l = x^2 + y^2 + z^2 the lift of such a row. Then
//
//     orientation   | a.x a.y a.z |      in-sphere   | a.x a.y a.z a.l |
//                   | b.x b.y b.z |                  | b.x b.y b.z b.l |
//                   | c.x c.y c.z |                  | c.x c.y c.z c.l |
//                                                    | d.x d.y d.z d.l |
//
// The orientation is negative where a, b, c run counter-clockwise seen from the origin. For positive a, b, c, d
// the in-sphere determinant is positive where the origin is outside the sphere. Both are expanded as by
// Shewchuk: 2 x 2 minors of x and y, then 3 x 3 minors of z, then the lifts. The order of operations matters: the
// bounds count the roundings of it (Bounds.h).
//
// Numbers are doubles alone or side by side in registers, double-doubles, big integers, and doubles that
// carry something along (Tracked.h). Expansions, whose types grow with their size, are in ShewchukStages.h.
#pragma once

#include "ardo_tools/Inline.h"

namespace TULO3D {

/// A point seen from the origin of a determinant.
template <typename N>
struct Row
{
	N x, y, z;
};

/// The same with its lift.
template <typename N, typename L = N>
struct SphereRow
{
	N x, y, z;
	L l;
};

template <typename N>
TULO3D_ALWAYS_INLINE auto lifted(const Row<N>& r)
{
	using L = decltype(r.x * r.x);
	return SphereRow<N, L>{r.x, r.y, r.z, r.x * r.x + r.y * r.y + r.z * r.z};
}

/// The 2 x 2 minor of x and y.
template <typename R>
TULO3D_ALWAYS_INLINE auto minorXY(const R& p, const R& q)
{
	return p.x * q.y - q.x * p.y;
}

template <typename R>
TULO3D_ALWAYS_INLINE auto orientationDeterminant(const R& a, const R& b, const R& c)
{
	return a.z * minorXY(b, c) - b.z * minorXY(a, c) + c.z * minorXY(a, b);
}

/// The determinant, and its minor |xyz| of the first three rows, which is their orientation.
template <typename N>
struct SphereDeterminant
{
	N det;
	N xyz;
};

/// The six 2 x 2 minors of x and y of four rows.
template <typename N>
struct SphereMinors
{
	N ab, bc, cd, da, ac, bd;
};

template <typename R, typename N>
TULO3D_ALWAYS_INLINE SphereDeterminant<N> sphereDeterminant(
    const R& a, const R& b, const R& c, const R& d, const SphereMinors<N>& m)
{
	const N abc = a.z * m.bc - b.z * m.ac + c.z * m.ab;
	const N bcd = b.z * m.cd - c.z * m.bd + d.z * m.bc;
	const N cda = c.z * m.da + d.z * m.ac + a.z * m.cd;
	const N dab = d.z * m.ab + a.z * m.bd + b.z * m.da;
	return {(d.l * abc - c.l * dab) + (b.l * cda - a.l * bcd), abc};
}

template <typename R>
TULO3D_ALWAYS_INLINE auto sphereDeterminant(const R& a, const R& b, const R& c, const R& d)
{
	using N = decltype(minorXY(a, b));
	return sphereDeterminant(a, b, c, d,
	    SphereMinors<N>{minorXY(a, b), minorXY(b, c), minorXY(c, d), minorXY(d, a), minorXY(a, c),
	        minorXY(b, d)});
}

} // namespace TULO3D
