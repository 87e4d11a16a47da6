// SPDX-License-Identifier: MIT
// The solid part of alpha shapes: tetrahedra by their circumradii.
#include "shapes/AlphaShapes.h"

#include "Constructions.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <stdexcept>

namespace TULO3D::shapes {

namespace {

/// Disjoint sets of tetrahedra; find by path halving.
class Components
{
public:
	explicit Components(std::size_t size) : vParent(size)
	{
		std::iota(vParent.begin(), vParent.end(), 0);
	}
	Index find(Index i)
	{
		while (vParent[at(i)] != i) i = vParent[at(i)] = vParent[at(vParent[at(i)])];
		return i;
	}
	/// True when they were two.
	bool join(Index i, Index j)
	{
		const Index a = find(i), b = find(j);
		vParent[at(std::max(a, b))] = std::min(a, b); // so the first one stands for all
		return a != b;
	}

private:
	std::vector<Index> vParent;
};

/// The component of each tetrahedron in the shape, -1 for the others; returns how many there are.
Index labelComponents(
    const Mesh& mesh, const std::vector<double>& vRadii, double radius, std::vector<Index>& vLabel)
{
	vLabel.assign(mesh.numTets, -1);
	std::vector<Index> vStack;
	Index num = 0;
	for (std::size_t first = 0; first < mesh.numTets; ++first) {
		if (vLabel[first] >= 0 || vRadii[first] > radius) continue;
		vLabel[first] = num;
		vStack.push_back(static_cast<Index>(first));
		while (!vStack.empty()) {
			const Index tet = vStack.back();
			vStack.pop_back();
			for (int i = 0; i < 4; ++i) {
				const Index next = mesh.neighbours(tet)[i];
				if (next < 0 || vLabel[at(next)] >= 0 || vRadii[at(next)] > radius) continue;
				vLabel[at(next)] = num;
				vStack.push_back(next);
			}
		}
		++num;
	}
	return num;
}

void addTet(const Mesh& mesh, Index tet, Index component, AlphaShape& shape)
{
	const Index* p = mesh.corners(tet);
	const double det =
	    dot(mesh.between(p[0], p[1]), cross(mesh.between(p[0], p[2]), mesh.between(p[0], p[3])));
	shape.vTets.push_back(tet);
	shape.vComponents.push_back(component);
	shape.vVolumes[at(component)] += std::max(0.0, det);
}

void addTriangle(const Mesh& mesh, Index tet, int i, AlphaShape& shape)
{
	const auto [a, b, c] = mesh.facet(tet, i);
	shape.vTriangles.insert(shape.vTriangles.end(), {a, b, c});
	shape.vTetsOfTriangles.push_back(tet);
	shape.area += norm(cross(mesh.between(a, b), mesh.between(a, c))) / 2;
}

} // namespace

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
	const Mesh checked(mesh);
	AlphaShape shape;
	shape.radius = radius;
	std::vector<Index> vLabel;
	shape.vVolumes.resize(at(labelComponents(checked, vRadii, radius, vLabel)));
	for (Index tet = 0; at(tet) < mesh.numTets; ++tet) {
		if (vLabel[at(tet)] < 0) continue;
		addTet(checked, tet, vLabel[at(tet)], shape);
		for (int i = 0; i < 4; ++i) {
			const Index next = checked.neighbours(tet)[i];
			if (next < 0 || vLabel[at(next)] < 0) addTriangle(checked, tet, i, shape);
		}
	}
	for (double& volume : shape.vVolumes) volume /= 6;
	shape.volume = std::accumulate(shape.vVolumes.begin(), shape.vVolumes.end(), 0.0);
	return shape;
}

} // namespace TULO3D::shapes
