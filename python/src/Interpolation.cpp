// SPDX-License-Identifier: MIT
// Values between points: linear in each tetrahedron.
#include "Interpolation.h"
#include "NaturalNeighbors.h"
#include "Vec.h"

#include <algorithm>
#include <limits>

namespace binding {

namespace {

/// Adds up values, each `weight` times.
void addValues(const Samples& samples, std::int32_t v, double weight, double* pResult)
{
	const double* pValue = samples.pValues + static_cast<std::size_t>(v) * samples.numColumns;
	for (std::size_t j = 0; j < samples.numColumns; ++j) pResult[j] += weight * pValue[j];
}

/// The weights of the corners of tetrahedron `t` that make up point `p`; their sum is 1.
std::array<double, 4> barycentric(const FlatMesh& mesh, std::int32_t t, const double* p)
{
	const auto [a, b, c] = edgesFrom0(mesh, t);
	const ThreeEquations equations({a.x, b.x, c.x}, {a.y, b.y, c.y}, {a.z, b.z, c.z});
	const Vec w = equations.solve(between(mesh.point(mesh.corners(t)[0]), p));
	return {1.0 - w.x - w.y - w.z, w.x, w.y, w.z};
}

/// Writes one linear interpolant.
void addLinearly(
    const FlatMesh& mesh, const Samples& samples, const double* p, std::int32_t t, double* pResult)
{
	const std::array<double, 4> weight = barycentric(mesh, t, p);
	for (std::size_t i = 0; i < 4; ++i) {
		addValues(samples, mesh.corners(t)[i], weight[i], pResult);
	}
}

} // namespace

void interpolateLinearly(
    const FlatMesh& mesh, const Samples& samples, double fill, double* pResults, const Poll& poll)
{
	const auto visit = [&](std::size_t i, const double* p, std::int32_t t) {
		double* pResult = pResults + i * samples.numColumns;
		std::fill(pResult, pResult + samples.numColumns, t < 0 ? fill : 0.0);
		if (t >= 0) addLinearly(mesh, samples, p, t, pResult);
	};
	forEachLocated(mesh, samples.pQueries, samples.numQueries, poll, visit);
}

void interpolateGradients(
    const FlatMesh& mesh, const Samples& samples, double* pResults, const Poll& poll)
{
	constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
	const std::size_t numColumns = samples.numColumns;
	const auto visit = [&](std::size_t i, const double*, std::int32_t t) {
		double* pResult = pResults + 3 * i * numColumns;
		std::fill(pResult, pResult + 3 * numColumns, kNone);
		if (t < 0) return;
		const auto [a, b, c] = edgesFrom0(mesh, t);
		const ThreeEquations equations(a, b, c);
		const std::int32_t* pCorner = mesh.corners(t);
		for (std::size_t j = 0; j < numColumns; ++j, pResult += 3) {
			const auto value = [&](int k) {
				return samples.pValues[static_cast<std::size_t>(pCorner[k]) * numColumns + j];
			};
			const Vec gradient =
			    equations.solve({value(1) - value(0), value(2) - value(0), value(3) - value(0)});
			pResult[0] = gradient.x;
			pResult[1] = gradient.y;
			pResult[2] = gradient.z;
		}
	};
	forEachLocated(mesh, samples.pQueries, samples.numQueries, poll, visit);
}

void interpolateNaturally(
    const FlatMesh& mesh, const Samples& samples, double fill, double* pResults, const Poll& poll)
{
	NaturalNeighbors neighbors(mesh);
	const auto visit = [&](std::size_t i, const double* p, std::int32_t t) {
		double* pResult = pResults + i * samples.numColumns;
		std::fill(pResult, pResult + samples.numColumns, t < 0 ? fill : 0.0);
		if (t < 0) return;
		if (!neighbors.find(p, t)) {
			addLinearly(mesh, samples, p, t, pResult);
			return;
		}
		for (std::size_t n = 0; n < neighbors.size(); ++n) {
			addValues(samples, neighbors.vertex(n), neighbors.weight(n), pResult);
		}
	};
	forEachLocated(mesh, samples.pQueries, samples.numQueries, poll, visit);
}

} // namespace binding
