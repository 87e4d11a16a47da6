// SPDX-License-Identifier: MIT
// Redirects the library's messages, because standard output is for the program's results.
#pragma once

#include <ostream>
#include <streambuf>
#include <string>

namespace app {

/// While an object lives, all messages that the library prints in its thread come here.
///
/// Notices are buffered; the first error or warning flushes the buffer to standard error, and all later
/// messages go there directly, as all do when `bPass` is set. The destructor flushes the buffer too,
/// unless `dismiss` was called: the library may end the process, and its last message says why. So the
/// object has to be a static one.
class LibraryMessages : private std::streambuf
{
public:
	explicit LibraryMessages(bool bPass);
	~LibraryMessages() override;
	LibraryMessages(const LibraryMessages&) = delete;
	LibraryMessages& operator=(const LibraryMessages&) = delete;

	/// After a successful run: discards the buffer.
	void dismiss() { held.clear(); }
	/// After a failure: flushes the buffer to standard error.
	void release();

private:
	int_type overflow(int_type c) override;
	std::streamsize xsputn(const char* pText, std::streamsize num) override;
	int sync() override;

	bool bPassing;
	std::string held;
	std::ostream stream;
	std::ostream* pFormer;
};

} // namespace app
