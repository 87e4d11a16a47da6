#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs clang-tidy on the sources of a build folder's compile database whose paths match a regular
# expression, and shows of all that it says the findings and the lines that explain them.
# Usage: tools/tidy.sh BUILD_FOLDER SOURCES
set -uo pipefail
log=$(mktemp)
trap 'rm -f "$log"' EXIT
run-clang-tidy -p "$1" -quiet -j "$(nproc)" "$2" &>"$log" && exit 0
grep -vE '^clang-tidy|warnings generated|^Suppressed|^Use -header-filter' "$log"
exit 1
