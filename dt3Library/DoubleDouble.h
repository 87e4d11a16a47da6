// SPDX-License-Identifier: MIT
// Numbers of about 106 bits, as the unevaluated sum of two doubles.
//
// M. Joldes, J.-M. Muller, V. Popescu: Tight and Rigorous Error Bounds for Basic Building Blocks of
// Double-Word Arithmetic, ACM Transactions on Mathematical Software 44, 2017. With u = 2^-53, a
// product is off by at most 7 u^2 of itself. The sum is the short one; it is off by at most
// 4 u^2 (|a| + |b|): the two low words are at most u of their numbers, and each of the two
// roundings that are not made up for acts on no more than twice that.
#pragma once

#include "Inline.h"

namespace TULO3D {

/// T is double, or a register of doubles that are computed with side by side.
template <typename T>
struct DoubleDouble
{
	T hi;
	T lo;
};

template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> fastTwoSumOf(const T& a, const T& b)
{
	const T x = a + b;
	return {x, b - (x - a)};
}

template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> twoSumOf(const T& a, const T& b)
{
	const T x = a + b;
	const T bVirtual = x - a;
	return {x, (a - (x - bVirtual)) + (b - bVirtual)};
}

/// a - b, exact.
template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> differenceOf(const T& a, const T& b)
{
	const T x = a - b;
	const T bVirtual = a - x;
	return {x, (a - (x + bVirtual)) + (bVirtual - b)};
}

/// a * b, exact; by splitting, because the CPU may have no fused operation.
template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> productOf(const T& a, const T& b)
{
	constexpr double splitter = 134217729.0; // 2^27 + 1
	const T aScaled = splitter * a;
	const T bScaled = splitter * b;
	const T aHi = aScaled - (aScaled - a), aLo = a - aHi;
	const T bHi = bScaled - (bScaled - b), bLo = b - bHi;
	const T x = a * b;
	return {x, aLo * bLo - (((x - aHi * bHi) - aLo * bHi) - aHi * bLo)};
}

template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> operator+(const DoubleDouble<T>& a, const DoubleDouble<T>& b)
{
	const DoubleDouble<T> s = twoSumOf(a.hi, b.hi);
	return fastTwoSumOf(s.hi, s.lo + (a.lo + b.lo));
}

template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> operator-(const DoubleDouble<T>& a, const DoubleDouble<T>& b)
{
	return a + DoubleDouble<T>{-b.hi, -b.lo};
}

template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> operator*(const DoubleDouble<T>& a, const DoubleDouble<T>& b)
{
	const DoubleDouble<T> p = productOf(a.hi, b.hi);
	return fastTwoSumOf(p.hi, p.lo + (a.hi * b.lo + a.lo * b.hi));
}

} // namespace TULO3D
