// SPDX-License-Identifier: MIT
// The mesh as contiguous arrays of numbers, for files, bindings and other programs.
#pragma once

#include <cstddef>
#include <cstdint>

namespace TULO3D {

/// Where `Tulo_3D::copyTo` writes; null for what is not wanted.
///
/// Vertex i is the one with that number (`Point3::getNumber`), tetrahedron t the t-th one that
/// `Tulo_3D::getTetrahedra` lists. Numbers of tetrahedra change with every insertion, those of vertices
/// do not. A mesh of more than 2,147,483,647 tetrahedra has no `pTetOfVertex` and no `pNeighbours`; its
/// coordinates and corners can be read.
struct MeshArrays
{
	double* pCoordinates = nullptr; ///< x, y, z of each vertex: 3 numbers a vertex
	std::int32_t* pTetOfVertex =
	    nullptr; ///< a tetrahedron at each vertex; -1 when it is not in the mesh
	std::int32_t* pCorners = nullptr;    ///< 4 vertices a tetrahedron, in positive order
	std::int32_t* pNeighbours = nullptr; ///< 4 tetrahedra each, i beyond facet i; -1 on the hull

	///@{
	/// `pCorners` and `pNeighbours` take `numTets` tetrahedra from number `firstTet` on, or as many as
	/// there are: all, by default. A mesh can so be read in pieces that need little memory.
	std::size_t firstTet = 0;
	std::size_t numTets = SIZE_MAX;
	///@}
};

} // namespace TULO3D
