// SPDX-License-Identifier: MIT
// The in-sphere determinant and the bounds of its errors, for numbers of any kind.
//
// Seen from the query point, let a, b, c be three corners of a positive tetrahedron and o the fourth
// one; each row is (x, y, z, l) with l = x^2 + y^2 + z^2. Then
//
//     det = o.l * |xyz| - o.z * |xyl| + o.y * |xzl| - o.x * |yzl|
//
// with the 3 x 3 minors of a, b, c is positive outside the sphere and negative inside.
//
// The bound in doubles. Let u = 2^-53. A difference of coordinates is rounded once; a lift carries
// two such roundings, that of a square and those of two sums, 5 u. A product of the determinant is
// made of three differences and a lift, 8 u; a 2 x 2 minor adds a product and a difference, a 3 x 3
// minor a product and two sums, the last line a product and three sums, 9 u. So each of the 24
// products is off by at most 17 u of its magnitude, to first order. All of them together are at most
// the product of the four column sums of magnitudes, since that multiplies out to them and more.
// 18 u leaves room for the second order and for the rounding of the bound itself. Likewise 8 u for
// |xyz|, and 9 u.
//
// The quick bound. Let S be the sum of the four lifts, x(i)^2 + y(i)^2 + z(i)^2. A column sum of n
// magnitudes is at most the root of n times its sum of squares, by Cauchy and Schwarz, and the
// product of the three sums of squares at most (S / 3)^3, that of their means. So the three column
// sums of magnitudes multiply to at most 4^(3/2) * (S / 3)^(3/2) < 1.54 * S^(3/2), all four to less
// than 1.54 * S^(5/2), and 18 u becomes 28 u: 32 u leaves room for the rounding of S and its powers, and of the
// root.
// For |xyz|, over three rows, the factor is 3^(3/2) / 3^(3/2) = 1, and S over the three is at most
// that over four: 9 u, and 16 u. The bound needs no magnitudes, and what it decides the sharper ones
// decide as well.
//
// The bound in double-doubles. The differences are exact. A lift costs 7 + 2 * 4 u^2, a 2 x 2 minor
// 7 + 4, a 3 x 3 minor 7 + 2 * 4, the last line 7 + 3 * 4: 60 u^2 of each product, and 128 u^2 =
// 2^-99 is twice as much.
//
// Nothing overflows for coordinates up to 1e60. Products underflow where some are nonzero and below
// 1e-45: then kLostInQuickStage is what that can take from a determinant whose points are all nearer
// than 1; where they are not, it is hidden by the bound, which grows with the third or fifth power of
// their distances. The other bounds have no such allowance, and are not used then.
#pragma once

#include "ardo_tools/Inline.h"
#include "predicates/DoubleDouble.h"

namespace TULO3D {

constexpr double kSphereBound = 18.0 * 0x1p-53;
constexpr double kQuickSphereBound = 32.0 * 0x1p-53;
constexpr double kLostInQuickStage = 1e-300;
constexpr double kQuickFacetBound = 16.0 * 0x1p-53;
constexpr double kFacetBound = 9.0 * 0x1p-53;
constexpr double kSphereBoundDoubleDouble = 0x1p-99;

/// A corner seen from the query point.
template <typename N>
struct SphereRow
{
	N x, y, z, l;
};

template <typename N>
TULO3D_ALWAYS_INLINE SphereRow<N> sphereRow(const N& x, const N& y, const N& z)
{
	return {x, y, z, x * x + y * y + z * z};
}

/// The determinant, and its minor |xyz|.
template <typename N>
struct SphereDeterminant
{
	N det;
	N xyz;
};

template <typename N>
TULO3D_ALWAYS_INLINE SphereDeterminant<N> sphereDeterminant(
    const SphereRow<N>& a, const SphereRow<N>& b, const SphereRow<N>& c, const SphereRow<N>& o)
{
	const N xy = b.x * c.y - c.x * b.y;
	const N xz = b.x * c.z - c.x * b.z;
	const N yz = b.y * c.z - c.y * b.z;
	const N xl = b.x * c.l - c.x * b.l;
	const N yl = b.y * c.l - c.y * b.l;
	const N zl = b.z * c.l - c.z * b.l;

	const N xyz = a.x * yz - a.y * xz + a.z * xy;
	const N xyl = a.x * yl - a.y * xl + a.l * xy;
	const N xzl = a.x * zl - a.z * xl + a.l * xz;
	const N yzl = a.y * zl - a.z * yl + a.l * yz;
	return {(o.l * xyz - o.z * xyl) + (o.y * xzl - o.x * yzl), xyz};
}

} // namespace TULO3D
