# What the tests of tqipl video share; sourced with TQIPL, SAMPLES_FOLDER and FFMPEG.
set -uo pipefail
export LC_ALL=C

read -ra tqipl <<<"$1"
samples=$(cd "$2" && pwd)
ffmpeg=$3
command -v "$ffmpeg" >/dev/null || {
    echo "FAILED: ffmpeg is needed, and '$ffmpeg' is none"
    exit 1
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1

checks=0
failures=0

check() {  # TITLE COMMAND...: the command succeeds
    local title=$1
    shift
    checks=$((checks + 1))
    "$@" && return
    failures=$((failures + 1))
    echo "FAILED: $title"
}

host() { timeout 60 "${tqipl[@]}" "$@"; }  # ARGUMENTS...

run() {  # ARGUMENTS...: the host succeeds and complains about nothing
    local code=0
    host "$@" >stdout 2>stderr || code=$?
    check "exit code $code of: tqipl $*: $(cat stderr)" test "$code" = 0
    check "silence on stderr of: tqipl $*" test ! -s stderr
}

video() { run video --quiet "$@"; }  # ARGUMENTS...

# The host ends with CODE and one line on stderr that holds TEXT.
fails() {  # CODE TEXT ARGUMENTS...
    local expected=$1 text=$2 code=0
    shift 2
    host "$@" >stdout 2>stderr </dev/null || code=$?
    told "$expected" "$text" "$code" "tqipl $*"
}

told() {  # CODE TEXT FOUND_CODE TITLE: of what is in stderr
    check "exit code $1, not $3, of: $4" test "$3" = "$1"
    check "one line on stderr of: $4: $(cat stderr)" test "$(wc -l <stderr)" = 1
    check "the line on stderr begins with tqipl: $(cat stderr)" grep -q '^tqipl: ' stderr
    check "'$2' in the error line of: $4: $(cat stderr)" grep -qF -- "$2" stderr
}

film() {  # ARGUMENTS...: ffmpeg
    local code=0
    timeout 60 "$ffmpeg" -nostdin -v error -y "$@" 2>film.log || code=$?
    check "exit code $code of: ffmpeg $*: $(cat film.log)" test "$code" = 0
}

same() { [[ -s $1 ]] && cmp "$1" "$2"; }  # FILE FILE: the same bytes, and some
hex() { od -An -v -tx1 "$1" | tr -d ' \n'; }
bytes() { printf '%b' "$1"; }  # CONTENT, with bytes as \xHH
size_of() { wc -c <"$1" | tr -d ' '; }
values() { od -An -v -w1 -tu1 "$1" | tr -d ' '; }  # one a line
header_of() { head -n 1 "$1"; }

# The frames of a Y4M file whose lines FRAME have no parameters, one behind the other.
frames_of() {  # FILE FRAME_BYTES
    local header=$(($(header_of "$1" | wc -c))) total i
    total=$((($(size_of "$1") - header) / ($2 + 6)))
    for ((i = 0; i < total; ++i)); do
        tail -c +$((header + i * ($2 + 6) + 7)) "$1" | head -c "$2"
    done
}

summary() {
    echo "$checks checks, $failures failures"
    test "$failures" = 0
}
