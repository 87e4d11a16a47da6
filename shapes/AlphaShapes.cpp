// SPDX-License-Identifier: MIT
// The solid part of alpha shapes: tetrahedra by their circumradii.
#include "shapes/AlphaShapes.h"

#include "Components.h"
#include "Constructions.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace TULO3D::shapes {

AlphaShapes::AlphaShapes(const MeshView& theMesh) : mesh(theMesh)
{
	const Mesh checked(mesh);
	vRadii.reserve(mesh.numTets);
	for (std::size_t t = 0; t < mesh.numTets; ++t) {
		vRadii.push_back(circumsphere(checked, static_cast<Index>(t)).radius);
	}
}

double AlphaShapes::radiusThatKeepsEveryPoint() const
{
	std::vector<double> vLeast(mesh.numVertices, std::numeric_limits<double>::infinity());
	for (std::size_t i = 0; i < 4 * mesh.numTets; ++i) {
		double& least = vLeast[at(mesh.pCorners[i])];
		least = std::min(least, vRadii[i / 4]);
	}
	double most = 0; // over the corners, as other vertices are in no tetrahedron at all
	for (std::size_t i = 0; i < 4 * mesh.numTets; ++i) {
		most = std::max(most, vLeast[at(mesh.pCorners[i])]);
	}
	return most;
}

double AlphaShapes::radiusOfOneComponent() const
{
	const Mesh checked(mesh);
	double radius = radiusThatKeepsEveryPoint();
	Components components(mesh.numTets);
	Index num = 0;
	std::vector<Index> vLarger;
	const auto add = [&](Index tet) { // when all that are smaller have been added
		++num;
		for (int i = 0; i < 4; ++i) {
			const Index next = checked.neighbours(tet)[i];
			if (next < 0 || vRadii[at(next)] > vRadii[at(tet)]) continue;
			num -= components.join(tet, next) ? 1 : 0;
		}
	};
	for (Index tet = 0; at(tet) < mesh.numTets; ++tet) {
		if (vRadii[at(tet)] <= radius) {
			add(tet);
		} else {
			vLarger.push_back(tet);
		}
	}
	std::sort(vLarger.begin(), vLarger.end(),
	    [&](Index a, Index b) { return vRadii[at(a)] < vRadii[at(b)]; });
	// Tetrahedra of one radius come together, so it takes all of them to know their number of components.
	for (std::size_t i = 0; num > 1 && i < vLarger.size();) {
		radius = vRadii[at(vLarger[i])];
		for (; i < vLarger.size() && vRadii[at(vLarger[i])] == radius; ++i) add(vLarger[i]);
	}
	return radius;
}

AlphaShape AlphaShapes::shape(double radius) const
{
	if (!(radius >= 0)) throw std::invalid_argument("The radius of an alpha shape is negative.");
	std::vector<bool> vKept(mesh.numTets);
	for (std::size_t t = 0; t < mesh.numTets; ++t) vKept[t] = vRadii[t] <= radius;
	return {solidOf(mesh, vKept), radius};
}

} // namespace TULO3D::shapes
