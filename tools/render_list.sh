#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Renders a drawing of the library or the program (an OOGL LIST) to a PNG through Geomview, without a screen.
set -euo pipefail

usage() {
	cat <<'EOF'
usage: tools/render_list.sh [OPTIONS] DRAWING.list PICTURE.png

  --size 800x600    the size of the picture in pixels
  --turn 30,-60     turns the drawing about its z axis, then tips it about the screen's x axis, in
                    degrees; 0,0 looks straight down, 0,-90 from the side with z upwards
  --longest-edge L  leaves out the facets that have a longer edge: those near the convex hull hide
                    the shape of a scan
  --gcl '(...)'     further commands for Geomview, given before the picture is taken

Status: 0 the picture is written; 1 Geomview complained, its words are on standard error;
2 wrong use; 77 Geomview, xvfb-run or netpbm is missing.
EOF
}

wrong_use() {
	usage >&2
	exit 2
}

size=800x600
turn=30,-60
longest=""
gcl=""
while [[ ${1:-} == --* ]]; do
	(($# >= 2)) || wrong_use
	case $1 in
	--size) size=$2 ;;
	--turn) turn=$2 ;;
	--longest-edge) longest=$2 ;;
	--gcl) gcl=$2 ;;
	*) wrong_use ;;
	esac
	shift 2
done
number='[0-9]+(\.[0-9]+)?'
[[ $size =~ ^([1-9][0-9]*)x([1-9][0-9]*)$ ]] || wrong_use
width=${BASH_REMATCH[1]} height=${BASH_REMATCH[2]}
[[ $turn =~ ^-?$number,-?$number$ ]] || wrong_use
[[ -z $longest || $longest =~ ^$number$ ]] || wrong_use
(($# == 2)) || wrong_use
drawing=$1 picture=$2

for command in geomview xvfb-run pnmtopng; do
	if ! command -v "$command" >/dev/null; then
		echo "$command is missing. On Debian: apt-get install geomview xvfb netpbm" >&2
		exit 77
	fi
done
if [[ ! -r $drawing ]]; then
	echo "cannot read $drawing" >&2
	exit 2
fi

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# In a drawing of the library, a LIST ends only at the brace of the LIST around it. So the point members, which begin with the
# word LIST and not with a brace, would nest one inside the other, and Geomview's stack holds about
# 490 tetrahedra of that. Braces around each of them keep the nesting flat. The memory that Geomview
# takes for a LIST grows with the square of its members, so they go into groups.
# The program draws all facets as one OFF, and has the braces.
LC_ALL=C awk -v longest="$longest" '
	function sq_distance(p, q,   a, b) {
		split(p, a); split(q, b)
		return (a[1] - b[1]) ^ 2 + (a[2] - b[2]) ^ 2 + (a[3] - b[3]) ^ 2
	}
	function is_too_long(p, q, r) {
		return longest != "" && (sq_distance(p, q) > longest ^ 2 ||
			sq_distance(q, r) > longest ^ 2 || sq_distance(r, p) > longest ^ 2)
	}
	function put_member(   i) {
		if (line[2] == "OFF" && is_too_long(line[4], line[5], line[6])) return
		if (numMembers++ % 300 == 0) print(numMembers > 1 ? "}\n{ LIST" : "{ LIST")
		for (i = 1; i <= n; ++i) print line[i]
		print(line[1] == "{ LIST" ? "} }" : "}")
	}
	function put_facets(   i) {
		print("{ OFF"); print(numVertices, numFacets, 0)
		for (i = 0; i < numVertices; ++i) print vertex[i]
		for (i = 0; i < numFacets; ++i) print facet[i]
	}
	NR == 2 && /OFF/  { ofProgram = 1; next }
	ofProgram && NR == 3                { numVertices = $1; end = 3 + $1 + $2; next }
	ofProgram && NR <= 3 + numVertices  { vertex[NR - 4] = $0; next }
	ofProgram && NR <= end {
		if (!is_too_long(vertex[$2], vertex[$3], vertex[$4])) facet[numFacets++] = $0
		next
	}
	ofProgram && NR == end + 1          { put_facets() }
	ofProgram         { print; next }
	NR <= 2           { print; next }
	n == 0 && /^}$/   { if (numMembers) print "}"; print; next }
	/^}$/             { put_member(); n = 0; next }
	                  { line[++n] = $0 }
	n == 1 && /^LIST/ { line[1] = "{ LIST" }
' "$drawing" >"$folder/drawing.list"

# Drawn at twice the size and halved, so that slanted edges come out smooth.
read -r z x < <(LC_ALL=C awk -v turn="$turn" 'BEGIN {
	split(turn, degrees, ",")
	for (i = 1; i <= 2; ++i) printf "%.6f ", degrees[i] * atan2(0, -1) / 180
	print ""
}')
cat >"$folder/commands.gcl" <<EOF
(load $folder/drawing.list geometry)
(bbox-draw g0 no)
(backcolor c0 1 1 1)
(transform World World focus rotate 0 0 $z)
(transform World World focus rotate $x 0 0)
(merge-ap World appearance { linewidth 2 })
(look World c0)
(zoom c0 1.5)
$gcl
(snapshot c0 $folder/picture.ppm ppmosglx $((2 * width)) $((2 * height)))
(exit)
EOF

# A folder of its own as home keeps the user's settings for Geomview out of the picture. What the
# graphics driver says is no complaint about the drawing.
status=0
HOME=$folder LIBGL_ALWAYS_SOFTWARE=1 LC_ALL=C \
	xvfb-run -a -s "-screen 0 $((2 * width))x$((2 * height))x24" \
	timeout 300 geomview -nopanels -wins 1 -c "$folder/commands.gcl" >"$folder/log" 2>&1 || status=$?
grep -vE '^(libGL|MESA|error: XDG_RUNTIME_DIR)' "$folder/log" >"$folder/complaints" || true

if [[ -s $folder/complaints || ! -s $folder/picture.ppm ]] || ((status != 0)); then
	echo "Geomview did not draw $drawing (its status is $status):" >&2
	cat "$folder/log" >&2
	exit 1
fi
pamscale -quiet -reduce 2 "$folder/picture.ppm" | pnmtopng -quiet -compression 9 >"$picture"
