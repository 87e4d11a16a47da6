// SPDX-License-Identifier: MIT
// The families of hard inputs.
#include "points.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <stdexcept>

using TULO3D::Point3;

namespace points {

Point3 Random::onSphere()
{
	for (;;) {
		const Point3 p = point(-1, 1);
		const double r = std::sqrt(p.x() * p.x() + p.y() * p.y() + p.z() * p.z());
		if (r > 0.1 && r < 1) return {p.x() / r, p.y() / r, p.z() / r};
	}
}

Point3 Random::nudged(const Point3& p)
{
	double c[3] = {p.x(), p.y(), p.z()};
	for (double& v : c) {
		const int step = below(3) - 1;
		if (v != 0 && step != 0) v = std::nextafter(v, step * 1e60);
	}
	return {c[0], c[1], c[2]};
}

namespace {

constexpr double kPi = 3.14159265358979323846;

/// The points f(0) .. f(size - 1).
template <class F>
Cloud each(int size, F f)
{
	Cloud cloud;
	for (int i = 0; i < size; ++i) cloud.push_back(f(i));
	return cloud;
}

/// Every point stretched by s, then moved by d.
Cloud mapped(Cloud cloud, const Point3& s, const Point3& d)
{
	for (Point3& p : cloud) {
		p = Point3(p.x() * s.x() + d.x(), p.y() * s.y() + d.y(), p.z() * s.z() + d.z());
	}
	return cloud;
}

Cloud nudged(Cloud cloud, Random& r)
{
	for (Point3& p : cloud) p = r.nudged(p);
	return cloud;
}

Cloud shuffled(Cloud cloud, Random& r)
{
	shuffle(cloud, r);
	return cloud;
}

Cloud joined(Cloud cloud, const Cloud& more)
{
	cloud.insert(cloud.end(), more.begin(), more.end());
	return cloud;
}

int side(int size, double dimension)
{
	return std::max(2, static_cast<int>(std::lround(std::pow(size, 1 / dimension))));
}

/// The integer points of a box with nx * ny * nz of them, x running slowest.
Cloud box(int nx, int ny, int nz)
{
	return each(nx * ny * nz, [=](int i) { return Point3(i / (ny * nz), i / nz % ny, i % nz); });
}

Cloud lattice(int size)
{
	const int n = side(size, 3);
	return box(n, n, n);
}

/// The lattice points with an even sum of coordinates.
Cloud faceCentred(int size)
{
	Cloud cloud = lattice(2 * size);
	const auto odd = [](const Point3& p) { return std::fmod(p.x() + p.y() + p.z(), 2) != 0; };
	cloud.erase(std::remove_if(cloud.begin(), cloud.end(), odd), cloud.end());
	return cloud;
}

/// All integer points at one common distance of the origin: at least `size` of them.
Cloud integerSphere(int size)
{
	for (int square = std::max(9, size * size / 400);; ++square) {
		Cloud cloud;
		const int r = static_cast<int>(std::sqrt(square));
		for (int i = 0; i < (2 * r + 1) * (2 * r + 1); ++i) {
			const int x = i % (2 * r + 1) - r, y = i / (2 * r + 1) - r,
			          rest = square - x * x - y * y;
			const int z = rest < 0 ? 0 : static_cast<int>(std::lround(std::sqrt(rest)));
			if (z * z == rest) cloud.emplace_back(x, y, z);
			if (z * z == rest && z != 0) cloud.emplace_back(x, y, -z);
		}
		if (static_cast<int>(cloud.size()) >= size) return cloud;
	}
}

Point3 onCircle(double radius, double turns, double z)
{
	return {radius * std::cos(2 * kPi * turns), radius * std::sin(2 * kPi * turns), z};
}

/// Circles of 16 points above one another.
Cloud cylinder(int size, double radius, double height)
{
	return each(size, [=](int i) { return onCircle(radius, i % 16 / 16.0, i / 16 * height); });
}

Cloud plateWithHoles(int size)
{
	const int m = side(size / 4, 2);
	Cloud cloud = mapped(box(m, m, 2), Point3(10, 10, 2), Point3(0, 0, 0));
	for (int i = 0; static_cast<int>(cloud.size()) < size; ++i) {
		cloud = joined(cloud,
		    mapped(cylinder(32, 3, 2), Point3(1, 1, 1),
		        Point3(10 * (i % m) + 5, 10 * (i / m) + 5, 0)));
	}
	return cloud;
}

Cloud uniform(int size, Random& r)
{
	return each(size, [&](int) { return r.point(0, 1); });
}

Cloud flatGrid(int size)
{
	const int n = side(size, 2);
	return box(n, n, 1);
}

/// Exactly on the plane x + y + z = 1e15, on integers.
Cloud farPlane(int size, Random& r)
{
	return each(size, [&](int) {
		const double x = r.below(1 << 30) * 0x1p20, y = r.below(1000);
		return Point3(x, y, 1e15 - x - y);
	});
}

/// Every coordinate is one of a few values, so points lie on faces, edges and their extensions.
double aroundTheUnit(Random& r)
{
	const double kinds[] = {0, 1, 0.5, r.unit(), r.in(-1, 2)};
	return r.of(kinds);
}

double ofAnyScale(Random& r)
{
	const double scale = std::pow(10.0, r.below(25) - 12);
	return scale * r.in(-1, 1);
}

/// Each of a few points about twenty times, some with zeros of either sign.
Cloud duplicates(int size, Random& r)
{
	const Cloud few = each(std::max(4, size / 20), [&](int) { return r.point(-1, 1); });
	return each(size, [&](int) {
		const Point3& p = r.of(few);
		const double zero = r.below(2) == 0 ? 0.0 : -0.0;
		return p.z() > 0 ? Point3(zero, p.y(), p.z()) : Point3(p.x(), p.y(), zero);
	});
}

Cloud clustersOfUlps(int size, Random& r)
{
	const Cloud centres = each(8, [&](int) { return r.point(-1e6, 1e6); });
	return each(size, [&](int) { return r.nudged(r.nudged(r.of(centres))); });
}

using R = Random;
const Point3 kOrigin(0, 0, 0), kOne(1, 1, 1);
constexpr double kLeast = std::numeric_limits<double>::denorm_min();

} // namespace

Cloud Family::make(int size, unsigned seed) const
{
	Random random(seed);
	return fill(size, random);
}

const std::vector<Family>& families()
{
	// clang-format off
	static const std::vector<Family> table = {
		{"Uniform", uniform},
		{"SmallIntegers", [](int n, R& r) { const int m = side(n, 3) + 1; return each(n, [&](int) { return Point3{1. * r.below(m), 1. * r.below(m), 1. * r.below(m)}; }); }},
		{"Lattice", [](int n, R&) { return lattice(n); }},
		{"LatticeShuffled", [](int n, R& r) { return shuffled(lattice(n), r); }},
		{"LatticeFarAway", [](int n, R& r) { return mapped(shuffled(lattice(n), r), kOne, Point3(0x1p40, 0x1p40, -0x1p40)); }},
		{"LatticeOfTenths", [](int n, R& r) { return mapped(shuffled(lattice(n), r), Point3(0.1, 0.1, 0.1), kOrigin); }},
		{"LatticeNudged", [](int n, R& r) { return nudged(mapped(lattice(n), kOne, kOne), r); }},
		{"Slab", [](int n, R& r) { return mapped(shuffled(box(side(n / 2, 2), side(n / 2, 2), 2), r), Point3(1000, 1000, 1), kOrigin); }},
		{"BodyCentred", [](int n, R& r) { return shuffled(joined(lattice(n / 2), mapped(lattice(n / 2), kOne, Point3(0.5, 0.5, 0.5))), r); }},
		{"FaceCentred", [](int n, R& r) { return shuffled(faceCentred(n), r); }},
		{"IntegerSphere", [](int n, R& r) { return shuffled(integerSphere(n), r); }},
		{"IntegerSphereThenCentre", [](int n, R& r) { return joined(shuffled(integerSphere(n), r), {kOrigin}); }},
		{"UnitSphere", [](int n, R& r) { return each(n, [&](int) { return r.onSphere(); }); }},
		{"LatitudeLongitudeSphere", [](int n, R&) { const int m = side(n / 2, 2); return each(2 * m * m, [=](int i) {
			const double latitude = kPi * (i / (2 * m)) / (m - 1); return onCircle(std::sin(latitude), i % (2 * m) / (2.0 * m), std::cos(latitude)); }); }},
		{"ConcentricShells", [](int n, R& r) { return each(n, [&](int i) { const double s = std::pow(10.0, 3 * (i % 4)); return mapped({r.onSphere()}, Point3(s, s, s), kOrigin)[0]; }); }},
		{"Cylinder", [](int n, R&) { return cylinder(n, 10, 2.5); }},
		{"PlateWithHoles", [](int n, R&) { return plateWithHoles(n); }},
		{"ParallelPlanes", [](int n, R& r) { return each(n, [&](int i) { return Point3{r.unit(), r.unit(), i % 3 * 0.5}; }); }},
		{"AroundABox", [](int n, R& r) { return each(n, [&](int) { return Point3{aroundTheUnit(r), aroundTheUnit(r), aroundTheUnit(r)}; }); }},
		{"NoisyPlane", [](int n, R& r) { return each(n, [&](int) { const double x = r.unit(), y = r.unit(); return r.nudged(Point3(x, y, 1 + x + y)); }); }},
		{"FarPlane", farPlane},
		{"FarPlaneNudged", [](int n, R& r) { return nudged(farPlane(n, r), r); }},
		{"LineThenTwoPoints", [](int n, R&) { return joined(each(n, [](int i) { return Point3(i, 2 * i, 3 * i); }), {Point3(0, 0, 1), Point3(0.5, 5, 1)}); }},
		{"FlatGridThenApex", [](int n, R&) { return joined(flatGrid(n), {Point3(1.5, 1.5, 1)}); }},
		{"FlatGrid", [](int n, R& r) { return shuffled(flatGrid(n), r); }},
		{"TwoSkewLines", [](int n, R&) { return each(std::min(n, 2000), [](int i) { return i % 2 == 0 ? Point3(i, 0, 0) : Point3(0, i, 1); }); }},
		{"MomentCurve", [](int n, R&) { return each(std::min(n, 2000), [](int i) { return Point3(i, 1.0 * i * i, 1.0 * i * i * i); }); }},
		{"Spiral", [](int n, R&) { return each(n, [](int i) { return onCircle(1, i / 20.0, i * 0.01); }); }},
		{"ClustersOfUlps", clustersOfUlps},
		{"MixedScales", [](int n, R& r) { return each(n, [&](int) { return Point3{ofAnyScale(r), ofAnyScale(r), ofAnyScale(r)}; }); }},
		{"EachOutside", [](int n, R& r) { return each(n, [&](int i) { const double s = std::pow(1.03, i % 1000); return mapped({r.onSphere()}, Point3(s, s, s), kOrigin)[0]; }); }},
		{"Tube", [](int n, R& r) { return each(n, [&](int) { const double t = r.unit(); return onCircle(0.1, t, r.in(0, 500)); }); }},
		{"Pipe", [](int n, R& r) { return each(n, [&](int) { const double t = r.unit(); const Point3 p = onCircle(0.5, t, r.in(0, 1000)); return Point3(p.z(), p.x(), p.y()); }); }},
		{"NeedleBox", [](int n, R& r) { return mapped(uniform(n, r), Point3(0.1, 0.1, 500), kOrigin); }},
		{"TerrainFlatInX", [](int n, R& r) { return each(n, [&](int) { const Point3 p = r.point(0, 1); return Point3(std::sin(5 * p.y()) * std::cos(3 * p.z()) + 0.01 * p.x(), 5000 * p.y(), 5000 * p.z()); }); }},
		{"DegreesAndMetres", [](int n, R& r) { return mapped(uniform(n, r), Point3(0.01, 0.01, 100), Point3(8, 48, 400)); }},
		{"DuplicatesAndSignedZeros", duplicates},
		{"Huge", [](int n, R& r) { return joined(mapped(uniform(n / 2, r), Point3(1e60, -1e60, 1e60), kOrigin), mapped(box(2, 2, 2), Point3(2e60, 2e60, 2e60), Point3(-1e60, -1e60, -1e60))); }},
		{"Tiny", [](int n, R& r) { return mapped(shuffled(lattice(n), r), Point3(1e-45, 1e-45, 1e-45), kOrigin); }},
		// Heights of a few of the smallest steps over integers, nothing but such steps, and a mixture.
		{"Denormals", [](int n, R& r) { return each(n, [&](int) { return Point3{1. * r.below(1000), 1. * r.below(1000), r.below(1000) * kLeast}; }); }},
		{"DenormalsOnly", [](int n, R& r) { return mapped(shuffled(lattice(n), r), Point3(kLeast, kLeast, kLeast), kOrigin); }},
		{"DenormalsMixedIn", [](int n, R& r) { return each(n, [&](int) { const Point3 p = r.point(-1, 1); const double s[] = {1, 1e-50, 1e-200, 1e-310}; return Point3{p.x() * r.of(s), p.y() * r.of(s), p.z() * r.of(s)}; }); }},
	};
	// clang-format on
	return table;
}

Cloud make(const std::string& name, int size, unsigned seed)
{
	for (const Family& family : families()) {
		if (family.name == name) return family.make(size, seed);
	}
	throw std::invalid_argument("no family " + name);
}

Cloud refused()
{
	Cloud cloud;
	const double infinity = std::numeric_limits<double>::infinity();
	for (const double bad :
	    {infinity, -infinity, std::nan(""), std::nextafter(1e60, infinity), -DBL_MAX}) {
		for (const Point3& p : {Point3(bad, 0, 0), Point3(0, bad, 0), Point3(0, 0, bad)})
			cloud.push_back(p);
	}
	return cloud;
}

} // namespace points
