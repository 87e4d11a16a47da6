// SPDX-License-Identifier: MIT
// The progress line: throttled while bytes are counted, a ticking clock while the library works.
#include "Progress.h"

#ifdef _WIN32
#  include <io.h>
#else
#  include <unistd.h>
#endif

namespace app {

bool isTerminal(std::FILE* pFile)
{
#ifdef _WIN32
	return _isatty(_fileno(pFile)) != 0;
#else
	return isatty(fileno(pFile)) != 0;
#endif
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

void Progress::update(const char* what, std::size_t done, std::size_t total)
{
	if (!bShow || Clock::now() - lastUpdate < std::chrono::milliseconds(100)) return;
	lastUpdate = Clock::now();
	const bool bShare = total > 0 && done <= total;
	const auto share = static_cast<double>(done) / static_cast<double>(bShare ? total : 1);
	show(std::string(what) + " " +
	    (bShare ? std::to_string(static_cast<int>(100 * share)) + " %"
	            : std::to_string(done >> 20) + " MB"));
}

void Progress::start(const std::string& what)
{
	stop();
	if (!bShow) return;
	show(what);
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
	std::fprintf(stderr, "tulo3d: warning: %s\n", text.c_str());
}

} // namespace app
