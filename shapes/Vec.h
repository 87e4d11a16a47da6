// SPDX-License-Identifier: MIT
// Three coordinates of any kind of number.
#pragma once

#include <algorithm>
#include <cmath>

namespace TULO3D::shapes {

template <typename T>
struct VecOf
{
	T x{}, y{}, z{};
};
using Vec = VecOf<double>;

template <typename T>
VecOf<T> operator+(const VecOf<T>& a, const VecOf<T>& b)
{
	return {a.x + b.x, a.y + b.y, a.z + b.z};
}
template <typename T>
VecOf<T> operator-(const VecOf<T>& a, const VecOf<T>& b)
{
	return {a.x - b.x, a.y - b.y, a.z - b.z};
}
template <typename T>
VecOf<T> operator*(const T& s, const VecOf<T>& a)
{
	return {s * a.x, s * a.y, s * a.z};
}
template <typename T>
T dot(const VecOf<T>& a, const VecOf<T>& b)
{
	return a.x * b.x + a.y * b.y + a.z * b.z;
}
template <typename T>
VecOf<T> cross(const VecOf<T>& a, const VecOf<T>& b)
{
	return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// From point `p` to point `q`.
inline Vec between(const double* p, const double* q)
{
	return {q[0] - p[0], q[1] - p[1], q[2] - p[2]};
}

inline double largest(const Vec& a)
{
	return std::max({std::abs(a.x), std::abs(a.y), std::abs(a.z)});
}

/// The power of two that brings `size` to between 1 and 2, if it is no denormal number: products of lengths
/// so scaled neither overflow nor, where they matter, underflow.
inline double unitScale(double size)
{
	// At most 2^1000, as the reciprocal of a denormal number may be infinite.
	return size > 0 && std::isfinite(size) ? std::scalbn(1.0, std::min(-std::ilogb(size), 1000))
	                                       : 1.0;
}

/// The length, however large or small the coordinates are.
inline double norm(const Vec& a)
{
	const double square = dot(a, a);
	if (square > 1e-280 && square < 1e300) return std::sqrt(square);
	const double scale = unitScale(largest(a));
	const Vec b = scale * a;
	return std::sqrt(dot(b, b)) / scale;
}

/// The direction of `a`; zero for a zero vector.
inline Vec unit(const Vec& a)
{
	const Vec b = unitScale(largest(a)) * a;
	const double length = std::sqrt(dot(b, b));
	return length > 0 ? 1 / length * b : b;
}

} // namespace TULO3D::shapes
