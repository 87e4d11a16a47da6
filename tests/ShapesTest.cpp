// SPDX-License-Identifier: MIT
// Hulls, alpha shapes, cells and qualities: their laws, and what is known in closed form.
#include "shapes/AlphaShapes.h"
#include "shapes/ConvexHull.h"
#include "shapes/MeshCopy.h"
#include "shapes/Quality.h"
#include "shapes/Voronoi.h"
#include "support.h"

#include <cmath>
#include <limits>
#include <numeric>
#include <stdexcept>

using namespace TULO3D;
using namespace TULO3D::shapes;
using points::Cloud;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kPi = 3.14159265358979323846;

struct Meshed
{
	explicit Meshed(Cloud cloud) : mesh(make(cloud)), view(mesh.view()) {}
	static MeshCopy make(Cloud& cloud)
	{
		const support::Capture quiet;
		Tulo_3D tulo;
		tulo.insert(cloud);
		return MeshCopy(tulo);
	}
	std::vector<double> volumes() const
	{
		std::vector<double> v(view.numTets);
		measureQuality(view, {v.data(), nullptr, nullptr, nullptr, nullptr});
		return v;
	}
	double volume() const
	{
		const std::vector<double> v = volumes();
		return std::accumulate(v.begin(), v.end(), 0.0);
	}
	/// The place of a vertex.
	auto pointOf() const
	{
		return [this](std::int32_t i) {
			const double* p = view.pCoordinates + 3 * i;
			return Point3(p[0], p[1], p[2]);
		};
	}
	/// A box around all vertices, with a margin.
	Box box() const
	{
		Box b{{kInfinity, kInfinity, kInfinity}, {-kInfinity, -kInfinity, -kInfinity}};
		for (std::size_t i = 0; i < 3 * view.numVertices; ++i) {
			b.low[i % 3] = std::min(b.low[i % 3], view.pCoordinates[i]);
			b.high[i % 3] = std::max(b.high[i % 3], view.pCoordinates[i]);
		}
		const double margin =
		    0.1 * std::max({b.high[0] - b.low[0], b.high[1] - b.low[1], b.high[2] - b.low[2]});
		for (std::size_t i = 0; i < 3; ++i) {
			b.low[i] -= margin;
			b.high[i] += margin;
		}
		return b;
	}
	/// What rounding may do to the volume of the hull: much for a flat one.
	double tolerance() const
	{
		const Box b = box();
		return 1e-9 * volume() + 1e-300 +
		    1e-13 * (b.high[0] - b.low[0]) * (b.high[1] - b.low[1]) * (b.high[2] - b.low[2]);
	}
	MeshCopy mesh;
	MeshView view;
};

/// n^3 points at distances of `step`, from `origin` on along each axis.
Cloud cube(int n, double step, double origin)
{
	Cloud cloud;
	for (int i = 0; i < n * n * n; ++i) {
		cloud.emplace_back(
		    origin + step * (i % n), origin + step * (i / n % n), origin + step * (i / n / n));
	}
	return cloud;
}

/// The directed edges of polygons with the given begins, sorted, and the reversed ones.
using Edges = std::vector<std::pair<std::int32_t, std::int32_t>>;
std::pair<Edges, Edges> directedEdges(
    const std::vector<std::int32_t>& vCorners, const std::vector<std::int64_t>& vBegins)
{
	Edges there, back;
	for (std::size_t i = 0; i + 1 < vBegins.size(); ++i) {
		const auto begin = static_cast<std::size_t>(vBegins[i]),
		           end = static_cast<std::size_t>(vBegins[i + 1]);
		for (std::size_t k = begin; k < end; ++k) {
			const std::int32_t a = vCorners[k], b = vCorners[k + 1 < end ? k + 1 : begin];
			there.emplace_back(a, b);
			back.emplace_back(b, a);
		}
	}
	std::sort(there.begin(), there.end());
	std::sort(back.begin(), back.end());
	return {there, back};
}

std::vector<std::int64_t> triangleBegins(const std::vector<std::int32_t>& vTriangles)
{
	std::vector<std::int64_t> v;
	for (std::size_t i = 0; i <= vTriangles.size(); i += 3)
		v.push_back(static_cast<std::int64_t>(i));
	return v;
}

