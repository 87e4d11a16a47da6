// SPDX-License-Identifier: MIT
// How the points of each workload are made.
#include "workloads.h"

#include "Bbox3.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

using points::Cloud;
using points::Random;
using TULO3D::Point3;

namespace {

constexpr double kTwoPi = 6.28318530717958647692;

/// `size` points, each made by a call of f.
template <class F>
Cloud repeat(std::size_t size, F f)
{
	Cloud cloud;
	cloud.reserve(size);
	while (cloud.size() < size) cloud.push_back(f());
	return cloud;
}

/// A normally distributed number (Box and Muller).
double normal(Random& random)
{
	const double radius = std::sqrt(-2 * std::log(1 - random.unit()));
	return radius * std::cos(kTwoPi * random.unit());
}

Point3 around(const Point3& centre, double sigma, Random& random)
{
	const double dx = normal(random), dy = normal(random), dz = normal(random);
	return {centre.x() + sigma * dx, centre.y() + sigma * dy, centre.z() + sigma * dz};
}

const Point3& anyOf(const Cloud& cloud, Random& random)
{
	return cloud[static_cast<std::size_t>(random.below(static_cast<int>(cloud.size())))];
}

/// Hills over the unit square, without any flat part.
double height(double x, double y)
{
	return 0.05 * (std::sin(9 * x + 2 * y) + std::cos(7 * y - 3 * x)) +
	    0.01 * std::sin(41 * x) * std::cos(37 * y);
}

Cloud uniform(std::size_t size, Random& random)
{
	return repeat(size, [&] { return random.point(0, 1); });
}

Cloud clusters(std::size_t size, Random& random)
{
	const Cloud centres = uniform(100, random);
	return repeat(size, [&] { return around(anyOf(centres, random), 0.01, random); });
}

Cloud twoClusters(std::size_t size, Random& random)
{
	const Cloud centres = {{0, 0, 0}, {1000, 1000, 1000}};
	return repeat(size, [&] { return around(anyOf(centres, random), 1, random); });
}

Cloud outliers(std::size_t size, Random& random)
{
	Cloud cloud = uniform(size - std::min<std::size_t>(size, 8), random);
	for (int i = 0; i < 8; ++i) {
		cloud.emplace_back(
		    (i & 1) != 0 ? 1000 : -1000, (i & 2) != 0 ? 1000 : -1000, (i & 4) != 0 ? 1000 : -1000);
	}
	points::shuffle(cloud, random);
	return cloud;
}

Cloud terrain(std::size_t size, Random& random)
{
	return repeat(size, [&] {
		const double x = random.unit(), y = random.unit();
		return Point3(x, y, height(x, y));
	});
}

/// As a laser scans a surface: line by line, each in the same direction, the points off the surface
/// and the raster by a tenth of their distance.
Cloud laser(std::size_t size, Random& random)
{
	const auto numPerLine = std::max(2.0, std::ceil(std::sqrt(static_cast<double>(size))));
	const double spacing = 1 / numPerLine;
	double numBefore = 0;
	return repeat(size, [&] {
		const double line = std::floor(numBefore / numPerLine);
		const double x = spacing * (numBefore - line * numPerLine), y = spacing * line;
		++numBefore;
		return around({x, y, height(x, y)}, 0.1 * spacing, random);
	});
}

Cloud terrainFlatInX(std::size_t size, Random& random)
{
	return repeat(size, [&] {
		const double y = random.unit(), z = random.unit();
		return Point3(height(y, z), y, z);
	});
}

// Off the curve by a little: on it, every point would meet all points of its turn, and n points
// would have n^2 / turns tetrahedra.
Cloud helix(std::size_t size, Random& random)
{
	constexpr double kTurns = 10;
	return repeat(size, [&] {
		const double turn = kTurns * random.unit();
		const Point3 onCurve(std::cos(kTwoPi * turn), std::sin(kTwoPi * turn), turn / 2);
		return around(onCurve, 0.001, random);
	});
}

Cloud sphere(std::size_t size, Random& random)
{
	return repeat(size, [&] {
		const double x = normal(random), y = normal(random), z = normal(random);
		const double length = std::sqrt(x * x + y * y + z * z);
		return Point3(x / length, y / length, z / length);
	});
}

Cloud grid(std::size_t size, Random&)
{
	const auto side = std::lround(std::cbrt(static_cast<double>(size)));
	Cloud cloud;
	cloud.reserve(static_cast<std::size_t>(side * side * side));
	for (long x = 0; x < side; ++x)
		for (long y = 0; y < side; ++y)
			for (long z = 0; z < side; ++z)
				cloud.emplace_back(
				    static_cast<double>(x), static_cast<double>(y), static_cast<double>(z));
	return cloud;
}

Cloud pipe(std::size_t size, Random& random)
{
	return repeat(size, [&] {
		const double angle = kTwoPi * random.unit(), radius = 1 + 0.001 * random.unit();
		return Point3(500 * random.unit(), radius * std::cos(angle), radius * std::sin(angle));
	});
}

Cloud longBox(std::size_t size, Random& random)
{
	return repeat(size, [&] {
		const Point3 p = random.point(0, 1);
		return Point3(0.1 * p.x(), 0.1 * p.y(), 500 * p.z());
	});
}

/// Rounded points of the moment curve, at its two ends in turn: every two of them are adjacent.
Cloud moment(std::size_t size, Random&)
{
	double t = 0;
	return repeat(size, [&t, step = 1.0 / static_cast<double>(size)] {
		t = t < 0 ? step - t : -t - step;
		return Point3(t, t * t, t * t * t);
	});
}

/// Exactly on five skew lines.
Cloud lines(std::size_t size, Random& random)
{
	const Point3 directions[] = {{1, 2, 3}, {-2, 1, 1}, {3, -1, 2}, {1, 1, -4}, {2, 3, -1}};
	return repeat(size, [&] {
		const int line = random.below(5);
		const double t = random.below(1 << 20);
		const Point3& d = directions[line];
		return Point3(t * d.x() + line, t * d.y() + 7 * line, t * d.z() - 3 * line);
	});
}

Cloud tiny(std::size_t size, Random& random)
{
	return repeat(size, [&] { return random.point(0, 1e-60); });
}

/// Random directions, the logarithm of the distance uniform over so many decades.
template <int numDecades>
Cloud scales(std::size_t size, Random& random)
{
	return repeat(size, [&] {
		const double x = normal(random), y = normal(random), z = normal(random);
		const double distance = std::pow(10.0, -numDecades * random.unit());
		const double factor = distance / std::sqrt(x * x + y * y + z * z);
		return Point3(factor * x, factor * y, factor * z);
	});
}

/// The nearest square raster under a Gaussian bump, whose tails fall below 1e-45, and then to zero.
Cloud bump(std::size_t size, Random&)
{
	const auto side = std::lround(std::sqrt(static_cast<double>(size)));
	const auto at = [side](long i) {
		return 40.0 * static_cast<double>(i) / static_cast<double>(side) - 20;
	};
	Cloud cloud;
	for (long i = 0; i < side; ++i) {
		for (long j = 0; j < side; ++j) {
			cloud.emplace_back(at(i), at(j), std::exp(-at(i) * at(i) - at(j) * at(j)));
		}
	}
	return cloud;
}

/// The logarithm of each coordinate uniform over 100 decades, either sign.
Cloud decades(std::size_t size, Random& random)
{
	const auto coordinate = [&random] {
		const double magnitude = std::pow(10.0, 50 - 100 * random.unit());
		return random.unit() < 0.5 ? -magnitude : magnitude;
	};
	return repeat(size, [&] {
		const double x = coordinate(), y = coordinate();
		return Point3(x, y, coordinate());
	});
}

} // namespace

