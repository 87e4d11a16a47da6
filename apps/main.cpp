// SPDX-License-Identifier: MIT
// The program tulo3d: reads points, triangulates them, checks the mesh, writes it and reports.
#include "Failure.h"
#include "LibraryMessages.h"
#include "Options.h"
#include "Progress.h"
#include "Report.h"
#include "messages.h"
#include "read/Reader.h"
#include "write/Writer.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <new>
#include <thread>
#include <utility>

#ifndef _WIN32
#  include <fcntl.h>
#endif

using TULO3D::Point3;
using TULO3D::Tulo_3D;

namespace app {

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
	return std::chrono::duration<double>(Clock::now() - start).count();
}

// The seconds that `work` takes.
template <class Work>
double timed(Work work)
{
	const auto start = Clock::now();
	work();
	return secondsSince(start);
}

bool isStdoutUsed(const Options& options)
{
	return std::count(options.vOutputs.begin(), options.vOutputs.end(), kStdout) > 0;
}

// Outputs are checked before the computation, not after it.
void checkOutputs(const Options& options)
{
	if (!options.stdoutFormat.empty() && !isStdoutUsed(options))
		throw Failure(kWrongUse, "--to is the format of standard output, which needs -o -");
	if (std::count(options.vOutputs.begin(), options.vOutputs.end(), kStdout) > 1)
		throw Failure(kWrongUse, "-o -: standard output can be one output only");
	if (options.bCompact &&
	    std::none_of(options.vOutputs.begin(), options.vOutputs.end(), isTetgen))
		throw Failure(kWrongUse,
		    "--compact is for the files of TetGen, and none is an output: add -o mesh.node");
	checkShapeOutputs(options.shape, options.vOutputs, options.stdoutFormat);
	for (const auto& output : options.vOutputs) {
		hasAttributes(output, options.stdoutFormat); // fails when there is no such format
		for (const auto& file : getOutputFiles(output, options.bCompact)) {
			std::error_code ec;
			if (std::filesystem::equivalent(file, options.file, ec))
				throw Failure(kWrongUse, file.string() + ": the output would replace the input");
		}
	}
}

// Attributes are read only where they can be written.
ReadOptions readingOptions(const Options& options)
{
	ReadOptions reading = options.reading;
	for (const auto& output : options.vOutputs)
		reading.bAttributes |= hasAttributes(output, options.stdoutFormat);
	reading.vOwnNames = getOwnNames(options.shape);
	return reading;
}

// What the options ask for; nothing when they ask for the mesh alone.
Shape makeShape(const Mesh& mesh, const Options& options, Progress& progress, Measured& measured)
{
	Shape shape;
	if (!options.shape.isAny()) return shape;
	progress.stop();
	progress.start("computing shapes");
	measured.shapeSeconds = timed([&] { shape = computeShape(mesh, options.shape); });
	return shape;
}

void writeOutputs(const Options& options, const Result& result, Progress& progress)
{
	for (const auto& output : options.vOutputs) {
		progress.stop();
		const auto warning = outputWarning(result, output);
		if (!warning.empty()) progress.warn(warning);
		progress.start("writing " + output);
		writeMesh(result, output);
	}
}

// By one engine, or as arrays in several threads. Frees the points.
Mesh triangulate(std::vector<Point3>& vPoints, const Options& options, Tulo_3D& engine,
    Progress& progress, Measured& measured)
{
	const auto inserting = "inserting " + std::to_string(vPoints.size()) + " points";
	progress.begin(inserting);
	std::function<bool(std::size_t, std::size_t)> handler;
	if (progress.isShown()) {
		handler = [&](std::size_t numInserted, std::size_t num) {
			progress.update(inserting, numInserted, num);
			return true;
		};
	}
	if (options.numThreads == 1) {
		engine.setProgress(handler);
		std::vector<Point3*> vHandles;
		measured.insertSeconds = timed([&] { engine.insert(vPoints, vHandles); });
		engine.setProgress(nullptr);
		std::vector<Point3>().swap(vPoints);
		return makeMesh(engine, vHandles);
	}
	measured.numThreads = options.numThreads != 0
	    ? options.numThreads
	    : std::max(1U, std::thread::hardware_concurrency());
	std::vector<double> vCoordinates;
	vCoordinates.reserve(3 * vPoints.size());
	for (const auto& p : vPoints) vCoordinates.insert(vCoordinates.end(), {p.x(), p.y(), p.z()});
	std::vector<Point3>().swap(vPoints);
	TULO3D::ParallelMesh arrays;
	measured.insertSeconds = timed([&] {
		arrays = TULO3D::triangulateInParallel(
		    vCoordinates.data(), vCoordinates.size() / 3, measured.numThreads, handler);
	});
	return makeMesh(std::move(arrays), std::move(vCoordinates));
}

