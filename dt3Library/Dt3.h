// SPDX-License-Identifier: MIT
// The engine: one tetrahedralization with everything that it owns.
#pragma once

#include "ArdoTest3.h"
#include "Dt3Cavity.h"
#include "Dt3Walk.h"
#include "Edge3.h"
#include "HC3.h"
#include "MeshArrays.h"
#include "Point3.h"
#include "Tet3.h"
#include "ardo_tools/ScratchArray.h"
#include "ardo_tools/SimplePool.h"
#include "lookahead/ColdCavity.h"
#include "mesh/CollisionIndex.h"
#include "mesh/HullEdges.h"
#include "mesh/StarLinker.h"
#include "predicates/BatchTests.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace TULO3D {

class InsertionOrder;
class LiveTets;
class Tulo_3D;

/// A pending facet half (TCS): one half of a facet between two new tetrahedra, stored until the other
/// half is offered. The corners of the facet are the vertex being inserted and the two keys.
struct TwoTetStruct
{
	Point3* key0; ///< the lower address of the two
	Point3* key1; ///< the higher address
	Tet3* pTet;   ///< the new tetrahedron that owns this half
	int ith;      ///< its index of the facet
};

/// Reserved: an engine owns its surfaces, but nothing makes one yet.
struct Surface3
{
};

/// The first four vertices that are not coplanar, in the lexicographic order of their positions in a listing, and
/// in positive order; at least the last one is null when there are none. `next` gives the vertices of the
/// listing one by one, then null.
///
/// The first two, A and B, are the first of the listing: if any four vertices span space, then A and B, being
/// distinct, are among such four. C is the first vertex off the line AB, D the first one after C off the
/// plane ABC: all vertices between C and D lie in that plane. So one pass suffices.
std::array<Point3*, 4> findFirstFour(
    const ArdoTest3& predicates, const std::function<Point3*()>& next);

/// What is known of the vertices while they are all coplanar: up to three of them that span their
/// point, line or plane, and for how many vertices that has been verified. So a point that comes singly costs
/// one test, where a search for the first tetrahedron visits all vertices.
struct FlatWitness
{
	/// True when all vertices of the store are known to be coplanar; the newest one is tested, if need be.
	bool covers(const HC3& store, const ArdoTest3& predicates);

	Point3* pA = nullptr;
	Point3* pB = nullptr;
	Point3* pC = nullptr;
	std::size_t numVertices = 0;
};

// What holds between two calls from outside:
//
//   mesh       if U is neighbour i of T, then T is neighbour j of U for one j, and facet i of T and
//              facet j of U have the same three vertices
//   positive   the corners of every live tetrahedron are in positive order, by exact arithmetic
//   Delaunay   no vertex of the mesh lies strictly inside the sphere of a live tetrahedron
//   hull       the facets without a neighbour form the boundary of the convex hull
//   link       a vertex in the mesh names a live tetrahedron that has it as a corner; any other
//              vertex names none (a removed tetrahedron is never the one: each of its corners is on the
//              boundary of the cavity and so a corner of a new tetrahedron, which takes the link over)
//   clean      no live tetrahedron has a cavity mark or a reservation, and the engine has set
//              hasBeenVisited on none (a host may have); no facet half is pending: every slot is
//              null, vHashCollisions is empty, numStoredTCS is 0
//   dead       a tetrahedron in vDeadTets or vRecycledTets has custom index -1 and nothing live
//              names it
//   flat       while bFullDimensional is false there is no tetrahedron
//   finished   bUnfinished is false; after an exception that came through an insertion it is true,
//              none of the above need hold, and every call of the host throws
//
// The members are open to the library's own tests; no other code sees this class.
class Dt3
{
public:
	/// `tests` chooses the variant of the batched predicates: by default the fastest one for this CPU.
	explicit Dt3(Tulo_3D* pFacade, const BatchTests& tests = bestTests());
	Dt3(const Dt3&) = delete;
	Dt3& operator=(const Dt3&) = delete;
	~Dt3();

	// Dt3Insert.cpp: how points arrive ----------------------------------------------------------

	/// True when the coordinates are finite and so small that no exact test overflows.
	static bool isInRange(const Point3& p);
	static constexpr const char* kRangeText =
	    "coordinates are finite and at most 1e60 in magnitude";

