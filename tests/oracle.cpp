// SPDX-License-Identifier: MIT
// The two determinants, written once and evaluated in doubles with a running error bound, in 128-bit
// integers, or in integers of any length.
#include "oracle.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <gmpxx.h>
#include <initializer_list>

namespace oracle {

namespace {

__extension__ typedef __int128 Int128;
using Rows = std::initializer_list<const P*>;

// clang-format off
/// A double and a bound of its error.
struct Approx
{
	static Approx rounded(double v, double e) { return {v, (e + std::fabs(v) * DBL_EPSILON) * (1 + 8 * DBL_EPSILON) + DBL_MIN}; }
	friend Approx operator+(Approx a, Approx b) { return rounded(a.value + b.value, a.error + b.error); }
	friend Approx operator-(Approx a, Approx b) { return rounded(a.value - b.value, a.error + b.error); }
	friend Approx operator*(Approx a, Approx b) { return rounded(a.value * b.value, std::fabs(a.value) * b.error + std::fabs(b.value) * a.error + a.error * b.error); }
	double value = 0, error = 0;
};
// clang-format on

template <class N>
N det3(const N* a, const N* b, const N* c)
{
	const N x = a[1] * b[2] - a[2] * b[1], y = a[2] * b[0] - a[0] * b[2],
	        z = a[0] * b[1] - a[1] * b[0];
	return x * c[0] + y * c[1] + z * c[2];
}

/// The rows p[0] .. p[n-2] become differences from p[n-1]; the result is their determinant, for five
/// points with the squared lengths as a fourth column.
template <class N>
N determinant(N (*p)[3], std::size_t n)
{
	N lift[4];
	for (std::size_t i = 0; i + 1 < n; ++i) {
		for (std::size_t k = 0; k < 3; ++k) p[i][k] = p[i][k] - p[n - 1][k];
		lift[i] = p[i][0] * p[i][0] + p[i][1] * p[i][1] + p[i][2] * p[i][2];
	}
	if (n == 4) return det3(p[0], p[1], p[2]);
	return lift[3] * det3(p[0], p[1], p[2]) - lift[2] * det3(p[0], p[1], p[3]) +
	    lift[1] * det3(p[0], p[2], p[3]) - lift[0] * det3(p[1], p[2], p[3]);
}

template <class N>
int signOf(const N& n)
{
	return n > 0 ? 1 : n < 0 ? -1 : 0;
}

/// The sign of the determinant of four or five points, scaled to integers.
int exactSign(Rows rows)
{
	double c[5][3];
	int lowest = INT_MAX, highest = INT_MIN;
	std::size_t n = 0;
	for (const P* p : rows) {
		p->xyz(c[n][0], c[n][1], c[n][2]);
		for (const double v : c[n]) {
			if (v == 0) continue;
			// The weight of the last bit is at least this one.
			const int exponent = std::max(std::ilogb(v) - 52, -1074);
			const auto mantissa = static_cast<long long>(std::ldexp(v, -exponent));
			lowest = std::min(
			    lowest, exponent + __builtin_ctzll(static_cast<unsigned long long>(mantissa)));
			highest = std::max(highest, std::ilogb(v));
		}
		++n;
	}
	if (lowest == INT_MAX) return 0;
	const bool bSmall = highest - lowest < (n == 4 ? 39 : 21);
	Int128 small[5][3];
	mpz_class large[5][3];
	for (std::size_t i = 0; i < 3 * n; ++i) {
		int exponent = 0;
		const double mantissa = std::ldexp(std::frexp(c[i / 3][i % 3], &exponent), 53);
		const int shift = mantissa == 0 ? 0 : exponent - 53 - lowest; // negative for trailing zeros
		if (bSmall) {
			small[i / 3][i % 3] = static_cast<long long>(std::ldexp(mantissa, shift));
		} else {
			mpz_class& m = large[i / 3][i % 3] = mpz_class(mantissa);
			m = shift < 0 ? mpz_class(m >> static_cast<unsigned>(-shift))
			              : mpz_class(m << static_cast<unsigned>(shift));
		}
	}
	return bSmall ? signOf(determinant(small, n)) : signOf(determinant(large, n));
}

int quickSign(Rows rows)
{
	Approx p[5][3];
	std::size_t n = 0;
	for (const P* row : rows) {
		row->xyz(p[n][0].value, p[n][1].value, p[n][2].value);
		++n;
	}
	const Approx d = determinant(p, n);
	return std::fabs(d.value) > d.error ? signOf(d.value) : exactSign(rows);
}

} // namespace

// The rows are differences from the last point: an odd number of exchanges away from those from a.
// clang-format off
int orientation(const P& a, const P& b, const P& c, const P& d) { return exactSign({&b, &c, &d, &a}); }
int inSphere(const P& a, const P& b, const P& c, const P& d, const P& q) { return -exactSign({&a, &b, &c, &d, &q}); }
int quickOrientation(const P& a, const P& b, const P& c, const P& d) { return quickSign({&b, &c, &d, &a}); }
int quickInSphere(const P& a, const P& b, const P& c, const P& d, const P& q) { return -quickSign({&a, &b, &c, &d, &q}); }
// clang-format on

} // namespace oracle
