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
// the in-sphere determinant is positive where the origin is outside the sphere. The order of operations
// matters: the bounds count its roundings (Bounds.h).
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
struct SphereRow : Row<N>
{
	L l;
};

template <typename N>
TULO3D_ALWAYS_INLINE auto lifted(const Row<N>& r)
{
	using L = decltype(r.x * r.x);
	return SphereRow<N, L>{r, r.x * r.x + r.y * r.y + r.z * r.z};
}

/// An entry of each of the rows a, b, c.
template <typename N>
struct Column
{
	const N &a, &b, &c;
};

/// The 2 x 2 minor of two columns in rows b and c.
template <typename U, typename V>
TULO3D_ALWAYS_INLINE auto minorBC(const Column<U>& u, const Column<V>& v)
{
	return u.b * v.c - u.c * v.b;
}

/// The 3 x 3 determinant of three columns, expanded by row a.
template <typename U, typename W, typename M>
TULO3D_ALWAYS_INLINE M determinant3(const Column<U>& u, const Column<U>& v, const Column<W>& w,
    const M& vw, const M& uw, const M& uv)
{
	return u.a * vw - v.a * uw + w.a * uv;
}

template <typename N>
TULO3D_ALWAYS_INLINE auto orientationDeterminant(const Row<N>& a, const Row<N>& b, const Row<N>& c)
{
	const Column<N> x{a.x, b.x, c.x}, y{a.y, b.y, c.y}, z{a.z, b.z, c.z};
	return determinant3(x, y, z, minorBC(y, z), minorBC(x, z), minorBC(x, y));
}

/// The determinant, and its minor |xyz|: the orientation of rows a, b, c.
template <typename N>
struct SphereDeterminant
{
	N det;
	N xyz;
};

/// Expanded by row d: in a search this is the corner that is least often in the cache, and most of the work
/// does not wait for it.
template <typename N, typename L>
TULO3D_ALWAYS_INLINE SphereDeterminant<L> sphereDeterminant(const SphereRow<N, L>& a,
    const SphereRow<N, L>& b, const SphereRow<N, L>& c, const SphereRow<N, L>& d)
{
	const Column<N> x{a.x, b.x, c.x}, y{a.y, b.y, c.y}, z{a.z, b.z, c.z};
	const Column<L> l{a.l, b.l, c.l};
	const L xy = minorBC(x, y), xz = minorBC(x, z), yz = minorBC(y, z);
	const L xl = minorBC(x, l), yl = minorBC(y, l), zl = minorBC(z, l);
	const L xyz = determinant3(x, y, z, yz, xz, xy), xyl = determinant3(x, y, l, yl, xl, xy);
	const L xzl = determinant3(x, z, l, zl, xl, xz), yzl = determinant3(y, z, l, zl, yl, yz);
	return {(d.l * xyz - d.z * xyl) + (d.y * xzl - d.x * yzl), xyz};
}

} // namespace TULO3D
