#!/bin/sh
# Runs the cases of a file, prints it anew with what they do, and compares: cases.sh FILE. With
# "update" after FILE it replaces the file. tests/data/cases/command-line.txt tells the format.
set -eu
: "${T:?}" "${D:?}" "${N:?}" "${E:?}"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir "$scratch/files"
head=
while IFS= read -r line; do
    rest=${line#??}
    case $line in
    '@'*) file=$scratch/files/$rest ;;
    '|'*) printf '%s\n' "$rest" >>"$file" ;;
    '%'*) head="$head$rest
" ;;
    '>'* | '!'* | '?'*) continue ;;
    esac
    printf '%s\n' "$line"
    case $line in
    '$'*)
        cp -r "$scratch/files" "$scratch/run"
        status=0
        (cd "$scratch/run" && sh -c "$head$rest") >"$scratch/out" 2>"$scratch/err" </dev/null || status=$?
        sed 's/^/> /' "$scratch/out"
        sed 's/^/! /' "$scratch/err"
        [ $status -eq 0 ] || echo "? $status"
        rm -rf "$scratch/run"
        ;;
    esac
done <"$1" >"$scratch/new"
[ "${2-}" != update ] || cp "$scratch/new" "$1"
diff -u "$1" "$scratch/new"
