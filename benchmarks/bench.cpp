// SPDX-License-Identifier: MIT
// The benchmark program: one library, one workload, one measurement, one line of JSON. Comparing is
// the business of run_table.py, so that every measurement has a process of its own.
#include "Backend.h"
#include "Meter.h"
#include "workloads.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>

namespace {

#ifdef __clang__
const char* const kCompiler = "clang++ " __clang_version__;
#else
const char* const kCompiler = "g++ " __VERSION__;
#endif

struct Options
{
	std::string library = "ours";
	std::string operation = "build";
	std::string workload = "uniform";
	std::string file;
	std::size_t size = 100000;
	unsigned seed = 1;
	int repeat = 1;
	unsigned threads = 2;
};

/// Everything that an operation needs beforehand, and what is to be measured. Both return a count
/// that a comparison can check: two libraries that agree on it have done the same work.
struct Operation
{
	bool bNeedsMesh;
	std::size_t (*run)(Backend& backend, const Options& options);
};

const std::map<std::string, Operation> kOperations = {
    {"build", {false, [](Backend& b, const Options&) { return b.build(), std::size_t{0}; }}},
    {"arrays", {false, [](Backend& b, const Options&) { return b.buildArrays(), std::size_t{0}; }}},
    {"parallel",
        {false,
            [](Backend& b, const Options& o) {
	            return b.buildInParallel(o.threads), std::size_t{0};
            }}},
    {"single",
        {false, [](Backend& b, const Options&) { return b.insertOneByOne(), std::size_t{0}; }}},
    {"ordered",
        {false, [](Backend& b, const Options&) { return b.insertInOrder(), std::size_t{0}; }}},
    {"locate", {true, [](Backend& b, const Options&) { return b.locate(); }}},
    {"list", {true, [](Backend& b, const Options&) { return b.listTets(); }}},
    {"stars", {true, [](Backend& b, const Options&) { return b.collectStars(); }}},
    {"check", {true, [](Backend& b, const Options&) { return b.check(); }}},
};

template <class Table>
std::vector<std::string> namesOf(const Table& table)
{
	std::vector<std::string> v;
	for (const auto& entry : table) v.push_back(entry.first);
	return v;
}

std::string workloadHelp()
{
	std::string text = "Workloads (or any family of the tests):\n";
	for (const Workload& w : workloads()) {
		text += "  " + w.name + std::string(14 - w.name.size(), ' ') + w.text + "\n";
	}
	return text;
}

void listLibraries()
{
	for (const std::string& name : namesOf(backends())) std::puts(name.c_str());
	throw CLI::Success();
}

void run(const Options& options)
{
	points::Cloud cloud = options.file.empty()
	    ? makeWorkload(options.workload, options.size, options.seed)
	    : readPoints(options.file);
	const std::size_t size = cloud.size();
	const std::string name = options.file.empty()
	    ? options.workload
	    : options.file.substr(options.file.find_last_of('/') + 1);

	const std::unique_ptr<Backend> pBackend = backends().at(options.library)();
	const Operation operation = kOperations.at(options.operation);
	if (options.operation == "locate") {
		pBackend->takeQueries(makeQueries(cloud, size, options.seed));
	}
	if (options.operation == "single") {
		points::Random random(options.seed + 2000000);
		points::shuffle(cloud, random);
	}
	pBackend->takePoints(std::move(cloud));
	if (operation.bNeedsMesh) pBackend->build();

	const long residentBefore = residentKilobytes();
	std::size_t count = 0;
	const auto startOnTheClock = std::chrono::steady_clock::now();
	const CpuTime start = cpuTime();
	for (int i = 0; i < options.repeat; ++i) count = operation.run(*pBackend, options);
	const CpuTime spent = cpuTime() - start;
	const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - startOnTheClock;
	const long peak = peakKilobytes(); // before the tetrahedra are counted

	const double seconds = spent.sum / options.repeat;
	const auto perSecond = [seconds](std::size_t n) {
		return static_cast<double>(n) / std::max(seconds, 1e-9);
	};
	const std::size_t numTets = pBackend->numTets();
	std::printf(
	    "{\"compiler\": \"%s\", \"library\": \"%s\", \"operation\": \"%s\", \"workload\": "
	    "\"%s\", \"n\": %zu, "
	    "\"seed\": %u, \"seconds\": %.6f, \"user\": %.6f, \"system\": %.6f, \"wall\": %.6f, "
	    "\"resident_before_kb\": %ld, \"peak_kb\": %ld, \"vertices\": %zu, \"tets\": %zu, "
	    "\"count\": %zu, \"points_per_s\": %.0f, \"tets_per_s\": %.0f}\n",
	    kCompiler, options.library.c_str(), options.operation.c_str(), name.c_str(), size,
	    options.seed, seconds, spent.user / options.repeat, spent.system / options.repeat,
	    wall.count() / options.repeat, residentBefore, peak, pBackend->numVertices(), numTets,
	    count, perSecond(size), perSecond(numTets));
	std::fflush(stdout);
	// The process ends without destroying the mesh: that time is not measured.
	std::_Exit(0);
}

} // namespace

int main(int argc, char** argv)
{
	Options options;
	CLI::App cli("Measures one library on one workload and prints one line of JSON.", "bench");
	cli.footer(workloadHelp());
	cli.add_option("--library", options.library, "Who works")
	    ->check(CLI::IsMember(namesOf(backends())))
	    ->capture_default_str();
	cli.add_option("--operation", options.operation, "What is measured")
	    ->check(CLI::IsMember(namesOf(kOperations)))
	    ->capture_default_str();
	cli.add_option("--workload", options.workload, "The points")->capture_default_str();
	cli.add_option("--file", options.file, "Read the points from here: x y z in each line");
	cli.add_option("--n", options.size, "The number of points to make")->capture_default_str();
	cli.add_option("--seed", options.seed, "Another seed, other points")->capture_default_str();
	cli.add_option("--threads", options.threads, "Of the operation parallel");
	cli.add_option("--repeat", options.repeat, "Repeat a short operation, report the mean")
	    ->check(CLI::PositiveNumber);
	cli.add_flag_callback("--libraries", listLibraries, "Print the libraries of this build");
	CLI11_PARSE(cli, argc, argv)
	if (!kOperations.at(options.operation).bNeedsMesh) options.repeat = 1;
	try {
		run(options);
	} catch (const std::exception& error) {
		std::fprintf(stderr, "bench: %s\n", error.what());
		return 1;
	}
	return 0;
}
