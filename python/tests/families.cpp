// SPDX-License-Identifier: MIT
// Prints the families of hard inputs: name, number of points, and coordinates as exact hexadecimal numbers.
#include "points.h"

#include <cstdio>
#include <cstdlib>

int main(int, char** argv)
{
	for (const points::Family& family : points::families()) {
		const points::Cloud cloud = family.make(std::atoi(argv[1]), 1);
		std::printf("%s %zu\n", family.name.c_str(), cloud.size());
		for (const TULO3D::Point3& p : cloud) std::printf("%a %a %a\n", p.x(), p.y(), p.z());
	}
}
