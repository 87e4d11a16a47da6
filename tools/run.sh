#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Sets everything up, builds the release and triangulates the laser scan, or the given file.
# Usage: tools/run.sh [ARGUMENTS OF tulo3d]
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=tools/packages.sh
source "$root/tools/packages.sh"
require_packages "${packages_build[@]}"

# Only what this job needs; a folder of its own keeps the tests' build as it is.
build=$root/build/run
cmake --preset release -S "$root" -B "$build" -DTULO3D_BUILD_TOOLS=ON -DBUILD_TESTING=OFF \
	-DTULO3D_BUILD_BENCHMARKS=OFF -DTULO3D_BUILD_EXAMPLES=OFF
cmake --build "$build"

(($#)) || set -- "$root/data/lidar_rock_22k.xyz"
exec "$build/apps/tulo3d" "$@"
