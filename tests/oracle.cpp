// SPDX-License-Identifier: MIT
// The two determinants, written once and evaluated in doubles with a running error bound, or in numbers so
// long that nothing is rounded.
#include "oracle.h"

#include <cfloat>
#include <cmath>
#include <gmpxx.h>
#include <initializer_list>

namespace oracle {

namespace {

using Rows = std::initializer_list<const P*>;

// clang-format off
/// A double and a bound of its error.
struct Approx
{
	Approx(double v = 0, double e = 0) : value(v), error(e) {}
	static Approx rounded(double v, double e) { return {v, (e + std::fabs(v) * DBL_EPSILON) * (1 + 8 * DBL_EPSILON) + DBL_MIN}; }
	friend Approx operator+(Approx a, Approx b) { return rounded(a.value + b.value, a.error + b.error); }
	friend Approx operator-(Approx a, Approx b) { return rounded(a.value - b.value, a.error + b.error); }
	friend Approx operator*(Approx a, Approx b) { return rounded(a.value * b.value, std::fabs(a.value) * b.error + std::fabs(b.value) * a.error + a.error * b.error); }
	double value, error;
};
// clang-format on

/// Exact for five factors of 1275 bits each, which differences of coordinates from 2^-1074 to 2^200 fill.
struct Exact : mpf_class
{
	static constexpr mp_bitcnt_t kBits = 5 * 1275 + 64;
	Exact() : mpf_class(0, kBits) {}
	template <class T>
	Exact(const T& value) : mpf_class(value, kBits)
	{
	}
};

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

/// The determinant of four or five points.
template <class N>
N determinantOf(Rows rows)
{
	N p[5][3];
	std::size_t n = 0;
	for (const P* row : rows) {
		p[n][0] = row->x(), p[n][1] = row->y(), p[n][2] = row->z();
		++n;
	}
	return determinant(p, n);
}

int exactSign(Rows rows)
{
	return sgn(determinantOf<Exact>(rows));
}

int quickSign(Rows rows)
{
	const Approx d = determinantOf<Approx>(rows);
	return std::fabs(d.value) > d.error ? (d.value > 0 ? 1 : -1) : exactSign(rows);
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
