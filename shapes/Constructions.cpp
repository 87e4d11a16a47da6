// SPDX-License-Identifier: MIT
// Doubles where they keep most digits, otherwise double-doubles of exact differences, otherwise exact numbers.
//
// The centre solves |x|^2 = |x - a|^2 = |x - b|^2 = |x - c|^2 by Cramer's rule, corner 0 being the origin.
#include "Constructions.h"

#include "Precise.h"

#include <limits>

namespace TULO3D::shapes {

namespace {

/// Doubles lose ten bits where a determinant is 2^-10 of its upper bound; double-doubles still have forty where
/// it is 2^-60.
constexpr double kLeastForDoubles = 0x1p-10;
constexpr double kLeastForDoubleDoubles = 0x1p-60;

/// Twice the determinant of the three edges, times the centre.
template <typename T>
VecOf<T> numerator(const VecOf<T>& a, const VecOf<T>& b, const VecOf<T>& c, const VecOf<T>& bc)
{
	return dot(a, a) * bc + dot(b, b) * cross(c, a) + dot(c, c) * cross(a, b);
}

/// A fraction whose denominator is `certainty` of its upper bound.
struct Solution
{
	Vec numerator;
	double determinant, certainty;
};

template <typename T>
Solution solve(const Mesh& mesh, Index tet, double scale)
{
	const Index* pCorner = mesh.corners(tet);
	const auto edge = [&](int i) {
		return preciseBetween<T>(mesh.point(pCorner[0]), mesh.point(pCorner[i]), scale);
	};
	const VecOf<T> a = edge(1), b = edge(2), c = edge(3), bc = cross(b, c);
	const double det = value(dot(a, bc));
	const double bound = norm(rounded(a)) * norm(rounded(b)) * norm(rounded(c));
	return {rounded(numerator(a, b, c, bc)), det, det / bound};
}

/// `size` is the largest coordinate of an edge.
Circumsphere preciseCircumsphere(const Mesh& mesh, Index tet, double size)
{
	const double scale = unitScale(size);
	Solution s = solve<TwoDoubles>(mesh, tet, scale);
	if (!(s.certainty > kLeastForDoubleDoubles)) s = solve<Expansion>(mesh, tet, scale);
	const Vec arm = 0.5 / s.determinant / scale * s.numerator;
	const double radius = norm(arm);
	if (s.determinant > 0 && std::isfinite(radius)) return {arm, radius};
	return {unit(s.numerator), std::numeric_limits<double>::infinity()};
}

} // namespace

Circumsphere circumsphere(const Mesh& mesh, Index tet)
{
	const Index* pCorner = mesh.corners(tet);
	const Vec a = mesh.between(pCorner[0], pCorner[1]), b = mesh.between(pCorner[0], pCorner[2]),
	          c = mesh.between(pCorner[0], pCorner[3]);
	const Vec bc = cross(b, c);
	const double det = dot(a, bc), bound = dot(a, a) * dot(b, b) * dot(c, c);
	constexpr double kLeast = kLeastForDoubles * kLeastForDoubles;
	if (det > 0 && det * det > kLeast * bound && bound > 1e-150 && bound < 1e150) {
		const Vec arm = 0.5 / det * numerator(a, b, c, bc);
		return {arm, std::sqrt(dot(arm, arm))};
	}
	return preciseCircumsphere(mesh, tet, std::max({largest(a), largest(b), largest(c)}));
}

Vec unitNormal(const Mesh& mesh, Index a, Index b, Index c)
{
	const Vec u = mesh.between(a, b), v = mesh.between(a, c), normal = cross(u, v);
	const double square = dot(normal, normal), bound = dot(u, u) * dot(v, v);
	if (square > kLeastForDoubles * kLeastForDoubles * bound && bound > 1e-150 && bound < 1e150)
		return 1 / std::sqrt(square) * normal;
	const double scale = unitScale(std::max(largest(u), largest(v)));
	const double *p = mesh.point(a), *q = mesh.point(b), *r = mesh.point(c);
	const Vec twice = rounded(
	    cross(preciseBetween<TwoDoubles>(p, q, scale), preciseBetween<TwoDoubles>(p, r, scale)));
	if (norm(twice) > kLeastForDoubleDoubles * norm(scale * u) * norm(scale * v))
		return unit(twice);
	return unit(rounded(
	    cross(preciseBetween<Expansion>(p, q, scale), preciseBetween<Expansion>(p, r, scale))));
}

} // namespace TULO3D::shapes
