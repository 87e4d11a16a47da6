// SPDX-License-Identifier: MIT
// Meshes that are broken in one place each: what the verifier of the tests and the program's audit of
// the links find in them.
#include "../apps/Mesh.h"
#include "support.h"

using namespace TULO3D;

namespace {

/// A right mesh in a cube, and where to damage it: T is a tetrahedron away from the hull, N its first
/// neighbour; facet f of H is on the hull.
struct Parts
{
	Parts()
	{
		points::Random random(8);
		points::Cloud cloud;
		for (int i = 0; i < 8; ++i)
			cloud.emplace_back(i & 1 ? 2 : -2, i & 2 ? 2 : -2, i & 4 ? 2 : -2);
		for (int i = 0; i < 60; ++i) cloud.push_back(random.point(-1, 1));
		mesh.insert(cloud);
		for (Tet3* pTet : mesh.tets()) {
			bool bInside = true;
			for (int i = 0; i < 4; ++i) {
				bInside &= pTet->getCorner(i)->getNumber() >= 8;
				if (pTet->getOppTet(i) == nullptr) pH = pTet, f = i;
			}
			if (bInside) pT = pTet;
		}
		pN = pT->getOppTet(0);
	}

	/// Separates T from a neighbour, so that each takes their facet for one of the hull.
	void cut(int ith)
	{
		Tet3* const pNeigh = pT->getOppTet(ith);
		pNeigh->setOppTet(pNeigh->getIntraTetIndex(pT), nullptr);
		pT->setOppTet(ith, nullptr);
	}

	support::Recorded mesh;
	Tet3 *pT = nullptr, *pN = nullptr, *pH = nullptr;
	int f = 0;
};

const char *const kVertex = "a vertex does not know a tetrahedron that has it",
                  *const kLink = "two neighbours do not know each other",
                  *const kNothing = "nothing", *const kNotAsked = nullptr;

/// What the verifier finds, perhaps among more, what the audit finds, and the damage.
struct Damage
{
	const char *violation, *brokenLink;
	void (*damage)(Parts& p);
};

// clang-format off
const Damage kDamages[] = {
	{"a tetrahedron left visited", kNothing, [](Parts& p) { p.pT->hasBeenVisited = true; }},
	{"a tetrahedron with a custom index", kNothing, [](Parts& p) { p.pT->setCustomIndex(3); }},
	{"a tetrahedron not positive", kLink, [](Parts& p) { Point3* q = p.pT->getCorner(0); p.pT->setCorner(0, p.pT->getCorner(1)); p.pT->setCorner(1, q); }},
	{"a vertex inside a neighbour's sphere", kNothing, [](Parts& p) { p.pT->getCorner(0)->exchange(0.1, 0.2, 0.3); }},
	{"a fold of the hull that is not convex", kNothing, [](Parts& p) { p.pH->getCorner((p.f + 1) % 4)->exchange(0.5, 0.4, 0.6); }},
	{"a corner that is no listed vertex", kNotAsked, [](Parts& p) { p.pT->setCorner(2, &p.mesh.input[0]); }},
	{"neighbours without a common facet", kLink, [](Parts& p) { p.pT->setOppTet(0, p.pT->getOppTet(1)); p.pT->setOppTet(1, p.pN); }},
	{"a link that does not come back exactly once", kLink, [](Parts& p) { p.pT->setOppTet(0, p.pH); }},
	{"a link that does not come back exactly once", kLink, [](Parts& p) { p.pT->setOppTet(0, nullptr); }},
	{"a link that does not come back exactly once", kLink, [](Parts& p) { p.pT->setOppTet(3, nullptr); }},
	{"a link that does not come back exactly once", kLink, [](Parts& p) { p.pN->setOppTet(p.pN->getIntraTetIndex(p.pT), nullptr); }},
	{"a link to a tetrahedron that is not in the mesh", kNotAsked, [](Parts& p) { p.pT->setOppTet(0, reinterpret_cast<Tet3*>(&p.mesh.input[0])); }},
	{"a hull edge not between exactly two hull facets", "the hull is not closed", [](Parts& p) { p.cut(0), p.cut(1); }},
	{"two hull facets over each other", "V - E + F - T is not 1", [](Parts& p) { p.cut(0); }},
	{"V - E + F - T is not 1", kVertex, [](Parts& p) { p.pT->getCorner(0)->setOneTet(nullptr); }},
	{"a vertex lost: not in the mesh", kVertex, [](Parts& p) { p.pT->getCorner(0)->setOneTet(nullptr); }},
	{"a vertex whose tetrahedron is not its own", kVertex, [](Parts& p) { p.pT->getCorner(0)->setOneTet(p.pN); }},
	{"a handle with other coordinates", kNotAsked, [](Parts& p) { std::swap(p.mesh.handles[0], p.mesh.handles[1]); }},
	{"a handle that is no listed vertex", kNotAsked, [](Parts& p) { p.mesh.handles[0] = &p.mesh.input[0]; }},
	{"not one handle for each point", kNotAsked, [](Parts& p) { p.mesh.handles.pop_back(); }},
	{"not one vertex for each distinct point", kNotAsked, [](Parts& p) { p.mesh.handles[0] = p.mesh.handles[1]; }},
	{"two vertices with equal coordinates", kNothing, [](Parts& p) { p.pT->getCorner(0)->exchange(p.pT->getCorner(1)->x(), p.pT->getCorner(1)->y(), p.pT->getCorner(1)->z()); }},
};
// clang-format on

std::string brokenLink(Parts& parts)
{
	const char* reason = app::findBrokenLink(app::makeMesh(parts.mesh.mesh, parts.mesh.handles));
	return reason != nullptr ? reason : kNothing;
}

} // namespace

TEST(BrokenMesh, EveryKindOfDamageIsNamed)
{
	for (const Damage& damage : kDamages) {
		SCOPED_TRACE(damage.violation);
		Parts parts;
		EXPECT_VALID(parts.mesh);
		EXPECT_EQ(brokenLink(parts), kNothing);
		damage.damage(parts);
		const auto found = parts.mesh.violations();
		EXPECT_EQ(std::count(found.begin(), found.end(), damage.violation), 1)
		    << "found " << testing::PrintToString(found);
		if (damage.brokenLink == kNotAsked) continue;
		EXPECT_EQ(brokenLink(parts), damage.brokenLink);
	}
}
