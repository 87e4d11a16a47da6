// SPDX-License-Identifier: MIT
// Prefetches tetrahedra and vertices ahead of their use.
#pragma once

#include "Tet3.h"
#include "ardo_tools/prefetch.h"

namespace TULO3D {

/// The coordinates of a vertex and its link to the mesh.
template <Cache cache = Cache::kFirst>
TULO3D_ALWAYS_INLINE void prefetchVertex(const Point3* p)
{
	prefetchBytes<cache>(p, 3 * sizeof(double) + sizeof(void*));
}

/// Null is passed over.
template <Cache cache = Cache::kFirst>
TULO3D_ALWAYS_INLINE void prefetchTet(const Tet3* pTet)
{
	if (pTet != nullptr) prefetchObject<cache>(pTet);
}

template <Cache cache = Cache::kFirst>
TULO3D_ALWAYS_INLINE void prefetchNeighbours(const Tet3& tet)
{
	for (int i = 0; i < 4; ++i) prefetchTet<cache>(tet.getOppTet(i));
}

template <Cache cache = Cache::kFirst>
TULO3D_ALWAYS_INLINE void prefetchCorners(const Tet3& tet)
{
	for (int i = 0; i < 4; ++i) prefetchVertex<cache>(tet.getCorner(i));
}

} // namespace TULO3D