/// Vertices - edges + polygons; -99 when some edge does not join two polygons.
std::ptrdiff_t eulerNumber(
    const std::vector<std::int32_t>& vCorners, const std::vector<std::int64_t>& vBegins)
{
	const auto [there, back] = directedEdges(vCorners, vBegins);
	if (there != back || std::adjacent_find(there.begin(), there.end()) != there.end()) return -99;
	std::set<std::int32_t> corners;
	for (const auto& edge : there) corners.insert(edge.first);
	return static_cast<std::ptrdiff_t>(corners.size() + vBegins.size() - 1) -
	    static_cast<std::ptrdiff_t>(there.size() / 2);
}

/// The volume that polygons enclose, positive when they are counter-clockwise from outside. `pointOf` gives the place
/// of a corner.
template <class F>
double enclosed(
    const std::vector<std::int32_t>& vCorners, const std::vector<std::int64_t>& vBegins, F pointOf)
{
	double volume = 0;
	const auto corner = [&](std::int64_t k) {
		return pointOf(vCorners[static_cast<std::size_t>(k)]);
	};
	for (std::size_t i = 0; i + 1 < vBegins.size(); ++i) {
		for (std::int64_t k = vBegins[i] + 2; k < vBegins[i + 1]; ++k) {
			const Point3 origin = corner(vBegins[0]);
			const Vector3 a = corner(vBegins[i]) - origin, b = corner(k - 1) - origin,
			              c = corner(k) - origin;
			volume +=
			    (a.x() * (b.y() * c.z() - b.z() * c.y()) + a.y() * (b.z() * c.x() - b.x() * c.z()) +
			        a.z() * (b.x() * c.y() - b.y() * c.x())) /
			    6;
		}
	}
	return volume;
}

void expectHull(const Meshed& m)
{
	const ConvexHull hull = convexHull(m.view);
	if (m.view.numTets == 0) {
		ASSERT_TRUE(hull.vTriangles.empty());
		return;
	}
	ASSERT_EQ(eulerNumber(hull.vTriangles, triangleBegins(hull.vTriangles)), 2);
	ASSERT_NEAR(hull.volume, m.volume(), m.tolerance());
	for (std::size_t i = 0; i < hull.vNeighbours.size(); ++i) {
		const std::int32_t a = hull.vTriangles[i - i % 3 + (i + 1) % 3], next = hull.vNeighbours[i];
		ASSERT_EQ(std::count(&hull.vTriangles[3 * static_cast<std::size_t>(next)],
		              &hull.vTriangles[3 * static_cast<std::size_t>(next)] + 3, a),
		    1);
		ASSERT_NE(next, static_cast<std::int32_t>(i / 3));
	}
	const HullPolygons polygons = mergeCoplanar(m.view, hull);
	ASSERT_EQ(eulerNumber(polygons.vCorners, polygons.vBegins), 2);
	const double byPolygons = enclosed(polygons.vCorners, polygons.vBegins, m.pointOf());
	ASSERT_NEAR(byPolygons, hull.volume, m.tolerance());
}

} // namespace

class ShapesOf : public testing::TestWithParam<points::Family>
{
};
INSTANTIATE_TEST_SUITE_P(Families, ShapesOf, testing::ValuesIn(points::families()),
    [](const auto& family) { return family.param.name; });

TEST_P(ShapesOf, HullIsClosedAndHoldsAllTetrahedra)
{
	expectHull(Meshed(GetParam().make(600, 1)));
}

