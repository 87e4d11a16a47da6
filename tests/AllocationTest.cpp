// SPDX-License-Identifier: MIT
// Out of memory at each allocation in turn: the documented stop or std::bad_alloc, and then a mesh that
// refuses every call. The linker redirects all calls of the library to the functions below.
#include "support.h"

#include <atomic>
#include <functional>
#include <new>
#include <optional>

using namespace TULO3D;
using points::Cloud;

namespace {

int numUntilFailure = -1; // none fails
bool bForGood = false;
bool bHasFailed = false;         // at least one of the present call
std::atomic<long> numBlocks = 0; // allocated less freed

bool fails()
{
	const bool bFails = numUntilFailure == 0;
	if (bFails) bHasFailed = true; // written to by one thread only
	if (numUntilFailure > 0 || (bFails && !bForGood)) --numUntilFailure;
	return bFails;
}

void* counted(void* pBlock)
{
	// Relaxed: a stronger order would hide races of the library from ThreadSanitizer.
	numBlocks.fetch_add(pBlock != nullptr, std::memory_order_relaxed);
	return pBlock;
}

void uncount(const void* pBlock)
{
	numBlocks.fetch_sub(pBlock != nullptr, std::memory_order_relaxed);
}

/// Runs `f` with the allocation after `numAllowed` failing, or all from there on; false when
/// std::bad_alloc came through.
template <class F>
bool succeeds(int numAllowed, bool bAllFail, F f)
{
	bForGood = bAllFail;
	bHasFailed = false;
	numUntilFailure = numAllowed;
	bool bDone = true;
	try {
		f();
	} catch (const std::bad_alloc&) {
		bDone = false;
	}
	numUntilFailure = -1;
	return bDone;
}

/// A mesh on its way, and the call during which memory ends.
struct Scenario
{
	const char* name;
	Cloud before;
	Cloud batch;   // inserted at once, and then
	Cloud singles; // one by one
	int first = 0, step = 1;
	// Another call that brings the batch, and how many allocations it makes before it changes the mesh.
	void (*call)(Tulo_3D& mesh, const Cloud& batch) = nullptr;
	int numHarmless = 0;
	bool bBeforeInSingles = false;
};

std::vector<Scenario> makeScenarios()
{
	Cloud shifted = points::make("Lattice", 125), outside;
	for (Point3& p : shifted) p = p + Vector3(0.1, 0.2, 0.3);
	shifted.resize(40);
	for (int i = 0; i < 8; ++i) outside.emplace_back(9 + i, i % 3 - 8, i % 5 - 6);
	// All in one cell of the curve, so in random order: memory ends while cavities are searched ahead.
	Cloud jumping = points::make("Uniform", 15000);
	for (int i = 0; i < 8; ++i) {
		jumping.emplace_back(i & 1 ? 5000 : -5000, i & 2 ? 5000 : -5000, i & 4 ? 5000 : -5000);
	}
	const Cloud lattice = points::make("Lattice", 125), flat = points::make("FlatGrid", 30);
	Cloud flatWithApex(flat);
	flatWithApex.emplace_back(1, 1, 1);
	const auto asNumbers = [](Tulo_3D& mesh, const Cloud& batch) {
		double coordinates[3 * 64];
		std::int32_t numbers[64];
		double* pEnd = coordinates;
		for (const Point3& p : batch) {
			p.xyz(pEnd[0], pEnd[1], pEnd[2]);
			pEnd += 3;
		}
		mesh.insert(coordinates, batch.size(), numbers);
	};
	const auto leftOut = [](Tulo_3D& mesh, const Cloud&) { mesh.insertLeftOut(); };
	return {{"first batch", {}, lattice, {}}, {"flat, then not", flat, {Point3(1, 1, 1)}, {}},
	    {"second batch", lattice, shifted, {}}, {"inside", lattice, {}, shifted},
	    {"at the hull", lattice, {}, outside}, {"far batch", lattice, outside, {}},
	    {"far ahead", {}, jumping, {}, 380, 40},
	    {"as numbers", lattice, outside, {}, 0, 1, asNumbers, 1},
	    {"left out", flatWithApex, {}, {}, 0, 1, leftOut, 1, true}};
}

/// Every call that a host can still make.
std::vector<std::function<void(Tulo_3D&)>> laterCalls(Point3* pVtx)
{
	static Cloud more{Point3(0.3, 0.1, 0.2), Point3(8, 9, 10)};
	static const double coordinates[] = {0.2, 0.7, 0.4};
	return {[](Tulo_3D& m) { m.insert(more); }, [](Tulo_3D& m) { m.insert(more[0]); },
	    [](Tulo_3D& m) { m.insert(coordinates, 1); }, [](Tulo_3D& m) { m.insertLeftOut(); },
	    [](Tulo_3D& m) { m.locate(Point3(0.5, 0.5, 0.5)); }, [](Tulo_3D& m) { m.is3D(); },
	    [](Tulo_3D& m) {
		    std::vector<Point3*> v;
		    m.getVertices(v);
	    },
	    [](Tulo_3D& m) {
		    std::vector<Tet3*> v;
		    m.getTetrahedra(v);
	    },
	    [pVtx](Tulo_3D& m) {
		    std::vector<Tet3*> v;
		    Point3 none;
		    m.getTetsAroundVertex(pVtx != nullptr ? pVtx : &none, v);
	    },
	    [](Tulo_3D& m) { m.print("later"); }, [](Tulo_3D& m) { m.checkValidity("later", true); },
	    [](Tulo_3D& m) { m.show("/dev/null", nullptr); }, [](Tulo_3D& m) { m.setVerbosity(false); },
	    [](Tulo_3D& m) { m.getNumVertices(); }, [](Tulo_3D& m) { m.getNumTetrahedra(); },
	    [](Tulo_3D& m) { m.copyTo({}); }};
}

} // namespace

