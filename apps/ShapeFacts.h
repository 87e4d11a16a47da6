// SPDX-License-Identifier: MIT
// What the summary says about shapes.
#pragma once

#include "Facts.h"
#include "Mesh.h"
#include "Shape.h"

#include <vector>

namespace app {

/// Nothing when no shape and no quality was asked for.
std::vector<Fact> shapeFacts(const Mesh& mesh, const Shape& shape, double shapeSeconds);

} // namespace app
