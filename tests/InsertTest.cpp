// SPDX-License-Identifier: MIT
// How points arrive: each promise of the insertion with its shortest case, and the large inputs that
// are hard for a walk or a cavity.
#include "Dt3.h"
#include "TetAroundEdgeIterator.h"
#include "lookahead/WalkStart.h"
#include "mesh/HullEdges.h"
#include "support.h"

using namespace TULO3D;
using points::Cloud;
using support::Recorded;

namespace {

/// Large inputs. The presets of slow builds leave them out by their label.
struct Heavy : testing::TestWithParam<std::pair<const char*, int>>
{
};

/// The corners of each record in memory, dead ones included, by their numbers. They show in which order
/// tetrahedra were made and records reused.
std::vector<std::int32_t> recordsOf(const Dt3& engine)
{
	const auto& pool = engine.tetPool;
	std::vector<std::int32_t> corners;
	for (std::size_t block = 0; block < pool.blockList.size(); ++block) {
		const Tet3* const pFirst = pool.blockList[block];
		const int size = pFirst == pool.currentBlock ? pool.lastIndex + 1 : pool.vSizes[block];
		for (int i = 0; i < 4 * size; ++i) {
			corners.push_back(pFirst[i / 4].getCorner(i % 4)->getNumber());
		}
	}
	return corners;
}

} // namespace

TEST(Insert, CoplanarSinglesStayOutUntilTheyComeAgainOrEnterTogether)
{
	// Deliberate: a single point that ends the flat phase brings only the first tetrahedron.
	const Cloud flat{Point3(0, 0, 0), Point3(1, 0, 0), Point3(0, 1, 0), Point3(1, 1, 0),
	    Point3(2, 1, 0), Point3(1, 2, 0)};
	Point3 apex(0.2, 0.2, 1);
	Recorded again, together;
	EXPECT_EQ(together.mesh.insertLeftOut(), 0U);
	for (Recorded* pMesh : {&again, &together}) {
		for (const Point3& p : flat) pMesh->insert(p);
		EXPECT_EQ(support::printedBy([&] { pMesh->mesh.insert(apex); }),
		    "Attention: triangulate has got an empty vector\n");
		// A batch looks at new vertices only.
		support::printedBy([&] { pMesh->mesh.insert(flat); });
		EXPECT_EQ(pMesh->tets().size(), 1U);
	}
	for (const Point3& p : flat) again.insert(p);
	std::size_t numInserted = 0;
	EXPECT_EQ(support::printedBy([&] { numInserted = together.mesh.insertLeftOut(); }), "");
	EXPECT_EQ(numInserted, 3U);
	EXPECT_EQ(together.mesh.insertLeftOut(), 0U);
	for (Recorded* pMesh : {&again, &together}) {
		pMesh->insert(apex);
		EXPECT_TRUE(pMesh->leftOut.empty());
		EXPECT_VALID(*pMesh);
	}
}

TEST(Insert, ASinglePointIsWalkedToFromItsNeighbourOnTheCurve)
{
	// Cospherical vertices leave a choice, which the start decides.
	const support::Capture quiet;
	std::vector<Point3*> handles;
	Tulo_3D().insert(points::make("Lattice", 27)); // takes the first margin of the process
	Dt3 engine(nullptr), byHand(nullptr);
	for (Dt3* pEngine : {&engine, &byHand}) {
		handles.clear();
		pEngine->insert(points::make("Lattice", 64), handles);
	}
	for (Point3 p : points::make("BodyCentred", 100)) {
		p = p + Vector3(0.5, 0, 0.25);
		engine.insert(p);
		Tet3* pStart = nullptr;
		Point3* pVtx = byHand.hc3.insertPoint(p, pStart);
		byHand.insertVertex(&pVtx, pStart);
	}
	EXPECT_TRUE(recordsOf(engine) == recordsOf(byHand));
}

#if defined(__SSE2__) && defined(__GNUC__)
TEST(Insert, AHostMayHaveDenormalNumbersFlushedToZero)
{
	constexpr unsigned kFlushToZero = 0x8000;
	for (const char* family : {"DenormalsOnly", "DenormalsMixedIn", "Denormals", "Tiny"}) {
		for (unsigned seed = 1; seed < 7; ++seed) {
			const Cloud cloud = points::make(family, 60, seed);
			Recorded mesh;
			const unsigned before = __builtin_ia32_stmxcsr();
			__builtin_ia32_ldmxcsr(before | kFlushToZero);
			mesh.insert(cloud);
			__builtin_ia32_ldmxcsr(before);
			EXPECT_VALID(mesh) << family << " " << seed;
		}
	}
}
#endif

