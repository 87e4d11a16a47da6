// SPDX-License-Identifier: MIT
// From a file name to points: take in the whole file, find its format, call that reader.
#include "Reader.h"

#include "Failure.h"
#include "LineReader.h"
#include "Progress.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#ifdef _WIN32
#  include <fcntl.h>
#  include <io.h>
#endif

namespace app {

namespace {

struct Format
{
	const char* name;
	std::vector<const char*> vExtensions;
	void (*read)(const Source&, PointList&);
};

// The first one is what a name without extension, or standard input, is taken for.
const std::vector<Format>& getFormats()
{
	static const std::vector<Format> vFormats = {
	    {"xyz", {".xyz", ".csv", ".txt", ".tsv", ".pts", ".asc"}, readXyz},
	    {"ply", {".ply"}, readPly},
	    {"obj", {".obj"}, readObj},
	    {"off", {".off"}, readOff},
	    {"las", {".las", ".laz"}, readLas},
	    {"node", {".node"}, readNode},
	};
	return vFormats;
}

const Format& findFormat(const std::string& name)
{
	const auto& vFormats = getFormats();
	return *std::find_if(
	    vFormats.begin(), vFormats.end(), [&](const Format& f) { return name == f.name; });
}

bool startsWithOffWord(const std::string& text)
{
	const auto end = std::min(text.find_first_of(" \t\r\n"), std::size_t{10});
	const std::string word = text.substr(0, end);
	return word.size() >= 3 && word.compare(word.size() - 3, 3, "OFF") == 0 &&
	    word.find_first_not_of("STCN4nOF") == std::string::npos;
}

const Format& chooseFormat(const Source& source, const std::string& wanted)
{
	if (!wanted.empty()) return findFormat(wanted);
	if (source.text.compare(0, 4, "ply\n") == 0 || source.text.compare(0, 4, "ply\r") == 0)
		return findFormat("ply");
	if (source.text.compare(0, 4, "LASF") == 0) return findFormat("las");
	if (startsWithOffWord(source.text)) return findFormat("off");

	const std::string extension =
	    lowerCase(std::filesystem::path(source.name).extension().string());
	if (extension.empty()) return getFormats().front();
	for (const auto& format : getFormats())
		for (const char* known : format.vExtensions)
			if (extension == known) return format;
	throw Failure(kBadInput,
	    source.name + ": no format is known for the extension " + extension +
	        " (name one with --format, or convert the file with meshio)");
}

struct CloseFile
{
	void operator()(std::FILE* pFile) const
	{
		if (pFile != stdin) std::fclose(pFile);
	}
};

std::string readWhole(const std::string& file, const std::string& name, Progress& progress)
{
	const auto fail = [&] { throw Failure(kBadInput, name + ": " + std::strerror(errno)); };
	const bool bStdin = file == "-";
#ifdef _WIN32
	if (bStdin) _setmode(_fileno(stdin), _O_BINARY);
#endif
	const std::unique_ptr<std::FILE, CloseFile> pFile(
	    bStdin ? stdin : std::fopen(file.c_str(), "rb"));
	if (!pFile) fail();

	// The size is only a hint: a pipe has none, and a file may still be growing.
	std::error_code unknown;
	const auto size = bStdin ? 0 : std::filesystem::file_size(file, unknown);
	const auto hint = unknown ? 0 : static_cast<std::size_t>(size);
	constexpr std::size_t kChunk = std::size_t{1} << 20;
	std::string text;
	text.reserve(hint + kChunk);
	for (std::size_t got = 1, used = 0; got > 0; used += got) {
		text.resize(used + kChunk);
		got = std::fread(text.data() + used, 1, kChunk, pFile.get());
		if (std::ferror(pFile.get())) fail();
		text.resize(used + got);
		progress.update("loading", used + got, hint);
	}
	return text;
}

} // namespace

std::vector<std::string> getFormatNames()
{
	std::vector<std::string> vNames;
	for (const auto& format : getFormats()) vNames.emplace_back(format.name);
	return vNames;
}

std::vector<TULO3D::Point3> readPoints(
    const std::string& file, const std::string& format, Progress& progress)
{
	const std::string name = file == "-" ? "(standard input)" : file;
	const Source source{name, readWhole(file, name, progress), progress};
	progress.begin("reading");
	PointList points;
	chooseFormat(source, format).read(source, points);
	return points.take();
}

} // namespace app
