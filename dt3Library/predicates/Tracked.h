// SPDX-License-Identifier: MIT
// Doubles that carry something along through a formula, so that the formula need not be written again.
#pragma once

#include "ardo_tools/Inline.h"

#include <cmath>

namespace TULO3D {

/// A value and the sum of the magnitudes of its products: of a determinant, its permanent.
struct WithMagnitude
{
	double value;
	double magnitude;
};

/// An entry of the determinant. Its magnitude is taken of the product, which is one operation less.
struct Entry
{
	double value;
};

TULO3D_ALWAYS_INLINE WithMagnitude operator*(const Entry& a, const Entry& b)
{
	const double product = a.value * b.value;
	return {product, std::abs(product)};
}
TULO3D_ALWAYS_INLINE WithMagnitude operator*(const Entry& a, const WithMagnitude& b)
{
	return {a.value * b.value, std::abs(a.value) * b.magnitude};
}
TULO3D_ALWAYS_INLINE WithMagnitude operator+(const WithMagnitude& a, const WithMagnitude& b)
{
	return {a.value + b.value, a.magnitude + b.magnitude};
}
TULO3D_ALWAYS_INLINE WithMagnitude operator-(const WithMagnitude& a, const WithMagnitude& b)
{
	return {a.value - b.value, a.magnitude + b.magnitude};
}
TULO3D_ALWAYS_INLINE WithMagnitude operator*(const WithMagnitude& a, const WithMagnitude& b)
{
	return {a.value * b.value, a.magnitude * b.magnitude};
}

/// A value and the first order of what its tails add to it (a dual number): products of two tails are
/// left out.
struct WithTail
{
	double value;
	double tail;
};

TULO3D_ALWAYS_INLINE WithTail operator+(const WithTail& a, const WithTail& b)
{
	return {a.value + b.value, a.tail + b.tail};
}
TULO3D_ALWAYS_INLINE WithTail operator-(const WithTail& a, const WithTail& b)
{
	return {a.value - b.value, a.tail - b.tail};
}
TULO3D_ALWAYS_INLINE WithTail operator*(const WithTail& a, const WithTail& b)
{
	return {a.value * b.value, a.value * b.tail + a.tail * b.value};
}

} // namespace TULO3D
