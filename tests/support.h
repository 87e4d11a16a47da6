// SPDX-License-Identifier: MIT
// What several test files share: quiet and captured output, and a mesh that knows its input.
#pragma once

#include "Tulo_3D.h"
#include "points.h"
#include "verifier.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace support {

using points::Cloud;
using TULO3D::Point3;
using TULO3D::Tet3;

/// Keeps what is printed to standard output while it lives.
class Capture
{
public:
	Capture() : pOld(std::cout.rdbuf(stream.rdbuf())) {}
	Capture(const Capture&) = delete;
	Capture& operator=(const Capture&) = delete;
	~Capture() { std::cout.rdbuf(pOld); }
	std::string text() const { return stream.str(); }

private:
	std::ostringstream stream;
	std::streambuf* pOld;
};

/// Leads the messages of this thread to a stream while it lives; null is silence.
class MessagesTo
{
public:
	explicit MessagesTo(std::ostream* pStream) : pFormer(TULO3D::setMessageStream(pStream)) {}
	MessagesTo(const MessagesTo&) = delete;
	MessagesTo& operator=(const MessagesTo&) = delete;
	~MessagesTo() { TULO3D::setMessageStream(pFormer); }

private:
	std::ostream* pFormer;
};

/// What `f` prints to standard output; "threw" is appended when it throws a TuloException.
template <class F>
std::string printedBy(F f)
{
	const Capture capture;
	try {
		f();
	} catch (const TULO3D::TuloException&) {
		return capture.text() + "threw";
	}
	return capture.text();
}

/// The condition that `f` fails; empty when it throws nothing.
template <class F>
std::string conditionFailedBy(F f)
{
	const std::string text = printedBy(f), before = "Condition [ ";
	const std::size_t start = text.rfind(before) + before.size(), end = text.rfind(" failed ]");
	return text.size() > 5 && text.compare(text.size() - 5, 5, "threw") == 0
	    ? text.substr(start, end - start)
	    : "";
}

/// For death tests: `f`, with standard output led to where they look.
template <class F>
void loudly(F f)
{
	std::cout.rdbuf(std::cerr.rdbuf());
	f();
}

/// A mesh without its addresses: the corners of its tetrahedra by their places in the listing.
using CornerTuples = std::vector<std::array<std::size_t, 4>>;

inline CornerTuples canonical(const std::vector<Point3*>& vertices, const std::vector<Tet3*>& tets)
{
	std::map<const Point3*, std::size_t> place;
	for (const Point3* p : vertices) place.emplace(p, place.size());
	CornerTuples tuples;
	for (const Tet3* t : tets) {
		tuples.push_back({place[t->getCorner(0)], place[t->getCorner(1)], place[t->getCorner(2)],
		    place[t->getCorner(3)]});
	}
	std::sort(tuples.begin(), tuples.end());
	return tuples;
}

/// A mesh that remembers what went in, to be verified as a whole.
struct Recorded
{
	Point3* insert(Point3 p)
	{
		const Capture quiet;
		const bool bFlat = !mesh.is3D();
		input.push_back(p);
		handles.push_back(mesh.insert(p));
		// Deliberate: when a single point ends the flat phase, only the first tetrahedron's corners are in.
		if (!bFlat || !mesh.is3D()) return handles.back();
		for (const Point3* q : vertices()) {
			if (q->getOneTet() == nullptr) leftOut.insert(q);
		}
		return handles.back();
	}

	void insert(Cloud cloud)
	{
		const Capture quiet;
		std::vector<Point3*> more;
		mesh.insert(cloud, more);
		input.insert(input.end(), cloud.begin(), cloud.end());
		handles.insert(handles.end(), more.begin(), more.end());
	}

	std::vector<Point3*> vertices() const
	{
		std::vector<Point3*> v;
		mesh.getVertices(v);
		return v;
	}

	std::vector<Tet3*> tets() const
	{
		const Capture quiet;
		std::vector<Tet3*> v;
		mesh.getTetrahedra(v);
		return v;
	}

	std::vector<std::string> violations() const
	{
		return verifier::violations(mesh, input, handles, leftOut);
	}

	CornerTuples canonical() const { return support::canonical(vertices(), tets()); }

	TULO3D::Tulo_3D mesh;
	Cloud input;
	std::vector<Point3*> handles;
	std::set<const Point3*> leftOut;
};

} // namespace support

#define EXPECT_VALID(recorded) EXPECT_EQ((recorded).violations(), std::vector<std::string>())
