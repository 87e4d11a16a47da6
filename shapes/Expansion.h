// SPDX-License-Identifier: MIT
// Exact numbers: sums of doubles that do not overlap, as long as need be.
//
// J. R. Shewchuk: Adaptive Precision Floating-Point Arithmetic and Fast Robust Geometric Predicates,
// Discrete & Computational Geometry 18, 1997.
#pragma once

#include "predicates/DoubleDouble.h"

#include <cstddef>
#include <vector>

namespace TULO3D::shapes {

/// Exact unless a product overflows, or underflows in its last bit. Slower than the predicates' expansions, but of any
/// length, and with operators, as the vectors need them.
class Expansion
{
public:
	Expansion() = default;
	explicit Expansion(const TwoDoubles& x)
	{
		add(x.lo);
		add(x.hi);
	}

	/// Shewchuk's Grow-Expansion, which drops zeros.
	void add(double x)
	{
		std::size_t kept = 0;
		for (const double component : vComponents) {
			const TwoDoubles sum = twoSum(x, component);
			if (sum.lo != 0) vComponents[kept++] = sum.lo;
			x = sum.hi;
		}
		vComponents.resize(kept);
		if (x != 0) vComponents.push_back(x);
	}
	/// The smallest first.
	const std::vector<double>& components() const { return vComponents; }
	bool isZero() const { return vComponents.empty(); }

private:
	std::vector<double> vComponents;
};

inline Expansion operator+(Expansion a, const Expansion& b)
{
	for (const double x : b.components()) a.add(x);
	return a;
}
inline Expansion operator-(Expansion a, const Expansion& b)
{
	for (const double x : b.components()) a.add(-x);
	return a;
}
inline Expansion operator*(const Expansion& a, const Expansion& b)
{
	Expansion product;
	for (const double x : a.components()) {
		for (const double y : b.components()) {
			const TwoDoubles p = twoProduct(kSplitter, x, y);
			product.add(p.lo);
			product.add(p.hi);
		}
	}
	return product;
}

/// The value, rounded.
inline double value(const Expansion& a)
{
	double sum = 0;
	for (const double x : a.components()) sum += x;
	return sum;
}
inline double value(const TwoDoubles& a)
{
	return a.hi;
}

} // namespace TULO3D::shapes
