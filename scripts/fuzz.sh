#!/bin/sh
# Runs each fuzzer for some minutes:  scripts/fuzz.sh BUILD_FOLDER MINUTES [NAME...]
#
# What they learn stays in BUILD_FOLDER/corpus. An input that breaks something is left in
# BUILD_FOLDER/found; once mended it belongs into tests/data/fuzz, where every test run tries it.
set -eu
cd "$(dirname "$0")/.."
build=$1
minutes=$2
shift 2
[ $# -gt 0 ] || set -- jet sql
for name; do
    corpus=$build/corpus/$name
    mkdir -p "$corpus" "$build/found"
    "$build/tests/fuzz/${name}_fuzz" -max_total_time=$((minutes * 60)) -timeout=600 \
        -rss_limit_mb=2048 -malloc_limit_mb=64 -max_len=4096 -print_final_stats=1 -verbosity=1 \
        -artifact_prefix="$build/found/$name-" "$corpus" "tests/data/fuzz/$name"
done
