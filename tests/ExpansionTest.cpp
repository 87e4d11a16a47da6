// SPDX-License-Identifier: MIT
// The error-free steps and what is made of them, by their laws, against rational numbers.
#include "predicates/Expansion.h"
#include "points.h"
#include "predicates/DoubleDouble.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <cmath>

using namespace TULO3D;

namespace {

mpq_class exact(double d)
{
	return mpq_class(d);
}

template <int N>
mpq_class exact(const Expansion<N>& e)
{
	mpq_class value = 0;
	for (int i = 0; i < e.length; ++i) value += exact(e.component[i]);
	return value;
}

/// The number of bits of d from its highest one to its lowest; 0 for zero.
int numBits(double d)
{
	int bits = 0, exponent = 0;
	for (double rest = std::frexp(std::fabs(d), &exponent); rest != 0; ++bits)
		rest = std::fmod(2 * rest, 1);
	return bits;
}

/// Exact, and with components that grow, do not overlap, and are zero only for the number zero.
template <int N>
void expectRight(const Expansion<N>& e, const mpq_class& value)
{
	ASSERT_EQ(exact(e), value);
	EXPECT_EQ(sgn(value), sgn(exact(e.mostSignificant())));
	EXPECT_EQ(sgn(value), sgn(exact(e.estimate())));
	ASSERT_TRUE(e.length >= 1 && e.length <= N);
	for (int i = 1; i < e.length; ++i) {
		const double upper = e.component[i], below = std::fabs(e.component[i - 1]);
		EXPECT_TRUE(below != 0 && below < std::ldexp(1, std::ilogb(upper) - numBits(upper) + 1));
	}
}

/// Doubles of all kinds: few and many bits, small and large, of both signs, and zero.
double someDouble(points::Random& random)
{
	const double mantissas[] = {0, 1. + random.below(1 << 10), 1 + 0x1p-52 * random.below(9),
	    random.in(1, 2), -random.in(1, 2)};
	return std::ldexp(random.of(mantissas), random.below(121) - 60);
}

} // namespace

TEST(Expansion, RoundedResultAndTailAreTogetherExact)
{
	points::Random random(1);
	for (int i = 0; i < 20000; ++i) {
		const double a = someDouble(random), b = someDouble(random);
		const bool bOrdered = std::fabs(a) >= std::fabs(b);
		const struct
		{
			TwoDoubles found;
			double rounded;
			mpq_class whole;
		} laws[] = {
		    {twoSum(a, b), a + b, exact(a) + exact(b)},
		    {fastTwoSum(bOrdered ? a : b, bOrdered ? b : a), a + b, exact(a) + exact(b)},
		    {twoDiff(a, b), a - b, exact(a) - exact(b)},
		    {twoProduct(kSplitter, a, b), a * b, exact(a) * exact(b)},
		    {split(kSplitter, a), split(kSplitter, a).hi, exact(a)},
		};
		for (const auto& law : laws) {
			ASSERT_EQ(law.found.hi, law.rounded) << a << " " << b << " law " << &law - laws;
			ASSERT_EQ(exact(law.found.hi) + exact(law.found.lo), law.whole)
			    << a << " " << b << " law " << &law - laws;
		}
		const double cut = i < 1000 ? 2 - 0x1p-52 * i : a;
		ASSERT_LE(numBits(split(kSplitter, cut).hi), 26) << cut;
		ASSERT_LE(numBits(split(kSplitter, cut).lo), 26) << cut;
	}
}

TEST(Expansion, DoubleDoublesKeepTheirBounds)
{
	points::Random random(2);
	const auto value = [](const TwoDoubles& d) { return mpq_class(exact(d.hi) + exact(d.lo)); };
	const mpq_class u2 = exact(0x1p-106);
	int numInexact = 0;
	for (int i = 0; i < 20000; ++i) {
		const TwoDoubles a = twoDiff(someDouble(random), someDouble(random));
		const double tail = a.hi * 0x1p-53 * random.in(-1, 1); // nearly the same, to be subtracted
		const TwoDoubles b = i % 2 == 0 ? twoSum(-a.hi, tail) : twoDiff(someDouble(random), tail);
		const mpq_class x = value(a), y = value(b);
		const mpq_class errors[] = {
		    value(a + b) - (x + y), value(a - b) - (x - y), value(a * b) - x * y};
		const mpq_class size = abs(x) + abs(y);
		ASSERT_LE(abs(errors[0]), 4 * u2 * size);
		ASSERT_LE(abs(errors[1]), 4 * u2 * size);
		ASSERT_LE(abs(errors[2]), 7 * u2 * abs(x * y));
		numInexact += errors[0] != 0 && errors[2] != 0;
	}
	EXPECT_GT(numInexact, 1000);
}

TEST(Expansion, SumsAndMultiplesAreExactAndDoNotOverlap)
{
	points::Random random(3);
	for (int i = 0; i < 3000; ++i) {
		double a[8];
		for (double& v : a) v = someDouble(random);
		if (i % 4 == 0) a[6] = a[4], a[7] = a[5]; // half of it cancels
		const auto p = minorXY(kSplitter, {a[0], a[3], 0}, {a[2], a[1], 0}),
		           q = minorXY(kSplitter, {a[4], a[7], 0}, {a[6], a[5], 0});
		const auto difference = sum(p, -q);
		const auto product = scale(kSplitter, difference, a[1]);
		ASSERT_EQ(exact(p), exact(a[0]) * exact(a[1]) - exact(a[2]) * exact(a[3]));
		expectRight(difference, exact(p) - exact(q));
		expectRight(product, exact(difference) * exact(a[1]));
		expectRight(scaleByPair(kSplitter, difference, twoDiff(a[2], a[5])),
		    exact(difference) * (exact(a[2]) - exact(a[5])));
		expectRight(sum(product, -product), 0);
	}
}