TEST(Insert, ABatchLetsEarlierVerticesInAlsoWhenTheCountsAgree)
{
	// Five vertices and five points in the batch, but (0, 0, 0) is not among these.
	Recorded mesh;
	mesh.insert(Cloud{Point3(0, 0, 0), Point3(1, 0, 0)});
	mesh.insert(
	    Cloud{Point3(1, 0, 0), Point3(1, 0, 0), Point3(0, 1, 0), Point3(0, 0, 1), Point3(1, 1, 1)});
	EXPECT_TRUE(mesh.mesh.is3D());
	EXPECT_VALID(mesh);
}

TEST(Insert, KnownPointsGetTheirVerticesAndChangeNothing)
{
	Recorded mesh;
	Cloud cloud = points::make("Lattice", 64);
	for (Point3& p : cloud) p.setCustomIndex(7);
	mesh.insert(cloud);
	for (const Point3* p : mesh.vertices()) EXPECT_EQ(p->getCustomIndex(), -1);
	mesh.handles[2]->setCustomIndex(5);
	const auto before = mesh.canonical();
	const int label = Tet3::runningLabel;
	mesh.insert(Cloud(cloud.rbegin(), cloud.rend()));
	for (const Point3& p : cloud) mesh.insert(p);
	mesh.insert(Point3(-0.0, 1, -0.0));
	mesh.insert(Cloud());
	EXPECT_TRUE(mesh.canonical() == before && Tet3::runningLabel == label)
	    << "no tetrahedron was made";
	EXPECT_EQ(mesh.handles[2]->getCustomIndex(), 5);
	EXPECT_VALID(mesh);
}

TEST(Insert, ABatchTellsHowFarItIsAndEndsWhenTheHostSaysSo)
{
	const Cloud cloud = points::make("Uniform", 30000);
	Recorded mesh;
	std::vector<std::size_t> counts;
	const auto count = [&counts](std::size_t numInserted, std::size_t numVertices) {
		counts.push_back(numInserted);
		return numVertices == 30000 || numVertices == 1;
	};
	mesh.mesh.setProgress(count);
	mesh.insert(cloud);
	EXPECT_TRUE(std::is_sorted(counts.begin(), counts.end()) && counts.back() == 30000);
	EXPECT_TRUE(counts.size() > 100 && counts.size() < 1000) << counts.size();
	counts.clear();
	mesh.insert(cloud);
	mesh.mesh.insert(Cloud{Point3(5, 5, 5)});
	EXPECT_EQ(counts, std::vector<std::size_t>{1}) << "a batch of one vertex";
	mesh.mesh.setProgress(nullptr);

	Tulo_3D refused, thrown;
	refused.setProgress([](std::size_t numInserted, std::size_t) { return numInserted < 5000; });
	EXPECT_EQ(support::conditionFailedBy([&] { refused.insert(cloud); }),
	    "the progress handler lets it go on");
	thrown.setProgress([](std::size_t, std::size_t) -> bool { throw std::bad_alloc(); });
	const support::Capture quiet;
	EXPECT_THROW(thrown.insert(cloud), std::bad_alloc);
	// Ends while the points are sorted.
	Cloud repeated;
	for (int n = 0; n < 100; ++n) {
		repeated.insert(repeated.end(), cloud.begin(), cloud.begin() + 1000);
	}
	Tulo_3D sorting;
	sorting.setProgress([&repeated](std::size_t numInserted, std::size_t numVertices) {
		return numInserted > 0 || numVertices != repeated.size();
	});
	EXPECT_THROW(sorting.insert(repeated), TuloException);
	for (Tulo_3D* pCut : {&refused, &thrown, &sorting}) EXPECT_THROW(pCut->is3D(), TuloException);
}

