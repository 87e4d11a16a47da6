// SPDX-License-Identifier: MIT
// Points, boxes, small shapes, tetrahedra and the handles into them, by their laws.
#include "Tulo_3D.h"
#include "geometry/printing.h"
#include "support.h"

#include <algorithm>
#include <cfloat>
#include <limits>
#include <set>

using namespace TULO3D;
using Looked = support::Recorded;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

template <class... T>
std::string textOf(const T&... values)
{
	std::ostringstream stream;
	(stream << ... << values);
	return stream.str();
}

} // namespace

TEST(Records, EachCopyOfAPointTakesOverWhatItPromises)
{
	Point3 vertex(1, 2, 3), taken(0, 0, 0), assigned;
	Tet3* pTet = reinterpret_cast<Tet3*>(&taken); // never read
	vertex.setOneTet(pTet);
	taken.setOneTet(pTet);
	vertex.customIndex = 7;
	taken.setCustomIndex(3);
	taken.init(vertex);
	assigned = vertex;
	const auto expect = [](const Point3& p, double x, const Tet3* pOneTet, int index) {
		EXPECT_TRUE(p.x() == x && p.getOneTet() == pOneTet && p.getCustomIndex() == index)
		    << x << " " << index;
	};
	expect(Point3(vertex), 1, nullptr, 7);
	expect(assigned, 1, pTet, 7);
	expect(taken, 1, nullptr, 3);
	expect(vertex + Vector3(1, 1, 1), 2, nullptr, -1);
	expect(Point3(), -DBL_MAX, nullptr, -1);
	expect(Ball3(vertex, 4).getCenter(), 1, nullptr, 7);
	expect(Segment3(taken, vertex).getTrg(), 1, nullptr, 7);
	const Point3 ordered[] = {{0, 5, 5}, {1, 0, 0}, {1, 2, 3}, {1, 2, 4}, {1, 3, 0}};
	for (const Point3& p : ordered) {
		for (const Point3& q : ordered) EXPECT_TRUE((p < q) == (&p < &q) && (p == q) == (&p == &q));
	}
	EXPECT_TRUE(Point3(0.0, 0, 0) == Point3(-0.0, 0, 0));
	// What is not a number decides nothing: the next coordinate does.
	for (const Point3& p : {Point3(kNaN, 2, 3), Point3(1, kNaN, 3), Point3(1, 2, kNaN)}) {
		EXPECT_EQ(p < Point3(1, 2, 4), p.z() == 3) << p;
		EXPECT_FALSE(Point3(1, 2, 3) < p || p < p || p == p) << p;
		EXPECT_EQ(Point3(1, 1, 9) < p, p.y() == 2) << p;
	}
	EXPECT_EQ(Ball3(0, 0, 0, 4).getRadius(), 2);
	EXPECT_EQ(getNormalVector(Point3(0, 0, 0), Point3(5, 0, 0), Point3(0, 3, 0)).z(), 1);
}

TEST(Records, BoxGrowsAndSaysWhetherItDid)
{
	Bbox3 box, other({Point3(9, 0, 0)});
	const points::Cloud none, more = {Point3(2, 0, 0), Point3(1, 1, 1)};
	EXPECT_TRUE(!box.add(none) && !box.isValid());
	EXPECT_TRUE(box.add(Point3(0, 4, 6)) && !box.add(Point3(0, 4, 6)) && box.isValid());
	EXPECT_TRUE(box.add(more) && !box.add(more));
	box.enlargeBounds(0.5);
	const std::pair<Point3, Point3> found[] = {{box.getMinPoint(), {-0.5, -1, -1.5}},
	    {box.getMaxPoint(), {2.5, 5, 7.5}},
	    {{box.getRangeX(), box.getRangeY(), box.getRangeZ()}, {3, 6, 9}},
	    {{box.getMaxRange(), box.getMinCoord(), box.getMaxCoord()}, {9, -1.5, 7.5}},
	    {(box + other).getMaxPoint(), {9, 5, 7.5}},
	    {box.getMaxPoint(), {9, 5, 7.5}}, // Deliberate: it grows too
	    {other.getMinPoint(), {9, 0, 0}}};
	for (const auto& [p, expected] : found) EXPECT_TRUE(p == expected) << p;
	// A bound that is not a number stays, and is no change.
	Bbox3 unclear;
	EXPECT_TRUE(unclear.add(points::Cloud{Point3(0, kNaN, 0), Point3(2, 5, 0)}));
	EXPECT_TRUE(!unclear.add(Point3(1, 9, kNaN)) && !unclear.add(points::Cloud{Point3(1, 7, 0)}) &&
	    unclear.getMaxX() == 2);
	EXPECT_TRUE(unclear.add(points::Cloud{Point3(kNaN, 0, -1)}) && unclear.getMinZ() == -1);
	EXPECT_TRUE(Bbox3().add(Point3(kNaN, 0, 0)) && !Bbox3({Point3(kNaN, 0, 0)}).isValid());
}

