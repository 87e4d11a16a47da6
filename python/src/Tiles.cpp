// SPDX-License-Identifier: MIT
// One mesh by many processes, which share files.
#include "Tiles.h"
#include "Arrays.h"
#include "Dt3.h"
#include "lookahead/InsertionOrder.h"
#include "predicates/Underflow.h"
#include "tiles/BoxTree.h"
#include "tiles/CurveOrder.h"
#include "tiles/CurvePoints.h"
#include "tiles/Tile.h"
#include "tiles/TileArrays.h"

#include <nanobind/stl/pair.h>
#include <nanobind/stl/tuple.h>
#include <nanobind/stl/vector.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <utility>
#include <vector>

namespace binding {

namespace {

using namespace nb::literals;

using Positions = Array<const std::uint32_t, -1>;
using Ranks = Array<const std::int32_t, -1>;
using Boxes = Array<const double, -1, 6>;

static_assert(sizeof(TULO3D::Box) == 6 * sizeof(double));

std::vector<TULO3D::Point3> toPoints(const Points& points)
{
	std::vector<TULO3D::Point3> v;
	v.reserve(points.shape(0));
	const double* p = points.data();
	for (std::size_t i = 0; i < points.shape(0); ++i, p += 3) v.emplace_back(p[0], p[1], p[2]);
	return v;
}

/// The order of points along the curve through a box with the corners low and high, and their keys in this order.
std::pair<NewArray<std::uint32_t>, NewArray<std::uint32_t>> curveOrder(
    const Points& points, const Points& corners)
{
	expectLength(corners, 2);
	std::vector<std::uint32_t> vOrder, vKeys;
	unlocked([&] {
		TULO3D::Bbox3 around;
		around.add(toPoints(corners));
		const auto vListed = TULO3D::listAlongCurve(points.data(), points.shape(0), around);
		vOrder.reserve(vListed.size());
		vKeys.reserve(vListed.size());
		for (const TULO3D::KeyedInput& listed : vListed) {
			vOrder.push_back(listed.value);
			vKeys.push_back(listed.key);
		}
	});
	return {toArray(std::move(vOrder)), toArray(std::move(vKeys))};
}

/// The first two, three or four points that span a line, a plane or space, by their places; four in positive order.
NewArray<std::int64_t> firstFour(const Points& points)
{
	std::vector<std::int64_t> vFound;
	unlocked([&] {
		std::vector<TULO3D::Point3> v = toPoints(points);
		auto it = v.begin();
		const auto four = TULO3D::findFirstFour(
		    TULO3D::ArdoTest3(), [&]() { return it == v.end() ? nullptr : &*it++; });
		for (const TULO3D::Point3* p : four) {
			if (p != nullptr) vFound.push_back(p - v.data());
		}
	});
	return toArray(std::move(vFound));
}

/// After how many of n vertices each position along the curve is inserted.
NewArray<std::uint32_t> insertionPlaces(const Positions& positions, std::uint32_t n)
{
	std::vector<std::uint32_t> v(positions.shape(0));
	unlocked([&] {
		std::transform(positions.data(), positions.data() + v.size(), v.begin(),
		    [n](std::uint32_t i) { return TULO3D::InsertionOrder::placeOf(i, n); });
	});
	return toArray(std::move(v));
}

bool mayUnderflow(const Points& points)
{
	return unlocked([&] {
		const auto v = toPoints(points);
		return std::any_of(
		    v.begin(), v.end(), [](const TULO3D::Point3& p) { return TULO3D::mayUnderflow(p); });
	});
}

/// The boxes of a part, low and high corner each, one after another.
NewArray<double> boxes(const Points& points)
{
	std::vector<double> v(6 * TULO3D::CurvePoints::numBoxes(points.shape(0)));
	unlocked([&] {
		const std::size_t numBlocks = TULO3D::CurvePoints::numBlocksOf(points.shape(0));
		TULO3D::CurvePoints::boxBlocks(
		    points.data(), points.shape(0), 0, numBlocks, reinterpret_cast<TULO3D::Box*>(v.data()));
	});
	return toArray(std::move(v));
}

/// The numbers of tetrahedra by their positions, of those that a tile has written; -1 where there is none.
NewArray<std::int32_t> findOwned(const Array<const std::uint32_t, -1, 4>& wanted,
    std::uint32_t firstPosition, const Positions& firstOfOwner, const Tuples& corners)
{
	std::vector<std::int32_t> vFound(wanted.shape(0));
	unlocked([&] {
		for (std::size_t i = 0; i < vFound.size(); ++i) {
			const std::uint32_t* p = wanted.data() + 4 * i;
			std::array<std::int32_t, 4> tet{};
			std::copy(p, p + 4, tet.begin());
			const std::size_t owner = p[0] - firstPosition;
			vFound[i] = owner + 1 < firstOfOwner.shape(0)
			    ? TULO3D::TileArrays::find(tet, firstOfOwner.data() + owner, corners.data())
			    : TULO3D::TileArrays::kForeign;
		}
	});
	return toArray(std::move(vFound));
}

/// The number of edges whose lower end is one of the tile's own vertices.
std::size_t countEdges(const TULO3D::Tile& tile)
{
	std::vector<TULO3D::Tet3*> vStar;
	std::vector<std::uint32_t> vEnds;
	std::vector<bool> vDone(tile.ownRange().size());
	std::size_t numEdges = 0;
	tile.mesh().liveTets().forEach([&](const TULO3D::Tet3* pTet) {
		for (int i = 0; i < 4; ++i) {
			const TULO3D::Point3& vtx = *pTet->getCorner(i);
			const std::uint32_t position = tile.position(vtx);
			if (!tile.isOwn(vtx) || vDone[position - tile.ownRange().first]) continue;
			vDone[position - tile.ownRange().first] = true;
			TULO3D::Dt3::getTetsAroundVertex(pTet->getCorner(i), vStar);
			vEnds.clear();
			for (const TULO3D::Tet3* pAround : vStar) {
				for (int j = 0; j < 4; ++j) {
					const std::uint32_t end = tile.position(*pAround->getCorner(j));
					if (end > position) vEnds.push_back(end);
				}
			}
			std::sort(vEnds.begin(), vEnds.end());
			numEdges +=
			    static_cast<std::size_t>(std::unique(vEnds.begin(), vEnds.end()) - vEnds.begin());
		}
	});
	return numEdges;
}

/// What a tile has found. The tetrahedra are those that its vertices own, by positions of corners and by their numbers
/// among themselves.
using TileResult = std::tuple<
    NewArray<std::uint32_t>, // of each vertex and behind the last: the first it owns
    NewArray<std::int32_t>,  // corners
    NewArray<std::int32_t>,  // neighbours
    NewArray<std::
            uint32_t>, // facets at its border, nine numbers each: positions of a tetrahedron, which facet of
                       // it, positions of the one beyond, all ones beyond the hull
    NewArray<std::uint64_t>, // for each tile, the checksum of the tetrahedra that both know
    std::size_t,             // the number of vertices of other tiles that are in
    std::size_t,             // the number of rounds in which they have come
    std::size_t>;            // the number of edges, or zero

/// All parts of the points, which a process reads where they are. The arrays may be files mapped into memory.
class Tiles
{
public:
	Tiles(std::vector<Points> vThePoints, std::vector<Ranks> vTheRanks,
	    std::vector<Boxes> vTheBoxes, const Positions& lowest, bool bMayUnderflow)
	    : vPoints(std::move(vThePoints)),
	      vRanks(std::move(vTheRanks)),
	      vBoxes(std::move(vTheBoxes)),
	      points(partsOf(vPoints, vRanks, vBoxes), {lowest.data(), lowest.data() + lowest.shape(0)},
	          bMayUnderflow),
	      tree(points)
	{
		for (std::size_t i = 0; i < vPoints.size(); ++i) {
			const std::uint32_t first = points.firstOfPart(i);
			vRanges.push_back({first, first + static_cast<std::uint32_t>(vPoints[i].shape(0))});
		}
	}
	Tiles(const Tiles&) = delete;
	Tiles& operator=(const Tiles&) = delete;

