// SPDX-License-Identifier: MIT
// The stages of the in-sphere test after the filter.
#include "predicates/DoubleDouble.h"
#include "predicates/Expansion.h"
#include "predicates/ShewchukStages.h"

#include <cmath>

namespace TULO3D {

namespace {

/// The exact minors of rows in a circle, where row 0 follows the last one: every other minor is one of these
/// with rows swapped, and what holds for row i holds for all.
template <std::size_t N>
struct CyclicMinors
{
	CyclicMinors(double splitter, const std::array<Row<double>, N>& r)
	{
		for (std::size_t i = 0; i < N; ++i) {
			pair[i] = minorXY(splitter, r[i], r[(i + 1) % N]);
			pairOver1[i] = minorXY(splitter, r[i], r[(i + 2) % N]);
		}
		for (std::size_t i = 0; i < N; ++i) {
			const std::size_t j = (i + 1) % N, k = (i + 2) % N, l = (i + 3) % N;
			triple[i] = minorXYZ(splitter, r[i].z, pair[j], r[j].z, pairOver1[i], r[k].z, pair[i]);
			if (N != 5) continue; // fewer rows have no such triples, or the same ones again
			tripleOver1[i] =
			    minorXYZ(splitter, r[i].z, pairOver1[j], r[j].z, -pairOver1[l], r[l].z, pair[i]);
		}
	}
	std::array<Expansion<4>, N> pair;         ///< rows i, i + 1
	std::array<Expansion<4>, N> pairOver1;    ///< rows i, i + 2
	std::array<Expansion<24>, N> triple;      ///< rows i, i + 1, i + 2
	std::array<Expansion<24>, N> tripleOver1; ///< rows i, i + 1, i + 3
};

} // namespace

StageResult insphereDoubleDouble(const LiftedRows& rows, double permanent, double lost)
{
	const double det = sphereDeterminant(rows[0], rows[1], rows[2], rows[3]).det.hi;
	return {det, std::abs(det) > kSphereBoundDoubleDouble * permanent + lost};
}

StageResult insphereDoubleDouble(const InsphereRows& rows, double permanent)
{
	return insphereDoubleDouble(
	    {lifted(rows[0]), lifted(rows[1]), lifted(rows[2]), lifted(rows[3])}, permanent, 0);
}

StageResult insphereStageB(
    const MachineConstants& constants, const InsphereRows& rows, double permanent)
{
	const double s = constants.splitter;
	const std::array<Row<double>, 4> r = {
	    rounded(rows[0]), rounded(rows[1]), rounded(rows[2]), rounded(rows[3])};
	const CyclicMinors<4> minors(s, r);
	const auto term = [&](std::size_t i) { return timesLift(s, minors.triple[(i + 1) % 4], r[i]); };
	const double det = sum(sum(-term(0), term(1)), sum(-term(2), term(3))).estimate();
	return {det, std::abs(det) >= constants.isperrboundB * permanent || haveNoTails(rows)};
}

StageResult insphereStageC(
    const MachineConstants& constants, const InsphereRows& rows, double permanent, double detB)
{
	// The 2 x 2 minors of x and y are the leading components of the exact ones: with rounded products, the
	// bound would not hold. So the determinant is expanded by its lifts, then by z, as published.
	const auto minor = [&](std::size_t i, std::size_t j) {
		const auto p = firstOrder(rows[i]), q = firstOrder(rows[j]);
		return WithTail{
		    minorXY(constants.splitter, rounded(rows[i]), rounded(rows[j])).mostSignificant(),
		    (p.x * q.y - q.x * p.y).tail};
	};
	const WithTail ab = minor(0, 1), bc = minor(1, 2), cd = minor(2, 3), da = minor(3, 0),
	               ac = minor(0, 2), bd = minor(1, 3);
	const auto row = [&](std::size_t i) { return lifted(firstOrder(rows[i])); };
	const auto a = row(0), b = row(1), c = row(2), d = row(3);
	const WithTail abc = a.z * bc - b.z * ac + c.z * ab;
	const WithTail bcd = b.z * cd - c.z * bd + d.z * bc;
	const WithTail cda = c.z * da + d.z * ac + a.z * cd;
	const WithTail dab = d.z * ab + a.z * bd + b.z * da;
	const WithTail det = (d.l * abc - c.l * dab) + (b.l * cda - a.l * bcd);
	return corrected(constants, constants.isperrboundC, permanent, detB, det.tail);
}

double insphereExact(const MachineConstants& constants, const Point3& a, const Point3& b,
    const Point3& c, const Point3& d, const Point3& e)
{
	const double s = constants.splitter;
	const auto row = [](const Point3& p) { return Row<double>{p.x(), p.y(), p.z()}; };
	const std::array<Row<double>, 5> r = {row(a), row(b), row(c), row(d), row(e)};
	const CyclicMinors<5> minors(s, r);
	// Four 3 x 3 minors make one of 4 x 4, which the lift of the remaining point multiplies.
	const auto term = [&](std::size_t i) {
		const auto plus = sum(minors.triple[(i + 2) % 5], minors.tripleOver1[(i + 1) % 5]);
		const auto minus = sum(minors.tripleOver1[(i + 3) % 5], minors.triple[(i + 1) % 5]);
		return timesLift(s, sum(plus, -minus), r[i]);
	};
	return sum(sum(term(0), term(1)), sum(sum(term(2), term(3)), term(4))).mostSignificant();
}

int insphereAdapt(const MachineConstants& constants, const Point3& a, const Point3& b,
    const Point3& c, const Point3& d, const Point3& e, double permanent)
{
	const auto signCode = [](double det) { return det > 0.0 ? 1 : det < 0.0 ? 0 : 2; };

	const InsphereRows rows = insphereRows(a, b, c, d, e);
	const StageResult doubleDouble = insphereDoubleDouble(rows, permanent);
	if (doubleDouble.bDecided) return signCode(doubleDouble.det);
	const StageResult stageB = insphereStageB(constants, rows, permanent);
	if (stageB.bDecided) return signCode(stageB.det);
	const StageResult stageC = insphereStageC(constants, rows, permanent, stageB.det);
	if (stageC.bDecided) return signCode(stageC.det);
	return signCode(insphereExact(constants, a, b, c, d, e));
}

} // namespace TULO3D
