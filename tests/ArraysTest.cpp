// SPDX-License-Identifier: MIT
// The mesh as arrays says what its records say.
#include "support.h"

#include <cstdint>
#include <limits>

using namespace TULO3D;
using points::Cloud;
using support::Recorded;

namespace {

struct Arrays
{
	explicit Arrays(const Tulo_3D& mesh)
	    : coordinates(3 * mesh.getNumVertices()),
	      tetOfVertex(mesh.getNumVertices()),
	      corners(4 * mesh.getNumTetrahedra()),
	      neighbours(corners.size())
	{
		mesh.copyTo({coordinates.data(), tetOfVertex.data(), corners.data(), neighbours.data()});
	}
	std::vector<double> coordinates;
	std::vector<std::int32_t> tetOfVertex, corners, neighbours;
};

std::size_t numberOf(const Point3* pVtx)
{
	return static_cast<std::size_t>(pVtx->getNumber());
}

/// Reads the tetrahedra in pieces. None of them writes more than it should.
void expectSameInPieces(const Tulo_3D& mesh, const Arrays& whole)
{
	constexpr std::size_t kPiece = 97;
	constexpr std::int32_t kUnset = -7;
	MeshArrays piece;
	piece.numTets = kPiece;
	for (std::size_t first = 0; first <= whole.corners.size(); first += 4 * kPiece) {
		std::vector<std::int32_t> corners(4 * kPiece + 1, kUnset), neighbours(corners);
		piece.firstTet = first / 4;
		piece.pCorners = corners.data();
		piece.pNeighbours = neighbours.data();
		mesh.copyTo(piece);
		const std::size_t num = std::min(4 * kPiece, whole.corners.size() - first);
		ASSERT_EQ(corners[num], kUnset);
		ASSERT_EQ(neighbours[num], kUnset);
		ASSERT_TRUE(std::equal(&corners[0], &corners[num], whole.corners.data() + first));
		ASSERT_TRUE(std::equal(&neighbours[0], &neighbours[num], whole.neighbours.data() + first));
	}
}

/// Holds the arrays against the records, one by one.
void expectSame(const Recorded& r)
{
	const Arrays arrays(r.mesh);
	std::vector<Point3*> vertices = r.vertices();
	std::vector<Tet3*> tets = r.tets();
	std::map<const Tet3*, std::int32_t> place{{nullptr, -1}};
	for (const Tet3* pTet : tets) place.emplace(pTet, static_cast<std::int32_t>(place.size()) - 1);
	ASSERT_EQ(arrays.tetOfVertex.size(), vertices.size());
	ASSERT_EQ(arrays.corners.size(), 4 * tets.size());
	for (const Point3* pVtx : vertices) {
		const double* p = &arrays.coordinates.at(3 * numberOf(pVtx));
		ASSERT_TRUE(*pVtx == Point3(p[0], p[1], p[2]));
		ASSERT_EQ(arrays.tetOfVertex.at(numberOf(pVtx)), place.at(pVtx->getOneTet()));
	}
	for (std::size_t i = 0; i < arrays.corners.size(); ++i) {
		const int ith = static_cast<int>(i % 4);
		ASSERT_EQ(arrays.corners[i], tets[i / 4]->getCorner(ith)->getNumber());
		ASSERT_EQ(arrays.neighbours[i], place.at(tets[i / 4]->getOppTet(ith)));
	}
	expectSameInPieces(r.mesh, arrays);
	// Vertices are numbered in the order in which their points first came.
	std::size_t numSeen = 0;
	for (const Point3* pVtx : r.handles) {
		ASSERT_LE(numberOf(pVtx), numSeen);
		numSeen += numberOf(pVtx) == numSeen;
	}
	ASSERT_EQ(numSeen, vertices.size());
}

} // namespace

TEST(Arrays, SayWhatTheRecordsSay)
{
	points::Random random(5);
	for (const char* family : {"Uniform", "Lattice", "FlatGrid", "UnitSphere"}) {
		SCOPED_TRACE(family);
		Recorded r;
		expectSame(r);
		for (const int size : {3, 2000, 300}) {
			Cloud cloud = points::make(family, size, static_cast<unsigned>(size));
			for (int n = 0; n < size / 3; ++n) cloud.push_back(random.of(cloud)); // repeated ones
			points::shuffle(cloud, random);
			r.insert(cloud);
			expectSame(r);
			for (int n = 0; n < 20; ++n) r.insert(n % 3 ? random.point(-1, 2) : random.of(cloud));
			expectSame(r);
		}
		r.insert(Point3(0.25, 0.25, 1e6)); // removes much of the mesh: many records are dead
		expectSame(r);
	}
}

TEST(Arrays, PointsComeInAsNumbers)
{
	Cloud cloud = points::make("Lattice", 343);
	cloud.insert(cloud.end(), cloud.begin(), cloud.begin() + 50);
	std::vector<double> coordinates;
	for (const Point3& p : cloud) coordinates.insert(coordinates.end(), {p.x(), p.y(), p.z()});
	Recorded r;
	r.insert(Cloud{Point3(9, 9, 9)}); // takes the first margin of the process
	Recorded byHandles, plain, fromConst;
	std::vector<std::int32_t> numbers(cloud.size(), -2);
	byHandles.insert(cloud);
	EXPECT_EQ(support::printedBy(
	              [&] { plain.mesh.insert(coordinates.data(), cloud.size(), numbers.data()); }),
	    "numPoints=393\n");
	EXPECT_EQ(support::printedBy([&] { fromConst.mesh.insert(const_cast<const Cloud&>(cloud)); }),
	    "numPoints=393\n");
	for (std::size_t i = 0; i < cloud.size(); ++i) {
		ASSERT_EQ(numbers[i], byHandles.handles[i]->getNumber());
	}
	for (const Recorded* pMesh : {&plain, &fromConst}) {
		EXPECT_EQ(Arrays(pMesh->mesh).coordinates, Arrays(byHandles.mesh).coordinates);
		EXPECT_EQ(pMesh->canonical(), byHandles.canonical());
	}
	const double bad[] = {1, 2, std::numeric_limits<double>::quiet_NaN()};
	EXPECT_EQ(support::conditionFailedBy([&] { plain.mesh.insert(bad, 1); }),
	    "coordinates are finite and at most 1e60 in magnitude");
	EXPECT_EQ(support::conditionFailedBy([&] { plain.mesh.insert(bad, std::size_t{1} << 40U); }),
	    "an engine takes at most 2147483647 points");
	EXPECT_EQ(support::printedBy([&] { plain.mesh.insert(nullptr, 0); }), "numPoints=0\n");
	EXPECT_EQ(plain.mesh.getNumVertices(), 343U);
	Point3 copy(*byHandles.handles[3]);
	copy = *byHandles.handles[3];
	EXPECT_EQ(copy.getNumber(), -1) << "only the vertex has it";
}
