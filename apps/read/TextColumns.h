// SPDX-License-Identifier: MIT
// Which columns of a text hold x, y and z, as a header line or the user says.
#pragma once

#include "LineReader.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace app {

/// The places and the names of the columns of a text.
struct TextColumns
{
	/// The columns of x, y and z, counted from 0.
	std::array<std::size_t, 3> axes{0, 1, 2};
	/// The names of the columns as far as they have any; an empty one has none.
	std::vector<std::string> vNames;
};

/// What separates the names of a header line that is not separated by tabs: a semicolon, a comma or a blank.
char separatorOfHeader(std::string_view line);

/// The fields of a line, without quotation marks. Where blanks separate them, a unit in brackets belongs to the
/// name before it: "X [m] Y [m]" has two fields.
std::vector<std::string> splitHeader(std::string_view line, char separator);

/// The name in small letters, without a unit in brackets.
std::string plainName(const std::string& name);

/// The columns that a header names x, y and z, in any case, with or without a unit, or as surveys do:
/// easting, northing, height and the like. Nothing where one of them is not named; fails where several
/// columns may be meant.
std::optional<TextColumns> findColumns(
    const std::vector<std::string>& vNames, const LineReader& lines);

/// The columns that the user has listed: the numbers (from 1) or the names of the columns of x, y and z, or
/// the names of all columns in their order, among them x, y and z. `vNames` is the header; empty when there
/// is none. Fails where the list fits neither.
TextColumns chooseColumns(const std::vector<std::string>& vList,
    const std::vector<std::string>& vNames, const LineReader& lines);

/// True when the header names each column of the list; a unit may be left out.
bool hasNames(const std::vector<std::string>& vNames, const std::vector<std::string>& vList);

/// The comment lines before the first other one, without their marks, the last one first: one of them may be
/// the header.
std::vector<std::string_view> leadingComments(std::string_view text);

} // namespace app
