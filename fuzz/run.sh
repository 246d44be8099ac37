#!/usr/bin/env bash
# Builds the fuzzers and runs each for a number of seconds, as many at a time as there are
# processors, from the inputs in corpus/: fuzz/run.sh <seconds> [name...]. What is found is kept in
# build/fuzz/findings, and the run fails.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ $# -lt 1 ] || [[ ! $1 =~ ^[0-9]+$ ]]; then
    echo "usage: fuzz/run.sh <seconds> [name...]" >&2
    exit 2
fi
seconds=$1
shift
scripts/install_packages.sh cmake ninja-build g++ clang libclang-rt-14-dev

echo "== fuzz: build"
cmake --preset fuzz > /dev/null
cmake --build --preset fuzz

names=("$@")
if [ ${#names[@]} -eq 0 ]; then
    for source in fuzz/fuzz_*.cpp; do
        name=${source#fuzz/fuzz_}
        names+=("${name%.cpp}")
    done
fi
for name in "${names[@]}"; do
    if [ ! -x "build/fuzz/fuzz/fuzz_$name" ]; then
        echo "There is no fuzzer $name." >&2
        exit 2
    fi
done

findings=build/fuzz/findings
mkdir -p "$findings"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export ASAN_OPTIONS=detect_leaks=1:allocator_may_return_null=1 UBSAN_OPTIONS=print_stacktrace=1

# Finds go to a folder of their own, so that only those of this run count.
fuzz() {
    local name=$1 seconds=$2 scratch=$3
    mkdir -p "$scratch/$name/found" "$scratch/$name/inputs"
    # Failure is told by its file, not by the exit code, which ends no sibling.
    "build/fuzz/fuzz/fuzz_$name" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 \
        -max_len=300 -len_control=0 -print_final_stats=1 -artifact_prefix="$scratch/$name/found/" \
        "$scratch/$name/inputs" "fuzz/corpus/$name" > "$scratch/$name/log" 2>&1 ||
        touch "$scratch/$name/failed"
    echo "$name: $(grep -F number_of_executed_units "$scratch/$name/log" | grep -o '[0-9]*$') inputs"
}
export -f fuzz

echo "== fuzz: $seconds seconds each: ${names[*]}"
printf '%s\n' "${names[@]}" |
    xargs -P "$(nproc)" -I{} bash -c 'fuzz "$@"' fuzz {} "$seconds" "$scratch"

failed=0
for name in "${names[@]}"; do
    [ -e "$scratch/$name/failed" ] || continue
    failed=1
    grep -vE '^#[0-9]+' "$scratch/$name/log" >&2 || true
    for input in "$scratch/$name"/found/*; do
        [ -e "$input" ] || continue
        cp "$input" "$findings/${name}_$(basename "$input")"
        echo "fuzz_$name found something. Again by:" >&2
        echo "  build/fuzz/fuzz/fuzz_$name $findings/${name}_$(basename "$input")" >&2
    done
done
exit "$failed"