TEST_P(ShapesOf, AlphaShapesAreSolidClosedAndGrow)
{
	const Meshed m(GetParam().make(600, 1));
	const AlphaShapes shapes(m.view);
	const double all = shapes.radiusThatKeepsEveryPoint(), one = shapes.radiusOfOneComponent();
	ASSERT_LE(all, one);
	const std::vector<double> volumes = m.volumes();
	double volumeBefore = 0;
	for (const double radius : {0.5 * all, all, one, 4 * one, kInfinity}) {
		SCOPED_TRACE(radius);
		const AlphaShape shape = shapes.shape(radius);
		const std::vector<std::int64_t> begins = triangleBegins(shape.vTriangles);
		const auto [there, back] = directedEdges(shape.vTriangles, begins);
		ASSERT_EQ(there, back); // closed, though it may touch itself
		double sum = 0;
		for (const std::int32_t tet : shape.vTets) sum += volumes[static_cast<std::size_t>(tet)];
		ASSERT_NEAR(shape.volume, sum, m.tolerance());
		ASSERT_NEAR(enclosed(shape.vTriangles, begins, m.pointOf()), sum, m.tolerance());
		ASSERT_GE(shape.volume, volumeBefore);
		volumeBefore = shape.volume;
		std::set<std::int32_t> corners;
		for (const std::int32_t tet : shape.vTets) {
			const std::int32_t* p = m.view.pCorners + 4 * tet;
			corners.insert(p, p + 4);
		}
		const std::set<std::int32_t> inMesh(m.view.pCorners, m.view.pCorners + 4 * m.view.numTets);
		ASSERT_EQ(corners == inMesh, radius >= all || inMesh.empty());
		if (radius != one || inMesh.empty()) continue;
		ASSERT_EQ(shape.vVolumes.size(), 1U);
	}
	ASSERT_EQ(volumeBefore > 0, m.volume() > 0);
}

namespace {

double sum(const std::vector<double>& v)
{
	return std::accumulate(v.begin(), v.end(), 0.0);
}

/// Where points are flat up to rounding, corners are too far away; of denormal numbers all products are zero.
bool isTooFlat(const std::string& family)
{
	const std::set<std::string> tooFlat = {"NoisyPlane", "FarPlaneNudged", "ClustersOfUlps",
	    "Denormals", "DenormalsOnly", "DenormalsMixedIn"};
	return tooFlat.count(family) > 0;
}

/// Cells are closed surfaces, and all of them together fill the volume.
void expectFilled(Voronoi voronoi, double volume, double tolerance)
{
	const VoronoiCells cells = voronoi.cells();
	const std::vector<double> centres = voronoi.circumcentres();
	const auto pointOf = [&](std::int32_t i) {
		const auto k = 3 * static_cast<std::size_t>(i);
		const double* p = k < centres.size() ? &centres[k] : &cells.vMade[k - centres.size()];
		return Point3(p[0], p[1], p[2]);
	};
	ASSERT_NEAR(sum(cells.vVolumes), volume, tolerance);
	ASSERT_NEAR(sum(voronoi.volumes()), volume, tolerance);
	for (std::size_t i = 0; i + 1 < cells.vCellBegins.size(); ++i) {
		const auto face = cells.vFaceBegins.begin();
		const std::vector<std::int64_t> begins(
		    face + cells.vCellBegins[i], face + cells.vCellBegins[i + 1] + 1);
		if (begins.size() == 1) continue;
		ASSERT_EQ(eulerNumber(cells.vCorners, begins), 2) << i;
		ASSERT_NEAR(enclosed(cells.vCorners, begins, pointOf), cells.vVolumes[i], tolerance) << i;
	}
}

} // namespace

TEST_P(ShapesOf, VoronoiCellsFillTheBoxAndTheHull)
{
	const Meshed m(GetParam().make(200, 1));
	if (m.view.numTets == 0 || isTooFlat(GetParam().name)) return;
	const Box box = m.box();
	const double volume =
	    (box.high[0] - box.low[0]) * (box.high[1] - box.low[1]) * (box.high[2] - box.low[2]);
	{
		SCOPED_TRACE("box");
		expectFilled(Voronoi(m.view, box), volume, 1e-9 * volume);
	}
	SCOPED_TRACE("hull");
	expectFilled(Voronoi::clippedToHull(m.view), m.volume(), m.tolerance());
}

