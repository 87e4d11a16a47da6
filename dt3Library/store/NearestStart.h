// SPDX-License-Identifier: MIT
// Where a walk starts, if several vertices around its target are known.
#pragma once

#include "Point3.h"
#include "Tet3.h"
#include "geometry/vectors.h"

namespace TULO3D {

/// A tetrahedron at the vertex that is nearest to a point, among those considered. The first of equally near ones
/// counts.
class NearestStart
{
public:
	/// Begins with `pFirst`, as near as its corner 0.
	NearestStart(const Point3& p, Tet3* pFirst)
	    : target(p), pNearest(pFirst), least(squaredDistance(p, *pFirst->getCorner(0)))
	{
	}

	/// Passes over vertices outside of the mesh, and over tetrahedra that a host has marked: a walk that starts
	/// there is refused.
	void consider(const Point3& vtx)
	{
		const double distance = squaredDistance(target, vtx);
		if (distance >= least) return;
		Tet3* pTet = vtx.getOneTet();
		if (pTet == nullptr || pTet->hasBeenVisited) return;
		least = distance;
		pNearest = pTet;
	}

	Tet3* tet() const { return pNearest; }

private:
	const Point3& target;
	Tet3* pNearest;
	double least;
};

} // namespace TULO3D
