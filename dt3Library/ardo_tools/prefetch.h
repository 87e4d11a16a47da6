// SPDX-License-Identifier: MIT
// Prefetching: loads that are begun before their turn, so that their latencies overlap.
#pragma once

#include "ardo_tools/Inline.h"

#include <algorithm>
#include <cstddef>

namespace TULO3D {

/// L1 for what is read next, L2 for what is read after much else.
enum class Cache { kFirst, kSecond };

/// The index to prefetch while a loop of `size` steps with scattered reads is at index i.
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

/// So many bytes, which may lie across two cache lines.
template <Cache cache>
TULO3D_ALWAYS_INLINE void prefetchBytes(const void* p, std::size_t numBytes)
{
	prefetch<cache>(p);
	prefetch<cache>(static_cast<const char*>(p) + numBytes - 1);
}

template <Cache cache = Cache::kFirst, typename T>
TULO3D_ALWAYS_INLINE void prefetchObject(const T* p)
{
	prefetchBytes<cache>(p, sizeof(T));
}

} // namespace TULO3D
