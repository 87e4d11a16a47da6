// SPDX-License-Identifier: MIT
// Each thread's choice of a stream, and the lock for all streams.
#include "Message.h"

#include "messages.h"

#include <iostream>
#include <utility>

namespace TULO3D {

namespace {

thread_local std::ostream* pChosen = &std::cout;

// Recursive: a corner that is being printed may fail a check, whose message is printed in between. One
// lock for all streams, because two of them may write to the same buffer or file.
std::recursive_mutex printing;

} // namespace

std::ostream* setMessageStream(std::ostream* pStream)
{
	return std::exchange(pChosen, pStream);
}

Message::Message(std::ostream* pTo) : pStream(pTo)
{
	if (pStream != nullptr) lock = std::unique_lock<std::recursive_mutex>(printing);
}

Message::Message() : Message(pChosen)
{
}

Message Message::ofErrors()
{
	return Message(pChosen == &std::cout ? &std::cerr : pChosen);
}

} // namespace TULO3D
