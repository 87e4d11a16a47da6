// SPDX-License-Identifier: MIT
// A mesh made in tiles is that of one engine.
#include "Dt3.h"
#include "mesh/LiveTets.h"
#include "support.h"
#include "tiles/CurveOrder.h"
#include "tiles/TileProgress.h"
#include "tiles/TiledMesh.h"
#include "tiles/parallel.h"
#include "tools.h"

#include <cstdint>
#include <limits>
#include <new>
#include <thread>

using namespace TULO3D;
using points::Cloud;

namespace {

std::vector<double> coordinatesOf(const Cloud& cloud)
{
	std::vector<double> v;
	for (const Point3& p : cloud) v.insert(v.end(), {p.x(), p.y(), p.z()});
	return v;
}

using Corners = std::array<std::int32_t, 4>;

/// The same tetrahedron, turned so that the lowest corner is first, and then the lowest of the others.
Corners turned(Corners t)
{
	const auto i = std::min_element(t.begin(), t.end()) - t.begin();
	if (i > 0) { // two swaps
		std::swap(t[0], t[static_cast<std::size_t>(i)]);
		std::swap(
		    t[static_cast<std::size_t>(i % 3 + 1)], t[static_cast<std::size_t>((i + 1) % 3 + 1)]);
	}
	std::rotate(t.begin() + 1, std::min_element(t.begin() + 1, t.end()), t.end());
	return t;
}

Corners cornersOf(const std::int32_t* pCorners, std::size_t tet)
{
	const std::int32_t* p = pCorners + 4 * tet;
	return {p[0], p[1], p[2], p[3]};
}

/// The mesh of one engine that is the first of its process, as its tetrahedra and the vertices of the points.
struct Reference
{
	explicit Reference(const Cloud& cloud)
	{
		const support::Capture quiet;
		Dt3 engine(nullptr);
		engine.hc3.bbox.add(cloud);
		engine.hc3.bbox.enlargeBounds(0.1); // as only the first box of a process is
		engine.hc3.rebuildKeys();
		std::vector<Point3*> handles;
		engine.insert(cloud, handles);
		for (const Point3* p : handles) vertexOfPoint.push_back(p->getNumber());
		numVertices = engine.getNumVertices();
		std::vector<std::int32_t> corners(4 * engine.getNumTetrahedra());
		MeshArrays arrays;
		arrays.pCorners = corners.data();
		engine.copyTo(arrays);
		for (std::size_t t = 0; t < corners.size() / 4; ++t) {
			tets.push_back(turned(cornersOf(corners.data(), t)));
		}
		std::sort(tets.begin(), tets.end());
	}
	std::size_t numVertices;
	std::vector<std::int32_t> vertexOfPoint;
	std::vector<Corners> tets;
};

void expectLinked(const ParallelMesh& mesh)
{
	for (std::size_t t = 0; t < mesh.numTets; ++t) {
		const Corners own = cornersOf(mesh.corners.get(), t);
		for (std::size_t i = 0; i < 4; ++i) {
			const std::int32_t n = mesh.neighbours[4 * t + i];
			if (n < 0) continue;
			const std::int32_t* const pBack = &mesh.neighbours[4 * std::size_t(n)];
			const Corners other = cornersOf(mesh.corners.get(), std::size_t(n));
			const auto j = std::find(pBack, pBack + 4, static_cast<std::int32_t>(t)) - pBack;
			ASSERT_LT(j, 4);
			std::set<std::int32_t> facet(own.begin(), own.end()),
			    otherFacet(other.begin(), other.end());
			facet.erase(own[i]);
			otherFacet.erase(other[std::size_t(j)]);
			ASSERT_EQ(facet, otherFacet);
		}
	}
}

void expectSame(const ParallelMesh& mesh, const Reference& reference)
{
	ASSERT_EQ(mesh.numVertices, reference.numVertices);
	for (std::size_t i = 0; i < reference.vertexOfPoint.size(); ++i) {
		ASSERT_EQ(mesh.vertexOfPoint[i], reference.vertexOfPoint[i]);
	}
	std::vector<Corners> tets;
	for (std::size_t t = 0; t < mesh.numTets; ++t)
		tets.push_back(turned(cornersOf(mesh.corners.get(), t)));
	std::sort(tets.begin(), tets.end());
	ASSERT_TRUE(tets == reference.tets) << tets.size() << " " << reference.tets.size();
	expectLinked(mesh);
	for (std::size_t v = 0; v < mesh.numVertices; ++v) {
		const std::int32_t t = mesh.tetOfVertex[v];
		if (t < 0) continue;
		const Corners c = cornersOf(mesh.corners.get(), std::size_t(t));
		ASSERT_NE(std::find(c.begin(), c.end(), static_cast<std::int32_t>(v)), c.end());
	}
}

void expectSameArrays(const ParallelMesh& a, const ParallelMesh& b)
{
	ASSERT_EQ(a.numTets, b.numTets);
	EXPECT_TRUE(std::equal(&a.corners[0], &a.corners[4 * a.numTets], &b.corners[0]));
	EXPECT_TRUE(std::equal(&a.neighbours[0], &a.neighbours[4 * a.numTets], &b.neighbours[0]));
	EXPECT_TRUE(std::equal(&a.tetOfVertex[0], &a.tetOfVertex[a.numVertices], &b.tetOfVertex[0]));
}

/// x, y, z of each vertex.
std::vector<double> coordinatesOf(const Cloud& cloud, const ParallelMesh& mesh)
{
	Cloud vertices(mesh.numVertices);
	for (std::size_t i = 0; i < cloud.size(); ++i)
		vertices[std::size_t(mesh.vertexOfPoint[i])] = cloud[i];
	return coordinatesOf(vertices);
}

void expectTilesToMakeOneMesh(const Cloud& cloud, const std::vector<std::size_t>& counts)
{
	const Reference reference(cloud);
	const std::vector<double> coordinates = coordinatesOf(cloud);
	const ParallelMesh first = triangulateInTiles(coordinates.data(), cloud.size(), 1, 1);
	expectSame(first, reference);
	EXPECT_TRUE(isDelaunay(first, coordinatesOf(cloud, first).data(), 2));
	for (const std::size_t numTiles : counts) {
		if (testing::Test::HasFatalFailure()) return;
		SCOPED_TRACE(std::to_string(cloud.size()) + " points, tiles: " + std::to_string(numTiles));
		expectSameArrays(triangulateInTiles(coordinates.data(), cloud.size(), numTiles, 2), first);
	}
}

class Tiles : public testing::TestWithParam<points::Family>
{
};

class TilesHeavy : public Tiles
{
};

TEST_P(Tiles, MakeTheMeshOfOneEngine)
{
	expectTilesToMakeOneMesh(GetParam().make(5, 7), {2});
	expectTilesToMakeOneMesh(GetParam().make(200, 7), {2, 3, 64});
}

TEST_P(TilesHeavy, MakeTheMeshOfOneEngine)
{
	expectTilesToMakeOneMesh(GetParam().make(1500, 7), {7});
}

INSTANTIATE_TEST_SUITE_P(Families, TilesHeavy, testing::ValuesIn(points::families()),
    [](const auto& family) { return family.param.name; });

INSTANTIATE_TEST_SUITE_P(Families, Tiles, testing::ValuesIn(points::families()),
    [](const auto& family) { return family.param.name; });

/// The tetrahedra by the ranks of their corners, when vertices come in this order after the first four.
std::vector<Corners> meshByRank(const CurvePoints& points, const std::vector<std::size_t>& ranks)
{
	std::vector<std::uint32_t> withRank(points.size());
	for (std::uint32_t i = 0; i < points.size(); ++i) withRank[std::size_t(points.rank(i))] = i;
	Dt3 engine(nullptr);
	if (points.isTiny()) engine.batchTests = *engine.batchTests.pForTiny;
	engine.batchTests = *engine.batchTests.pByRank;
	const auto create = [&](std::size_t rank) {
		return engine.hc3.createVertex(
		    points.point(withRank[rank]), static_cast<std::int32_t>(rank));
	};
	Tet3* pTet = engine.startWith({create(0), create(1), create(2), create(3)});
	for (const std::size_t rank : ranks) {
		Point3* pVtx = create(rank);
		pTet = engine.insertVertex(&pVtx, pTet);
	}
	std::vector<Corners> tets;
	engine.liveTets().forEach([&](const Tet3* p) {
		Corners corners{};
		for (int i = 0; i < 4; ++i) corners[std::size_t(i)] = p->getCorner(i)->getNumber();
		tets.push_back(turned(corners));
	});
	std::sort(tets.begin(), tets.end());
	return tets;
}

TEST_P(Tiles, RestOnARuleByWhichVerticesMayComeInAnyOrder)
{
	const Cloud cloud = GetParam().make(80, 3);
	const std::vector<double> coordinates = coordinatesOf(cloud);
	const CurveOrder order(coordinates.data(), cloud.size(), 2);
	if (order.isFlat()) return;
	std::vector<std::size_t> ranks;
	for (std::size_t rank = 4; rank < order.size(); ++rank) ranks.push_back(rank);
	const std::vector<Corners> expected = meshByRank(order.points(), ranks);
	points::Random random(1);
	for (int round = 0; round < 10; ++round) {
		points::shuffle(ranks, random);
		ASSERT_TRUE(meshByRank(order.points(), ranks) == expected) << "round " << round;
	}
}

TEST(TilesAtOnce, RefuseWhatAnEngineRefusesAndTakeWhatIsFlat)
{
	for (const Point3& p : points::refused()) {
		const std::vector<double> coordinates = coordinatesOf({{0, 0, 0}, p});
		EXPECT_EQ(support::conditionFailedBy([&] { triangulateInParallel(coordinates.data(), 2); }),
		    "coordinates are finite and at most 1e60 in magnitude");
	}
	const ParallelMesh nothing = triangulateInParallel(nullptr, 0);
	EXPECT_EQ(nothing.numVertices + nothing.numTets, 0U);
	const std::vector<double> flat =
	    coordinatesOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0}});
	const ParallelMesh plane = triangulateInParallel(flat.data(), 5, 2);
	EXPECT_EQ(plane.numVertices, 4U);
	EXPECT_EQ(plane.numTets, 0U);
	EXPECT_EQ(plane.vertexOfPoint[4], 1);
	EXPECT_EQ(plane.tetOfVertex[3], -1);
}

