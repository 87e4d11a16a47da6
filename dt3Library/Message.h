// SPDX-License-Identifier: MIT
// The one place through which the library prints.
#pragma once

#include <mutex>
#include <ostream>

namespace TULO3D {

/// One message. What is inserted into it goes to the stream that the thread has chosen, or nowhere.
///
/// While it lives, which for a temporary is to the end of its statement, no other thread prints:
/// neither lines nor the format flags of a shared stream get mixed up.
class Message
{
public:
	Message();
	/// For a line that belongs to standard error as long as the thread has chosen no stream.
	static Message ofErrors();

	template <typename T>
	Message& operator<<(const T& value)
	{
		if (pStream != nullptr) *pStream << value;
		return *this;
	}

	/// For `std::endl` and `std::flush`.
	Message& operator<<(std::ostream& (*manipulator)(std::ostream&))
	{
		if (pStream != nullptr) *pStream << manipulator;
		return *this;
	}

private:
	explicit Message(std::ostream* pTo);

	std::ostream* pStream; // null: silence
	std::unique_lock<std::recursive_mutex> lock;
};

} // namespace TULO3D
