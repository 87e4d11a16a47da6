// SPDX-License-Identifier: MIT
// Components by flooding across facets, and the facets between what is kept and what is not.
#include "shapes/Solid.h"

#include "Mesh.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>

namespace TULO3D::shapes {

namespace {

/// The component of each tetrahedron that is kept, -1 for the others; returns how many there are.
Index labelComponents(const Mesh& mesh, const std::vector<bool>& vKept, std::vector<Index>& vLabel)
{
	vLabel.assign(mesh.numTets, -1);
	std::vector<Index> vStack;
	Index num = 0;
	for (std::size_t first = 0; first < mesh.numTets; ++first) {
		if (vLabel[first] >= 0 || !vKept[first]) continue;
		vLabel[first] = num;
		vStack.push_back(static_cast<Index>(first));
		while (!vStack.empty()) {
			const Index tet = vStack.back();
			vStack.pop_back();
			for (int i = 0; i < 4; ++i) {
				const Index next = mesh.neighbours(tet)[i];
				if (next < 0 || vLabel[at(next)] >= 0 || !vKept[at(next)]) continue;
				vLabel[at(next)] = num;
				vStack.push_back(next);
			}
		}
		++num;
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
	for (Index tet = 0; at(tet) < mesh.numTets; ++tet) {
		if (vLabel[at(tet)] < 0) continue;
		addTet(mesh, tet, vLabel[at(tet)], solid);
		for (int i = 0; i < 4; ++i) {
			const Index next = mesh.neighbours(tet)[i];
			if (next < 0 || vLabel[at(next)] < 0) addTriangle(mesh, tet, i, solid);
		}
	}
	for (double& volume : solid.vVolumes) volume /= 6;
	solid.volume = std::accumulate(solid.vVolumes.begin(), solid.vVolumes.end(), 0.0);
	return solid;
}

} // namespace TULO3D::shapes
