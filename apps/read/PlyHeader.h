// SPDX-License-Identifier: MIT
// The header of a PLY file: which elements follow, and how each of their properties is stored.
#pragma once

#include "LineReader.h"

#include <string>
#include <vector>

namespace app {

/// A type of numbers: its two names, its size in a binary file, and how one is loaded from there.
/// Every type fits into a double exactly.
struct PlyType
{
	std::string_view name, sizedName;
	std::size_t size;
	bool bInteger;
	double (*load)(const char* pBytes, bool bBigEndian);
};

struct PlyProperty
{
	const PlyType* pType;
	/// The type of the length of a list; null for a single value.
	const PlyType* pCountType;
	/// 0, 1, 2 for the x, y, z of a vertex; -1 for all that is passed over.
	int axis;
};

struct PlyElement
{
	std::string name;
	std::size_t count;
	std::vector<PlyProperty> vProperties;
};

struct PlyHeader
{
	enum class Format { kAscii, kLittleEndian, kBigEndian } format;
	std::vector<PlyElement> vElements;
};

/// Reads up to and including the line "end_header".
PlyHeader readPlyHeader(LineReader& lines);

} // namespace app
