// SPDX-License-Identifier: MIT
// Runs one golden input and compares the whole resulting mesh with what is expected of it; the
// formats are in golden/README.md. Exit status 0 means equal.
#include "Tulo_3D.h"

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
#include <string>
#include <utility>
#include <vector>

using namespace TULO3D;

namespace {

using Lines = std::vector<std::string>;

const int kFirstLabel = Tet3::runningLabel;

struct Engine
{
	Tulo_3D mesh;
	std::vector<std::pair<int, std::vector<Point3*>>> handles; // by operation
};

template <class... T>
std::string textOf(const T&... values)
{
	std::ostringstream stream;
	(stream << ... << values);
	return stream.str();
}

/// Writes what is asked of an engine, its vertices named by their positions in the listing.
class Writer
{
public:
	Writer(Engine& theEngine, int theOperation, Lines& theLines)
	    : engine(theEngine), operation(theOperation), out(theLines)
	{
		engine.mesh.getVertices(vVertices);
		for (const Point3* p : vVertices) place.emplace(p, place.size());
	}

	void dump(std::size_t number)
	{
		const Tulo_3D& mesh = engine.mesh;
		out.push_back(textOf("dump ", operation, " engine ", number));
		out.push_back(textOf("is3D ", mesh.is3D()));
		out.push_back(textOf("created ", Tet3::runningLabel - kFirstLabel));
		out.push_back(textOf("vertices ", vVertices.size()));
		for (const Point3* p : vVertices) {
			out.push_back(textOf("v ", place[p], bits(p->x()), bits(p->y()), bits(p->z()),
			    p->getOneTet() != nullptr ? " m" : " -"));
		}
		for (const auto& [inserted, handles] : engine.handles) {
			out.push_back(textOf("handles ", inserted));
			for (const Point3* p : handles) out.back() += textOf(" ", place[p]);
		}
		std::vector<Tet3*> vTets;
		mesh.getTetrahedra(vTets);
		sort(vTets);
		out.push_back(textOf("tets ", vTets.size()));
		int numHull = 0;
		for (const Tet3* pTet : vTets) {
			out.push_back(textOf("t", corners(pTet), " "));
			for (int i = 0; i < 4; ++i) {
				const Point3* pOpp = pTet->getOppVtxInOppTet(i, true);
				numHull += pOpp == nullptr;
				out.back() += pOpp == nullptr ? " -" : textOf(" ", place[pOpp]);
			}
		}
		out.push_back(textOf("hull ", numHull));
		out.emplace_back("end");
	}

	void locate(const Point3& p)
	{
		const Tet3* pTet = engine.mesh.locate(p);
		out.push_back(textOf("locate ", operation, pTet == nullptr ? " null" : corners(pTet)));
	}

	void star(const Point3& p)
	{
		std::vector<Tet3*> vTets;
		for (Point3* pVtx : vVertices) {
			if (*pVtx == p) engine.mesh.getTetsAroundVertex(pVtx, vTets);
		}
		sort(vTets);
		out.push_back(textOf("star ", operation, " ", vTets.size()));
		for (const Tet3* pTet : vTets) out.push_back(" " + corners(pTet));
	}

private:
	static std::string bits(double d)
	{
		std::uint64_t pattern = 0;
		std::memcpy(&pattern, &d, sizeof d);
		return textOf(' ', std::hex, std::setw(16), std::setfill('0'), pattern);
	}

	std::array<std::size_t, 4> tuple(const Tet3* t)
	{
		return {place[t->getCorner(0)], place[t->getCorner(1)], place[t->getCorner(2)],
		    place[t->getCorner(3)]};
	}

	std::string corners(const Tet3* pTet)
	{
		const auto [a, b, c, d] = tuple(pTet);
		return textOf(" ", a, " ", b, " ", c, " ", d);
	}

	void sort(std::vector<Tet3*>& vTets)
	{
		std::sort(vTets.begin(), vTets.end(),
		    [this](const Tet3* a, const Tet3* b) { return tuple(a) < tuple(b); });
	}

	Engine& engine;
	int operation;
	Lines& out;
	std::vector<Point3*> vVertices;
	std::map<const Point3*, std::size_t> place;
};

Lines run(std::istream& script)
{
	const auto readPoint = [&script]() {
		double x = 0, y = 0, z = 0;
		script >> x >> y >> z;
		return Point3(x, y, z);
	};
	Lines out;
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
			std::vector<Point3> cloud;
			while (n-- > 0) cloud.push_back(readPoint());
			engine.handles.push_back({operation, {}});
			engine.mesh.insert(cloud, engine.handles.back().second);
		} else if (word == "dump") {
			Writer(engine, operation, out).dump(engines.size() - 1);
		} else if (word == "locate") {
			Writer(engine, operation, out).locate(readPoint());
		} else if (word == "star") {
			Writer(engine, operation, out).star(readPoint());
		} else {
			throw std::runtime_error("no operation " + word);
		}
	}
	return out;
}

/// Equal, or for a `locate` one of the alternatives.
bool matches(const std::string& found, const std::string& expected)
{
	if (expected.rfind("locate ", 0) != 0) return found == expected;
	const std::size_t start = expected.find(' ', 7);
	const std::string wanted = found.substr(std::min(start, found.size())) + " |";
	return found.compare(0, start, expected, 0, start) == 0 &&
	    (" |" + expected.substr(start) + " |").find(" |" + wanted) != std::string::npos;
}

} // namespace

int main(int argc, char** argv)
{
	const std::string name = argc == 2 ? argv[1] : "";
	std::ifstream script(name);
	std::ifstream expectation(name.substr(0, name.rfind('.')) + ".expected");
	if (!script || !expectation) {
		std::cerr << "usage: GoldenRunner NAME.txt, with NAME.expected beside it\n";
		return 2;
	}
	Lines expected;
	for (std::string line; std::getline(expectation, line);) expected.push_back(line);
	const Lines found = run(script);
	for (std::size_t i = 0; i < std::max(found.size(), expected.size()); ++i) {
		const std::string f = i < found.size() ? found[i] : "(nothing)",
		                  e = i < expected.size() ? expected[i] : "(nothing)";
		if (matches(f, e)) continue;
		std::cerr << "first difference in line " << i + 1 << "\n  expected " << e << "\n  found    "
		          << f << "\n";
		return 1;
	}
	std::cout << "equal: " << expected.size() << " lines" << std::endl;
	return expected.empty() ? 1 : 0;
}
