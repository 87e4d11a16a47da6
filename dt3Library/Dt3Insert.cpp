// SPDX-License-Identifier: MIT
// Insertion of one point, and of a batch in rounds from coarse to fine.
#include "Dt3.h"
#include "Message.h"
#include "lookahead/LookAhead.h"
#include "predicates/Underflow.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace TULO3D {

namespace {

/// How many tetrahedra are made between two calls of the progress handler. A vertex makes some 25: about
/// 400 calls a batch, unless it is very short or very long.
unsigned progressInterval(std::size_t numVertices)
{
	constexpr std::size_t kShortest = 4096;
	constexpr std::size_t kLongest = 400000;
	return static_cast<unsigned>(std::clamp(numVertices / 16, kShortest, kLongest));
}

} // namespace

/// Counts the labels of a batch in a variable of its own, and adds their number to the process-wide
/// counter in the end, also after an exception. Engines in several threads would otherwise contend for
/// the counter's cache line with every tetrahedron.
class Dt3::OwnLabels
{
public:
	explicit OwnLabels(Dt3& theEngine) : engine(theEngine), first(Tet3::takeLabels(0)), next(first)
	{
		engine.pNextLabel = &next;
	}
	OwnLabels(const OwnLabels&) = delete;
	OwnLabels& operator=(const OwnLabels&) = delete;
	~OwnLabels()
	{
		engine.pNextLabel = &Tet3::runningLabel;
		Tet3::takeLabels(numTaken());
	}

	/// The tetrahedra made so far; a very long run starts again from zero.
	unsigned numTaken() const { return static_cast<unsigned>(next) - static_cast<unsigned>(first); }

private:
	Dt3& engine;
	int first;
	int next;
};

bool Dt3::isInRange(const Point3& p)
{
	const auto fits = [](double v) { return int{std::abs(v) <= kMaxCoordinate}; }; // 0 for NaN
	return (fits(p.x()) & fits(p.y()) & fits(p.z())) !=
	    0; // without branches: for all points of a batch
}

void Dt3::expectFinished() const
{
	CONDITION_CHECK_AS(!bUnfinished, "no exception has cut an earlier insertion short");
}

void Dt3::beginStoring(const Point3* pFirst, std::size_t numPoints)
{
	const Point3* pLast = pFirst + numPoints;
	bool bInRange = true, bTiny = false;
	for (const Point3* p = pFirst; p != pLast; ++p) {
		bInRange &= isInRange(*p);
		bTiny |= mayUnderflow(*p);
	}
	CONDITION_CHECK_AS(bInRange, kRangeText);
	CONDITION_CHECK_AS(numPoints <= kMaxPoints - hc3.size(), kNumberText);
	// Only now that all points are accepted: refused ones must not make the engine slower.
	if (bTiny && batchTests.pForTiny != nullptr) batchTests = *batchTests.pForTiny;
	bUnfinished = true;
}

Point3* Dt3::insert(Point3& p)
{
	expectFinished();
	beginStoring(&p, 1);
	Point3* pVtx = storeAndInsert(p);
	bUnfinished = false;
	return pVtx;
}

Point3* Dt3::storeAndInsert(const Point3& p)
{
	Tet3* pLastTet = nullptr;
	Point3* pVtx = hc3.insertPoint(p, pLastTet);
	if (bFullDimensional) {
		// The neighbour on the curve may be a vertex that never entered the mesh.
		if (pLastTet == nullptr) pLastTet = hc3.findNearbyTet(*pVtx);
		expectUnmarked(*pLastTet, "!pLastTet->hasBeenVisited");
		insertVertex(&pVtx, pLastTet, true);
		pLastVtx = pVtx;
		return pVtx;
	}
	pLastTet = startUp();
	if (pLastTet != nullptr && hc3.size() > 4) {
		// Deliberate: coplanar vertices that came one by one stay out of the mesh. The call with an empty list
		// only prints its message.
		std::vector<Point3*> vNothing;
		triangulate(vNothing, pLastTet);
	}
	return pVtx;
}

void Dt3::insert(const std::vector<Point3>& vInputPoints, std::vector<Point3*>& vUserHandles)
{
	expectFinished();
	std::vector<Point3*> vNewVertices = store(vInputPoints, vUserHandles);
	insertStored(vNewVertices, vInputPoints.size());
	bUnfinished = false;
}

void Dt3::insert(const double* pCoordinates, std::size_t numPoints, std::int32_t* pVertexNumbers)
{
	expectFinished();
	CONDITION_CHECK_AS(numPoints <= kMaxPoints - hc3.size(), kNumberText);
	std::vector<Point3*> vNewVertices;
	{
		// In a block of its own: none of this is needed while the mesh grows.
		std::vector<Point3> vPoints;
		vPoints.reserve(numPoints);
		for (std::size_t i = 0; i < numPoints; ++i, pCoordinates += 3) {
			vPoints.emplace_back(pCoordinates[0], pCoordinates[1], pCoordinates[2]);
		}
		std::vector<Point3*> vHandles;
		vNewVertices = store(vPoints, vHandles);
		if (pVertexNumbers != nullptr) {
			for (const Point3* pVtx : vHandles) *pVertexNumbers++ = pVtx->getNumber();
		}
	}
	insertStored(vNewVertices, numPoints);
	bUnfinished = false;
}

