// SPDX-License-Identifier: MIT
// A sum over facets. The face between two cells is a polygon around an edge of the mesh; over each of its sides, which is
// dual to a facet at the edge, and the middle of the edge stands a triangle. The pyramids over it to the two ends of
// the edge have the same volume.
#include "WholeVolumes.h"

#include <limits>

namespace TULO3D::shapes {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

} // namespace

std::vector<double> wholeVolumes(
    const Mesh& mesh, const std::vector<Vec>& vArms, const std::vector<bool>& bAtInfinity)
{
	std::vector<double> v(mesh.numVertices, 0);
	// Facet (a, b, c) between two tetrahedra with their centres at p and p + w, relative to a: the side leads
	// counter-clockwise around the edges as the facet has them. With m the middle of edge e, the volume is
	// ((p - m) x w) * e / 12.
	const auto add = [&](Index tet, Index next, int i) {
		const auto [a, b, c] = mesh.facet(tet, i);
		const Vec ab = mesh.between(a, b), ac = mesh.between(a, c);
		const Vec p = mesh.between(a, mesh.corners(tet)[0]) + vArms[at(tet)];
		const Vec w = mesh.between(a, mesh.corners(next)[0]) + vArms[at(next)] - p;
		const Vec pw = cross(p, w);
		const double atAB = dot(pw, ab) / 12, atCA = -dot(pw, ac) / 12;
		const double atBC = (dot(w, cross(ab, ac)) / 12 - atAB) - atCA;
		v[at(a)] += atAB + atCA;
		v[at(b)] += atAB + atBC;
		v[at(c)] += atBC + atCA;
	};
	const auto addInfinity = [&](Index tet, int except) {
		for (int k = 0; k < 4; ++k) {
			if (k != except) v[at(mesh.corners(tet)[k])] = kInfinity;
		}
	};
	for (Index tet = 0; at(tet) < mesh.numTets; ++tet) {
		if (bAtInfinity[at(tet)]) addInfinity(tet, -1);
		for (int i = 0; i < 4; ++i) {
			const Index next = mesh.neighbours(tet)[i];
			if (next < 0) addInfinity(tet, i);
			if (next < tet || bAtInfinity[at(tet)] || bAtInfinity[at(next)])
				continue; // each facet once
			add(tet, next, i);
		}
	}
	return v;
}

} // namespace TULO3D::shapes
