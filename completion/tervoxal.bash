# shellcheck shell=bash
# bash completion of tervoxal and its companions: options as --help tells them, networks and formulas
# by their names without ".in", after --ask= the propositions of the networks that the line names.

_tervoxal() {
    local command=$1 word=$2 option=$3
    local names network before IFS=$'\n'
    COMPREPLY=()
    # "--format=json" is three words: bash splits words at "=".
    if [ "$word" = = ]; then
        word=
    elif [ "$option" = = ]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    case $option in
    --format) mapfile -t COMPREPLY < <(compgen -W $'text\njson\nvcd\ndot\nhtml' -- "$word") ;;
    --without)
        mapfile -t COMPREPLY < <(
            compgen -W $'dead-action\ndead-end\nnear-number\nunnamed-action\nunreachable' -- "$word"
        )
        ;;
    --solver) mapfile -t COMPREPLY < <(compgen -c -- "$word") ;;
    --ask | --fair)
        # Not COMP_WORDS: after an open quote the rest of the line is one word.
        names=$(tr ' ' '\n' <<<"$COMP_LINE" | while read -r network; do
            network=${network%.in}
            [ ! -f "$network.in" ] || sed -nE \
                '/^valuation/,/^end/s/^[0-9 ]+([^] !&|()"0-9][^ !&|()"]*)$/\1/p' "$network.in"
        done)
        # Of an expression in quotes, the last name.
        before=${word%"${word##*[ !&|()]}"}
        mapfile -t COMPREPLY < <(compgen -P "$before" -W "$names" -- "${word#"$before"}")
        ;;
    --witness | --walk | --questions | --certificate | --output) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
    --keep | --paths | --certificates) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    --from | --jobs | --time | --prove-time | --states | --bound) ;;
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
            *-import)
                # Two patterns in place of one that needs extglob.
                compgen -f -X '!*.pnml' -- "$word"
                compgen -f -X '!*.aut' -- "$word"
                ;;
            *)
                compgen -f -X '!*.in' -- "$word" | sed 's/\.in$//'
                case $command in *-certify) compgen -f -X '*.@(in|cnf)' -- "$word" ;; esac
                ;;
            esac
        )
        ;;
    esac
}

complete -F _tervoxal tervoxal tervoxal-aiger tervoxal-certify tervoxal-draw tervoxal-formula \
    tervoxal-import tervoxal-info tervoxal-lint tervoxal-path tervoxal-solve tervoxal-sweep
