// SPDX-License-Identifier: MIT
// The benchmark's way to Qhull: the lower hull of the points lifted to a paraboloid.
#include "Backend.h"

extern "C" {
#include <libqhull_r/libqhull_r.h>
}

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

class QhullBackend : public Backend
{
public:
	QhullBackend() { qh_zero(&qhull, stderr); }
	QhullBackend(const QhullBackend&) = delete;
	QhullBackend& operator=(const QhullBackend&) = delete;
	// Deliberate: the mesh is left to the end of the process, like that of a crashed Qhull.
	~QhullBackend() override = default;

	void takePoints(points::Cloud&& cloud) override
	{
		vCoordinates.reserve(3 * cloud.size());
		for (const TULO3D::Point3& p : cloud) {
			for (const double c : {p.x(), p.y(), p.z()}) vCoordinates.push_back(c);
		}
		points::Cloud().swap(cloud);
	}

	void build() override
	{
		// Delaunay, last coordinate scaled, merged facets cut into tetrahedra.
		char command[] = "qhull d Qbb Qt";
		const int status = qh_new_qhull(&qhull, 3, static_cast<int>(vCoordinates.size() / 3),
		    vCoordinates.data(), False, command, nullptr, stderr);
		if (status != 0) {
			throw std::runtime_error("Qhull gave up with status " + std::to_string(status));
		}
	}

	std::size_t numVertices() const override
	{
		return static_cast<std::size_t>(qhull.num_vertices);
	}

	std::size_t numTets() const override
	{
		std::size_t num = 0;
		for (const facetT* pFacet = qhull.facet_list; pFacet != nullptr && pFacet->next != nullptr;
		     pFacet = pFacet->next) {
			if (!pFacet->upperdelaunay) ++num;
		}
		return num;
	}

private:
	qhT qhull;
	std::vector<coordT> vCoordinates;
};

const RegisteredBackend<QhullBackend> registered("qhull");

} // namespace
