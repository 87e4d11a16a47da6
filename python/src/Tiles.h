// SPDX-License-Identifier: MIT
// One mesh by many processes, which share files.
#pragma once

#include <nanobind/nanobind.h>

namespace binding {

/// Adds to the module what a process computes of a part of the points, and the class of a process's view of all parts.
void bindTiles(nanobind::module_& m);

} // namespace binding
