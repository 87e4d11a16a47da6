# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# What the project needs from the system, for which purpose, and how to get it. To be sourced.
# shellcheck disable=SC2034

# By Debian's names: to build the library and the program; in addition, to run all the tests.
packages_build=(g++ cmake ninja-build libcli11-dev)
packages_test=(clang libclang-rt-dev libgtest-dev libgmp-dev pkg-config binutils python3)

# Where a package may have come from elsewhere: the command or the header that it is for.
declare -A package_command=([g++]=g++ [cmake]=cmake [ninja-build]=ninja [clang]=clang++
	[pkg-config]=pkg-config [binutils]=nm [python3]=python3)
declare -A package_header=([libcli11-dev]=CLI/CLI.hpp [libgtest-dev]=gtest/gtest.h
	[libgmp-dev]=gmpxx.h)

has_package() {
	local name=$1 status
	status=$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null) || status=""
	[[ $status == installed ]] && return 0
	if [[ -n ${package_command[$name]:-} ]]; then
		command -v "${package_command[$name]}" >/dev/null
	elif [[ -n ${package_header[$name]:-} ]]; then
		echo "#include <${package_header[$name]}>" | "${CXX:-c++}" -E -x c++ - &>/dev/null
	elif [[ $name == libclang-rt-dev ]]; then
		compgen -G "$(clang++ -print-resource-dir 2>/dev/null)/lib/*/libclang_rt.fuzzer*" >/dev/null
	else
		return 1
	fi
}

# Sees to it that the given packages are there: installs what is missing if this user may do so, and
# says what to do if not.
require_packages() {
	local name missing=() as_root=()
	for name in "$@"; do
		has_package "$name" || missing+=("$name")
	done
	((${#missing[@]} == 0)) && return 0

	echo "Missing on this system: ${missing[*]}"
	local install=(apt-get -y --no-install-recommends -o DPkg::Lock::Timeout=300 install "${missing[@]}")
	if ! command -v apt-get >/dev/null; then
		echo "There is no apt-get here. Install what Debian calls: ${missing[*]}" >&2
		return 1
	fi
	if ((EUID != 0)); then
		if ! sudo -n true &>/dev/null; then
			echo "This user may not install packages. Let somebody who may run" >&2
			echo "    apt-get install ${missing[*]}" >&2
			echo "and start this command again." >&2
			return 1
		fi
		as_root=(sudo -n)
	fi
	as_root+=(env DEBIAN_FRONTEND=noninteractive)

	# A fresh machine has no package lists, or old ones.
	"${as_root[@]}" "${install[@]}" && return 0
	"${as_root[@]}" apt-get update && "${as_root[@]}" "${install[@]}" && return 0
	echo "Installing failed. Needed: ${missing[*]}" >&2
	return 1
}
