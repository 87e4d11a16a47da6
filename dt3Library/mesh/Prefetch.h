// SPDX-License-Identifier: MIT
// Prefetches records ahead of their use.
#pragma once

#include "Tet3.h"
#include "ardo_tools/Inline.h"

#include <algorithm>
#include <cstddef>

namespace TULO3D {

/// L1 for what is read next, L2 for what is read after much else.
enum class Cache { kFirst, kSecond };

/// What to prefetch at the i-th of `size`, in a loop with scattered reads.
inline std::size_t placeAhead(std::size_t i, std::size_t size)
{
	return std::min(i + 16, size - 1);
}

template <Cache cache = Cache::kFirst>
TULO3D_ALWAYS_INLINE void prefetch([[maybe_unused]] const void* p)
{
#if defined(__GNUC__)
	__builtin_prefetch(p, 0, cache == Cache::kFirst ? 3 : 2);
	__asm__ volatile(""); // else gcc leaves out calls of functions that do nothing but prefetch
#endif
}

/// The first bytes of a record, which may lie across two cache lines.
template <Cache cache>
TULO3D_ALWAYS_INLINE void prefetchRecord(const void* p, std::size_t numBytes)
{
	prefetch<cache>(p);
	prefetch<cache>(static_cast<const char*>(p) + numBytes - 1);
}

/// The coordinates of a vertex and its link to the mesh.
template <Cache cache = Cache::kFirst>
TULO3D_ALWAYS_INLINE void prefetchVertex(const Point3* p)
{
	prefetchRecord<cache>(p, 3 * sizeof(double) + sizeof(void*));
}

/// Null is passed over.
template <Cache cache = Cache::kFirst>
TULO3D_ALWAYS_INLINE void prefetchTet(const Tet3* pTet)
{
	if (pTet != nullptr) prefetchRecord<cache>(pTet, sizeof(Tet3));
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
