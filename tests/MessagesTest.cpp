// SPDX-License-Identifier: MIT
// The printed texts, each in one place, and the stops that end the process.
#include "Dt3.h"
#include "support.h"
#include "tools.h"

#include <functional>
#include <iterator>
#include <new>
#include <thread>

using namespace TULO3D;
using points::Cloud;
using support::loudly;

namespace {

/// What the actions below act on: an engine with one tetrahedron, a flat one, and odds and ends.
struct Stage
{
	Stage()
	{
		support::printedBy([this] { engine.insert(simplex, handles); });
		pVtx = handles[0];
		pTet = pVtx->getOneTet();
		handles.clear();
	}
	Cloud simplex{Point3(0, 0, 0), Point3(1, 0, 0), Point3(0, 1, 0), Point3(0, 0, 1)}, none;
	Dt3 engine{nullptr}, flat{nullptr};
	std::vector<Point3*> handles;
	std::vector<Tet3*> tets;
	Point3 alien{9, 9, 9.5};
	Point3* pVtx;
	Point3* pAlien = &alien;
	Tet3* pTet;
};

struct Line
{
	std::string text;
	std::function<void(Stage&)> action;
};

std::string banner(const std::string& text)
{
	const std::string rule(36 + text.size(), '*');
	return "\n\n" + rule + "\n" + rule + "\n                " + text + "\n" + rule + "\n" + rule +
	    "\n";
}

const std::string kNullVector = "warning: normalize(const Vector3& other), Null length vector!\n";

// clang-format off
const Line kPrinted[] = {
	{"\n      f, ERROR: \n\n", [](Stage&) { printError("f", ""); }},
	{"\n      Dt3::f(), ERROR: text\n\n", [](Stage&) { printError("Dt3::f()", "text"); }},
	{"\n      f, WARNING: text\n\n", [](Stage&) { printWarning("f", "text"); }},
	{banner(""), [](Stage&) { printErrorBanner(""); }},
	{banner("checkValidity: ERROR ERROR ERROR"), [](Stage&) { printErrorBanner("checkValidity: ERROR ERROR ERROR"); }},
	{"numPoints=0\n", [](Stage& s) { s.engine.insert(s.none, s.handles); }},
	{"numPoints=4\n", [](Stage& s) { s.engine.insert(s.simplex, s.handles); }},
	{"\nDt3::insert(vector,vector) has been called\nnumPoints=4\n", [](Stage& s) { s.engine.setVerbosity(true); s.engine.insert(s.simplex, s.handles); }},
	{"\n      Dt3::insert(), WARNING: vUserHandles is not empty as it should be\n\nnumPoints=0\n", [](Stage& s) { s.handles = {s.pVtx}; s.engine.insert(s.none, s.handles); }},
	{"Attention: triangulate has got an empty vector\n", [](Stage& s) { s.engine.triangulate(s.handles, s.pTet); }},
	{"Dt3::getAllTetrahedra(), oneTet==NULL\n", [](Stage& s) { s.flat.getAllTetrahedra(s.tets); }},
	{"\n      Dt3::getTetsAroundVertex(), ERROR: pVtx does not belong to the triangulation\n\n", [](Stage& s) { Dt3::getTetsAroundVertex(&s.alien, s.tets); }},
	{"\n      insertVertex(), ERROR: Proxy not found\n\n", [](Stage& s) { s.engine.resolveDuplicate(&s.pAlien, s.pTet, -2); }},
	{"Warning: vDoomedTets() without input tets, returning NULL\n", [](Stage& s) { s.engine.retriangulateDoomedTets(s.tets, s.pVtx); }},
	{"a: positive\n", [](Stage&) { ArdoTest3::printOrientation(ORIENTATION3_POSITIVE, "a"); }},
	{"b: negative\n", [](Stage&) { ArdoTest3::printOrientation(ORIENTATION3_NEGATIVE, "b"); }},
	{"c: coplanar\n", [](Stage&) { ArdoTest3::printOrientation(ORIENTATION3_COPLANAR, "c"); }},
	{"d: ", [](Stage&) { ArdoTest3::printOrientation(static_cast<Orientation3>(3), "d"); }},
	{"Tet default constructor (is actually not called)\nCCTOR of Tet3\n", [](Stage&) { const Tet3 tet; const Tet3 copy(tet); }},
	{kNullVector, [](Stage& s) { getNormalVector(s.simplex[0], s.simplex[1], Point3(2, 0, 0)); }},
	{kNullVector + kNullVector, [](Stage& s) { getNormalVector(s.alien, s.alien, s.simplex[0]); }},
	{"Point3: 9,9,9.5\n", [](Stage& s) { s.alien.debug(); }},
	{"Bbox3: (0,0,0) -> (1,1,1)\n", [](Stage& s) { Bbox3(s.simplex).debug(); }},
};

const Line kConditions[] = {
	{"vTet.empty()", [](Stage& s) { s.tets.push_back(s.pTet); s.engine.getAllTetrahedra(s.tets); }},
	{"locateResult==-2", [](Stage& s) { s.engine.resolveDuplicate(&s.pVtx, s.pTet, -1); }},
	{"opp3ICI>-1", [](Stage& s) { s.engine.insertAtHull(&s.pVtx, s.pTet, -1); }},
	{"pCurTet!=0", [](Stage& s) { s.engine.insertAtHull(&s.pVtx, nullptr, 0); }},
	{"numStoredTCS==0", [](Stage& s) { s.engine.numStoredTCS = 1; s.engine.insertVertex(&s.pVtx, s.pTet); }},
	{"vHashCollisions.empty()", [](Stage& s) { s.engine.vHashCollisions.push_back(nullptr); s.engine.insertVertex(&s.pVtx, s.pTet); }},
	{"!pLastTet->hasBeenVisited", [](Stage& s) { s.pTet->hasBeenVisited = true; s.engine.insert(s.alien); }},
	{"!pCHTet->hasBeenVisited", [](Stage& s) { s.pTet->hasBeenVisited = true; s.engine.createConeTets({s.pTet}, &s.alien); }},
	{"pDoomedTet->hasBeenVisited", [](Stage& s) { s.engine.retriangulateDoomedTets({s.pTet}, &s.alien); }},
	{"no exception has cut an earlier insertion short", [](Stage& s) { s.engine.bUnfinished = true; s.engine.is3D(); }},
	{"false", [](Stage&) { ArdoTest3::getOrientationName(static_cast<Orientation3>(3)); }},
};

/// A place where the process would end: what the stop handler is told, and how the printed text goes on.
struct Stop
{
	StopReason reason;
	std::string text;
	std::function<void(Stage&)> action;
	std::string rest; // a regular expression
};

struct Huge
{
	char bytes[1 << 20];
};

Tet3* const pNull = nullptr;
using Why = StopReason;
const Stop kStops[] = {
	{Why::kOutOfMemory, "SimplePool::alloc(..), ERROR: Out of memory, sorry", [](Stage&) { SimplePool<Huge>().init(2147483647, 1, 1); }, ""},
	{Why::kFileNotOpen, "no/such/folder/a.list not open", [](Stage& s) { s.engine.show("no/such/folder/a.list", nullptr); }, ""},
	{Why::kWrongUse, "SimplePool::init(..), ERROR: This pool is already initialized", [](Stage& s) { s.engine.tetPool.init(4, -1, 10); }, ""},
	{Why::kWrongUse, "HC3::HC3(..): invalid bitlength", [](Stage&) { HC3 store(28); }, ""},
	{Why::kWrongUse, "HC3::HC3(..): invalid bitlength", [](Stage&) { HC3 store(33); }, ""},
	{Why::kWrongUse, "HC3::HC3(..): invalid bitlength", [](Stage&) { HC3 store(36); }, ""},
	{Why::kWrongUse, "Tet3::getOppVtxInOppTet, ERROR: no neighbor tet", [](Stage& s) { s.pTet->getOppVtxInOppTet(1, false); }, ""},
	{Why::kBrokenMesh, "Tet3::getIntraTetIndex went wrong", [](Stage& s) { s.pTet->getIntraTetIndex(s.pTet); }, ": Tetrahedron .*(\n.*)*, this is Tetrahedron"},
	{Why::kBrokenMesh, "Tet3::haveCommonFacet() ERROR", [](Stage& s) { Tet3::haveCommonFacet(s.pTet, 0, s.pTet, 1); }, "\n(.*\n)*\\.\\.\\.with index 0\n1,2,3\n(.*\n)*\\.\\.\\.with index 1\n0,3,2"},
	{Why::kBrokenMesh, "goToHell, ERROR:  reason: because", [](Stage&) { goToHell("because"); }, ""},
	{Why::kBrokenMesh, "goToHell, ERROR:  reason: locateConflictTet", [](Stage& s) { Tet3* pStart = nullptr; s.engine.locateConflictTet(s.pVtx, pStart); }, ""},
	{Why::kBrokenMesh, "goToHell, ERROR:  reason: pLastTet==NULL in Dt3::triangulate", [](Stage& s) { s.engine.triangulate(s.handles, nullptr); }, ""},
	{Why::kBrokenMesh, "goToHell, ERROR:  reason: getOrientation3, pC==NULL", [](Stage& s) { s.engine.predicates.getOrientation3(pNull, 0, s.pVtx); }, ""},
};
// clang-format on

} // namespace

