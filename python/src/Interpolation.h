// SPDX-License-Identifier: MIT
// Values between points: linear in each tetrahedron, and by natural neighbours.
#pragma once

#include "Queries.h"

#include <cstddef>

namespace binding {

/// Values at the points of a mesh, `numColumns` each, and where to ask for others.
struct Samples
{
	const double* pValues;
	std::size_t numColumns;
	const double* pQueries;
	std::size_t numQueries;
};

/// Writes the linear interpolants, numColumns a query; `fill` outside the hull.
void interpolateLinearly(
    const FlatMesh& mesh, const Samples& samples, double fill, double* pResults, const Poll& poll);

/// Writes the gradients of the linear interpolant, 3 numbers for each column and query; not a number
/// outside the hull.
void interpolateGradients(
    const FlatMesh& mesh, const Samples& samples, double* pResults, const Poll& poll);

/// Writes Sibson's interpolants, numColumns a query; `fill` outside the hull.
///
/// R. Sibson, A brief description of natural neighbour interpolation, in: V. Barnett (ed.), Interpreting
/// Multivariate Data (1981). On a facet of the hull, where the volumes have no bound, and where their
/// rounding errors drown them, the result is the linear one.
void interpolateNaturally(
    const FlatMesh& mesh, const Samples& samples, double fill, double* pResults, const Poll& poll);

} // namespace binding
