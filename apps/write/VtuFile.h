// SPDX-License-Identifier: MIT
// An unstructured grid of VTK in the making: the arrays of its sections, and the XML around them.
#pragma once

#include "AppendedArrays.h"
#include "Writer.h"

#include <string>

namespace app {

class VtuFile
{
public:
	std::size_t numPoints = 0, numCells = 0;
	/// The elements of each section.
	std::string points, cells, pointData, cellData;

	/// Appends an array to a section: `num` values of `type`, the i-th one being valueOf(i).
	template <class ValueOf>
	void add(std::string& section, const std::string& type, const std::string& name,
	    std::size_t num, ValueOf valueOf)
	{
		begin(section, type, name);
		for (std::size_t i = 0; i < num; ++i) arrays.add(valueOf(i));
		arrays.end();
	}
	/// Starts an array of values to be added one by one, which `end` ends.
	void begin(std::string& section, const std::string& type, const std::string& name,
	    int numComponents = 1);
	template <class T>
	void value(const T& value)
	{
		arrays.add(value);
	}
	void end() { arrays.end(); }

	/// Adds `inputIndex` and the attributes of the vertices; those named red, green and blue as one array with
	/// three components, which ParaView shows as colours.
	void addVertexData(
	    std::string& section, const Result& result, const std::vector<std::size_t>& vVertices);

	void write(const Path& output) const;

private:
	AppendedArrays arrays;
};

} // namespace app