TEST_P(ShapesOf, VoronoiCellsThatAreClippedAreFiniteAndClosed)
{
	for (const int size : {4, 5, 200}) {
		const Meshed m(GetParam().make(size, 1));
		if (m.view.numTets == 0) continue;
		for (const bool bHull : {false, true}) {
			const VoronoiCells cells =
			    (bHull ? Voronoi::clippedToHull(m.view) : Voronoi(m.view, m.box())).cells();
			for (const std::int32_t corner : cells.vCorners) ASSERT_GE(corner, 0) << size;
			ASSERT_EQ(cells.vFaceBegins.size(), cells.vNeighbours.size() + 1);
			for (std::size_t i = 0; i + 1 < cells.vCellBegins.size(); ++i) {
				const auto face = cells.vFaceBegins.begin();
				const auto [there, back] = directedEdges(cells.vCorners,
				    {face + cells.vCellBegins[i], face + cells.vCellBegins[i + 1] + 1});
				const bool bMayBeOpen = isTooFlat(GetParam().name);
				ASSERT_TRUE(bMayBeOpen || there == back)
				    << size << ": " << i; // it may touch itself
			}
		}
	}
}

TEST(Shapes, OfACubicLatticeAreKnownFarFromTheOriginToo)
{
	constexpr int n = 5;
	for (const auto& [step, origin] :
	    {std::pair(0.5, 0.0), std::pair(0.5, 2e6), std::pair(0.1, 2e6)}) {
		SCOPED_TRACE(step + origin);
		const Meshed m(cube(n, step, origin));
		const double side = (n - 1) * step, cellVolume = step * step * step;
		const double error = 1e-14 + 4 * origin * 0x1p-52; // of the coordinates

		const ConvexHull hull = convexHull(m.view);
		EXPECT_NEAR(hull.volume, side * side * side, 10 * error);
		EXPECT_NEAR(hull.area, 6 * side * side, 20 * error);
		if (step == 0.5) { // exact
			const HullPolygons polygons = mergeCoplanar(m.view, hull);
			EXPECT_EQ(polygons.vBegins, (std::vector<std::int64_t>{0, 4, 8, 12, 16, 20, 24}));
		}

		const AlphaShapes shapes(m.view);
		const AlphaShape shape = shapes.shape(1.0001 * shapes.radiusThatKeepsEveryPoint());
		EXPECT_NEAR(shape.radius, 1.0001 * step * std::sqrt(0.75), error);
		EXPECT_NEAR(shape.volume, hull.volume, 10 * error);
		EXPECT_EQ(shape.vVolumes.size(), 1U);

		const std::vector<double> whole = Voronoi(m.view).volumes();
		const std::vector<double> clipped = Voronoi::clippedToHull(m.view).volumes();
		for (int i = 0; i < n * n * n; ++i) {
			int numSides = 0;
			for (const int k : {i % n, i / n % n, i / n / n}) numSides += k == 0 || k == n - 1;
			const auto vertex = static_cast<std::size_t>(i);
			ASSERT_NEAR(std::min(whole[vertex], 1e9), numSides == 0 ? cellVolume : 1e9, error);
			EXPECT_NEAR(clipped[vertex], cellVolume / (1 << numSides), error);
		}
	}
}

