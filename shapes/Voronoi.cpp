// SPDX-License-Identifier: MIT
// Voronoi cells as polyhedra: the dual of each vertex's star, clipped.
#include "shapes/Voronoi.h"

#include "Constructions.h"
#include "HullClip.h"
#include "Polyhedron.h"
#include "Star.h"
#include "WholeVolumes.h"

#include <array>
#include <limits>
#include <optional>
#include <stdexcept>

namespace TULO3D::shapes {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
/// The label of the face that closes an unbounded cell at infinity.
constexpr Index kFaceAtInfinity = std::numeric_limits<Index>::min();

} // namespace

class Voronoi::Reader
{
public:
	explicit Reader(const MeshView& view);
	void clipTo(const Box& theBox);
	void clipToHull() { hullClip.emplace(mesh, star); }

	std::vector<double> circumcentres() const;
	double volumeOf(Index vertex);
	std::vector<double> volumes();
	void append(Index vertex, VoronoiCells& cells);
	std::size_t numVertices() const { return mesh.numVertices; }

private:
	void build(Index vertex);
	void addRing(Index vertex);
	Index cornerAtInfinity(Index tet, Index opposite);
	void clipToBox(Index vertex);
	bool isBeyondBox(std::size_t tet) const;
	bool isClipped() const { return box || hullClip; }

	Mesh mesh;
	std::vector<Vec> vArms;        // from corner 0 to the circumcentre
	std::vector<bool> bAtInfinity; // where the arm is only a direction
	Star star;
	std::optional<Box> box;
	std::optional<HullClip> hullClip;

	// The cell in work, and its corners at infinity: for each facet of the star, and in their order.
	Polyhedron cell;
	bool bUnbounded = false; // has a face at infinity
	bool bEndless = false;   // has that, or a corner there
	Ring ring;
	std::vector<std::array<Index, 4>> vCornersAtInfinity;
	std::vector<Index> vNextAtInfinity, vNumbers;
};

Voronoi::Reader::Reader(const MeshView& view) : mesh(view), star(mesh)
{
	vArms.reserve(mesh.numTets);
	bAtInfinity.reserve(mesh.numTets);
	for (std::size_t t = 0; t < mesh.numTets; ++t) {
		const Circumsphere sphere = circumsphere(mesh, static_cast<Index>(t));
		vArms.push_back(sphere.arm);
		bAtInfinity.push_back(!std::isfinite(sphere.radius));
	}
}

void Voronoi::Reader::clipTo(const Box& theBox)
{
	for (int i = 0; i < 3; ++i) {
		const double low = theBox.low[i], high = theBox.high[i];
		if (!(low < high) || !std::isfinite(low) || !std::isfinite(high)) {
			throw std::invalid_argument(
			    "A box for Voronoi cells must be finite, each low coordinate below the high one.");
		}
	}
	box = theBox;
}

std::vector<double> Voronoi::Reader::circumcentres() const
{
	std::vector<double> v;
	v.reserve(3 * mesh.numTets);
	for (std::size_t t = 0; t < mesh.numTets; ++t) {
		const double* p = mesh.point(mesh.pCorners[4 * t]);
		const Vec arm = bAtInfinity[t] ? Vec{kInfinity, kInfinity, kInfinity} : vArms[t];
		v.insert(v.end(), {p[0] + arm.x, p[1] + arm.y, p[2] + arm.z});
	}
	return v;
}

/// The corner beyond the hull facet of `tet` without its corner `opposite`: in the direction of its normal.
Index Voronoi::Reader::cornerAtInfinity(Index tet, Index opposite)
{
	const int i = mesh.indexOf(tet, opposite);
	Index& corner = vCornersAtInfinity[at(star.placeOf(tet))][at(i)];
	if (corner < 0) {
		const auto [a, b, c] = mesh.facet(tet, i);
		corner = cell.addCorner({unitNormal(mesh, a, b, c), 0, -1});
	}
	return corner;
}

/// The face across the edge that `ring` surrounds.
void Voronoi::Reader::addRing(Index vertex)
{
	const AtEdge &first = ring.vPlaces.front(), &last = ring.vPlaces.back();
	if (!ring.bClosed) {
		bUnbounded = bEndless = true;
		const Index before = cornerAtInfinity(first.tet, mesh.otherPivot(first, vertex, ring.end));
		const Index after = cornerAtInfinity(last.tet, last.pivot);
		vNextAtInfinity.resize(cell.corners().size(), -1);
		vNextAtInfinity[at(before)] = after; // as the face at infinity, on the other side, has it
		cell.addToPolygon(after);
		cell.addToPolygon(before);
	}
	for (const AtEdge& place : ring.vPlaces) cell.addToPolygon(star.placeOf(place.tet));
	const Vec edge = mesh.between(vertex, ring.end);
	cell.addFace(ring.end, unit(edge), norm(edge) / 2);
}

/// Makes the cell of `vertex`, relative to it. Corner i is the circumcentre of the i-th tetrahedron of the star.
void Voronoi::Reader::build(Index vertex)
{
	cell.clear();
	bUnbounded = bEndless = false;
	star.collect(vertex);
	vCornersAtInfinity.assign(star.tets().size(), {-1, -1, -1, -1});
	vNextAtInfinity.clear();
	for (const Index tet : star.tets()) {
		const Vec& arm = vArms[at(tet)];
		if (bAtInfinity[at(tet)]) {
			cell.addCorner({arm, 0, tet});
			bEndless = true;
		} else {
			cell.addCorner({mesh.between(vertex, mesh.corners(tet)[0]) + arm, 1, tet});
		}
	}
	while (star.nextRing(ring)) addRing(vertex);
	if (!isClipped()) return;
	cell.addFacesAlong(vNextAtInfinity, kFaceAtInfinity, {}, 0);
	if (box) clipToBox(vertex);
	if (hullClip) hullClip->clip(vertex, cell);
	cell.joinCornersAtInfinity();
	bUnbounded = bEndless = false;
}

