// SPDX-License-Identifier: MIT
// Memory that is there before it is touched.
#include "mapAhead.h"

#if defined(__linux__)
#  include <cerrno>
#  include <cstdint>
#  include <sys/mman.h>
#  include <unistd.h>
#endif

namespace TULO3D {

#if defined(__linux__)

void mapAhead(void* pFirst, std::size_t numBytes)
{
	constexpr int kPopulateWrite = 23; // MADV_POPULATE_WRITE, since Linux 5.14
	const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
	const auto first = reinterpret_cast<std::uintptr_t>(pFirst) / pageSize * pageSize;
	const std::uintptr_t last =
	    (reinterpret_cast<std::uintptr_t>(pFirst) + numBytes) / pageSize * pageSize;
	if (last <= first) return;
	const int errorBefore = errno; // nobody needs to know when the system is too old
	madvise(reinterpret_cast<void*>(first), last - first, kPopulateWrite);
	errno = errorBefore;
}

#else

void mapAhead(void*, std::size_t)
{
}

#endif

} // namespace TULO3D