TEST(Records, TriangleKnowsItsCornersAndEdges)
{
	Point3 p[4] = {{0, 0, 0}, {3, 0, 0}, {0, 3, 6}, {9, 9, 9}};
	Triangle3 triangle(&p[0], &p[1], &p[2]);
	triangle.setNeig(1, &triangle);
	EXPECT_TRUE(triangle.getBarycenter() == Point3(1, 1, 2));
	for (int i = 0; i < 3; ++i) {
		const Point3 *pA = triangle.getCorner((i + 1) % 3), *pB = triangle.getCorner((i + 2) % 3);
		EXPECT_TRUE((triangle.getNeig(i) != nullptr) == (i == 1) &&
		    triangle.getIntraTriangleIndex(triangle.getCorner(i)) == i &&
		    triangle.getIntraTriangleIndex(pA, pB) == i &&
		    triangle.getIntraTriangleIndex(pB, pA) == i);
	}
	testing::internal::CaptureStderr();
	const std::string text = support::printedBy([&] {
		EXPECT_EQ(triangle.getIntraTriangleIndex(&p[3]), -999);
		EXPECT_EQ(triangle.getIntraTriangleIndex(&p[0], &p[3]), -999);
	});
	const std::string printed =
	    textOf("Have searched for ", &p[0], " and ", &p[3], " in Triangle: \nith=0, vertex (",
	        &p[0], "): ", p[0], "  oppTet=0 (NULL)\nith=1, vertex (", &p[1], "): ", p[1],
	        "  oppTet=", &triangle, "\nith=2, vertex (", &p[2], "): ", p[2], "  oppTet=0 (NULL)\n");
	EXPECT_EQ(text, printed);
	EXPECT_EQ(testing::internal::GetCapturedStderr(),
	    "Triangle3::getIntraTriangleIndex(): invalid (p)\nTriangle3::getIntraTriangleIndex(): "
	    "invalid (p1,p2)\n");
}