const std::vector<Workload>& workloads()
{
	static const std::vector<Workload> table = {
	    {"uniform", "random points of a cube", uniform},
	    {"clusters", "100 gaussian clusters in a cube", clusters},
	    {"outliers", "uniform, 8 of the points a thousand times farther out", outliers},
	    {"terrain", "z = f(x, y) over a square", terrain},
	    {"laser", "the same in scan order, line by line, with a little noise", laser},
	    {"helix", "random points around a helix with 10 turns", helix},
	    {"sphere", "random points of a sphere", sphere},
	    {"grid", "the nearest cubic integer grid, x running slowest", grid},
	    {"pipe", "a long pipe along x with a wall", pipe},
	    {"box", "random points of a box of 0.1 x 0.1 x 500", longBox},
	    {"flat", "x = f(y, z): hardly any extent in x", terrainFlatInX},
	    {"moment", "points of the moment curve, at its ends in turn", moment},
	    {"lines", "random points exactly on five lines", lines},
	    {"tiny", "random points of a cube with a side of 1e-60", tiny},
	    {"bump", "a raster under a Gaussian bump, down to z = 0", bump},
	    {"scales8", "random directions, distances over 8 decades", scales<8>},
	    {"scales12", "the same over 12 decades", scales<12>},
	    {"scales30", "the same over 30 decades", scales<30>},
	    {"decades", "each coordinate over 100 decades", decades},
	    {"twoclusters", "two gaussian clusters far from each other", twoClusters},
	};
	return table;
}

Cloud makeWorkload(const std::string& name, std::size_t size, unsigned seed)
{
	Random random(seed);
	for (const Workload& workload : workloads()) {
		if (workload.name == name) return workload.make(size, random);
	}
	return points::make(name, static_cast<int>(size), seed);
}

Cloud readPoints(const std::string& fileName)
{
	std::ifstream file(fileName);
	if (!file) throw std::runtime_error("cannot read " + fileName);
	Cloud cloud;
	for (std::string line; std::getline(file, line);) {
		double c[3];
		const char* pText = line.c_str();
		for (double& value : c) {
			char* pEnd = nullptr;
			value = std::strtod(pText, &pEnd);
			if (pEnd == pText) throw std::runtime_error("no point in the line: " + line);
			pText = pEnd;
		}
		cloud.emplace_back(c[0], c[1], c[2]);
	}
	return cloud;
}

Cloud makeQueries(const Cloud& cloud, std::size_t size, unsigned seed)
{
	const TULO3D::Bbox3 box(cloud);
	Random random(seed + 1000000);
	return repeat(size, [&] {
		const double x = random.in(box.getMinX(), box.getMaxX());
		const double y = random.in(box.getMinY(), box.getMaxY());
		return Point3(x, y, random.in(box.getMinZ(), box.getMaxZ()));
	});
}
