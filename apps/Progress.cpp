// SPDX-License-Identifier: MIT
// The progress line: throttled where a share is known, else a ticking clock.
#include "Progress.h"

#include <cmath>
#include <cstdlib>

#ifdef _WIN32
#  include <io.h>
#else
#  include <unistd.h>
#endif

namespace app {

namespace {

// Rounded up: work that is not done yet takes a second at least.
std::string timeLeft(double elapsed, double share)
{
	const double seconds = std::ceil(elapsed * (1 - share) / share);
	const bool bMinutes = seconds >= 100;
	return std::to_string(std::lround(bMinutes ? seconds / 60 : seconds)) +
	    (bMinutes ? " min left" : " s left");
}

std::string coloured(const std::string& text, const char* colour)
{
	const char* const pNoColour = std::getenv("NO_COLOR");
	const bool bColour = isTerminal(stderr) && !(pNoColour && *pNoColour);
	return bColour ? std::string("\033[1;") + colour + "m" + text + "\033[0m" : text;
}

} // namespace

bool isTerminal(std::FILE* pFile)
{
#ifdef _WIN32
	return _isatty(_fileno(pFile)) != 0;
#else
	return isatty(fileno(pFile)) != 0;
#endif
}

std::string errorPrefix()
{
	return coloured("tulo3d:", "31") + " ";
}

std::string warningPrefix()
{
	return coloured("tulo3d: warning:", "33") + " ";
}

Progress::Progress(bool bQuiet) : bWarn(!bQuiet), bShow(!bQuiet && isTerminal(stderr))
{
}

void Progress::show(const std::string& text)
{
	std::fprintf(stderr, "\r\033[K%s", text.c_str());
	std::fflush(stderr);
	bLineShown = !text.empty();
}

void Progress::begin(const std::string& what)
{
	stop();
	began = Clock::now();
	lastUpdate = {};
	if (bShow) show(what);
}

void Progress::update(const std::string& what, std::size_t done, std::size_t total)
{
	const auto now = Clock::now();
	if (!bShow || done == 0 || now - lastUpdate < std::chrono::milliseconds(100)) return;
	lastUpdate = now;
	if (total == 0 || done > total) return show(what + " " + std::to_string(done >> 20) + " MB");
	const auto share = static_cast<double>(done) / static_cast<double>(total);
	const double elapsed = std::chrono::duration<double>(now - began).count();
	const auto percent = static_cast<int>(100 * share);
	show(what + " " + std::to_string(percent) + " %" +
	    (percent > 0 ? ", " + timeLeft(elapsed, share) : ""));
}

void Progress::start(const std::string& what)
{
	begin(what);
	if (!bShow) return;
	ticker = std::thread([this, what] {
		std::unique_lock<std::mutex> lock(mutex);
		for (int seconds = 1;
		     !stopped.wait_for(lock, std::chrono::seconds(1), [this] { return bStop; }); ++seconds)
			show(what + ", " + std::to_string(seconds) + " s");
	});
}

void Progress::stop()
{
	if (ticker.joinable()) {
		{
			const std::lock_guard<std::mutex> lock(mutex);
			bStop = true;
		}
		stopped.notify_one();
		ticker.join();
		bStop = false;
	}
	if (bLineShown) show("");
}

void Progress::warn(const std::string& text)
{
	if (!bWarn) return;
	if (bLineShown) show("");
	std::fprintf(stderr, "%s%s\n", warningPrefix().c_str(), text.c_str());
}

} // namespace app