TEST(Messages, AreLiteralAndGoWhereTheirThreadHasChosen)
{
	for (const Line& line : kPrinted) {
		std::ostringstream chosen;
		const auto printedWith = [&line](std::ostream* pStream) {
			Stage stage;
			return support::printedBy([&] {
				const support::MessagesTo to(pStream);
				line.action(stage);
			});
		};
		EXPECT_EQ(printedWith(&std::cout), line.text);
		EXPECT_EQ(printedWith(&chosen), "") << line.text;
		EXPECT_EQ(chosen.str(), line.text);
		EXPECT_EQ(printedWith(nullptr), "") << line.text;
	}
	for (const Line& line : kConditions) {
		Stage stage;
		EXPECT_EQ(support::conditionFailedBy([&] { line.action(stage); }), line.text);
	}
	EXPECT_EQ(std::string(kInfoLevel) + kInfoStart, ", INFO: INFO: ") << "reserved, never printed";
	const support::MessagesTo silence(nullptr);
	std::ostream* pElsewhere = nullptr;
	std::thread([&] { pElsewhere = setMessageStream(nullptr); }).join();
	EXPECT_EQ(pElsewhere, &std::cout);
}

TEST(Messages, OfATriangleGoToStandardErrorUnlessAStreamIsChosen)
{
	Point3 p;
	const Triangle3 triangle(&p, &p, &p);
	const auto errorsWith = [&](std::ostream* pStream) {
		const std::ostringstream errors;
		std::streambuf* const pOld = std::cerr.rdbuf(errors.rdbuf());
		const support::MessagesTo to(pStream);
		EXPECT_EQ(support::printedBy([&] { triangle.getIntraTriangleIndex(nullptr); }), "");
		std::cerr.rdbuf(pOld);
		return errors.str();
	};
	const std::string line = "Triangle3::getIntraTriangleIndex(): invalid (p)\n";
	std::ostringstream chosen;
	EXPECT_EQ(errorsWith(&std::cout), line);
	EXPECT_EQ(errorsWith(nullptr), "");
	EXPECT_EQ(errorsWith(&chosen), "");
	EXPECT_EQ(chosen.str(), line);
}

