// SPDX-License-Identifier: MIT
// The bytes of drawings, their colours, and whether Geomview reads them.
#include "Colors.h"
#include "Visualizer3.h"
#include "scratch.h"
#include "support.h"

#include <cstdlib>
#include <functional>
#include <locale>
#include <memory>

using namespace TULO3D;
using support::fileText;
using support::printedBy;

namespace {

const Point3 kP(0.1, 2, -3), kQ(1.23456789, 1e-7, 0), kR(0, 1, 0), kS(1, 0, 0);

std::string facet(const std::string& lines, const std::string& color)
{
	return "{\nOFF\n3 1 0\n" + lines + "3 0 1 2 " + color + "\n}\n";
}

std::string mark(const std::string& line, const std::string& width, const std::string& color)
{
	return "LIST\n{\nappearance{linewidth " + width + "}\nVECT\n1 1 1\n1 \n1 \n" + line + color +
	    "\n}\n";
}

/// Decimal commas and grouped thousands, as a host may have set them.
struct Commas : std::numpunct<char>
{
	char do_decimal_point() const override { return ','; }
	std::string do_grouping() const override { return "\3"; }
};

struct Member
{
	std::string name;
	std::function<void(Visualizer3&)> write;
	std::string text;
};

class Drawing : public support::TestInFolder
{
protected:
	// clang-format off
	const std::vector<Member> members{
		{"nothing", [](auto&) {}, ""},
		{"segment", [](auto& v) { v.writeSegment(kP, kQ, "1 0 0 1"); },
			"{\nVECT\n1 2 1\n2\n1\n0.1 2 -3\n1.23457 1e-07 0\n1 0 0 1\n}\n"},
		{"ball", [](auto& v) { v.writeBall(kP, 6.25); },
			"{\nappearance { +edge -face }\nSPHERE 2.5 0.1 2 -3\n}\n"},
		{"polygon", [](auto& v) { v.writePolygon({kP, kQ, kR, kS}, CLAWNGREEN); },
			facet("0.1 2 -3\n1.23457 1e-07 0\n0 1 0\n", "0.49\t0.99 0.00 0.5") +
			facet("0.1 2 -3\n0 1 0\n1 0 0\n", "0.49\t0.99 0.00 0.5")},
		{"outline", [](auto& v) { v.writePolygon({kP, kR, kS}, "BOUNDARY"); },
			"{\nVECT\n1 2 1\n2\n1\n0.1 2 -3\n0 1 0\n0 0 0 1\n}\n"
			"{\nVECT\n1 2 1\n2\n1\n0 1 0\n1 0 0\n0 0 0 1\n}\n"
			"{\nVECT\n1 2 1\n2\n1\n1 0 0\n0.1 2 -3\n0 0 0 1\n}\n"},
		{"points", [](auto& v) { v.writePoints({kP, kQ, kR}, 1234, GREEN); },
			"LIST\n{\nappearance{linewidth 1234}\nVECT\n3 3 1\n1 1 1 \n1 0 0 \n"
			"0.1 2 -3\n1.23457 1e-07 0\n0 1 0\n0 1 0 0.5\n}\n"},
		{"point", [](auto& v) { v.writePoint(kP, 5, RED); }, mark("0.1 2 -3\n", "5", "1 0 0 0.5")},
		{"null", [](auto& v) { v.writeTet(nullptr, RED); v.writePoints({}, 5, RED); }, ""}};
	// clang-format on
};

TEST_F(Drawing, EveryMemberIsWrittenToTheByteWhateverTheHostsLocale)
{
	const std::locale before = std::locale::global(std::locale(std::locale(), new Commas));
	std::string printed;
	for (const Member& member : members) {
		printed = printedBy([&] { member.write(*std::make_unique<Visualizer3>("a.list")); });
		EXPECT_EQ(fileText("a.list"), "LIST\n{\n" + member.text + "}\n") << member.name;
	}
	std::locale::global(before);
	EXPECT_EQ(printed,
	    "Visualizer, writing a.list\n  Writing a.list\n"
	    "\n      Visualizer3:.writeTet(), ERROR: c==NULL\n\n"
	    "\n      Visualizer3::writePoints, WARNING: vPoints.empty()\n\n");
}

TEST_F(Drawing, AMeshIsItsTetrahedraInTheNextOfFourteenColoursTheirCornersAndTheMark)
{
	const support::Capture quiet;
	Tulo_3D mesh;
	Point3 marked(7, 8, 9);
	mesh.show("a.list", &marked);
	EXPECT_EQ(fileText("a.list"), "LIST\n{\n" + mark("7 8 9\n", "10", "1 0 0 0.5") + "}\n");

	for (Point3 corner : {kP, kR, kS, Point3(5, 6, 7)}) mesh.insert(corner);
	std::vector<Tet3*> vTets;
	mesh.getTetrahedra(vTets);
	std::string line[4], corners;
	for (int i = 0; i < 4; ++i) {
		std::ostringstream stream;
		const Point3& corner = *vTets.at(0)->getCorner(i);
		stream << corner.x() << ' ' << corner.y() << ' ' << corner.z() << '\n';
		line[i] = stream.str();
		corners += mark(line[i], "5", "0 1 0 0.5");
	}
	for (int i = 0; i < 14 && Visualizer3::getColor() != WHITE; ++i) Visualizer3::getNextColor();
	for (const int i : {13, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 0}) {
		const std::string color = colorArray[i];
		EXPECT_EQ(printedBy([&] { mesh.show("a.list", nullptr); }),
		    "  Dt3::show(): vTets.size()=1\nVisualizer, writing a.list\n  Writing a.list\n");
		EXPECT_EQ(fileText("a.list"),
		    "LIST\n{\n" + facet(line[1] + line[2] + line[3], color) +
		        facet(line[0] + line[2] + line[3], color) +
		        facet(line[0] + line[1] + line[3], color) +
		        facet(line[0] + line[1] + line[2], color) + corners + "}\n");
	}
}

TEST_F(Drawing, AFileThatCannotBeOpenedEndsTheProcessWithStatus1)
{
	EXPECT_EXIT(support::loudly([] { Visualizer3 vis("no/such/folder/a.list"); }),
	    testing::ExitedWithCode(1), "no/such/folder/a.list not open");
}

TEST_F(Drawing, GeomviewReadsEveryMemberKindWithoutAComplaintAndShowsIt)
{
#ifdef _WIN32
	GTEST_SKIP() << "Geomview is a program for X";
#endif
	const auto render = [](const std::string& name) {
		const std::string command =
		    "exec 2>" + name + ".log; '" TULO3D_RENDER_SCRIPT "' --size 200x150 ";
		return std::system((command + name + ".list " + name + ".png").c_str());
	};
	const support::Capture quiet;
	for (const Member& member : members) {
		member.write(*std::make_unique<Visualizer3>(member.name + ".list"));
		const int status = render(member.name);
		if (status == 77 << 8) GTEST_SKIP() << "Geomview, xvfb-run or netpbm is not installed";
		ASSERT_EQ(status, 0) << member.name << ": " << fileText(member.name + ".log");
		const bool bBlank = fileText(member.name + ".png") == fileText("nothing.png");
		EXPECT_EQ(bBlank, member.text.empty()) << member.name;
	}
	// More than a thousand tetrahedra: nested too deep, if they were read as they stand.
	std::vector<Point3> vPoints;
	generateRandomPoints(300, 0, 10, vPoints, 1);
	Tulo_3D mesh;
	mesh.insert(vPoints);
	mesh.show("mesh.list", nullptr);
	EXPECT_EQ(render("mesh"), 0) << fileText("mesh.log");
	std::ofstream("broken.list") << "LIST\n{\n{\nVECT\n1 2 1\n2\n1\n0 0 0\n1 0 0 1\n}\n}\n";
	EXPECT_NE(render("broken"), 0);
}

} // namespace
