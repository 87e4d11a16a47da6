// SPDX-License-Identifier: MIT
// The tetrahedra that one vertex owns, in their order.
#pragma once

#include "Tet3.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

namespace TULO3D {

/// A tetrahedron by the positions of its corners, the owner first, then the lowest of the others.
using TetPositions = std::array<std::uint32_t, 4>;

/// Corners are turned into that order by one of the twelve even permutations, number `turn`.
struct CanonicalTet
{
	TetPositions position;
	unsigned turn;
};

/// Sorts the tetrahedra of an owner by their second and third position: these and the owner are a facet, which has
/// one tetrahedron on its inner side.
class OwnedStar
{
public:
	OwnedStar() { makeRoom(kFew); }
	void clear() { num = 0; }

	void add(const Tet3* pTet, const CanonicalTet& tet)
	{
		if (num == vMembers.size()) makeRoom(2 * num);
		vMembers[num] = {pTet, tet};
		vKeys[num++] = std::uint64_t{tet.position[1]} << 32U | tet.position[2];
	}

	/// Calls visit(*pTet, tet) for all tetrahedra, from the last one to the first.
	template <typename Visit>
	void forEachBackwards(Visit visit)
	{
		sort();
		for (std::size_t i = num; i-- > 0;) {
			const Member& member = vMembers[vOrder[i]];
			visit(*member.pTet, member.tet);
		}
	}

private:
	/// A vertex owns seven tetrahedra on average; for more than kFew, sorting by comparisons takes less time.
	static constexpr std::size_t kTogether = 8;
	static constexpr std::size_t kFew = 4 * kTogether;

	void makeRoom(std::size_t size)
	{
		vMembers.resize(size);
		vKeys.resize(size + kTogether);
		vOrder.resize(size);
	}

	void sort()
	{
		if (num > kFew) {
			const auto itEnd = vOrder.begin() + static_cast<std::ptrdiff_t>(num);
			std::iota(vOrder.begin(), itEnd, 0);
			std::sort(vOrder.begin(), itEnd,
			    [this](std::uint32_t i, std::uint32_t j) { return vKeys[i] < vKeys[j]; });
			return;
		}
		// Each key's place is the number of those that are less, without unpredictable branches: so many at a time that
		// the star's size hardly matters.
		std::fill_n(vKeys.begin() + static_cast<std::ptrdiff_t>(num), kTogether, UINT64_MAX);
		for (std::size_t i = 0; i < num; ++i) {
			std::size_t numLess = 0;
			for (std::size_t first = 0; first < num; first += kTogether) {
				for (std::size_t j = first; j < first + kTogether; ++j) {
					numLess += vKeys[j] < vKeys[i] ? 1 : 0;
				}
			}
			vOrder[numLess] = static_cast<std::uint32_t>(i);
		}
	}

	struct Member
	{
		const Tet3* pTet;
		CanonicalTet tet;
	};
	std::size_t num = 0;
	std::vector<Member> vMembers;
	std::vector<std::uint64_t> vKeys;
	std::vector<std::uint32_t> vOrder;
};

} // namespace TULO3D
