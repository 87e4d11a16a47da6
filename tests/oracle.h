// SPDX-License-Identifier: MIT
// The exact signs of the two predicates, computed independently of the library.
#pragma once

#include "Point3.h"

namespace oracle {

using P = TULO3D::Point3;

/// The sign of ((b - a) x (c - a)) . (d - a), without rounding.
int orientation(const P& a, const P& b, const P& c, const P& d);

/// For a, b, c, d of positive orientation: 1 when q is inside their sphere, 0 on it, -1 outside.
int inSphere(const P& a, const P& b, const P& c, const P& d, const P& q);

/// The same signs, sooner: where doubles with an error bound are certain, they decide.
int quickOrientation(const P& a, const P& b, const P& c, const P& d);
int quickInSphere(const P& a, const P& b, const P& c, const P& d, const P& q);

} // namespace oracle
