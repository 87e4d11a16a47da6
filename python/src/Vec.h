// SPDX-License-Identifier: MIT
// Three coordinates, and three equations in three unknowns.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace binding {

struct Vec
{
	double x = 0, y = 0, z = 0;
};

inline Vec operator+(const Vec& a, const Vec& b)
{
	return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec operator-(const Vec& a, const Vec& b)
{
	return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec operator*(double s, const Vec& a)
{
	return {s * a.x, s * a.y, s * a.z};
}
inline double dot(const Vec& a, const Vec& b)
{
	return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vec cross(const Vec& a, const Vec& b)
{
	return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double det(const Vec& a, const Vec& b, const Vec& c)
{
	return dot(a, cross(b, c));
}
inline double norm(const Vec& a)
{
	return std::sqrt(dot(a, a));
}
/// From point `q` to point `p`.
inline Vec between(const double* q, const double* p)
{
	return {p[0] - q[0], p[1] - q[1], p[2] - q[2]};
}

/// The centre of the sphere through 0, a, b and c; not finite when these are coplanar.
inline Vec circumcenter(const Vec& a, const Vec& b, const Vec& c)
{
	const Vec bc = cross(b, c), ca = cross(c, a), ab = cross(a, b);
	return 0.5 / dot(a, bc) * (dot(a, a) * bc + dot(b, b) * ca + dot(c, c) * ab);
}

/// The equations (rows) * solution = right side, by Gaussian elimination with pivots.
///
/// Unlike Cramer's rule it leaves a residual of a few roundings however flat a tetrahedron is: what is
/// linear is interpolated exactly, up to these, in slivers too.
class ThreeEquations
{
public:
	ThreeEquations(const Vec& row0, const Vec& row1, const Vec& row2);

	/// False when a pivot is zero; then the solution leaves out what it would have decided.
	bool isRegular() const { return bRegular; }
	Vec solve(const Vec& right) const;

private:
	std::array<std::array<double, 3>, 3> a; // the triangular factors, rows permuted
	std::array<std::size_t, 3> order{0, 1, 2};
	bool bRegular = true;
};

inline ThreeEquations::ThreeEquations(const Vec& row0, const Vec& row1, const Vec& row2)
    : a{{{row0.x, row0.y, row0.z}, {row1.x, row1.y, row1.z}, {row2.x, row2.y, row2.z}}}
{
	for (std::size_t k = 0; k < 3; ++k) {
		std::size_t pivot = k;
		for (std::size_t i = k + 1; i < 3; ++i) {
			if (std::abs(a[i][k]) > std::abs(a[pivot][k])) pivot = i;
		}
		std::swap(a[k], a[pivot]);
		std::swap(order[k], order[pivot]);
		if (a[k][k] == 0.0) {
			bRegular = false;
			continue;
		}
		for (std::size_t i = k + 1; i < 3; ++i) {
			a[i][k] /= a[k][k];
			for (std::size_t j = k + 1; j < 3; ++j) a[i][j] -= a[i][k] * a[k][j];
		}
	}
}

inline Vec ThreeEquations::solve(const Vec& right) const
{
	const std::array<double, 3> b{right.x, right.y, right.z};
	std::array<double, 3> y{};
	for (std::size_t i = 0; i < 3; ++i) {
		y[i] = b[order[i]];
		for (std::size_t j = 0; j < i; ++j) {
			if (a[j][j] != 0.0) y[i] -= a[i][j] * y[j];
		}
	}
	for (std::size_t i = 3; i-- > 0;) {
		for (std::size_t j = i + 1; j < 3; ++j) y[i] -= a[i][j] * y[j];
		y[i] = a[i][i] != 0.0 ? y[i] / a[i][i] : 0.0;
	}
	return {y[0], y[1], y[2]};
}

} // namespace binding
