// SPDX-License-Identifier: MIT
// Files that gzip has compressed.
#pragma once

#include <string>

namespace app {

/// True when the bytes start as those of a file of gzip, whatever its name is.
bool isGzip(const std::string& bytes);

/// What was compressed. Throws a `Failure` with the name when the bytes are damaged or cut short, or
/// the program was built without zlib.
std::string unzip(const std::string& bytes, const std::string& name);

} // namespace app
