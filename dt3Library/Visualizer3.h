// SPDX-License-Identifier: MIT
// Writes geometry to a text file in the OOGL object file format, for a viewer such as Geomview.
#pragma once

#include "Colors.h"
#include "Point3.h"
#include "Tet3.h"

#include <fstream>
#include <string>
#include <vector>

namespace TULO3D {

/// One OOGL file: a LIST that takes one braced member for each write.
class Visualizer3
{
public:
	/// Opens `filename` for writing; ends the process with status 1 when that fails.
	explicit Visualizer3(const std::string& filename);
	Visualizer3(const Visualizer3&) = delete;
	Visualizer3& operator=(const Visualizer3&) = delete;
	~Visualizer3();

	/// Ends the LIST and closes the file.
	void close();

	void writeSegment(const Point3& p, const Point3& q, const std::string& color);
	void writeBall(const Point3& center, double squaredRadius);
	/// A fan of filled triangles, or with the colour "BOUNDARY" a black outline.
	void writePolygon(const std::vector<Point3>& vPoints, const std::string& color);
	/// The four facets; a null tetrahedron is reported and not written.
	void writeTet(const Tet3* pTet, const std::string& color);
	void writePoints(const std::vector<Point3>& vPoints, int linewidth, const std::string& color);
	/// A list of one point, which must not be null.
	void writePoint(const Point3* pPoint, int linewidth, const std::string& color);

	/// The current colour of the process-wide cycle of 14.
	static std::string getColor();
	/// The current colour; then the cycle moves on.
	static std::string getNextColor();

private:
	std::ofstream stream;
};

} // namespace TULO3D
