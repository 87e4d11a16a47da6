# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# What the project needs from the system, for which purpose, and how to get it. To be sourced.
# shellcheck disable=SC2034

# By Debian's names: to build the library and the program; in addition, to run all the tests.
packages_build=(g++ cmake ninja-build libcli11-dev zlib1g-dev)
packages_test=(clang libclang-rt-dev libgtest-dev libgmp-dev pkg-config binutils python3)
# Without these a few tests skip: valgrind, the meshes on 64-bit Arm, pictures, what TetGen reads, Python
# packages and ours, shapes beside those of CGAL;
# the documents, the sources as they are read by tools, the packages.
packages_test_optional=(valgrind qemu-user g++-aarch64-linux-gnu geomview xvfb netpbm tetgen
	python3-venv python3-dev
	libcgal-dev doxygen clang-format clang-tidy codespell shellcheck lintian dpkg-dev)
# By the names of the Python package index, for a virtual environment that the tests use: the system
# stays as it is, whichever Python it has. Without these the tests of what they read skip.
venv=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)/build/venv
python_packages_test=(meshio gmsh)
# To build the Python package and to read its wheel; what its tests need is listed in pyproject.toml.
python_packages_build=(scikit-build-core nanobind auditwheel)

# Where a package may have come from elsewhere: the command or the header that it is for.
declare -A package_command=([g++]=g++ [cmake]=cmake [ninja-build]=ninja [clang]=clang++
	[pkg-config]=pkg-config [binutils]=nm [python3]=python3
	[valgrind]=valgrind [qemu-user]=qemu-aarch64 [g++-aarch64-linux-gnu]=aarch64-linux-gnu-g++
	[geomview]=geomview [xvfb]=xvfb-run [netpbm]=pnmtopng [tetgen]=tetgen [doxygen]=doxygen
	[clang-format]=clang-format [clang-tidy]=run-clang-tidy [codespell]=codespell
	[shellcheck]=shellcheck [lintian]=lintian [dpkg-dev]=dpkg-shlibdeps)
declare -A package_header=([libcli11-dev]=CLI/CLI.hpp [zlib1g-dev]=zlib.h [libgtest-dev]=gtest/gtest.h
	[libgmp-dev]=gmpxx.h [libcgal-dev]=CGAL/version.h)

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
	elif [[ $name == python3-dev ]]; then
		[[ -f $(python3 -c "import sysconfig; print(sysconfig.get_path('include'))")/Python.h ]]
	elif [[ $name == python3-venv ]]; then
		python3 -c "import ensurepip, venv" &>/dev/null
	else
		return 1
	fi
}

# Leaves in the array `missing` what is not there of the given packages.
find_missing() {
	local name
	missing=()
	for name in "$@"; do
		has_package "$name" || missing+=("$name")
	done
}

# Installs the given packages if there is a way to, and this user may.
install_packages() {
	local as_root=() install=(apt-get -y --no-install-recommends -o DPkg::Lock::Timeout=300 install "$@")
	if ! command -v apt-get >/dev/null; then
		echo "There is no apt-get here. Install what Debian calls: $*" >&2
		return 1
	fi
	if ((EUID != 0)); then
		if ! sudo -n true &>/dev/null; then
			echo "This user may not install packages. Let somebody who may run" >&2
			echo "    apt-get install $*" >&2
			echo "and start this command again." >&2
			return 1
		fi
		as_root=(sudo -n)
	fi
	as_root+=(env DEBIAN_FRONTEND=noninteractive)

	# A fresh machine has no package lists, or old ones.
	"${as_root[@]}" "${install[@]}" && return 0
	"${as_root[@]}" apt-get update && "${as_root[@]}" "${install[@]}"
}

# Sees to it that the given packages are there: installs what is missing if this user may do so, and
# says what to do if not.
require_packages() {
	local missing
	find_missing "$@"
	((${#missing[@]} == 0)) && return 0
	echo "Missing on this system: ${missing[*]}"
	install_packages "${missing[@]}" && return 0
	echo "Installing failed. Needed: ${missing[*]}" >&2
	return 1
}

# The same for packages without which the work goes on; says which of them are still missing.
try_packages() {
	local name missing known=()
	find_missing "$@"
	((${#missing[@]} == 0)) && return 0
	echo "Missing on this system, but not needed by all: ${missing[*]}"
	if ! install_packages "${missing[@]}"; then
		for name in "${missing[@]}"; do # one that is not to be had must not hold up the others
			apt-cache show "$name" &>/dev/null && known+=("$name")
		done
		((0 < ${#known[@]} && ${#known[@]} < ${#missing[@]})) && install_packages "${known[@]}"
	fi
	find_missing "$@"
	((${#missing[@]} == 0)) || echo "Going on without ${missing[*]}; what needs them is skipped."
}

# Installs the given Python packages into the virtual environment, which it makes if need be; says which
# of them are missing where they cannot be had.
try_python_packages() {
	local package missing=()
	if ! "$venv/bin/python" -m pip --version &>/dev/null && ! python3 -m venv --clear "$venv"; then
		echo "No virtual environment for Python can be made (Debian package python3-venv)."
		echo "Going on without the Python packages $*; what needs them is skipped."
		return
	fi
	for package in "$@"; do # what is there already needs no network
		"$venv/bin/python" -m pip install --quiet --disable-pip-version-check --retries 1 "$package" ||
			missing+=("$package")
	done
	((${#missing[@]} == 0)) ||
		echo "Going on without the Python packages ${missing[*]}; what needs them is skipped."
}
