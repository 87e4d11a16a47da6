// SPDX-License-Identifier: MIT
// Arrays that come from Python and go there.
#pragma once

#include "FlatMesh.h"
#include "Library.h"

#include <nanobind/nanobind.h>
#include <nanobind/ndarray.h>

#include <memory>
#include <utility>
#include <vector>

namespace binding {

namespace nb = nanobind;

template <typename T, nb::ssize_t... Extents>
using Array = nb::ndarray<T, nb::shape<Extents...>, nb::c_contig, nb::device::cpu>;

using Points = Array<const double, -1, 3>;
using Tuples = Array<const std::int32_t, -1, 4>;
using Indices = Array<const std::int32_t, -1>;
using Offsets = Array<const std::int64_t, -1>;
using Table = Array<const double, -1, -1>;
using Results = Array<double, -1, -1>;

template <typename AnyArray>
void expectLength(const AnyArray& array, std::size_t length)
{
	if (array.shape(0) != length) throw nb::value_error("an array of the wrong length");
}

/// The arrays of a mesh. Their contents must not change while it lives.
class Mesh : public FlatMesh
{
public:
	Mesh(Points thePoints, Tuples theSimplices, Tuples theNeighbors)
	    : FlatMesh{thePoints.data(), theSimplices.data(), theNeighbors.data(), thePoints.shape(0),
	          theSimplices.shape(0)},
	      points(std::move(thePoints)),
	      simplices(std::move(theSimplices)),
	      neighbors(std::move(theNeighbors))
	{
		expectLength(neighbors, numTets);
	}

private:
	Points points;
	Tuples simplices;
	Tuples neighbors;
};

template <typename T>
using NewArray = nb::ndarray<nb::numpy, T, nb::ndim<1>>;

/// An array that takes over the elements of `v`.
template <typename T>
NewArray<T> toArray(std::vector<T> v)
{
	auto pOwned = std::make_unique<std::vector<T>>(std::move(v));
	T* const pData = pOwned->data();
	const std::size_t size = pOwned->size();
	const nb::capsule owner(
	    pOwned.get(), [](void* p) noexcept { delete static_cast<std::vector<T>*>(p); });
	(void)pOwned.release();
	return NewArray<T>(pData, {size}, owner);
}

/// Calls `work` without the interpreter's lock.
template <typename Work>
auto unlocked(Work work)
{
	const nb::gil_scoped_release unlock;
	const LibraryScope scope;
	return work();
}

} // namespace binding
