// SPDX-License-Identifier: MIT
// The stages of the orientation test behind the filter.
#include "predicates/Expansion.h"
#include "predicates/ShewchukStages.h"

#include <cmath>

namespace TULO3D {

Orient3dRows::Orient3dRows(const Point3& a, const Point3& b, const Point3& c, const Point3& d)
    : adx(a.x() - d.x()),
      ady(a.y() - d.y()),
      adz(a.z() - d.z()),
      bdx(b.x() - d.x()),
      bdy(b.y() - d.y()),
      bdz(b.z() - d.z()),
      cdx(c.x() - d.x()),
      cdy(c.y() - d.y()),
      cdz(c.z() - d.z()),
      adxTail(twoDiff(a.x(), d.x()).lo),
      adyTail(twoDiff(a.y(), d.y()).lo),
      adzTail(twoDiff(a.z(), d.z()).lo),
      bdxTail(twoDiff(b.x(), d.x()).lo),
      bdyTail(twoDiff(b.y(), d.y()).lo),
      bdzTail(twoDiff(b.z(), d.z()).lo),
      cdxTail(twoDiff(c.x(), d.x()).lo),
      cdyTail(twoDiff(c.y(), d.y()).lo),
      cdzTail(twoDiff(c.z(), d.z()).lo)
{
}

bool Orient3dRows::hasNoTails() const
{
	return adxTail == 0.0 && adyTail == 0.0 && adzTail == 0.0 && bdxTail == 0.0 && bdyTail == 0.0 &&
	    bdzTail == 0.0 && cdxTail == 0.0 && cdyTail == 0.0 && cdzTail == 0.0;
}

StageResult orient3dStageB(const ArdoTest3& constants, const Orient3dRows& r, double permanent)
{
	const double s = constants.splitter;
	const auto bc = scale(s, minor2(s, r.bdx, r.cdy, r.cdx, r.bdy), r.adz);
	const auto ca = scale(s, minor2(s, r.cdx, r.ady, r.adx, r.cdy), r.bdz);
	const auto ab = scale(s, minor2(s, r.adx, r.bdy, r.bdx, r.ady), r.cdz);
	const double det = sum(sum(bc, ca), ab).estimate();
	return {det, std::abs(det) >= constants.o3derrboundB * permanent || r.hasNoTails()};
}

StageResult orient3dStageC(
    const ArdoTest3& constants, const Orient3dRows& r, double permanent, double detB)
{
	const double errbound =
	    constants.o3derrboundC * permanent + constants.resulterrbound * std::abs(detB);
	const double det = detB +
	    ((r.adz *
	             ((r.bdx * r.cdyTail + r.cdy * r.bdxTail) -
	                 (r.bdy * r.cdxTail + r.cdx * r.bdyTail)) +
	         r.adzTail * (r.bdx * r.cdy - r.bdy * r.cdx)) +
	        (r.bdz *
	                ((r.cdx * r.adyTail + r.ady * r.cdxTail) -
	                    (r.cdy * r.adxTail + r.adx * r.cdyTail)) +
	            r.bdzTail * (r.cdx * r.ady - r.cdy * r.adx)) +
	        (r.cdz *
	                ((r.adx * r.bdyTail + r.bdy * r.adxTail) -
	                    (r.ady * r.bdxTail + r.bdx * r.adyTail)) +
	            r.cdzTail * (r.adx * r.bdy - r.ady * r.bdx)));
	return {det, std::abs(det) >= errbound};
}

namespace {

/// (px + pxTail) * (qy + qyTail) - (qx + qxTail) * (py + pyTail).
Expansion<16> exactMinor(double splitter, const TwoDoubles& px, const TwoDoubles& py,
    const TwoDoubles& qx, const TwoDoubles& qy)
{
	const auto pxqy = scaleByPair(splitter, Expansion<2>::of(px), qy);
	const auto qxpy = scaleByPair(splitter, Expansion<2>::of(qx), py);
	return sum(pxqy, -qxpy);
}

} // namespace

double orient3dExact(const ArdoTest3& constants, const Orient3dRows& r)
{
	const double s = constants.splitter;
	const TwoDoubles ax{r.adx, r.adxTail}, ay{r.ady, r.adyTail}, az{r.adz, r.adzTail};
	const TwoDoubles bx{r.bdx, r.bdxTail}, by{r.bdy, r.bdyTail}, bz{r.bdz, r.bdzTail};
	const TwoDoubles cx{r.cdx, r.cdxTail}, cy{r.cdy, r.cdyTail}, cz{r.cdz, r.cdzTail};

	const auto bc = scaleByPair(s, exactMinor(s, bx, by, cx, cy), az);
	const auto ca = scaleByPair(s, exactMinor(s, cx, cy, ax, ay), bz);
	const auto ab = scaleByPair(s, exactMinor(s, ax, ay, bx, by), cz);
	return sum(sum(bc, ca), ab).mostSignificant();
}

double orient3dAdapt(const ArdoTest3& constants, const Point3& a, const Point3& b, const Point3& c,
    const Point3& d, double permanent)
{
	const Orient3dRows rows(a, b, c, d);
	const StageResult stageB = orient3dStageB(constants, rows, permanent);
	if (stageB.bDecided) return stageB.det;
	const StageResult stageC = orient3dStageC(constants, rows, permanent, stageB.det);
	if (stageC.bDecided) return stageC.det;
	return orient3dExact(constants, rows);
}

} // namespace TULO3D
