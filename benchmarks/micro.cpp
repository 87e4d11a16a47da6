// SPDX-License-Identifier: MIT
// Micro-benchmarks of the library's internal operations, each by itself and with a warm cache.
#include "../inputs/points.h"
#include "Dt3.h"
#include "predicates/BatchTestsSimd.h"
#include "predicates/ShewchukStages.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <utility>
#include <vector>

using namespace TULO3D;

namespace {

using State = benchmark::State;

/// So many inputs that the branch predictor does not learn them, so few that they stay in the cache.
constexpr std::size_t kNumCases = 512;

/// Four corners in positive order, and a query point.
using Case = std::array<Point3, 5>;

double roundedTo(double value, double unit)
{
	return unit * std::round(value / unit);
}

/// Random ones; with a unit other than 0, on a lattice of that unit.
Case randomCase(points::Random& random, double unit)
{
	Case c;
	const ArdoTest3 predicates;
	do {
		for (Point3& p : c) {
			const Point3 q = random.point(0, 1);
			p = unit == 0
			    ? q
			    : Point3(roundedTo(q.x(), unit), roundedTo(q.y(), unit), roundedTo(q.z(), unit));
		}
	} while (predicates.getOrientation3(&c[0], &c[1], &c[2], &c[3]) != ORIENTATION3_POSITIVE);
	return c;
}

/// Corners of a cube of the lattice, moved and scaled: the query point lies exactly on the sphere.
Case cosphericalCase(points::Random& random)
{
	Case c;
	const ArdoTest3 predicates;
	const double x = random.below(1000), y = random.below(1000), z = random.below(1000);
	do {
		for (Point3& p : c) {
			const int corner = random.below(8);
			p = Point3(x + (corner & 1), y + (corner >> 1 & 1), z + (corner >> 2 & 1));
		}
	} while (predicates.getOrientation3(&c[0], &c[1], &c[2], &c[3]) != ORIENTATION3_POSITIVE ||
	    c[4] == c[0] || c[4] == c[1] || c[4] == c[2] || c[4] == c[3]);
	return c;
}

/// Points of a sphere, rounded: the query point is nearly on it.
Case nearlyCosphericalCase(points::Random& random)
{
	Case c = randomCase(random, 0);
	for (Point3& p : c) {
		const double x = p.x() - 0.5, y = p.y() - 0.5, z = p.z() - 0.5;
		const double length = std::sqrt(x * x + y * y + z * z);
		p = Point3(x / length, y / length, z / length);
	}
	const ArdoTest3 predicates;
	if (predicates.getOrientation3(&c[0], &c[1], &c[2], &c[3]) != ORIENTATION3_POSITIVE) {
		std::swap(c[0], c[1]);
	}
	return c;
}

enum class Kind { kRandom, kOnSphere, kNearSphere };

std::vector<Case> makeCases(Kind kind)
{
	points::Random random(1);
	std::vector<Case> v;
	while (v.size() < kNumCases) {
		switch (kind) {
		case Kind::kRandom:
			v.push_back(randomCase(random, 0));
			break;
		case Kind::kOnSphere:
			v.push_back(cosphericalCase(random));
			break;
		case Kind::kNearSphere:
			v.push_back(nearlyCosphericalCase(random));
			break;
		}
	}
	return v;
}

/// Times f, called with one case after the other.
template <class F>
void overCases(State& state, Kind kind, F f)
{
	const std::vector<Case> vCases = makeCases(kind);
	std::size_t i = 0;
	for (auto _ : state) {
		benchmark::DoNotOptimize(f(vCases[i]));
		i = (i + 1) % kNumCases;
	}
}

/// Tetrahedra without an engine. As there, no constructor is called.
struct TetRecords
{
	explicit TetRecords(int size) { pool.init(size, size, size); }

	void make(Point3* p0, Point3* p1, Point3* p2, Point3* p3)
	{
		vTets.push_back(pool.alloc());
		vTets.back()->setProperties(p0, p1, p2, p3);
	}

