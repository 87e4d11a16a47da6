// SPDX-License-Identifier: MIT
// Random numbers and points from the library's own 15-bit generator.
#include "testDataGenerators.h"

#include "tools.h"

#include <atomic>
#include <ctime>

namespace TULO3D {

namespace {

/// Seed 0 stands for the time of day; calls within the same second are kept apart by their number.
void seedByTime(Rand15& random)
{
	static std::atomic<int> numCalls{0};
	const int numBefore = numCalls++;
	random.seed(static_cast<unsigned int>(std::time(nullptr)));
	for (int i = 0; i < numBefore; ++i) random.seed(static_cast<unsigned int>(random.next()));
}

} // namespace

void generateRandomNumbers(
    std::size_t num, double min, double max, std::vector<double>& vOut, unsigned int seed)
{
	Rand15 random;
	if (seed != 0) {
		random.seed(seed);
	} else {
		seedByTime(random); // before the check: a call that then throws counts, too
	}
	CONDITION_CHECK(min<max);
	constexpr double kStep = 3.0517578125e-5; // 1 / 32768: max itself never comes
	for (std::size_t i = 0; i < num; ++i) vOut.push_back(random.next() * (max - min) * kStep + min);
}

void generateRandomPoints(
    std::size_t num, double min, double max, std::vector<Point3>& vOut, unsigned int seed)
{
	CONDITION_CHECK(min<max);
	std::vector<double> vNumbers;
	generateRandomNumbers(3 * num, min, max, vNumbers, seed);
	// Deliberate: up to 2 * num, not 3 * num; the rest of the numbers is discarded.
	for (std::size_t i = 0; i < 2 * num; i += 3) {
		vOut.emplace_back(vNumbers[i], vNumbers[i + 1], vNumbers[i + 2]);
	}
}

} // namespace TULO3D
