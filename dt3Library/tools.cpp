// SPDX-License-Identifier: MIT
// Messages, the checked condition and the hard stops.
#include "tools.h"
#include "Message.h"

#include <atomic>
#include <cstdlib>
#include <iomanip>
#include <sstream>
#include <utility>

namespace TULO3D {

namespace {

constexpr const char* kIndent = "      ";

thread_local StopHandler stopHandler = nullptr;

std::string printFramed(const std::string& prefix, const char* level, const std::string& text)
{
	std::string line = prefix + level + text;
	Message() << std::endl << kIndent + line << std::endl << std::endl;
	return line;
}

} // namespace

StopHandler setStopHandler(StopHandler handler)
{
	return std::exchange(stopHandler, handler);
}

std::string printError(const std::string& prefix, const std::string& text)
{
	return printFramed(prefix, ", ERROR: ", text);
}

void printWarning(const std::string& prefix, const std::string& text)
{
	printFramed(prefix, ", WARNING: ", text);
}

void printErrorBanner(const std::string& text)
{
	const std::string rule = std::string(text.size() + 36, '*') + "\n";
	Message() << "\n\n" + rule + rule + "                " + text + "\n" + rule + rule;
}

std::string nextDebugFilePrefix()
{
	static std::atomic<int> counter{-1}; // Deliberate: the first file has number 0.
	const int number = ++counter;
	std::ostringstream stream;
	stream.imbue(std::locale::classic());
	stream << std::setw(5) << std::setfill('0') << number << '_';
	return stream.str();
}

void goToHell(const std::string& reason)
{
	const std::string line = printError("goToHell", " reason: " + reason);
	if (stopHandler != nullptr) stopHandler(StopReason::kBrokenMesh, line.c_str());
	const volatile int* volatile pNowhere = nullptr; // volatile: no compiler may remove the read
	const int nothing = *pNowhere;
	Message() << nothing << std::endl;
	std::abort();
}

void hardStop(StopReason reason, const char* text)
{
	if (stopHandler != nullptr) stopHandler(reason, text);
	Message() << std::flush;
	std::exit(1);
}

void printAndStop(StopReason reason, const char* text)
{
	Message() << text << std::endl;
	hardStop(reason, text);
}

void failCondition(const char* conditionText, const char* file, int line)
{
	Message message; // so that nothing comes between the two
	// Deliberate: the prefix brings its own comma, so the printed line has two.
	printError("Tulo, ", std::string("Condition [ ") + conditionText + " failed ]");
	message << kIndent << file << ":" + std::to_string(line) << std::endl;
	throw TuloException();
}

const char* TuloException::what() const noexcept
{
	return "\n  TULO EXCEPTION due to a bug _or_ wrong usage of Tulo. If you think it is a \n"
	       "  bug then please report this incident and it will be fixed quickly: "
	       "the place from which you have Tulo3D";
}

} // namespace TULO3D
