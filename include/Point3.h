// SPDX-License-Identifier: MIT
// A point: the value that a host hands in, and the vertex record of the mesh.
#pragma once

#include "Vector3.h"
#include "tulo3dExport.h"

#include <cfloat>
#include <cstdint>

namespace TULO3D {

class HC3;
class Tet3;

/// A point in space and, inside an engine, a vertex of the mesh.
///
/// As a value it carries coordinates (in any one unit) and an index that belongs to the host. As a
/// vertex it also has one incident tetrahedron, from which the whole mesh can be traversed.
///
/// Signs are exact for coordinates of at most 1e60 in magnitude. Larger ones and non-finite ones are
/// refused on insertion.
class TULO3D_API Point3
{
public:
	/// A point without coordinates: all three are the most negative finite double.
	Point3() : px(-DBL_MAX), py(-DBL_MAX), pz(-DBL_MAX), pOneTet(nullptr), customIndex(-1) {}

	/// Not part of a mesh, custom index -1. Any doubles will do here; insertion checks them.
	Point3(double x, double y, double z) : px(x), py(y), pz(z), pOneTet(nullptr), customIndex(-1) {}

	/// Copies coordinates and custom index; a copy is never part of a mesh.
	Point3(const Point3& other)
	    : px(other.px), py(other.py), pz(other.pz), pOneTet(nullptr), customIndex(other.customIndex)
	{
	}

	/// Deliberate: unlike the copy constructor, assignment copies the incident tetrahedron too.
	Point3& operator=(const Point3& other)
	{
		if (this == &other) return *this;
		exchange(other.px, other.py, other.pz);
		pOneTet = other.pOneTet;
		customIndex = other.customIndex;
		return *this;
	}

	~Point3() = default;

	///@{
	/// A coordinate, exactly as it was given.
	double x() const { return px; }
	double y() const { return py; }
	double z() const { return pz; }
	///@}

	/// Writes the three coordinates to the arguments.
	void xyz(double& x, double& y, double& z) const
	{
		x = px;
		y = py;
		z = pz;
	}

	/// Replaces the coordinates. Never do this to a vertex: the mesh would no longer be Delaunay.
	void exchange(double x, double y, double z)
	{
		px = x;
		py = y;
		pz = z;
	}

	/// Takes over the coordinates of `other`, drops the incident tetrahedron, keeps the custom index.
	void init(const Point3& other)
	{
		exchange(other.px, other.py, other.pz);
		pOneTet = nullptr;
	}

	/// Sets the incident tetrahedron; for the engine only.
	void setOneTet(Tet3* pTet) { pOneTet = pTet; }

	/// One tetrahedron that has this vertex as a corner; null while the point is not in a mesh.
	/// Valid until the next insertion.
	Tet3* getOneTet() const { return pOneTet; }

	///@{
	/// The host's index; the library only ever sets it to -1, for a new point or vertex.
	int getCustomIndex() const { return customIndex; }
	void setCustomIndex(int index) { customIndex = index; }
	///@}

	/// The number of a vertex; -1 for a point that is none. The vertices of an engine are numbered from 0
	/// in the order in which their points were first given: without duplicate points, vertex i is the i-th
	/// point. The number stays when more points are inserted. Copies do not have it.
	std::int32_t getNumber() const { return number; }

	/// True when all three coordinates are equal as numbers (so -0.0 equals +0.0).
	bool operator==(const Point3& other) const
	{
		return px == other.px && py == other.py && pz == other.pz;
	}

	/// Lexicographic order on (x, y, z). A coordinate that is not a number equals any other, so with
	/// such points it is no order; no vertex has one.
	bool operator<(const Point3& other) const
	{
		if (other.px > px) return true;
		if (px > other.px) return false;
		if (other.py > py) return true;
		if (py > other.py) return false;
		return pz < other.pz;
	}

	/// The point moved by `v`.
	Point3 operator+(const Vector3& v) const { return Point3(px + v.x(), py + v.y(), pz + v.z()); }

	/// The vector from `other` to this point.
	Vector3 operator-(const Point3& other) const
	{
		return Vector3(px - other.px, py - other.py, pz - other.pz);
	}

	/// Prints the point on a line of standard output.
	void debug() const;

private:
	friend class HC3;

	double px;
	double py;
	double pz;
	Tet3* pOneTet;

public:
	/// An index that the host may attach to a point or a vertex; -1 when unset.
	int customIndex;

private:
	std::int32_t number = -1;
};

} // namespace TULO3D
