#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs a build into a temporary folder, moves that folder, and builds and runs a small host in
# each way of linking the library. CXX and CXXFLAGS are those of the build.
# Usage: check_consumers.sh SOURCE_FOLDER BUILD_FOLDER
set -euo pipefail

source=$1 build=$2
hosts=$source/tests/consumers
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export CXX CXXFLAGS LD_LIBRARY_PATH
CXX=${CXX:-c++} CXXFLAGS=${CXXFLAGS:-}

build_and_run() {
	local name=$1 program
	shift
	echo "== $name"
	cmake -S "$hosts/$name" -B "$work/$name" -DCMAKE_BUILD_TYPE=Release "$@"
	cmake --build "$work/$name" --parallel 2
	for program in "$work/$name"/host*; do
		"$program"
	done
}

cmake --install "$build" --prefix "$work/installed"
mv "$work/installed" "$work/moved"
libFolder=$(dirname "$(find "$work/moved" -name 'libTulo3D.so')")

LD_LIBRARY_PATH=
build_and_run find_package -DCMAKE_PREFIX_PATH="$work/moved"
build_and_run add_subdirectory -DTULO3D_SOURCE="$source"

echo "== pkg-config"
export PKG_CONFIG_PATH=$libFolder/pkgconfig
# shellcheck disable=SC2046,SC2086 # several flags each
"$CXX" -std=c++17 $CXXFLAGS $(pkg-config --cflags Tulo3D) "$hosts/host.cpp" \
	$(pkg-config --libs Tulo3D) -o "$work/pkg_config_host"
LD_LIBRARY_PATH=$libFolder "$work/pkg_config_host"

# What the library itself does without is left out, or an error where it is asked for.
echo "== a machine with a compiler and CMake alone"
bare=(cmake -S "$source" -B "$work/bare" -DCMAKE_DISABLE_FIND_PACKAGE_{CLI11,GTest,Doxygen}"=ON"
	-DGMP_INCLUDE_DIR=OFF -DCMAKE_INSTALL_LIBDIR=/some/libs -DCMAKE_INSTALL_INCLUDEDIR=/other/headers)
"${bare[@]}" | tee "$work/log"
for part in "program tulo3d (Debian packages missing: libcli11-dev)" "benchmarks (" "site (" \
	"tests (Debian packages missing: libgtest-dev, libgmp-dev)"; do
	grep -qF "Left out: the $part" "$work/log"
done
cmake --build "$work/bare" --target Tulo3D tulo3d_shapes --parallel 2
DESTDIR=$work/bareRoot cmake --install "$work/bare"
[[ -e $work/bareRoot/some/libs/libTulo3D.so && -e $work/bareRoot/other/headers/Tulo3D/Tulo_3D.h ]]
for option in TULO3D_BUILD_TOOLS TULO3D_BUILD_BENCHMARKS BUILD_TESTING; do
	if "${bare[@]}" -U '*BUILD_*' "-D$option=ON" &>"$work/log"; then exit 1; fi
	grep -q "$option asks for the" "$work/log"
done

echo "== pkg-config with absolute folders"
flags=$(PKG_CONFIG_PATH=$work/bare pkg-config --cflags --libs Tulo3D)
echo "$flags"
[[ $flags =~ ^-I/other/headers/Tulo3D\ +-L/some/libs\ +-lTulo3D\ *$ ]]
