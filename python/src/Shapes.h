// SPDX-License-Identifier: MIT
// Hull, alpha shapes, Voronoi cells and quality for Python.
#pragma once

#include <nanobind/nanobind.h>

namespace binding {

/// Adds the functions on shapes to the module. They return tuples of flat arrays, as the records of
/// TULO3D::shapes have them.
void bindShapes(nanobind::module_& m);

} // namespace binding
