// SPDX-License-Identifier: MIT
// Tetrahedra are created, recycled and linked as promised, and what cannot be linked is reported.
#include "Dt3Inline.h"
#include "geometry/printing.h"
#include "support.h"

#include <algorithm>
#include <array>

using namespace TULO3D;
using support::conditionFailedBy;
using support::printedBy;

namespace {

struct Link : testing::Test
{
	Tet3* make(std::size_t i, std::size_t j, std::size_t k, std::size_t l)
	{
		return engine.createTet(&p[i], &p[j], &p[k], &p[l]);
	}
	Tet3* make() { return make(0, 1, 2, 3); }

	Dt3 engine{nullptr};
	std::array<Point3, 6> p{Point3(0, 0, 0), Point3(1, 0, 0), Point3(0, 1, 0), Point3(0, 0, 1),
	    Point3(1, 1, 1), Point3(3, 4, 0)};
};

bool startsWith(const std::string& text, const std::string& start)
{
	return text.compare(0, start.size(), start) == 0;
}

} // namespace

TEST_F(Link, CreateTetRefusesNegativeAndReportsCoplanarCorners)
{
	const Tet3* pTet = make();
	EXPECT_EQ(p[2].getOneTet(), pTet);
	const int label = Tet3::runningLabel, used = engine.tetPool.lastIndex;
	std::ostringstream corners, flat;
	p[3] = Point3(0, 0, 1.0 / 3);
	corners.precision(15); // Deliberate: the stream keeps it.
	flat.precision(15);
	for (const std::size_t i : {1U, 0U, 2U, 3U}) corners << p[i] << "\n";
	for (const std::size_t i : {1U, 0U, 2U, 5U}) flat << p[i] << "\n";
	EXPECT_TRUE(startsWith(printedBy([&] { make(1, 0, 2, 3); }),
	    "Dt3::createTet(), ERROR: ORIENTATION3_NEGATIVE ORIENTATION OF: \n" + corners.str()));
	EXPECT_EQ(conditionFailedBy([&] { make(1, 0, 2, 3); }), "false");
	EXPECT_TRUE(Tet3::runningLabel == label && engine.tetPool.lastIndex == used)
	    << "nothing was made";
	EXPECT_EQ(printedBy([&] { make(1, 0, 2, 5); }),
	    "Dt3::createTet(), ERROR: ORIENTATION3_COPLANAR ORIENTATION OF: \n" + flat.str() +
	        "..probably a legal situaion but observe!\n");
	EXPECT_EQ(Tet3::runningLabel, label + 1) << "made all the same";
	EXPECT_EQ(std::cout.precision(6), 15);
}

TEST_F(Link, ReplacingACornerKeepsTheFacetAndTheSign)
{
	Tet3* pTet = make();
	p[4] = Point3(0.1, 0.2, 0.3);
	for (int i = 0; i < 4; ++i) {
		Tet3* pNew = engine.createTetReplacingCorner(pTet, i, &p[4]); // throws when negative
		EXPECT_TRUE(pNew->getCorner(0) == &p[4] && Tet3::haveCommonFacet(pNew, 0, pTet, i));
	}
}

TEST_F(Link, RegisterTetsLinksBothWaysOrSaysWhyNot)
{
	Tet3 *pT = make(), *pU = make(4, 1, 3, 2);
	Dt3::registerTets(pT, 0, pU, 3);
	// clang-format off
	const struct { Tet3* pTo; int ith, jth; const char* text; } cases[] = {{pU, 4, 0, "range03(ith)"}, {pU, -1, 0, "range03(ith)"},
		{pU, 0, 4, "range03(jth)"}, {nullptr, 0, 0, "toTet!=0"}, {pT, 0, 1, "fromTet!=toTet"}};
	// clang-format on
	for (const auto& c : cases)
		EXPECT_EQ(conditionFailedBy([&] { Dt3::registerTets(pT, c.ith, c.pTo, c.jth); }), c.text);
	EXPECT_TRUE(pT->getOppTet(0) == pU && pU->getOppTet(3) == pT)
	    << "a refused link changes nothing";
	std::ostringstream text;
	text << "register tets has been called with fromTet==toTet==" << pT << "\n" << *pT << "\n";
	EXPECT_TRUE(startsWith(printedBy([&] { Dt3::registerTets(pT, 0, pT, 1); }), text.str()));
}

TEST_F(Link, AFacetHalfWithoutAPartnerIsReported)
{
	// A live tetrahedron with a cavity mark is taken for one of the cavity, so its facet is not closed.
	Tet3 *pT = make(), *pU = make(4, 1, 3, 2);
	Dt3::registerTets(pT, 0, pU, 0);
	CavityMark::set(*pU);
	p[5] = Point3(0.2, 0.2, 0.2);
	Point3* pVtx = &p[5];
	const std::string text = printedBy([&] { engine.insertVertex(&pVtx, pT); });
	EXPECT_TRUE(startsWith(text, "numStoredTCS after insertVertex: 3\n")) << text;
	EXPECT_NE(text.find("Condition [ numStoredTCS==0 failed ]"), std::string::npos);
	pU->hasBeenVisited = true;
	EXPECT_EQ(
	    conditionFailedBy([&] { engine.insertVertex(&pVtx, pU); }), "!pCurTet->hasBeenVisited");
}

TEST_F(Link, AWalkInACycleIsContinuedAThousandTimes)
{
	// Beyond facet 1 of each of three tetrahedra lies the next one, and the point.
	Tet3* ring[] = {make(), make(), make()};
	for (int i = 0; i < 3; ++i) Dt3::registerTets(ring[i], 1, ring[(i + 1) % 3], 2);
	p[5] = Point3(-1, -1, 0.2);
	Point3* pVtx = &p[5];
	const std::string text = printedBy([&] { engine.insertVertex(&pVtx, ring[0]); });
	std::size_t numStops = 0;
	for (std::size_t at = 0; (at = text.find("watchDog: bad point\n", at)) != text.npos; ++at) {
		++numStops;
	}
	EXPECT_EQ(numStops, 1001U) << "the first walk and a thousand more";
	EXPECT_NE(text.find("Condition [ locateResult!=-99 failed ]"), text.npos);
}

TEST(Recycling, RecordsDieInTheOrderInWhichTheyJoinTheCavity)
{
	// The one that died last is reused first, so the order shows in the labels of the records in memory.
	const int firstLabel = Tet3::runningLabel;
	support::Recorded mesh;
	for (const Point3& p : {Point3(0, 0, 0), Point3(10, 0, 0), Point3(0, 10, 0), Point3(0, 0, 10),
	         Point3(2, 2, 2), Point3(1, 1, 1)}) {
		mesh.insert(p);
	}
	const std::vector<Tet3*> vBefore = mesh.tets();
	for (Tet3* pTet : vBefore) pTet->setCustomIndex(7);
	mesh.insert(Point3(2, 1, 3));
	const std::vector<Tet3*> vTets = mesh.tets();
	for (Tet3* pTet : vBefore) {
		const bool bLives = std::find(vTets.begin(), vTets.end(), pTet) != vTets.end();
		EXPECT_EQ(pTet->getCustomIndex(), bLives ? 7 : -1);
	}
	std::vector<int> labels;
	for (const Tet3* pTet : vTets) {
		std::ostringstream text;
		text << *pTet;
		labels.push_back(std::stoi(text.str().substr(text.str().find('=') + 1)) - firstLabel);
	}
	EXPECT_EQ(labels, (std::vector<int>{11, 12, 13, 4, 7, 8, 9, 10, 14, 15, 16}));
}
