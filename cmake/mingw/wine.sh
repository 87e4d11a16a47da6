#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs a program for Windows: wine.sh PROGRAM.exe [ARGUMENT...]
set -euo pipefail

compiler=x86_64-w64-mingw32-g++-posix
for dll in libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll; do
	folder=$(dirname "$("$compiler" -print-file-name="$dll")")
	WINEPATH=${WINEPATH:+$WINEPATH;}Z:$folder
done
export WINEPATH WINEDEBUG=${WINEDEBUG:--all}

# Debian's wine64 alone has no command on the path.
wine=$(command -v wine64 || command -v wine || echo /usr/lib/wine/wine64)
# A server that ends with its last program may end just when the next one asks for it.
server=$(command -v wineserver64 || command -v wineserver || echo /usr/lib/wine/wineserver64)
[[ ! -x $server ]] || "$server" -p30 2>/dev/null || true # there is one already
exec "$wine" "$@"
