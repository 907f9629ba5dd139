# shellcheck shell=bash
# Shared by the scripts. Expects set -euo pipefail. Everything it prints goes to standard error.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# help_asked TEXT "$@": shows the usage and what the script does, where --help is among the arguments.
help_asked() {
    local text=$1 argument
    shift
    for argument in "$@"; do
        [ "$argument" != --help ] || { printf '%s\n' "$text" && exit 0; }
    done
}

# install COMMAND-OR-FILE=PACKAGE...: installs the Debian package of each command that is not on the
# path, or of each file that is not there.
install() {
    local missing=() pair tool
    for pair in "$@"; do
        case ${pair%%=*} in
        /*) [ -e "${pair%%=*}" ] || missing+=("${pair#*=}") ;;
        *) command -v "${pair%%=*}" >/dev/null || missing+=("${pair#*=}") ;;
        esac
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    local sudo=()
    [ "$(id -u)" -eq 0 ] || sudo=(sudo)
    for tool in "${sudo[@]}" apt-get; do
        command -v "$tool" >/dev/null && continue
        echo "$tool is missing: as root, install the packages ${missing[*]}" >&2
        exit 1
    done
    echo "installing ${missing[*]}" >&2
    {
        "${sudo[@]}" apt-get update
        "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y --no-install-recommends "${missing[@]}"
    } >&2
}

# What the builds and runs need (procps has the command free, which a run calls), what the import of
# nets and the search need, and what the tests need with them.
# shellcheck disable=SC2034 # not each script uses each
toolchain=('g++=g++' 'cmake=cmake' 'ninja=ninja-build' 'free=procps')
for_import=('/usr/include/expat.h=libexpat1-dev')
for_companions=("${for_import[@]}" '/usr/include/cadical.hpp=libcadical-dev'
    '/usr/include/coin/Clp_C_Interface.h=coinor-libclp-dev')
# shellcheck disable=SC2034
for_tests=("${for_companions[@]}" '/usr/include/gtest/gtest.h=libgtest-dev' 'minisat=minisat' 'cadical=cadical')
install_toolchain() { install "${toolchain[@]}"; }

# The model checker ABC, which is the package berkeley-abc up to bookworm and yosys-abc after it,
# each with the command of its name. Where there is neither, the tests do not ask it.
install_model_checker() {
    local name
    for name in berkeley-abc yosys-abc; do
        # Not grep -q: apt-cache fails where nobody reads its output to the end.
        if apt-cache policy $name 2>/dev/null | grep 'Candidate: [0-9]' >/dev/null; then
            install $name=$name
            return
        fi
    done
}

# clang++ and its fuzzer, which has a package of its own that goes by the version of clang++.
install_fuzzer() {
    install clang++=clang
    local runtime
    runtime=$(clang++ -print-file-name="libclang_rt.fuzzer-$(uname -m).a")
    install "$runtime=libclang-rt-$(clang++ -dumpversion | cut -d. -f1)-dev"
}

# build PRESET [TARGET...]: configures and builds, all targets if none is named.
build() {
    local preset=$1
    shift
    (
        cd "$root" || exit
        cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"}
    ) >&2
}
