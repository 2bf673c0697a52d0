#!/usr/bin/env bash
# Solves every deck of Debian's calculix-ccx-test with calculix-ccx and takes each result through
# fe_results and back.
#
# usage: run_corpus.sh PROGRAM [--seconds N] [--jobs N] [--keep FOLDER]
#
# PROGRAM is the built fe_results. Each deck is solved twice, in N seconds (10) or not at all: as it
# is shipped, and with displacements, temperatures, forces, stresses and strains asked for in every
# step, since most decks ask for printed tables alone. Results of solved decks must come back byte
# for byte, one by one and then all as shipped in one document; results that the solver left
# unfinished must be refused with file and line. With --keep decks and results stay in FOLDER, else
# they are removed.
set -euo pipefail

usage() { sed -n '2,/^set /{/^set /d; s/^# \{0,1\}//; p}' "${BASH_SOURCE[0]}"; }

decks=/usr/share/doc/calculix-ccx-test/examples/test
program='' seconds=10 jobs=$(nproc) keep=''
while (($#)); do
    case $1 in
    --help) usage && exit ;;
    --seconds) seconds=${2:?} && shift ;;
    --jobs) jobs=${2:?} && shift ;;
    --keep) keep=${2:?} && shift ;;
    -*) usage >&2 && exit 2 ;;
    *) program=$(realpath "$1") ;;
    esac
    shift
done
[[ -n $program && -x $program ]] || { usage >&2 && exit 2; }
command -v ccx >/dev/null || { echo "run_corpus.sh: calculix-ccx is not installed" >&2 && exit 2; }
[[ -d $decks ]] || { echo "run_corpus.sh: calculix-ccx-test is not installed" >&2 && exit 2; }

if [[ -n $keep ]]; then
    mkdir -p "$keep"
    work=$(realpath "$keep")
    [[ -z $(ls -A "$work") ]] || { echo "run_corpus.sh: $keep is not empty" >&2 && exit 2; }
else
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
fi

# One deck in a folder of its own, beside links to all others: some read each other's files.
solve() { # PASS-FOLDER DECK
    local pass=$1 name=$2 status=0
    mkdir "$pass/run/$name"
    cd "$pass/run/$name"
    ln -s ../../decks/* .
    OMP_NUM_THREADS=1 timeout "$seconds" ccx -i "$name" >"$name.log" 2>&1 || status=$?
    find . -type l -delete
    if ((status == 0)) && grep -q 'Job finished' "$name.log"; then
        echo solved >"$name.state"
    elif ((status == 124)); then
        echo late >"$name.state"
    else
        echo failed >"$name.state"
    fi
}

# What became of a result: "equal", "refused" or the reason why it is neither.
judge() { # PASS-FOLDER DECK
    local folder=$1/run/$2 name=$2 said
    if said=$("$program" --quiet --out "$folder/document" "$folder/$name.frd" 2>&1); then
        if cmp -s "$folder/$name.frd" "$folder/document/$name.frd"; then
            echo equal >"$folder/$name.verdict"
        else
            echo "the copy differs, but it was not told" >"$folder/$name.verdict"
        fi
    elif [[ $said =~ ^fe_results:\ [^:]*\.frd(:[0-9]+)?:\ .+ && ! -e $folder/document ]]; then
        echo refused >"$folder/$name.verdict"
    else
        echo "$said" >"$folder/$name.verdict"
    fi
    rm -rf "$folder/document"
}
export -f solve judge
export seconds program

with_state() { # PASS-FOLDER STATE: the decks in it
    grep -lx "$2" "$1"/run/*/*.state | sed 's|.*/||; s|\.state$||' || true
}

bad=0
run_pass() { # NAME: decks are ready in $work/NAME/decks
    local pass=$work/$1 name solved=0 equal=0 filled=0 blocks=0 left=0 refused=0 count
    mkdir "$pass/run"
    find "$pass/decks" -name '*.inp' -printf '%f\n' | sed 's/\.inp$//' | sort |
        xargs -P "$jobs" -I{} bash -c 'solve "$@"' solve "$pass" {} 2>"$pass/solver.messages"
    find "$pass/run" -name '*.frd' -printf '%f\n' | sed 's/\.frd$//' | sort |
        xargs -P "$jobs" -I{} bash -c 'judge "$@"' judge "$pass" {}
    for name in $(with_state "$pass" solved); do
        solved=$((solved + 1))
        if [[ $(cat "$pass/run/$name/$name.verdict") == equal ]]; then
            equal=$((equal + 1))
        else
            echo "NOT EQUAL: $name: $(cat "$pass/run/$name/$name.verdict")"
            bad=$((bad + 1))
        fi
        count=$(grep -c '^  100C' "$pass/run/$name/$name.frd") || true
        filled=$((filled + (count > 0)))
        blocks=$((blocks + count))
    done
    for name in $(with_state "$pass" failed) $(with_state "$pass" late); do
        [[ -e $pass/run/$name/$name.frd ]] || continue
        left=$((left + 1))
        case $(cat "$pass/run/$name/$name.verdict") in
        refused) refused=$((refused + 1)) ;;
        equal) ;; # the solver stopped behind a whole file
        *)
            echo "NEITHER EQUAL NOR REFUSED: $name: $(cat "$pass/run/$name/$name.verdict")"
            bad=$((bad + 1))
            ;;
        esac
    done
    total_solved=$((total_solved + solved))
    total_equal=$((total_equal + equal))
    echo "$solved decks solved, $(with_state "$pass" late | wc -l) not within $seconds s," \
        "$(with_state "$pass" failed | wc -l) given up by the solver"
    echo "$equal of $solved results came back byte for byte;" \
        "$filled of them hold $blocks blocks of values"
    echo "$refused of $left unfinished results were refused with file and line"
}

total_solved=0 total_equal=0
mkdir -p "$work/shipped/decks" "$work/asked/decks"
cp "$decks"/* "$work/shipped/decks"
gunzip --force --quiet "$work"/shipped/decks/*.gz
cp "$work"/shipped/decks/* "$work/asked/decks"
for deck in "$work"/asked/decks/*.inp; do
    awk '{ key = toupper($0); gsub(/[ \t\r]/, "", key) }
        key ~ /^\*ENDSTEP/ { print "*NODE FILE\nU, NT, RF\n*EL FILE\nS, E" }
        { print }' "$deck" >"$work/deck"
    mv "$work/deck" "$deck"
done

echo "== $(find "$work/shipped/decks" -name '*.inp' | wc -l) decks as they are shipped"
run_pass shipped
echo
echo "== the same with values asked for in every step"
run_pass asked
echo
echo "== all of the first in one document"
mapfile -t all < <(with_state "$work/shipped" solved | sed "s|.*|$work/shipped/run/&/&.frd|")
if ! "$program" --quiet "${all[@]}"; then
    bad=$((bad + 1))
fi
echo
echo "Proved: $total_equal of $total_solved solver results came back byte for byte; $bad faults."
((bad == 0 && total_equal == total_solved && total_equal >= 100))
