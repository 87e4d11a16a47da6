// SPDX-License-Identifier: MIT
// The options with their help texts.
#include "Options.h"

#include "Failure.h"
#include "Progress.h"
#include "read/LineReader.h"
#include "write/Writer.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

namespace app {

namespace {

const char* const kFooter =
    R"(Input: XYZ, CSV, TXT and PTS text, PLY, OBJ, OFF, uncompressed LAS, TetGen .node;
       each of them also compressed by gzip
Exit status: 0 done, 1 internal error or out of memory, 2 wrong command line, 3 bad input,
             4 no four points span space or no tetrahedron is left,
             5 output not written, 6 mesh not valid
Example: tulo3d scan.ply -o mesh.vtu --check --stats)";

std::string failureMessage(const CLI::App* /*pApp*/, const CLI::Error& error)
{
	return errorPrefix() + error.what() + "\nRun with --help for more information.\n";
}

// A finite number above 0.
double positiveNumber(const char* option, const std::string& text, const char* alternative)
{
	double value = 0;
	const char* const pEnd = text.data() + text.size();
	const auto [end, ec] = std::from_chars(text.data(), pEnd, value);
	if (ec != std::errc() || end != pEnd || !(value > 0) || !std::isfinite(value))
		throw CLI::ValidationError(option, "'" + text + "' is no positive number" + alternative);
	return value;
}

// The list at its commas; a name may not be empty, as that would move the columns behind it.
std::vector<std::string> splitColumns(const std::string& list)
{
	std::vector<std::string> vColumns;
	for (std::size_t begin = 0; begin <= list.size();) {
		const auto end = std::min(list.find(',', begin), list.size());
		vColumns.emplace_back(trimmed(std::string_view(list).substr(begin, end - begin)));
		if (vColumns.back().empty())
			throw CLI::ValidationError(
			    "--columns", "'" + list + "' has an empty name; _ passes over a column");
		begin = end + 1;
	}
	return vColumns;
}

// What is to be computed, from the options that were given and the values of two of them.
void readShape(const CLI::App& cli, const std::string& radius, const std::string& longest,
    ShapeRequest& request)
{
	for (const auto kind :
	    {ShapeKind::kHull, ShapeKind::kAlpha, ShapeKind::kMaxEdge, ShapeKind::kVoronoi}) {
		const char* const option = optionOf(kind);
		if (cli.count(option) == 0) continue;
		if (request.kind != ShapeKind::kMesh)
			throw CLI::ValidationError(option,
			    std::string("it does not go with ") + optionOf(request.kind) +
			        "; run once for each");
		request.kind = kind;
		if (kind == ShapeKind::kAlpha && radius != "auto")
			request.limit = positiveNumber(option, radius, ", nor auto");
		if (kind == ShapeKind::kMaxEdge) request.limit = positiveNumber(option, longest, "");
	}
}

} // namespace

std::optional<int> parseCommandLine(int argc, char** argv, Options& options)
{
	CLI::App cli(
	    "Triangulates points in space: the Delaunay tetrahedralization of a file.", "tulo3d");
	cli.footer(kFooter);
	cli.failure_message(failureMessage);
	cli.set_version_flag("--version", "tulo3d " TULO3D_VERSION);
	cli.add_option("FILE", options.file, "The points; - is standard input");
	cli.add_option("-f,--format", options.reading.format, "Input format; overrides detection")
	    ->check(CLI::IsMember(getFormatNames()));
	std::string columns;
	cli.add_option("--columns", columns,
	    "The columns of a text: the numbers (from 1) or names of those of x, y and z, or the "
	    "names "
	    "of all in their order, such as id,x,y,z");
	cli.add_option("--skip-lines", options.reading.numSkippedLines,
	       "Pass over the first lines of a text, so many")
	    ->check([](const std::string& text) {
		    std::size_t num = 0;
		    return parse(text, num) ? "" : "'" + text + "' is no number of lines";
	    });
	cli.add_flag("--skip-invalid", options.reading.bSkipInvalid,
	    "Leave out points with a coordinate that is no finite number, and count them");
	cli.add_option("-o,--output", options.vOutputs,
	       "Write the mesh, as the extension says: .vtu, .vtk (ParaView), .msh (Gmsh), "
	       ".node/.ele/.neigh (TetGen, all three), .list/.oogl (Geomview); or a surface, the "
	       "hull or what is chosen below: .ply, .stl, .obj, .off. May be repeated; - is standard "
	       "output")
	    ->allow_extra_args(false);
	cli.add_option("--to", options.stdoutFormat, "The format of standard output, for -o -")
	    ->check(CLI::IsMember(getStdoutFormats()));
	cli.add_flag("--compact", options.bCompact,
	    "TetGen: only distinct vertices, and a .map from the points to them, not all points");
	std::string radius, longest;
	cli.add_flag("--hull", "Compute the convex hull: a surface");
	cli.add_option("--alpha", radius,
	       "Compute the alpha shape of that radius, or with auto of the smallest one that keeps "
	       "every "
	       "point: tetrahedra, or their surface")
	    ->type_name("R|auto");
	cli.add_option("--max-edge", longest,
	       "Drop tetrahedra with an edge longer than that; the others, or their surface")
	    ->type_name("L");
	cli.add_flag("--voronoi",
	    "Compute the Voronoi cell of each point, clipped to the hull: polyhedra (.vtu)");
	cli.add_flag("--quality", options.shape.bQuality,
	    "Measure volumes, dihedral angles, radius ratios and edges of the tetrahedra");
	cli.add_option("--threads", options.numThreads,
	       "Make the mesh in so many threads, 0: in as many as the machine has. The tetrahedra are "
	       "the same, in another order, which does not depend on the number")
	    ->check(CLI::Range(0, 4096));
	bool bCheckAll = false, bNoCheck = false;
	auto* pCheck = cli.add_flag("--check", bCheckAll,
	    "Check all links, the hull and the Euler relation too, not only the empty spheres");
	cli.add_flag("--no-check", bNoCheck, "Do not check the mesh at all")->excludes(pCheck);
	cli.add_flag(
	    "--stats", options.bStatistics, "Print additional statistics: box, volume, hull, times");
	cli.add_flag("--json", options.bJson, "Print everything as one JSON object");
	auto* pQuiet = cli.add_flag("-q,--quiet", options.bQuiet,
	    "No progress, no warnings, and no summary unless --stats or --json asks for it");
	cli.add_flag("-v,--verbose", options.bVerbose, "Show the library's messages on standard error")
	    ->excludes(pQuiet);
	try {
		cli.parse(argc, argv);
		if (cli.count("FILE") == 0 && isTerminal(stdin)) throw CLI::RequiredError("FILE");
		readShape(cli, radius, longest, options.shape);
		if (cli.count("--columns") > 0) options.reading.vColumns = splitColumns(columns);
	} catch (const CLI::ParseError& error) {
		return cli.exit(error) == 0 ? kDone : kWrongUse;
	}
	if (bCheckAll) options.check = Check::kAll;
	if (bNoCheck) options.check = Check::kNone;
	return std::nullopt;
}

} // namespace app
