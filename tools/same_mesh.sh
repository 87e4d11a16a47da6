#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The same points give the same mesh, to the last corner, whatever compiled the library and whatever
# runs it: compares meshes with tests/mesh_hashes.txt, each from a process of its own.
# Usage: same_mesh.sh RUNNER...    the meshes of a GoldenRunner; the command may be several words
#        same_mesh.sh              of builds that no preset makes: without optimisation, by clang
#                                  with fused multiply-add, and for 64-bit Arm where that can be
#                                  built and run; the presets compare theirs as a test
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

if (($#)); then
	while read -r family size hash; do
		found=$("$@" "$family" "$size" | tail -n 1 | tr -d '\r')
		[[ $found == "$hash" ]] || { echo "$family $size: $found instead of $hash" && exit 1; }
	done <"$root/tests/mesh_hashes.txt"
	exit
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export root work
check() { # RUN COMPILER FLAG...: RUN is a command that runs a program
	local run=$1 program sources
	shift
	mapfile -t sources < <(find "$root/dt3Library" -name '*.cpp')
	program=$(mktemp -p "$work")
	"$@" -std=c++17 -ffp-contract=off -I "$root/include" -I "$root/dt3Library" -I "$root/inputs" -DTULO3D_BUILDING \
		-DTULO3D_VERSION_{MAJOR,MINOR,REVISION}=0 "${sources[@]}" \
		"$root"/{inputs/points,tests/GoldenRunner}.cpp -o "$program" &&
		"$root/tools/same_mesh.sh" "$run" "$program" && echo "same mesh: $*"
}
export -f check

{ # the slowest ones first
	arm=aarch64-linux-gnu-g++
	if command -v "$arm" >/dev/null && command -v qemu-aarch64 >/dev/null; then
		for flag in -O0 -O3; do echo qemu-aarch64 "$arm" -static "$flag"; done
	else
		echo "not on Arm: no $arm or no qemu-aarch64 (Debian: g++-aarch64-linux-gnu qemu-user)" >&2
	fi
	if grep -qsw fma /proc/cpuinfo; then echo env clang++ -O3 -march=haswell; fi
	for compiler in g++ clang++; do echo env "$compiler" -O0; done
} | xargs -P "$(nproc)" -I '{}' bash -c 'check {}'
