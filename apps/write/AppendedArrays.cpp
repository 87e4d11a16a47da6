// SPDX-License-Identifier: MIT
// Compressing by zlib, fast rather than small: numbers of vertices and doubles gain little from more effort.
#include "AppendedArrays.h"

#ifdef TULO3D_ZLIB
#  include <new>
#  include <thread>
#  include <utility>
#  include <zlib.h>
#endif

namespace app {

namespace {

void appendSize(std::string& bytes, std::uint64_t size)
{
	bytes.append(reinterpret_cast<const char*>(&size), sizeof(size));
}

} // namespace

std::string AppendedArrays::begin(const std::string& typeAndName)
{
	return "<DataArray type=\"" + typeAndName + R"(" format="appended" offset=")" +
	    std::to_string(bytes.size()) + "\"/>\n";
}

#ifdef TULO3D_ZLIB

const char* const AppendedArrays::kCompressor = R"( compressor="vtkZLibDataCompressor")";

namespace {

std::string compressed(const std::string& block)
{
	constexpr int kFast = 1;
	const auto size = static_cast<uLong>(block.size());
	auto room = compressBound(size);
	std::string result(room, '\0');
	if (compress2(reinterpret_cast<Bytef*>(result.data()), &room,
	        reinterpret_cast<const Bytef*>(block.data()), size, kFast) != Z_OK)
		throw std::bad_alloc();
	result.resize(room);
	return result;
}

} // namespace

void AppendedArrays::endBlock()
{
	lastSize = block.size();
	vPending.push_back(std::async(compressed, std::exchange(block, {})));
	block.reserve(kBlockSize);
	if (vPending.size() > std::thread::hardware_concurrency()) takeBlock();
}

void AppendedArrays::takeBlock()
{
	const std::string done = vPending.front().get();
	vPending.pop_front();
	vSizes.push_back(done.size());
	body += done;
}

// First the number of blocks, their size, that of the last one when it is smaller, and the compressed sizes.
void AppendedArrays::end()
{
	if (!block.empty()) endBlock();
	while (!vPending.empty()) takeBlock();
	appendSize(bytes, vSizes.size());
	appendSize(bytes, kBlockSize);
	appendSize(bytes, lastSize % kBlockSize);
	for (const auto size : vSizes) appendSize(bytes, size);
	bytes += body;
	body.clear();
	vSizes.clear();
}

#else

const char* const AppendedArrays::kCompressor = "";

void AppendedArrays::endBlock()
{
	body += block;
	block.clear();
}

void AppendedArrays::end()
{
	endBlock();
	appendSize(bytes, body.size());
	bytes += body;
	body.clear();
}

#endif

} // namespace app
