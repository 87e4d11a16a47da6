// SPDX-License-Identifier: MIT
// Numbers of about 106 bits, as the unevaluated sum of two doubles.
//
// M. Joldes, J.-M. Muller, V. Popescu: Tight and Rigorous Error Bounds for Basic Building Blocks of
// Double-Word Arithmetic, ACM Transactions on Mathematical Software 44, 2017. With u = 2^-53, a
// product is off by at most 7 u^2 of itself. The sum is the short one; it is off by at most
// 4 u^2 (|a| + |b|): the two low words are at most u of their numbers, and each of the two
// roundings that are not made up for acts on no more than twice that.
#pragma once

#include "predicates/ErrorFree.h"

namespace TULO3D {

template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> operator+(const DoubleDouble<T>& a, const DoubleDouble<T>& b)
{
	const DoubleDouble<T> s = twoSum(a.hi, b.hi);
	return fastTwoSum(s.hi, s.lo + (a.lo + b.lo));
}

template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> operator-(const DoubleDouble<T>& a, const DoubleDouble<T>& b)
{
	return a + DoubleDouble<T>{-b.hi, -b.lo};
}

template <typename T>
TULO3D_ALWAYS_INLINE DoubleDouble<T> operator*(const DoubleDouble<T>& a, const DoubleDouble<T>& b)
{
	const DoubleDouble<T> p = twoProduct(kSplitter, a.hi, b.hi);
	return fastTwoSum(p.hi, p.lo + (a.hi * b.lo + a.lo * b.hi));
}

} // namespace TULO3D