TEST(Shapes, AlphaShapesFallIntoComponentsAndSingularParts)
{
	Cloud cloud = cube(2, 1, 0);
	for (const Point3& p : cube(2, 1, 10)) cloud.push_back(p);
	const Meshed two(cloud);
	const AlphaShapes shapes(two.view);
	const AlphaShape apart = shapes.shape(shapes.radiusThatKeepsEveryPoint());
	ASSERT_EQ(apart.vVolumes.size(), 2U);
	for (const double volume : apart.vVolumes) EXPECT_DOUBLE_EQ(volume, 1);
	EXPECT_DOUBLE_EQ(apart.area, 12);
	const double joined = shapes.radiusOfOneComponent();
	EXPECT_EQ(shapes.shape(joined).vVolumes.size(), 1U);
	EXPECT_GT(shapes.shape(std::nextafter(joined, 0)).vVolumes.size(), 1U);

	// A cube whose tetrahedra are larger, a triangle, a pair and a single point.
	cloud = cube(2, 1, 0);
	const std::int32_t first = 8;
	for (const Point3& p : {Point3(5, 0, 0), Point3(6, 0, 0), Point3(5.5, std::sqrt(0.75), 0),
	         Point3(0, 5, 0.3), Point3(0, 5, 1.3), Point3(0, 0, 9)}) {
		cloud.push_back(p);
	}
	const Meshed m(cloud);
	SingularParts parts = AlphaShapes(m.view).singularParts(0.6);
	std::sort(parts.vFacets.begin(), parts.vFacets.end());
	EXPECT_EQ(parts.vFacets, (std::vector<std::int32_t>{first, first + 1, first + 2}));
	EXPECT_EQ(parts.vEdges.size() / 2, 12U + 1U);
	EXPECT_EQ(std::count(parts.vEdges.begin(), parts.vEdges.end(), first + 3), 1);
	EXPECT_TRUE(AlphaShapes(m.view).singularParts(0.49).vEdges.empty());

	// The last point is inside the smallest spheres through the first three, and through the first two.
	const Meshed flat({Point3(0, 0, 0), Point3(2, 0, 0), Point3(1, 1.8, 0), Point3(1, 0.6, 0.3)});
	EXPECT_EQ(AlphaShapes(flat.view).singularParts(1.5).vFacets.size() / 3, 3U);
	EXPECT_EQ(AlphaShapes(flat.view).singularParts(1.01).vEdges.size() / 2, 3U);
}

TEST(Shapes, VoronoiCellsAreTheDualOfTheMesh)
{
	const Meshed m(points::make("Uniform", 300));
	Voronoi voronoi(m.view);
	const VoronoiCells cells = voronoi.cells();
	const std::vector<double> centres = voronoi.circumcentres();
	std::set<std::pair<std::int32_t, std::int32_t>> pairs; // of cells that share a face
	std::size_t numAtInfinity = 0;
	for (std::size_t v = 0; v < m.view.numVertices; ++v) {
		for (auto f = static_cast<std::size_t>(cells.vCellBegins[v]);
		     f < static_cast<std::size_t>(cells.vCellBegins[v + 1]); ++f) {
			const std::int32_t other = cells.vNeighbours[f];
			EXPECT_TRUE(pairs.emplace(static_cast<std::int32_t>(v), other).second);
			for (auto i = cells.vFaceBegins[f]; i < cells.vFaceBegins[f + 1]; ++i) {
				const std::int32_t tet = cells.vCorners[static_cast<std::size_t>(i)];
				numAtInfinity += tet < 0;
				if (tet < 0) continue;
				const std::int32_t* p = m.view.pCorners + 4 * tet;
				EXPECT_EQ(
				    std::count(p, p + 4, other) + std::count(p, p + 4, static_cast<int>(v)), 2);
			}
		}
	}
	for (const auto& [a, b] : pairs) EXPECT_EQ(pairs.count({b, a}), 1U);
	EXPECT_EQ(numAtInfinity, convexHull(m.view).vTriangles.size()); // two of each hull edge
	for (std::size_t t = 0; t < m.view.numTets; ++t) {
		double least = kInfinity, most = 0;
		for (std::size_t k = 0; k < 4; ++k) {
			const double* p = m.view.pCoordinates + 3 * m.view.pCorners[4 * t + k];
			const double distance = std::hypot(
			    p[0] - centres[3 * t], p[1] - centres[3 * t + 1], p[2] - centres[3 * t + 2]);
			least = std::min(least, distance);
			most = std::max(most, distance);
		}
		EXPECT_NEAR(most - least, 0, 1e-9 * most);
	}
	const VoronoiCells some = voronoi.cells(100, 50);
	EXPECT_TRUE(
	    std::equal(some.vVolumes.begin(), some.vVolumes.end(), cells.vVolumes.begin() + 100));
	EXPECT_EQ(some.vVolumes.size(), 50U);
	EXPECT_TRUE(voronoi.cells(m.view.numVertices + 7).vVolumes.empty());
}

