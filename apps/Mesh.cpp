// SPDX-License-Identifier: MIT
// The arrays of the mesh, and the check of its links.
#include "Mesh.h"

#include <array>
#include <numeric>
#include <utility>

namespace app {

namespace {

using Numbers = std::vector<std::int32_t>;

// Three numbers that are the same for two facets if and only if their corners are: the least, the largest and
// the sum. Without branches, since the order in which the corners come cannot be predicted.
std::array<std::int64_t, 3> facetKey(const std::int32_t* pCorners, std::size_t i)
{
	const std::int64_t a = pCorners[(i + 1) & 3], b = pCorners[(i + 2) & 3],
	                   c = pCorners[(i + 3) & 3];
	return {std::min(std::min(a, b), c), std::max(std::max(a, b), c), a + b + c};
}

// The first place of the number in a row of four; 3 when it is in none. Without branches, too.
std::size_t placeIn(const std::int32_t* pRow, std::int32_t number)
{
	std::size_t place = 3;
	for (std::size_t i = 3; i-- > 0;) place = pRow[i] == number ? i : place;
	return place;
}

// True when neighbour i of the tetrahedron names it in turn, and has its corners but for corner i.
bool isLinked(const TetArrays& arrays, std::size_t num, std::size_t tet, std::size_t i)
{
	const auto neigh = static_cast<std::size_t>(arrays.pNeighbours[4 * tet + i]);
	if (neigh >= num) return false;
	const auto number = static_cast<std::int32_t>(tet);
	const std::int32_t* const pRow = arrays.pNeighbours + 4 * neigh;
	const auto back = placeIn(pRow, number);
	return pRow[back] == number &&
	    facetKey(arrays.pCorners + 4 * tet, i) == facetKey(arrays.pCorners + 4 * neigh, back);
}

const char* findBrokenRecord(const Mesh& mesh)
{
	constexpr const char* kUnlinked = "two neighbours do not know each other";
	const TetArrays arrays(mesh, true);
	const std::size_t num = mesh.numTets();
	for (std::size_t vertex = 0; vertex < mesh.numVertices(); ++vertex) {
		const auto tet = static_cast<std::size_t>(arrays.pTetOfVertex[vertex]);
		const std::int32_t* const pRow = arrays.pCorners + 4 * tet;
		if (tet >= num || !std::count(pRow, pRow + 4, static_cast<std::int32_t>(vertex)))
			return "a vertex does not know a tetrahedron that has it";
	}
	// Each pair from its lower number. None is left out if there are as many links to lower ones as to higher ones.
	std::int64_t balance = 0;
	for (std::size_t i = 0; i < 4 * num; ++i) {
		const auto neigh = arrays.pNeighbours[i], tet = static_cast<std::int32_t>(i / 4);
		balance += (neigh >= tet) - (neigh < tet && neigh != -1);
		if (neigh >= tet && !isLinked(arrays, num, i / 4, i % 4)) return kUnlinked;
	}
	return balance == 0 ? nullptr : kUnlinked;
}

// Each edge is in two facets, which run through it in opposite directions.
bool isClosedHull(const Mesh& mesh)
{
	std::vector<std::pair<std::int32_t, std::int32_t>> vEdges, vReversed;
	for (std::size_t i = 0; i < mesh.vHullCorners.size(); ++i) {
		const auto a = mesh.vHullCorners[i], b = mesh.vHullCorners[i % 3 == 2 ? i - 2 : i + 1];
		vEdges.emplace_back(a, b);
		vReversed.emplace_back(b, a);
	}
	std::sort(vEdges.begin(), vEdges.end());
	std::sort(vReversed.begin(), vReversed.end());
	return vEdges == vReversed && std::adjacent_find(vEdges.begin(), vEdges.end()) == vEdges.end();
}

// Calls visit(lower, upper) with the vertices of each edge of each tetrahedron.
template <class Visit>
void forEachEdgeOfTets(const Mesh& mesh, Visit visit)
{
	forEachTet(mesh, [&](const std::int32_t* pCorners) {
		for (int i = 0; i < 4; ++i)
			for (int j = i + 1; j < 4; ++j) {
				const auto [lower, upper] = std::minmax(pCorners[i], pCorners[j]);
				visit(static_cast<std::size_t>(lower), static_cast<std::size_t>(upper));
			}
	});
}

std::size_t numEdges(const Mesh& mesh)
{
	// A counting sort by the lower vertex, much faster than one that compares. In vPlace is first where
	// the group of each lower vertex starts, and afterwards where it ends.
	std::vector<std::size_t> vPlace(mesh.numVertices());
	forEachEdgeOfTets(mesh, [&](std::size_t lower, std::size_t) { ++vPlace[lower]; });
	std::exclusive_scan(vPlace.begin(), vPlace.end(), vPlace.begin(), std::size_t{0});
	std::vector<std::uint32_t> vUpper(6 * mesh.numTets());
	forEachEdgeOfTets(mesh, [&](std::size_t lower, std::size_t upper) {
		vUpper[vPlace[lower]++] = static_cast<std::uint32_t>(upper);
	});

	// An edge is there once for each of its tetrahedra. It counts where its upper vertex is new in the group.
	std::size_t num = 0;
	std::vector<std::size_t> vLatestLower(mesh.numVertices(), SIZE_MAX);
	for (std::size_t lower = 0, i = 0; lower < vPlace.size(); ++lower)
		for (; i < vPlace[lower]; ++i)
			if (std::exchange(vLatestLower[vUpper[i]], lower) != lower) ++num;
	return num;
}

bool holdsEuler(const Mesh& mesh)
{
	return mesh.numVertices() + mesh.numFacets() == 1 + numEdges(mesh) + mesh.numTets();
}

void addHull(Mesh& mesh)
{
	forEachTet(mesh, [&](const std::int32_t* pCorners, const std::int32_t* pNeighbours) {
		for (int i = 0; i < 4; ++i) {
			if (pNeighbours[i] != -1) continue;
			for (const auto corner : kOutside[i]) mesh.vHullCorners.push_back(pCorners[corner]);
		}
	});
}

} // namespace

Mesh makeMesh(TULO3D::Tulo_3D& engine, const std::vector<TULO3D::Point3*>& vHandles)
{
	Mesh mesh;
	mesh.pEngine = &engine;
	mesh.vCoordinates.reserve(3 * engine.getNumVertices());
	mesh.vFirstInput.reserve(engine.getNumVertices());
	for (std::size_t i = 0; i < vHandles.size(); ++i) {
		const TULO3D::Point3& vertex = *vHandles[i];
		// The next number comes up with the first point of its vertex.
		if (static_cast<std::size_t>(vertex.getNumber()) != mesh.numVertices()) continue;
		mesh.vCoordinates.insert(mesh.vCoordinates.end(), {vertex.x(), vertex.y(), vertex.z()});
		mesh.vFirstInput.push_back(static_cast<std::int32_t>(i));
	}
	if (mesh.numVertices() < vHandles.size())
		for (const auto* pVertex : vHandles) mesh.vVertexOfInput.push_back(pVertex->getNumber());
	addHull(mesh);
	return mesh;
}

Mesh makeMesh(TULO3D::ParallelMesh arrays, std::vector<double> vCoordinates)
{
	Mesh mesh;
	mesh.arrays = std::move(arrays);
	mesh.vCoordinates = std::move(vCoordinates);
	const std::size_t numPoints = mesh.vCoordinates.size() / 3;
	const std::int32_t* const pVertices = mesh.arrays.vertexOfPoint.get();
	mesh.vFirstInput.reserve(mesh.arrays.numVertices);
	for (std::size_t i = 0; i < numPoints; ++i) {
		const std::size_t vertex = mesh.numVertices();
		if (static_cast<std::size_t>(pVertices[i]) != vertex) continue;
		std::copy_n(&mesh.vCoordinates[3 * i], 3, &mesh.vCoordinates[3 * vertex]); // forwards
		mesh.vFirstInput.push_back(static_cast<std::int32_t>(i));
	}
	mesh.vCoordinates.resize(3 * mesh.numVertices());
	if (mesh.numVertices() < numPoints)
		mesh.vVertexOfInput.assign(pVertices, pVertices + numPoints);
	mesh.arrays.vertexOfPoint.reset();
	addHull(mesh);
	return mesh;
}

TetArrays::TetArrays(const Mesh& mesh, bool bAtVertices)
    : pTetOfVertex(mesh.arrays.tetOfVertex.get()),
      pCorners(mesh.arrays.corners.get()),
      pNeighbours(mesh.arrays.neighbours.get())
{
	if (!mesh.pEngine) return;
	if (bAtVertices) vTetOfVertex.resize(mesh.numVertices());
	vCorners.resize(4 * mesh.numTets());
	vNeighbours.resize(vCorners.size());
	TULO3D::MeshArrays copies;
	copies.pTetOfVertex = bAtVertices ? vTetOfVertex.data() : nullptr;
	copies.pCorners = vCorners.data();
	copies.pNeighbours = vNeighbours.data();
	mesh.pEngine->copyTo(copies);
	pTetOfVertex = copies.pTetOfVertex;
	pCorners = copies.pCorners;
	pNeighbours = copies.pNeighbours;
}

std::vector<std::int32_t> numberVertices(const Mesh& mesh, const Numbers& vGiven)
{
	Numbers vNumbers(mesh.numVertices(), -1);
	for (const auto vertex : vGiven) vNumbers[static_cast<std::size_t>(vertex)] = 0;
	std::int32_t next = 0;
	for (auto& number : vNumbers)
		if (number == 0) number = next++;
	return vNumbers;
}

std::size_t numHullVertices(const Mesh& mesh)
{
	const auto vNumbers = numberVertices(mesh, mesh.vHullCorners);
	return vNumbers.size() -
	    static_cast<std::size_t>(std::count(vNumbers.begin(), vNumbers.end(), -1));
}

const char* findBrokenLink(const Mesh& mesh)
{
	if (const char* reason = findBrokenRecord(mesh)) return reason;
	if (!isClosedHull(mesh)) return "the hull is not closed";
	if (!holdsEuler(mesh)) return "V - E + F - T is not 1";
	return nullptr;
}

} // namespace app