TEST(TilesAtOnce, TakeAHardStopInAThreadToTheCallerAsAnException)
{
	// Every task stops, so that one in a thread of its own does, whichever gets how many.
	EXPECT_THROW(
	    inParallel(8, 3, [](std::size_t) { printAndStop(StopReason::kOutOfMemory, "no memory"); }),
	    std::bad_alloc);
	EXPECT_EQ(setStopHandler(nullptr), nullptr); // that of the caller is back
}

TEST(TilesAtOnce, AreFoundToBeDamagedWhereverItIs)
{
	// Of tetrahedron t, which is not on the hull.
	void (*const damages[])(ParallelMesh&, std::size_t t, std::vector<double> & coordinates) = {
	    [](auto& mesh, auto t, auto&) { std::swap(mesh.corners[4 * t], mesh.corners[4 * t + 1]); },
	    [](auto& mesh, auto t, auto& xyz) { xyz[3 * std::size_t(mesh.corners[4 * t])] += 0.5; },
	    [](auto& mesh, auto t, auto&) { mesh.corners[4 * t + 2] = mesh.corners[4 * t + 1]; },
	    [](auto& mesh, auto t, auto&) { mesh.corners[4 * t + 2] = int(mesh.numVertices); },
	    [](auto& mesh, auto t, auto&) { mesh.corners[4 * t + 3] = -1; },
	    [](auto& mesh, auto t, auto&) { mesh.neighbours[4 * t] = mesh.neighbours[4 * t + 1]; },
	    [](auto& mesh, auto t, auto&) { mesh.neighbours[4 * t] = -1; },
	    [](auto& mesh, auto t, auto&) { mesh.neighbours[4 * t + 2] = int(mesh.numTets); },
	    [](auto& mesh, auto t, auto&) { mesh.neighbours[4 * t + 3] = -2; },
	};
	const Cloud cloud = points::make("Uniform", 12000);
	for (const auto& damage : damages) {
		for (const bool bFirst : {true, false}) {
			std::vector<double> coordinates = coordinatesOf(cloud);
			ParallelMesh mesh = triangulateInParallel(coordinates.data(), cloud.size(), 2);
			const auto isInside = [&](std::size_t t) {
				const std::int32_t* const pRow = &mesh.neighbours[4 * t];
				return std::count(pRow, pRow + 4, -1) == 0;
			};
			std::size_t t = bFirst ? 0 : mesh.numTets - 1;
			while (!isInside(t)) bFirst ? ++t : --t;
			damage(mesh, t, coordinates);
			EXPECT_FALSE(isDelaunay(mesh, coordinates.data(), 3))
			    << "damage " << &damage - damages << ", tetrahedron " << t;
		}
	}

	// Two tetrahedra. The last vertex moves into the sphere of the other one, but not across their facet; and then
	// across the facet, but not into the sphere.
	std::vector<double> five = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0.3, 0.3, -5};
	const ParallelMesh two = triangulateInParallel(five.data(), 5);
	EXPECT_EQ(two.numTets, 2U);
	EXPECT_TRUE(isDelaunay(two, five.data()));
	for (const double z : {-0.01, 5.0}) {
		five.back() = z;
		EXPECT_FALSE(isDelaunay(two, five.data())) << z;
	}
}

