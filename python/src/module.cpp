// SPDX-License-Identifier: MIT
// The module tulo3d._core: the engine and the loops over arrays. Arrays for results are made by Python
// and filled here; indices in arrays have been checked by Python.
#include "Arrays.h"
#include "Interpolation.h"
#include "Library.h"
#include "Measures.h"
#include "ParallelMesh.h"
#include "Shapes.h"
#include "Tiles.h"

#include <nanobind/stl/pair.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/tuple.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

namespace nb = nanobind;
using namespace nb::literals;

namespace binding {

namespace {

using IndexArray = NewArray<std::int32_t>;
using TupleArray = nb::ndarray<nb::numpy, std::int32_t, nb::shape<-1, 4>>;

/// An array that takes over the elements of `p`.
template <typename IntArray>
IntArray take(std::unique_ptr<std::int32_t[]> p, std::initializer_list<std::size_t> shape)
{
	const nb::capsule owner(
	    p.get(), [](void* pData) noexcept { delete[] static_cast<std::int32_t*>(pData); });
	return IntArray(p.release(), shape, owner);
}

/// A new array of four indices a tetrahedron, its elements not set.
///
/// Not made by numpy, which asks for large pages: for arrays that are written once, finding free ones takes
/// several times as long as the writing.
TupleArray makeTuples(std::size_t num)
{
	std::unique_ptr<std::int32_t[]> pOwned(new std::int32_t[4 * num]); // no value-initialisation
	return take<TupleArray>(std::move(pOwned), {num, 4});
}

/// The vertex of each point, the corners and the neighbours of the mesh that several threads make.
std::tuple<IndexArray, TupleArray, TupleArray> triangulate(
    const Points& points, unsigned numThreads, nb::handle progress)
{
	Watch watch(progress);
	TULO3D::ParallelMesh mesh;
	{
		const nb::gil_scoped_release unlock;
		LibraryScope scope;
		try {
			mesh = TULO3D::triangulateInParallel(points.data(), points.shape(0), numThreads,
			    [&watch](std::size_t numInserted, std::size_t numVertices) {
				    watch.look(numInserted, numVertices);
				    return true;
			    });
		} catch (const TULO3D::TuloException&) {
			throw InternalError(scope.text());
		}
	}
	return {take<IndexArray>(std::move(mesh.vertexOfPoint), {points.shape(0)}),
	    take<TupleArray>(std::move(mesh.corners), {mesh.numTets, 4}),
	    take<TupleArray>(std::move(mesh.neighbours), {mesh.numTets, 4})};
}

/// A mesh that grows; for one thread at a time.
class Engine
{
public:
	Engine() { makeMesh(); }

	/// Inserts points and writes the numbers of their vertices.
	void insert(const Points& points, const Array<std::int32_t, -1>& numbers, nb::handle progress)
	{
		expectLength(numbers, points.shape(0));
		Watch watch(progress);
		const nb::gil_scoped_release unlock;
		LibraryScope scope;
		pMesh->setProgress([&watch](std::size_t numInserted, std::size_t numVertices) {
			watch.look(numInserted, numVertices);
			return true;
		});
		try {
			pMesh->insert(points.data(), points.shape(0), numbers.data());
		} catch (const TULO3D::TuloException&) {
			throw InternalError(scope.text());
		}
		pMesh->setProgress(nullptr);
	}

	bool is3D() const { return pMesh->is3D(); }

	/// The corners and the neighbours.
	std::pair<TupleArray, TupleArray> arrays() const
	{
		constexpr std::size_t kPiece = std::size_t{1} << 19U; // tetrahedra, some 10 ms
		const std::size_t numTets = pMesh->getNumTetrahedra();
		const auto corners = makeTuples(numTets);
		const auto neighbors = makeTuples(numTets);
		Watch watch;
		const nb::gil_scoped_release unlock;
		const LibraryScope scope;
		for (std::size_t first = 0; first < numTets; first += kPiece) {
			watch.look();
			pMesh->copyTo({nullptr, nullptr, corners.data() + 4 * first,
			    neighbors.data() + 4 * first, first, kPiece});
		}
		return {corners, neighbors};
	}

private:
	void makeMesh()
	{
		const LibraryScope scope;
		pMesh = std::make_unique<TULO3D::Tulo_3D>();
	}

