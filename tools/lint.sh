#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Reads the sources without running them: format, clang-tidy, spelling, shell scripts. A tool that is
# not installed is left out and named.
# Status: 0 nothing found; 1 something was; 77 nothing found, but not every tool was there.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1

failed=() missing=()
check() { # NAME COMMAND...
	local name=$1
	shift
	if ! command -v "$1" >/dev/null; then
		echo "-- $name: skipped, $1 is missing"
		missing+=("$1")
		return
	fi
	echo "-- $name"
	"$@" || failed+=("$name")
}

tidy() {
	cmake --preset clang >/dev/null && tools/tidy.sh build/clang "$PWD/(dt3Library|shapes|apps|examples)/"
}

mapfile -t sources < <(git ls-files --cached --others --exclude-standard '*.cpp' '*.h')
mapfile -t scripts < <(git ls-files --cached --others --exclude-standard '*.sh' .ci/run)
check format clang-format --dry-run -Werror "${sources[@]}"
check spelling codespell
check scripts shellcheck -x "${scripts[@]}"
if command -v clang-tidy >/dev/null; then
	check clang-tidy tidy
else
	check clang-tidy clang-tidy
fi

((${#missing[@]} == 0)) || echo "Skipped for want of: ${missing[*]}"
((${#failed[@]} == 0)) || echo "Not clean: ${failed[*]}"
((${#failed[@]} == 0)) || exit 1
((${#missing[@]} == 0)) || exit 77
