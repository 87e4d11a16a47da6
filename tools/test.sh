#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Sets everything up, reads the sources with tools, then builds and tests with g++ and clang, with
# sanitizers (the one for threads runs their tests only) and with fused multiply-add allowed, fuzzes
# for a moment, compares meshes between compilers and CPUs, makes the Debian packages and tries them,
# builds and tests the Python package, and tests for Windows where that can be done. The last line sums
# up all runs; the exit status is 0 only if all went well.
# Usage: tools/test.sh [lint|PRESET|same_mesh|packages|python|mingw]...
set -uo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit 1
# shellcheck source=tools/packages.sh
source tools/packages.sh
require_packages "${packages_build[@]}" "${packages_test[@]}" || exit 1
try_packages "${packages_test_optional[@]}"
try_python_packages "${python_packages_test[@]}"

(($#)) || set -- lint release sanitize thread clang fma fuzz same_mesh packages python mingw
jobs=$(nproc)
passed=0 failed=0 skipped=0 broken=() left_out=()

# Reads one number of the <testsuite> line of a test report; 0 where there is none by that name.
report_number() {
	local number
	number=$(sed -n "/<testsuite/,/>/s/.*[[:space:]]$1=\"\([0-9]*\)\".*/\1/p" "$2" | head -n 1)
	echo "${number:-0}"
}

# Adds a test report to the sums. False when no test ran: that shows nothing.
count_tests() {
	[[ -s $1 ]] || return 1
	local tests failures notRun
	tests=$(report_number tests "$1")
	failures=$(($(report_number failures "$1") + $(report_number errors "$1")))
	notRun=$(($(report_number skipped "$1") + $(report_number disabled "$1")))
	passed=$((passed + tests - failures - notRun))
	failed=$((failed + failures))
	skipped=$((skipped + notRun))
	((tests > notRun))
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
	count_tests "$report" || status=1
	return "$status"
}

# Builds and installs the wheel, reads its sources with tools and tests it there.
test_python() {
	local wheels=$root/build/wheels build=build/python/wheel status=0
	if ! has_package python3-dev || ! python3 -c "import sys; sys.exit(sys.version_info < (3, 10))"; then
		echo "The Python package needs Python 3.10 or newer with its headers (Debian package python3-dev)."
		return 77
	fi
	"$venv/bin/python" -m pip --version &>/dev/null || return 77
	local pip=("$venv/bin/python" -m pip --quiet --disable-pip-version-check --retries 1)
	if ! "${pip[@]}" install "${python_packages_build[@]}"; then
		echo "The Python package index cannot be reached."
		return 77
	fi

	echo "== python: build"
	rm -rf "$wheels"
	SKBUILD_BUILD_DIR=$build CMAKE_EXPORT_COMPILE_COMMANDS=ON \
		"${pip[@]}" wheel --no-build-isolation --no-deps --wheel-dir "$wheels" . &&
		"${pip[@]}" install --no-deps --force-reinstall "$wheels"/*.whl || return 1
	if ! "${pip[@]}" install "$(echo "$wheels"/*.whl)[test]"; then
		echo "What its tests need cannot be had from the Python package index."
		return 77
	fi
	[[ $(uname) != Linux ]] || "$venv/bin/auditwheel" show "$wheels"/*.whl || status=1

	if command -v run-clang-tidy >/dev/null; then
		echo "== python: clang-tidy"
		tools/tidy.sh "$build" '/python/src/' || status=1
	fi

	echo "== python: test"
	local report=$wheels/test-report.xml
	rm -f "$report"
	"$venv/bin/python" -m mypy -p tulo3d || status=1
	"$venv/bin/python" -m pytest --quiet -rs --junitxml "$report" || status=1
	count_tests "$report" || status=1
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
	python) test_python || status=$? ;;
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
