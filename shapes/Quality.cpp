// SPDX-License-Identifier: MIT
// Measures of tetrahedra, from differences of coordinates.
#include "shapes/Quality.h"

#include "Constructions.h"

#include <array>
#include <stdexcept>

namespace TULO3D::shapes {

namespace {

/// The corners of the edges in the order of the results, and the other two.
constexpr int kEdges[6][4] = {
    {0, 1, 2, 3}, {0, 2, 1, 3}, {0, 3, 1, 2}, {1, 2, 0, 3}, {1, 3, 0, 2}, {2, 3, 0, 1}};

/// A tetrahedron scaled up to edges of about 1, so that no product of them underflows.
struct Scaled
{
	Scaled(const Mesh& mesh, Index tet);
	void measureEdges();
	void measureFacets();

	std::array<Vec, 3> edge; // from corner 0
	double scale, det;
	std::array<double, 6> length{}; // of the edges
	std::array<Vec, 4> normal;      // of facet i, outward, twice its area long
};

Scaled::Scaled(const Mesh& mesh, Index tet)
{
	const Index* pCorner = mesh.corners(tet);
	double size = 0;
	for (std::size_t i = 0; i < 3; ++i) {
		edge[i] = mesh.between(pCorner[0], pCorner[i + 1]);
		size = std::max(size, largest(edge[i]));
	}
	scale = std::max(1.0, unitScale(size)); // large ones do not overflow
	for (Vec& e : edge) e = scale * e;
	det = std::max(0.0, dot(edge[0], cross(edge[1], edge[2]))); // exactly, it is positive
}

void Scaled::measureEdges()
{
	const auto& [a, b, c] = edge;
	length = {norm(a), norm(b), norm(c), norm(b - a), norm(c - a), norm(c - b)};
}

void Scaled::measureFacets()
{
	const auto& [a, b, c] = edge;
	normal = {cross(b - a, c - a), cross(c, b), cross(a, c), cross(b, a)};
}

/// The sine of the angle is det * edge, its cosine minus the product of the normals, both over the areas.
void writeAngles(const Scaled& tet, double* pAngles)
{
	for (std::size_t e = 0; e < 6; ++e) {
		const Vec &n = tet.normal[static_cast<std::size_t>(kEdges[e][2])],
		          &m = tet.normal[static_cast<std::size_t>(kEdges[e][3])];
		pAngles[e] = std::atan2(tet.det * tet.length[e], -dot(n, m));
	}
}

/// The inradius is 3 volumes / surface, which are det / 6 and half of the sum of the normals' lengths.
double radiusRatio(const Scaled& tet, double circumradius)
{
	double sum = 0;
	for (const Vec& n : tet.normal) sum += norm(n);
	const double ratio = 3 * (tet.det / sum) / (circumradius * tet.scale);
	return ratio >= 0 ? std::min(1.0, ratio) : 0; // no number where all of it underflows
}

void writeCircumsphere(const Mesh& mesh, std::size_t t, const QualityArrays& arrays)
{
	auto [arm, radius] = circumsphere(mesh, static_cast<Index>(t));
	if (arrays.pCircumradii != nullptr) arrays.pCircumradii[t] = radius;
	if (arrays.pCircumcentres == nullptr) return;
	const double* p = mesh.point(mesh.pCorners[4 * t]);
	if (!std::isfinite(radius)) arm = {radius, radius, radius};
	double* pCentre = arrays.pCircumcentres + 3 * t;
	pCentre[0] = p[0] + arm.x;
	pCentre[1] = p[1] + arm.y;
	pCentre[2] = p[2] + arm.z;
}

} // namespace

void measureQuality(const MeshView& view, const QualityArrays& arrays)
{
	const Mesh mesh(view);
	const bool bSpheres = arrays.pCircumcentres != nullptr || arrays.pCircumradii != nullptr;
	const bool bEnds = arrays.pShortestEdges != nullptr || arrays.pLongestEdges != nullptr;
	const bool bFacets = arrays.pDihedralAngles != nullptr || arrays.pRadiusRatios != nullptr;
	const bool bEdges = arrays.pDihedralAngles != nullptr || bEnds;
	const bool bAny = arrays.pVolumes != nullptr || bFacets || bEdges;
	for (std::size_t t = 0; t < mesh.numTets; ++t) {
		if (bSpheres) writeCircumsphere(mesh, t, arrays);
		if (!bAny) continue;
		const auto index = static_cast<Index>(t);
		Scaled tet(mesh, index);
		if (bEdges) tet.measureEdges();
		if (bFacets) tet.measureFacets();
		if (arrays.pVolumes != nullptr)
			arrays.pVolumes[t] = tet.det / 6 / tet.scale / tet.scale / tet.scale;
		if (arrays.pDihedralAngles != nullptr) writeAngles(tet, arrays.pDihedralAngles + 6 * t);
		if (arrays.pRadiusRatios != nullptr)
			arrays.pRadiusRatios[t] = radiusRatio(tet, circumsphere(mesh, index).radius);
		if (!bEnds) continue;
		const auto [least, most] = std::minmax_element(tet.length.begin(), tet.length.end());
		if (arrays.pShortestEdges != nullptr) arrays.pShortestEdges[t] = *least / tet.scale;
		if (arrays.pLongestEdges != nullptr) arrays.pLongestEdges[t] = *most / tet.scale;
	}
}

std::vector<std::size_t> histogram(
    const double* pValues, std::size_t numValues, double low, double high, std::size_t numBins)
{
	if (!(low < high) || !std::isfinite(low) || !std::isfinite(high) || numBins == 0) {
		throw std::invalid_argument(
		    "A histogram needs a bin, and finite bounds, the lower one first.");
	}
	std::vector<std::size_t> vCounts(numBins, 0);
	const double perUnit = static_cast<double>(numBins) / (high - low);
	for (const double* p = pValues; p != pValues + numValues; ++p) {
		if (!(*p >= low && *p <= high)) continue;
		const auto bin = static_cast<std::size_t>((*p - low) * perUnit);
		++vCounts[std::min(bin, numBins - 1)];
	}
	return vCounts;
}

} // namespace TULO3D::shapes
