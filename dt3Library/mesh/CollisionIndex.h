// SPDX-License-Identifier: MIT
// Finds the partner of a facet half in a list of pending halves that has grown long.
#pragma once

#include "Point3.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <utility>

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
	using Keys = std::pair<const Point3*, const Point3*>;
	struct Hash
	{
		std::size_t operator()(const Keys& keys) const
		{
			const std::hash<const Point3*> hash;
			return hash(keys.first) * 31U + hash(keys.second);
		}
	};
	std::unordered_map<Keys, std::size_t, Hash> places;
};

} // namespace TULO3D
