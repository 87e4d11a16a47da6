// SPDX-License-Identifier: MIT
// What several examples share: points from a text file, and the volume between four points.
#pragma once

#include "Tulo_3D.h"

#include <cstdlib>
#include <fstream>
#include <iostream>

/// The points of the file that the first argument names, or else of `defaultFile`.
inline std::vector<TULO3D::Point3> readPoints(int argc, char** argv, const char* defaultFile)
{
	const char* const name = argc > 1 ? argv[1] : defaultFile;
	std::vector<TULO3D::Point3> points;
	std::ifstream file(name);
	for (double x, y, z; file >> x >> y >> z;) points.emplace_back(x, y, z);
	if (points.empty()) {
		std::cerr << "No points in " << name << ". Usage: " << argv[0] << " [FILE]" << std::endl;
		std::exit(2);
	}
	return points;
}

/// Positive when a, b, c run counter-clockwise, seen from d.
inline double volume(const TULO3D::Point3& a, const TULO3D::Point3& b, const TULO3D::Point3& c,
    const TULO3D::Point3& d)
{
	const TULO3D::Vector3 u = b - a, v = c - a, w = d - a;
	const double det = u.x() * (v.y() * w.z() - v.z() * w.y()) +
	    u.y() * (v.z() * w.x() - v.x() * w.z()) + u.z() * (v.x() * w.y() - v.y() * w.x());
	return det / 6;
}
