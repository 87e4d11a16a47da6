// SPDX-License-Identifier: MIT
// Disjoint sets of tetrahedra, as components grow together.
#pragma once

#include "Mesh.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace TULO3D::shapes {

/// Sets with the number of their first tetrahedron as their name; found by path halving.
class Components
{
public:
	explicit Components(std::size_t size) : vParent(size)
	{
		std::iota(vParent.begin(), vParent.end(), 0);
	}
	/// The first tetrahedron of the set of `i`.
	Index find(Index i)
	{
		while (vParent[at(i)] != i) i = vParent[at(i)] = vParent[at(vParent[at(i)])];
		return i;
	}
	/// True when they were two.
	bool join(Index i, Index j)
	{
		const Index a = find(i), b = find(j);
		vParent[at(std::max(a, b))] = std::min(a, b);
		return a != b;
	}

private:
	std::vector<Index> vParent;
};

} // namespace TULO3D::shapes
