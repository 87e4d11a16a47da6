// SPDX-License-Identifier: MIT
// How far all tiles are together.
#pragma once

#include "tiles/Tile.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <functional>
#include <thread>

namespace TULO3D {

/// Collects what the engines of the tiles report, and tells the host in the thread in which this was made. The host's
/// answer to stop reaches all of them, and so does what it throws: whichever ends first, the host gets that back.
class TileProgress
{
public:
	using Handler = std::function<bool(std::size_t, std::size_t)>;

	TileProgress(const Handler& theHandler, std::size_t theNumPoints)
	    : handler(theHandler), numPoints(theNumPoints)
	{
	}

	/// For the engine of one tile. Its batch has vertices of other tiles as well: the part that is in counts.
	Handler ofTile(const PositionRange& own)
	{
		if (!handler) return nullptr;
		return [this, size = std::size_t{own.size()}, before = std::size_t{0}](
		           std::size_t numInserted, std::size_t numVertices) mutable {
			const double part = double(numInserted) / double(std::max<std::size_t>(numVertices, 1));
			const auto now = std::max(before, static_cast<std::size_t>(part * double(size)));
			numDone += now - before;
			before = now;
			if (std::this_thread::get_id() == host && !bStopped) {
				tell();
			}
			if (bStopped && pThrown) std::rethrow_exception(pThrown);
			return !bStopped;
		};
	}

private:
	void tell()
	{
		try {
			bStopped = !handler(std::min(numDone.load(), numPoints), numPoints);
		} catch (...) { // of which the other threads must hear
			pThrown = std::current_exception();
			bStopped = true;
			throw;
		}
	}

	const Handler& handler;
	const std::size_t numPoints;
	const std::thread::id host = std::this_thread::get_id();
	std::atomic<std::size_t> numDone{0};
	std::exception_ptr pThrown; ///< by the handler, before bStopped was set; read only afterwards
	std::atomic<bool> bStopped{false};
};

} // namespace TULO3D
