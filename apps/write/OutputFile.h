// SPDX-License-Identifier: MIT
// A file that appears under its name only once it is complete.
#pragma once

#include "Bytes.h"
#include "TemporaryFile.h"

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace app {

/// Writes to a temporary name in the folder of the target; `commit` gives it the target's name.
/// Without that the target stays as it was and the temporary file is removed, also when a signal ends
/// the program. The target "-" is standard output, which gets the contents when they are complete. Every
/// failure throws.
class OutputFile
{
public:
	explicit OutputFile(std::filesystem::path output);
	~OutputFile();
	OutputFile(const OutputFile&) = delete;
	OutputFile& operator=(const OutputFile&) = delete;

	void text(std::string_view s);
	/// A whole number, or the shortest text that gives the same double again, in every locale.
	template <class T>
	void number(T value)
	{
		char aText[32];
		const auto end = std::to_chars(aText, aText + sizeof(aText), value).ptr;
		text({aText, static_cast<std::size_t>(end - aText)});
	}
	/// The bytes of a value as this machine holds them.
	template <class T>
	void binary(const T& value)
	{
		text({reinterpret_cast<const char*>(&value), sizeof(T)});
	}
	/// The same in the given order of bytes.
	template <class T>
	void binary(const T& value, bool bBigEndian)
	{
		char aBytes[sizeof(T)];
		std::memcpy(aBytes, &value, sizeof(T));
		if (bBigEndian != isBigEndianMachine()) std::reverse(aBytes, aBytes + sizeof(T));
		text({aBytes, sizeof(T)});
	}

	/// Writes out what is pending and closes the temporary file.
	void close();
	void commit();

private:
	[[noreturn]] void fail(const std::string& reason) const;
	void open();
	void flush();
	void copyToStdout();

	std::filesystem::path target;
	std::filesystem::path temporary;
	std::optional<TemporaryFile> removal; // of the temporary file, if the program ends early
	std::FILE* pFile;
	std::string buffer;
};

} // namespace app
