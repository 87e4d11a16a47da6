// SPDX-License-Identifier: MIT
// Runs one golden input and compares the whole resulting mesh with what is expected of it; the
// formats are in golden/README.md. Exit status 0 means equal.
//
// With the name of a family of points and a size instead: prints a hash of its mesh, written down in
// the same way.
#include "Tulo_3D.h"
#include "points.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>

using namespace TULO3D;

namespace {

const int kFirstLabel = Tet3::runningLabel;

struct Engine
{
	Tulo_3D mesh;
	std::vector<std::pair<int, std::vector<Point3*>>> handles; // by operation
};

/// Writes what is asked of an engine, its vertices named by their positions in the listing.
struct Writer
{
	Writer(Engine& theEngine, std::ostream& stream) : engine(theEngine), out(stream)
	{
		engine.mesh.getVertices(vVertices);
		for (const Point3* p : vVertices) place.emplace(p, place.size());
	}

	void dump()
	{
		out << "\nis3D " << engine.mesh.is3D() << "\ncreated " << Tet3::runningLabel - kFirstLabel
		    << "\nvertices " << vVertices.size();
		for (const Point3* p : vVertices) {
			out << "\nv " << place[p];
			for (const double d : {p->x(), p->y(), p->z()}) {
				std::uint64_t bits = 0;
				std::memcpy(&bits, &d, sizeof d);
				out << ' ' << std::hex << std::setw(16) << std::setfill('0') << bits << std::dec;
			}
			out << (p->getOneTet() != nullptr ? " m" : " -");
		}
		for (const auto& [operation, handles] : engine.handles) {
			out << "\nhandles " << operation;
			for (const Point3* p : handles) out << ' ' << place[p];
		}
		std::vector<Tet3*> vTets;
		engine.mesh.getTetrahedra(vTets);
		out << "\ntets " << vTets.size();
		int numHull = 0;
		for (const Tet3* pTet : sorted(vTets)) {
			corners(pTet, "\nt ");
			out << ' ';
			for (int i = 0; i < 4; ++i) {
				const Point3* pOpp = pTet->getOppVtxInOppTet(i, true);
				numHull += pOpp == nullptr;
				out << ' ' << (pOpp == nullptr ? "-" : std::to_string(place[pOpp]));
			}
		}
		out << "\nhull " << numHull << "\nend\n";
	}

	void locate(const Point3& p)
	{
		const Tet3* pTet = engine.mesh.locate(p);
		pTet == nullptr ? void(out << " null") : corners(pTet, " ");
		out << '\n';
	}

	void star(const Point3& p)
	{
		std::vector<Tet3*> vTets;
		for (Point3* pVtx : vVertices) {
			if (*pVtx == p) engine.mesh.getTetsAroundVertex(pVtx, vTets);
		}
		out << ' ' << vTets.size();
		for (const Tet3* pTet : sorted(vTets)) corners(pTet, "\n  ");
		out << '\n';
	}

	std::array<std::size_t, 4> tuple(const Tet3* t)
	{
		return {place[t->getCorner(0)], place[t->getCorner(1)], place[t->getCorner(2)],
		    place[t->getCorner(3)]};
	}

	void corners(const Tet3* pTet, const char* before)
	{
		const auto [a, b, c, d] = tuple(pTet);
		out << before << a << ' ' << b << ' ' << c << ' ' << d;
	}

	std::vector<Tet3*> sorted(std::vector<Tet3*> vTets)
	{
		std::sort(
		    vTets.begin(), vTets.end(), [this](auto a, auto b) { return tuple(a) < tuple(b); });
		return vTets;
	}

	Engine& engine;
	std::ostream& out;
	std::vector<Point3*> vVertices;
	std::map<const Point3*, std::size_t> place;
};

void run(std::istream& script, std::ostream& out)
{
	const auto readPoint = [&script]() {
		double x = 0, y = 0, z = 0;
		script >> x >> y >> z;
		return Point3(x, y, z);
	};
	std::vector<std::unique_ptr<Engine>> engines;
	engines.push_back(std::make_unique<Engine>());
	std::string word;
	for (int operation = 1; script >> word; ++operation) {
		Engine& engine = *engines.back();
		if (word == "new") {
			engines.push_back(std::make_unique<Engine>());
		} else if (word == "insert") {
			Point3 p = readPoint();
			engine.handles.push_back({operation, {engine.mesh.insert(p)}});
		} else if (word == "batch") {
			int n = 0;
			script >> n;
			points::Cloud cloud;
			while (n-- > 0) cloud.push_back(readPoint());
			engine.handles.push_back({operation, {}});
			engine.mesh.insert(cloud, engine.handles.back().second);
		} else {
			Writer writer(engine, out << word << ' ' << operation);
			if (word == "dump")
				out << " engine " << engines.size() - 1, writer.dump();
			else if (word == "locate")
				writer.locate(readPoint());
			else if (word == "star")
				writer.star(readPoint());
			else
				throw std::runtime_error("no operation " + word);
		}
	}
}

/// FNV-1a, 64 bits.
std::uint64_t hashOf(const std::string& text)
{
	std::uint64_t hash = 0xcbf29ce484222325;
	for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
	return hash;
}

} // namespace

int main(int argc, char** argv)
{
	std::stringstream found;
	if (argc == 3) {
		Engine engine;
		points::Cloud cloud = points::make(argv[1], std::atoi(argv[2]));
		const points::Cloud tail(cloud.end() - 20, cloud.end());
		cloud.resize(cloud.size() - 20);
		engine.handles.resize(1);
		engine.mesh.insert(cloud, engine.handles[0].second);
		for (Point3 p : tail) engine.handles[0].second.push_back(engine.mesh.insert(p));
		Writer(engine, found).dump();
		std::cout << std::hex << hashOf(found.str()) << std::endl;
		return 0;
	}
	const std::string name = argc == 2 ? argv[1] : "";
	std::ifstream script(name), expectation(name.substr(0, name.rfind('.')) + ".expected");
	if (!script || !expectation) {
		std::cerr << "usage: GoldenRunner NAME.txt, with NAME.expected beside it\n";
		return 2;
	}
	run(script, found);
	int number = 0;
	for (std::string f, e;; ++number) {
		const bool bFound = !std::getline(found, f).fail();
		const bool bExpected = !std::getline(expectation, e).fail();
		if (!bFound && !bExpected) break;
		if (bFound && bExpected && f == e) continue;
		std::cerr << "line " << number + 1 << "\n  expected " << e << "\n  found    " << f << "\n";
		return 1;
	}
	std::cout << "equal: " << number << " lines" << std::endl;
	return number == 0;
}
