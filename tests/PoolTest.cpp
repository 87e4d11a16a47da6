// SPDX-License-Identifier: MIT
// The pools: how they grow, and what a reset keeps.
#include "ardo_tools/SimplePool.h"
#include "support.h"

using namespace TULO3D;

// Address sanitizer is to report exhausted memory to the pool as any allocator does.
extern "C" const char* __asan_default_options()
{
	return "allocator_may_return_null=1";
}

namespace {

/// A pool that can be filled.
struct Pool : SimplePool<double>
{
	Pool(int first, int growth, int maximum) { init(first, growth, maximum); }

	/// Takes `count` records and writes to each of them.
	std::vector<double*> take(int count)
	{
		std::vector<double*> v;
		for (int i = 0; i < count; ++i) *v.emplace_back(alloc()) = i;
		return v;
	}
};

} // namespace

TEST(Pool, BlocksGrowAsConfigured)
{
	// clang-format off
	const struct { int first, growth, maximum, count; std::vector<int> sizes; } cases[] = {
		{4, -1, 1000, 4, {4}}, {4, -1, 1000, 5, {4, 2}}, {4, -1, 1000, 35, {4, 2, 4, 8, 16, 32}},
		{28, -1, 1000, 99, {28, 14, 28, 56}}, {4, -1, 7, 32, {4, 2, 4, 7, 7, 7, 7}},
		{20, -1, 7, 30, {20, 7, 7}}, {1024, 512, 7, 2000, {1024, 512, 512}},
	};
	// clang-format on
	for (const auto& c : cases) {
		Pool pool(c.first, c.growth, c.maximum);
		const auto records = pool.take(c.count);
		EXPECT_EQ(pool.vSizes, c.sizes);
		EXPECT_EQ(pool.blockList.size(), c.sizes.size());
		for (int i = 0; i < c.count; ++i) ASSERT_EQ(*records[static_cast<std::size_t>(i)], i);
		EXPECT_EQ(records[3] - records[0], 3) << "consecutive within a block";
	}
}

TEST(Pool, ResetKeepsTheFirstBlockAndGrowthGoesOn)
{
	Pool pool(4, -1, 1000);
	const auto first = pool.take(4);
	pool.reset();
	EXPECT_EQ(pool.take(4), first);
	pool.take(20); // blocks of 2, 4, 8, 16
	EXPECT_FALSE(pool.pristine);
	pool.reset();
	EXPECT_TRUE(pool.pristine && pool.blockList.size() == 1);
	EXPECT_EQ(pool.take(4), first);
	pool.take(1);
	EXPECT_EQ(pool.vSizes, (std::vector<int>{4, 2, 4, 8, 16, 32}));
}

TEST(Pool, ARunIsInOnePieceAndWhatWasLeftBeforeItIsNotCounted)
{
	Pool pool(4, -1, 1000);
	const auto before = pool.take(3);
	pool.reserveRun(1); // which there is
	EXPECT_EQ(pool.take(1)[0] - before[0], 3);
	pool.reserveRun(10);
	pool.take(1);
	pool.reserveRun(20);
	const auto run = pool.take(20);
	EXPECT_EQ(run[19] - run[0], 19);
	pool.take(1);
	EXPECT_EQ(pool.vSizes, (std::vector<int>{4, 1, 20, 40}));
	EXPECT_EQ(pool.numUsed(), 26U);
	std::size_t numListed = 0;
	for (const auto& [pFirst, count] : pool.usedBlocks()) numListed += count;
	EXPECT_EQ(numListed, 26U);
}

TEST(Pool, DestructorAnnouncesMoreThanFiftyBlocks)
{
	EXPECT_EQ(support::printedBy([] { Pool(1, 1, 1).take(50); }), "");
	EXPECT_EQ(support::printedBy([] { Pool(1, 1, 1).take(51); }),
	    "SimplePool::~SimplePool: Number of containers to release: 51\n");
}