	/// Vertices are numbered by integers of 32 bits.
	static constexpr std::size_t kMaxPoints = std::numeric_limits<std::int32_t>::max();
	static constexpr const char* kNumberText = "an engine takes at most 2147483647 points";

	/// Inserts one point and returns its vertex.
	Point3* insert(Point3& p);

	/// Inserts a batch; vUserHandles[i] becomes the vertex of vInputPoints[i].
	void insert(const std::vector<Point3>& vInputPoints, std::vector<Point3*>& vUserHandles);

	/// The same for points as x, y, z, x, y, z, ...; pVertexNumbers[i], unless null, becomes the number of
	/// the vertex of the i-th one.
	void insert(const double* pCoordinates, std::size_t numPoints, std::int32_t* pVertexNumbers);

	/// Inserts vertices that come in curve order, in rounds of growing density. The first walk starts
	/// at pLastTet, which must not be null.
	void triangulate(std::vector<Point3*>& vVertices, Tet3* pLastTet);

	/// Inserts vertices in an order that is given.
	void insertInOrder(
	    const std::vector<Point3*>& vVertices, const InsertionOrder& order, Tet3* pLastTet);

	/// Inserts the vertices that have stayed out of the mesh, and returns how many those are: none
	/// while there is no tetrahedron.
	std::size_t insertLeftOut();

	/// Throws when an exception has interrupted an insertion: the records then form no mesh. Every
	/// operation that a host can call begins with this check.
	void expectFinished() const;

	// Dt3StartUp.cpp: the first tetrahedron ------------------------------------------------------

	/// Finds the first four vertices that are not coplanar, in the lexicographic order of their
	/// positions in the listing, and makes the first tetrahedron; null when there are none.
	Tet3* startUp();

	/// Makes the first tetrahedron, of vertices in positive order.
	Tet3* startWith(const std::array<Point3*, 4>& vertices);

	// Dt3Locate.cpp: the walk to a point ---------------------------------------------------------

	/// Walks from pStartTet towards *pVtx; pStartTet ends where the walk ended.
	///   -1 inside it   -2 one of its corners has these coordinates
	///   0..3 on or beyond that hull facet   -99 stopped by the watchdog
	int locateConflictTet(Point3* pVtx, Tet3*& pStartTet);

	/// The tetrahedron that contains `p` in its inside or on its boundary; null when `p` lies on or
	/// beyond the hull (unless it is a vertex), or when there is no tetrahedron.
	Tet3* locate(const Point3& p);

	// Dt3Vertex.cpp: one vertex, wherever it lies --------------------------------------------------

	/// Inserts *ppVtx and returns a live tetrahedron that has it as a corner. When the mesh has a
	/// vertex with these coordinates, *ppVtx becomes that vertex and the mesh stays.
	/// `bByCurve`: the curve has offered the start, not the last insertion.
	Tet3* insertVertex(Point3** ppVtx, Tet3* pStartTet, bool bByCurve = false);

	/// Redirects *ppVtx to the corner of pTet with the same coordinates.
	Tet3* resolveDuplicate(Point3** ppVtx, Tet3* pTet, int locateResult);

	// Dt3Hull.cpp: a point on or beyond the hull -------------------------------------------------

	/// Inserts *ppVtx, which lies on or beyond hull facet outIndex of pCurTet.
	Tet3* insertAtHull(Point3** ppVtx, Tet3* pCurTet, int outIndex);

	/// Joins pVtx to the hull facets of vCHTets that face it; the last tetrahedron made, or null.
	Tet3* createConeTets(const std::vector<Tet3*>& vCHTets, Point3* pVtx);

	/// Fills the cavity of the doomed tetrahedra; the last tetrahedron made.
	Tet3* retriangulateDoomedTets(const std::vector<Tet3*>& vDoomedTets, Point3* pVtx);

	// Dt3Link.cpp: create, recycle and link tetrahedra -------------------------------------------

	/// A new tetrahedron without neighbours. Corners in negative order throw. Coplanar ones, which
	/// no search makes, are reported only.
	Tet3* createTet(Point3* p0, Point3* p1, Point3* p2, Point3* p3);

