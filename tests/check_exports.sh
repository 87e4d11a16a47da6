#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Compares what the shared library exports with the list beside this script. Copies of the standard
# library's templates are left out: which ones there are is the compiler's choice.
# Usage: check_exports.sh LIBRARY [--update]
set -euo pipefail

list=$(dirname "${BASH_SOURCE[0]}")/exported_symbols.txt
standardLibrary='^_Z(Z|GV|T[VTIS])*N?K?(S[abdiost]|9__gnu_cxx)'

exports() {
	nm -D --defined-only --format=posix "$1" | cut -d ' ' -f 1 | grep -vE "$standardLibrary" |
		c++filt -i | LC_ALL=C sort -u
}

if [[ ${2:-} == --update ]]; then
	exports "$1" >"$list"
else
	diff -u "$list" <(exports "$1")
fi
