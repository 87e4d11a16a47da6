#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Sets everything up, then builds and tests with g++ and clang, with sanitizers and with fused
# multiply-add allowed, fuzzes for a moment and compares meshes between compilers and CPUs. The last
# line sums up all runs; the exit status is 0 only if all went well.
# Usage: tools/test.sh [PRESET|same_mesh]...
set -uo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit 1
# shellcheck source=tools/packages.sh
source tools/packages.sh
require_packages "${packages_build[@]}" "${packages_test[@]}" || exit 1

(($#)) || set -- release sanitize clang fma fuzz same_mesh
jobs=$(nproc)
passed=0 failed=0 skipped=0 broken=()

# Reads one number of the <testsuite> line of a test report.
report_number() {
	sed -n "/<testsuite/,/>/s/.*[[:space:]]$1=\"\([0-9]*\)\".*/\1/p" "$2" | head -n 1
}

test_preset() {
	local preset=$1
	local report=$root/build/$preset/test-report.xml
	echo "== $preset: build"
	cmake --preset "$preset" && cmake --build --preset "$preset" --parallel "$jobs" || return 1

	echo "== $preset: test"
	local status=0
	rm -f "$report"
	ctest --preset "$preset" --parallel "$jobs" --output-junit "$report" || status=1
	[[ -s $report ]] || return 1

	local tests failures notRun
	tests=$(report_number tests "$report")
	failures=$(report_number failures "$report")
	notRun=$(($(report_number skipped "$report") + $(report_number disabled "$report")))
	passed=$((passed + tests - failures - notRun))
	failed=$((failed + failures))
	skipped=$((skipped + notRun))
	((tests > notRun)) || status=1 # a run without a test shows nothing
	return "$status"
}

for preset in "$@"; do
	SECONDS=0
	if [[ $preset == same_mesh ]]; then
		tools/same_mesh.sh || broken+=("$preset")
	else
		test_preset "$preset" || broken+=("$preset")
	fi
	echo "== $preset: $SECONDS s"
done

((${#broken[@]} == 0)) || echo "Failed: ${broken[*]}"
((skipped == 0)) || echo "$skipped skipped"
echo "$passed passed, $failed failed"
((${#broken[@]} == 0 && failed == 0))
