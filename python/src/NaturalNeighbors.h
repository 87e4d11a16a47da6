// SPDX-License-Identifier: MIT
// Sibson's coordinates: what share of its Voronoi cell a point would take from each of its neighbours.
#pragma once

#include "FlatMesh.h"
#include "IndexMap.h"
#include "Vec.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace binding {

/// The natural neighbours of one point after the other, and their weights.
///
/// Inserting point q would remove the tetrahedra whose spheres contain it: the cavity. Of the Voronoi
/// cell of a vertex u of the cavity, q takes the polytope that is bounded by the bisector of q and u
/// and by the bisectors of u and its neighbours v in the cavity. The latter faces have as corners the
/// circumcentres of cavity tetrahedra at the edge (u, v) and, where the edge is on the cavity's boundary,
/// those of the two new tetrahedra there. Seen from a point in the first plane, half-way from q to u,
/// the volume is a sum over the edges of the other faces; each edge belongs to a facet of the cavity,
/// so that no face needs to be put together.
class NaturalNeighbors
{
public:
	explicit NaturalNeighbors(const FlatMesh& theMesh) : mesh(theMesh), exact(theMesh) {}

	/// Finds the neighbours of point `p` in tetrahedron `t`. False where rounding leaves nothing of the
	/// volumes, as on the hull, where they have no bound.
	bool find(const double* p, std::int32_t t);

	std::size_t size() const { return vertices.size(); }
	std::int32_t vertex(std::size_t n) const { return vertices.key(n); }
	/// Of neighbour n; all together are 1, and the neighbours so weighted have their centre at `p`.
	double weight(std::size_t n) const { return vWeights[n]; }

private:
	/// A tetrahedron that the search has met.
	struct Met
	{
		bool bInCavity;
		Vec center; ///< of its sphere, if in the cavity; as all vectors here, seen from the point, scaled
	};

	/// From point `q` to point `p`, brought to the magnitude of the tetrahedron around the query point.
	Vec scaledBetween(const double* q, const double* p) const { return scale * between(q, p); }
	void findCavity(const double* p, std::int32_t t);
	void meet(std::int32_t t, const double* p);
	/// Adds what facet k of cavity tetrahedron `t` contributes.
	void addFacet(const double* p, std::int32_t t, int k);
	/// Adds an edge from c to d of the face between u and v, counter-clockwise seen from v.
	void addEdge(std::size_t u, std::size_t v, const Vec& c, const Vec& d);
	/// The vertex' place among the neighbours.
	std::size_t numberOf(std::int32_t v, const double* p);
	bool normalize();

	const FlatMesh& mesh;
	ExactTests exact;
	double scale = 1.0;
	IndexMap tets;
	std::vector<Met> vMet; // by the numbers of `tets`
	IndexMap vertices;
	std::vector<Vec> vArms; // to the vertices, by their numbers
	std::vector<double> vWeights;
};

} // namespace binding
