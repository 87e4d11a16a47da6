#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the Debian packages, lets lintian look at them, unpacks them into an empty root, and builds
# and runs hosts and the program against what is there.
# Status: 0 all is well; 1 something is not; 77 the tools are missing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

for tool in dpkg-deb dpkg-shlibdeps lintian gzip pkg-config; do
	if ! command -v "$tool" >/dev/null; then
		echo "skipped, $tool is missing (Debian packages dpkg-dev lintian gzip pkg-config)"
		exit 77
	fi
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --preset package >/dev/null
cmake --build --preset package
rm -f build/package/*.deb
cpack --config build/package/CPackConfig.cmake

lintian --allow-root --fail-on error,warning build/package/*.deb

for package in build/package/*.deb; do
	dpkg-deb -x "$package" "$work/root"
done
usr=$work/root/usr
libFolder=$(dirname "$(find "$usr" -name libTulo3D.so)")
[[ -s $usr/share/man/man1/tulo3d.1.gz ]]

export LD_LIBRARY_PATH=$libFolder
"$usr/bin/tulo3d" data/bunny_2k.xyz --check -o "$work/bunny.vtu"
cmake -G Ninja -S tests/consumers/find_package -B "$work/host" -DCMAKE_BUILD_TYPE=Release \
	-DCMAKE_PREFIX_PATH="$usr" >/dev/null
cmake --build "$work/host"
for host in "$work"/host/host*; do
	"$host"
done

export PKG_CONFIG_PATH=$libFolder/pkgconfig
read -ra flags < <(pkg-config --cflags --libs Tulo3D)
"${CXX:-c++}" -std=c++17 tests/consumers/host.cpp "${flags[@]}" -o "$work/plain_host"
"$work/plain_host"
documents=$usr/share/doc/libtulo3d-dev
[[ -s $documents/docs/guide.md ]]
"${CXX:-c++}" -std=c++17 "$documents/examples/FirstMesh.cpp" "${flags[@]}" -o "$work/first_mesh"
"$work/first_mesh"
