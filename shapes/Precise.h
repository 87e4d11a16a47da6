// SPDX-License-Identifier: MIT
// Exact differences of points, as numbers of more precision than doubles have.
#pragma once

#include "DoubleDouble.h"
#include "Expansion.h"
#include "Vec.h"

namespace TULO3D::shapes {

/// From `p` to `q`, times a power of two. T is DoubleDouble or Expansion.
template <typename T>
VecOf<T> preciseBetween(const double* p, const double* q, double scale)
{
	const auto difference = [&](int i) { // scaled last, as the coordinates themselves may be large
		const DoubleDouble d = twoSum(q[i], -p[i]);
		return T(DoubleDouble{scale * d.hi, scale * d.lo});
	};
	return {difference(0), difference(1), difference(2)};
}

template <typename T>
Vec rounded(const VecOf<T>& a)
{
	return {value(a.x), value(a.y), value(a.z)};
}

} // namespace TULO3D::shapes
