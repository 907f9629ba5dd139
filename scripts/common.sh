# shellcheck shell=bash
# Shared by the scripts. Expects set -euo pipefail. Everything it prints goes to standard error.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# install COMMAND-OR-FILE=PACKAGE...: installs the Debian package of each command that is not on the
# path, or of each file that is not there.
install() {
    local missing=() pair
    for pair in "$@"; do
        case ${pair%%=*} in
        /*) [ -e "${pair%%=*}" ] || missing+=("${pair#*=}") ;;
        *) command -v "${pair%%=*}" >/dev/null || missing+=("${pair#*=}") ;;
        esac
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    local sudo=()
    [ "$(id -u)" -eq 0 ] || sudo=(sudo)
    echo "installing ${missing[*]}" >&2
    {
        "${sudo[@]}" apt-get update
        "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y --no-install-recommends "${missing[@]}"
    } >&2
}

# procps has the command free, which a run calls.
install_toolchain() { install g++=g++ cmake=cmake ninja=ninja-build free=procps; }

# build PRESET [TARGET...]: configures and builds, all targets if none is named.
build() {
    local preset=$1
    shift
    (
        cd "$root" || exit
        cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"}
    ) >&2
}
