// SPDX-License-Identifier: MIT
// Two vertices as the key of a hash table.
#pragma once

#include "Point3.h"

#include <cstddef>
#include <functional>
#include <utility>

namespace TULO3D {

/// By their addresses; the caller decides on the order.
using VertexPair = std::pair<const Point3*, const Point3*>;

struct VertexPairHash
{
	std::size_t operator()(const VertexPair& pair) const
	{
		const std::hash<const Point3*> hash;
		return hash(pair.first) * 31U + hash(pair.second);
	}
};

} // namespace TULO3D
