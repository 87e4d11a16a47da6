// SPDX-License-Identifier: MIT
// From a file name to points: take in the whole file, find its format, call that reader.
#include "Reader.h"

#include "Failure.h"
#include "Gzip.h"
#include "LineReader.h"
#include "Progress.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string_view>
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

// The extension of a name, but for that of gzip, in small letters.
std::string extensionOf(std::filesystem::path name)
{
	if (lowerCase(name.extension().string()) == ".gz") name.replace_extension();
	return lowerCase(name.extension().string());
}

// The complete lines of a text that are within the first 64 KB, and the last line when all of it is.
std::string startOf(const std::string& text)
{
	constexpr std::size_t kMost = 65536;
	if (text.size() <= kMost) return text + '\n';
	return text.substr(0, text.rfind('\n', kMost) + 1);
}

std::size_t countFields(LineReader& lines)
{
	std::size_t num = 0;
	while (!lines.field().empty()) ++num;
	lines.rewind();
	return num;
}

// The lines with content.
std::size_t countLines(std::string_view text)
{
	std::size_t num = 0;
	for (std::size_t begin = 0; begin < text.size();) {
		const auto end = std::min(text.find('\n', begin), text.size());
		const auto line = trimmed(text.substr(begin, end - begin));
		if (!line.empty() && line[0] != '#') ++num;
		begin = end + 1;
	}
	return num;
}

// A line with counts, and then as many points as it announces or points that are numbered. Faults of later lines do
// not count: they are told of a .node, while a text of points would be a mesh of wrong points.
bool startsLikeNode(const Source& source)
{
	const Source start{source.name, startOf(source.text), source.options, source.progress};
	LineReader lines(start);
	if (!lines.next()) return false;
	std::size_t aHead[4] = {0, 0, 0, 0}; // points, dimension, attributes, markers
	for (auto& number : aHead)
		if (!lines.atLineEnd() && !parse(lines.field(), number)) return false;
	if (!lines.atLineEnd() || (aHead[1] != 2 && aHead[1] != 3)) return false;

	const std::string_view text = source.text;
	if (aHead[0] > 0 &&
	    countLines(text.substr(std::min(lines.getOffset(), text.size()))) == aHead[0])
		return true;
	std::size_t first = 0, second = 0;
	if (aHead[0] < 4 || !lines.next() || countFields(lines) < 4 || !parse(lines.field(), first))
		return false;
	return first <= 1 || (lines.next() && parse(lines.field(), second) && second == first + 1);
}

const Format& chooseFormat(const Source& source)
{
	if (!source.options.format.empty()) return findFormat(source.options.format);
	if (source.text.compare(0, 4, "ply\n") == 0 || source.text.compare(0, 4, "ply\r") == 0)
		return findFormat("ply");
	if (source.text.compare(0, 4, "LASF") == 0) return findFormat("las");
	if (startsWithOffWord(source.text)) return findFormat("off");

	const std::string extension = extensionOf(source.name);
	if (extension.empty())
		return startsLikeNode(source) ? findFormat("node") : getFormats().front();
	for (const auto& format : getFormats())
		for (const char* known : format.vExtensions)
			if (extension == known) return format;
	throw Failure(kBadInput,
	    source.name + ": no format is known for the extension " + extension +
	        " (name one with --format, or convert the file with meshio)");
}

// Every other byte of most characters would be null.
void refuseUtf16(const Source& source)
{
	for (const char* mark : {"\xFF\xFE", "\xFE\xFF"})
		if (source.text.compare(0, 2, mark) == 0)
			throw Failure(kBadInput,
			    source.name + ": a text in UTF-16; convert it, as with iconv -f UTF-16 -t UTF-8");
}

void requireText(const Format& format, const ReadOptions& options)
{
	if (format.read != readXyz && (!options.vColumns.empty() || options.numSkippedLines > 0))
		throw Failure(kWrongUse,
		    std::string("--columns and --skip-lines are for text, not for the format ") +
		        format.name);
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

// What begins like a .node may be a text of whole numbers, so an error says how it was read.
void readAs(const Format& format, const Source& source, PointList& points)
{
	const bool bGuessed = format.read == readNode && source.options.format.empty() &&
	    extensionOf(source.name).empty();
	try {
		requireText(format, source.options);
		format.read(source, points);
	} catch (const Failure& failure) {
		if (!bGuessed) throw;
		throw Failure(failure.status,
		    std::string(failure.what()) + " (read as .node; --format xyz reads it as text)");
	}
}

} // namespace

std::vector<std::string> getFormatNames()
{
	std::vector<std::string> vNames;
	for (const auto& format : getFormats()) vNames.emplace_back(format.name);
	return vNames;
}

Input readPoints(const std::string& file, const ReadOptions& options, Progress& progress)
{
	const std::string name = file == "-" ? "(standard input)" : file;
	Source source{name, readWhole(file, name, progress), options, progress};
	if (isGzip(source.text)) source.text = unzip(source.text, name);
	refuseUtf16(source);
	progress.begin("reading");
	PointList points(options);
	readAs(chooseFormat(source), source, points);
	Input input = points.take();
	const std::string start = name + ": ";
	for (const auto& note : makeNamesDistinct(input.vAttributes, options.vOwnNames))
		progress.warn(start + note);
	return input;
}

} // namespace app