void Voronoi::Reader::clipToBox(Index vertex)
{
	const double* p = mesh.point(vertex);
	const Vec low{box->low[0] - p[0], box->low[1] - p[1], box->low[2] - p[2]};
	const Vec high{box->high[0] - p[0], box->high[1] - p[1], box->high[2] - p[2]};
	cell.cut({-1, 0, 0}, -low.x, kFirstBoxSide);
	cell.cut({1, 0, 0}, high.x, kFirstBoxSide - 1);
	cell.cut({0, -1, 0}, -low.y, kFirstBoxSide - 2);
	cell.cut({0, 1, 0}, high.y, kFirstBoxSide - 3);
	cell.cut({0, 0, -1}, -low.z, kFirstBoxSide - 4);
	cell.cut({0, 0, 1}, high.z, kFirstBoxSide - 5);
}

double Voronoi::Reader::volumeOf(Index vertex)
{
	build(vertex);
	return bEndless ? kInfinity : cell.volume();
}

/// True when the cells at `tet` may reach beyond the box: where its centre does.
bool Voronoi::Reader::isBeyondBox(std::size_t tet) const
{
	const double* p = mesh.point(mesh.pCorners[4 * tet]);
	const double centre[3] = {p[0] + vArms[tet].x, p[1] + vArms[tet].y, p[2] + vArms[tet].z};
	for (int i = 0; i < 3; ++i) {
		if (!(box->low[i] <= centre[i] && centre[i] <= box->high[i])) return true;
	}
	return bAtInfinity[tet];
}

/// Only cells to be clipped are made.
std::vector<double> Voronoi::Reader::volumes()
{
	std::vector<double> v = wholeVolumes(mesh, vArms, bAtInfinity);
	if (!isClipped()) return v;
	std::vector<bool> bClipped(mesh.numVertices, false);
	for (std::size_t i = 0; i < 4 * mesh.numTets; ++i) {
		const auto vertex = at(mesh.pCorners[i]);
		if (!std::isfinite(v[vertex]) || (box && isBeyondBox(i / 4))) bClipped[vertex] = true;
	}
	if (hullClip) hullClip->mark(bClipped);
	for (std::size_t i = 0; i < v.size(); ++i) {
		if (bClipped[i]) v[i] = volumeOf(static_cast<Index>(i));
	}
	return v;
}

void Voronoi::Reader::append(Index vertex, VoronoiCells& cells)
{
	cells.vVolumes.push_back(volumeOf(vertex));
	vNumbers.assign(cell.corners().size(), -2); // in the result
	const double* p = mesh.point(vertex);
	const auto numberOf = [&](Index corner) {
		Index& number = vNumbers[at(corner)];
		if (number != -2) return number;
		const Polyhedron::Corner& c = cell.corners()[at(corner)];
		if (c.source >= 0) return number = c.source;
		if (c.weight == 0) return number = -1;
		const std::size_t made = mesh.numTets + cells.vMade.size() / 3;
		if (made > at(std::numeric_limits<Index>::max()))
			throw std::length_error(
			    "The cells have more than 2,147,483,647 corners: read them in pieces.");
		cells.vMade.insert(cells.vMade.end(), {p[0] + c.p.x, p[1] + c.p.y, p[2] + c.p.z});
		return number = static_cast<Index>(made);
	};
	for (const Polyhedron::Face& face : cell.faces()) {
		// The two corners at infinity of an unbounded face are one in the result.
		std::size_t begin = face.begin;
		begin += bUnbounded && cell.corners()[at(cell.polygons()[begin])].source < 0;
		for (std::size_t i = begin; i < face.end; ++i)
			cells.vCorners.push_back(numberOf(cell.polygons()[i]));
		cells.vFaceBegins.push_back(static_cast<std::int64_t>(cells.vCorners.size()));
		cells.vNeighbours.push_back(face.label);
	}
	cells.vCellBegins.push_back(static_cast<std::int64_t>(cells.vNeighbours.size()));
}

Voronoi::Voronoi(const MeshView& mesh) : pReader(std::make_unique<Reader>(mesh))
{
}
Voronoi::Voronoi(const MeshView& mesh, const Box& box) : Voronoi(mesh)
{
	pReader->clipTo(box);
}
Voronoi Voronoi::clippedToHull(const MeshView& mesh)
{
	Voronoi voronoi(mesh);
	voronoi.pReader->clipToHull();
	return voronoi;
}
Voronoi::Voronoi(Voronoi&& other) noexcept = default;
Voronoi& Voronoi::operator=(Voronoi&& other) noexcept = default;
Voronoi::~Voronoi() = default;

std::vector<double> Voronoi::circumcentres() const
{
	return pReader->circumcentres();
}

std::vector<double> Voronoi::volumes()
{
	return pReader->volumes();
}

VoronoiCells Voronoi::cells(std::size_t first, std::size_t numVertices)
{
	VoronoiCells cells;
	cells.vCellBegins.push_back(0);
	cells.vFaceBegins.push_back(0);
	const std::size_t end = first +
	    std::min(numVertices, pReader->numVertices() - std::min(first, pReader->numVertices()));
	for (std::size_t i = first; i < end; ++i) pReader->append(static_cast<Index>(i), cells);
	return cells;
}

} // namespace TULO3D::shapes
