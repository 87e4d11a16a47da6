// SPDX-License-Identifier: MIT
// Keeps what the library prints away from standard output, which belongs to the program's results.
#pragma once

#include <ostream>
#include <streambuf>
#include <string>

namespace app {

/// While an object lives, all messages that the library prints in its thread come here.
///
/// Ordinary notices are held back; the first message of trouble lets them out on standard error, all
/// that follow pass at once, and so does everything when `bPass` is set. What is still held when the
/// object dies is let out too, unless `dismiss` was called: the library may end the process, and then
/// its last words say why. So the object has to be a static one.
class LibraryMessages : private std::streambuf
{
public:
	explicit LibraryMessages(bool bPass);
	~LibraryMessages() override;
	LibraryMessages(const LibraryMessages&) = delete;
	LibraryMessages& operator=(const LibraryMessages&) = delete;

	/// The run went well: forgets what is held.
	void dismiss() { held.clear(); }
	/// Something went wrong: shows what is held.
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
