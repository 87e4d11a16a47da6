// SPDX-License-Identifier: MIT
// Memory that runs out, at each allocation in turn: the documented stop or std::bad_alloc, nothing
// else. The linker leads all calls of the library to the functions below.
#include "support.h"

#include <new>

using namespace TULO3D;

namespace {

int numUntilFailure = -1; // none fails

#if defined(__SANITIZE_ADDRESS__)
constexpr int kStep = 20; // the search for leaks at each end takes its time
#else
constexpr int kStep = 1;
#endif

bool fails()
{
	return numUntilFailure >= 0 && numUntilFailure-- == 0;
}

/// Makes a mesh, asks it and ends the process: with status 7 when std::bad_alloc came through.
[[noreturn]] void work(int numAllowed)
{
	points::Cloud cloud = points::make("Lattice", 125);
	numUntilFailure = numAllowed;
	try {
		Tulo_3D mesh;
		std::vector<Point3*> handles;
		std::vector<Tet3*> vTets, star;
		mesh.insert(cloud, handles);
		for (Point3& p : cloud) p = p + Vector3(0.1, 0.2, 0.3);
		for (int i = 0; i < 40; ++i) mesh.insert(cloud[static_cast<std::size_t>(i)]);
		mesh.getTetrahedra(vTets);
		mesh.getTetsAroundVertex(handles[40], star);
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
		EXPECT_EXIT(support::loudly([n] { work(n); }), ended,
		    "SimplePool::alloc\\(..\\), ERROR: Out of memory, sorry|bad_alloc|done");
		ASSERT_FALSE(HasFailure()) << "allocation " << n << ", status " << code;
		++numEnds[code];
	}
	EXPECT_TRUE(numEnds[1] > 2 && numEnds[7] > 20) << numEnds[1] << " " << numEnds[7];
}
