// SPDX-License-Identifier: MIT
// The adaptive stages behind the filter. Each is a function, so that a test can tell which one decided.
#pragma once

#include "ArdoTest3.h"

namespace TULO3D {

/// The result of a stage: an approximation of the determinant, and whether its sign is certain.
struct StageResult
{
	double det;
	bool bDecided;
};

/// The rows of the orientation determinant: a, b, c seen from d, rounded, with what was lost.
struct Orient3dRows
{
	Orient3dRows(const Point3& a, const Point3& b, const Point3& c, const Point3& d);

	/// True when the differences are exact, so that stage B is exact too.
	bool hasNoTails() const;

	double adx, ady, adz, bdx, bdy, bdz, cdx, cdy, cdz;
	double adxTail, adyTail, adzTail, bdxTail, bdyTail, bdzTail, cdxTail, cdyTail, cdzTail;
};

/// B: exact in the rounded differences.
StageResult orient3dStageB(const ArdoTest3& constants, const Orient3dRows& rows, double permanent);
/// C: the estimate of B, corrected by the tails to first order.
StageResult orient3dStageC(
    const ArdoTest3& constants, const Orient3dRows& rows, double permanent, double detB);
/// D: exact.
double orient3dExact(const ArdoTest3& constants, const Orient3dRows& rows);

/// A value with the exact sign of the determinant: B, C, D, until one is certain.
double orient3dAdapt(const ArdoTest3& constants, const Point3& a, const Point3& b, const Point3& c,
    const Point3& d, double permanent);

/// The rows of the in-sphere determinant: the four corners seen from the query point e.
struct InsphereRows
{
	InsphereRows(
	    const Point3& a, const Point3& b, const Point3& c, const Point3& d, const Point3& e);

	bool hasNoTails() const;

	double aex, aey, aez, bex, bey, bez, cex, cey, cez, dex, dey, dez;
	double aexTail, aeyTail, aezTail, bexTail, beyTail, bezTail;
	double cexTail, ceyTail, cezTail, dexTail, deyTail, dezTail;
};

/// Between the filter and B: a filter in double-doubles, which decides most nearly cospherical points at a
/// tenth of the cost of B.
StageResult insphereDoubleDouble(const Point3& a, const Point3& b, const Point3& c, const Point3& d,
    const Point3& e, double permanent);
/// B: exact in the rounded differences.
StageResult insphereStageB(const ArdoTest3& constants, const InsphereRows& rows, double permanent);
/// C: the estimate of B, corrected by the tails to first order.
StageResult insphereStageC(
    const ArdoTest3& constants, const InsphereRows& rows, double permanent, double detB);
/// D: exact, from the coordinates themselves.
double insphereExact(const ArdoTest3& constants, const Point3& a, const Point3& b, const Point3& c,
    const Point3& d, const Point3& e);

/// 1 for a positive determinant, 0 for a negative one, 2 for zero: the stages in turn, until one is
/// certain.
int insphereAdapt(const ArdoTest3& constants, const Point3& a, const Point3& b, const Point3& c,
    const Point3& d, const Point3& e, double permanent);

} // namespace TULO3D