	/// A new tetrahedron over facet ith of pTet: pVtx as corner 0, the facet as its facet 0.
	Tet3* createTetReplacingCorner(Tet3* pTet, int ith, Point3* pVtx);

	/// Makes the two neighbours of each other across facet ith of fromTet and jth of toTet.
	static void registerTets(Tet3* fromTet, int ith, Tet3* toTet, int jth);

	/// Offers one half of a facet: links it to the other half if that is pending, else stores it.
	void storeOrLinkFacet(unsigned hash, Tet3* pTet, int ith, Point3* key0, Point3* key1);

	/// The slot, 0..1023, of the facet with these two keys, key0 being the lower address.
	static unsigned facetHash(const Point3* key0, const Point3* key1);

	/// Offers facets 1, 2 and 3 of a tetrahedron whose corner 0 is the vertex being inserted.
	void offerInnerFacets(Tet3* pNewTet);

	/// Offers every half again whose slot was taken when it was offered.
	void flushHashCollisions();

	/// Forgets all pending halves.
	void resetFacetHash();

	/// Removes a tetrahedron from the mesh; its record is reused from the next insertion on.
	void markTetDead(Tet3* pTet);

	/// Starts an insertion: exchanges the two lists. What the last insertion removed is reusable now; what it
	/// left unused waits for the next one.
	void swapDeadAndRecycled();

	// Dt3Query.cpp, Dt3Check.cpp, Dt3Print.cpp: read, verify, show -------------------------------

	/// Fills the empty vTet with every tetrahedron, in ascending address order.
	void getAllTetrahedra(std::vector<Tet3*>& vTet) const;

	/// Replaces the contents of vTet by the tetrahedra around pVtx, in ascending address order.
	static void getTetsAroundVertex(Point3* pVtx, std::vector<Tet3*>& vTet);

	/// Appends every distinct vertex, in curve order.
	void getVertices(std::vector<Point3*>& vVertices) const;

	LiveTets liveTets() const;
	std::size_t getNumVertices() const;
	std::size_t getNumTetrahedra() const;
	/// Writes the mesh as arrays of numbers.
	void copyTo(const MeshArrays& arrays) const;

	bool checkValidity(const std::string& name, bool bCheckSphereInc) const;
	void print(const std::string& name) const;
	void show(const std::string& filename, Point3* pVtx) const;

	void setVerbosity(bool bVerbosity);
	bool is3D() const;

	// The members, in the order of their construction --------------------------------------------

