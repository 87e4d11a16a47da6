// SPDX-License-Identifier: MIT
// Arrays of a `Tulo_3D`, to make shapes from. The only header of these that needs the library itself.
#pragma once

#include "MeshArrays.h"
#include "Tulo_3D.h"
#include "shapes/MeshView.h"

#include <vector>

namespace TULO3D::shapes {

/// A copy of a mesh as it is now: 24 bytes a vertex and 32 a tetrahedron.
class MeshCopy
{
public:
	/// Throws as `Tulo_3D::copyTo` does, and `std::bad_alloc`.
	explicit MeshCopy(const Tulo_3D& mesh)
	    : vCoordinates(3 * mesh.getNumVertices()),
	      vCorners(4 * mesh.getNumTetrahedra()),
	      vNeighbours(vCorners.size())
	{
		MeshArrays arrays;
		arrays.pCoordinates = vCoordinates.data();
		arrays.pCorners = vCorners.data();
		arrays.pNeighbours = vNeighbours.data();
		mesh.copyTo(arrays);
	}

	/// Valid as long as this object; vertex i is the one with `Point3::getNumber` i.
	MeshView view() const
	{
		return {vCoordinates.data(), vCoordinates.size() / 3, vCorners.data(), vNeighbours.data(),
		    vCorners.size() / 4};
	}

private:
	std::vector<double> vCoordinates;
	std::vector<std::int32_t> vCorners, vNeighbours;
};

} // namespace TULO3D::shapes
