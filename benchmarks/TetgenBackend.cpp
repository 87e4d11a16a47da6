// SPDX-License-Identifier: MIT
// The benchmark's way to TetGen.
#include "Backend.h"

#define TETLIBRARY
#include <tetgen.h>

#include <stdexcept>
#include <string>

namespace {

class TetgenBackend : public Backend
{
public:
	void takePoints(points::Cloud&& cloud) override
	{
		numInput = cloud.size();
		in.numberofpoints = static_cast<int>(cloud.size());
		in.pointlist = new REAL[3 * cloud.size()]; // freed by TetGen
		REAL* pNext = in.pointlist;
		for (const TULO3D::Point3& p : cloud) {
			p.xyz(pNext[0], pNext[1], pNext[2]);
			pNext += 3;
		}
		points::Cloud().swap(cloud);
	}

	void build() override
	{
		// Quiet; no list of points and faces. The list of tetrahedra is its only way to hand over
		// the mesh, so it belongs to the work.
		char switches[] = "QNF";
		try {
			tetrahedralize(switches, &in, &out);
		} catch (int status) {
			throw std::runtime_error("TetGen gave up with status " + std::to_string(status));
		}
	}

	/// All of them: TetGen does not say how many points it found to be duplicates.
	std::size_t numVertices() const override { return numInput; }
	std::size_t numTets() const override
	{
		return static_cast<std::size_t>(out.numberoftetrahedra);
	}

private:
	std::size_t numInput = 0;
	tetgenio in, out;
};

const RegisteredBackend<TetgenBackend> registered("tetgen");

} // namespace
