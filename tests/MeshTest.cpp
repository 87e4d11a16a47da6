// SPDX-License-Identifier: MIT
// Every family of inputs, inserted in every way, gives a mesh that the verifier finds right.
#include "support.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace {

using points::Cloud;
using points::Family;
using support::Recorded;
using TULO3D::Point3;

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
