// SPDX-License-Identifier: MIT
// Writing under a temporary name, and renaming at the end.
#include "OutputFile.h"

#include "Failure.h"

#include <cerrno>
#include <cstring>
#include <random>
#include <utility>

#ifdef _WIN32
#  include <fcntl.h>
#  include <io.h>
#endif

namespace fs = std::filesystem;

namespace app {

namespace {

constexpr int kMostLinks = 40; // from one to the next, as for the system
constexpr std::size_t kBufferSize = std::size_t{1} << 20;

#ifdef _WIN32
constexpr const char* kNewFile = "wb";
#else
constexpr const char* kNewFile =
    "wbx"; // never an existing file, nor through a link that another user has made
#endif

} // namespace

OutputFile::OutputFile(fs::path output) : target(std::move(output)), pFile(nullptr)
{
	if (target == "-")
		pFile = std::tmpfile();
	else
		open();
	if (!pFile) fail(std::strerror(errno));
	buffer.reserve(kBufferSize + 64);
}

void OutputFile::open()
{
	std::error_code ec;
	// A link keeps being one: the file that it leads to is replaced, or made.
	for (int i = 0; i < kMostLinks && fs::is_symlink(target, ec); ++i)
		target = target.parent_path() / fs::read_symlink(target, ec);
	if (fs::exists(target, ec) && !fs::is_regular_file(target, ec)) fail("not a regular file");
	temporary = target;
	temporary.replace_filename(
	    "." + target.filename().string() + "." + std::to_string(std::random_device()()) + ".part");
	removal.emplace(temporary);
	pFile = std::fopen(temporary.string().c_str(), kNewFile);
}

OutputFile::~OutputFile()
{
	if (pFile) std::fclose(pFile);
	std::error_code ec;
	if (!temporary.empty()) fs::remove(temporary, ec);
}

void OutputFile::text(std::string_view s)
{
	buffer.append(s);
	if (buffer.size() >= kBufferSize) flush();
}

void OutputFile::flush()
{
	if (std::fwrite(buffer.data(), 1, buffer.size(), pFile) != buffer.size())
		fail(std::strerror(errno));
	buffer.clear();
}

void OutputFile::close()
{
	flush();
	std::FILE* const pClosing = pFile;
	pFile = nullptr;
	if (std::fclose(pClosing) != 0) fail(std::strerror(errno));
}

void OutputFile::copyToStdout()
{
	flush();
	std::rewind(pFile);
#ifdef _WIN32
	_setmode(_fileno(stdout), _O_BINARY);
#endif
	buffer.resize(kBufferSize);
	for (std::size_t got = 1; got > 0;) {
		got = std::fread(buffer.data(), 1, buffer.size(), pFile);
		if (std::ferror(pFile) || std::fwrite(buffer.data(), 1, got, stdout) != got)
			fail(std::strerror(errno));
	}
	if (std::fflush(stdout) != 0) fail(std::strerror(errno));
}

void OutputFile::commit()
{
	if (target == "-") return copyToStdout();
	if (pFile) close();
	std::error_code ec;
	const bool bExisted = fs::exists(target, ec);
	if (bExisted && fs::hard_link_count(target, ec) > 1) {
		// Its other names have to show the new contents, too.
		fs::copy_file(temporary, target, fs::copy_options::overwrite_existing, ec);
		if (ec) fail(ec.message());
		fs::remove(temporary, ec);
	} else {
		if (bExisted) fs::permissions(temporary, fs::status(target, ec).permissions(), ec);
		fs::rename(temporary, target, ec);
		if (ec) fail(ec.message());
	}
	removal.reset();
	temporary.clear();
}

void OutputFile::fail(const std::string& reason) const
{
	const std::string name = target == "-" ? "standard output" : target.string();
	throw Failure(kNotWritten, name + ": cannot be written: " + reason);
}

} // namespace app
