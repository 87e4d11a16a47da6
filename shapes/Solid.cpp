// SPDX-License-Identifier: MIT
// Components by joining tetrahedra across facets, and the facets between what is kept and what is not.
#include "shapes/Solid.h"

#include "Components.h"
#include "Mesh.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>

namespace TULO3D::shapes {

namespace {

/// The component of each tetrahedron that is kept, -1 for the others; returns how many there are. Goes through the mesh
/// in its order, where a search from neighbour to neighbour would miss the cache.
Index labelComponents(const Mesh& mesh, const std::vector<bool>& vKept, std::vector<Index>& vLabel)
{
	Components components(mesh.numTets);
	vLabel.assign(mesh.numTets, -1);
	for (Index tet = 0; at(tet) < mesh.numTets; ++tet) {
		if (!vKept[at(tet)]) continue;
		for (int i = 0; i < 4; ++i) {
			const Index next = mesh.neighbours(tet)[i];
			if (next >= 0 && next < tet && vKept[at(next)]) components.join(tet, next);
		}
	}
	Index num = 0;
	for (Index tet = 0; at(tet) < mesh.numTets; ++tet) {
		if (!vKept[at(tet)]) continue;
		const Index first = components.find(tet);
		vLabel[at(tet)] = first == tet ? num++ : vLabel[at(first)];
	}
	return num;
}

void addTet(const Mesh& mesh, Index tet, Index component, Solid& solid)
{
	const Index* p = mesh.corners(tet);
	const double det =
	    dot(mesh.between(p[0], p[1]), cross(mesh.between(p[0], p[2]), mesh.between(p[0], p[3])));
	solid.vTets.push_back(tet);
	solid.vComponents.push_back(component);
	solid.vVolumes[at(component)] += std::max(0.0, det);
}

void addTriangle(const Mesh& mesh, Index tet, int i, Solid& solid)
{
	const auto [a, b, c] = mesh.facet(tet, i);
	solid.vTriangles.insert(solid.vTriangles.end(), {a, b, c});
	solid.vTetsOfTriangles.push_back(tet);
	solid.area += norm(cross(mesh.between(a, b), mesh.between(a, c))) / 2;
}

} // namespace

Solid solidOf(const MeshView& view, const std::vector<bool>& vKept)
{
	const Mesh mesh(view);
	if (vKept.size() != mesh.numTets)
		throw std::invalid_argument("There has to be a value for each tetrahedron.");
	Solid solid;
	std::vector<Index> vLabel;
	solid.vVolumes.resize(at(labelComponents(mesh, vKept, vLabel)));
	const auto num = std::count(vKept.begin(), vKept.end(), true);
	solid.vTets.reserve(static_cast<std::size_t>(num));
	solid.vComponents.reserve(static_cast<std::size_t>(num));
	for (Index tet = 0; at(tet) < mesh.numTets; ++tet) {
		if (!vKept[at(tet)]) continue;
		addTet(mesh, tet, vLabel[at(tet)], solid);
		for (int i = 0; i < 4; ++i) {
			const Index next = mesh.neighbours(tet)[i];
			if (next < 0 || !vKept[at(next)]) addTriangle(mesh, tet, i, solid);
		}
	}
	for (double& volume : solid.vVolumes) volume /= 6;
	solid.volume = std::accumulate(solid.vVolumes.begin(), solid.vVolumes.end(), 0.0);
	return solid;
}

} // namespace TULO3D::shapes