void requireMesh(const std::string& file, const Mesh& mesh)
{
	if (mesh.numTets() > 0) return;
	const std::size_t num = mesh.numVertices();
	throw Failure(kNoMesh,
	    (file == "-" ? "(standard input)" : file) + ": no mesh: " +
	        (num < 4 ? "fewer than 4 distinct points (" + std::to_string(num) + ")"
	                 : "all " + std::to_string(num) + " distinct points lie in one plane"));
}

bool isValid(const Mesh& mesh, const Options& options)
{
	const char* reason = nullptr;
	if (mesh.pEngine) {
		if (!mesh.pEngine->checkValidity(options.file, true)) return false; // it has said why
	} else if (!TULO3D::isDelaunay(mesh.arrays, mesh.vCoordinates.data(), options.numThreads)) {
		reason = "a vertex is on the wrong side of a facet or inside a sphere";
	}
	if (!reason && options.check == Check::kAll) reason = findBrokenLink(mesh);
	if (reason)
		std::fprintf(stderr, "%s%s: %s\n", errorPrefix().c_str(), options.file.c_str(), reason);
	return !reason;
}

void print(const std::string& text, std::FILE* pFile)
{
	if (std::fwrite(text.data(), 1, text.size(), pFile) != text.size() || std::fflush(pFile) != 0)
		throw Failure(kNotWritten, "standard output: cannot be written");
}

// Where the library would end the process, the program ends with a message of its own.
void stop(TULO3D::StopReason /*reason*/, const char* text)
{
	throw Failure(kInternalError, text && *text ? text : "internal error");
}

// A standard stream that is closed would give its number to the first file that is opened, which would then get
// what is meant for the stream. What takes its place fails to be read or written.
void holdClosedStreams()
{
#ifndef _WIN32
	for (int stream = 0; stream < 3; ++stream)
		if (fcntl(stream, F_GETFD) == -1) open("/dev/null", stream == 0 ? O_WRONLY : O_RDONLY);
#endif
}

ExitStatus run(const Options& options, LibraryMessages& messages)
{
	const auto start = Clock::now();
	checkOutputs(options);
	Progress progress(options.bQuiet);
	Measured measured;
	measured.file = options.file;

	Input input;
	const auto reading = readingOptions(options);
	measured.readSeconds = timed([&] { input = readPoints(options.file, reading, progress); });
	for (const auto& attribute : input.vAttributes) measured.vAttributes.push_back(attribute.name);
	measured.numPoints = input.vPoints.size();
	measured.numLeftOut = input.vLeftOut.size();

	TULO3D::setStopHandler(stop);
	Tulo_3D engine;
	engine.setVerbosity(options.bVerbose);
	const Mesh mesh = triangulate(input.vPoints, options, engine, progress, measured);
	requireMesh(options.file, mesh);

	measured.bChecked = options.check != Check::kNone;
	if (measured.bChecked) {
		progress.start("checking " + std::to_string(mesh.numTets()) + " tetrahedra");
		measured.checkSeconds = timed([&] { measured.bValid = isValid(mesh, options); });
	}
	const bool bBroken = measured.bChecked && !measured.bValid;
	Shape shape;
	if (!bBroken) {
		shape = makeShape(mesh, options, progress, measured);
		measured.writeSeconds = timed([&] {
			writeOutputs(
			    options, {mesh, input, shape, options.stdoutFormat, options.bCompact}, progress);
		});
	}
	progress.stop();
	measured.totalSeconds = secondsSince(start);

	std::FILE* const pReport = isStdoutUsed(options) ? stderr : stdout;
	if (options.bJson)
		print(reportJson(measured, mesh, shape), pReport);
	else if (options.bStatistics || !options.bQuiet)
		print(reportText(measured, mesh, shape, options.bStatistics), pReport);
	if (bBroken)
		throw Failure(kNotValid, options.file + ": the mesh is not valid; no output was written");
	messages.dismiss();
	return kDone;
}

} // namespace

} // namespace app

int main(int argc, char** argv)
{
	app::holdClosedStreams();
	app::Options options;
	if (const auto status = app::parseCommandLine(argc, argv, options)) return *status;
	// Static: its destructor flushes the messages also when the library ends the process.
	static app::LibraryMessages messages(options.bVerbose);
	const auto fail = [](const char* text, app::ExitStatus status) {
		if (status == app::kInternalError || status == app::kNotValid) messages.release();
		messages.dismiss();
		std::fprintf(stderr, "%s%s\n", app::errorPrefix().c_str(), text);
		return status;
	};
	try {
		return app::run(options, messages);
	} catch (const app::Failure& failure) {
		return fail(failure.what(), failure.status);
	} catch (const std::bad_alloc&) {
		return fail("out of memory", app::kInternalError);
	} catch (const std::exception& error) {
		return fail(error.what(), app::kInternalError);
	}
}
