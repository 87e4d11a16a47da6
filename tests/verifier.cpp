// SPDX-License-Identifier: MIT
// The whole-mesh verifier.
//
// Positive tetrahedra with mutual links, an empty sphere across every facet and a closed convex hull
// make the mesh Delaunay as a whole; the count V - E + F - T = 1 excludes a mesh that covers space twice.
#include "verifier.h"

#include "oracle.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace verifier {

namespace {

using TULO3D::Tet3;
using Edge = std::pair<const Point3*, const Point3*>;

/// A hull facet at one of its edges: the facet's other corner, and the corner behind the facet.
struct Wing
{
	Edge edge; // counter-clockwise from outside
	const Point3* pOther;
	const Point3* pBehind;
};

// Facet i from outside, as the public header's picture has it.
constexpr int kFacet[4][3] = {{1, 2, 3}, {0, 3, 2}, {0, 1, 3}, {0, 2, 1}};

template <class T>
bool isIn(const std::vector<T*>& sorted, const T* p)
{
	return std::binary_search(sorted.begin(), sorted.end(), p, std::less<const T*>());
}

class Verifier
{
public:
	explicit Verifier(const TULO3D::Tulo_3D& mesh)
	{
		mesh.getVertices(vVertices);
		if (mesh.is3D()) mesh.getTetrahedra(vTets);
		const auto misplaced =
		    std::adjacent_find(vTets.begin(), vTets.end(), std::greater_equal<const Tet3*>());
		expect(misplaced == vTets.end(), "tetrahedra not in ascending address order, or twice");
		std::sort(vTets.begin(), vTets.end(), std::less<>());
		std::sort(vVertices.begin(), vVertices.end(), std::less<>());
	}

	void checkStore(const points::Cloud& input, const std::vector<Point3*>& handles)
	{
		expect(handles.size() == input.size(), "not one handle for each point");
		for (std::size_t i = 0; i < std::min(handles.size(), input.size()); ++i) {
			if (!expect(isIn(vVertices, handles[i]), "a handle that is no listed vertex")) return;
			expect(*handles[i] == input[i], "a handle with other coordinates");
		}
		expect(numDistinct(vVertices) == vVertices.size(), "two vertices with equal coordinates");
		expect(numDistinct(handles) == vVertices.size(), "not one vertex for each distinct point");
	}

	void checkFlat()
	{
		if (vVertices.empty()) return;
		const Point3 &a = *vVertices[0], *pB = &a, *pC = nullptr;
		// Off the line of a and b when the three span a plane, in which some of these four points is not.
		const Point3 apexes[] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
		const auto isOff = [&](const Point3& p) {
			return std::any_of(std::begin(apexes), std::end(apexes),
			    [&](const Point3& apex) { return oracle::orientation(a, *pB, p, apex) != 0; });
		};
		for (const Point3* p : vVertices) {
			if (*pB == a) pB = p;
			if (pC == nullptr && isOff(*p)) pC = p;
		}
		for (const Point3* p : vVertices) {
			expect(p->getOneTet() == nullptr, "a tetrahedron in a flat mesh");
			expect(pC == nullptr || oracle::quickOrientation(a, *pB, *pC, *p) == 0,
			    "still flat although the points span space");
		}
	}

	void checkTets()
	{
		for (const Tet3* pTet : vTets) {
			expect(!pTet->hasBeenVisited, "a tetrahedron left visited");
			expect(pTet->getCustomIndex() == -1, "a tetrahedron with a custom index");
			const Point3* c[4] = {
			    pTet->getCorner(0), pTet->getCorner(1), pTet->getCorner(2), pTet->getCorner(3)};
			const bool bListed =
			    std::all_of(c, c + 4, [this](const Point3* p) { return isIn(vVertices, p); });
			if (!expect(bListed, "a corner that is no listed vertex")) continue;
			expect(oracle::quickOrientation(*c[0], *c[1], *c[2], *c[3]) > 0,
			    "a tetrahedron not positive");
			for (int i = 0; i < 4; ++i) {
				for (int j = 0; j < i; ++j)
					vEdges.push_back(std::minmax(c[i], c[j], std::less<>()));
				checkFacet(pTet, i, c);
			}
		}
	}

