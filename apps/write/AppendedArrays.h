// SPDX-License-Identifier: MIT
// The arrays at the end of an XML file of VTK: their bytes, and where each of them starts.
#pragma once

#include <cstdint>
#include <deque>
#include <future>
#include <string>
#include <vector>

namespace app {

/// Takes in one array after the other. Compresses them in blocks, as VTK does it, where there is zlib: on all
/// cores, since that takes longer than the mesh.
class AppendedArrays
{
public:
	/// The attribute of the file's first element that says how the arrays are compressed.
	static const char* const kCompressor;

	/// Starts an array. Returns the element that describes it; `typeAndName` stands between the first and the
	/// last quotation mark of its own attributes.
	std::string begin(const std::string& typeAndName);
	template <class T>
	void add(const T& value)
	{
		block.append(reinterpret_cast<const char*>(&value), sizeof(T));
		if (block.size() >= kBlockSize) endBlock();
	}
	void end();

	const std::string& getBytes() const { return bytes; }

private:
	// A multiple of the sizes of all values.
	static constexpr std::size_t kBlockSize = std::size_t{1} << 18;

	void endBlock();
	void takeBlock();

	std::string bytes; // of all arrays that have ended
	std::string block;
	std::string body;                              // the blocks of the current array
	std::vector<std::uint64_t> vSizes;             // of these blocks
	std::size_t lastSize = 0;                      // of the last one, before it was compressed
	std::deque<std::future<std::string>> vPending; // blocks that are being compressed
};

} // namespace app
