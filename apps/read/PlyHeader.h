// SPDX-License-Identifier: MIT
// The header of a PLY file: which elements follow, and how each of their properties is stored.
#pragma once

#include "LineReader.h"

#include <optional>
#include <string>
#include <vector>

namespace app {

/// A type of numbers: its two names, its size in a binary file, and how one is loaded from there.
struct PlyType
{
	std::string_view name, sizedName;
	std::size_t size;
	bool bInteger;
	double (*load)(const char* pBytes, bool bBigEndian);
	/// No values yet, of this type.
	AttributeValues (*makeValues)();
};

struct PlyProperty
{
	const PlyType* pType;
	/// The type of the length of a list; null for a single value.
	const PlyType* pCountType;
	std::string name;
	/// 0, 1, 2 for the x, y, z of a vertex; -1 for others.
	int axis;
	/// The attribute of the points that it is; nothing for what is passed over.
	std::optional<std::size_t> attribute;
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
