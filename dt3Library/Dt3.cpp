// SPDX-License-Identifier: MIT
// Constructor and destructor of the engine.
#include "Dt3.h"

namespace TULO3D {

namespace {

constexpr std::size_t kFacetSlots = 1024;
constexpr std::size_t kUsualCavity = 512;

} // namespace

Dt3::Dt3(Tulo_3D* pFacade, const BatchTests& tests)
    : numStoredTCS(0), bFullDimensional(false), pOwner(pFacade), bVerbose(false), batchTests(tests)
{
	vTwoTetSlots.assign(kFacetSlots, nullptr);
	twoTetPool.init(1024, 512, SimplePool<TwoTetStruct>::kMaxBlock);
	tetPool.init(28, -1, SimplePool<Tet3>::kMaxBlock);
	vDeadTets.makeRoom(kUsualCavity);
	vRecycledTets.makeRoom(kUsualCavity);
}

Dt3::~Dt3()
{
	for (Surface3* pSurface : vSurfaces) delete pSurface;
}

} // namespace TULO3D
