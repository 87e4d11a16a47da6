// SPDX-License-Identifier: MIT
// The library: make a Tulo_3D, insert points, traverse the mesh. This header includes all others.
#pragma once

#include "Ball3.h"
#include "Bbox3.h"
#include "Edge3.h"
#include "Facet3.h"
#include "MeshArrays.h"
#include "Point3.h"
#include "Segment3.h"
#include "Tet3.h"
#include "TetAroundEdgeIterator.h"
#include "Triangle3.h"
#include "TuloException.h"
#include "Vector3.h"
#include "messages.h"
#include "profiling.h"
#include "testDataGenerators.h"
#include "tulo3dExport.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Everything of the library but `benchCounter`.
namespace TULO3D {

class Dt3;

/// Called during a batch: `numInserted` of its `numVertices` vertices are in the mesh. While the points of
/// a long batch are still being sorted, 0 of as many as there are points. False ends the insertion.
using ProgressHandler = std::function<bool(std::size_t numInserted, std::size_t numVertices)>;

/// A 3D Delaunay tetrahedralization that grows by insertion.
///
/// Points go in one at a time or as a batch, in any mixture; a batch is much faster. Points with
/// equal coordinates become one vertex. Once four points are not coplanar, the mesh is the Delaunay
/// tetrahedralization of the vertices in it, decided by exact arithmetic, however degenerate they
/// are; a hull facet is one whose neighbour is null.
///
/// Vertex pointers are valid for the life of the object, tetrahedron pointers until the next
/// insertion; neither is ever freed by the host. Nothing can be removed.
///
/// Coordinates must be finite and at most 1e60 in magnitude: an insertion with any other throws
/// before it has stored anything. Nonzero ones below 1e-45 make every later insertion slower, as products
/// of them may underflow; all signs stay exact.
///
/// An exception that cuts an insertion short, such as `std::bad_alloc`, leaves an object of which every
/// later call throws `TuloException`; only destroying it is right. Exceptions for what a call was given
/// (coordinates, a vector that is not empty, a tetrahedron that the host has left marked) leave the mesh as
/// it was. But an insertion that meets such a mark has stored its points already: those not yet inserted
/// are vertices, counted and listed, that stay out of the mesh, see `insertLeftOut`.
///
/// One object is to be used by one thread at a time, queries included. Different objects may be used in
/// different threads at the same time, for all operations. Their meshes do not depend on each other,
/// except that which batch is the first one of the process, and gets a smaller margin, is then chance.
///
/// Where the algorithms come from: insertion by cavities, A. Bowyer and D. F. Watson, The Computer
/// Journal 24 (1981); exact signs, J. R. Shewchuk, Discrete & Computational Geometry 18 (1997); the
/// walk, O. Devillers, S. Pion and M. Teillaud, Symposium on Computational Geometry (2001); the
/// stages of a batch, N. Amenta, S. Choi and G. Rote, the same symposium (2003), here without chance.
class TULO3D_API Tulo_3D
{
public:
	/// An empty mesh. Throws `std::bad_alloc` when there is no memory for it.
	Tulo_3D();
	/// Frees all vertices and tetrahedra; every pointer and handle into the mesh ends here.
	~Tulo_3D();
	Tulo_3D(const Tulo_3D&) = delete;
	Tulo_3D& operator=(const Tulo_3D&) = delete;

	/// Inserts a point and returns its vertex: a new one with custom index -1, or the earlier one
	/// with these coordinates.
	///
	/// Deliberate: while all points so far are coplanar they are stored; when the first one off
	/// their plane arrives by this operation, only the four corners of the first tetrahedron enter
	/// the mesh. Insert a batch when coplanar points may come first, or call `insertLeftOut`
	/// afterwards. A point that was left out also enters when it is inserted by this operation again, but
	/// not as part of a batch.
	///
	/// The walk to the point starts at its neighbour on the library's space-filling curve; one of more
	/// than 64 tests of a facet goes on from a nearer vertex of the curve. A batch starts each walk where
	/// the last one ended, and near the point once walks have turned out to be long.
	///
	/// Throws `TuloException` for a coordinate that is not finite or beyond 1e60, and for a point after
	/// 2,147,483,647 vertices.
	Point3* insert(Point3& p);

	/// Inserts a batch; vUserHandles[i] becomes the vertex of vInputPoints[i].
	///
	/// `vUserHandles` should be empty; if it is not, a warning is printed and it is cleared. Throws
	/// `TuloException`, before anything is stored, when any coordinate is not finite or beyond 1e60, or when
	/// the vertices and the points of the batch, duplicates included, are more than 2,147,483,647.
	void insert(std::vector<Point3>& vInputPoints, std::vector<Point3*>& vUserHandles);