std::vector<Point3*> Dt3::store(
    const std::vector<Point3>& vInputPoints, std::vector<Point3*>& vUserHandles)
{
	if (bVerbose) {
		Message() << std::endl << "Dt3::insert(vector,vector) has been called" << std::endl;
	}
	if (!vUserHandles.empty()) {
		printWarning("Dt3::insert()", "vUserHandles is not empty as it should be");
		vUserHandles.clear();
	}
	Message() << "numPoints=" << vInputPoints.size() << std::endl;
	std::vector<Point3*> vNewVertices;
	if (vInputPoints.empty()) return vNewVertices;
	beginStoring(vInputPoints.data(), vInputPoints.size());
	const auto poll = [this, &vInputPoints] { reportProgress(0, vInputPoints.size()); };
	hc3.insertPoints(vInputPoints, vUserHandles, vNewVertices, poll);
	return vNewVertices;
}

void Dt3::insertStored(std::vector<Point3*>& vNewVertices, std::size_t numPoints)
{
	if (numPoints == 0) return;
	if (bFullDimensional) {
		if (vNewVertices.empty()) return;
		triangulate(vNewVertices, hc3.findNearbyTet(*vNewVertices.front()));
		return;
	}

	Tet3* pFirstTet = startUp();
	if (pFirstTet == nullptr) return;
	// Vertices of earlier calls are not in the mesh yet. Deliberate: two comparisons. The number of vertices
	// alone does not show this, since an earlier point may be missing in this batch, and another point of the
	// batch be a duplicate; the earlier vertex would then stay out of the mesh.
	if (hc3.size() != numPoints || vNewVertices.size() != numPoints) {
		vNewVertices.clear();
		hc3.getVertices(vNewVertices);
	}
	// The corners of the first tetrahedron are among these: the walk to each ends at itself.
	triangulate(vNewVertices, pFirstTet);
}

std::size_t Dt3::insertLeftOut()
{
	expectFinished();
	if (!bFullDimensional) return 0;
	std::vector<Point3*> vLeftOut;
	hc3.getVertices(vLeftOut);
	const auto isInMesh = [](const Point3* pVtx) { return pVtx->getOneTet() != nullptr; };
	vLeftOut.erase(std::remove_if(vLeftOut.begin(), vLeftOut.end(), isInMesh), vLeftOut.end());
	if (vLeftOut.empty()) return 0;
	bUnfinished = true;
	triangulate(vLeftOut, hc3.findNearbyTet(*vLeftOut.front()));
	bUnfinished = false;
	return vLeftOut.size();
}

void Dt3::triangulate(std::vector<Point3*>& vVertices, Tet3* pLastTet)
{
	if (pLastTet == nullptr) goToHell("pLastTet==NULL in Dt3::triangulate");
	if (vVertices.empty()) {
		Message() << "Attention: triangulate has got an empty vector" << std::endl;
		return;
	}
	CONDITION_CHECK_AS(vVertices.size() <= kMaxPoints, kNumberText);
	insertInOrder(
	    vVertices, InsertionOrder(static_cast<std::uint32_t>(vVertices.size())), pLastTet);
}

void Dt3::insertInOrder(
    const std::vector<Point3*>& vVertices, const InsertionOrder& order, Tet3* pLastTet)
{
	const OwnLabels labels(*this);
	LookAhead lookAhead(vVertices, order, batchTests, predicates, bLooksAhead);
	const unsigned interval =
	    progress ? progressInterval(vVertices.size()) : std::numeric_limits<unsigned>::max();
	unsigned numReported = 0;
	std::size_t numInserted = 0;
	walk.numFacetTests = 0;
	while (!lookAhead.isAtEnd()) {
		Point3* pVtx = lookAhead.vertex();
		if (const Reservation* pReserved = lookAhead.cavity()) {
			beginInsertion();
			pLastTet = replaceCavity(pVtx, *pReserved);
		} else {
			pLastTet = insertVertex(&pVtx, lookAhead.start(pLastTet));
		}
		lookAhead.advance(
		    cavity.takeDisturbed(), std::exchange(walk.numFacetTests, std::size_t{0}));

		++numInserted;
		if (labels.numTaken() - numReported < interval) continue;
		reportProgress(numInserted, vVertices.size());
		numReported = labels.numTaken();
	}
	reportProgress(numInserted, numInserted);
}

void Dt3::reportProgress(std::size_t numInserted, std::size_t numVertices) const
{
	if (!progress) return;
	CONDITION_CHECK_AS(progress(numInserted, numVertices), "the progress handler lets it go on");
}

} // namespace TULO3D
