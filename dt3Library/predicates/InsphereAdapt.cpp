// SPDX-License-Identifier: MIT
// The stages of the in-sphere test behind the filter.
#include "predicates/Expansion.h"
#include "predicates/ShewchukStages.h"
#include "predicates/SphereDeterminant.h"

#include <cmath>

namespace TULO3D {

InsphereRows::InsphereRows(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d, const Point3& e)
    : aex(a.x() - e.x()),
      aey(a.y() - e.y()),
      aez(a.z() - e.z()),
      bex(b.x() - e.x()),
      bey(b.y() - e.y()),
      bez(b.z() - e.z()),
      cex(c.x() - e.x()),
      cey(c.y() - e.y()),
      cez(c.z() - e.z()),
      dex(d.x() - e.x()),
      dey(d.y() - e.y()),
      dez(d.z() - e.z()),
      aexTail(twoDiff(a.x(), e.x()).lo),
      aeyTail(twoDiff(a.y(), e.y()).lo),
      aezTail(twoDiff(a.z(), e.z()).lo),
      bexTail(twoDiff(b.x(), e.x()).lo),
      beyTail(twoDiff(b.y(), e.y()).lo),
      bezTail(twoDiff(b.z(), e.z()).lo),
      cexTail(twoDiff(c.x(), e.x()).lo),
      ceyTail(twoDiff(c.y(), e.y()).lo),
      cezTail(twoDiff(c.z(), e.z()).lo),
      dexTail(twoDiff(d.x(), e.x()).lo),
      deyTail(twoDiff(d.y(), e.y()).lo),
      dezTail(twoDiff(d.z(), e.z()).lo)
{
}

bool InsphereRows::hasNoTails() const
{
	return aexTail == 0.0 && aeyTail == 0.0 && aezTail == 0.0 && bexTail == 0.0 && beyTail == 0.0 &&
	    bezTail == 0.0 && cexTail == 0.0 && ceyTail == 0.0 && cezTail == 0.0 && dexTail == 0.0 &&
	    deyTail == 0.0 && dezTail == 0.0;
}

namespace {

/// e * (x^2 + y^2 + z^2).
template <int N>
Expansion<12 * N> lift(double splitter, const Expansion<N>& e, double x, double y, double z)
{
	const auto xx = scale(splitter, scale(splitter, e, x), x);
	const auto yy = scale(splitter, scale(splitter, e, y), y);
	const auto zz = scale(splitter, scale(splitter, e, z), z);
	return sum(sum(xx, yy), zz);
}

/// p * pz + q * qz + r * rz: a 3 x 3 minor from its 2 x 2 ones.
Expansion<24> minor3(double splitter, const Expansion<4>& p, double pz, const Expansion<4>& q,
    double qz, const Expansion<4>& r, double rz)
{
	return sum(sum(scale(splitter, p, pz), scale(splitter, q, qz)), scale(splitter, r, rz));
}

} // namespace

StageResult insphereDoubleDouble(const Point3& a, const Point3& b, const Point3& c, const Point3& d,
    const Point3& e, double permanent)
{
	const auto row = [&e](const Point3& p) {
		return sphereRow(
		    differenceOf(p.x(), e.x()), differenceOf(p.y(), e.y()), differenceOf(p.z(), e.z()));
	};
	const double det = sphereDeterminant(row(a), row(b), row(c), row(d)).det.hi;
	return {det, std::abs(det) > kSphereBoundDoubleDouble * permanent};
}

StageResult insphereStageB(const ArdoTest3& constants, const InsphereRows& r, double permanent)
{
	const double s = constants.splitter;
	const auto ab = minor2(s, r.aex, r.bey, r.bex, r.aey);
	const auto bc = minor2(s, r.bex, r.cey, r.cex, r.bey);
	const auto cd = minor2(s, r.cex, r.dey, r.dex, r.cey);
	const auto da = minor2(s, r.dex, r.aey, r.aex, r.dey);
	const auto ac = minor2(s, r.aex, r.cey, r.cex, r.aey);
	const auto bd = minor2(s, r.bex, r.dey, r.dex, r.bey);

	const auto bcd = minor3(s, cd, r.bez, bd, -r.cez, bc, r.dez);
	const auto cda = minor3(s, da, r.cez, ac, r.dez, cd, r.aez);
	const auto dab = minor3(s, ab, r.dez, bd, r.aez, da, r.bez);
	const auto abc = minor3(s, bc, r.aez, ac, -r.bez, ab, r.cez);

	const auto a = -lift(s, bcd, r.aex, r.aey, r.aez);
	const auto b = lift(s, cda, r.bex, r.bey, r.bez);
	const auto c = -lift(s, dab, r.cex, r.cey, r.cez);
	const auto d = lift(s, abc, r.dex, r.dey, r.dez);

	const double det = sum(sum(a, b), sum(c, d)).estimate();
	return {det, std::abs(det) >= constants.isperrboundB * permanent || r.hasNoTails()};
}

StageResult insphereStageC(
    const ArdoTest3& constants, const InsphereRows& r, double permanent, double detB)
{
	// The leading components of the exact minors: rounded products would cost more than the bound has.
	const double s = constants.splitter;
	const double ab3 = minor2(s, r.aex, r.bey, r.bex, r.aey).mostSignificant();
	const double bc3 = minor2(s, r.bex, r.cey, r.cex, r.bey).mostSignificant();
	const double cd3 = minor2(s, r.cex, r.dey, r.dex, r.cey).mostSignificant();
	const double da3 = minor2(s, r.dex, r.aey, r.aex, r.dey).mostSignificant();
	const double ac3 = minor2(s, r.aex, r.cey, r.cex, r.aey).mostSignificant();
	const double bd3 = minor2(s, r.bex, r.dey, r.dex, r.bey).mostSignificant();

	const auto minorTail = [](double px, double py, double pxTail, double pyTail, double qx,
	                           double qy, double qxTail, double qyTail) {
		return (px * qyTail + qy * pxTail) - (py * qxTail + qx * pyTail);
	};
	const double abeps =
	    minorTail(r.aex, r.aey, r.aexTail, r.aeyTail, r.bex, r.bey, r.bexTail, r.beyTail);
	const double bceps =
	    minorTail(r.bex, r.bey, r.bexTail, r.beyTail, r.cex, r.cey, r.cexTail, r.ceyTail);
	const double cdeps =
	    minorTail(r.cex, r.cey, r.cexTail, r.ceyTail, r.dex, r.dey, r.dexTail, r.deyTail);
	const double daeps =
	    minorTail(r.dex, r.dey, r.dexTail, r.deyTail, r.aex, r.aey, r.aexTail, r.aeyTail);
	const double aceps =
	    minorTail(r.aex, r.aey, r.aexTail, r.aeyTail, r.cex, r.cey, r.cexTail, r.ceyTail);
	const double bdeps =
	    minorTail(r.bex, r.bey, r.bexTail, r.beyTail, r.dex, r.dey, r.dexTail, r.deyTail);

	const double errbound =
	    constants.isperrboundC * permanent + constants.resulterrbound * std::abs(detB);
	const double minorCorrection =
	    ((r.bex * r.bex + r.bey * r.bey + r.bez * r.bez) *
	            ((r.cez * daeps + r.dez * aceps + r.aez * cdeps) +
	                (r.cezTail * da3 + r.dezTail * ac3 + r.aezTail * cd3)) +
	        (r.dex * r.dex + r.dey * r.dey + r.dez * r.dez) *
	            ((r.aez * bceps - r.bez * aceps + r.cez * abeps) +
	                (r.aezTail * bc3 - r.bezTail * ac3 + r.cezTail * ab3))) -
	    ((r.aex * r.aex + r.aey * r.aey + r.aez * r.aez) *
	            ((r.bez * cdeps - r.cez * bdeps + r.dez * bceps) +
	                (r.bezTail * cd3 - r.cezTail * bd3 + r.dezTail * bc3)) +
	        (r.cex * r.cex + r.cey * r.cey + r.cez * r.cez) *
	            ((r.dez * abeps + r.aez * bdeps + r.bez * daeps) +
	                (r.dezTail * ab3 + r.aezTail * bd3 + r.bezTail * da3)));
	const double liftCorrection = ((r.bex * r.bexTail + r.bey * r.beyTail + r.bez * r.bezTail) *
	                                      (r.cez * da3 + r.dez * ac3 + r.aez * cd3) +
	                                  (r.dex * r.dexTail + r.dey * r.deyTail + r.dez * r.dezTail) *
	                                      (r.aez * bc3 - r.bez * ac3 + r.cez * ab3)) -
	    ((r.aex * r.aexTail + r.aey * r.aeyTail + r.aez * r.aezTail) *
	            (r.bez * cd3 - r.cez * bd3 + r.dez * bc3) +
	        (r.cex * r.cexTail + r.cey * r.ceyTail + r.cez * r.cezTail) *
	            (r.dez * ab3 + r.aez * bd3 + r.bez * da3));
	const double det = detB + (minorCorrection + 2.0 * liftCorrection);
	return {det, std::abs(det) >= errbound};
}

double insphereExact(const ArdoTest3& constants, const Point3& a, const Point3& b, const Point3& c,
    const Point3& d, const Point3& e)
{
	const double s = constants.splitter;
	const auto minor = [s](const Point3& p, const Point3& q) {
		return minor2(s, p.x(), q.y(), q.x(), p.y());
	};
	const auto ab = minor(a, b), bc = minor(b, c), cd = minor(c, d), de = minor(d, e);
	const auto ea = minor(e, a), ac = minor(a, c), bd = minor(b, d), ce = minor(c, e);
	const auto da = minor(d, a), eb = minor(e, b);

	const auto abc = minor3(s, bc, a.z(), ac, -b.z(), ab, c.z());
	const auto bcd = minor3(s, cd, b.z(), bd, -c.z(), bc, d.z());
	const auto cde = minor3(s, de, c.z(), ce, -d.z(), cd, e.z());
	const auto dea = minor3(s, ea, d.z(), da, -e.z(), de, a.z());
	const auto eab = minor3(s, ab, e.z(), eb, -a.z(), ea, b.z());
	const auto abd = minor3(s, bd, a.z(), da, b.z(), ab, d.z());
	const auto bce = minor3(s, ce, b.z(), eb, c.z(), bc, e.z());
	const auto cda = minor3(s, da, c.z(), ac, d.z(), cd, a.z());
	const auto deb = minor3(s, eb, d.z(), bd, e.z(), de, b.z());
	const auto eac = minor3(s, ac, e.z(), ce, a.z(), ea, c.z());

	// Four 3 x 3 minors make one of 4 x 4, which the lift of the remaining point multiplies.
	const auto lifted = [s](const Point3& p, const Expansion<24>& plus1, const Expansion<24>& plus2,
	                        const Expansion<24>& minus1, const Expansion<24>& minus2) {
		return lift(s, sum(sum(plus1, plus2), -sum(minus1, minus2)), p.x(), p.y(), p.z());
	};
	const auto bcde = lifted(a, cde, bce, deb, bcd);
	const auto cdea = lifted(b, dea, cda, eac, cde);
	const auto deab = lifted(c, eab, deb, abd, dea);
	const auto eabc = lifted(d, abc, eac, bce, eab);
	const auto abcd = lifted(e, bcd, abd, cda, abc);
	return sum(sum(bcde, cdea), sum(sum(deab, eabc), abcd)).mostSignificant();
}

int insphereAdapt(const ArdoTest3& constants, const Point3& a, const Point3& b, const Point3& c,
    const Point3& d, const Point3& e, double permanent)
{
	const auto signCode = [](double det) { return det > 0.0 ? 1 : det < 0.0 ? 0 : 2; };

	const StageResult doubleDouble = insphereDoubleDouble(a, b, c, d, e, permanent);
	if (doubleDouble.bDecided) return signCode(doubleDouble.det);
	const InsphereRows rows(a, b, c, d, e);
	const StageResult stageB = insphereStageB(constants, rows, permanent);
	if (stageB.bDecided) return signCode(stageB.det);
	const StageResult stageC = insphereStageC(constants, rows, permanent, stageB.det);
	if (stageC.bDecided) return signCode(stageC.det);
	return signCode(insphereExact(constants, a, b, c, d, e));
}

} // namespace TULO3D