	/// `progress` is called now and then with two counts; what it throws ends it.
	TileResult triangulate(std::size_t part, bool bCountEdges, nb::handle progress) const
	{
		Watch watch(progress);
		if (part >= vRanges.size()) throw nb::value_error("no part of this number");
		std::vector<std::uint32_t> vFirst(vRanges[part].size() + std::size_t{1}, 0);
		std::vector<std::int32_t> vCorners, vNeighbors;
		std::vector<std::uint32_t> vLinks;
		std::vector<std::uint64_t> vSums;
		std::size_t numReceived = 0, numRounds = 0, numEdges = 0;
		{
			const nb::gil_scoped_release unlock;
			const LibraryScope scope;
			TULO3D::Tile tile(points, tree, vRanges[part], TULO3D::bestTests());
			tile.setProgress([&watch](std::size_t numInserted, std::size_t numVertices) {
				watch.look(numInserted, numVertices);
				return true;
			});
			tile.begin();
			tile.complete();
			numReceived = tile.numForeign();
			numRounds = tile.numRounds();
			if (bCountEdges) numEdges = countEdges(tile);
			TULO3D::TileArrays arrays(tile);
			arrays.count(vFirst.data());
			for (std::size_t i = 1; i < vFirst.size(); ++i) vFirst[i] += vFirst[i - 1];
			vCorners.resize(4 * std::size_t{vFirst.back()});
			vNeighbors.resize(vCorners.size());
			const TULO3D::OwnedArrays to{
			    vFirst.data(), vCorners.data(), vNeighbors.data(), nullptr};
			arrays.write(to);
			vSums = arrays.checksums(vRanges);
			arrays.linkForeign(
			    [&](const TULO3D::FacetSide& side, int i, const TULO3D::FacetSide* pOther) {
				    vLinks.insert(vLinks.end(), side.position.begin(), side.position.end());
				    vLinks.push_back(static_cast<std::uint32_t>(i));
				    const TULO3D::TetPositions beyond =
				        pOther == nullptr ? kBeyondHull : pOther->position;
				    vLinks.insert(vLinks.end(), beyond.begin(), beyond.end());
			    });
		}
		return {toArray(std::move(vFirst)), toArray(std::move(vCorners)),
		    toArray(std::move(vNeighbors)), toArray(std::move(vLinks)), toArray(std::move(vSums)),
		    numReceived, numRounds, numEdges};
	}

private:
	static constexpr TULO3D::TetPositions kBeyondHull{
	    UINT32_MAX, UINT32_MAX, UINT32_MAX, UINT32_MAX};