	std::unique_ptr<TULO3D::Tulo_3D> pMesh;
};

void findSimplex(const Mesh& mesh, const Points& queries, const Array<std::int32_t, -1>& found)
{
	expectLength(found, queries.shape(0));
	Watch watch;
	unlocked([&] {
		forEachLocated(
		    mesh, queries.data(), queries.shape(0), [&watch] { watch.look(); },
		    [&found](std::size_t i, const double*, std::int32_t t) { found.data()[i] = t; });
	});
}

/// Runs one of the interpolations; `compute` gets the samples and a poll.
template <typename Compute>
void interpolate(const Mesh& mesh, const Table& values, const Points& queries,
    const Results& results, std::size_t numPerColumn, Compute compute)
{
	const Samples samples{values.data(), values.shape(1), queries.data(), queries.shape(0)};
	expectLength(values, mesh.numPoints);
	expectLength(results, samples.numQueries);
	if (results.shape(1) != numPerColumn * samples.numColumns) {
		throw nb::value_error("an array of the wrong width");
	}
	Watch watch;
	unlocked([&] { compute(samples, [&watch] { watch.look(); }); });
}

void linear(const Mesh& mesh, const Table& values, const Points& queries, double fill,
    const Results& results)
{
	interpolate(mesh, values, queries, results, 1, [&](const Samples& samples, const Poll& poll) {
		interpolateLinearly(mesh, samples, fill, results.data(), poll);
	});
}

void natural(const Mesh& mesh, const Table& values, const Points& queries, double fill,
    const Results& results)
{
	interpolate(mesh, values, queries, results, 1, [&](const Samples& samples, const Poll& poll) {
		interpolateNaturally(mesh, samples, fill, results.data(), poll);
	});
}

void gradients(const Mesh& mesh, const Table& values, const Points& queries, const Results& results)
{
	interpolate(mesh, values, queries, results, 3, [&](const Samples& samples, const Poll& poll) {
		interpolateGradients(mesh, samples, results.data(), poll);
	});
}

void writeTransforms(const Mesh& mesh, const Array<double, -1, 4, 3>& results)
{
	expectLength(results, mesh.numTets);
	unlocked([&] { transforms(mesh, results.data()); });
}

void listStars(
    const Mesh& mesh, const Array<std::int64_t, -1>& begins, const Array<std::int32_t, -1>& tets)
{
	expectLength(begins, mesh.numPoints + 1);
	expectLength(tets, 4 * mesh.numTets);
	unlocked([&] { stars(mesh, begins.data(), tets.data()); });
}

IndexArray listNeighbors(const Mesh& mesh, const Offsets& starBegins, const Indices& starTets,
    const Array<std::int64_t, -1>& begins)
{
	expectLength(starBegins, mesh.numPoints + 1);
	expectLength(starTets, 4 * mesh.numTets);
	expectLength(begins, mesh.numPoints + 1);
	return toArray(unlocked(
	    [&] { return adjacency(mesh, starBegins.data(), starTets.data(), begins.data()); }));
}

bool checkMesh(const Mesh& mesh)
{
	return unlocked([&] { return isValid(mesh); });
}

} // namespace

} // namespace binding

NB_MODULE(_core, m)
{
	using namespace binding;

	m.attr("version") = TULO3D_PYTHON_VERSION;

	nb::exception<InternalError> internalError(m, "InternalError", PyExc_RuntimeError);
	internalError.doc() =
	    "The library has found a state that only a defect can bring about: please report it.";

	// Arrays come as they are: a copy made on the way in would be filled in vain, or read in vain.
	const auto array = [](const char* name) { return nb::arg(name).noconvert(); };

	nb::class_<Engine>(m, "Engine")
	    .def(nb::init<>())
	    .def("insert", &Engine::insert, array("points"), array("numbers"), "progress"_a.none())
	    .def("arrays", &Engine::arrays)
	    .def_prop_ro("is_3d", &Engine::is3D);

	m.def("triangulate", &triangulate, array("points"), "num_threads"_a, "progress"_a.none());

	nb::class_<Mesh>(m, "Mesh").def(nb::init<Points, Tuples, Tuples>(), array("points"),
	    array("simplices"), array("neighbors"));

	m.def("find_simplex", &findSimplex, "mesh"_a, array("queries"), array("found"));
	m.def("interpolate_linearly", &linear, "mesh"_a, array("values"), array("queries"), "fill"_a,
	    array("results"));
	m.def("interpolate_naturally", &natural, "mesh"_a, array("values"), array("queries"), "fill"_a,
	    array("results"));
	m.def("interpolate_gradients", &gradients, "mesh"_a, array("values"), array("queries"),
	    array("results"));
	m.def("transforms", &writeTransforms, "mesh"_a, array("results"));
	m.def("stars", &listStars, "mesh"_a, array("begins"), array("tets"));
	m.def("adjacency", &listNeighbors, "mesh"_a, array("star_begins"), array("star_tets"),
	    array("begins"));
	m.def("is_valid", &checkMesh, "mesh"_a);
	bindShapes(m);
	bindTiles(m);
}
