#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Sets everything up, reads the sources with tools, then builds and tests with g++ and clang, with
# sanitizers (the one for threads runs their tests only) and with fused multiply-add allowed, fuzzes
# for a moment, compares meshes between compilers and CPUs, makes the Debian packages and tries them,
# and tests for Windows where that can be done. The last line sums up all runs; the exit status is 0
# only if all went well.
# Usage: tools/test.sh [lint|PRESET|same_mesh|packages|mingw]...
set -uo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit 1
# shellcheck source=tools/packages.sh
source tools/packages.sh
require_packages "${packages_build[@]}" "${packages_test[@]}" || exit 1
try_packages "${packages_test_optional[@]}"
try_python_packages "${python_packages_test[@]}"

(($#)) || set -- lint release sanitize thread clang fma fuzz same_mesh packages mingw
jobs=$(nproc)
passed=0 failed=0 skipped=0 broken=() left_out=()

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

# Nothing for Windows is installed by these scripts: it would take a gigabyte.
has_mingw() {
	command -v x86_64-w64-mingw32-g++-posix && [[ -d /usr/src/googletest && -d /usr/include/boost ]] &&
		{ command -v wine64 || command -v wine || [[ -x /usr/lib/wine/wine64 ]]; }
} >/dev/null

# On some kernels a compiler's ThreadSanitizer finds no place for its memory.
has_thread_sanitizer() {
	local program status=0
	program=$(mktemp)
	echo 'int main() {}' | "${CXX:-c++}" -fsanitize=thread -x c++ - -o "$program" && "$program" || status=1
	rm -f "$program"
	return "$status"
}

for step in "$@"; do
	SECONDS=0 status=0
	case $step in
	lint) tools/lint.sh || status=$? ;;
	same_mesh) tools/same_mesh.sh || status=$? ;;
	packages) tools/test_packages.sh || status=$? ;;
	thread)
		if has_thread_sanitizer; then
			test_preset thread || status=$?
		else
			status=77
		fi
		;;
	mingw)
		if has_mingw; then
			test_preset mingw || status=$?
		else
			echo "Debian packages for it: g++-mingw-w64-x86-64-posix wine64 googletest libboost-dev"
			status=77
		fi
		;;
	*) test_preset "$step" || status=$? ;;
	esac
	case $status in
	0) echo "== $step: $SECONDS s" ;;
	77)
		echo "== $step: not all of it could be done here"
		left_out+=("$step")
		;;
	*)
		echo "== $step: failed after $SECONDS s"
		broken+=("$step")
		;;
	esac
done

((${#left_out[@]} == 0)) || echo "Not done, or not to the end: ${left_out[*]}"
((${#broken[@]} == 0)) || echo "Failed: ${broken[*]}"
((skipped == 0)) || echo "$skipped skipped"
echo "$passed passed, $failed failed"
((${#broken[@]} == 0 && failed == 0))
