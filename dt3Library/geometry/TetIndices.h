// SPDX-License-Identifier: MIT
// The one index table of the mesh. Every other order of corners, facets and edges follows from it.
#pragma once

#include "tools.h"

#include <array>
#include <cassert>

namespace TULO3D {

// clang-format off
//
//             3              corner i      a vertex; 0 1 2 3 are in positive order
//            /|\             facet i       the triangle without corner i
//           / | \            neighbour i   lies behind facet i, null on the hull
//          /  2  \           edge (i, j)   the one that avoids corners i and j
//         / .   . \       2 is at the back; seen from 3,
//        0---------1         corners 0 1 2 run counter-clockwise

// Facet i, counter-clockwise from outside. Index and row together are an even permutation of 0 1 2 3.
constexpr int kOutside[4][3] = {{1, 2, 3}, {0, 3, 2}, {0, 1, 3}, {0, 2, 1}};
// clang-format on

/// Facet i, counter-clockwise from inside: the corner i itself is on the positive side.
constexpr std::array<int, 3> insideFacet(int i)
{
	return {kOutside[i][0], kOutside[i][2], kOutside[i][1]};
}

/// Edge j of facet i, its two ends, the facet walked clockwise from outside.
constexpr std::array<int, 2> facetEdge(int i, int j)
{
	return {kOutside[i][(3 - j) % 3], kOutside[i][2 - j]};
}

/// The place of corner j in the outside row of facet i; 3 when it is not in it.
constexpr int placeInFacet(int i, int j)
{
	int place = 0;
	while (place < 3 && kOutside[i][place] != j) ++place;
	return place;
}

/// The first end of the edge that avoids corners i and j, facet i walked counter-clockwise.
constexpr int edgeSource(int i, int j)
{
	return kOutside[i][(placeInFacet(i, j) + 1) % 3];
}

/// The other end.
constexpr int edgeTarget(int i, int j)
{
	return kOutside[i][(placeInFacet(i, j) + 2) % 3];
}

/// The cyclic successor of a corner index.
constexpr int nextIndex(int num)
{
	assert(range03(num));
	return (num + 1) & 3;
}

namespace indexLaws {

constexpr bool isEven(int a, int b, int c, int d)
{
	return ((a > b) + (a > c) + (a > d) + (b > c) + (b > d) + (c > d)) % 2 == 0;
}

constexpr bool everyRowIsEven()
{
	for (int i = 0; i < 4; ++i) {
		if (!isEven(i, kOutside[i][0], kOutside[i][1], kOutside[i][2])) return false;
	}
	return true;
}

/// Swapping the two avoided corners reverses an edge.
constexpr bool swappingReversesEveryEdge()
{
	for (int i = 0; i < 4; ++i) {
		for (int j = 0; j < 4; ++j) {
			if (i != j && edgeSource(i, j) != edgeTarget(j, i)) return false;
		}
	}
	return true;
}

static_assert(everyRowIsEven(), "a facet's row would turn its tetrahedron inside out");
static_assert(swappingReversesEveryEdge(), "an edge would have two directions");

} // namespace indexLaws

} // namespace TULO3D
