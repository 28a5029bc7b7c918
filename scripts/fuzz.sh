#!/usr/bin/env bash
# Fuzzes what reads foreign bytes: scripts/fuzz.sh [SECONDS [TARGET...]], by default 600 seconds each of all targets.
# Corpora are made by the program's own writers and kept in build/fuzz/corpus; a finding's bytes stay in build/fuzz.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/setup.sh

seconds=${1:-600}
shift || true
[ $# -gt 0 ] || set -- project oldproject blob bin device update window
install_missing "${build_packages[@]}" clang libclang-rt-14-dev
say "Building (clang, libFuzzer)"
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target fuzzers
cd build/fuzz
export ASAN_OPTIONS=detect_leaks=0:use_sigaltstack=0 UBSAN_OPTIONS=print_stacktrace=1
failed=0
for target; do
    GLOWSMITH_CORPUS=corpus/$target "bin/fuzz_$target"
    inputs=("corpus/$target")
    findings=../../tests/fuzz/fixtures/$target
    [ ! -d "$findings" ] || inputs+=("$findings")
    say "$target, $seconds s"
    "bin/fuzz_$target" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=3000 -detect_leaks=0 -print_final_stats=1 \
        "${inputs[@]}" 2>"$target.log" || failed=1
    grep -E '^(#[0-9]+.*(DONE|RELOAD)|SUMMARY|Done|broken|stat::(number|peak))' "$target.log" | tail -n 6
done
exit $failed
