// SPDX-License-Identifier: MIT
// Finds the partner of a facet half in a list of pending halves that has grown long.
#pragma once

#include "Point3.h"
#include "mesh/VertexPair.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace TULO3D {

/// A hash table from the two keys of a facet to its position in the list of collisions.
///
/// An ordinary insertion has a handful of collisions, and a scan of the list is fastest. A vertex at the
/// centre of a sphere with many points has a hundred thousand; scanning the list for each half would
/// then be quadratic. At most one half of a facet is in the list, so keys are unique.
class CollisionIndex
{
public:
	/// From this length on a list is searched through the index, until it is empty again.
	static constexpr std::size_t kScanLimit = 64;

	bool empty() const { return places.empty(); }
	void clear() { places.clear(); }
	void put(const Point3* key0, const Point3* key1, std::size_t place)
	{
		places[{key0, key1}] = place;
	}
	void remove(const Point3* key0, const Point3* key1) { places.erase({key0, key1}); }

	/// The place of the facet, or `notFound`.
	std::size_t find(const Point3* key0, const Point3* key1, std::size_t notFound) const
	{
		const auto it = places.find({key0, key1});
		return it == places.end() ? notFound : it->second;
	}

private:
	std::unordered_map<VertexPair, std::size_t, VertexPairHash> places;
};

} // namespace TULO3D
