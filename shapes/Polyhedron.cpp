// SPDX-License-Identifier: MIT
// Cutting a convex polyhedron by a plane: each face by itself, and what closes the cut.
#include "Polyhedron.h"

#include <algorithm>
#include <utility>

namespace TULO3D::shapes {

void Polyhedron::clear()
{
	vCorners.clear();
	vFaces.clear();
	vPolygons.clear();
}

Index Polyhedron::addCorner(const Corner& corner)
{
	vCorners.push_back(corner);
	return static_cast<Index>(vCorners.size() - 1);
}

void Polyhedron::addFace(Index label, const Vec& normal, double distance)
{
	const std::size_t begin = vFaces.empty() ? 0 : vFaces.back().end;
	vFaces.push_back({begin, vPolygons.size(), label, normal, distance});
}

void Polyhedron::addFacesAlong(
    std::vector<Index>& vNextCorner, Index label, const Vec& normal, double distance)
{
	for (std::size_t i = 0; i < vNextCorner.size(); ++i) {
		if (vNextCorner[i] < 0) continue;
		for (Index corner = static_cast<Index>(i); corner >= 0;) {
			const Index next = std::exchange(vNextCorner[at(corner)], -1);
			if (next >= 0) addToPolygon(corner);
			corner = next;
		}
		addFace(label, normal, distance);
	}
}

/// The corner where the plane crosses an edge: of the two faces at the edge the second one finds it made.
Index Polyhedron::cornerBetween(Index inside, Index outside)
{
	const auto key =
	    static_cast<std::uint64_t>(inside) << 32U | static_cast<std::uint64_t>(outside);
	const auto [entry, bNew] = made.try_emplace(key, static_cast<Index>(vCorners.size()));
	if (!bNew) return entry->second;
	const Corner &a = vCorners[at(inside)], &b = vCorners[at(outside)];
	const double ha = vHeights[at(inside)], hb = -vHeights[at(outside)]; // hb > 0
	Corner corner{{}, 1, -1};
	if (a.weight != 0 && b.weight != 0) {
		// From the nearer end, so that a distant end does not spoil it.
		const double t = ha / (ha + hb);
		corner.p = t < 0.5 ? a.p + t * (b.p - a.p) : b.p + hb / (ha + hb) * (a.p - b.p);
	} else if (a.weight != 0) {
		corner.p = a.p + ha / hb * b.p;
	} else if (b.weight != 0 && ha > 0) {
		corner.p = b.p + hb / ha * a.p;
	} else {
		corner.p = unit(ha * b.p + hb * a.p);
		corner.weight = 0;
	}
	vCorners.push_back(corner);
	return entry->second;
}

void Polyhedron::cutFace(const Face& face)
{
	const std::size_t begin = vPolygons.size();
	Index firstEntry = -1, exit = -1;
	const auto link = [&](Index entry) {
		vNext[at(entry)] = exit;
	}; // the new face has the edge reversed
	for (std::size_t i = face.begin; i < face.end; ++i) {
		const Index a = vFormer[i], b = vFormer[i + 1 < face.end ? i + 1 : face.begin];
		if (isInside(a)) vPolygons.push_back(a);
		if (isInside(a) == isInside(b)) continue;
		const Index corner = isInside(a) ? cornerBetween(a, b) : cornerBetween(b, a);
		vNext.resize(vCorners.size(), -1);
		vPolygons.push_back(corner);
		if (isInside(a)) {
			exit = corner;
		} else if (exit < 0) {
			firstEntry = corner; // the exit before it comes last
		} else {
			link(corner);
		}
	}
	if (firstEntry >= 0) link(firstEntry);
	if (vPolygons.size() > begin) addFace(face.label, face.normal, face.distance);
}

/// Leaves no face.
void Polyhedron::takeFormerFaces()
{
	vFormer.clear();
	vFormer.swap(vPolygons);
	vFormerFaces.clear();
	vFormerFaces.swap(vFaces);
}

bool Polyhedron::cut(const Vec& normal, double distance, Index label)
{
	vHeights.clear();
	bool bCut = false;
	for (const Corner& corner : vCorners) {
		vHeights.push_back(corner.weight * distance - dot(normal, corner.p));
		bCut |= !(vHeights.back() >= 0);
	}
	if (!bCut) return false;
	takeFormerFaces();
	made.clear();
	vNext.assign(vCorners.size(), -1);
	for (const Face& face : vFormerFaces) cutFace(face);
	addFacesAlong(vNext, label, normal, distance);
	dropCornersOutside();
	return true;
}

/// Moves the other corners, those made by the cut included, to the front.
void Polyhedron::dropCornersOutside()
{
	vHeights.resize(vCorners.size(), 0);
	Index num = 0;
	for (std::size_t i = 0; i < vCorners.size(); ++i) {
		if (!(vHeights[i] >= 0)) continue;
		vNext[i] = num; // its new number
		vCorners[at(num++)] = vCorners[i];
	}
	vCorners.resize(at(num));
	for (Index& corner : vPolygons) corner = vNext[at(corner)];
}

void Polyhedron::joinCornersAtInfinity()
{
	const auto isAtInfinity = [](const Corner& corner) { return corner.weight == 0; };
	if (std::none_of(vCorners.begin(), vCorners.end(), isAtInfinity)) return;
	takeFormerFaces();
	joinToNeighbours();
	for (const Face& face : vFormerFaces) {
		const std::size_t begin = vPolygons.size();
		for (std::size_t i = face.begin; i < face.end; ++i) {
			const Index corner = vNext[at(vFormer[i])];
			if (corner >= 0 && (vPolygons.size() == begin || vPolygons.back() != corner))
				vPolygons.push_back(corner);
		}
		while (vPolygons.size() > begin + 1 && vPolygons.back() == vPolygons[begin])
			vPolygons.pop_back();
		// What has become an edge is none any more: the faces on its two sides are neighbours now.
		if (vPolygons.size() < begin + 3) {
			vPolygons.resize(begin);
		} else {
			addFace(face.label, face.normal, face.distance);
		}
	}
}

/// Sets vNext to the corner that each one is joined to: itself, unless it is at infinity.
void Polyhedron::joinToNeighbours()
{
	vNext.clear();
	for (std::size_t i = 0; i < vCorners.size(); ++i) {
		vNext.push_back(vCorners[i].weight != 0 ? static_cast<Index>(i) : -1);
	}
	for (bool bChanged = true; bChanged;) {
		bChanged = false;
		for (const Face& face : vFormerFaces) {
			for (std::size_t i = face.begin; i < face.end; ++i) {
				const Index a = vFormer[i], b = vFormer[i + 1 < face.end ? i + 1 : face.begin];
				if (vNext[at(a)] >= 0 || vNext[at(b)] < 0) continue;
				vNext[at(a)] = vNext[at(b)];
				bChanged = true;
			}
		}
	}
}

double Polyhedron::volume() const
{
	double sum = 0;
	for (const Face& face : vFaces) {
		Vec area; // twice
		const Corner& first = vCorners[at(vPolygons[face.begin])];
		const Corner* pBefore = &first;
		for (std::size_t i = face.begin; i < face.end; ++i) {
			const Corner& corner = vCorners[at(vPolygons[i])];
			area = area + cross(pBefore->p - first.p, corner.p - first.p);
			pBefore = &corner;
		}
		sum += face.distance * dot(face.normal, area) / 6;
	}
	return std::max(0.0, sum);
}

} // namespace TULO3D::shapes