TEST(MessagesDeathTest, DrawingsOfAProcessAreNumberedFromZero)
{
	testing::FLAGS_gtest_death_test_style = "threadsafe"; // a process that has done nothing before
	const auto printPrefixes = [] {
		std::cerr << nextDebugFilePrefix() << nextDebugFilePrefix();
		for (int i = 0; i < 99998; ++i) nextDebugFilePrefix();
		std::cerr << nextDebugFilePrefix();
		std::exit(0);
	};
	EXPECT_EXIT(printPrefixes(), testing::ExitedWithCode(0), "00000_00001_100000_$");
}

TEST(Messages, AFailedConditionNamesItselfAndItsPlaceAndThrows)
{
	const std::string place = "MessagesTest.cpp:" + std::to_string(__LINE__ + 1) + "\nthrew";
	const std::string text = support::printedBy([] { CONDITION_CHECK(1 + 1==3); });
	EXPECT_EQ(text.rfind("\n      Tulo, , ERROR: Condition [ 1 + 1==3 failed ]\n\n      ", 0), 0U)
	    << text;
	EXPECT_NE(text.find(place), std::string::npos) << text;
	const std::string what =
	    "\n  TULO EXCEPTION due to a bug _or_ wrong usage of Tulo. If you think it is a \n  bug "
	    "then please report this incident and it will be fixed quickly: ";
	EXPECT_EQ(std::string(TuloException().what()).rfind(what, 0), 0U);
}

TEST(Messages, AStopHandlerIsToldWhyAndMayThrow)
{
	static StopReason reason;
	static std::string text;
	const StopHandler handler = [](StopReason why, const char* pText) {
		reason = why;
		text = pText;
		throw std::bad_alloc();
	};
	EXPECT_EQ(setStopHandler(handler), nullptr);
	for (const Stop& stop : kStops) {
		text.clear();
		Stage stage;
		const std::string printed = support::printedBy(
		    [&] { EXPECT_THROW(stop.action(stage), std::bad_alloc) << stop.text; });
		EXPECT_TRUE(text == stop.text && reason == stop.reason) << text;
		EXPECT_NE(printed.find(stop.text), std::string::npos) << printed;
	}
	StopHandler elsewhere = handler;
	std::thread([&] { elsewhere = setStopHandler(handler); }).join();
	EXPECT_EQ(elsewhere, nullptr) << "a thread's choice is its own";
	EXPECT_EQ(setStopHandler(nullptr), handler);
}

TEST(MessagesDeathTest, StopsEndTheProcessEvenWhenAHandlerReturns)
{
	const auto asRegex = [](const Stop& stop) {
		std::string expression;
		for (const char c : stop.text)
			expression += (c == '(' || c == ')' ? "\\" : "") + std::string(1, c);
		expression += stop.rest;
#ifdef GTEST_USES_SIMPLE_RE // on Windows, and without groups
		return expression.substr(0, expression.find_first_of(".\n"));
#else
		return expression;
#endif
	};
	for (const Stop& stop : kStops) {
		Stage stage;
		const bool bCrash = stop.text.rfind("goToHell", 0) == 0;
		const auto ends = [bCrash](int status) {
			return bCrash ? status != 0 : testing::ExitedWithCode(1)(status);
		};
		EXPECT_EXIT(loudly([&] { stop.action(stage); }), ends, asRegex(stop));
		if (&stop != std::begin(kStops) && &stop + 1 != std::end(kStops)) continue;
		const auto askFirst = [&] {
			setStopHandler([](StopReason, const char*) { std::cerr << "asked" << std::endl; });
			stop.action(stage);
		};
		EXPECT_EXIT(loudly(askFirst), ends, "asked");
	}
}
