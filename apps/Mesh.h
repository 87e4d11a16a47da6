// SPDX-License-Identifier: MIT
// The mesh as numbers: what every writer, the audit of the links and the statistics work on.
#pragma once

#include <ParallelMesh.h>
#include <Tulo_3D.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace app {

/// The corners of facet i of a tetrahedron, counter-clockwise from outside.
constexpr int kOutside[4][3] = {{1, 2, 3}, {0, 3, 2}, {0, 1, 3}, {0, 2, 1}};

/// A triangulation, with its vertices and its hull as arrays.
///
/// Vertices are numbered in the order in which their points first came up in the input, so that vertex i
/// is input point i when there is no duplicate point. The tetrahedra of an engine stay there, because all of them as
/// arrays would take a third more memory: `forEachTet` reads them in pieces.
struct Mesh
{
	/// The engine that has the tetrahedra; null when they are arrays, made in several threads.
	TULO3D::Tulo_3D* pEngine = nullptr;
	TULO3D::ParallelMesh arrays;
	/// x, y, z of each vertex.
	std::vector<double> vCoordinates;
	/// The first input point of each vertex.
	std::vector<std::int32_t> vFirstInput;
	/// The vertex of each input point; empty when there is no duplicate point, since then they are the same.
	std::vector<std::int32_t> vVertexOfInput;
	/// Three vertices a facet of the convex hull, counter-clockwise from outside.
	std::vector<std::int32_t> vHullCorners;

	std::size_t numVertices() const { return vFirstInput.size(); }
	std::size_t numTets() const { return pEngine ? pEngine->getNumTetrahedra() : arrays.numTets; }
	std::size_t numHullFacets() const { return vHullCorners.size() / 3; }
	std::size_t numFacets() const { return (4 * numTets() + numHullFacets()) / 2; }
	TULO3D::Point3 point(std::size_t vertex) const
	{
		const double* p = &vCoordinates[3 * vertex];
		return {p[0], p[1], p[2]};
	}
};

/// The mesh; `vHandles` are those of the one batch that was inserted.
Mesh makeMesh(TULO3D::Tulo_3D& engine, const std::vector<TULO3D::Point3*>& vHandles);
/// The mesh of points x, y, z, x, y, z, ..., of which `arrays` was made.
Mesh makeMesh(TULO3D::ParallelMesh arrays, std::vector<double> vCoordinates);

/// All tetrahedra as arrays: those of the mesh, or copied from the engine.
class TetArrays
{
public:
	/// The mesh must outlive it. A tetrahedron at each vertex is copied only if `bAtVertices`.
	explicit TetArrays(const Mesh& mesh, bool bAtVertices = false);
	TetArrays(const TetArrays&) = delete;
	TetArrays& operator=(const TetArrays&) = delete;

	const std::int32_t* pTetOfVertex;
	const std::int32_t* pCorners;
	const std::int32_t* pNeighbours;

private:
	std::vector<std::int32_t> vTetOfVertex, vCorners, vNeighbours;
};

/// Calls `visit(pCorners)`, or `visit(pCorners, pNeighbours)`, for each tetrahedron in turn: its four
/// vertices in positive order, and the tetrahedron beyond each of its facets, -1 on the hull.
template <class Visit>
void forEachTet(const Mesh& mesh, Visit visit)
{
	using Row = const std::int32_t*;
	constexpr bool bNeighbours = std::is_invocable_v<Visit, Row, Row>;
	if (!mesh.pEngine) {
		for (std::size_t i = 0; i < 4 * mesh.numTets(); i += 4) {
			if constexpr (bNeighbours)
				visit(&mesh.arrays.corners[i], &mesh.arrays.neighbours[i]);
			else
				visit(&mesh.arrays.corners[i]);
		}
		return;
	}
	constexpr std::size_t kPiece = 8192;
	std::vector<std::int32_t> vCorners(4 * kPiece), vNeighbours(4 * kPiece);
	TULO3D::MeshArrays piece;
	piece.pCorners = vCorners.data();
	piece.pNeighbours = bNeighbours ? vNeighbours.data() : nullptr;
	piece.numTets = kPiece;
	for (const auto num = mesh.numTets(); piece.firstTet < num; piece.firstTet += kPiece) {
		mesh.pEngine->copyTo(piece);
		const std::size_t end = 4 * std::min(kPiece, num - piece.firstTet);
		for (std::size_t i = 0; i < end; i += 4) {
			if constexpr (bNeighbours)
				visit(&vCorners[i], &vNeighbours[i]);
			else
				visit(&vCorners[i]);
		}
	}
}

/// The number of each vertex among the given ones, in the order of the mesh; -1 for one that is not given. They
/// may be given repeatedly, as the corners of triangles.
std::vector<std::int32_t> numberVertices(const Mesh& mesh, const std::vector<std::int32_t>& vGiven);

/// How many vertices are corners of hull facets.
std::size_t numHullVertices(const Mesh& mesh);

/// Checks the links of the whole mesh from its arrays alone: neighbours name each other and share their
/// facet, every vertex has an incident tetrahedron that has it as a corner, the hull is closed, and
/// V - E + F - T = 1. Returns what is wrong, or null. The library's own check, which tests the geometry,
/// complements this one.
const char* findBrokenLink(const Mesh& mesh);

} // namespace app
