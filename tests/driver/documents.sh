#!/usr/bin/env bash
# Runs the console blocks of a document in order, prints it anew with what they print, and compares:
# documents.sh FILE. With "update" after FILE it replaces the blocks that differ. $D is the directory
# of the binaries.
#
# The blocks of a document share a copy of the examples, and each begins at the root of it. Both
# streams are shown. Comments before a block tell what it needs:
#     <!-- not run: REASON -->
#     <!-- run if COMMAND: REASON -->    only where the command succeeds
#     <!-- first COMMAND -->             runs unseen, with $S for the root of the sources
#     <!-- file NAME -->                 the block is the content of a file
set -euo pipefail
: "${D:?}"
S=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
document=$(realpath "$1")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/root/build/release" "$scratch/root/src"
cp -R "$S/examples" "$S/scripts" "$S/CMakeLists.txt" "$scratch/root"
cp "$D"/tervoxal* "$scratch/root/build/release" # after the sources, so that no script builds
export PATH=$scratch/root/build/release:$PATH S

# Prints a block with what its commands print.
run() {
    local line command
    while IFS= read -r line; do
        [[ $line == '$ '* ]] || continue
        command=${line#??}
        while [[ $command == *'|' || $command == *\\ ]] && IFS= read -r line; do command+=$'\n'$line; done
        printf '$ %s\n' "$command"
        eval "$command" </dev/null 2>&1 || true # in this shell, which may change its directory
    done
}

# What no two runs have in common: seconds, memory.
mask() {
    sed -E 's/[0-9]+[.][0-9]+ (s|sec)$/@ \1/; s/^[0-9][0-9.e-]*$/@/; s/^[0-9]+ bytes memory$/@/
        s/(Time consumed|Memory used by Tervoxal) : .*/\1 : @/'
}

# Prints the block anew if it is one to run and if it prints something else.
block() {
    cat >"$scratch/block"
    if [ -n "$file" ]; then
        cp "$scratch/block" "$scratch/root/$file"
    elif [ "$1" = '```console' ]; then
        if [ -n "$reason" ] && ! (cd "$scratch/root" && eval "$condition") >/dev/null 2>&1; then
            echo "not run: $(head -n 1 "$scratch/block"): $reason" >&2
        else
            (cd "$scratch/root" && eval "$first" && run <"$scratch/block") >"$scratch/run"
            cmp -s <(mask <"$scratch/block") <(mask <"$scratch/run") || cp "$scratch/run" "$scratch/block"
        fi
    fi
    cat "$scratch/block"
}

condition='' reason='' first='' file=''
while IFS= read -r line; do
    printf '%s\n' "$line"
    case $line in
    '<!-- not run: '*' -->') condition=false reason=${line#*: } reason=${reason%' -->'} ;;
    '<!-- run if '*': '*' -->')
        condition=${line#'<!-- run if '} condition=${condition%%: *}
        reason=${line#*: } reason=${reason%' -->'}
        ;;
    '<!-- first '*' -->') first=${line#'<!-- first '} first=${first%' -->'} ;;
    '<!-- file '*' -->') file=${line#'<!-- file '} file=${file%' -->'} ;;
    '```'*)
        fence=$line
        while IFS= read -r line && [[ $line != '```' ]]; do printf '%s\n' "$line"; done |
            block "$fence"
        echo '```'
        condition='' reason='' first='' file=''
        ;;
    esac
done <"$document" >"$scratch/new"
diff -u "$document" "$scratch/new" || {
    [ "${2-}" != update ] || cp "$scratch/new" "$document"
    exit 1
}
