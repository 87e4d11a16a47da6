// SPDX-License-Identifier: MIT
// Numbers of twice the precision: a double and its rounding error, itself a double.
//
// T. J. Dekker: A floating-point technique for extending the available precision, Numerische Mathematik 18
// (1971). Needs the rounding of every single operation, so this library is built like the engine, without
// fused products and without fast-math.
#pragma once

namespace TULO3D::shapes {

struct DoubleDouble
{
	double hi = 0, lo = 0;
};

/// a + b without an error.
inline DoubleDouble twoSum(double a, double b)
{
	const double x = a + b, bVirtual = x - a, aVirtual = x - bVirtual;
	return {x, (a - aVirtual) + (b - bVirtual)};
}

/// a * b without an error, unless it overflows or its last bit underflows.
inline DoubleDouble twoProduct(double a, double b)
{
	constexpr double kSplitter = 134217729; // 2^27 + 1
	const double ca = kSplitter * a, cb = kSplitter * b;
	const double aHi = ca - (ca - a), bHi = cb - (cb - b), aLo = a - aHi, bLo = b - bHi;
	const double x = a * b;
	return {x, aLo * bLo - (((x - aHi * bHi) - aLo * bHi) - aHi * bLo)};
}

inline DoubleDouble operator+(const DoubleDouble& a, const DoubleDouble& b)
{
	const DoubleDouble hi = twoSum(a.hi, b.hi), lo = twoSum(a.lo, b.lo);
	const DoubleDouble sum = twoSum(hi.hi, hi.lo + lo.hi);
	return twoSum(sum.hi, sum.lo + lo.lo);
}
inline DoubleDouble operator-(const DoubleDouble& a, const DoubleDouble& b)
{
	return a + DoubleDouble{-b.hi, -b.lo};
}
inline DoubleDouble operator*(const DoubleDouble& a, const DoubleDouble& b)
{
	const DoubleDouble p = twoProduct(a.hi, b.hi);
	return twoSum(p.hi, p.lo + (a.hi * b.lo + a.lo * b.hi));
}

} // namespace TULO3D::shapes
