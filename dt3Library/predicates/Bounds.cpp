// SPDX-License-Identifier: MIT
// The machine constants, found as in Shewchuk's exactinit.
#include "predicates/Bounds.h"

namespace TULO3D {

MachineConstants::MachineConstants() : splitter(1.0), epsilon(1.0)
{
	bool bEveryOther = true; // the splitter has half as many bits as the significand
	double check = 1.0;
	double lastCheck = 0.0;
	do {
		lastCheck = check;
		epsilon *= 0.5;
		if (bEveryOther) splitter *= 2.0;
		bEveryOther = !bEveryOther;
		check = 1.0 + epsilon;
	} while (check != 1.0 && check != lastCheck);
	splitter += 1.0;

	const auto firstOrder = [this](double a, double b) { return (a + b * epsilon) * epsilon; };
	const auto secondOrder = [&](double a, double b) { return firstOrder(a, b) * epsilon; };
	resulterrbound = firstOrder(3.0, 8.0);
	ccwerrboundA = firstOrder(3.0, 16.0);
	ccwerrboundB = firstOrder(2.0, 12.0);
	ccwerrboundC = secondOrder(9.0, 64.0);
	o3derrboundA = firstOrder(7.0, 56.0);
	o3derrboundB = firstOrder(3.0, 28.0);
	o3derrboundC = secondOrder(26.0, 288.0);
	iccerrboundA = firstOrder(10.0, 96.0);
	iccerrboundB = firstOrder(4.0, 48.0);
	iccerrboundC = secondOrder(44.0, 576.0);
	isperrboundA = firstOrder(16.0, 224.0);
	isperrboundB = firstOrder(5.0, 72.0);
	isperrboundC = secondOrder(71.0, 1408.0);
}

} // namespace TULO3D
