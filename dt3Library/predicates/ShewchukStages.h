// SPDX-License-Identifier: MIT
// The adaptive stages after the filter. Each is a function, so that a test can tell which one decided.
#pragma once

#include "Point3.h"
#include "predicates/Bounds.h"
#include "predicates/Determinants.h"
#include "predicates/ErrorFree.h"
#include "predicates/Tracked.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace TULO3D {

/// The result of a stage: an approximation of the determinant, and whether its sign is certain.
struct StageResult
{
	double det;
	bool bDecided;
};

/// The rows of a determinant, exact: rounded differences (hi) with what was lost (lo, the tails).
template <std::size_t N>
using ExactRows = std::array<Row<TwoDoubles>, N>;
using Orient3dRows = ExactRows<3>;
using InsphereRows = ExactRows<4>;
using LiftedRows = std::array<SphereRow<TwoDoubles>, 4>;

/// p seen from the origin.
inline Row<TwoDoubles> exactRow(const Point3& p, const Point3& origin)
{
	return {twoDiff(p.x(), origin.x()), twoDiff(p.y(), origin.y()), twoDiff(p.z(), origin.z())};
}

/// a, b, c seen from d.
inline Orient3dRows orient3dRows(const Point3& a, const Point3& b, const Point3& c, const Point3& d)
{
	return {exactRow(a, d), exactRow(b, d), exactRow(c, d)};
}

/// The four corners seen from the query point e.
inline InsphereRows insphereRows(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d, const Point3& e)
{
	return {exactRow(a, e), exactRow(b, e), exactRow(c, e), exactRow(d, e)};
}

/// Between the filter and B, where there are tails: the filter with differences from each of the points but d. With
/// points at many scales, those from a nearer point have the smaller rounding errors. A hundredth of the cost of D.
StageResult orient3dFromOthers(const MachineConstants& constants, const Point3& a, const Point3& b,
    const Point3& c, const Point3& d);
/// B: exact in the rounded differences, and so exact where there are no tails.
StageResult orient3dStageB(
    const MachineConstants& constants, const Orient3dRows& rows, double permanent);
/// C: the estimate of B, corrected by the tails to first order.
StageResult orient3dStageC(
    const MachineConstants& constants, const Orient3dRows& rows, double permanent, double detB);
/// D: exact.
double orient3dExact(const MachineConstants& constants, const Orient3dRows& rows);

/// A value with the exact sign of the determinant: the stages in turn, until one is certain.
double orient3dAdapt(const MachineConstants& constants, const Point3& a, const Point3& b,
    const Point3& c, const Point3& d, double permanent);

/// Between the filter and B: a filter in double-doubles, which decides most nearly cospherical points at a
/// tenth of the cost of B.
StageResult insphereDoubleDouble(const InsphereRows& rows, double permanent);
/// The same with lifts of another scale than the other columns, where underflow may add an error of `lost`.
StageResult insphereDoubleDouble(const LiftedRows& rows, double permanent, double lost);
/// B: exact in the rounded differences, and so exact where there are no tails.
StageResult insphereStageB(
    const MachineConstants& constants, const InsphereRows& rows, double permanent);
/// C: the estimate of B, corrected by the tails to first order.
StageResult insphereStageC(
    const MachineConstants& constants, const InsphereRows& rows, double permanent, double detB);
/// D: exact, from the coordinates themselves.
double insphereExact(const MachineConstants& constants, const Point3& a, const Point3& b,
    const Point3& c, const Point3& d, const Point3& e);

/// 1 for a positive determinant, 0 for a negative one, 2 for zero: the stages in turn, until one is
/// certain.
int insphereAdapt(const MachineConstants& constants, const Point3& a, const Point3& b,
    const Point3& c, const Point3& d, const Point3& e, double permanent);

// What the stages of both tests have in common.

inline Row<double> rounded(const Row<TwoDoubles>& r)
{
	return {r.x.hi, r.y.hi, r.z.hi};
}

inline Row<WithTail> firstOrder(const Row<TwoDoubles>& r)
{
	return {{r.x.hi, r.x.lo}, {r.y.hi, r.y.lo}, {r.z.hi, r.z.lo}};
}

template <std::size_t N>
bool haveNoTails(const ExactRows<N>& rows)
{
	return std::all_of(rows.begin(), rows.end(),
	    [](const Row<TwoDoubles>& r) { return r.x.lo == 0.0 && r.y.lo == 0.0 && r.z.lo == 0.0; });
}

/// C: detB with the first order of the tails, and a bound that grows with the rounding of detB.
inline StageResult corrected(const MachineConstants& constants, double errboundC, double permanent,
    double detB, double correction)
{
	const double det = detB + correction;
	return {
	    det, std::abs(det) >= errboundC * permanent + constants.resulterrbound * std::abs(detB)};
}

} // namespace TULO3D
