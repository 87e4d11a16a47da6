// SPDX-License-Identifier: MIT
// A fuzz target: interprets bytes as insertions and queries, and checks the mesh. A byte chooses the step;
// each point begins with a byte that says how its coordinates are encoded.
#include "oracle.h"
#include "support.h"

#include <cmath>
#include <cstring>

using namespace TULO3D;

namespace {

void expect(bool bRight, const std::string& what)
{
	if (bRight) return;
	std::cerr << "Expected " << what << std::endl;
	std::abort();
}

struct Session : support::Recorded
{
	/// The next bytes as a number; zero when there are too few.
	template <class T>
	T take()
	{
		T value{};
		if (size < sizeof(T)) return size = 0, value;
		std::memcpy(&value, pData, sizeof(T));
		pData += sizeof(T), size -= sizeof(T);
		return value;
	}

	double coordinate(int form)
	{
		if (form == 0) return take<std::uint8_t>() % 6;
		if (form == 1) return take<std::int8_t>() * 0.1;
		if (form == 2) return take<double>();
		const double mantissa = take<std::int16_t>();
		return std::ldexp(mantissa, take<std::uint8_t>() - 100);
	}

	/// Perhaps with coordinates that are refused.
	Point3 point()
	{
		const int form = take<std::uint8_t>() % 6;
		if (form < 4) return {coordinate(form), coordinate(form), coordinate(form)};
		if (input.empty()) return {0, 0, 0};
		points::Random random(take<std::uint8_t>());
		const Point3 p = random.of(input), q = form == 4 ? p : random.of(input);
		return random.nudged(
		    Point3(p.x() / 2 + q.x() / 2, p.y() / 2 + q.y() / 2, p.z() / 2 + q.z() / 2));
	}

	void insertAll(points::Cloud cloud)
	{
		const bool bRefused = std::any_of(cloud.begin(), cloud.end(), [](const Point3& p) {
			return !(
			    std::fabs(p.x()) <= 1e60 && std::fabs(p.y()) <= 1e60 && std::fabs(p.z()) <= 1e60);
		});
		if (bRefused)
			return expect(
			    !support::conditionFailedBy([&] { mesh.insert(cloud); }).empty(), "a refusal");
		cloud.size() == 1 ? void(insert(cloud[0])) : insert(cloud);
	}

	void locate(const Point3& p)
	{
		const Tet3* t = mesh.locate(p);
		for (int i = 0; t != nullptr && i < 4; ++i) {
			const Point3* c[4] = {
			    t->getCorner(0), t->getCorner(1), t->getCorner(2), t->getCorner(3)};
			c[i] = &p;
			expect(
			    oracle::orientation(*c[0], *c[1], *c[2], *c[3]) >= 0, "a point in its tetrahedron");
		}
	}

	void star(Point3* pVtx)
	{
		if (pVtx->getOneTet() == nullptr) return;
		std::vector<Tet3*> vStar, vAll = tets(), vExpected;
		mesh.getTetsAroundVertex(pVtx, vStar);
		std::copy_if(vAll.begin(), vAll.end(), std::back_inserter(vExpected),
		    [&](Tet3* t) { return t->hasVertex(pVtx); });
		expect(vStar == vExpected, "the whole star");
	}

	void run()
	{
		while (size > 0 && input.size() < 300) {
			const std::size_t step = take<std::uint8_t>();
			points::Cloud cloud(1 + (step % 4 == 1 ? step / 4 : 0));
			for (Point3& p : cloud) p = point();
			if (step % 4 < 2) insertAll(cloud);
			if (step % 4 == 2) locate(cloud[0]);
			if (step % 4 == 3 && !handles.empty()) star(handles[step / 4 % handles.size()]);
			if (size == 0 || step == 255)
				expect(
				    violations().empty(), "a right mesh: " + testing::PrintToString(violations()));
		}
	}

	const std::uint8_t* pData = nullptr;
	std::size_t size = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t size)
{
	Session session;
	session.pData = pData;
	session.size = size;
	session.run();
	return 0;
}