	void checkHull()
	{
		const auto before = [](const Wing& v, const Wing& w) { return v.edge < w.edge; };
		std::sort(vHull.begin(), vHull.end(), before);
		for (const Wing& wing : vHull) {
			const auto [pA, pB] = wing.edge;
			const auto here = std::equal_range(vHull.begin(), vHull.end(), wing, before);
			const auto there = std::equal_range(
			    vHull.begin(), vHull.end(), Wing{{pB, pA}, nullptr, nullptr}, before);
			const bool bTwo = here.second - here.first == 1 && there.second - there.first == 1;
			if (!expect(bTwo, "a hull edge not between exactly two hull facets")) continue;
			const Point3 &a = *pA, &b = *pB, &far = *there.first->pOther;
			const int fold = oracle::quickOrientation(a, b, *wing.pOther, far);
			expect(fold <= 0, "a fold of the hull that is not convex");
			const bool bApart = fold < 0 ||
			    oracle::quickOrientation(a, b, *wing.pBehind, *wing.pOther) *
			            oracle::quickOrientation(a, b, *wing.pBehind, far) <
			        0;
			expect(bApart, "two hull facets over each other");
		}
	}

	void checkCounts(const std::set<const Point3*>& leftOut)
	{
		std::size_t numVertices = 0;
		for (const Point3* p : vVertices) {
			const Tet3* pTet = p->getOneTet();
			numVertices += pTet != nullptr;
			expect(pTet != nullptr || leftOut.count(p) != 0, "a vertex lost: not in the mesh");
			expect(pTet == nullptr || (isIn(vTets, pTet) && pTet->hasVertex(p)),
			    "a vertex whose tetrahedron is not its own");
		}
		std::sort(vEdges.begin(), vEdges.end());
		const auto numEdges =
		    static_cast<std::size_t>(std::unique(vEdges.begin(), vEdges.end()) - vEdges.begin());
		const std::size_t numFacets = (4 * vTets.size() + vHull.size() / 3) / 2;
		expect(numVertices + numFacets == numEdges + vTets.size() + 1, "V - E + F - T is not 1");
	}

	bool expect(bool bRight, const char* violation)
	{
		if (!bRight && std::find(found.begin(), found.end(), violation) == found.end())
			found.push_back(violation);
		return bRight;
	}

	std::vector<std::string> found;

private:
	void checkFacet(const Tet3* pTet, int i, const Point3* const* c)
	{
		const int* row = kFacet[i];
		const Tet3* pNeigh = pTet->getOppTet(i);
		if (pNeigh == nullptr) {
			for (int k = 0; k < 3; ++k)
				vHull.push_back({{c[row[k]], c[row[(k + 1) % 3]]}, c[row[(k + 2) % 3]], c[i]});
			return;
		}
		if (!expect(isIn(vTets, pNeigh), "a link to a tetrahedron that is not in the mesh")) return;
		int numBack = 0, back = 0;
		for (int j = 0; j < 4; ++j) {
			// Two tetrahedra may share one facet only, so the right link back names that facet too.
			if (pNeigh->getOppTet(j) == pTet && ++numBack == 1) back = j;
		}
		expect(numBack == 1, "a link that does not come back exactly once");
		const Point3* pBeyond = pNeigh->getCorner(back);
		const bool bCommon = std::all_of(
		    row, row + 3, [&](int k) { return pNeigh->hasVertex(c[k]) && pBeyond != c[k]; });
		expect(bCommon, "neighbours without a common facet");
		if (pNeigh < pTet) return; // the sphere test is the same from both sides
		expect(oracle::quickInSphere(*c[0], *c[1], *c[2], *c[3], *pBeyond) <= 0,
		    "a vertex inside a neighbour's sphere");
	}

	/// The number of points with distinct coordinates.
	static std::size_t numDistinct(std::vector<Point3*> v)
	{
		std::sort(v.begin(), v.end(), [](auto p, auto q) { return *p < *q; });
		const auto equal = [](auto p, auto q) { return *p == *q; };
		return static_cast<std::size_t>(std::unique(v.begin(), v.end(), equal) - v.begin());
	}

	std::vector<Point3*> vVertices;
	std::vector<Tet3*> vTets;
	std::vector<Edge> vEdges;
	std::vector<Wing> vHull;
};

} // namespace

std::vector<std::string> violations(const TULO3D::Tulo_3D& mesh, const points::Cloud& input,
    const std::vector<Point3*>& handles, const std::set<const Point3*>& leftOut)
{
	Verifier verifier(mesh);
	verifier.checkStore(input, handles);
	if (!mesh.is3D()) {
		verifier.checkFlat();
	} else {
		verifier.checkTets();
		verifier.checkHull();
		verifier.checkCounts(leftOut);
	}
	return verifier.found;
}

} // namespace verifier
