// SPDX-License-Identifier: MIT
// The mesh of a batch, made in tiles.
#pragma once

#include "ParallelMesh.h"

#include <cstddef>
#include <functional>

namespace TULO3D {

/// What `triangulateInParallel` does, with as many tiles as wanted, or fewer where the points are few: the mesh does
/// not depend on it.
ParallelMesh triangulateInTiles(const double* pCoordinates, std::size_t numPoints,
    std::size_t numTiles, unsigned numThreads,
    const std::function<bool(std::size_t, std::size_t)>& progress = nullptr);

} // namespace TULO3D