TEST(Records, IndexTablesDescribeOneTetrahedron)
{
	Looked mesh;
	mesh.insert({Point3(0, 0, 0), Point3(1, 0, 0), Point3(0, 1, 0), Point3(0, 0, 1)});
	Tet3* pTet = mesh.tets().at(0);
	EXPECT_TRUE(pTet->getCircumcenter() == Point3(0.5, 0.5, 0.5));
	EXPECT_TRUE(pTet->hasVertex(Point3(0, 1, 0)) && !pTet->hasVertex(Point3(0, 1, 1)));
	for (int i = 0; i < 4; ++i) {
		int row[3];
		pTet->getFacetIndices(i, row[0], row[1], row[2]);
		// The normal of a facet's row points away from the opposite corner; its first corner is the lowest.
		const Point3& a = *pTet->getCorner(row[0]);
		const Vector3 n = getNormalVector(a, *pTet->getCorner(row[1]), *pTet->getCorner(row[2])),
		              v = *pTet->getCorner(i) - a;
		EXPECT_LT(n.x() * v.x() + n.y() * v.y() + n.z() * v.z(), 0);
		EXPECT_EQ(row[0], i == 0 ? 1 : 0);
		for (int j = 0; j < 3; ++j) {
			// Edges of the facet (a, b, c) are (a, c), (c, b), (b, a); from inside the row is reversed.
			EXPECT_EQ(Tet3::getEdgeIndices(i, j), std::make_pair(row[(3 - j) % 3], row[2 - j]));
			EXPECT_EQ(Facet3(pTet, i).getIntraTetIndex(j), row[(3 - j) % 3]);
			const Edge3 edge = pTet->getEdge(i, row[j]), swapped = pTet->getEdge(row[j], i);
			EXPECT_TRUE(edge.getSourceIndex() == row[(j + 1) % 3] &&
			    edge.getTargetIndex() == row[(j + 2) % 3] &&
			    swapped.getSourceVtx() == edge.getTargetVtx() &&
			    swapped.getTargetVtx() == edge.getSourceVtx());
			EXPECT_TRUE(edge == swapped && !(edge != swapped) && !(edge < swapped) &&
			    !(swapped < edge) && Facet3(pTet, i).getEdge((3 - j) % 3) == edge);
		}
		EXPECT_TRUE(pTet->getIntraTetIndex(pTet->getCorner(i)) == i &&
		    pTet->debug_getOppTetIndex(i) == -1 && pTet->getOppVtxInOppTet(i, true) == nullptr);
	}
	const std::string text = textOf(*pTet);
	for (const std::string& part :
	    {std::string("): hasBeenVisited=0, ownOri=ORI3_ORIENTATION3_POSITIVE\n"),
	        textOf("ith=2, vertex (", pTet->getCorner(2), "): ", *pTet->getCorner(2),
	            "  oppTet=0 (NULL)\n")})
		EXPECT_NE(text.find(part), std::string::npos) << text;
}

TEST(Records, AnOrientationIsPrintedExactlyHoweverSmallTheCorners)
{
	for (const double size : {1e-45, 1e-110, 1e-300, 4e-324}) {
		Point3 a(0, 0, 0), b(size, 0, 0), c(0, size, 0), d(0, 0, size);
		Tet3 tet;
		tet.setProperties(&a, &b, &c, &d);
		EXPECT_NE(textOf(tet).find("ownOri=ORI3_ORIENTATION3_POSITIVE\n"), std::string::npos)
		    << size;
	}
}

TEST(Records, IndexOfACornerIsTheFirstThatFits)
{
	const support::Capture quiet;
	Point3 p, other;
	Tet3 tet;
	tet.setProperties(&other, &other, &other, &other);
	for (int i = 3; i >= 0; --i) {
		tet.setCorner(i, &p);
		EXPECT_EQ(tet.getIntraTetIndex(&p), i) << "of corners i to 3";
	}
	Point3 q[4];
	Tet3 twice;
	tet.setProperties(&q[0], &q[1], &q[2], &q[3]);
	twice.setProperties(&q[0], &q[1], &q[2], &q[0]);
	EXPECT_EQ(tet.getIntraTetIndexInOppTetForReg(&twice, 0), 3) << "corner 3 is on facet 0";
}

TEST(Records, EdgesAreEqualByTheirEndsOfTheMomentAndOrderedByThoseTheyWereMadeWith)
{
	const support::Capture quiet;
	Point3 p[5];
	Tet3 tet, moved;
	tet.setProperties(&p[0], &p[1], &p[2], &p[3]);
	moved.setProperties(&p[0], &p[1], &p[2], &p[3]);
	const Edge3 edge = tet.getEdge(0, 1), later = moved.getEdge(1, 0);
	EXPECT_TRUE(edge == later && !(edge != later));
	moved.setCorner(3, &p[4]);
	EXPECT_TRUE(edge != later && moved.getEdge(0, 1) == later);
	EXPECT_TRUE(!(edge < later) && !(later < edge) && edge < moved.getEdge(0, 1));
	tet.setCorner(3, &p[4]);
	EXPECT_TRUE(edge == later && TetAroundEdgeIterator(edge) == TetAroundEdgeIterator(edge));
}

