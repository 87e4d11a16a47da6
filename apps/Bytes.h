// SPDX-License-Identifier: MIT
// Numbers in binary files, whose byte order need not be that of this machine.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace app {

inline bool isBigEndianMachine()
{
	const std::uint16_t one = 1;
	unsigned char first = 0;
	std::memcpy(&first, &one, 1);
	return first == 0;
}

/// The number of type T that is stored at `pBytes`, which need not be aligned.
template <class T>
T loadNumber(const char* pBytes, bool bBigEndian)
{
	char aBytes[sizeof(T)];
	std::memcpy(aBytes, pBytes, sizeof(T));
	if (bBigEndian != isBigEndianMachine()) std::reverse(aBytes, aBytes + sizeof(T));
	T value;
	std::memcpy(&value, aBytes, sizeof(T));
	return value;
}

} // namespace app
