# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# Completion of the command tulo3d for bash.
_tulo3d() {
	local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} words
	COMPREPLY=()
	case $previous in
	-f | --format) words="xyz ply obj off las node" ;;
	--to) words="vtu vtk msh ply stl obj off list" ;;
	--alpha) words="auto" ;;
	--columns | --skip-lines | --max-edge | --threads) return ;;
	-o | --output) words="" ;;
	*)
		[[ $current != -* ]] || words="-h --help --version -f --format --columns --skip-lines
			--skip-invalid -o --output --to --compact --hull --alpha --max-edge --voronoi
			--quality --threads --check --no-check --stats --json -q --quiet -v --verbose"
		;;
	esac
	if [[ -n ${words:-} ]]; then
		mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
	else
		compopt -o filenames 2>/dev/null
		mapfile -t COMPREPLY < <(compgen -f -- "$current")
	fi
}
complete -F _tulo3d tulo3d
