// SPDX-License-Identifier: MIT
// The progress line on the terminal, and the warnings.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>

namespace app {

/// True when the stream is a terminal.
bool isTerminal(std::FILE* pFile);

/// What the lines with an error or a warning begin with; in colour on a terminal, unless the variable NO_COLOR
/// of the environment is set.
std::string errorPrefix();
std::string warningPrefix();

/// One line on standard error that is overwritten repeatedly, and only when that is a terminal.
class Progress
{
public:
	/// Quiet: neither progress nor warnings.
	explicit Progress(bool bQuiet);
	~Progress() { stop(); }
	Progress(const Progress&) = delete;
	Progress& operator=(const Progress&) = delete;

	/// Nothing is shown otherwise, so nobody needs to call `update`.
	bool isShown() const { return bShow; }

	/// Shows `what` until `update` or `stop`.
	void begin(const std::string& what);
	/// Shows how much of `total` is done and, from a hundredth on, the time left at this rate; at most ten
	/// times a second. A total of 0 is unknown.
	void update(const std::string& what, std::size_t done, std::size_t total);
	/// Shows `what` and the seconds since this call until `stop`: for work whose share that is done is
	/// not known.
	void start(const std::string& what);
	/// Wipes the line.
	void stop();

	void warn(const std::string& text);

private:
	using Clock = std::chrono::steady_clock;
	void show(const std::string& text);

	const bool bWarn;
	const bool bShow;
	bool bLineShown = false;
	Clock::time_point began = Clock::now();
	Clock::time_point lastUpdate{};
	std::thread ticker;
	std::mutex mutex;
	std::condition_variable stopped;
	bool bStop = false;
};

} // namespace app
