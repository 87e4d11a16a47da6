// SPDX-License-Identifier: MIT
// Memory that runs out, at each allocation in turn: the documented stop or std::bad_alloc, nothing
// else. The linker leads all calls of the library to the functions below.
#include "support.h"

#include <new>

using namespace TULO3D;

namespace {

int numUntilFailure = -1; // none fails
bool bForGood = false;

#if defined(__SANITIZE_ADDRESS__)
constexpr int kStep = 20; // the search for leaks at each end takes its time
#else
constexpr int kStep = 1;
#endif

bool fails()
{
	const bool bFails = numUntilFailure == 0;
	if (numUntilFailure > 0 || (bFails && !bForGood)) --numUntilFailure;
	return bFails;
}

points::Cloud smallCloud()
{
	return points::make("Lattice", 125);
}

/// Makes a mesh, asks it and destroys it; the allocation after so many fails, or all that follow.
void use(points::Cloud cloud, int numAllowed, bool bAllFail)
{
	bForGood = bAllFail;
	numUntilFailure = numAllowed;
	Tulo_3D mesh;
	std::vector<Point3*> handles;
	std::vector<Tet3*> vTets, star;
	mesh.insert(cloud, handles);
	for (Point3& p : cloud) p = p + Vector3(0.1, 0.2, 0.3);
	for (std::size_t i = 0; i < 40; ++i) mesh.insert(cloud[i]);
	mesh.getTetrahedra(vTets);
	mesh.getTetsAroundVertex(handles[40], star);
}

/// Ends the process: with status 7 when std::bad_alloc came through.
[[noreturn]] void useAndEnd(int numAllowed)
{
	try {
		use(smallCloud(), numAllowed, false);
	} catch (const std::bad_alloc&) {
		std::cerr << "bad_alloc" << std::endl;
		std::exit(7);
	}
	std::cerr << "done" << std::endl;
	std::exit(0);
}

} // namespace

extern "C" {
void* __real_malloc(std::size_t size);
void* __real__Znwm(std::size_t size);
void* __wrap_malloc(std::size_t size)
{
	return fails() ? nullptr : __real_malloc(size);
}
void* __wrap__Znwm(std::size_t size)
{
	return fails() ? throw std::bad_alloc() : __real__Znwm(size);
}
}

TEST(AllocationDeathTest, AFailureIsTheDocumentedStopOrBadAlloc)
{
	int code = 0, numEnds[8] = {};
	for (int n = 0; n == 0 || code != 0; n += n < 20 ? 1 : kStep) {
		const auto ended = [&code](int status) {
			code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
			return code == 0 || code == 1 || code == 7;
		};
		EXPECT_EXIT(support::loudly([n] { useAndEnd(n); }), ended,
		    "SimplePool::alloc\\(..\\), ERROR: Out of memory, sorry|bad_alloc|done");
		ASSERT_FALSE(HasFailure()) << "allocation " << n << ", status " << code;
		++numEnds[code];
	}
	EXPECT_TRUE(numEnds[1] > 2 && numEnds[7] > 20) << numEnds[1] << " " << numEnds[7];
}

TEST(Allocation, AfterAFailureTheMeshCanBeDestroyedWhenTheStopHandlerThrows)
{
	static int numStops;
	numStops = 0;
	// In random order as far as the curve can tell: scouts are out when memory ends.
	points::Cloud large = points::make("Uniform", 15000);
	for (int i = 0; i < 8; ++i) {
		large.emplace_back(i & 1 ? 5000 : -5000, i & 2 ? 5000 : -5000, i & 4 ? 5000 : -5000);
	}
	const support::MessagesTo silence(nullptr);
	setStopHandler([](StopReason, const char*) {
		++numStops;
		throw std::bad_alloc();
	});
	for (const points::Cloud& cloud : {smallCloud(), large}) {
		const bool bLarge = cloud.size() == large.size();
		bool bDone = false;
		int n = bLarge ? 380 : 0; // the first ones differ little
		while (!bDone) {
			try {
				use(cloud, n, n % 2 != 0);
				bDone = true;
			} catch (const std::bad_alloc&) {
			}
			numUntilFailure = -1;
			n += bLarge ? 3 : 1;
		}
	}
	setStopHandler(nullptr);
	EXPECT_GT(numStops, 20);
}