	SimplePool<Tet3> pool;
	std::vector<Tet3*> vTets;
};

const ArdoTest3 kPredicates;

// The stages of the two tests, whether or not an input needs them --------------------------------

void orientFast(State& state, Kind kind)
{
	overCases(state, kind,
	    [](const Case& c) { return kPredicates.orient3dFast(c[0], c[1], c[2], c[4]).det; });
}

void orientStageB(State& state, Kind kind)
{
	overCases(state, kind, [](const Case& c) {
		const Orient3dRows rows = orient3dRows(c[0], c[1], c[2], c[4]);
		return orient3dStageB(kPredicates, rows, 1.0).det;
	});
}

void orientExact(State& state, Kind kind)
{
	overCases(state, kind, [](const Case& c) {
		return orient3dExact(kPredicates, orient3dRows(c[0], c[1], c[2], c[4]));
	});
}

void insphereFast(State& state, Kind kind)
{
	overCases(state, kind,
	    [](const Case& c) { return kPredicates.insphereFast(c[0], c[1], c[2], c[3], c[4]).det; });
}

void insphereDoubleDouble(State& state, Kind kind)
{
	overCases(state, kind, [](const Case& c) {
		return TULO3D::insphereDoubleDouble(insphereRows(c[0], c[1], c[2], c[3], c[4]), 1.0).det;
	});
}

void insphereStageB(State& state, Kind kind)
{
	overCases(state, kind, [](const Case& c) {
		const InsphereRows rows = insphereRows(c[0], c[1], c[2], c[3], c[4]);
		return TULO3D::insphereStageB(kPredicates, rows, 1.0).det;
	});
}

void insphereExact(State& state, Kind kind)
{
	overCases(state, kind, [](const Case& c) {
		return TULO3D::insphereExact(kPredicates, c[0], c[1], c[2], c[3], c[4]);
	});
}

/// The whole in-sphere test with as many stages as it needs.
void insphereTest(State& state, Kind kind)
{
	std::vector<Case> vCases = makeCases(kind);
	TetRecords records(kNumCases);
	for (Case& c : vCases) records.make(&c[0], &c[1], &c[2], &c[3]);
	std::size_t i = 0;
	for (auto _ : state) {
		benchmark::DoNotOptimize(kPredicates.sphereInclusionTest(records.vTets[i], &vCases[i][4]));
		i = (i + 1) % kNumCases;
	}
}

/// The four neighbours of a tetrahedron at once: the opposite corners are those of other cases.
void neighbourTest(State& state, Kind kind, const BatchTests* pTests)
{
	if (pTests == nullptr) {
		state.SkipWithError("not on this CPU");
		return;
	}
	std::vector<Case> vCases = makeCases(kind);
	points::Random random(2);
	std::vector<NeighbourBatch> vBatches(kNumCases);
	for (std::size_t i = 0; i < kNumCases; ++i) {
		for (std::size_t k = 0; k < 4; ++k) {
			vBatches[i].corner[k] = &vCases[i][k];
			vBatches[i].opposite[k] =
			    &vCases[kind == Kind::kOnSphere ? i : (i + k + 1) % kNumCases][k];
		}
	}
	std::size_t i = 0;
	for (auto _ : state) {
		NeighbourVerdicts verdicts{};
		runLoop(*pTests, [&](auto variant) {
			verdicts = decltype(variant)::verdicts(vBatches[i], vCases[i][4]);
		});
		const unsigned undecided = 0xFU & ~(verdicts.inside | verdicts.outside);
		if (undecided != 0) verdicts = pTests->neighbours(vBatches[i], vCases[i][4], undecided);
		benchmark::DoNotOptimize(verdicts);
		i = (i + 1) % kNumCases;
	}
	state.SetItemsProcessed(4 * state.iterations());
}

#define BENCHMARK_KINDS(function) \
  BENCHMARK_CAPTURE(function, random, Kind::kRandom); \
  BENCHMARK_CAPTURE(function, cospherical, Kind::kOnSphere); \
  BENCHMARK_CAPTURE(function, nearlyCospherical, Kind::kNearSphere)

BENCHMARK_CAPTURE(orientFast, random, Kind::kRandom);
BENCHMARK_CAPTURE(orientStageB, random, Kind::kRandom);
BENCHMARK_CAPTURE(orientExact, random, Kind::kRandom);
BENCHMARK_CAPTURE(insphereFast, random, Kind::kRandom);
BENCHMARK_KINDS(insphereDoubleDouble);
BENCHMARK_KINDS(insphereStageB);
BENCHMARK_KINDS(insphereExact);
BENCHMARK_KINDS(insphereTest);
BENCHMARK_CAPTURE(neighbourTest, portableRandom, Kind::kRandom, &kPortableTests);
BENCHMARK_CAPTURE(neighbourTest, portableCospherical, Kind::kOnSphere, &kPortableTests);
BENCHMARK_CAPTURE(neighbourTest, portableNearlyCospherical, Kind::kNearSphere, &kPortableTests);
BENCHMARK_CAPTURE(neighbourTest, avx2Random, Kind::kRandom, avx2Tests());
BENCHMARK_CAPTURE(neighbourTest, avx2Cospherical, Kind::kOnSphere, avx2Tests());
BENCHMARK_CAPTURE(neighbourTest, avx2NearlyCospherical, Kind::kNearSphere, avx2Tests());

// Records, order and links ------------------------------------------------------------------------

void poolAlloc(State& state)
{
	constexpr int kRecords = 4096;
	SimplePool<Tet3> pool;
	pool.init(kRecords, -1, SimplePool<Tet3>::kMaxBlock);
	int left = kRecords;
	for (auto _ : state) {
		if (left-- == 0) {
			pool.reset();
			left = kRecords - 1;
		}
		benchmark::DoNotOptimize(pool.alloc());
	}
}
BENCHMARK(poolAlloc);

/// A mesh of random points of a cube, made once for each size.
struct Mesh
{
	explicit Mesh(int size) : engine(nullptr)
	{
		points::Random random(1);
		points::Cloud cloud;
		for (int i = 0; i < size; ++i) cloud.push_back(random.point(0, 1));
		std::vector<Point3*> vHandles;
		engine.insert(cloud, vHandles);
		for (std::size_t i = 0; i < kNumCases; ++i) vQueries.push_back(random.point(0.01, 0.99));
	}

