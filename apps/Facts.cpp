// SPDX-License-Identifier: MIT
// Numbers and texts as JSON and as a person reads them.
#include "Facts.h"

#include "Utf8.h"

#include <cmath>

namespace app {

std::string jsonText(const std::string& text)
{
	static const char* const kHex = "0123456789abcdef";
	std::string quoted = "\"";
	for (const char c : validUtf8(text)) {
		if (c == '"' || c == '\\') quoted += '\\';
		const auto code = static_cast<unsigned char>(c);
		if (code < 32)
			(quoted += "\\u00") += {kHex[code / 16], kHex[code % 16]};
		else
			quoted += c;
	}
	return quoted + "\"";
}

Fact count(const char* key, const char* label, std::size_t value)
{
	std::string text = std::to_string(value);
	for (std::size_t i = text.size(); i > 3; i -= 3) text.insert(i - 3, ",");
	return {key, label, std::to_string(value), text};
}

Fact seconds(const char* key, const char* label, double value)
{
	const std::string text = decimal(value, std::chars_format::fixed, 3);
	return {key, label, decimal(value), text};
}

std::string jsonNumber(double value)
{
	return std::isfinite(value) ? decimal(value) : "null";
}

std::string shortNumber(double value)
{
	return decimal(value, std::chars_format::general, 6);
}

Fact number(const char* key, const char* label, double value)
{
	return {key, label, jsonNumber(value), shortNumber(value)};
}

} // namespace app
