// SPDX-License-Identifier: MIT
// The benchmark's way to this library, through the public interface.
#include "Backend.h"
#include "ParallelMesh.h"
#include "Tulo_3D.h"

#include <utility>
#include <vector>

using TULO3D::Point3;
using TULO3D::Tet3;

namespace {

class OurBackend : public Backend
{
public:
	OurBackend() { triangulation.setVerbosity(false); }

	void takePoints(points::Cloud&& cloud) override { vPoints = std::move(cloud); }
	void takeQueries(points::Cloud&& cloud) override { vQueries = std::move(cloud); }

	void build() override { triangulation.insert(vPoints); }

	void buildArrays() override
	{
		triangulation.insert(coordinates().data(), vPoints.size());
		const std::size_t num = 4 * triangulation.getNumTetrahedra();
		arrays.corners.reset(new std::int32_t[num]);
		arrays.neighbours.reset(new std::int32_t[num]);
		triangulation.copyTo({nullptr, nullptr, arrays.corners.get(), arrays.neighbours.get()});
		arrays.numVertices = triangulation.getNumVertices();
		arrays.numTets = triangulation.getNumTetrahedra();
	}

	void buildInParallel(unsigned numThreads) override
	{
		arrays = TULO3D::triangulateInParallel(coordinates().data(), vPoints.size(), numThreads);
	}

	void insertOneByOne() override
	{
		for (Point3& p : vPoints) triangulation.insert(p);
	}

	void insertInOrder() override { insertOneByOne(); }

	std::size_t locate() override
	{
		std::size_t num = 0;
		for (const Point3& p : vQueries) num += triangulation.locate(p) != nullptr ? 1 : 0;
		return num;
	}

	std::size_t listTets() override
	{
		std::vector<Tet3*> vTets;
		triangulation.getTetrahedra(vTets);
		return vTets.size();
	}

	std::size_t collectStars() override
	{
		std::vector<Point3*> vVertices;
		triangulation.getVertices(vVertices);
		std::vector<Tet3*> vStar;
		std::size_t num = 0;
		for (Point3* pVtx : vVertices) {
			triangulation.getTetsAroundVertex(pVtx, vStar);
			num += vStar.size();
		}
		return num;
	}

	std::size_t check() override { return triangulation.checkValidity("", true) ? 1 : 0; }

	std::size_t numVertices() const override
	{
		return arrays.corners ? arrays.numVertices : triangulation.getNumVertices();
	}
	std::size_t numTets() const override
	{
		return arrays.corners ? arrays.numTets : triangulation.getNumTetrahedra();
	}

private:
	/// A host would have them as they are. Measured with the rest: a hundredth of the time.
	std::vector<double> coordinates() const
	{
		std::vector<double> v;
		v.reserve(3 * vPoints.size());
		for (const Point3& p : vPoints) v.insert(v.end(), {p.x(), p.y(), p.z()});
		return v;
	}

	TULO3D::ParallelMesh arrays;
	TULO3D::Tulo_3D triangulation;
	std::vector<Point3> vPoints, vQueries;
};

const RegisteredBackend<OurBackend> registered("ours");

} // namespace
