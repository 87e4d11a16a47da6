// SPDX-License-Identifier: MIT
// The bytes of drawings, their colours, and whether Geomview reads them.
#include "Visualizer3.h"
#include "scratch.h"
#include "support.h"

#include <cstdlib>
#include <locale>
#include <memory>
#include <regex>

using namespace TULO3D;
using support::fileText;
using support::printedBy;

namespace {

const Point3 kP(0.1, 2, -3), kQ(1.23456789, 1e-7, 0), kR(0, 1, 0), kS(1, 0, 0);

/// A file of the folder drawings, with `color` in the place of a word.
std::string expected(const std::string& name, const std::string& color)
{
	return std::regex_replace(
	    fileText(TULO3D_TEST_FOLDER "/drawings/" + name), std::regex("COLOR"), color);
}

/// Decimal commas and grouped thousands, as a host may have set them.
struct Commas : std::numpunct<char>
{
	char do_decimal_point() const override { return ','; }
	std::string do_grouping() const override { return "\3"; }
};

class Drawing : public support::TestInFolder
{
protected:
	static void drawMembers(Visualizer3& v)
	{
		v.writeSegment(kP, kQ, "1 0 0 1");
		v.writeBall(kP, 6.25);
		v.writePolygon({kP, kQ, kR, kS}, CLAWNGREEN);
		v.writePolygon({kP, kR, kS}, "BOUNDARY");
		v.writePoints({kP, kQ, kR}, 1234, GREEN);
		v.writePoint(&kP, 5, RED);
		v.writeTet(nullptr, RED);
		v.writePoints({}, 5, RED);
	}
};

TEST_F(Drawing, EveryMemberIsWrittenToTheByteWhateverTheHostsLocale)
{
	const std::locale before = std::locale::global(std::locale(std::locale(), new Commas));
	const std::string printed = printedBy([] {
		Visualizer3 visualizer("a.list");
		drawMembers(visualizer);
	});
	std::locale::global(before);
	EXPECT_EQ(fileText("a.list"), expected("members.list", ""));
	EXPECT_EQ(printed,
	    "Visualizer, writing a.list\n  Writing a.list\n"
	    "\n      Visualizer3:.writeTet(), ERROR: c==NULL\n\n"
	    "\n      Visualizer3::writePoints, WARNING: vPoints.empty()\n\n");
}

TEST_F(Drawing, AMeshIsItsTetrahedraInTheNextOfFourteenColoursTheirCornersAndTheMark)
{
	Tulo_3D mesh;
	for (int i = 0; i < 14 && Visualizer3::getColor() != WHITE; ++i) Visualizer3::getNextColor();
	for (Point3 corner : {kP, kR, kS, Point3(5, 6, 7)}) mesh.insert(corner);
	for (const int i : {13, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 0}) {
		Point3 marked(7, 8, 9);
		EXPECT_EQ(printedBy([&] { mesh.show("a.list", &marked); }),
		    "  Dt3::show(): vTets.size()=1\nVisualizer, writing a.list\n  Writing a.list\n");
		EXPECT_EQ(fileText("a.list"), expected("mesh.list", colorArray[i]));
	}
}

TEST_F(Drawing, GeomviewReadsDrawingsWithoutAComplaint)
{
#ifdef _WIN32
	GTEST_SKIP() << "Geomview is a program for X";
#endif
	const support::Capture quiet;
	std::vector<Point3> vPoints;
	generateRandomPoints(300, 0, 10, vPoints, 1);
	Tulo_3D mesh;
	mesh.insert(vPoints);
	mesh.show("mesh.list", nullptr); // so many members that they would be nested too deep
	drawMembers(*std::make_unique<Visualizer3>("members.list"));
	std::ofstream("broken.list") << "LIST\n{\n{\nVECT\n1 2 1\n2\n1\n0 0 0\n1 0 0 1\n}\n}\n";
	for (const std::string name : {"mesh", "members", "broken"}) {
		const std::string script = TULO3D_TEST_FOLDER "/../tools/render_list.sh",
		                  files = name + ".list " + name + ".png 2>" + name + ".log";
		const int status = std::system(("'" + script + "' --size 200x150 " + files).c_str());
		if (status == 77 << 8) GTEST_SKIP() << "Geomview, xvfb-run or netpbm is not installed";
		EXPECT_EQ(status == 0, name != "broken") << name << ": " << fileText(name + ".log");
	}
}

} // namespace