	Dt3 engine;
	points::Cloud vQueries;
};

Mesh& meshOf(int size)
{
	static std::map<int, std::unique_ptr<Mesh>> meshes;
	std::unique_ptr<Mesh>& pMesh = meshes[size];
	if (pMesh == nullptr) pMesh = std::make_unique<Mesh>(size);
	return *pMesh;
}

/// Times f, called with the mesh and one query after the other.
template <class F>
void overQueries(State& state, F f)
{
	Mesh& mesh = meshOf(static_cast<int>(state.range(0)));
	std::size_t i = 0;
	for (auto _ : state) {
		benchmark::DoNotOptimize(f(mesh.engine, mesh.vQueries[i]));
		i = (i + 1) % kNumCases;
	}
}

void hilbertKey(State& state)
{
	overQueries(state, [](Dt3& engine, const Point3& p) { return engine.hc3.hilbertIndex(p); });
}
BENCHMARK(hilbertKey)->Arg(1000);

void findStartOfWalk(State& state)
{
	overQueries(state, [](Dt3& engine, const Point3& p) { return engine.hc3.findNearbyTet(p); });
}
BENCHMARK(findStartOfWalk)->Arg(1000)->Arg(100000);

/// With the search for a start.
void locate(State& state)
{
	overQueries(state, [](Dt3& engine, const Point3& p) { return engine.locate(p); });
}
BENCHMARK(locate)->Arg(1000)->Arg(100000);

/// Starts where the last walk ended: across half of the mesh.
void walkAcross(State& state)
{
	Tet3* pTet = nullptr;
	overQueries(state, [&pTet](Dt3& engine, Point3& p) {
		if (pTet == nullptr) pTet = engine.hc3.findNearbyTet(p);
		return engine.locateConflictTet(&p, pTet);
	});
}
BENCHMARK(walkAcross)->Arg(1000)->Arg(100000);

/// What links the tetrahedra of a star: the table of directed edges, or, where that is too small, the
/// one of pending halves.
enum class Linker { kEdges, kHalves };

/// All facets around a new vertex with an ordinary number of tetrahedra, 28.
void linkStar(State& state, Linker linker)
{
	constexpr int kRing = 14;
	std::vector<Point3> vVertices(kRing + 3); // two poles, the ring, the vertex itself
	for (int i = 0; i < kRing; ++i) {
		const double angle = 6.283185307179586 * i / kRing;
		vVertices[static_cast<std::size_t>(i) + 3] = Point3(std::cos(angle), std::sin(angle), 0);
	}
	std::vector<Point3*> vCorners; // all but the vertex itself
	for (std::size_t i = 0; i < vVertices.size(); ++i) {
		if (i != 2) vCorners.push_back(&vVertices[i]);
	}
	TetRecords records(2 * kRing);
	const auto ring = [&](int i) { return &vVertices[static_cast<std::size_t>(i % kRing) + 3]; };
	for (int i = 0; i < kRing; ++i) {
		for (int pole = 0; pole < 2; ++pole) {
			Point3 *a = ring(i), *b = ring(i + 1);
			if (pole == 1) std::swap(a, b);
			records.make(&vVertices[2], a, b, &vVertices[static_cast<std::size_t>(pole)]);
		}
	}
	Dt3 engine(nullptr);
	const auto pStar = std::make_unique<StarLinker>();
	bool bCloses = true;
	for (auto _ : state) {
		if (linker == Linker::kEdges) {
			pStar->clear();
			for (Tet3* pTet : records.vTets) pStar->vTets.add(pTet);
			for (Point3* pVtx : vCorners) pStar->vCorners.add(pVtx);
			bCloses &= pStar->linkClosed();
		} else {
			for (Tet3* pTet : records.vTets) engine.offerInnerFacets(pTet);
			engine.flushHashCollisions();
			engine.twoTetPool.reset();
		}
	}
	if (!bCloses || engine.numStoredTCS != 0) state.SkipWithError("the star did not close");
	state.SetItemsProcessed(state.iterations() * 3 * kRing);
}
BENCHMARK_CAPTURE(linkStar, edges, Linker::kEdges);
BENCHMARK_CAPTURE(linkStar, halves, Linker::kHalves);

} // namespace

BENCHMARK_MAIN();
