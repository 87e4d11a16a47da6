// SPDX-License-Identifier: MIT
// What the options make of the mesh: its hull, a part of its tetrahedra, its Voronoi cells, qualities.
#pragma once

#include "Attributes.h"
#include "Mesh.h"

#include <shapes/Solid.h>
#include <shapes/Voronoi.h>

#include <string>
#include <vector>

namespace app {

enum class ShapeKind { kMesh, kHull, kAlpha, kMaxEdge, kVoronoi };

/// What the options ask for.
struct ShapeRequest
{
	ShapeKind kind = ShapeKind::kMesh;
	/// The radius of an alpha shape, 0 for the smallest one that keeps every point; or the longest edge.
	double limit = 0;
	bool bQuality = false;

	bool isAny() const { return kind != ShapeKind::kMesh || bQuality; }
};

/// The name of the option, as the messages have it; empty for the mesh.
const char* optionOf(ShapeKind kind);

/// The result, as far as it was asked for.
struct Shape
{
	ShapeKind kind = ShapeKind::kMesh;
	/// The radius or the longest edge that was allowed.
	double limit = 0;
	/// The tetrahedra that are left and their boundary; or the triangles of the hull, its area and its volume.
	TULO3D::shapes::Solid solid;
	/// A cell for each vertex, clipped to the hull, and x, y, z of the circumcentres.
	TULO3D::shapes::VoronoiCells cells;
	std::vector<double> vCircumcentres;
	/// For each tetrahedron that is left: its component, where some may have been dropped, and its qualities.
	std::vector<Attribute> vTetValues;

	/// True when only the tetrahedra of `solid` are written.
	bool isPart() const { return kind == ShapeKind::kAlpha || kind == ShapeKind::kMaxEdge; }
	bool hasQuality() const { return vTetValues.size() > 1; }
};

/// Throws when no tetrahedron is left.
Shape computeShape(const Mesh& mesh, const ShapeRequest& request);

inline std::size_t numTets(const Mesh& mesh, const Shape& shape)
{
	return shape.isPart() ? shape.solid.vTets.size() : mesh.numTets();
}

/// As `forEachTet` of the mesh, for the tetrahedra that are left; neighbours are numbers among these.
template <class Visit>
void forEachTet(const Mesh& mesh, const Shape& shape, Visit visit)
{
	if (!shape.isPart()) return forEachTet(mesh, visit);
	using Row = const std::int32_t*;
	const auto& vTets = shape.solid.vTets;
	std::size_t next = 0;
	std::int32_t tet = -1;
	const auto isLeft = [&] {
		++tet;
		if (next == vTets.size() || vTets[next] != tet) return false;
		++next;
		return true;
	};
	if constexpr (std::is_invocable_v<Visit, Row, Row>) {
		std::vector<std::int32_t> vNumbers(mesh.numTets(), -1);
		for (std::size_t i = 0; i < vTets.size(); ++i)
			vNumbers[static_cast<std::size_t>(vTets[i])] = static_cast<std::int32_t>(i);
		forEachTet(mesh, [&](Row pCorners, Row pNeighbours) {
			if (!isLeft()) return;
			std::int32_t aNeighbours[4];
			for (int i = 0; i < 4; ++i)
				aNeighbours[i] =
				    pNeighbours[i] < 0 ? -1 : vNumbers[static_cast<std::size_t>(pNeighbours[i])];
			visit(pCorners, aNeighbours);
		});
	} else {
		forEachTet(mesh, [&](Row pCorners) {
			if (isLeft()) visit(pCorners);
		});
	}
}

} // namespace app