	SimplePool<TwoTetStruct> twoTetPool;
	SimplePool<Tet3> tetPool;
	ScratchArray<Tet3*>
	    vDeadTets; ///< removed by the current insertion, after those that the last one left
	ScratchArray<Tet3*> vRecycledTets;          ///< free for reuse
	std::vector<TwoTetStruct*> vTwoTetSlots;    ///< pending facet halves by their hash
	std::vector<TwoTetStruct*> vHashCollisions; ///< pending halves whose slot was taken
	int numStoredTCS;                           ///< the number of pending halves
	ArdoTest3 predicates;
	bool bFullDimensional; ///< there is a tetrahedron
	HC3 hc3;
	std::vector<Surface3*> vSurfaces;
	Tulo_3D* pOwner;
	bool bVerbose;
	bool bLooksAhead = true;  ///< false: every vertex is inserted as if it were alone
	bool bUnfinished = false; ///< storing and inserting has begun, and not ended
	BatchTests batchTests;    ///< the variant for this CPU
	Walk walk{batchTests, predicates};
	/// Unless empty, told how many vertices of how many are in; false ends the batch.
	std::function<bool(std::size_t, std::size_t)> progress;

private:
	// Dt3Insert.cpp
	class OwnLabels;
	/// Checks points before they are stored. From then on to the end of the call, an exception leaves the
	/// engine unfinished.
	void beginStoring(const Point3* pFirst, std::size_t numPoints);
	/// Stores one point and inserts its vertex, which is returned.
	Point3* storeAndInsert(const Point3& p);
	/// Stores the points of a batch and returns the new vertices in curve order.
	std::vector<Point3*> store(
	    const std::vector<Point3>& vInputPoints, std::vector<Point3*>& vUserHandles);
	/// Inserts the new vertices of a batch, and those that have waited for the first tetrahedron.
	void insertStored(std::vector<Point3*>& vNewVertices, std::size_t numPoints);
	/// Tells the host, if it wants to know; throws when the answer is to stop.
	void reportProgress(std::size_t numInserted, std::size_t numVertices) const;
	// Dt3Query.cpp
	/// The tetrahedra of `getAllTetrahedra`: none, with a notice, when no vertex knows an unmarked one.
	LiveTets listedTets() const;
	// Dt3Check.cpp
	/// Prints and draws the first facet of the tetrahedron that is not locally Delaunay; true if there is none.
	bool checkFacets(const Tet3& tet, const std::string& name, bool bCheckSphereInc) const;
	// Dt3Vertex.cpp
	/// Throws `text` for a tetrahedron that the host has left marked. To be called before the first change: the
	/// mesh stays usable; points that are stored and not inserted stay out of it.
	void expectUnmarked(const Tet3& tet, const char* text);
	/// Checks that the last insertion has left no pending facet half, and resets their pool.
	void beginInsertion();
	// Dt3Locate.cpp
	/// locateConflictTet, taken up again up to a thousand times where the watchdog stops it.
	int locatePersistently(const Point3& p, Tet3*& pStartTet);
	/// The same from a start that the curve has offered. A walk of more than 64 facet tests is taken up
	/// from a nearer vertex around the point on the curve. Unless null, pTetAtLast is near to `p`.
	int locateByCurve(const Point3& p, Tet3*& pStartTet, Tet3* pTetAtLast);
	/// A tetrahedron at the vertex that came singly before `p`, if that is as near to `p` as to a corner of the
	/// tetrahedron, as in the lines of a scan; else null.
	Tet3* tetAtLastPoint(const Point3& p) const;
	// Dt3Cavity.cpp
	/// Removes the tetrahedra in conflict with pVtx, of which pStartTet is one, and joins pVtx to the facets
	/// of that cavity; the last tetrahedron made.
	Tet3* replaceCavity(Point3* pVtx, Tet3* pStartTet);
	/// The same with a cold cache: a search that prefetches finds the cavity first.
	Tet3* replaceColdCavity(Point3* pVtx, Tet3* pStartTet);
	/// The same with a cavity that is known already: no in-sphere test, the same order.
	Tet3* replaceCavity(Point3* pVtx, const Reservation& reservation);
	/// Starts with an empty cavity; dead records become reusable.
	void beginCavity();
	/// Joins pVtx to the facets of the cavity; the last tetrahedron made.
	Tet3* fillCavity(Point3* pVtx);
	/// A new tetrahedron over a facet of the cavity boundary, linked to the neighbour that stays.
	Tet3* closeFacet(const CavityFacet& facet, Point3* pVtx);
	// Dt3Hull.cpp
	/// The tetrahedra with a hull facet that is visible from pVtx, first pCurTet.
	std::vector<Tet3*> gatherVisibleTets(const Point3* pVtx, Tet3* pCurTet, int outIndex);
	// Dt3Link.cpp
	/// Prints what is wrong with a link from a tetrahedron to itself.
	static void refuseSelfLink(const Tet3* pTet);
	/// A new tetrahedron whose corners are known to be in positive order.
	Tet3* makePositiveTet(Point3* p0, Point3* p1, Point3* p2, Point3* p3);
	/// Links the new star, which surrounds its vertex: every inner facet has two halves.
	void linkClosedStar();
	/// Links the new star, which ends at the hull: facets without a second half become hull facets.
	void linkOpenStar();
	void storeCollision(TwoTetStruct* pHalf);
	TwoTetStruct* takeCollision(const Tet3* pTet, const Point3* key0, const Point3* key1);

	FlatWitness flatWitness;
	const Point3* pLastVtx = nullptr; ///< of the last point that came singly
	int* pNextLabel = &Tet3::runningLabel;
	StarLinker star; ///< the tetrahedra that the current insertion makes
	Cavity cavity{vDeadTets, star, batchTests, predicates};
	ScratchArray<CavityFacet> vDoomedFacets; ///< the cavity boundary of an insertion at the hull
	ColdCavity coldCavity;
	HullEdges hullEdges;
	CollisionIndex collisionIndex; ///< finds the partner in a long vHashCollisions
};

} // namespace TULO3D
