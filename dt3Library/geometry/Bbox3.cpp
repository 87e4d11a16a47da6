// SPDX-License-Identifier: MIT
// A box that grows with its points.
#include "Bbox3.h"
#include "Message.h"

#include <algorithm>

namespace TULO3D {

namespace {

/// Widens one axis of a box that is not empty; true when that changed it.
bool widenAxis(double& min, double& max, double coordinate)
{
	if (min > coordinate) {
		min = coordinate;
		return true;
	}
	if (coordinate > max) {
		max = coordinate;
		return true;
	}
	return false;
}

void enlargeAxis(double& min, double& max, double factor)
{
	const double d = (max - min) * factor * 0.5;
	min -= d;
	max += d;
}

} // namespace

Bbox3::Bbox3(const std::vector<Point3>& vPoints)
{
	add(vPoints);
}

bool Bbox3::add(const Point3& p)
{
	if (!isValid()) {
		p.xyz(minX, minY, minZ);
		p.xyz(maxX, maxY, maxZ);
		return true;
	}
	return widen(p);
}

bool Bbox3::add(const std::vector<Point3>& vPoints)
{
	if (vPoints.empty()) return false;
	bool bChanged = !isValid() && add(vPoints.front());
	for (const Point3& point : vPoints) bChanged |= widen(point);
	return bChanged;
}

void Bbox3::treatPointForValidBox(const Point3& p)
{
	widen(p);
}

bool Bbox3::widen(const Point3& p)
{
	const bool bX = widenAxis(minX, maxX, p.x());
	const bool bY = widenAxis(minY, maxY, p.y());
	const bool bZ = widenAxis(minZ, maxZ, p.z());
	return bX || bY || bZ;
}

void Bbox3::enlargeBounds(double factor)
{
	enlargeAxis(minX, maxX, factor);
	enlargeAxis(minY, maxY, factor);
	enlargeAxis(minZ, maxZ, factor);
}

Bbox3 Bbox3::operator+(Bbox3& other)
{
	minX = std::min(minX, other.minX);
	minY = std::min(minY, other.minY);
	minZ = std::min(minZ, other.minZ);
	maxX = std::max(maxX, other.maxX);
	maxY = std::max(maxY, other.maxY);
	maxZ = std::max(maxZ, other.maxZ);
	return *this;
}

double Bbox3::getMaxRange() const
{
	return std::max({getRangeX(), getRangeY(), getRangeZ()});
}

double Bbox3::getMinCoord() const
{
	return std::min({minX, minY, minZ});
}

double Bbox3::getMaxCoord() const
{
	return std::max({maxX, maxY, maxZ});
}

void Bbox3::debug() const
{
	Message() << "Bbox3: (" << minX << "," << minY << "," << minZ << ") -> (" << maxX << "," << maxY
	          << "," << maxZ << ")" << std::endl;
}

} // namespace TULO3D
