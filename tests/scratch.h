// SPDX-License-Identifier: MIT
// A folder for the files that a test writes, and what they hold.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace support {

inline std::string fileText(const std::string& name)
{
	std::ifstream file(name); // whatever ends a line here
	return {std::istreambuf_iterator<char>(file), {}};
}

/// A test whose current folder is an empty one of its own.
class TestInFolder : public testing::Test
{
protected:
	TestInFolder()
	{
		std::filesystem::create_directory(folder);
		std::filesystem::current_path(folder);
	}
	~TestInFolder() override
	{
		std::filesystem::current_path("..");
		std::filesystem::remove_all(folder);
	}

	/// The names of the files in the folder, one after the other.
	std::string files() const
	{
		std::string names;
		for (const auto& file : std::filesystem::directory_iterator(folder))
			names += file.path().filename().string();
		return names;
	}

	const std::filesystem::path folder =
	    std::filesystem::absolute(testing::UnitTest::GetInstance()->current_test_info()->name());
};

} // namespace support
