// SPDX-License-Identifier: MIT
// The machine constants, the filter of the in-sphere test, and the names of the results.
#include "ArdoTest3.h"
#include "Message.h"
#include "predicates/ShewchukStages.h"
#include "predicates/Underflow.h"

namespace TULO3D {

ArdoTest3::ArdoTest3()
{
	epsilon = 1.0;
	splitter = 1.0;
	bool bEveryOther = true;
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

	resulterrbound = (3.0 + 8.0 * epsilon) * epsilon;
	ccwerrboundA = (3.0 + 16.0 * epsilon) * epsilon;
	ccwerrboundB = (2.0 + 12.0 * epsilon) * epsilon;
	ccwerrboundC = (9.0 + 64.0 * epsilon) * epsilon * epsilon;
	o3derrboundA = (7.0 + 56.0 * epsilon) * epsilon;
	o3derrboundB = (3.0 + 28.0 * epsilon) * epsilon;
	o3derrboundC = (26.0 + 288.0 * epsilon) * epsilon * epsilon;
	iccerrboundA = (10.0 + 96.0 * epsilon) * epsilon;
	iccerrboundB = (4.0 + 48.0 * epsilon) * epsilon;
	iccerrboundC = (44.0 + 576.0 * epsilon) * epsilon * epsilon;
	isperrboundA = (16.0 + 224.0 * epsilon) * epsilon;
	isperrboundB = (5.0 + 72.0 * epsilon) * epsilon;
	isperrboundC = (71.0 + 1408.0 * epsilon) * epsilon * epsilon;
}

ArdoTest3::FastStage ArdoTest3::insphereFast(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d, const Point3& e) const
{
	const double aex = a.x() - e.x(), aey = a.y() - e.y(), aez = a.z() - e.z();
	const double bex = b.x() - e.x(), bey = b.y() - e.y(), bez = b.z() - e.z();
	const double cex = c.x() - e.x(), cey = c.y() - e.y(), cez = c.z() - e.z();
	const double dex = d.x() - e.x(), dey = d.y() - e.y(), dez = d.z() - e.z();

	const double aexbey = aex * bey, bexaey = bex * aey, ab = aexbey - bexaey;
	const double bexcey = bex * cey, cexbey = cex * bey, bc = bexcey - cexbey;
	const double cexdey = cex * dey, dexcey = dex * cey, cd = cexdey - dexcey;
	const double dexaey = dex * aey, aexdey = aex * dey, da = dexaey - aexdey;
	const double aexcey = aex * cey, cexaey = cex * aey, ac = aexcey - cexaey;
	const double bexdey = bex * dey, dexbey = dex * bey, bd = bexdey - dexbey;

	const double abc = aez * bc - bez * ac + cez * ab;
	const double bcd = bez * cd - cez * bd + dez * bc;
	const double cda = cez * da + dez * ac + aez * cd;
	const double dab = dez * ab + aez * bd + bez * da;

	const double alift = aex * aex + aey * aey + aez * aez;
	const double blift = bex * bex + bey * bey + bez * bez;
	const double clift = cex * cex + cey * cey + cez * cez;
	const double dlift = dex * dex + dey * dey + dez * dez;

	const double det = (dlift * abc - clift * dab) + (blift * cda - alift * bcd);

	const double aezAbs = std::abs(aez), bezAbs = std::abs(bez);
	const double cezAbs = std::abs(cez), dezAbs = std::abs(dez);
	const double abAbs = std::abs(aexbey) + std::abs(bexaey);
	const double bcAbs = std::abs(bexcey) + std::abs(cexbey);
	const double cdAbs = std::abs(cexdey) + std::abs(dexcey);
	const double daAbs = std::abs(dexaey) + std::abs(aexdey);
	const double acAbs = std::abs(aexcey) + std::abs(cexaey);
	const double bdAbs = std::abs(bexdey) + std::abs(dexbey);
	const double permanent = (cdAbs * bezAbs + bdAbs * cezAbs + bcAbs * dezAbs) * alift +
	    (daAbs * cezAbs + acAbs * dezAbs + cdAbs * aezAbs) * blift +
	    (abAbs * dezAbs + bdAbs * aezAbs + daAbs * bezAbs) * clift +
	    (bcAbs * aezAbs + acAbs * bezAbs + abAbs * cezAbs) * dlift;
	return {det, permanent, isperrboundA * permanent + kLostInInsphere};
}

SphereInclusion ArdoTest3::sphereInclusionTest(const Tet3* pT, const Point3* pVtx) const
{
	const FastStage fast = insphereFast(
	    *pT->getCorner(0), *pT->getCorner(1), *pT->getCorner(2), *pT->getCorner(3), *pVtx);
	if (!fast.bCertain()) return inclusionInDoubt(*pT, *pVtx, fast.permanent);
	return fast.det > 0.0 ? SIC_OUTSIDE : SIC_INSIDE;
}

Orientation3 ArdoTest3::orientationInDoubt(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d, double permanent) const
{
	// On a lattice nearly all undecided points lie in a plane perpendicular to an axis. All three axes are
	// tested without a branch for each, because which axis it is cannot be predicted. No differences are
	// taken: a host may have them flushed to zero.
	const auto areEqual = [](double p, double q, double r, double s) {
		return (p == s) & (q == s) & (r == s);
	};
	const bool bAcross = areEqual(a.x(), b.x(), c.x(), d.x()) |
	    areEqual(a.y(), b.y(), c.y(), d.y()) | areEqual(a.z(), b.z(), c.z(), d.z());
	return bAcross ? ORIENTATION3_COPLANAR : exactOrientation(a, b, c, d, permanent);
}

Orientation3 ArdoTest3::exactOrientation(
    const Point3& a, const Point3& b, const Point3& c, const Point3& d, double permanent) const
{
	const bool bTiny = mayUnderflow(a, b, c, d);
	if (!bTiny && permanent == 0.0) return ORIENTATION3_COPLANAR; // every product is zero
	const double det = bTiny ? orient3dSignDespiteUnderflow(a, b, c, d)
	                         : orient3dAdapt(*this, a, b, c, d, permanent);
	if (det < 0.0) return ORIENTATION3_POSITIVE;
	return det > 0.0 ? ORIENTATION3_NEGATIVE : ORIENTATION3_COPLANAR;
}

SphereInclusion ArdoTest3::inclusionInDoubt(
    const Tet3& tet, const Point3& q, double permanent) const
{
	const Point3 &a = *tet.getCorner(0), &b = *tet.getCorner(1), &c = *tet.getCorner(2),
	             &d = *tet.getCorner(3);
	const bool bTiny = mayUnderflow(a, b, c, d, q);
	// With the coordinates of a corner every product is zero, and the test counts such a point as inside.
	if (bTiny ? tet.hasVertex(q) : permanent == 0.0) return SIC_INSIDE;
	if (bTiny) return insphereSignDespiteUnderflow(a, b, c, d, q) < 0 ? SIC_INSIDE : SIC_OUTSIDE;
	// Deliberate: the code 2 of an exact zero counts as outside, so cospherical points never conflict.
	return insphereAdapt(*this, a, b, c, d, q, permanent) > 0 ? SIC_OUTSIDE : SIC_INSIDE;
}

std::string ArdoTest3::getOrientationName(Orientation3 orientation)
{
	switch (orientation) {
	case ORIENTATION3_POSITIVE:
		return "ORI3_ORIENTATION3_POSITIVE";
	case ORIENTATION3_NEGATIVE:
		return "ORI3_ORIENTATION3_NEGATIVE";
	case ORIENTATION3_COPLANAR:
		return "ORI3_ZERO";
	}
	CONDITION_CHECK(false);
	return std::string();
}

void ArdoTest3::printOrientation(Orientation3 orientation, const std::string& label)
{
	Message line;
	line << label << ": ";
	switch (orientation) {
	case ORIENTATION3_POSITIVE:
		line << "positive" << std::endl;
		break;
	case ORIENTATION3_NEGATIVE:
		line << "negative" << std::endl;
		break;
	case ORIENTATION3_COPLANAR:
		line << "coplanar" << std::endl;
		break;
	}
}

} // namespace TULO3D
