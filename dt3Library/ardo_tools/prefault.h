// SPDX-License-Identifier: MIT
// Pre-faulting the pages of a new block.
#pragma once

#include <cstddef>

namespace TULO3D {

/// Populates the pages of a new block in one system call. Otherwise the first access to each page causes a
/// page fault, and these take a tenth of the time of a large batch. A hint: on a system without such a
/// call it does nothing.
void prefault(void* pFirst, std::size_t numBytes);

} // namespace TULO3D