TEST(TilesAtOnce, TellHowFarTheyAreAndStopWhenToldTo)
{
	const std::vector<double> coordinates = coordinatesOf(points::make("Uniform", 60000));
	std::size_t last = 0;
	const ParallelMesh mesh =
	    triangulateInParallel(coordinates.data(), 60000, 3, [&](std::size_t done, std::size_t all) {
		    EXPECT_GE(done, last);
		    EXPECT_LE(done, all);
		    EXPECT_EQ(all, 60000U);
		    last = done;
		    return true;
	    });
	EXPECT_EQ(last, 60000U);
	int calls = 0;
	const support::Capture quiet;
	EXPECT_THROW(triangulateInParallel(coordinates.data(), 60000, 3,
	                 [&](std::size_t, std::size_t) { return ++calls < 3; }),
	    TuloException);
	EXPECT_EQ(calls, 3);
}

TEST(TilesAtOnce, AllEndWithWhatTheProgressHandlerThrows)
{
	const TileProgress::Handler handler = [](std::size_t, std::size_t) -> bool { throw 42; };
	TileProgress progress(handler, 20);
	const TileProgress::Handler own = progress.ofTile({0, 10}), other = progress.ofTile({10, 20});
	EXPECT_THROW(own(1, 10), int);
	// Of the exceptions of several threads the first one goes on to the caller.
	std::thread([&] { EXPECT_THROW(other(1, 10), int); }).join();
}

} // namespace
