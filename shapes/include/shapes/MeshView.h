// SPDX-License-Identifier: MIT
// The mesh as all shapes read it: arrays that belong to somebody else.
#pragma once

#include <cstddef>
#include <cstdint>

/// The add-on library `Tulo3D::Shapes`: convex hull, alpha shapes, Voronoi cells, quality.
///
/// It reads a mesh as arrays and needs nothing else of the library. A vertex or a tetrahedron is its number in
/// these arrays; results are flat arrays as well. Unless a comment says otherwise, everything takes time and
/// memory in proportion to the mesh. An object is to be used by one thread at a time, different objects by
/// different threads.
namespace TULO3D::shapes {

/// A Delaunay mesh as arrays, laid out as `Tulo_3D::copyTo` writes them. The arrays must outlive whatever
/// is made from the view. Points that are in no tetrahedron, such as duplicate ones, may be among the vertices.
///
/// All functions that take a view throw `std::invalid_argument` when an array is null though the mesh is not
/// empty, when a corner is no vertex or a neighbour no tetrahedron, and when there are more than 2,147,483,647
/// of either. That the mesh is Delaunay, and that neighbours agree, is not checked.
struct MeshView
{
	const double* pCoordinates = nullptr; ///< x, y, z of each vertex, finite, at most 1e60
	std::size_t numVertices = 0;
	const std::int32_t* pCorners = nullptr;    ///< 4 vertices a tetrahedron, in positive order
	const std::int32_t* pNeighbours = nullptr; ///< 4 each, i beyond facet i; negative on the hull
	std::size_t numTets = 0;
};

} // namespace TULO3D::shapes
