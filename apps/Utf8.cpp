// SPDX-License-Identifier: MIT
// Which bytes are characters in UTF-8.
#include "Utf8.h"

#include <algorithm>

namespace app {

namespace {

// The length of the character that starts at byte i; 0 when none does.
std::size_t lengthAt(const std::string& text, std::size_t i)
{
	const auto byte = [&](std::size_t k) -> unsigned {
		return k < text.size() ? static_cast<unsigned char>(text[k]) : 0;
	};
	const unsigned first = byte(i), second = byte(i + 1);
	if (first < 0x80) return 1;
	const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
	// No character has two encodings, none is half of a pair, and none is beyond the last one.
	const unsigned least = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
	const unsigned most = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
	if (first < 0xC2 || first > 0xF4 || second < least || second > most) return 0;
	for (std::size_t k = i + 2; k < i + length; ++k)
		if ((byte(k) & 0xC0) != 0x80) return 0;
	return length;
}

} // namespace

std::string validUtf8(const std::string& text)
{
	std::string valid;
	for (std::size_t i = 0, length = 0; i < text.size(); i += std::max(length, std::size_t{1})) {
		length = lengthAt(text, i);
		if (length == 0)
			valid += "\xEF\xBF\xBD";
		else
			valid.append(text, i, length);
	}
	return valid;
}

} // namespace app