	static std::vector<TULO3D::CurvePoints::Part> partsOf(const std::vector<Points>& vPoints,
	    const std::vector<Ranks>& vRanks, const std::vector<Boxes>& vBoxes)
	{
		std::vector<TULO3D::CurvePoints::Part> vParts;
		for (std::size_t i = 0; i < vPoints.size(); ++i) {
			const std::size_t size = vPoints[i].shape(0);
			expectLength(vRanks.at(i), size);
			expectLength(vBoxes.at(i), TULO3D::CurvePoints::numBoxes(size));
			vParts.push_back({vPoints[i].data(), vRanks[i].data(),
			    reinterpret_cast<const TULO3D::Box*>(vBoxes[i].data()),
			    static_cast<std::uint32_t>(size)});
		}
		return vParts;
	}

	const std::vector<Points> vPoints;
	const std::vector<Ranks> vRanks;
	const std::vector<Boxes> vBoxes;
	const TULO3D::CurvePoints points;
	const TULO3D::BoxTree tree;
	std::vector<TULO3D::PositionRange> vRanges;
};

} // namespace

void bindTiles(nb::module_& m)
{
	const auto array = [](const char* name) { return nb::arg(name).noconvert(); };
	m.attr("BLOCK") = TULO3D::CurvePoints::kBlock;
	m.attr("NUM_LOWEST") = TULO3D::kNumLowest;
	m.def("curve_order", &curveOrder, array("points"), array("corners"));
	m.def("first_four", &firstFour, array("points"));
	m.def("insertion_places", &insertionPlaces, array("positions"), "n"_a);
	m.def("may_underflow", &mayUnderflow, array("points"));
	m.def("boxes", &boxes, array("points"));
	m.def("find_owned", &findOwned, array("wanted"), "first_position"_a, array("first_of_owner"),
	    array("corners"));
	nb::class_<Tiles>(m, "Tiles")
	    .def(nb::init<std::vector<Points>, std::vector<Ranks>, std::vector<Boxes>, const Positions&,
	             bool>(),
	        "points"_a, "ranks"_a, "boxes"_a, array("lowest"), "may_underflow"_a)
	    .def("triangulate", &Tiles::triangulate, "part"_a, "count_edges"_a, "progress"_a);
}

} // namespace binding
