// SPDX-License-Identifier: MIT
// Text as JSON and XML want it.
#pragma once

#include <string>

namespace app {

/// The text with each byte that is no part of a character in UTF-8 replaced by U+FFFD: names of files and of
/// attributes may have any bytes.
std::string validUtf8(const std::string& text);

} // namespace app
