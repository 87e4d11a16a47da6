// SPDX-License-Identifier: MIT
// Three coordinates, and three equations in three unknowns.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <limits>
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

/// The power of two that brings the largest of the values to less than 2 and, unless it is a denormal number,
/// to at least 1. Products of values scaled like this neither overflow nor, where they matter, underflow.
inline double unitScale(std::initializer_list<double> values)
{
	double largest = 0.0;
	for (const double x : values) largest = std::max(largest, std::abs(x));
	// At most 2^1000, as the reciprocal of a denormal number may be infinite.
	return largest > 0.0 ? std::scalbn(1.0, std::min(-std::ilogb(largest), 1000)) : 1.0;
}
inline double unitScale(const Vec& a, const Vec& b, const Vec& c)
{
	return unitScale({a.x, a.y, a.z, b.x, b.y, b.z, c.x, c.y, c.z});
}

/// The centre of the sphere through 0, a, b and c; not finite when these are coplanar.
inline Vec circumcenter(const Vec& a, const Vec& b, const Vec& c)
{
	const Vec bc = cross(b, c), ca = cross(c, a), ab = cross(a, b);
	return 0.5 / dot(a, bc) * (dot(a, a) * bc + dot(b, b) * ca + dot(c, c) * ab);
}

/// The equations (rows) * solution = right side, by Gaussian elimination with complete pivoting.
///
/// Unlike Cramer's rule it leaves a residual of a few roundings however flat a tetrahedron is: what is
/// linear is interpolated exactly, up to these, in slivers too. Rows and columns are brought to one magnitude
/// first, by powers of two; a pivot that is rounding alone then shows as such, and decides nothing.
class ThreeEquations
{
public:
	ThreeEquations(const Vec& row0, const Vec& row1, const Vec& row2);

	/// False when a pivot is zero up to rounding; then the solution leaves out what it would have decided.
	bool isRegular() const { return rank == 3; }
	Vec solve(const Vec& right) const;

private:
	void scale();
	void choosePivot(std::size_t k);

	std::array<std::array<double, 3>, 3> a; // the triangular factors, rows and columns permuted
	std::array<std::size_t, 3> row{0, 1, 2}, column{0, 1, 2};
	std::array<double, 3> rowScale{}, columnScale{}; // before the permutation
	std::size_t rank = 0;
};

inline ThreeEquations::ThreeEquations(const Vec& row0, const Vec& row1, const Vec& row2)
    : a{{{row0.x, row0.y, row0.z}, {row1.x, row1.y, row1.z}, {row2.x, row2.y, row2.z}}}
{
	constexpr double kRounding = 4 * std::numeric_limits<double>::epsilon();
	scale();
	for (; rank < 3; ++rank) {
		const std::size_t k = rank;
		choosePivot(k);
		if (!(std::abs(a[k][k]) > kRounding)) return;
		for (std::size_t i = k + 1; i < 3; ++i) {
			a[i][k] /= a[k][k];
			for (std::size_t j = k + 1; j < 3; ++j) a[i][j] -= a[i][k] * a[k][j];
		}
	}
}

inline void ThreeEquations::scale()
{
	for (std::size_t i = 0; i < 3; ++i) {
		rowScale[i] = unitScale({a[i][0], a[i][1], a[i][2]});
		for (double& x : a[i]) x *= rowScale[i];
	}
	for (std::size_t j = 0; j < 3; ++j) {
		columnScale[j] = unitScale({a[0][j], a[1][j], a[2][j]});
		for (auto& r : a) r[j] *= columnScale[j];
	}
}

/// Moves the largest of the elements that are left to place (k, k).
inline void ThreeEquations::choosePivot(std::size_t k)
{
	std::size_t pivotRow = k, pivotColumn = k;
	for (std::size_t i = k; i < 3; ++i) {
		for (std::size_t j = k; j < 3; ++j) {
			if (!(std::abs(a[i][j]) > std::abs(a[pivotRow][pivotColumn]))) continue;
			pivotRow = i;
			pivotColumn = j;
		}
	}
	std::swap(a[k], a[pivotRow]);
	std::swap(row[k], row[pivotRow]);
	for (auto& r : a) std::swap(r[k], r[pivotColumn]);
	std::swap(column[k], column[pivotColumn]);
}

inline Vec ThreeEquations::solve(const Vec& right) const
{
	const std::array<double, 3> b{right.x, right.y, right.z};
	std::array<double, 3> y{}, solution{};
	for (std::size_t i = 0; i < rank; ++i) {
		y[i] = b[row[i]] * rowScale[row[i]];
		for (std::size_t j = 0; j < i; ++j) y[i] -= a[i][j] * y[j];
	}
	for (std::size_t i = rank; i-- > 0;) {
		for (std::size_t j = i + 1; j < rank; ++j) y[i] -= a[i][j] * y[j];
		y[i] /= a[i][i];
		solution[column[i]] = y[i] * columnScale[column[i]];
	}
	return {solution[0], solution[1], solution[2]};
}

} // namespace binding
