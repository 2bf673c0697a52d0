# shellcheck shell=bash
# What the commands share; each sources it first.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
jobs=$(nproc)

# The programs that test library and platform themselves: not the inspector, not the examples, and not
# what only repeats the library's work a million times.
# shellcheck disable=SC2034 # for those who source this
library_tests=(VUKBasAlloc_test VUKBasCoreUtils_test VUKBasGenericsLib_test VUKBasShared_test
    VUKSimContainers_test VUKSimExc_test VUKSimUtt_test platform_contract_tests unit_tests
    replaced_platform_tests format_tests scenario_tests fault_tests)

heading() { printf '\n== %s\n' "$*"; }

no_arguments() { # COMMAND ARGUMENT...
    local name=$1
    shift
    if (($#)); then
        echo "./dev $name takes no arguments, but got: $*" >&2
        exit 2
    fi
}

present() { # PROBE: a command, or a pattern of files when it begins with a slash
    if [[ $1 == /* ]]; then
        compgen -G "$1" >/dev/null
    else
        command -v "$1" >/dev/null
    fi
}

# need PACKAGE=PROBE... installs the Debian packages whose probe finds nothing.
need() {
    local item missing=() as_root=()
    for item in "$@"; do
        present "${item#*=}" || missing+=("${item%%=*}")
    done
    ((${#missing[@]})) || return 0
    if ! command -v apt-get >/dev/null || { ((EUID)) && ! command -v sudo >/dev/null; }; then
        echo "Missing, and not to be installed without apt-get and root: ${missing[*]}" >&2
        echo "On Debian 12, as root: apt-get install --no-install-recommends ${missing[*]}" >&2
        exit 1
    fi
    ((EUID)) && as_root=(sudo)
    heading "installing ${missing[*]}"
    "${as_root[@]}" apt-get update -q
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -q -y --no-install-recommends "${missing[@]}"
    for item in "$@"; do
        if ! present "${item#*=}"; then
            echo "After the installation of ${item%%=*} there is still no ${item#*=}" >&2
            exit 1
        fi
    done
}

need_build_tools() { need g++=g++ cmake=cmake ninja-build=ninja; }

need_test_tools() {
    need g++=g++ cmake=cmake ninja-build=ninja python3=python3 \
        libgtest-dev=/usr/include/gtest/gtest.h libgmock-dev=/usr/include/gmock/gmock.h \
        libcli11-dev=/usr/include/CLI/CLI.hpp libfmt-dev=/usr/include/fmt/format.h \
        nlohmann-json3-dev=/usr/include/nlohmann/json.hpp \
        python3-jsonschema=/usr/lib/python3/dist-packages/jsonschema/__init__.py \
        zsh=zsh fish=fish mandoc=mandoc
}

need_clang() { need clang=clang++ "libclang-rt-14-dev=/usr/lib/llvm-*/lib/clang/*/lib/linux/*asan*"; }

build() { # PRESET [CMAKE-OPTION...]: configures and builds build/PRESET
    local preset=$1
    shift
    heading "build $preset"
    cmake -S "$root" --preset "$preset" "$@" --log-level=WARNING >/dev/null
    cmake --build "$root/build/$preset" --parallel "$jobs"
}

run_tests() { # PRESET [CTEST-OPTION...]: runs the tests of build/PRESET
    local preset=$1
    shift
    heading "test $preset"
    rm -f "$root/build/$preset/tests.xml"
    ctest --test-dir "$root/build/$preset" --parallel "$jobs" --output-on-failure \
        --no-tests=error --output-junit tests.xml "$@"
}

closing_line() { # PRESET...: adds up what run_tests saw
    local preset reports=()
    for preset in "$@"; do
        [[ ! -f $root/build/$preset/tests.xml ]] || reports+=("$root/build/$preset/tests.xml")
    done
    cat /dev/null "${reports[@]}" | awk '/<testcase/ { total++ }
        /<testcase.*status="fail"/ { failed++ }
        /<testcase.*status="(notrun|disabled)"/ { skipped++ }
        END {
            printf "%d passed, %d failed", total - failed - skipped, failed
            if (skipped) printf ", %d skipped", skipped
            print ""
        }'
}
