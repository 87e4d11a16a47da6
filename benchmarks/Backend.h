// SPDX-License-Identifier: MIT
// What the benchmark asks of a library. Each one registers itself, so that those whose packages are
// missing are simply not linked.
#pragma once

#include "../inputs/points.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

/// One library. Points come in its own representation: converting them is not measured.
class Backend
{
public:
	virtual ~Backend() = default;

	/// Takes the points over.
	virtual void takePoints(points::Cloud&& cloud) = 0;
	/// Takes over the points to be located.
	virtual void takeQueries(points::Cloud&&) { refuse(); }

	/// Triangulates all points in the fastest way that the library has for a batch.
	virtual void build() = 0;
	/// The same from numbers to arrays of corners and neighbours, by one object.
	virtual void buildArrays() { refuse(); }
	/// The same in so many threads.
	virtual void buildInParallel(unsigned /*numThreads*/) { refuse(); }
	/// Triangulates the points one by one in the order given, without a hint.
	virtual void insertOneByOne() { refuse(); }
	/// The same with the vertex before as a hint, where the library takes one.
	virtual void insertInOrder() { refuse(); }
	/// Locates every query and returns how many lie in a tetrahedron.
	virtual std::size_t locate() { refuse(); }
	/// Collects a handle of each tetrahedron and returns their number.
	virtual std::size_t listTets() { refuse(); }
	/// Collects handles of the tetrahedra around each vertex, vertex by vertex; the sum of the
	/// numbers of handles.
	virtual std::size_t collectStars() { refuse(); }
	/// Checks the whole mesh, its geometry at least, and returns 1 when it is valid, else 0.
	virtual std::size_t check() { refuse(); }

	virtual std::size_t numVertices() const = 0;
	virtual std::size_t numTets() const = 0;

private:
	[[noreturn]] static void refuse()
	{
		throw std::invalid_argument("this library has no such operation");
	}
};

/// The libraries of this build by their names.
using BackendTable = std::map<std::string, std::function<std::unique_ptr<Backend>()>>;

inline BackendTable& backends()
{
	static BackendTable table;
	return table;
}

/// At namespace scope: adds class B to the table.
template <class B>
struct RegisteredBackend
{
	explicit RegisteredBackend(const std::string& name)
	{
		backends()[name] = [] { return std::make_unique<B>(); };
	}
};
