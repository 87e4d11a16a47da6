// SPDX-License-Identifier: MIT
// All shapes.
#pragma once

#include "shapes/AlphaShapes.h"
#include "shapes/ConvexHull.h"
#include "shapes/MeshCopy.h"
#include "shapes/MeshView.h"
#include "shapes/Quality.h"
#include "shapes/Solid.h"
#include "shapes/Voronoi.h"
