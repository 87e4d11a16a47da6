// SPDX-License-Identifier: MIT
// A few tasks in a few threads.
#pragma once

#include <cstddef>
#include <functional>

namespace TULO3D {

/// Calls task(0), ..., task(numTasks - 1), each once, in up to `numThreads` threads, one of which is the caller's.
/// Returns when all have ended. When one throws, those that have not begun are left out, and the first exception is
/// thrown again. Tasks print no messages, and a hard stop in one is an exception.
void inParallel(
    std::size_t numTasks, unsigned numThreads, const std::function<void(std::size_t)>& task);

} // namespace TULO3D
