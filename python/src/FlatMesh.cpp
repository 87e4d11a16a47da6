// SPDX-License-Identifier: MIT
// The walk to a point, on arrays.
#include "FlatMesh.h"

#include "predicates/Bounds.h"

#include <cmath>
#include <stdexcept>

namespace binding {

ExactTests::ExactTests(const FlatMesh& theMesh) : mesh(theMesh)
{
	for (int i = 0; i < 4; ++i) tet.setCorner(i, &corner[static_cast<std::size_t>(i)]);
}

void ExactTests::setTet(std::int32_t t)
{
	const std::int32_t* pCorner = mesh.corners(t);
	for (std::size_t i = 0; i < 4; ++i) {
		const double* p = mesh.point(pCorner[i]);
		corner[i].exchange(p[0], p[1], p[2]);
	}
}

std::int32_t Walker::locate(const double* p)
{
	// The mesh reaches no farther than coordinates may; false for what is not a number.
	for (int axis = 0; axis < 3; ++axis) {
		if (!(std::abs(p[axis]) <= TULO3D::kMaxCoordinate)) return -1;
	}
	exact.setQuery(p);
	int from = 4; // the facet through which the walk has come in: the point is not beyond it
	for (std::size_t numSteps = 0; numSteps <= mesh.numTets; ++numSteps) {
		exact.setTet(last);
		int out = 4;
		for (int step = 1; step <= 4 && out == 4; ++step) {
			const int k = (from + step) & 3;
			if (k != from && exact.isBeyond(k)) out = k;
		}
		if (out == 4) return last;
		const std::int32_t next = mesh.neighbors(last)[out];
		if (next < 0) return -1;
		from = mesh.facetTowards(next, last);
		last = next;
	}
	throw std::invalid_argument("the arrays do not hold a Delaunay mesh");
}

} // namespace binding
