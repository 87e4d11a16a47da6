// SPDX-License-Identifier: MIT
// The constants of the predicates: what the machine has, all error bounds, and the limits of the coordinates.
//
// u = epsilon = 2^-53 is the relative error of one rounding. A stage computes a determinant and its bound, a
// constant times a magnitude; where the determinant is beyond its bound, its sign is certain. Magnitudes:
//
//   P      permanent: the determinant with every product taken by its magnitude and every sign +
//   S      the sum of x^2 + y^2 + z^2 over the rows
//
//   constant                  value              magnitude       the error that it bounds                 from
//   o3derrboundA              7 u + 56 u^2       P               orientation in doubles                   [S]
//   o3derrboundB              3 u + 28 u^2       P               orientation in rounded differences       [S]
//   o3derrboundC              26 u^2 + 288 u^3   P               the same with the tails' first order     [S]
//   isperrboundA              16 u + 224 u^2     P               in-sphere in doubles                     [S] B1
//   isperrboundB              5 u + 72 u^2       P               in-sphere in rounded differences         [S]
//   isperrboundC              71 u^2 + 1408 u^3  P               the same with the tails' first order     [S]
//   resulterrbound            3 u + 8 u^2        |det|           the estimate of B, as a part of C        [S]
//   kFacetBound               9 u                P               orientation in doubles, batched          B1
//   kSphereBound              18 u               P               in-sphere in doubles, batched            B1
//   kQuickFacetBound          16 u               S^(3/2)         orientation in doubles, first stage      B2
//   kQuickSphereBound         32 u               S^(5/2)         in-sphere in doubles, first stage        B2
//   kSphereBoundDoubleDouble  2^-99              P               in-sphere in double-doubles              B3
//   kLostInOrient3d           1e-244             added           underflow, beside o3derrboundA           B4
//   kLostInInsphere           1e-122             added           underflow, beside isperrboundA           B4
//   kLostInDoubleDoubles      1e-118             added           underflow, beside the double-doubles     B4
//   kLostInQuickStage         1e-300             added           underflow, beside the quick bounds       B4
//
// [S] J. R. Shewchuk: Adaptive Precision Floating-Point Arithmetic and Fast Robust Geometric Predicates,
// Discrete & Computational Geometry 18, 1997. The names are his; those of two dimensions (ccw, icc) come
// with them and are not used. The bounds hold for any formula that rounds no product more often than his.
//
// B1. In doubles. A difference of coordinates is rounded once. A 2 x 2 minor adds a product and a
// difference, a 3 x 3 minor a factor, a product and two sums: with its first differences that is
// 2 + 1 + 1 + 1 + 1 + 2 = 8 u of each of the 6 products of |xyz|. A lift carries two rounded differences, a square and
// two sums, 5 u; it is a factor of one more product, and two sums follow: 8 + 5 + 1 + 2 = 16 u of each of the
// 24 products of the in-sphere determinant. 9 u and 18 u leave room for the second order and for the
// rounding of the bound itself.
//
// B2. A permanent costs as much as its determinant; S is there already, as the sum of the lifts. P is at most the
// product of the column sums of magnitudes, which multiplies out to P and more. A column sum of n magnitudes is at
// most the root of n times its sum of squares, by Cauchy and Schwarz, and the product of the three sums
// of squares at most (S / 3)^3, that of their means. So the three column sums of x, y, z over four rows multiply
// to at most 4^(3/2) * (S / 3)^(3/2) < 1.54 * S^(3/2), and with that of the lifts P is less than 1.54 * S^(5/2): 18 u
// becomes 28 u, and 32 u leaves room for the rounding of S and its powers, and of the root. Over three rows the factor
// is 3^(3/2) / 3^(3/2) = 1, and S over the three is at most that over four: 9 u, and 16 u. What these
// bounds decide the sharper ones decide as well. They are far from P where some rows are much shorter than others.
//
// B3. In double-doubles (DoubleDouble.h) the differences are exact. A lift costs 7 + 2 * 4 u^2, a 2 x 2
// minor 7 + 4, a 3 x 3 minor 7 + 2 * 4, the last line 7 + 2 * 4: 56 u^2 of each product, and 2^-99 = 128 u^2 is
// more than twice as much.
//
// B4. A product that underflows loses less than 2^-1022, since a host may have the CPU flush denormal numbers to
// zero, times the factors that multiply it afterwards. Differences are at most 2e60. In the orientation
// there are some 16 products, with one more factor each; in the in-sphere determinant less than 256, with
// three. In the first batched stage, 1e-300 is what a determinant loses whose points are all nearer than
// 1; where they are not, the loss is hidden by a bound that grows with the third or fifth power of their
// distances. In double-doubles there are some 65 products and sums, each of up to 30 operations that may lose as much:
// 2000 times 2^-1022 with three factors, in up to three minors, is less than 1e-122, and 1e-118 leaves room. It is
// needed only where tiny coordinates meet large ones: kLeastSafe keeps underflow away from all other bounds.
#pragma once

namespace TULO3D {

constexpr double kFacetBound = 9.0 * 0x1p-53;
constexpr double kSphereBound = 18.0 * 0x1p-53;
constexpr double kQuickFacetBound = 16.0 * 0x1p-53;
constexpr double kQuickSphereBound = 32.0 * 0x1p-53;
constexpr double kSphereBoundDoubleDouble = 0x1p-99;

constexpr double kLostInOrient3d = 1e-244;
constexpr double kLostInInsphere = 1e-122;
constexpr double kLostInDoubleDoubles = 1e-118;
constexpr double kLostInQuickStage = 1e-300;

/// Nonzero coordinates from here on: no term of a test underflows.
constexpr double kLeastSafe = 1e-45;
/// Magnitudes up to here: nothing overflows. A term has five factors of at most 2e60, and no determinant and no
/// bound is larger than a thousand such terms, below 1e305.
constexpr double kMaxCoordinate = 1e60;

/// The constants of Shewchuk's analysis, which every stage of his is given.
struct MachineConstants
{
	/// Finds epsilon and splitter by computing, and derives the bounds. Every object gets the same values.
	MachineConstants();

	double splitter; ///< cuts a double into two halves of at most 26 bits
	double epsilon;  ///< half the distance from 1 to the next double
	double resulterrbound;
	double ccwerrboundA, ccwerrboundB, ccwerrboundC;
	double o3derrboundA, o3derrboundB, o3derrboundC;
	double iccerrboundA, iccerrboundB, iccerrboundC;
	double isperrboundA, isperrboundB, isperrboundC;
};

} // namespace TULO3D
