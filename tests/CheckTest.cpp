// SPDX-License-Identifier: MIT
// The validity check on meshes that are truly broken, and the print.
#include "geometry/printing.h"
#include "scratch.h"
#include "support.h"
#include "tools.h"

#include <regex>

using namespace TULO3D;
using support::printedBy;

namespace {

template <class T>
std::string str(const T& value)
{
	std::ostringstream stream;
	stream << value;
	return stream.str();
}

std::string header(const std::string& numTets, const std::string& with)
{
	return "\n\n** CheckValidity at [ x]: Number of tetrahedra: " + numTets +
	    "\n   with --checkvisited\n   " + with + " --checkSphereInc\n   vTets.size()=" + numTets +
	    "\n";
}

const std::string kPassed = "** CheckValidity at (x) has been finished, seems OK\n1";

/// Two tetrahedra on a common triangle in the plane z = 0, whose circumcircle is (0, 0), radius 2.
class Check : public support::TestInFolder
{
protected:
	Check()
	{
		const support::Capture quiet;
		std::vector<Point3> vPoints{{2, 0, 0}, {-2, 0, 0}, {0, 2, 0}, {0, 1, 4}, {0, 1, -4}};
		mesh.insert(vPoints, vHandles);
		mesh.getTetrahedra(vTets);
	}

	std::string check(bool bSphere)
	{
		return printedBy([&] { std::cout << mesh.checkValidity("x", bSphere); });
	}

	/// Expects one drawing in the folder that ends as it should; what was printed about it.
	std::string expectDump(const std::string& name, const std::string& end) const
	{
		const std::string file = files(), text = support::fileText(file);
		EXPECT_TRUE(std::regex_match(file, std::regex("\\d{5,}_" + name))) << file;
		EXPECT_EQ(text.substr(text.size() < end.size() ? 0 : text.size() - end.size()), end);
		std::filesystem::remove(file);
		return "Visualizer, writing " + file + "\n  Writing " + file + "\n0";
	}

	Tulo_3D mesh;
	std::vector<Point3*> vHandles;
	std::vector<Tet3*> vTets;
};

TEST_F(Check, SoundAndEmptyMeshesPassAndNothingIsLeftBehind)
{
	const auto flags = std::cout.flags();
	EXPECT_EQ(check(false), header("2", "without") + kPassed);
	EXPECT_EQ(check(true), header("2", "with") + kPassed);
	EXPECT_EQ(printedBy([&] { mesh.print("x"); }),
	    "\n\n**** Dt3::print(x), numTets=2\n" + str(*vTets[0]) + "\n" + str(*vTets[1]) + "\n");
	EXPECT_EQ(printedBy([] { std::cout << Tulo_3D().checkValidity("x", true); }),
	    "Dt3::getAllTetrahedra(), oneTet==NULL\n" + header("0", "with") + kPassed);
	EXPECT_TRUE(std::cout.flags() == flags && std::cout.precision() == 6);
	EXPECT_EQ(files(), "");
}

TEST_F(Check, ACornerMovedAcrossAFacetIsReportedAndTheMeshIsDrawn)
{
	const Tet3* pUpper = vHandles[3]->getOneTet();
	const int opp = pUpper->getIntraTetIndex(vHandles[3]);
	const std::string banner = printedBy([] { printErrorBanner("ERROR: checkValidity at [x]"); });
	for (const auto& [z, side] : {std::pair("1", "positive"), std::pair("0", "coplanar")}) {
		vHandles[4]->exchange(0, 1, std::atoi(z));
		const std::string vtx = str(*vHandles[4]), mark = "VECT\n1 1 1\n1 \n1 \n0 1 " + str(z);
		const std::string text = check(false);
		EXPECT_EQ(text,
		    header("2", "without") + banner + "Dt3::checkValidity, HUH, vertex " + vtx +
		        " should be on the negative side, tet=" + str(*pUpper) + "oppIndex=" + str(opp) +
		        ", Vertex=" + vtx + "\ncheckValidity: " + side +
		        "\n  Dt3::show(): vTets.size()=2\n" +
		        expectDump("negSideBug.list", mark + "\n1 0 0 0.5\n}\n}\n"));
	}
}

TEST_F(Check, AMeshThatIsOrientedButNotDelaunayFailsOnlyTheSphereTest)
{
	vHandles[3]->exchange(0, 0, 4);
	vHandles[4]->exchange(0, 0, -0.5);
	EXPECT_EQ(check(false), header("2", "without") + kPassed);

	// The two are in conflict with each other; the one at the lower address is reported.
	const bool bUpperFirst = vTets[0] == vHandles[3]->getOneTet();
	const Point3& vtx = *vHandles[bUpperFirst ? 4 : 3];
	const std::string end = std::string(bUpperFirst ? "\n0 0 -0.5" : "\n0 0 4") +
	    "\n1 0 0 0.5\n}\n{\nappearance { +edge -face }\nSPHERE " +
	    (bUpperFirst ? "2.5 0 0 1.5" : "4.25 0 0 3.75") + "\n}\n}\n";
	const std::string banner =
	    printedBy([] { printErrorBanner("checkValidity: ERROR ERROR ERROR"); });
	const std::string text = check(true);
	EXPECT_EQ(text,
	    header("2", "with") + banner + "Dt3::checkValidity, HUH - sphereIncTest failed: " +
	        str(*vTets[0]) + ", Vertex=" + str(vtx) + "\n" + expectDump("sphereIncBug.list", end));
}

TEST_F(Check, AMissingCornerIsSkippedAndALinkThatIsNotReturnedEndsTheProcess)
{
	for (Point3* const pApex : {vHandles[3], vHandles[4]}) {
		Tet3* const pTet = pApex->getOneTet();
		const int i = pTet->getIntraTetIndex(pApex);
		pTet->setCorner(i, nullptr);
		EXPECT_EQ(check(false), header("2", "without") + kPassed);
		pTet->setCorner(i, pApex);
	}
	support::Recorded r;
	r.insert(points::make("Uniform", 12));
	setStopHandler([](StopReason, const char* text) { throw std::logic_error(text); });
	for (Tet3* const pTet : r.tets()) {
		for (int i = 0; i < 4; ++i) {
			Tet3* const pNeigh = pTet->getOppTet(i);
			if (pNeigh == nullptr) continue;
			pTet->setOppTet(i, nullptr);
			EXPECT_THROW(r.mesh.checkValidity("x", true), std::logic_error);
			pTet->setOppTet(i, pNeigh);
		}
	}
	setStopHandler(nullptr);
}

TEST_F(Check, AFlagLeftSetIsReportedAndThrows)
{
	vTets[1]->hasBeenVisited = true;
	EXPECT_EQ(check(true).find(header("2", "with") +
	              "\n      Dt3::CheckValidity(), ERROR: pcurrentTet->hasBeenvisited=true\n\n" +
	              str(*vTets[1]) + "\n      Tulo, , ERROR: Condition [ false failed ]\n\n"),
	    0U);
	EXPECT_EQ(support::conditionFailedBy([&] { mesh.checkValidity("x", false); }), "false");
}

} // namespace
