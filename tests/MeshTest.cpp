// SPDX-License-Identifier: MIT
// Every family of inputs, inserted in every way, gives a mesh that the verifier finds right.
#include "support.h"

#include <algorithm>
#include <functional>
#include <tuple>
#include <utility>

namespace {

using points::Cloud;
using points::Family;
using support::Recorded;
using TULO3D::Point3;
using TULO3D::Tet3;

/// A way to insert: runs of points, 1 to `maxRun` long or all of that length, each as a batch or one
/// by one.
struct Mode
{
	friend void PrintTo(const Mode& mode, std::ostream* pStream) { *pStream << mode.name; }

	void insert(Recorded& mesh, const Cloud& cloud) const
	{
		points::Random random(cloud.size());
		for (auto it = cloud.begin(); it != cloud.end();) {
			const std::ptrdiff_t wished = bMixed ? 1 + random.below(maxRun) : maxRun;
			const Cloud run(it, it + std::min(wished, cloud.end() - it));
			it += static_cast<std::ptrdiff_t>(run.size());
			if (run.size() > 1 && random.below(2) < (bMixed ? 1 : 2)) {
				mesh.insert(run);
			} else {
				for (const Point3& p : run) mesh.insert(p);
			}
		}
	}

	const char* name;
	int maxRun;
	bool bMixed;
};

class Mesh : public testing::TestWithParam<std::tuple<Family, Mode>>
{
};
class SmallMesh : public testing::TestWithParam<Family>
{
};

const auto kAllFamilies = testing::ValuesIn(points::families());
const auto kModes = testing::Values(Mode{"Batch", 9999, false}, Mode{"ThreeBatches", 160, false},
    Mode{"Singles", 1, false}, Mode{"Mixed", 40, true});

} // namespace

TEST_P(Mesh, IsDelaunayWithEveryPointInIt)
{
	const auto& [family, mode] = GetParam();
	Recorded mesh;
	mode.insert(mesh, family.make(400, 1));
	EXPECT_VALID(mesh);
	mesh.insert(points::make("Uniform", 10)); // and the mesh takes more, of another kind
	EXPECT_VALID(mesh);
	EXPECT_TRUE(mesh.mesh.is3D());
}
INSTANTIATE_TEST_SUITE_P(Families, Mesh, testing::Combine(kAllFamilies, kModes),
    [](const auto& p) { return std::get<0>(p.param).name + "_" + std::get<1>(p.param).name; });

TEST_P(SmallMesh, IsValidAfterEveryInsertion)
{
	for (unsigned seed = 1; seed <= 4; ++seed) {
		const int size = seed % 2 == 0 ? 24 : 60;
		Cloud cloud = GetParam().make(size, seed);
		Cloud others = GetParam().make(size, seed + 10);
		points::Random random(seed);
		if (seed > 2) points::shuffle(cloud, random);
		Recorded mesh;
		for (const Point3& p : cloud) {
			random.below(5) == 0 ? mesh.insert(Cloud{p, random.of(others), p})
			                     : void(mesh.insert(p));
			ASSERT_EQ(mesh.violations(), std::vector<std::string>())
			    << "seed " << seed << ", after " << mesh.input.size() << " points";
		}
	}
}
INSTANTIATE_TEST_SUITE_P(
    Families, SmallMesh, kAllFamilies, [](const auto& p) { return p.param.name; });

TEST(Verifier, NamesEveryKindOfDamage)
{
	// One damage at a time to a right mesh. T is an inner tetrahedron, N its first neighbour; facet f
	// of H is on the hull.
	struct Parts
	{
		Recorded& mesh;
		Tet3 *pT, *pN, *pH;
		int f;
	};
	// clang-format off
	const std::pair<const char*, std::function<void(Parts)>> damages[] = {
		{"a tetrahedron left visited", [](Parts p) { p.pT->hasBeenVisited = true; }},
		{"a tetrahedron with a custom index", [](Parts p) { p.pT->setCustomIndex(3); }},
		{"a corner that is no listed vertex", [](Parts p) { p.pT->setCorner(2, &p.mesh.input[0]); }},
		{"a tetrahedron not positive", [](Parts p) { Point3* q = p.pT->getCorner(0); p.pT->setCorner(0, p.pT->getCorner(1)); p.pT->setCorner(1, q); }},
		{"neighbours without a common facet", [](Parts p) { p.pT->setCorner(1, p.pN->getOppVtxInOppTet(p.pN->getIntraTetIndex(p.pT), false)); }},
		{"a link that does not come back exactly once", [](Parts p) { p.pT->setOppTet(0, p.pH); }},
		{"a link to a tetrahedron that is not in the mesh", [](Parts p) { p.pT->setOppTet(0, reinterpret_cast<Tet3*>(&p.mesh.input[0])); }},
		{"a vertex inside a neighbour's sphere", [](Parts p) { p.mesh.handles.back()->exchange(0.5, 0.5, 0.45); }},
		{"a hull edge not between exactly two hull facets", [](Parts p) { p.pT->setOppTet(1, p.pH->getOppTet(p.f)); }},
		{"a fold of the hull that is not convex", [](Parts p) { p.pH->getCorner((p.f + 1) % 4)->exchange(0.5, 0.4, 0.6); }},
		{"a vertex lost: not in the mesh", [](Parts p) { p.mesh.handles[5]->setOneTet(nullptr); }},
		{"V - E + F - T is not 1", [](Parts p) { p.mesh.handles[5]->setOneTet(nullptr); }},
		{"a vertex whose tetrahedron is not its own", [](Parts p) { Point3* q = p.pH->getCorner(p.f); q->setOneTet(p.pT->hasVertex(q) ? p.pN : p.pT); }},
		{"a handle with other coordinates", [](Parts p) { std::swap(p.mesh.handles[0], p.mesh.handles[1]); }},
		{"a handle that is no listed vertex", [](Parts p) { p.mesh.handles[0] = &p.mesh.input[0]; }},
		{"not one handle for each point", [](Parts p) { p.mesh.handles.pop_back(); }},
		{"not one vertex for each distinct point", [](Parts p) { p.mesh.handles[0] = p.mesh.handles[1]; }},
		{"two vertices with equal coordinates", [](Parts p) { *p.mesh.handles[0] = *p.mesh.handles[1]; }},
	};
	// clang-format on
	for (const auto& [violation, damage] : damages) {
		Recorded mesh;
		mesh.insert(points::make("Uniform", 50));
		ASSERT_TRUE(mesh.violations().empty());
		Parts parts{mesh, nullptr, nullptr, nullptr, 0};
		for (Tet3* pTet : mesh.tets()) {
			int f = 0;
			while (f < 4 && pTet->getOppTet(f) != nullptr) ++f;
			(f == 4 ? parts.pT : parts.pH) = pTet;
			if (f < 4) parts.f = f;
		}
		ASSERT_TRUE(parts.pT != nullptr && parts.pH != nullptr);
		parts.pN = parts.pT->getOppTet(0);
		damage(parts);
		const auto found = mesh.violations();
		EXPECT_EQ(std::count(found.begin(), found.end(), violation), 1)
		    << violation << ", but found " << testing::PrintToString(found);
	}
}
