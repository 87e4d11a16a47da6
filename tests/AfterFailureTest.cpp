// SPDX-License-Identifier: MIT
// A call that fails leaves an engine as it was, for each failure that a host can cause.
#include "support.h"

#include <functional>

using namespace TULO3D;
using points::Cloud;
using support::Recorded;

namespace {

/// What fails, and the condition that it names; `bad` is a point that is refused.
struct Failure
{
	const char* condition;
	std::function<void(Tulo_3D&, Point3& bad, Cloud& badBatch)> action;
};

const char* const kRange = "coordinates are finite and at most 1e60 in magnitude";
std::vector<Point3*> handles;
std::vector<Tet3*> vOne(1);
// clang-format off
const Failure kFailures[] = {
	{kRange, [](Tulo_3D& mesh, Point3& bad, Cloud&) { mesh.insert(bad); }},
	{kRange, [](Tulo_3D& mesh, Point3&, Cloud& badBatch) { mesh.insert(badBatch); }},
	{kRange, [](Tulo_3D& mesh, Point3&, Cloud& badBatch) { mesh.insert(badBatch, handles); }},
	{"vTet.empty()", [](Tulo_3D& mesh, Point3&, Cloud&) { mesh.getTetrahedra(vOne); }},
};
// clang-format on

} // namespace

TEST(AfterFailure, AnEngineIsAsItWasBefore)
{
	for (const Cloud& start : {Cloud(), points::make("FlatGrid", 9), points::make("Uniform", 30)}) {
		const Cloud more = points::make("Uniform", 40, 2);
		Recorded spent, mesh, untouched;
		spent.insert(more); // takes the first margin of the process
		mesh.insert(start);
		untouched.insert(start);
		for (const Failure& failure : kFailures) {
			for (Point3 bad : points::refused()) {
				Cloud batch(more);
				batch.insert(batch.begin() + 20, bad);
				const auto fail = [&] { failure.action(mesh.mesh, bad, batch); };
				ASSERT_EQ(support::conditionFailedBy(fail), failure.condition);
				ASSERT_TRUE(handles.empty() && vOne.size() == 1);
			}
			const support::Capture quiet;
			EXPECT_VALID(mesh);
			EXPECT_TRUE(mesh.mesh.checkValidity("x", true));
			EXPECT_EQ(mesh.canonical(), untouched.canonical());
			const Point3 p = more[mesh.input.size() % 40];
			EXPECT_EQ(mesh.mesh.locate(p) == nullptr, untouched.mesh.locate(p) == nullptr);
			mesh.insert(p);
			untouched.insert(p);
		}
		mesh.insert(more);
		untouched.insert(more);
		EXPECT_VALID(mesh);
		EXPECT_EQ(mesh.canonical(), untouched.canonical());
	}
}

TEST(AfterFailure, MarksLeftOnAnyTetrahedraDoNotDamageTheMesh)
{
	points::Random random(11);
	int numRefused = 0;
	for (int round = 0; round < 50; ++round) {
		Recorded mesh;
		mesh.insert(
		    points::make(round % 2 ? "Lattice" : "Uniform", 60, static_cast<unsigned>(round)));
		std::vector<Tet3*> vTets = mesh.tets();
		for (int n = 1 << round % 5; n > 0; --n) random.of(vTets)->hasBeenVisited = true;
		const bool bBatch = round % 3 == 0;
		const Cloud cloud = bBatch ? points::make("Uniform", 30, 7) : Cloud{random.point(-1, 5)};
		const std::string text =
		    support::printedBy([&] { bBatch ? mesh.insert(cloud) : void(mesh.insert(cloud[0])); });
		const bool bRefused = text == "threw";
		std::vector<Tet3*> vNow;
		numRefused += bRefused;
		for (const Point3* pVtx : mesh.vertices()) {
			if (pVtx->getOneTet() == nullptr) continue;
			mesh.mesh.getTetsAroundVertex(const_cast<Point3*>(pVtx), vNow);
			for (Tet3* pTet : vNow) pTet->hasBeenVisited = false;
		}
		if (!bRefused) {
			EXPECT_VALID(mesh) << "round " << round;
			continue;
		}
		// The stored vertices (of a batch, those not inserted yet) stay out of the mesh until insertLeftOut.
		std::size_t numLeftOut = 0;
		for (const Point3* pVtx : mesh.vertices()) numLeftOut += pVtx->getOneTet() == nullptr;
		EXPECT_TRUE(numLeftOut == cloud.size() || (bBatch && numLeftOut > 0)) << "round " << round;
		EXPECT_EQ(mesh.mesh.insertLeftOut(), numLeftOut);
		if (bBatch) mesh.input.insert(mesh.input.end(), cloud.begin(), cloud.end());
		mesh.handles.clear();
		const Cloud all(mesh.input);
		mesh.input.clear();
		for (const Point3& p : all) mesh.insert(p);
		EXPECT_VALID(mesh) << "round " << round;
	}
	EXPECT_TRUE(numRefused > 5 && numRefused < 45) << numRefused;
}
