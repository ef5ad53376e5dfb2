#!/usr/bin/env bash
# Runs all fuzz targets of build-fuzz/, as many at once as there are processors, for MINUTES in all. Inputs that reach
# something new are kept in build-fuzz/corpus/ for the next time. Says how many inputs each target saw; on a finding
# says where the input is that reproduces it, and ends with 1.
# Usage: scripts/fuzz.sh MINUTES
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

case "${1:-}" in
    "" | 0 | *[!0-9]*) echo "usage: scripts/fuzz.sh MINUTES" >&2; exit 2 ;;
esac
targets=(build-fuzz/tests/fuzz-*)
processors=$(nproc)
export FUZZ_SECONDS=$((($1 * 60 * processors + ${#targets[@]} - 1) / ${#targets[@]}))

# fuzz_one PROGRAM
fuzz_one() {
    local name=${1##*/fuzz-} failed=
    local corpus=build-fuzz/corpus/$name findings=build-fuzz/findings/$name log=build-fuzz/$name.log
    mkdir -p "$corpus" "$findings"
    # Without the record of thread-local look-ups the leak check does not trip over threads that are parked.
    ASAN_OPTIONS=intercept_tls_get_addr=0 "$1" -max_total_time="$FUZZ_SECONDS" -timeout=20 -print_final_stats=1 \
        -artifact_prefix="$findings/" "$corpus" "tests/fuzz/seeds/$name" >"$log" 2>&1 || failed=yes
    echo "$name: $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") executions in $FUZZ_SECONDS s"
    if [ -n "$failed" ]; then
        echo "$name: a finding. $log has the report, and this input reproduces it:" >&2
        sed -n 's/^artifact_prefix.*Test unit written to //p' "$log" >&2
        return 1
    fi
}
export -f fuzz_one

printf '%s\n' "${targets[@]}" | xargs -P "$processors" -I {} bash -c 'fuzz_one {}' || exit 1
