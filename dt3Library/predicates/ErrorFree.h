// SPDX-License-Identifier: MIT
// Sums, differences and products of two numbers without an error: the rounded result, and what the
// rounding lost. All exact arithmetic here is made of these few steps.
//
// J. R. Shewchuk: Adaptive Precision Floating-Point Arithmetic and Fast Robust Geometric
// Predicates, Discrete & Computational Geometry 18, 1997; names as there.
#pragma once

#include "ardo_tools/Inline.h"

#include <cfloat>

// Nor may a part of fast-math be on: sums in another order have no tails, and numbers that are
// taken to be finite hide those that are not. The build switches off what has no macro.
#if defined(__FAST_MATH__) || defined(__ASSOCIATIVE_MATH__) || \
    (defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__) || \
    (defined(_MSC_VER) && defined(_M_FP_FAST))
#  error "Exact arithmetic needs the rounding of every single operation: build without fast-math."
#endif

namespace TULO3D {

static_assert(FLT_RADIX == 2 && DBL_MANT_DIG == 53, "the error bounds are those of IEEE doubles");
static_assert(FLT_EVAL_METHOD == 0, "intermediate results must be rounded to double");

/// A rounded result and what the rounding lost: together they are exact, or nearly so where a number
/// is computed on as such a pair. T is double, or a register of doubles side by side.
template <typename T>
struct DoubleDouble
{
	T hi;
	T lo;
};
using TwoDoubles = DoubleDouble<double>;

/// a + b, provided that |a| >= |b|.
template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> fastTwoSum(const T& a, const T& b)
{
	const T x = a + b;
	const T bVirtual = x - a;
	return {x, b - bVirtual};
}

template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> twoSum(const T& a, const T& b)
{
	const T x = a + b;
	const T bVirtual = x - a;
	const T aVirtual = x - bVirtual;
	return {x, (a - aVirtual) + (b - bVirtual)};
}

template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> twoDiff(const T& a, const T& b)
{
	const T x = a - b;
	const T bVirtual = a - x;
	const T aVirtual = x + bVirtual;
	return {x, (a - aVirtual) + (bVirtual - b)};
}

/// 2^27 + 1, which cuts a double in the middle.
constexpr double kSplitter = 134217729.0;

/// Cuts a double into two halves of at most 26 bits each.
template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> split(double splitter, const T& a)
{
	const T c = splitter * a;
	const T big = c - a;
	const T hi = c - big;
	return {hi, a - hi};
}

/// a * b, with b already cut; by halves, because the CPU may have no fused operation.
template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> twoProductPresplit(
    double splitter, const T& a, const T& b, const DoubleDouble<T>& bCut)
{
	const T x = a * b;
	const DoubleDouble<T> aCut = split(splitter, a);
	const T err1 = x - (aCut.hi * bCut.hi);
	const T err2 = err1 - (aCut.lo * bCut.hi);
	const T err3 = err2 - (aCut.hi * bCut.lo);
	return {x, (aCut.lo * bCut.lo) - err3};
}

template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> twoProduct(double splitter, const T& a, const T& b)
{
	return twoProductPresplit(splitter, a, b, split(splitter, b));
}

} // namespace TULO3D