TEST(Insert, CavitiesFoundAheadMakeTheSameTetrahedra)
{
	// Outliers put all other points into one cell of the curve, so their order is random. On the lattice,
	// cavities that are searched at the same time touch, and many vertices are cospherical. At many scales, stretches
	// without locality alternate with others, where cavities overlap.
	points::Random random(4);
	Cloud hull, general, lattice, scales;
	for (int i = 0; i < 20000; ++i) general.push_back(random.point(0, 1));
	for (int i = 0; i < 32 * 32 * 32; ++i) lattice.emplace_back(i % 32, i / 32 % 32, i / 1024);
	points::shuffle(lattice, random);
	for (int i = 0; i < 40000; ++i) {
		const Point3 p = random.onSphere();
		const double distance = std::pow(10., -6 * random.unit());
		scales.emplace_back(distance * p.x(), distance * p.y(), distance * p.z());
	}
	for (int i = 0; i < 8; ++i) {
		hull.emplace_back(i & 1 ? 5000 : -5000, i & 2 ? 5000 : -5000, i & 4 ? 5000 : -5000);
	}
	lattice.emplace_back(90000, 90000, 90000);
	// Inside a hull that comes first, every walk ends in the one tetrahedron around its vertex. Then also the
	// same records become the same tetrahedra, dead ones included.
	const support::Capture quiet;
	std::vector<Point3*> handles;
	Dt3(nullptr).insert(general, handles); // the first box of a process gets another margin

	const auto outcomeWith = [&](const Cloud& first, const Cloud& cloud, const BatchTests& tests,
	                             bool bLooksAhead) {
		const int firstLabel = Tet3::runningLabel;
		Dt3 engine(nullptr, tests);
		engine.bLooksAhead = bLooksAhead;
		for (const Cloud* pCloud : {&first, &cloud}) {
			handles.clear();
			engine.insert(*pCloud, handles);
		}
		std::vector<Point3*> vertices;
		std::vector<Tet3*> tets;
		engine.getVertices(vertices);
		engine.getAllTetrahedra(tets);
		std::vector<std::int32_t> records;
		if (!first.empty()) records = recordsOf(engine);
		records.push_back(Tet3::runningLabel - firstLabel);
		return std::pair(records, support::canonical(vertices, tets));
	};
	for (const auto& [first, cloud] :
	    {std::pair(hull, general), std::pair(hull, scales), std::pair(Cloud(), lattice)}) {
		Dt3 store(nullptr);
		std::vector<Point3*> vertices;
		for (const Cloud* pCloud : {&first, &cloud}) {
			handles.clear();
			vertices.clear();
			store.hc3.insertPoints(*pCloud, handles, vertices);
		}
		EXPECT_TRUE(WalkStart(vertices).orderJumps()) << "else no cavities are found ahead";
		const auto expected = outcomeWith(first, cloud, kPortableTests, false);
		EXPECT_TRUE(outcomeWith(first, cloud, kPortableTests, true) == expected);
		EXPECT_TRUE(outcomeWith(first, cloud, bestTests(), true) == expected);
	}
}

TEST(Insert, ThousandsOfTetrahedraMayMeetInAnEdgeOfTheHull)
{
	points::Cloud cloud; // of the moment curve, at its ends in turn
	for (int i = 0; i < 300; ++i) {
		const double t = (i % 2 == 0 ? -i : i) * 0.01;
		cloud.emplace_back(t, t * t, t * t * t);
	}
	support::Recorded().insert(cloud); // the first box of a process gets another margin
	support::Recorded mesh;
	mesh.insert(points::Cloud(cloud.begin(), cloud.begin() + 100));
	for (std::size_t i = 100; i < 150; ++i) mesh.insert(cloud[i]);
	mesh.insert(points::Cloud(cloud.begin() + 150, cloud.end()));
	EXPECT_VALID(mesh);
}

TEST(Insert, TheHullFacetAcrossAnEdgeIsWhereACirculationEnds)
{
	points::Random random(4);
	for (const bool bLines : {false, true}) {
		support::Recorded mesh;
		HullEdges edges;                // outlives the facets that it remembers
		for (int i = 1; i < 120; ++i) { // at the ends of the moment curve, or of two lines, in turn
			const double t = i % 2 == 0 ? i : -i;
			const Point3 onLine(std::max(t, 0.0), std::min(t, 0.0), i % 2);
			mesh.insert(bLines ? random.nudged(onLine) : Point3(t, t * t, t * t * t));
			for (Tet3* pTet : mesh.tets()) {
				for (int k = 0; k < 16; ++k) {
					if (k / 4 == k % 4 || pTet->getOppTet(k / 4) != nullptr) continue;
					const Edge3 edge = pTet->getEdge(k / 4, k % 4);
					TetAroundEdgeIterator it(edge);
					while (!it.nextIsNull()) ++it;
					ASSERT_EQ(edges.across(edge), Facet3(*it, it.getOpp2Index())) << i;
				}
			}
		}
	}
}

TEST_P(Heavy, InputIsMeshedInOneBatch)
{
	const auto& [family, size] = GetParam();
	Recorded mesh;
	mesh.insert(points::make(family, size));
	if (family == std::string("UnitSphere")) mesh.insert(Point3(0, 0, 0)); // a cavity of all facets
	EXPECT_VALID(mesh);
}
using Input = std::pair<const char*, int>;
INSTANTIATE_TEST_SUITE_P(Inputs, Heavy,
    testing::Values(Input("UnitSphere", 100000), Input("Pipe", 60000), Input("NeedleBox", 150000),
        Input("Uniform", 100000), Input("Lattice", 100000), Input("AroundABox", 100000),
        Input("TerrainFlatInX", 100000), Input("NoisyPlane", 50000), Input("FarPlane", 100000),
        Input("LineThenTwoPoints", 100000)),
    [](const auto& p) { return p.param.first; });
