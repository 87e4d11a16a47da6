// SPDX-License-Identifier: MIT
// The program's audit of links, on meshes that are broken in one place each.
#include "../apps/Mesh.h"
#include "support.h"

using namespace TULO3D;

namespace {

/// Separates two neighbours, so that each takes their facet for one of the hull.
void cut(Tet3* pTet, int ith)
{
	Tet3* const pNeigh = pTet->getOppTet(ith);
	pNeigh->setOppTet(pNeigh->getIntraTetIndex(pTet), nullptr);
	pTet->setOppTet(ith, nullptr);
}

} // namespace

TEST(Audit, FindsEachKindOfBrokenLink)
{
	// What is to be found, and how a tetrahedron inside, away from the hull, is broken.
	const struct
	{
		const char* found;
		void (*breakTet)(Tet3* pTet);
	} aCases[] = {
	    {"nothing", [](Tet3*) {}},
	    {"a vertex does not know a tetrahedron that has it",
	        [](Tet3* pTet) { pTet->getCorner(0)->setOneTet(nullptr); }},
	    {"a vertex does not know a tetrahedron that has it",
	        [](Tet3* pTet) { pTet->getCorner(0)->setOneTet(pTet->getOppTet(0)); }},
	    {"two neighbours do not know each other", [](Tet3* pTet) { pTet->setOppTet(0, nullptr); }},
	    {"two neighbours do not know each other",
	        [](Tet3* pTet) { pTet->setOppTet(0, pTet->getOppTet(0)->getOppTet(0)); }},
	    {"two neighbours do not know each other", // they do, but through the wrong facets
	        [](Tet3* pTet) {
		        Tet3* const pFirst = pTet->getOppTet(0);
		        pTet->setOppTet(0, pTet->getOppTet(1));
		        pTet->setOppTet(1, pFirst);
	        }},
	    {"the hull is not closed", // four of its facets meet in an edge
	        [](Tet3* pTet) { cut(pTet, 0), cut(pTet, 1); }},
	    {"V - E + F - T is not 1", [](Tet3* pTet) { cut(pTet, 0); }}, // a facet is there twice
	};
	points::Random random(8);
	for (const auto& [found, breakTet] : aCases) {
		support::Recorded r;
		points::Cloud cloud;
		for (int i = 0; i < 8; ++i)
			cloud.emplace_back(i & 1 ? 2 : -2, i & 2 ? 2 : -2, i & 4 ? 2 : -2);
		for (int i = 0; i < 60; ++i) cloud.push_back(random.point(-1, 1));
		r.insert(cloud);
		const auto tets = r.tets();
		breakTet(*std::find_if(tets.begin(), tets.end(), [](const Tet3* pTet) {
			for (int i = 0; i < 4; ++i)
				if (pTet->getCorner(i)->getNumber() < 8) return false;
			return true;
		}));
		const char* reason = app::findBrokenLink(app::makeMesh(r.mesh, r.handles));
		EXPECT_STREQ(reason != nullptr ? reason : "nothing", found);
	}
}
