#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the pictures in docs/ anew. Usage: tools/make_pictures.sh BUILD_FOLDER
# Those by PyVista are made where the Python package is installed with its extra `plot`.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$(cd "$1" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

# Drawings have six digits, so the scan is moved to the origin first; every third point will do.
LC_ALL=C awk 'NR % 3 == 0 { printf "%.3f %.3f %.3f\n", $1 - 2230930, $2 - 252240, $3 }' \
	"$root/data/lidar_rock_22k.xyz" | "$build/apps/tulo3d" -f xyz -o scan.list -
"$root/tools/render_list.sh" --size 900x480 --turn 60,-58 --longest-edge 45 \
	--gcl '(merge-ap World appearance { *-vect }) (zoom c0 1.55)
	(transform World World focus translate 0 0.2 0)' scan.list "$root/docs/scan.png"

library=$build/dt3Library/libTulo3D.so
"${CXX:-c++}" -std=c++17 -I"$root/include" "$root/tools/failed_check.cpp" "$library" \
	-Wl,-rpath,"$build/dt3Library" -o failed_check
./failed_check
"$root/tools/render_list.sh" --size 600x500 --turn 25,-70 \
	--gcl '(merge-ap World appearance { material { edgecolor 0.6 0.6 0.6 } }) (zoom c0 1.1)' \
	./*_sphereIncBug.list "$root/docs/failed-check.png"

if python3 -c "import tulo3d, pyvista"; then
	python3 "$root/tools/draw_scan.py" "$root/docs/scan-tetrahedra.png"
	for example in "$root"/python/examples/*.py; do
		python3 "$example" "$root/docs/gallery"
	done
fi
