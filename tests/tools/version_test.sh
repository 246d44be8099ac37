#!/usr/bin/env bash
# The command-line host with a module of another version: version_test.sh TQIPL OTHER_VERSION, where
# OTHER_VERSION is a shared object that answers for the module.
set -euo pipefail

fail() {
    echo "FAILED: $1"
    exit 1
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$1" info >"$work/own" 2>"$work/complaints"
[[ ! -s $work/complaints ]] || fail "a warning without a cause: $(cat "$work/complaints")"
version=$(sed -n 's/^version: *//p' "$work/own")
[[ -n $version && $version != 0.1.2 ]] || fail "the version is '$version'"

LD_PRELOAD=$2 "$1" info >"$work/stdout" 2>"$work/stderr"
grep -qx "version: *${version//./\\.}" "$work/stdout" || fail "no version of the headers"
grep -qx 'module: *0\.1\.2' "$work/stdout" || fail "no version of the module"
[[ $(wc -l <"$work/stderr") == 1 ]] || fail "not one line of warning"
grep -q "^tqipl: warning: .*version ${version//./\\.},.*version 0\.1\.2$" "$work/stderr" ||
    fail "the warning is: $(cat "$work/stderr")"