// clang-format off
extern "C" {
void* __real_malloc(std::size_t size);
void* __real__Znwm(std::size_t size);
void* __real__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag);
void* __real__Znam(std::size_t size);
void __real_free(void* pBlock);
void __real__ZdlPv(void* pBlock);
void __real__ZdlPvm(void* pBlock, std::size_t size);
void __real__ZdaPv(void* pBlock);
void __real__ZdaPvm(void* pBlock, std::size_t size);
void* __wrap_malloc(std::size_t size) { return fails() ? nullptr : counted(__real_malloc(size)); }
void* __wrap__Znwm(std::size_t size) { return fails() ? throw std::bad_alloc() : counted(__real__Znwm(size)); }
void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) { return fails() ? nullptr : counted(__real__ZnwmRKSt9nothrow_t(size, tag)); }
void* __wrap__Znam(std::size_t size) { return fails() ? throw std::bad_alloc() : counted(__real__Znam(size)); }
void __wrap_free(void* pBlock) { uncount(pBlock); __real_free(pBlock); }
void __wrap__ZdlPv(void* pBlock) { uncount(pBlock); __real__ZdlPv(pBlock); }
void __wrap__ZdlPvm(void* pBlock, std::size_t size) { uncount(pBlock); __real__ZdlPvm(pBlock, size); }
void __wrap__ZdaPv(void* pBlock) { uncount(pBlock); __real__ZdaPv(pBlock); }
void __wrap__ZdaPvm(void* pBlock, std::size_t size) { uncount(pBlock); __real__ZdaPvm(pBlock, size); }
}
// clang-format on

TEST(Allocation, AMeshWhoseInsertionWasCutShortSaysSoAndLosesNoMemory)
{
	static int numStops;
	numStops = 0;
	const support::MessagesTo silence(nullptr);
	setStopHandler([](StopReason, const char*) {
		++numStops;
		throw std::bad_alloc();
	});
	int numBroken = 0, numWhole = 0;
	const auto throws = [](const auto& call, Tulo_3D& mesh) {
		try {
			call(mesh);
		} catch (const TuloException&) {
			return true;
		}
		return false;
	};
	/// True when an allocation has failed. The library does without some, such as a buffer for sorting.
	const auto run = [&](const Scenario& scenario, int n, bool bGoesOn) {
		std::optional<Tulo_3D> made;
		std::vector<Point3*> handles;
		Cloud before(scenario.before), batch(scenario.batch), singles(scenario.singles);
		if (!before.empty()) made.emplace();
		if (made && !scenario.bBeforeInSingles) made->insert(before);
		for (std::size_t i = 0; scenario.bBeforeInSingles && i < before.size(); ++i) {
			made->insert(before[i]);
		}
		handles.reserve(singles.size()); // all that fails is the library's
		const bool bDone = succeeds(n, n % 2 != 0, [&] {
			if (!made) made.emplace();
			if (scenario.call != nullptr) return scenario.call(*made, batch);
			if (!batch.empty()) made->insert(batch, handles);
			for (Point3& p : singles) handles.push_back(made->insert(p));
		});
		if (!bGoesOn || !made) return bHasFailed;
		Tulo_3D& mesh = *made;
		const auto calls = laterCalls(handles.empty() ? nullptr : handles.front());
		const bool bBroken = throws(calls.back(), mesh);
		for (const auto& call : calls) EXPECT_EQ(throws(call, mesh), bBroken);
		EXPECT_EQ(bBroken, !bDone && n >= scenario.numHarmless);
		EXPECT_TRUE(bBroken || mesh.checkValidity("whole", true));
		(bBroken ? numBroken : numWhole) += 1;
		return bHasFailed;
	};
	for (const Scenario& scenario : makeScenarios()) {
		bool bFailed = true;
		for (int n = scenario.first; bFailed; n += scenario.step) {
			SCOPED_TRACE(scenario.name + (" " + std::to_string(n)));
			const long numBefore = numBlocks.load();
			bFailed = run(scenario, n, false);
			ASSERT_EQ(numBlocks.load(), numBefore);
			run(scenario, n, true);
			ASSERT_FALSE(HasFailure());
		}
	}
	setStopHandler(nullptr);
	EXPECT_TRUE(numStops > 20 && numBroken > 1000 && numWhole >= 11)
	    << numStops << " " << numBroken << " " << numWhole;
}
