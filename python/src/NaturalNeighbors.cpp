// SPDX-License-Identifier: MIT
// Sibson's coordinates.
#include "NaturalNeighbors.h"

#include <array>
#include <cmath>

namespace binding {

namespace {

/// The centre of the circle through 0, a and b.
Vec circumcenter(const Vec& a, const Vec& b)
{
	const Vec normal = cross(a, b);
	return 0.5 / dot(normal, normal) * cross(dot(a, a) * b - dot(b, b) * a, normal);
}

} // namespace

bool NaturalNeighbors::find(const double* p, std::int32_t t)
{
	const auto [a, b, c] = edgesFrom0(mesh, t);
	scale = unitScale(a, b, c);
	findCavity(p, t);
	vertices.clear();
	vArms.clear();
	vWeights.clear();
	for (std::size_t n = 0; n < vMet.size(); ++n) {
		if (!vMet[n].bInCavity) continue;
		for (int k = 0; k < 4; ++k) addFacet(p, tets.key(n), k);
	}
	return normalize();
}

void NaturalNeighbors::findCavity(const double* p, std::int32_t t)
{
	tets.clear();
	vMet.clear();
	exact.setQuery(p);
	meet(t, p);
	for (std::size_t n = 0; n < vMet.size(); ++n) {
		if (!vMet[n].bInCavity) continue;
		const std::int32_t* pNeighbor = mesh.neighbors(tets.key(n));
		for (int k = 0; k < 4; ++k) {
			if (pNeighbor[k] >= 0) meet(pNeighbor[k], p);
		}
	}
}

void NaturalNeighbors::meet(std::int32_t t, const double* p)
{
	if (tets.numberOf(t) < vMet.size()) return;
	exact.setTet(t);
	Met met{exact.isInSphere(), {}};
	if (met.bInCavity) {
		const auto [a, b, c] = edgesFrom0(mesh, t);
		met.center = scaledBetween(p, mesh.point(*mesh.corners(t))) +
		    binding::circumcenter(scale * a, scale * b, scale * c);
	}
	vMet.push_back(met);
}

std::size_t NaturalNeighbors::numberOf(std::int32_t v, const double* p)
{
	const std::size_t number = vertices.numberOf(v);
	if (number == vArms.size()) {
		vArms.push_back(scaledBetween(p, mesh.point(v)));
		vWeights.push_back(0.0);
	}
	return number;
}

void NaturalNeighbors::addFacet(const double* p, std::int32_t t, int k)
{
	const Vec& center = vMet[tets.numberOf(t)].center;
	const std::int32_t neighbor = mesh.neighbors(t)[k];
	const Met* pBeyond = neighbor >= 0 ? &vMet[tets.numberOf(neighbor)] : nullptr;
	const bool bInside = pBeyond != nullptr && pBeyond->bInCavity;
	if (bInside && neighbor < t) return; // the neighbour adds it

	std::array<std::size_t, 3> corner{};
	for (std::size_t i = 0; i < 3; ++i) corner[i] = numberOf(mesh.corners(t)[kOutside[k][i]], p);
	const Vec newCenter = bInside
	    ? pBeyond->center
	    : binding::circumcenter(vArms[corner[0]], vArms[corner[1]], vArms[corner[2]]);
	for (std::size_t i = 0; i < 3; ++i) {
		const std::size_t u = corner[i], v = corner[(i + 1) % 3];
		addEdge(u, v, center, newCenter);
		// From one new centre to the other: each of the two facets goes to a point between them.
		if (!bInside) addEdge(u, v, newCenter, circumcenter(vArms[u], vArms[v]));
	}
}

void NaturalNeighbors::addEdge(std::size_t u, std::size_t v, const Vec& c, const Vec& d)
{
	// Six times the volume of the tetrahedron of the point half-way to u, that half-way between u and v,
	// c and d; and the same for v, where the face is seen from behind.
	const Vec& a = vArms[u];
	const Vec& b = vArms[v];
	vWeights[u] += det(0.5 * b, c - 0.5 * a, d - 0.5 * a);
	vWeights[v] += det(0.5 * a, d - 0.5 * b, c - 0.5 * b);
}

bool NaturalNeighbors::normalize()
{
	// Larger rounding errors than these are left to the caller, smaller ones are corrected.
	constexpr double kTolerance = 1e-3;
	constexpr double kLeft =
	    1e-12; // as much of the distance to the neighbours may be left afterwards
	double sum = 0.0;
	for (const double weight : vWeights) sum += weight;
	if (!(sum > 0.0) || !std::isfinite(sum)) return false;

	Vec center;
	double spread = 0.0;
	std::array<Vec, 3> moments;
	for (std::size_t n = 0; n < vWeights.size(); ++n) {
		double& weight = vWeights[n];
		const Vec& arm = vArms[n];
		weight /= sum;
		if (!(weight >= -kTolerance)) return false;
		center = center + weight * arm;
		spread += std::abs(weight) * norm(arm);
		moments[0] = moments[0] + weight * arm.x * arm;
		moments[1] = moments[1] + weight * arm.y * arm;
		moments[2] = moments[2] + weight * arm.z * arm;
	}
	if (!(norm(center) <= kTolerance * spread)) return false;

	// The weights that put the centre of the neighbours at the point, next to these.
	const Vec tilt = ThreeEquations(moments[0], moments[1], moments[2]).solve(center);
	sum = 0.0;
	for (std::size_t n = 0; n < vWeights.size(); ++n) {
		vWeights[n] *= 1.0 - dot(tilt, vArms[n]);
		sum += vWeights[n];
	}
	center = {};
	for (std::size_t n = 0; n < vWeights.size(); ++n) {
		vWeights[n] /= sum;
		if (!(vWeights[n] >= -kTolerance)) return false;
		center = center + vWeights[n] * vArms[n];
	}
	return norm(center) <= kLeft * spread;
}

} // namespace binding
