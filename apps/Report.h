// SPDX-License-Identifier: MIT
// The results of a run: the summary as text, the statistics, and both as JSON.
#pragma once

#include "Mesh.h"
#include "Shape.h"

#include <string>
#include <vector>

namespace app {

/// The measurements of a run.
struct Measured
{
	std::string file;
	std::size_t numPoints = 0;
	/// Points of the file that were left out because they are invalid.
	std::size_t numLeftOut = 0;
	/// The names of the attributes that were read.
	std::vector<std::string> vAttributes;
	double readSeconds = 0;
	/// Those that made the mesh; 0 when one engine did.
	unsigned numThreads = 0;
	/// The insertion alone: neither reading nor checking nor writing.
	double insertSeconds = 0;
	double checkSeconds = 0;
	double shapeSeconds = 0;
	double writeSeconds = 0;
	double totalSeconds = 0;
	bool bChecked = false;
	bool bValid = false;
};

/// A line for each fact; `bStatistics` adds those that take a traversal of the mesh.
std::string reportText(
    const Measured& measured, const Mesh& mesh, const Shape& shape, bool bStatistics);
/// One JSON object with every fact, statistics included.
std::string reportJson(const Measured& measured, const Mesh& mesh, const Shape& shape);

} // namespace app
