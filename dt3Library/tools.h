// SPDX-License-Identifier: MIT
// Messages, the checked condition, and the two hard stops.
#pragma once

#include "TuloException.h"
#include "messages.h"

#include <cassert>
#include <string>

namespace TULO3D {

/// Writes an empty line, "      prefix, ERROR: text" and an empty line; returns the line between
/// without its indentation.
std::string printError(const std::string& prefix, const std::string& text);

/// The same with WARNING: for what the library survives.
void printWarning(const std::string& prefix, const std::string& text);

/// Reserved for a level of information, which the library never issues: what would stand between the
/// prefix and the text of such a message, and at the start of one without a prefix, after the indent of
/// six blanks that all messages have.
constexpr const char* kInfoLevel = ", INFO: ";
constexpr const char* kInfoStart = "INFO: ";

/// Writes `text` between rules of asterisks; the validity check opens its reports with it.
void printErrorBanner(const std::string& text);

/// "00000_", "00001_", ...: keeps the debug files of one run apart. Never reset.
std::string nextDebugFilePrefix();

/// A deliberate crash, for states that only a defect of the library can cause: prints the reason, calls the
/// thread's stop handler, then reads through null, so that a debugger halts here.
[[noreturn]] void goToHell(const std::string& reason);

/// Calls the thread's stop handler, which may throw, then ends the process with status 1, whatever the
/// build. The caller has printed `text`.
[[noreturn]] void hardStop(StopReason reason, const char* text);

/// Prints `text` on a line of its own, then stops.
[[noreturn]] void printAndStop(StopReason reason, const char* text);

/// True for the index of a corner, a facet or a neighbour of a tetrahedron.
constexpr bool range03(int i)
{
	return static_cast<unsigned>(i) < 4U;
}

/// The classic 15-bit C runtime generator. The library brings its own, so that a seed means the
/// same numbers everywhere and the host's `rand` is left alone.
class Rand15
{
public:
	void seed(unsigned int s) { state = s; }

	/// The next number, 0 .. 32767.
	int next()
	{
		state = state * 214013U + 2531011U;
		return static_cast<int>((state >> 16U) & 0x7fffU);
	}

private:
	unsigned int state = 1;
};

/// Prints the failed condition and its place, then throws `TuloException`.
[[noreturn]] void failCondition(const char* conditionText, const char* file, int line);

} // namespace TULO3D

// Deliberate: both macros stringise at this level; one level deeper NULL would print as its value.

/// The library's own check, active in every build; a failure throws `TuloException`.
#define CONDITION_CHECK(condition) \
  (static_cast<bool>(condition) ? static_cast<void>(0) \
	                            : ::TULO3D::failCondition(#condition, __FILE__, __LINE__))

/// The same where the printed text is not the code's: texts are interface, and keep the names with which hosts have
/// come to know them.
#define CONDITION_CHECK_AS(condition, text) \
  (static_cast<bool>(condition) ? static_cast<void>(0) \
	                            : ::TULO3D::failCondition(text, __FILE__, __LINE__))
