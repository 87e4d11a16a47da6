// SPDX-License-Identifier: MIT
// The determinants in exact integers: all coordinates as multiples of their smallest common bit.
#include "predicates/Underflow.h"
#include "predicates/Determinants.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>

namespace TULO3D {

namespace {

/// A signed big integer of fixed capacity, on the stack. Doubles of at most 1e60 have 1274 bits above the
/// smallest denormal one; products of five of them and their sums fit.
class Whole
{
public:
	Whole() = default;
	Whole(const Whole& other) { *this = other; }
	Whole& operator=(const Whole& other)
	{
		if (this == &other) return *this;
		bNegative = other.bNegative;
		length = other.length;
		std::copy_n(other.digit, length, digit);
		return *this;
	}
	~Whole() = default;

	/// v / 2^exponent, which must be an integer.
	Whole(double v, int exponent) : bNegative(v < 0)
	{
		int top = 0;
		const double fraction = std::frexp(std::abs(v), &top); // fraction * 2^top
		if (fraction == 0.0) return;
		// The last bit of v; of a denormal number, the common one.
		const int own = std::max(top - 53, exponent);
		auto bits = static_cast<std::uint64_t>(std::ldexp(fraction, top - own));
		const auto shift = static_cast<unsigned>(own - exponent);
		std::fill_n(digit, shift / 32, 0U);
		length = shift / 32;
		const std::uint64_t low = bits << shift % 32;
		const std::uint64_t high = shift % 32 == 0 ? 0 : bits >> (64 - shift % 32);
		digit[length++] = static_cast<std::uint32_t>(low);
		digit[length++] = static_cast<std::uint32_t>(low >> 32U);
		digit[length++] = static_cast<std::uint32_t>(high);
		trim();
	}

	int sign() const { return length == 0 ? 0 : bNegative ? -1 : 1; }

	friend Whole operator-(const Whole& a)
	{
		Whole result(a);
		result.bNegative = !a.bNegative;
		return result;
	}
	friend Whole operator-(const Whole& a, const Whole& b) { return a + -b; }
	friend Whole operator+(const Whole& a, const Whole& b)
	{
		const bool bSwap = isLess(a, b);
		const Whole &large = bSwap ? b : a, &small = bSwap ? a : b;
		const bool bSubtract = a.bNegative != b.bNegative;
		Whole result;
		result.bNegative = large.bNegative;
		std::int64_t carry = 0;
		for (unsigned i = 0; i < large.length; ++i) {
			const std::int64_t other = i < small.length ? small.digit[i] : 0;
			carry += large.digit[i] + (bSubtract ? -other : other);
			result.digit[i] = static_cast<std::uint32_t>(carry & 0xffffffff);
			carry >>= 32; // rounds down: a borrow stays -1
		}
		result.digit[large.length] = static_cast<std::uint32_t>(carry);
		result.length = large.length + 1;
		result.trim();
		return result;
	}
	friend Whole operator*(const Whole& a, const Whole& b)
	{
		Whole result;
		result.bNegative = a.bNegative != b.bNegative;
		result.length = a.length + b.length;
		std::fill_n(result.digit, result.length, 0U);
		for (unsigned i = 0; i < a.length; ++i) {
			// In the unit of a tiny number most digits of a large one are zero.
			if (a.digit[i] == 0) continue;
			std::uint64_t carry = 0;
			for (unsigned j = 0; j < b.length; ++j) {
				carry += std::uint64_t{a.digit[i]} * b.digit[j] + result.digit[i + j];
				result.digit[i + j] = static_cast<std::uint32_t>(carry);
				carry >>= 32U;
			}
			result.digit[i + b.length] = static_cast<std::uint32_t>(carry);
		}
		result.trim();
		return result;
	}

private:
	void trim()
	{
		while (length > 0 && digit[length - 1] == 0) --length;
	}
	/// Of the magnitudes.
	static bool isLess(const Whole& a, const Whole& b)
	{
		if (a.length != b.length) return a.length < b.length;
		for (unsigned i = a.length; i-- > 0;) {
			if (a.digit[i] != b.digit[i]) return a.digit[i] < b.digit[i];
		}
		return false;
	}

	bool bNegative = false;
	unsigned length = 0;
	std::uint32_t digit[5 * 1280 / 32 + 8]; // the lowest one first
};

/// The exponent of the smallest bit on each axis. Both determinants are linear in each column, so an
/// axis may have a unit of its own: what is small on one axis only does not make the others long.
struct Units
{
	explicit Units(int all) : x(all), y(all), z(all) {}
	explicit Units(std::initializer_list<const Point3*> vPoints) : Units(0)
	{
		const auto note = [](double v, int& exponent) {
			if (v != 0.0) exponent = std::min(exponent, std::max(std::ilogb(v) - 52, -1074));
		};
		for (const Point3* p : vPoints) {
			note(p->x(), x);
			note(p->y(), y);
			note(p->z(), z);
		}
	}
	int x, y, z;
};

Whole difference(double v, double w, int exponent)
{
	return Whole(v, exponent) - Whole(w, exponent);
}

/// p seen from the origin.
Row<Whole> rowFrom(const Point3& p, const Point3& origin, const Units& unit)
{
	return {difference(p.x(), origin.x(), unit.x), difference(p.y(), origin.y(), unit.y),
	    difference(p.z(), origin.z(), unit.z)};
}

} // namespace

int orient3dSignDespiteUnderflow(const Point3& a, const Point3& b, const Point3& c, const Point3& d)
{
	const Units unit({&a, &b, &c, &d});
	return orientationDeterminant(rowFrom(a, d, unit), rowFrom(b, d, unit), rowFrom(c, d, unit))
	    .sign();
}

int insphereSignDespiteUnderflow(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d, const Point3& e)
{
	const Units unit({&a, &b, &c, &d, &e});
	const Units common(std::min({unit.x, unit.y, unit.z})); // of the lift, which adds all axes
	const auto row = [&](const Point3& p) {
		return SphereRow<Whole>{rowFrom(p, e, unit), lifted(rowFrom(p, e, common)).l};
	};
	return sphereDeterminant(row(a), row(b), row(c), row(d)).det.sign();
}

} // namespace TULO3D
