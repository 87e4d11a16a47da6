// SPDX-License-Identifier: MIT
// Shows the whole mesh: as text, and as a drawing.
#include "Dt3.h"
#include "Message.h"
#include "Visualizer3.h"

namespace TULO3D {

void Dt3::setVerbosity(bool bVerbosity)
{
	expectFinished();
	bVerbose = bVerbosity;
}

void Dt3::print(const std::string& name) const
{
	std::vector<Tet3*> vTets;
	getAllTetrahedra(vTets);
	Message message;
	message << "\n\n**** Dt3::print(" << name << "), numTets=" << vTets.size() << std::endl;
	for (const Tet3* pTet : vTets) message << *pTet << '\n';
	message << std::flush;
}

void Dt3::show(const std::string& filename, Point3* pVtx) const
{
	std::vector<Tet3*> vTets;
	getAllTetrahedra(vTets);
	Message() << "  Dt3::show(): vTets.size()=" << vTets.size() << std::endl;

	Visualizer3 vis(filename);
	for (const Tet3* pTet : vTets) {
		vis.writeTet(pTet, Visualizer3::getNextColor());
		// Deliberate: a shared corner is drawn once for each of its tetrahedra; this is a plain dump.
		for (int i = 0; i < 4; ++i) vis.writePoint(pTet->getCorner(i), kCornerWidth, GREEN);
	}
	if (pVtx) vis.writePoint(pVtx, kMarkWidth, RED);
	vis.close();
}

} // namespace TULO3D
