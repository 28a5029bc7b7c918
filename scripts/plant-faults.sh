#!/usr/bin/env bash
# How much the tests catch: plants the faults of scripts/faults.list one at a time in a copy of the tree, builds without
# sanitizers, runs the tests until one fails, and counts. Faults that do not build, and edits that do not match exactly
# once, are errors of the list.
#
#   scripts/plant-faults.sh                      all faults
#   scripts/plant-faults.sh 'model-*' app-undo   those whose ids match
#   scripts/plant-faults.sh -n                   only looks whether every edit still matches
#
#   -t TREE   takes the files from another tree than the one that this script stands in
#   -l LIST   takes another list
#   -o TABLE  writes the table there too
#   -q        leaves out the first run, without a fault, that shows that the tests are green
#
# Copy, build and logs stand in build/faults and are used again. A test that fails is run once more, and counts only if
# it fails again; one that runs for FAULT_TIMEOUT seconds (60) has failed, which the table marks with ":time".
set -euo pipefail
export LC_ALL=C.UTF-8
root=$(cd "$(dirname "$0")/.." && pwd)
list=$root/scripts/faults.list
tree=$root
table=
only_match=
first_run=1
while getopts nt:l:o:q option; do
    case $option in
    n) only_match=1 ;;
    t) tree=$(cd "$OPTARG" && pwd) ;;
    l) list=$OPTARG ;;
    o) table=$OPTARG ;;
    q) first_run= ;;
    *) exit 2 ;;
    esac
done
shift $((OPTIND - 1))
chosen=("$@")
limit=${FAULT_TIMEOUT:-60}
jobs=$(nproc)
work=$root/build/faults
copy=$work/tree
build=$work/build
temporary=
group=
outcome=
caught_by=

say() { printf '%s\n' "== $*" >&2; }

# The rest of what a test started: one that was killed for its time leaves its program and its display behind.
end_group() {
    [ -n "$group" ] || return 0
    if kill -TERM -- "-$group" 2>/dev/null; then
        sleep 0.3
        kill -KILL -- "-$group" 2>/dev/null || true
    fi
    group=
}

finish() {
    end_group
    [ -z "$temporary" ] || rm -rf "$temporary"
}
trap finish EXIT
trap 'exit 130' INT TERM HUP

