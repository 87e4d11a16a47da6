// SPDX-License-Identifier: MIT
// Asks the memory for records before their turn comes.
#pragma once

#include "Tet3.h"

namespace TULO3D {

/// Into the second cache: more is under way at a time than the first one holds. Not in a function
/// that is compiled for another CPU than the rest; gcc 12 leaves it out there.
inline void prefetch([[maybe_unused]] const void* p)
{
#if defined(__GNUC__)
	__builtin_prefetch(p, 0, 2);
#endif
}

/// A record may lie across two cache lines; null is passed over.
inline void prefetchTet(const Tet3* pTet)
{
	if (pTet == nullptr) return;
	prefetch(pTet);
	prefetch(reinterpret_cast<const char*>(pTet) + sizeof(Tet3) - 1);
}

inline void prefetchNeighbours(const Tet3& tet)
{
	for (int i = 0; i < 4; ++i) prefetchTet(tet.getOppTet(i));
}

inline void prefetchCorners(const Tet3& tet)
{
	for (int i = 0; i < 4; ++i) prefetch(tet.getCorner(i));
}

} // namespace TULO3D
