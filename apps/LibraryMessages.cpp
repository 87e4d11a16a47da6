// SPDX-License-Identifier: MIT
// The buffer behind the stream that the library's messages go to for the time of a run.
#include "LibraryMessages.h"

#include "messages.h"

#include <algorithm>
#include <cstdio>

namespace app {

namespace {

bool isTrouble(const std::string& text)
{
	const auto aMarks = {"ERROR", "WARNING", "Condition [", "not open"};
	return std::any_of(aMarks.begin(), aMarks.end(),
	    [&](const char* mark) { return text.find(mark) != std::string::npos; });
}

} // namespace

LibraryMessages::LibraryMessages(bool bPass)
    : bPassing(bPass), stream(this), pFormer(TULO3D::setMessageStream(&stream))
{
}

LibraryMessages::~LibraryMessages()
{
	TULO3D::setMessageStream(pFormer);
	release();
}

void LibraryMessages::release()
{
	std::fwrite(held.data(), 1, held.size(), stderr);
	std::fflush(stderr);
	held.clear();
}

LibraryMessages::int_type LibraryMessages::overflow(int_type c)
{
	if (!traits_type::eq_int_type(c, traits_type::eof())) held += traits_type::to_char_type(c);
	return traits_type::not_eof(c);
}

std::streamsize LibraryMessages::xsputn(const char* pText, std::streamsize num)
{
	held.append(pText, static_cast<std::size_t>(num));
	return num;
}

// The library flushes at the end of every message.
int LibraryMessages::sync()
{
	if (!bPassing) bPassing = isTrouble(held);
	if (bPassing) release();
	// Notices are few; of very many, the rest is dropped, to bound memory and time.
	if (held.size() > 65536) held.erase(0, held.size() - 32768);
	return 0;
}

} // namespace app
