// SPDX-License-Identifier: MIT
// Pre-faulting the pages of a new block.
#include "ardo_tools/prefault.h"

#if defined(__linux__)
#  include <cerrno>
#  include <cstdint>
#  include <sys/mman.h>
#  include <unistd.h>
#endif

namespace TULO3D {

#if defined(__linux__)

void prefault(void* pFirst, std::size_t numBytes)
{
	constexpr int kPopulateWrite = 23; // MADV_POPULATE_WRITE, since Linux 5.14
	const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
	const auto first = reinterpret_cast<std::uintptr_t>(pFirst) / pageSize * pageSize;
	const std::uintptr_t last =
	    (reinterpret_cast<std::uintptr_t>(pFirst) + numBytes) / pageSize * pageSize;
	if (last <= first) return;
	const int errorBefore = errno; // restored: an older kernel refuses, which is no failure
	madvise(reinterpret_cast<void*>(first), last - first, kPopulateWrite);
	errno = errorBefore;
}

#else

void prefault(void*, std::size_t)
{
}

#endif

} // namespace TULO3D
