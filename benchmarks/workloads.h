// SPDX-License-Identifier: MIT
// The points that the benchmarks are run on: the same for every library and on every machine.
#pragma once

#include "../inputs/points.h"

#include <cstddef>
#include <string>
#include <vector>

/// A kind of input as it turns up in practice, or one that is known to be hard on the vertex order.
struct Workload
{
	std::string name;
	std::string text; ///< what it is, for the help
	points::Cloud (*make)(std::size_t size, points::Random& random);
};

const std::vector<Workload>& workloads();

/// The points of a workload, or else of a family of the tests, by its name; throws for an unknown
/// one.
points::Cloud makeWorkload(const std::string& name, std::size_t size, unsigned seed);

/// The points of a file: the first three numbers of each line. Throws for a line without them.
points::Cloud readPoints(const std::string& fileName);

/// Points spread over the box of `cloud`, as queries for a location.
points::Cloud makeQueries(const points::Cloud& cloud, std::size_t size, unsigned seed);
