# shellcheck shell=bash
# bash completion of tervoxal and its companions: options as --help tells them, networks and formulas
# by their names without ".in".

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
    --witness) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
    --keep) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    --from | --jobs | --prove-time) ;;
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

complete -F _tervoxal tervoxal tervoxal-aiger tervoxal-check tervoxal-draw tervoxal-formula \
    tervoxal-import tervoxal-path tervoxal-solve tervoxal-sweep
