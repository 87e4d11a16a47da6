// SPDX-License-Identifier: MIT
// The stages of the orientation test after the filter.
#include "predicates/Expansion.h"
#include "predicates/ShewchukStages.h"

#include <cmath>

namespace TULO3D {

StageResult orient3dStageB(
    const MachineConstants& constants, const Orient3dRows& rows, double permanent)
{
	const double s = constants.splitter;
	const Row<double> a = rounded(rows[0]), b = rounded(rows[1]), c = rounded(rows[2]);
	const double det =
	    minorXYZ(s, a.z, minorXY(s, b, c), b.z, minorXY(s, a, c), c.z, minorXY(s, a, b)).estimate();
	return {det, std::abs(det) >= constants.o3derrboundB * permanent || haveNoTails(rows)};
}

StageResult orient3dStageC(
    const MachineConstants& constants, const Orient3dRows& rows, double permanent, double detB)
{
	const WithTail det =
	    orientationDeterminant(firstOrder(rows[0]), firstOrder(rows[1]), firstOrder(rows[2]));
	return corrected(constants, constants.o3derrboundC, permanent, detB, det.tail);
}

StageResult orient3dFromOthers(const MachineConstants& constants, const Point3& a, const Point3& b,
    const Point3& c, const Point3& d)
{
	const auto seenFrom = [](const Point3& origin, const Point3& p) -> Row<Entry> {
		return {{p.x() - origin.x()}, {p.y() - origin.y()}, {p.z() - origin.z()}};
	};
	const std::array<const Point3*, 4> aEven[] = {
	    {&b, &a, &d, &c}, {&c, &d, &a, &b}, {&d, &c, &b, &a}};
	WithMagnitude det{};
	for (const auto& [p, q, r, origin] : aEven) {
		det = orientationDeterminant(
		    seenFrom(*origin, *p), seenFrom(*origin, *q), seenFrom(*origin, *r));
		const double bound = constants.o3derrboundA * det.magnitude + kLostInOrient3d;
		if (std::abs(det.value) >= bound) return {det.value, true};
	}
	return {det.value, false};
}

double orient3dExact(const MachineConstants& constants, const Orient3dRows& rows)
{
	const double s = constants.splitter;
	const auto minor = [s](const Row<TwoDoubles>& p, const Row<TwoDoubles>& q) {
		return sum(scaleByPair(s, Expansion<2>::of(p.x), q.y),
		    -scaleByPair(s, Expansion<2>::of(q.x), p.y));
	};
	const auto& [a, b, c] = rows;
	const auto bc = scaleByPair(s, minor(b, c), a.z);
	const auto ca = scaleByPair(s, minor(c, a), b.z);
	const auto ab = scaleByPair(s, minor(a, b), c.z);
	return sum(sum(bc, ca), ab).mostSignificant();
}

double orient3dAdapt(const MachineConstants& constants, const Point3& a, const Point3& b,
    const Point3& c, const Point3& d, double permanent)
{
	const Orient3dRows rows = orient3dRows(a, b, c, d);
	if (!haveNoTails(rows)) {
		const StageResult fromOthers = orient3dFromOthers(constants, a, b, c, d);
		if (fromOthers.bDecided) return fromOthers.det;
	}
	const StageResult stageB = orient3dStageB(constants, rows, permanent);
	if (stageB.bDecided) return stageB.det;
	const StageResult stageC = orient3dStageC(constants, rows, permanent, stageB.det);
	if (stageC.bDecided) return stageC.det;
	return orient3dExact(constants, rows);
}

} // namespace TULO3D
