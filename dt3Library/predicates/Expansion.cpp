// SPDX-License-Identifier: MIT
// Adding and scaling expansions.
#include "predicates/Expansion.h"

namespace TULO3D {

int fastExpansionSumZeroelim(int eLength, const double* e, int fLength, const double* f, double* h)
{
	int ei = 0;
	int fi = 0;
	int hLength = 0;

	// The next component of e and f by magnitude, smallest first.
	const auto takeSmaller = [&]() {
		if (fi >= fLength) return e[ei++];
		if (ei >= eLength) return f[fi++];
		return ((f[fi] > e[ei]) == (f[fi] > -e[ei])) ? e[ei++] : f[fi++];
	};
	const auto store = [&](double tail) {
		if (tail != 0.0) h[hLength++] = tail;
	};

	double q = takeSmaller();
	if (ei < eLength && fi < fLength) {
		const TwoDoubles s = fastTwoSum(takeSmaller(), q);
		q = s.hi;
		store(s.lo);
	}
	while (ei < eLength || fi < fLength) {
		const TwoDoubles s = twoSum(q, takeSmaller());
		q = s.hi;
		store(s.lo);
	}
	if (q != 0.0 || hLength == 0) h[hLength++] = q;
	return hLength;
}

int scaleExpansionZeroelim(double splitter, int eLength, const double* e, double b, double* h)
{
	int hLength = 0;
	const auto store = [&](double tail) {
		if (tail != 0.0) h[hLength++] = tail;
	};

	const TwoDoubles bCut = split(splitter, b);
	TwoDoubles q = twoProductPresplit(splitter, e[0], b, bCut);
	store(q.lo);
	for (int i = 1; i < eLength; ++i) {
		const TwoDoubles product = twoProductPresplit(splitter, e[i], b, bCut);
		const TwoDoubles s = twoSum(q.hi, product.lo);
		store(s.lo);
		q = fastTwoSum(product.hi, s.hi);
		store(q.lo);
	}
	if (q.hi != 0.0 || hLength == 0) h[hLength++] = q.hi;
	return hLength;
}

} // namespace TULO3D
