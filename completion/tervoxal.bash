# shellcheck shell=bash
# bash completion of tervoxal and its companions: options as --help tells them, networks and formulas
# by their names without ".in", after --ask= the propositions of a network that is already there.

_tervoxal() {
    local command=$1 word=$2 option=$3
    local names IFS=$'\n'
    COMPREPLY=()
    # "--format=json" is three words: bash splits words at "=".
    if [ "$word" = = ]; then
        word=
    elif [ "$option" = = ]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    case $option in
    --format) mapfile -t COMPREPLY < <(compgen -W $'text\njson\nvcd\ndot' -- "$word") ;;
    --solver) mapfile -t COMPREPLY < <(compgen -c -- "$word") ;;
    --ask)
        names=$(for network in "${COMP_WORDS[@]}"; do
            [ ! -f "$network.in" ] || sed -nE \
                '/^valuation/,/^end/s/^[0-9 ]+([^] !&|()"0-9][^ !&|()"]*)$/\1/p' "$network.in"
        done)
        mapfile -t COMPREPLY < <(compgen -W "$names" -- "$word")
        ;;
    --witness | --questions | --certificate) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
    --keep | --paths) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    --from | --jobs | --time | --prove-time | --bound) ;;
    *)
        if [[ $word == -* ]]; then
            names=$("$command" --help 2>/dev/null | grep -oE '^  --[a-z-]+=?')
            mapfile -t COMPREPLY < <(compgen -W "${names//  /}" -- "$word")
            [[ ${COMPREPLY[0]-} != *= ]] || compopt -o nospace
            return
        fi
        compopt -o filenames
        mapfile -t COMPREPLY < <(
            compgen -d -- "$word"
            case $command in
            *-import) compgen -f -X '!*.@(pnml|aut)' -- "$word" ;;
            *) compgen -f -X '!*.in' -- "$word" | sed 's/\.in$//' ;;
            esac
        )
        ;;
    esac
}

complete -F _tervoxal tervoxal tervoxal-aiger tervoxal-draw tervoxal-formula \
    tervoxal-import tervoxal-lint tervoxal-path tervoxal-solve tervoxal-sweep
