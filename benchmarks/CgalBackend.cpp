// SPDX-License-Identifier: MIT
// The benchmark's way to CGAL's Delaunay_triangulation_3: the ordinary one and the one that keeps a
// hierarchy of triangulations for faster location. With oneTBB, also to its parallel insertion.
#include "Backend.h"

#include <CGAL/Delaunay_triangulation_3.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>

#ifdef CGAL_LINKED_WITH_TBB
#  include <CGAL/bounding_box.h>
#  include <tbb/global_control.h>
#endif

#include <iterator>
#include <memory>
#include <vector>

namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;

std::vector<Kernel::Point_3> converted(const points::Cloud& cloud)
{
	std::vector<Kernel::Point_3> v;
	v.reserve(cloud.size());
	for (const TULO3D::Point3& p : cloud) v.emplace_back(p.x(), p.y(), p.z());
	return v;
}

template <class Delaunay>
class CgalBackend : public Backend
{
public:
	void takePoints(points::Cloud&& cloud) override { takeInto(vPoints, cloud); }
	void takeQueries(points::Cloud&& cloud) override { takeInto(vQueries, cloud); }

	void build() override { delaunay.insert(vPoints.begin(), vPoints.end()); }

	void insertOneByOne() override
	{
		for (const auto& p : vPoints) delaunay.insert(p);
	}

	void insertInOrder() override
	{
		typename Delaunay::Vertex_handle hint;
		for (const auto& p : vPoints) hint = delaunay.insert(p, hint);
	}

	std::size_t locate() override
	{
		std::size_t num = 0;
		for (const auto& p : vQueries) num += delaunay.is_infinite(delaunay.locate(p)) ? 0 : 1;
		return num;
	}

	std::size_t listTets() override
	{
		std::vector<typename Delaunay::Cell_handle> vCells;
		for (auto it = delaunay.finite_cells_begin(); it != delaunay.finite_cells_end(); ++it) {
			vCells.push_back(it);
		}
		return vCells.size();
	}

	std::size_t collectStars() override
	{
		std::vector<typename Delaunay::Cell_handle> vStar;
		std::size_t num = 0;
		for (const auto vertex : delaunay.finite_vertex_handles()) {
			vStar.clear();
			delaunay.finite_incident_cells(vertex, std::back_inserter(vStar));
			num += vStar.size();
		}
		return num;
	}

	std::size_t check() override { return delaunay.is_valid() ? 1 : 0; }

	std::size_t numVertices() const override { return delaunay.number_of_vertices(); }
	std::size_t numTets() const override { return delaunay.number_of_finite_cells(); }

protected:
	using Points = std::vector<Kernel::Point_3>;
	Points vPoints;

private:
	static void takeInto(Points& v, points::Cloud& cloud)
	{
		v = converted(cloud);
		points::Cloud().swap(cloud);
	}

	Delaunay delaunay;
	Points vQueries;
};

using Plain = CGAL::Delaunay_triangulation_3<Kernel>;
using Fast = CGAL::Delaunay_triangulation_3<Kernel, CGAL::Fast_location>;

#ifdef CGAL_LINKED_WITH_TBB

/// The parallel insertion needs a triangulation of another type, and a grid of locks over the box of the points, here
/// of the number of cells that its manual uses.
class CgalInParallel : public CgalBackend<Plain>
{
public:
	void buildInParallel(unsigned numThreads) override
	{
		const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, numThreads);
		const CGAL::Bbox_3 box = CGAL::bounding_box(vPoints.begin(), vPoints.end()).bbox();
		pLocks = std::make_unique<Parallel::Lock_data_structure>(box, 50);
		pParallel = std::make_unique<Parallel>(vPoints.begin(), vPoints.end(), pLocks.get());
	}

	std::size_t numVertices() const override
	{
		return pParallel ? pParallel->number_of_vertices() : CgalBackend::numVertices();
	}
	std::size_t numTets() const override
	{
		return pParallel ? pParallel->number_of_finite_cells() : CgalBackend::numTets();
	}

private:
	using Structure =
	    CGAL::Triangulation_data_structure_3<CGAL::Triangulation_vertex_base_3<Kernel>,
	        CGAL::Delaunay_triangulation_cell_base_3<Kernel>, CGAL::Parallel_tag>;
	using Parallel = CGAL::Delaunay_triangulation_3<Kernel, Structure>;

	std::unique_ptr<Parallel::Lock_data_structure> pLocks;
	std::unique_ptr<Parallel> pParallel;
};

const RegisteredBackend<CgalInParallel> registered("cgal");

#else

const RegisteredBackend<CgalBackend<Plain>> registered("cgal");

#endif

const RegisteredBackend<CgalBackend<Fast>> registeredFast("cgal-fast");

} // namespace
