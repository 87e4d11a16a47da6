// SPDX-License-Identifier: MIT
// Hard inputs, made in one place for tests, benchmarks and the fuzzer.
#pragma once

#include "Point3.h"

#include <iterator>
#include <ostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace points {

using Cloud = std::vector<TULO3D::Point3>;

/// Random numbers that are the same with every compiler and standard library.
class Random
{
public:
	explicit Random(unsigned long long seed) : engine(seed) {}

	/// A multiple of 2^-53 in [0, 1).
	double unit() { return static_cast<double>(engine() >> 11U) * 0x1p-53; }
	double in(double low, double high) { return low + (high - low) * unit(); }
	/// 0 .. n-1
	int below(int n) { return static_cast<int>(engine() % static_cast<unsigned long long>(n)); }
	/// An element of `v`.
	template <class V>
	auto& of(V& v)
	{
		return v[static_cast<std::size_t>(engine() % std::size(v))];
	}
	/// A point of the cube [low, high)^3.
	TULO3D::Point3 point(double low, double high)
	{
		return {in(low, high), in(low, high), in(low, high)};
	}
	/// A point of the unit sphere, nearly.
	TULO3D::Point3 onSphere();
	/// `p` moved by -1, 0 or 1 step of the floating-point grid along each axis; a zero stays, as its
	/// neighbours are below the range of exact signs, and 1e60 is not passed.
	TULO3D::Point3 nudged(const TULO3D::Point3& p);

private:
	std::mt19937_64 engine;
};

template <class V>
void shuffle(V& v, Random& random)
{
	for (std::size_t i = v.size(); i > 1; --i) {
		std::swap(v[i - 1], v[static_cast<std::size_t>(random.below(static_cast<int>(i)))]);
	}
}

/// A kind of input. The size is a wish: a lattice rounds it, and a family with quadratically many
/// tetrahedra stops at 2,000 points.
struct Family
{
	Cloud make(int size, unsigned seed) const;

	std::string name;
	Cloud (*fill)(int size, Random& random);
};

/// For the test framework: parameters by their name.
inline void PrintTo(const Family& family, std::ostream* pStream)
{
	*pStream << family.name;
}

/// All kinds that an engine must take; signs are exact on each of them.
const std::vector<Family>& families();

/// The points of the family with this name; throws for an unknown one.
Cloud make(const std::string& name, int size, unsigned seed = 1);

/// Points that are refused: in one coordinate not finite, or beyond 1e60.
Cloud refused();

} // namespace points
