// SPDX-License-Identifier: MIT
// The points of an uncompressed LAS file, versions 1.0 to 1.4: integers times scale plus offset.
#include "Bytes.h"
#include "Failure.h"
#include "Reader.h"

namespace app {

namespace {

// Where the fields of the public header block stand.
// clang-format off
constexpr std::size_t kMinorVersion = 25, kHeaderSize = 94, kDataOffset = 96, kPointFormat = 104,
	kRecordLength = 105, kLegacyCount = 107, kScale = 131, kShift = 155, kSmallestHeader = 227,
	kCount = 247, kHeaderSize14 = 375;
// clang-format on

template <class T>
T at(const Source& source, std::size_t offset)
{
	return loadNumber<T>(source.text.data() + offset, false);
}

// A field of the records that becomes an attribute.
struct LasField
{
	const char* name;
	AttributeValues none;
	std::size_t offset;
	std::size_t size;
};

// The colours start where the format of the points says, and so does the time; 0 where it has none.
std::vector<LasField> findFields(std::size_t pointFormat)
{
	constexpr std::size_t aTime[] = {0, 20, 0, 20, 20, 20, 22, 22, 22, 22, 22};
	constexpr std::size_t aColour[] = {0, 0, 20, 28, 0, 28, 0, 30, 30, 0, 30};
	using Word = std::vector<std::uint16_t>;
	std::vector<LasField> vFields{{"intensity", Word(), 12, 2}};
	if (pointFormat >= std::size(aTime)) return vFields;
	vFields.push_back(
	    {"classification", std::vector<std::uint8_t>(), pointFormat < 6 ? 15U : 16U, 1});
	if (const auto offset = aTime[pointFormat])
		vFields.push_back({"gps_time", std::vector<double>(), offset, 8});
	if (const auto offset = aColour[pointFormat])
		for (std::size_t i = 0; i < 3; ++i) {
			static const char* const aNames[3] = {"red", "green", "blue"};
			vFields.push_back({aNames[i], Word(), offset + 2 * i, 2});
		}
	return vFields;
}

// The fields of the records that fit into them, as attributes.
std::vector<LasField> addFields(const Source& source, std::size_t recordLength, PointList& points)
{
	if (!points.wantsAttributes()) return {};
	auto vFields = findFields(at<std::uint8_t>(source, kPointFormat));
	while (vFields.back().offset + vFields.back().size > recordLength) vFields.pop_back();
	for (const auto& field : vFields) points.addAttribute(field.name, field.none);
	return vFields;
}

// In the first formats, flags share the byte of the classification.
void readField(const LasField& field, const char* pRecord, AttributeValues& values)
{
	if (field.offset == 15)
		appendNumber(values, static_cast<unsigned char>(pRecord[15]) & 31);
	else
		appendBytes(values, pRecord + field.offset, false);
}

std::size_t pointCount(const Source& source)
{
	const bool bWideCount = at<std::uint8_t>(source, kMinorVersion) >= 4 &&
	    at<std::uint16_t>(source, kHeaderSize) >= kHeaderSize14 &&
	    source.text.size() >= kHeaderSize14;
	const auto count = bWideCount ? at<std::uint64_t>(source, kCount) : 0;
	return count != 0 ? count : at<std::uint32_t>(source, kLegacyCount);
}

} // namespace

void readLas(const Source& source, PointList& points)
{
	const auto fail = [&](const std::string& why) {
		throw Failure(kBadInput, source.name + ": " + why);
	};
	const std::size_t size = source.text.size();
	if (source.text.compare(0, 4, "LASF") != 0) fail("this is not a LAS file");
	if (size < kSmallestHeader) fail("the file is cut short: its header is not complete");
	if (at<std::uint8_t>(source, kPointFormat) >= 64)
		fail("the points are compressed (LAZ); uncompress the file to LAS first");

	const std::size_t start = at<std::uint32_t>(source, kDataOffset);
	const std::size_t length = at<std::uint16_t>(source, kRecordLength);
	if (length < 20 || start < kSmallestHeader) fail("the header is damaged");
	if (size < start) fail("the file is cut short: there are no points");
	const std::size_t num = pointCount(source);
	const std::size_t present = (size - start) / length;
	if (present < num)
		fail("the file is cut short: " + std::to_string(present) + " of " + std::to_string(num) +
		    " points");
	if (num == 0 && present > 0) fail("the header announces no points, but there are some");

	points.reserve(num);
	const auto vFields = addFields(source, length, points);
	for (std::size_t i = 0; i < num; ++i) {
		for (std::size_t k = 0; k < vFields.size(); ++k)
			readField(vFields[k], source.text.data() + start + i * length, points.valuesOf(k));
		double aValue[3];
		for (std::size_t axis = 0; axis < 3; ++axis)
			aValue[axis] = at<std::int32_t>(source, start + i * length + 4 * axis) *
			        at<double>(source, kScale + 8 * axis) +
			    at<double>(source, kShift + 8 * axis);
		if (const char* reason = points.add(aValue[0], aValue[1], aValue[2]))
			fail("point " + std::to_string(i + 1) + ": " + reason);
	}
}

} // namespace app
