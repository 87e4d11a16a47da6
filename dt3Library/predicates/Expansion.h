// SPDX-License-Identifier: MIT
// Exact sums of doubles: a number too long for one double, kept as a few that do not overlap.
//
// J. R. Shewchuk: Adaptive Precision Floating-Point Arithmetic and Fast Robust Geometric
// Predicates, Discrete & Computational Geometry 18, 1997; names as there. The components of an
// expansion grow in magnitude, so the last one has the sign of the whole.
#pragma once

#include "predicates/Determinants.h"
#include "predicates/ErrorFree.h"

namespace TULO3D {

/// e + f into h, which holds eLength + fLength components; zeros are dropped. Returns the length.
int fastExpansionSumZeroelim(int eLength, const double* e, int fLength, const double* f, double* h);

/// e * b into h, which holds 2 * eLength components; zeros are dropped. Returns the length.
int scaleExpansionZeroelim(double splitter, int eLength, const double* e, double b, double* h);

/// An exact number of at most N components, on the stack.
template <int N>
class Expansion
{
public:
	/// The exact value of a rounded result and its tail.
	static Expansion of(const TwoDoubles& value)
	{
		static_assert(N >= 2, "two components need room for two");
		Expansion e;
		e.length = 2;
		e.component[0] = value.lo;
		e.component[1] = value.hi;
		return e;
	}

	/// The component of the largest magnitude, which has the sign of the whole.
	double mostSignificant() const { return component[length - 1]; }

	/// The plain sum of the components: the value, nearly.
	double estimate() const
	{
		double sum = component[0];
		for (int i = 1; i < length; ++i) sum += component[i];
		return sum;
	}

	Expansion operator-() const
	{
		Expansion e;
		e.length = length;
		for (int i = 0; i < length; ++i) e.component[i] = -component[i];
		return e;
	}

	int length;
	double component[N];
};

template <int N, int M>
Expansion<N + M> sum(const Expansion<N>& e, const Expansion<M>& f)
{
	Expansion<N + M> h;
	h.length = fastExpansionSumZeroelim(e.length, e.component, f.length, f.component, h.component);
	return h;
}

template <int N>
Expansion<2 * N> scale(double splitter, const Expansion<N>& e, double b)
{
	Expansion<2 * N> h;
	h.length = scaleExpansionZeroelim(splitter, e.length, e.component, b, h.component);
	return h;
}

/// The 2 x 2 minor of x and y.
inline Expansion<4> minorXY(double splitter, const Row<double>& p, const Row<double>& q)
{
	return sum(Expansion<2>::of(twoProduct(splitter, p.x, q.y)),
	    -Expansion<2>::of(twoProduct(splitter, q.x, p.y)));
}

/// az * bc - bz * ac + cz * ab: a 3 x 3 minor from its 2 x 2 ones.
inline Expansion<24> minorXYZ(double splitter, double az, const Expansion<4>& bc, double bz,
    const Expansion<4>& ac, double cz, const Expansion<4>& ab)
{
	return sum(sum(scale(splitter, bc, az), scale(splitter, ac, -bz)), scale(splitter, ab, cz));
}

/// e * (x^2 + y^2 + z^2).
template <int N>
Expansion<12 * N> timesLift(double splitter, const Expansion<N>& e, const Row<double>& r)
{
	const auto timesSquare = [&](double v) { return scale(splitter, scale(splitter, e, v), v); };
	return sum(sum(timesSquare(r.x), timesSquare(r.y)), timesSquare(r.z));
}

/// e * (hi + lo), where hi + lo is an exact difference of two coordinates.
template <int N>
Expansion<4 * N> scaleByPair(double splitter, const Expansion<N>& e, const TwoDoubles& b)
{
	return sum(scale(splitter, e, b.lo), scale(splitter, e, b.hi));
}

} // namespace TULO3D
