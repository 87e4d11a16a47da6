// SPDX-License-Identifier: MIT
// Stopwatch, counters and the generators of random input.
#include "support.h"
#include "tools.h"

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <regex>
#include <thread>

using namespace TULO3D;
using support::printedBy;

namespace {

TEST(Instruments, TheStopwatchAlternatesAndPrintsThreeDecimals)
{
	double seconds = -1;
	const auto call = [&] { seconds = timer("a b"); };
	for (int round = 0; round < 2; ++round) {
		EXPECT_EQ(printedBy(call), "*** Timer [a b] start\n");
		EXPECT_EQ(seconds, 0);
		std::this_thread::sleep_for(std::chrono::milliseconds(15));
		const std::string text = printedBy(call);
		const std::regex form("\\*\\*\\* Timer \\[a b\\] stop, elapsed time: \\d+\\.\\d{3} s\n\n");
		EXPECT_TRUE(std::regex_match(text, form) && seconds >= 0.015) << text;
	}
	EXPECT_TRUE(std::cout.precision() == 6 && (std::cout.flags() & std::ios::fixed)); // fixed stays
	std::cout.unsetf(std::ios::floatfield);
}

TEST(Instruments, CountersAreListedByNameAndAskingDoesNotCount)
{
	std::string names[] = {"GETCOUNTERS", "b", "a", "getcounters", "b"};
	const auto list = [&] { benchCounter(names[0]); };
	EXPECT_EQ(printedBy(list), "\nCounters: \n\n");
	for (int i = 1; i < 5; ++i) EXPECT_EQ(printedBy([&] { benchCounter(names[i]); }), "");
	for (int i = 0; i < 2; ++i) {
		EXPECT_EQ(printedBy(list), "\nCounters: \na\t1\nb\t2\ngetcounters\t1\n\n");
	}
}

TEST(Generators, ASeedMeansTheClassicNumbersAndTheHostsRandIsLeftAlone)
{
	std::srand(7);
	const int hosts = std::rand();
	std::srand(7);
	std::vector<double> v{5};
	generateRandomNumbers(4, 0, 32768, v, 1);
	EXPECT_EQ(v, (std::vector<double>{5, 41, 18467, 6334, 26500}));
	for (const auto& [num, made] : {std::pair(0U, 0U), {1U, 1U}, {3U, 2U}, {10U, 7U}}) {
		std::vector<Point3> vPoints(1);
		generateRandomPoints(num, -1, 3, vPoints, 1);
		ASSERT_EQ(vPoints.size(), 1 + made) << num;
		EXPECT_TRUE(made < 2 || vPoints[2].x() == 26500 / 8192.0 - 1);
	}
	EXPECT_EQ(std::rand(), hosts);
}

TEST(Generators, EmptyRangesThrowAndAppendNothing)
{
	std::vector<double> none;
	std::vector<Point3> vPoints;
	for (const auto& [a, b] : {std::pair(1.0, 1.0), {2.0, 1.0}, {NAN, 1.0}, {0.0, NAN}}) {
		const double min = a, max = b;
		EXPECT_EQ(support::conditionFailedBy([&] { generateRandomNumbers(3, min, max, none, 0); }),
		    "min<max");
		EXPECT_EQ(
		    support::conditionFailedBy([&] { generateRandomPoints(3, min, max, vPoints, 0); }),
		    "min<max");
	}
	EXPECT_TRUE(none.empty() && vPoints.empty());
}

} // namespace
