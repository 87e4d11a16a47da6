// SPDX-License-Identifier: MIT
// Engines in several threads at once, and what all threads share. The preset `thread` runs this file
// under ThreadSanitizer.
#include "Colors.h"
#include "Dt3.h"
#include "Visualizer3.h"
#include "scratch.h"
#include "support.h"
#include "tools.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <functional>
#include <iterator>
#include <new>
#include <thread>

using namespace TULO3D;
using points::Cloud;

namespace {

const char* const kFamilies[] = {"Uniform", "Lattice", "UnitSphere", "TerrainFlatInX"};
constexpr std::size_t kNumThreads = std::size(kFamilies);

/// Fails each check of a mesh, draws it and prints it.
void breakSmallMesh(const std::string& name)
{
	Tulo_3D mesh;
	std::vector<Point3*> handles;
	Cloud cloud{{2, 0, 0}, {-2, 0, 0}, {0, 2, 0}, {0, 1, 4}, {0, 1, -4}};
	mesh.insert(cloud, handles);
	EXPECT_TRUE(mesh.checkValidity(name, true));
	mesh.show(name + ".list", handles[0]);
	mesh.print(name);
	handles[3]->exchange(0, 0, 4);
	handles[4]->exchange(0, 0, -0.5);
	EXPECT_FALSE(mesh.checkValidity(name, true)) << "the spheres";
	handles[4]->exchange(0, 1, 1);
	EXPECT_FALSE(mesh.checkValidity(name, false)) << "the sides, with a drawing";
	EXPECT_THROW(
	    Dt3(nullptr).createTet(handles[0], handles[1], handles[2], handles[3]), TuloException);
	EXPECT_THROW(mesh.insert(cloud[0] = Point3(0, 0, NAN)), TuloException);
	setStopHandler([](StopReason, const char*) { throw std::bad_alloc(); });
	EXPECT_THROW(mesh.show("no/such/folder/a.list", nullptr), std::bad_alloc);
	setStopHandler(nullptr);
}

/// All that a host may do in a thread; the mesh of the larger part of it.
support::CornerTuples work(std::size_t number, std::ostream& messages)
{
	const support::MessagesTo to(&messages);
	const std::string name = "thread" + std::to_string(number);
	Cloud cloud = points::make(kFamilies[number], 3000);
	const auto middle = cloud.begin() + static_cast<std::ptrdiff_t>(cloud.size() / 2);
	Cloud batch(cloud.begin(), middle), again(middle, cloud.end() - 300);
	Tulo_3D mesh;
	mesh.setVerbosity(true);
	std::vector<Point3*> handles, vertices;
	std::vector<Tet3*> tets, star;
	mesh.insert(batch, handles);
	for (std::size_t i = cloud.size() - 300; i < cloud.size(); ++i)
		handles.push_back(mesh.insert(cloud[i]));
	breakSmallMesh(name);
	mesh.insert(again);
	for (std::size_t i = 0; i < handles.size(); i += 10) {
		mesh.getTetsAroundVertex(handles[i], star);
		EXPECT_NE(std::find(star.begin(), star.end(), mesh.locate(*handles[i])), star.end());
	}
	EXPECT_TRUE(mesh.checkValidity(name, true));
	mesh.getVertices(vertices);
	mesh.getTetrahedra(tets);
	return support::canonical(vertices, tets);
}

/// The lines in alphabetical order, without numbers and addresses.
std::vector<std::string> sortedLines(const std::ostringstream& stream)
{
	std::vector<std::string> lines(1);
	for (const char c : stream.str()) {
		if (c == '\n') {
			lines.emplace_back();
		} else if (std::isxdigit(static_cast<unsigned char>(c)) == 0 &&
		    std::string("x.+- \t").find(c) == std::string::npos) {
			lines.back() += c;
		}
	}
	std::sort(lines.begin(), lines.end());
	return lines;
}

std::size_t colorIndex()
{
	const auto it =
	    std::find(std::begin(colorArray), std::end(colorArray), Visualizer3::getColor());
	return static_cast<std::size_t>(it - std::begin(colorArray));
}

class Threads : public support::TestInFolder
{
};

/// Runs `action` in each of the threads, which get a number.
template <class Action>
void inThreads(Action action)
{
	std::vector<std::thread> threads;
	for (std::size_t i = 0; i < kNumThreads; ++i) threads.emplace_back([&action, i] { action(i); });
	for (std::thread& thread : threads) thread.join();
}

TEST_F(Threads, EachMakesTheMeshThatItMakesAloneAndTheirMessagesDoNotMix)
{
	std::ostringstream alone, shared;
	std::vector<support::CornerTuples> expected, meshes(kNumThreads);
	work(0, shared); // takes the first margin of the process
	shared.str("");
	for (std::size_t i = 0; i < kNumThreads; ++i) expected.push_back(work(i, alone));
	inThreads([&](std::size_t i) { meshes[i] = work(i, shared); });
	EXPECT_EQ(meshes, expected);
	EXPECT_EQ(sortedLines(shared), sortedLines(alone));
	const auto files = std::filesystem::directory_iterator(folder);
	EXPECT_EQ(std::distance(begin(files), end(files)), kNumThreads + 2 * (2 * kNumThreads + 1))
	    << "a drawing for each thread and for each failed check";
}

// One by one: the lock of one would hide from the sanitizer that the next one has none.
TEST_F(Threads, ShareCountersNumbersAndColours)
{
	constexpr std::size_t kNumUses = 50;
	std::string event = "an event", list = "GETCOUNTERS";
	std::vector<std::string> prefixes(kNumThreads * kNumUses);
	std::vector<double> numbers[kNumThreads];
	const std::size_t firstColor = colorIndex();
	const std::function<void(std::size_t, std::size_t)> uses[] = {
	    [&](std::size_t, std::size_t) { benchCounter(event), benchCounter(list); },
	    [&](std::size_t i, std::size_t) { timer(std::to_string(i)); },
	    [&](std::size_t i, std::size_t n) { prefixes[i * kNumUses + n] = nextDebugFilePrefix(); },
	    [&](std::size_t i, std::size_t) { generateRandomNumbers(1, 0, 1, numbers[i], 0); },
	    [&](std::size_t, std::size_t) { Visualizer3::getNextColor(); },
	};
	for (const auto& use : uses) {
		inThreads([&use](std::size_t i) {
			const support::MessagesTo silence(nullptr);
			for (std::size_t n = 0; n < kNumUses; ++n) use(i, n);
		});
	}
	const std::string counted = support::printedBy([&] { benchCounter(list); });
	EXPECT_NE(counted.find("an event\t" + std::to_string(kNumThreads * kNumUses) + "\n"),
	    std::string::npos)
	    << counted;
	std::sort(prefixes.begin(), prefixes.end());
	EXPECT_EQ(std::adjacent_find(prefixes.begin(), prefixes.end()), prefixes.end())
	    << "one drawing would replace another";
	EXPECT_EQ(colorIndex(), (firstColor + kNumThreads * kNumUses) % kCycledColors);
}

} // namespace
