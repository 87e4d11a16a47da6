// SPDX-License-Identifier: MIT
// The OOGL writer. Every write appends one member to the LIST that the constructor opened.
// Deliberate: lines end with std::endl, so that what a dying process has drawn is in the file.
#include "Visualizer3.h"

#include "Message.h"
#include "tools.h"

#include <atomic>
#include <cassert>
#include <cmath>
#include <locale>

namespace TULO3D {

namespace {

// Of the process: a second drawing goes on where the first one stopped.
std::atomic<int> colorIndex{0};

std::string colorAt(int index)
{
	if (index < kCycledColors) return colorArray[index];
	Message() << "Attention, returning colorArray[13] which is the last available color"
	          << std::endl;
	return colorArray[kCycledColors - 1];
}

/// Six digits, the stream's default: the file is for the eye.
void writeCoordinates(std::ostream& stream, const Point3& p)
{
	stream << p.x() << " " << p.y() << " " << p.z() << "\n";
}

void writeTriangle(std::ostream& stream, const Point3& p0, const Point3& p1, const Point3& p2,
    const std::string& color)
{
	stream << "{" << std::endl << "OFF" << std::endl << "3 1 0" << std::endl;
	writeCoordinates(stream, p0);
	writeCoordinates(stream, p1);
	writeCoordinates(stream, p2);
	stream << "3 0 1 2 " << color << std::endl << "}" << std::endl;
}

} // namespace

Visualizer3::Visualizer3(const std::string& filename)
{
	Message() << "Visualizer, writing " << filename << std::endl;
	// A host's own locale may write decimal commas, which no reader of drawings understands.
	stream.imbue(std::locale::classic());
	stream.open(filename);
	if (!stream.is_open()) {
		printAndStop(StopReason::kFileNotOpen, (filename + " not open").c_str());
	}
	Message() << "  Writing " << filename << std::endl;
	stream << "LIST" << std::endl << "{" << std::endl;
}

Visualizer3::~Visualizer3()
{
	close();
}

void Visualizer3::close()
{
	if (!stream.is_open()) return;
	stream << "}" << std::endl;
	stream.close();
}

void Visualizer3::writeSegment(const Point3& p, const Point3& q, const std::string& color)
{
	// One polyline of two vertices, one colour.
	stream << "{" << std::endl << "VECT" << std::endl << "1 2 1" << std::endl;
	stream << "2" << std::endl << "1" << std::endl;
	writeCoordinates(stream, p);
	writeCoordinates(stream, q);
	stream << color << std::endl << "}" << std::endl;
}

void Visualizer3::writeBall(const Point3& center, double squaredRadius)
{
	stream << "{\nappearance { +edge -face }\nSPHERE " << std::sqrt(squaredRadius) << " "
	       << center.x() << " " << center.y() << " " << center.z() << "\n}" << std::endl;
}

void Visualizer3::writePolygon(const std::vector<Point3>& vPoints, const std::string& color)
{
	assert(vPoints.size()>2);
	const std::size_t num = vPoints.size();
	if (color == BOUNDARY) {
		for (std::size_t i = 0; i < num; ++i) {
			writeSegment(vPoints[i], vPoints[(i + 1) % num], "0 0 0 1");
		}
		return;
	}
	for (std::size_t i = 1; i + 1 < num; ++i) {
		writeTriangle(stream, vPoints[0], vPoints[i], vPoints[i + 1], color);
	}
}

void Visualizer3::writeTet(const Tet3* pTet, const std::string& color)
{
	if (!pTet) {
		printError("Visualizer3:.writeTet()", "c==NULL"); // Deliberate: the ":." is output
		return;
	}
	for (int opp = 0; opp < 4; ++opp) {
		// Increasing corner indices: a drawing has no inside, so no table is needed here.
		std::vector<Point3> vFacet;
		for (int i = 0; i < 4; ++i) {
			if (i != opp) vFacet.push_back(*pTet->getCorner(i));
		}
		writePolygon(vFacet, color);
	}
}

void Visualizer3::writePoints(
    const std::vector<Point3>& vPoints, int linewidth, const std::string& color)
{
	if (vPoints.empty()) {
		printWarning("Visualizer3::writePoints", "vPoints.empty()");
		return;
	}
	// Each point is a polyline of one vertex; the first one brings the colour for all. Deliberate:
	// the LIST opened here ends only at the brace of the LIST around it, so all members that follow
	// are read as its own.
	const std::size_t num = vPoints.size();
	stream << "LIST\n{\nappearance{linewidth " << linewidth << "}" << std::endl;
	stream << "VECT" << std::endl << num << " " << num << " 1" << std::endl;
	for (std::size_t i = 0; i < num; ++i) stream << "1 ";
	stream << std::endl << "1 ";
	for (std::size_t i = 1; i < num; ++i) stream << "0 ";
	stream << std::endl;
	for (const Point3& point : vPoints) writeCoordinates(stream, point);
	stream << color << std::endl << "}" << std::endl;
}

void Visualizer3::writePoint(const Point3* pPoint, int linewidth, const std::string& color)
{
	writePoints({*pPoint}, linewidth, color);
}

std::string Visualizer3::getColor()
{
	return colorAt(colorIndex);
}

std::string Visualizer3::getNextColor()
{
	int index = colorIndex;
	while (!colorIndex.compare_exchange_weak(index, (index + 1) % kCycledColors)) {}
	return colorAt(index);
}

} // namespace TULO3D
