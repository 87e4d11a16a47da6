// SPDX-License-Identifier: MIT
// Reading what gzip has compressed, by zlib.
#include "Gzip.h"

#include "Failure.h"

#ifdef TULO3D_ZLIB
#  include <algorithm>
#  include <limits>
#  include <memory>
#  include <zlib.h>
#endif

namespace app {

bool isGzip(const std::string& bytes)
{
	return bytes.compare(0, 3, "\x1f\x8b\x08") == 0;
}

#ifdef TULO3D_ZLIB

std::string unzip(const std::string& bytes, const std::string& name)
{
	const auto fail = [&](const char* reason) { throw Failure(kBadInput, name + ": " + reason); };
	z_stream stream = {};
	constexpr int kWithGzipHeader = 16;
	if (inflateInit2(&stream, MAX_WBITS + kWithGzipHeader) != Z_OK) throw std::bad_alloc();
	const std::unique_ptr<z_stream, int (*)(z_stream*)> end(&stream, inflateEnd);

	constexpr std::size_t kMost = std::numeric_limits<uInt>::max();
	std::string text;
	std::size_t numTaken = 0, numMade = 0;
	for (int status = Z_OK; numTaken < bytes.size() || status == Z_OK;) {
		// Files of gzip may be joined to one, and be filled up with zeros, as tapes want it.
		if (status == Z_STREAM_END) {
			if (bytes.find_first_not_of('\0', numTaken) == std::string::npos) break;
			if (!isGzip(bytes.substr(numTaken, 3)))
				fail("what follows the compressed data is no part of them");
			inflateReset(&stream);
		}
		if (numMade == text.size()) text.resize(std::max(2 * text.size(), 4 * bytes.size() + 64));
		const std::size_t numIn = std::min(bytes.size() - numTaken, kMost);
		const std::size_t numOut = std::min(text.size() - numMade, kMost);
		stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data() + numTaken));
		stream.avail_in = static_cast<uInt>(numIn);
		stream.next_out = reinterpret_cast<Bytef*>(text.data() + numMade);
		stream.avail_out = static_cast<uInt>(numOut);
		status = inflate(&stream, Z_NO_FLUSH);
		numTaken += numIn - stream.avail_in;
		numMade += numOut - stream.avail_out;
		if (status == Z_BUF_ERROR) fail("the file is cut short: its compressed data have no end");
		if (status != Z_OK && status != Z_STREAM_END) fail("the compressed data are damaged");
	}
	text.resize(numMade);
	return text;
}

#else

std::string unzip(const std::string&, const std::string& name)
{
	throw Failure(kBadInput,
	    name + ": compressed by gzip, and this tulo3d was built without zlib; uncompress it first");
}

#endif

} // namespace app
