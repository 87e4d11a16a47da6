// SPDX-License-Identifier: MIT
// Exact differences of points, as numbers of more precision than doubles have.
#pragma once

#include "Expansion.h"
#include "Vec.h"
#include "predicates/DoubleDouble.h"

namespace TULO3D::shapes {

/// From `p` to `q`, times a power of two. T is TwoDoubles or Expansion.
template <typename T>
VecOf<T> preciseBetween(const double* p, const double* q, double scale)
{
	const auto difference = [&](int i) { // scaled last, as the coordinates themselves may be large
		const TwoDoubles d = twoDiff(q[i], p[i]);
		return T(TwoDoubles{scale * d.hi, scale * d.lo});
	};
	return {difference(0), difference(1), difference(2)};
}

template <typename T>
Vec rounded(const VecOf<T>& a)
{
	return {value(a.x), value(a.y), value(a.z)};
}

} // namespace TULO3D::shapes