TEST(Shapes, QualitiesOfKnownTetrahedra)
{
	const double h = std::sqrt(0.5), obtuse = std::acos(1 / std::sqrt(3)),
	             regular = std::acos(1.0 / 3);
	const struct
	{
		std::vector<double> coordinates; // of corners 0 to 3
		double volume, ratio, shortest, longest;
		std::vector<double> angles;
	} cases[] = {
	    {{0, 0, 0, 1, 1, 0, 0, 1, 1, 1, 0, 1}, 1.0 / 3, 1, 2 * h, 2 * h,
	        std::vector<double>(6, regular)},
	    {{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1}, 1.0 / 6, std::sqrt(3) - 1, 1, 2 * h,
	        {kPi / 2, kPi / 2, kPi / 2, obtuse, obtuse, obtuse}},
	};
	for (const auto& c : cases) {
		for (const double scale : {1.0, 1e-90, 1e59}) {
			SCOPED_TRACE(scale);
			std::vector<double> xyz = c.coordinates;
			for (double& x : xyz) x *= scale;
			const std::int32_t corners[] = {0, 1, 2, 3}, hull[] = {-1, -1, -1, -1};
			double volume = 0, ratio = 0, shortest = 0, longest = 0, angles[6], centre[3],
			       radius = 0;
			measureQuality({xyz.data(), 4, corners, hull, 1},
			    {&volume, angles, &ratio, &shortest, &longest, centre, &radius});
			EXPECT_NEAR(volume / scale / scale / scale, c.volume, 1e-14);
			EXPECT_NEAR(ratio, c.ratio, 1e-14);
			EXPECT_NEAR(shortest / scale, c.shortest, 1e-14);
			EXPECT_NEAR(longest / scale, c.longest, 1e-14);
			for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(angles[i], c.angles[i], 1e-14);
			for (const double x : centre) EXPECT_NEAR(x / scale, 0.5, 1e-14);
			EXPECT_NEAR(radius / scale, std::sqrt(0.75), 1e-14);
		}
	}
	const double values[] = {0, 0.24, 0.25, 1, 1.5, -1, std::nan("")};
	EXPECT_EQ(histogram(values, 7, 0, 1, 4), (std::vector<std::size_t>{2, 1, 0, 1}));
}

TEST(Shapes, BadInputIsRefused)
{
	const Meshed m(points::make("Uniform", 20));
	std::vector<std::int32_t> corners(m.view.pCorners, m.view.pCorners + 4 * m.view.numTets);
	MeshView noCorners = m.view, badCorner = m.view, badNeighbour = m.view;
	noCorners.pCorners = nullptr;
	corners[5] = 20;
	badCorner.pCorners = corners.data();
	badNeighbour.pNeighbours = corners.data();
	corners[6] = static_cast<std::int32_t>(m.view.numTets);
	for (const MeshView& bad : {noCorners, badCorner, badNeighbour}) {
		EXPECT_THROW(convexHull(bad), std::invalid_argument);
		EXPECT_THROW(AlphaShapes{bad}, std::invalid_argument);
		EXPECT_THROW(Voronoi{bad}, std::invalid_argument);
		EXPECT_THROW(measureQuality(bad, {}), std::invalid_argument);
	}
	for (const double radius : {-1.0, std::nan("")}) {
		EXPECT_THROW(AlphaShapes(m.view).shape(radius), std::invalid_argument);
		EXPECT_THROW(AlphaShapes(m.view).singularParts(radius), std::invalid_argument);
	}
	EXPECT_THROW(Voronoi(m.view, {{0, 0, 0}, {1, 0, 1}}), std::invalid_argument);
	EXPECT_THROW(Voronoi(m.view, {{0, 0, 0}, {1, kInfinity, 1}}), std::invalid_argument);
	EXPECT_THROW(solidOf(m.view, {true}), std::invalid_argument);
	EXPECT_THROW(histogram(nullptr, 0, 1, 1, 3), std::invalid_argument);
	EXPECT_THROW(mergeCoplanar(m.view, {{0, 1, 2}, {}, {0}, 0, 0}), std::invalid_argument);
	const MeshView empty;
	EXPECT_EQ(convexHull(empty).volume + AlphaShapes(empty).radiusOfOneComponent(), 0);
	EXPECT_TRUE(Voronoi(empty).volumes().empty());
}
