// SPDX-License-Identifier: MIT
// The mesh of a batch by all cores of a machine.
#pragma once

#include "tulo3dExport.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace TULO3D {

/// A mesh that is its own: arrays of numbers, without an engine.
///
/// Tetrahedra are in the order of their owners, which are the corners that come first along the library's
/// space-filling curve; the owner is corner 0. Neither this order nor anything else depends on the number of threads.
struct ParallelMesh
{
	std::size_t numVertices = 0; ///< distinct points
	std::size_t numTets = 0;     ///< none when all points are coplanar

	/// The vertex of each input point. Vertices are numbered in the order in which their points were first given.
	std::unique_ptr<std::int32_t[]> vertexOfPoint;
	/// The lowest tetrahedron at each vertex; -1 when there is none.
	std::unique_ptr<std::int32_t[]> tetOfVertex;
	std::unique_ptr<std::int32_t[]> corners; ///< 4 vertices a tetrahedron, in positive order
	std::unique_ptr<std::int32_t[]>
	    neighbours; ///< 4 tetrahedra each, i beyond facet i; -1 on the hull
};

/// The Delaunay mesh of `numPoints` points x, y, z, x, y, z, ..., by `numThreads` threads, one of which is the
/// caller's; 0 stands for as many as the machine has.
///
/// These are the tetrahedra that one `Tulo_3D` makes of the points as the first batch of its process, one by one,
/// whatever the number of threads; also of points on common spheres, where a Delaunay mesh is not unique.
///
/// Throws `TuloException` where a coordinate is not finite or beyond 1e60, and for a mesh of more than 2,147,483,647
/// tetrahedra; `std::bad_alloc` without memory.
///
/// `progress`, unless empty, is called now and then, in the thread of the caller alone, with how many of the points
/// are in; when it returns false, this throws `TuloException`; what it throws leaves this function as well.
TULO3D_API ParallelMesh triangulateInParallel(const double* pCoordinates, std::size_t numPoints,
    unsigned numThreads = 0,
    const std::function<bool(std::size_t, std::size_t)>& progress = nullptr);

/// True when across every facet the neighbour's opposite vertex lies on the far side and not inside the circumsphere,
/// as `Tulo_3D::checkValidity` tests it; false also where numbers of vertices and neighbours do not fit together.
/// Prints nothing.
///
/// `pCoordinates` are x, y, z of each vertex: those of the points of which the mesh was made, without the repeated
/// ones. Of `numThreads` threads one is the caller's; 0 stands for as many as the machine has. Throws
/// `std::bad_alloc` without memory.
TULO3D_API bool isDelaunay(
    const ParallelMesh& mesh, const double* pCoordinates, unsigned numThreads = 0);

} // namespace TULO3D