# The lines of the list as id, file, old text, new text, tests, word, each on a line of its own.
faults() {
    awk '
    /^[ \t]*(#|$)/ { next }
    {
        parts = split($0, part, "@")
        heads = split(part[1], head, " ")
        hash = index(part[4], "#")
        if (parts != 4 || heads != 3 || head[3] != "s" || hash == 0) {
            printf "%s:%d: not a fault: %s\n", FILENAME, FNR, $0 >"/dev/stderr"
            exit 1
        }
        tests = substr(part[4], 1, hash - 1)
        gsub(/[ \t]/, "", tests)
        word = substr(part[4], hash + 1)
        sub(/^[ \t]+/, "", word)
        printf "%s\n%s\n%s\n%s\n%s\n%s\n", head[1], head[2], part[2], part[3], tests, word
    }' "$list"
}

# edited FILE OLD NEW: the file with its only OLD replaced. The texts are literal but for blanks: any blanks, line ends
# included, stand for any others, and there may be some behind an opening bracket, so that a match outlives clang-format.
edited() {
    OLD=$2 NEW=$3 LC_ALL=C awk '
    function pattern(text,    i, c, re, gap) {
        for (i = 1; i <= length(text); ++i) {
            c = substr(text, i, 1)
            if (c == " ") { gap = 1; continue }
            if (gap) re = re "[ \t\n]+"
            gap = 0
            if (c ~ /[A-Za-z0-9_]/) re = re c
            else if (c == "^" || c == "\\") re = re "\\" c
            else re = re "[" c "]"
            if (c == "(") re = re "[ \t\n]*"
        }
        return re
    }
    { text = text $0 "\n" }
    END {
        re = pattern(ENVIRON["OLD"])
        if (!match(text, re)) { print "the text is not there" >"/dev/stderr"; exit 1 }
        before = substr(text, 1, RSTART - 1)
        rest = substr(text, RSTART + RLENGTH)
        if (match(substr(text, length(before) + 2), re)) { print "the text is there more than once" >"/dev/stderr"; exit 1 }
        printf "%s%s%s", before, ENVIRON["NEW"], rest
    }' "$1"
}

is_chosen() {
    local glob
    [ ${#chosen[@]} -gt 0 ] || return 0
    for glob in "${chosen[@]}"; do
        # shellcheck disable=SC2053
        [[ $1 == $glob ]] && return 0
    done
    return 1
}

# Only what differs is copied, and so built again. This also takes back what an interrupted run left.
copy_tree() {
    local file
    mkdir -p "$copy"
    (cd "$tree" && git -c core.quotePath=off ls-files --cached --others --exclude-standard) | sort >"$work/files"
    while IFS= read -r file; do
        [ -f "$tree/$file" ] || continue
        cmp -s "$tree/$file" "$copy/$file" && continue
        mkdir -p "$(dirname "$copy/$file")"
        cp --preserve=mode "$tree/$file" "$copy/$file"
    done <"$work/files"
    (cd "$copy" && find . -type f -printf '%P\n') | sort | comm -23 - "$work/files" | while IFS= read -r file; do
        rm -f "$copy/$file"
    done
}

configure() {
    local linker=()
    ! command -v mold >/dev/null || linker=(-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=mold)
    cmake -S "$copy" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DGLOWSMITH_TESTS=ON \
        -DGLOWSMITH_WERROR=OFF "${linker[@]}" >"$work/configure.log"
    # The tests' own limit is made for sanitizers.
    find "$build" -name CTestTestfile.cmake -exec sed -i "s/ TIMEOUT \"[0-9]*\"/ TIMEOUT \"$limit\"/" {} +
    ctest --test-dir "$build" -N | sed -n 's/^ *Test *#[0-9]*: //p' >"$work/tests"
}

build_targets() { cmake --build "$build" ${1:+--target "$@"} >"$work/build.log" 2>&1; }

# one_of NAME...: the names as a pattern for ctest.
one_of() {
    local IFS='|'
    printf '^(%s)$' "$*"
}

# run_tests ARGUMENTS...: false if one failed.
run_tests() {
    local code=0
    rm -rf "$temporary"
    temporary=$(mktemp -d)
    set -m
    TMPDIR=$temporary ctest --test-dir "$build" --stop-on-failure "$@" </dev/null >"$work/test.log" 2>&1 &
    group=$!
    set +m
    wait "$group" || code=$?
    end_group
    return $code
}

# failing NAME...: leaves in caught_by the first of these tests that fails twice in a row; empty if none does.
failing() {
    local left=("$@") again name test
    caught_by=
    while [ ${#left[@]} -gt 0 ]; do
        ! run_tests -j "$jobs" -R "$(one_of "${left[@]}")" || return 0
        name=$(sed -n 's/^ *[0-9]*\/[0-9]* *Test *#[0-9]*: *\([^ ]*\) .*\*\*\*.*/\1/p' "$work/test.log" | head -n 1)
        if [ -z "$name" ]; then
            cat "$work/test.log" >&2
            exit 1
        fi
        cp "$work/test.log" "$work/failed.log"
        if ! run_tests -R "$(one_of "$name")"; then
            caught_by=$name
            ! grep -q '\*\*\*Timeout' "$work/test.log" || caught_by+=:time
            return 0
        fi
        say "$name failed once only and does not count"
        again=("${left[@]}")
        left=()
        for test in "${again[@]}"; do
            [ "$test" = "$name" ] || left+=("$test")
        done
    done
}

# try TESTS: leaves in outcome and caught_by what the tests say of the fault that stands in the copy. The tests named
# here run first, one after the other, then all the others, the long ones last.
try() {
    local passed=() some=() others=() long=() name test
    outcome=no-build
    caught_by=
    for name in ${1//,/ }; do
        [ -e "$build/bin/$name" ] || continue
        mapfile -t some < <(grep -x -E "$name(_dense|_raster)?" "$work/tests")
        build_targets "$name" || return 0
        failing "${some[@]}"
        [ -z "$caught_by" ] || break
        passed+=("${some[@]}")
    done
    if [ -z "$caught_by" ]; then
        build_targets || return 0
        while IFS= read -r test; do
            case " ${passed[*]-} " in *" $test "*) continue ;; esac
            case $test in
            test_soak | test_foreignbytes | test_faults) long+=("$test") ;;
            *) others+=("$test") ;;
            esac
        done <"$work/tests"
        failing "${others[@]}"
        [ -n "$caught_by" ] || failing "${long[@]}"
    fi
    outcome=${caught_by:+caught}
    outcome=${outcome:-missed}
}

result() { printf '%-30s %-9s %-22s %5s  %s\n' "$@" | tee -a "$work/table"; }

if [ -n "$only_match" ]; then
    temporary=$(mktemp -d) # beside a run that may be under way
    work=$temporary
fi
mkdir -p "$work"
faults >"$work/faults"
if [ -z "$only_match" ]; then
    say "Copying and building $tree"
    copy_tree
    configure
    build_targets || { tail -n 40 "$work/build.log" >&2; exit 1; }
    if [ -n "$first_run" ]; then
        say "Running all tests without a fault"
        mapfile -t all <"$work/tests"
        failing "${all[@]}"
        [ -z "$caught_by" ] || { say "$caught_by fails without a fault"; exit 1; }
    fi
fi

: >"$work/table"
begin=$SECONDS
errors=0
while IFS= read -r id <&3 && IFS= read -r file <&3 && IFS= read -r old <&3 && IFS= read -r new <&3 &&
    IFS= read -r tests <&3 && IFS= read -r word <&3; do
    is_chosen "$id" || continue
    started=$SECONDS
    if ! edited "$tree/$file" "$old" "$new" >"$work/edited"; then
        result "$id" no-match - - "$file: $word"
        errors=1
        continue
    fi
    [ -z "$only_match" ] || continue
    cat "$work/edited" >"$copy/$file"
    try "$tests"
    cat "$tree/$file" >"$copy/$file"
    [ "$outcome" != no-build ] || { errors=1; cp "$work/build.log" "$work/no-build-$id.log"; }
    result "$id" "$outcome" "${caught_by:--}" $((SECONDS - started)) "$word"
done 3<"$work/faults"

[ -z "$only_match" ] || exit $errors
{
    awk '{ ++n[$2] } $2 == "missed" { missed = missed " " $1 } END {
        sum = n["caught"] + n["missed"]
        printf "\ncaught %d of %d", n["caught"], sum
        if (sum > 0) printf " (%.1f %%)", 100 * n["caught"] / sum
        printf ", missed %d, no match %d, no build %d\n", n["missed"], n["no-match"], n["no-build"]
        if (missed != "") printf "missed:%s\n", missed
    }' "$work/table"
    printf 'took %d min %02d s\n' $(((SECONDS - begin) / 60)) $(((SECONDS - begin) % 60))
} | tee "$work/figure"
[ -z "$table" ] || cat "$work/table" "$work/figure" >"$table"
exit $errors
