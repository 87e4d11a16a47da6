// SPDX-License-Identifier: MIT
// The Voronoi cells of all vertices: whole, or clipped to a box or to the convex hull.
#pragma once

#include "shapes/MeshView.h"

#include <memory>
#include <vector>

namespace TULO3D::shapes {

/// A box along the axes.
struct Box
{
	double low[3];
	double high[3];
};

/// What a face of a cell has behind it instead of a vertex: one of the sides -1 to -6 of a box (low x, high x,
/// low y, high y, low z, high z), or the hull.
constexpr std::int32_t kFirstBoxSide = -1;
constexpr std::int32_t kHullSide = -7;

/// Cells of successive vertices as flat arrays. Cell i has the faces vCellBegins[i] to vCellBegins[i + 1] - 1, face f
/// the corners vCorners[vFaceBegins[f]] to vCorners[vFaceBegins[f + 1] - 1], counter-clockwise from outside.
///
/// Corner c is the circumcentre of tetrahedron c, or, from the number of tetrahedra on, one that clipping has made:
/// the (c - number)-th of `vMade`. Corner -1 is at infinity: it comes first in each face that is unbounded; clipped cells
/// have none. As the cells are those of the mesh, more than three faces may meet in a point: where points are
/// cospherical, several corners coincide, and faces may have no area.
struct VoronoiCells
{
	std::vector<std::int64_t> vCellBegins; ///< one more than there are cells
	std::vector<std::int32_t>
	    vNeighbours; ///< for each face the vertex whose cell is behind it, or a side
	std::vector<std::int64_t> vFaceBegins; ///< one more than there are faces
	std::vector<std::int32_t> vCorners;
	std::vector<double> vMade; ///< x, y, z of each corner made by clipping; each cell has its own
	std::vector<double> vVolumes; ///< of each cell; infinite when it is unbounded
};

/// The Voronoi diagram of a mesh, read cell by cell.
///
/// Which faces and corners a cell has is read from the mesh, and is exact: a face for each edge of the mesh at the
/// vertex, a corner for each tetrahedron. Corners are circumcentres, computed as `AlphaShapes` does; volumes are
/// computed relative to the vertex. So both are as good far from the origin. Volumes are rounded relative to the
/// distance of the cell's corners: of points that lie in a plane up to rounding, these are so far away that no digit may
/// be right. A vertex that is in no tetrahedron has no cell: no faces and volume 0.
///
/// The duality: F. Aurenhammer, Voronoi diagrams, ACM Computing Surveys 23 (1991). A cell that reaches beyond a box
/// takes time in proportion to its corners, one that reaches beyond the hull in proportion to their number times
/// that of the hull facets which meet the cell.
class Voronoi
{
public:
	/// The whole diagram; cells of vertices on the hull are unbounded. Needs 28 bytes a tetrahedron and 8 a vertex.
	explicit Voronoi(const MeshView& mesh);
	/// Cells clipped to a box, which may leave out points: its volume is the sum of all cells'. Throws
	/// `std::invalid_argument` unless it is finite and each low coordinate is below the high one.
	Voronoi(const MeshView& mesh, const Box& box);
	/// Cells clipped to the convex hull, whose volume is the sum of theirs.
	static Voronoi clippedToHull(const MeshView& mesh);

	Voronoi(Voronoi&& other) noexcept;
	Voronoi& operator=(Voronoi&& other) noexcept;
	~Voronoi();

	/// x, y, z of the circumcentre of each tetrahedron; infinite where it is beyond the range of doubles.
	std::vector<double> circumcentres() const;

	/// The volume of each vertex's cell.
	std::vector<double> volumes();

	/// The cells of `numVertices` vertices from number `first` on, or of as many as there are: all, by default. A large
	/// diagram can so be read in pieces.
	VoronoiCells cells(std::size_t first = 0, std::size_t numVertices = SIZE_MAX);

private:
	class Reader;
	std::unique_ptr<Reader> pReader;
};

} // namespace TULO3D::shapes