	/// Inserts a batch whose vertices need not be told apart.
	void insert(std::vector<Point3>& vInputPoints);

	///@{
	/// The same for constant points; no overload changes its points.
	void insert(const std::vector<Point3>& vInputPoints, std::vector<Point3*>& vUserHandles);
	void insert(const std::vector<Point3>& vInputPoints);
	///@}

	/// Inserts a batch of `numPoints` points given as x, y, z, x, y, z, ... `pVertexNumbers`, unless null,
	/// has room for as many numbers: the i-th becomes that of the vertex of the i-th point. Throws as
	/// above.
	void insert(
	    const double* pCoordinates, std::size_t numPoints, std::int32_t* pVertexNumbers = nullptr);

	/// Inserts the vertices that have stayed out of the mesh: coplanar points that came one by one
	/// before the first tetrahedron, or points of an insertion that met a tetrahedron which the host had left
	/// marked. Returns how many those were; 0 while there is no tetrahedron. Throws `TuloException` when it
	/// meets such a mark; the vertices not yet inserted then stay out.
	std::size_t insertLeftOut();

	/// The tetrahedron that contains `p`, inside or on its boundary. Null when p lies outside the
	/// convex hull, in a hull facet or on its edges (unless it is a vertex), when there is no
	/// tetrahedron, or when p is beyond the range of coordinates.
	///
	/// Of several tetrahedra that share the facet, edge or vertex on which p lies, it is the one where a
	/// walk ends that starts at the vertex next to p along the library's space-filling curve. A walk that
	/// has made 64 tests of a facet goes on from a nearer vertex if there is one around p on the curve.
	Tet3* locate(const Point3& p);

	/// Appends every distinct vertex to `v`, in the order of the library's space-filling curve.
	void getVertices(std::vector<Point3*>& v) const;

	/// Fills the empty vector `v` with all tetrahedra, in ascending address order. Throws
	/// `TuloException` when `v` is not empty.
	void getTetrahedra(std::vector<Tet3*>& v) const;

	/// Replaces the contents of `v` by all tetrahedra that have `pVtx` as a corner, in ascending
	/// address order. A vertex that is not in the mesh is reported, and `v` is left empty.
	void getTetsAroundVertex(Point3* pVtx, std::vector<Tet3*>& v);

	/// The number of distinct vertices, those out of the mesh included.
	std::size_t getNumVertices() const;

	/// The number of tetrahedra.
	std::size_t getNumTetrahedra() const;

	/// Writes the mesh to arrays of the caller, which have room for `getNumVertices` vertices and
	/// `getNumTetrahedra` tetrahedra, or for the tetrahedra of a piece of it. Throws `TuloException`, before
	/// it has written anything, when `pTetOfVertex` or `pNeighbours` is wanted of a mesh of more than
	/// 2,147,483,647 tetrahedra, also for a piece: those numbers have 32 bits.
	void copyTo(const MeshArrays& arrays) const;

	/// Prints every tetrahedron to standard output under the heading `name`.
	void print(const std::string& name);

	/// Writes all tetrahedra, and `pVtx` unless it is null, as an OOGL drawing to `filename`, with six
	/// digits. Ends the process with status 1 when the file cannot be opened (see `setStopHandler`).
	void show(const std::string& filename, Point3* pVtx);

	/// True when across every facet the neighbour's opposite vertex lies on the far side and, with
	/// `bCheckSphereInc`, not inside the circumsphere. The first violation is printed and drawn to a
	/// file in the current folder. `name` labels the messages.
	bool checkValidity(const std::string& name, bool bCheckSphereInc);

	/// True once there is a tetrahedron: once four points that are not coplanar have arrived.
	bool is3D() const;

	/// Makes the batch insert announce itself on standard output.
	void setVerbosity(bool bVerbose);

	/// Chooses what is called while a batch enters the mesh: some hundred times, in any case after each
	/// 400,000 new tetrahedra (some 40 ms), and once all are in. An empty function, the default, stands for
	/// none.
	///
	/// When the handler returns false, the insertion throws `TuloException`; what the handler throws leaves
	/// the insertion as well. Either way this object can then only be destroyed. The handler runs in the
	/// thread of the insertion and must not use this object.
	void setProgress(ProgressHandler handler);

private:
	Dt3* pDt3;
};

/// False: this is the debug build of the interface.
TULO3D_API bool isRelease();
///@{
/// One of the three numbers of the version.
TULO3D_API int getMajorVersionNumber();
TULO3D_API int getMinorVersionNumber();
TULO3D_API int getRevisionNumber();
///@}
/// Library name, build type of the interface and version, as in "Tulo3D, DEBUG, v1.2.3".
TULO3D_API std::string getTulo3DVersion();

} // namespace TULO3D
