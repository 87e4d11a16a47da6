// SPDX-License-Identifier: MIT
// Part of a larger program: a mesh in each thread, messages in a log, exceptions instead of hard stops.
#include "Tulo_3D.h"

#include <iostream>
#include <new>
#include <sstream>
#include <stdexcept>
#include <thread>

/// Called where the library would end the process.
static void throwInstead(TULO3D::StopReason reason, const char* text)
{
	if (reason == TULO3D::StopReason::kOutOfMemory) throw std::bad_alloc();
	throw std::runtime_error(text);
}

/// Makes a mesh and draws it; what went wrong.
static std::string drawRandomMesh(std::ostream& log, const std::string& file, unsigned seed)
{
	TULO3D::setMessageStream(&log); // null would silence the library
	TULO3D::setStopHandler(throwInstead);
	try {
		std::vector<TULO3D::Point3> points;
		TULO3D::generateRandomPoints(300, 0, 1, points, seed);
		TULO3D::Tulo_3D mesh;
		mesh.insert(points);
		mesh.show(file, nullptr);
	} catch (const std::exception& error) {
		return error.what();
	}
	return "";
}

int main()
{
	std::ostringstream log; // for both threads
	std::string errors[2];
	std::thread first([&] { errors[0] = drawRandomMesh(log, "thread.list", 1); });
	std::thread second([&] { errors[1] = drawRandomMesh(log, "no/such/folder/thread.list", 2); });
	first.join();
	second.join();
	std::cout << log.str() << "Errors: '" << errors[0] << "', '" << errors[1] << "'" << std::endl;
	return errors[0].empty() && errors[1] == "no/such/folder/thread.list not open" ? 0 : 1;
}
