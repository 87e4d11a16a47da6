// SPDX-License-Identifier: MIT
// Reading points: one function for each format, and the choice between them.
#pragma once

#include <Tulo_3D.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace app {

class Progress;

/// The whole contents of a file.
struct Source
{
	std::string name;
	std::string text;
	Progress& progress;
};

/// The points that were read. Checks each of them as the mesh will do later.
class PointList
{
public:
	/// Appends a point, or returns why it cannot be one: the reader knows the place to report.
	[[nodiscard]] const char* add(double x, double y, double z)
	{
		if (!std::isfinite(x) || !std::isfinite(y) || !std::isfinite(z))
			return "a coordinate is not a finite number";
		if (std::fabs(x) > 1e60 || std::fabs(y) > 1e60 || std::fabs(z) > 1e60)
			return "a coordinate is larger than 1e60";
		vPoints.emplace_back(x, y, z);
		return nullptr;
	}

	void reserve(std::size_t num) { vPoints.reserve(num); }
	std::size_t size() const { return vPoints.size(); }
	std::vector<TULO3D::Point3> take() { return std::move(vPoints); }

private:
	std::vector<TULO3D::Point3> vPoints;
};

/// Reads the points of a file, or of standard input when `file` is "-".
///
/// `format` is one of `getFormatNames`, or empty: then the first bytes decide, or else the extension
/// of the name. Throws a `Failure` that names the file, the line where there is one, and the reason.
std::vector<TULO3D::Point3> readPoints(
    const std::string& file, const std::string& format, Progress& progress);

std::vector<std::string> getFormatNames();

// Each reads all points of a source or throws; a source that ends too early is never accepted.
void readXyz(const Source& source, PointList& points);
void readPly(const Source& source, PointList& points);
void readObj(const Source& source, PointList& points);
void readOff(const Source& source, PointList& points);
void readLas(const Source& source, PointList& points);
void readNode(const Source& source, PointList& points);

} // namespace app
