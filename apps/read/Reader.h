// SPDX-License-Identifier: MIT
// Reading points: one function for each format, and the choice between them.
#pragma once

#include "Attributes.h"

#include <Tulo_3D.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace app {

class Progress;

/// How a file is to be read.
struct ReadOptions
{
	/// One of `getFormatNames`, or empty: then the first bytes decide, or else the extension of the name.
	std::string format;
	/// Of text: the columns that are read, as the user lists them; empty when the file says it itself.
	std::vector<std::string> vColumns;
	/// Of text: lines at its start that are passed over.
	std::size_t numSkippedLines = 0;
	/// Whether attributes are read, too.
	bool bAttributes = false;
	/// Attributes with these names get others.
	std::vector<std::string> vOwnNames;
	/// Points with a coordinate that is no finite number, or larger than 1e60, are left out.
	bool bSkipInvalid = false;
};

/// The whole contents of a file.
struct Source
{
	std::string name;
	std::string text;
	const ReadOptions& options;
	Progress& progress;
};

/// What is read from a file.
struct Input
{
	std::vector<TULO3D::Point3> vPoints;
	/// Each has as many values as there are points.
	std::vector<Attribute> vAttributes;
	/// The points that were left out: for each the number of points before it that were kept.
	std::vector<std::size_t> vLeftOut;
	/// The number that the file itself gives its first point; 0 unless its format numbers points.
	std::size_t firstNumber = 0;
};

/// The points that are being read. Checks each of them as the mesh will do later.
class PointList
{
public:
	explicit PointList(const ReadOptions& readOptions) : options(readOptions) {}

	/// A new attribute, which is told by its place.
	std::size_t addAttribute(const std::string& name, AttributeValues values)
	{
		input.vAttributes.push_back({name, std::move(values)});
		return input.vAttributes.size() - 1;
	}
	/// To append the next value to; for each point before the point itself.
	AttributeValues& valuesOf(std::size_t attribute) { return input.vAttributes[attribute].values; }
	bool wantsAttributes() const { return options.bAttributes; }

	/// Appends a point, or returns why it cannot be one: the reader knows the place to report. Leaves the point
	/// out, with the values of its attributes, when that is wanted of such points.
	[[nodiscard]] const char* add(double x, double y, double z)
	{
		const char* reason = findFault(x, y, z);
		if (!reason) input.vPoints.emplace_back(x, y, z);
		if (!reason || !options.bSkipInvalid) return reason;
		input.vLeftOut.push_back(input.vPoints.size());
		for (auto& attribute : input.vAttributes) dropLast(attribute.values);
		return nullptr;
	}

	void reserve(std::size_t num) { input.vPoints.reserve(num); }
	void setFirstNumber(std::size_t number) { input.firstNumber = number; }
	/// The number of points so far, with those that were left out.
	std::size_t numRead() const { return input.vPoints.size() + input.vLeftOut.size(); }
	std::size_t numLeftOut() const { return input.vLeftOut.size(); }
	Input take() { return std::move(input); }

private:
	static const char* findFault(double x, double y, double z)
	{
		if (!std::isfinite(x) || !std::isfinite(y) || !std::isfinite(z))
			return "a coordinate is not a finite number";
		if (std::fabs(x) > 1e60 || std::fabs(y) > 1e60 || std::fabs(z) > 1e60)
			return "a coordinate is larger than 1e60";
		return nullptr;
	}

	Input input;
	const ReadOptions& options;
};

/// Reads the points of a file, or of standard input when `file` is "-". A file may be compressed by gzip.
/// Throws a `Failure` that names the file, the line where there is one, and the reason.
Input readPoints(const std::string& file, const ReadOptions& options, Progress& progress);

std::vector<std::string> getFormatNames();

// Each reads all points of a source or throws; a source that ends too early is never accepted.
void readXyz(const Source& source, PointList& points);
void readPly(const Source& source, PointList& points);
void readObj(const Source& source, PointList& points);
void readOff(const Source& source, PointList& points);
void readLas(const Source& source, PointList& points);
void readNode(const Source& source, PointList& points);

} // namespace app