TEST(Records, NeighboursFacetsEdgesAndStarsAgreeFromAllSides)
{
	Looked mesh;
	mesh.insert(points::make("Uniform", 60));
	const auto tets = mesh.tets();
	std::set<Edge3> edges;
	std::set<std::pair<const Point3*, const Point3*>> ends;
	for (Tet3* pT : tets) {
		for (int i = 0; i < 4; ++i) {
			Tet3* pU = pT->getOppTet(i);
			EXPECT_TRUE(pT->getOppTet(pT->getCorner(i)) == pU && pT->getFacet(i) == Facet3(pT, i) &&
			    pT->getFacet(i) != Facet3(pT, (i + 1) % 4));
			if (pU == nullptr) continue;
			const int j = pT->getIntraTetIndexInOppTet(i);
			EXPECT_TRUE(pU->getOppTet(j) == pT &&
			    pT->getOppVtxInOppTet(i, false) == pU->getCorner(j) &&
			    pU->getIntraTetIndexInOppTetForReg(pT, i) == j &&
			    Tet3::haveCommonFacet(pT, i, pU, j) && Facet3(pT, i) == Facet3(pU, j));
		}
		for (int i = 0; i < 12; ++i) {
			const Edge3 edge = pT->getEdge(i / 3, (i / 3 + 1 + i % 3) % 4);
			edges.insert(edge);
			ends.insert(std::minmax<const Point3*>(edge.getSourceVtx(), edge.getTargetVtx()));
			std::set<Tet3*> around{pT};
			const TetAroundEdgeIterator start(edge);
			TetAroundEdgeIterator it(start),
			    back(pT->getEdge(edge.getOpp2Index(), edge.getOpp3Index()));
			while (!it.nextIsNull() && it.previewNextTet() != pT) {
				++it;
				EXPECT_TRUE(it != start && it.getEdge() == edge);
				ASSERT_TRUE(around.insert(*it).second);
			}
			// Around a hull edge the rest lies the other way round.
			while (it.nextIsNull() && !back.nextIsNull())
				ASSERT_TRUE(around.insert(*++back).second);
			EXPECT_TRUE(it.nextIsNull() || ++it == start);
			EXPECT_EQ(static_cast<std::ptrdiff_t>(around.size()),
			    std::count_if(tets.begin(), tets.end(), [&](const Tet3* p) {
				    return p->hasVertex(edge.getSourceVtx()) && p->hasVertex(edge.getTargetVtx());
			    }));
		}
	}
	EXPECT_EQ(edges.size(), ends.size()) << "the order tells edges apart by both ends";
	auto vertices = mesh.vertices();
	for (Point3* pVtx : mesh.vertices()) {
		std::vector<Tet3*> star{nullptr}, expected;
		mesh.mesh.getTetsAroundVertex(pVtx, star);
		std::copy_if(tets.begin(), tets.end(), std::back_inserter(expected),
		    [&](Tet3* p) { return p->hasVertex(pVtx); });
		EXPECT_EQ(star, expected) << "in address order";
	}
	mesh.mesh.getVertices(vertices);
	EXPECT_EQ(vertices.size(), 2 * mesh.vertices().size()) << "the listing is appended";
}

TEST(Records, IteratorsParkATetrahedronAndTheLibraryNamesItsVersion)
{
	Looked mesh;
	mesh.insert(points::make("Uniform", 5));
	Tet3* pTet = mesh.tets()[0];
	TetAroundEdgeIterator it(pTet->getEdge(0, 1));
	it.setPayload(pTet);
	it.setPayloadICI(2);
	TetAroundEdgeIterator copy(it);
	copy.setPayloadICI(3); // Deliberate: a copy's index slot is empty.
	EXPECT_TRUE(copy.getPayload() == pTet && it.getPayloadICI() == 2 && copy.getPayloadICI() == 3);
	const std::string rule(35, '-');
	EXPECT_EQ(support::printedBy([&] { it.debug(); }),
	    textOf(rule, "\n# This is a TetAroundEdgeIterator:\n", it.getEdge(), rule, "\n\n"));
	EXPECT_EQ(getTulo3DVersion(), "Tulo3D, DEBUG, v0.99.0");
	EXPECT_TRUE(!isRelease() && getMajorVersionNumber() == 0 && getMinorVersionNumber() == 99 &&
	    getRevisionNumber() == 0);
}
