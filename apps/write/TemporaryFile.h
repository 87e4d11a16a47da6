// SPDX-License-Identifier: MIT
// Files under temporary names do not outlive the program, however it ends.
#pragma once

#include <cstddef>
#include <filesystem>

namespace app {

/// The name of a file that is removed when the program ends by `exit` or by a signal such as Ctrl-C
/// while the object lives: then no destructor runs. (A signal on Windows leaves the file.)
class TemporaryFile
{
public:
	/// `file` must outlive the object.
	explicit TemporaryFile(const std::filesystem::path& file);
	~TemporaryFile();
	TemporaryFile(const TemporaryFile&) = delete;
	TemporaryFile& operator=(const TemporaryFile&) = delete;

private:
	std::size_t slot = 0;
};

} // namespace app
