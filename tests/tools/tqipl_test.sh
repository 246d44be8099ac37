#!/usr/bin/env bash
# Tests of the command-line host: tqipl_test.sh TQIPL SAMPLES_FOLDER. TQIPL may be a command with
# arguments, as in "valgrind -q tqipl". Needs nothing beyond the host, bash and the core utilities.
set -uo pipefail
export LC_ALL=C

read -ra tqipl <<<"$1"
samples=$(cd "$2" && pwd)
pictures=$(cd "$(dirname "${BASH_SOURCE[0]}")/pictures" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
mkdir out

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

run() {  # ARGUMENTS...: the host succeeds and complains about nothing
    local code=0
    "${tqipl[@]}" "$@" >stdout 2>stderr || code=$?
    check "exit code $code of: tqipl $*: $(cat stderr)" test "$code" = 0
    check "silence on stderr of: tqipl $*" test ! -s stderr
}

# The host ends with CODE and one line on stderr that holds TEXT, and out/ is as empty as before.
# Written files go to out/.
fails() {  # CODE TEXT ARGUMENTS...
    local expected=$1 text=$2 code=0
    shift 2
    "${tqipl[@]}" "$@" >stdout 2>stderr </dev/null || code=$?
    check "exit code $expected, not $code, of: tqipl $*" test "$code" = "$expected"
    check "one line on stderr of: tqipl $*" test "$(wc -l <stderr)" = 1
    check "'$text' in the error line of: tqipl $*: $(cat stderr)" grep -qF -- "$text" stderr
    check "nothing left behind by: tqipl $*" test -z "$(ls -A out)"
}

hex() { od -An -v -tx1 "$1" | tr -d ' \n'; }
bytes() { printf '%b' "$1" >"$2"; }  # CONTENT FILE, with bytes as \xHH
size_of() { wc -c <"$1" | tr -d ' '; }
same() { cmp -s "$1" "$2"; }

# The largest difference of two files of the same size, byte by byte.
largest_difference() {
    local first second difference largest=0
    while read -r _ first second; do
        difference=$((8#$first - 8#$second))
        ((difference < 0)) && difference=$((-difference))
        ((difference > largest)) && largest=$difference
    done < <(cmp -l "$1" "$2")
    echo "$largest"
}

# --- info -----------------------------------------------------------------------------------------

run info
check "info prints the version" grep -Eq '^version: +[0-9]+\.[0-9]+\.[0-9]+$' stdout
check "info prints the processors" grep -Eq '^processors: +[1-9][0-9]*$' stdout
check "info prints the level" grep -Eq '^level: +(base|SSE4\.1|AVX2)' stdout
check "info prints four lines" test "$(wc -l <stdout)" = 4
check "info counts the processors that the process may use" \
    grep -Eq "^processors: +$(env -u OMP_NUM_THREADS -u OMP_THREAD_LIMIT nproc)$" stdout
version=$(sed -n 's/^version: *//p' stdout)
check "info prints the module's version, which is that of the headers" \
    grep -Eqx "module: +${version//./\\.}" stdout
run --version
check "--version prints info's version" test "$(cat stdout)" = "$version"
run --help
check "the help names every command" \
    test "$(grep -Ec '^  (info|zoom|convert|demo|video) ' stdout)" = 5

# --- PNG files of every kind ----------------------------------------------------------------------

reads_as() {  # PICTURE FORMAT HEX: the picture's bytes in a raw format
    run convert "$pictures/$1" read.raw --to "$2"
    check "$1 reads as $3, not $(hex read.raw)" test "$(hex read.raw)" = "$3"
}
reads_as palette_2x2.png argb 0000ffff00ff00ffff0000ffffffffff
reads_as palette_alpha_2x2.png argb 0000ff0000ff0040ff000080ffffffff
reads_as grey_1bit_8x1.png gray8 ff00ffff000000ff
reads_as grey_1bit_8x1.png argb \
    ffffffff000000ffffffffffffffffff000000ff000000ff000000ffffffffff
reads_as grey_16bit_3x1.png gray8 1380ff
reads_as grey_alpha_2x1.png argb 0a0a0a141e1e1e28
reads_as rgb_16bit_1x1.png argb fe8001ff
reads_as rgba_2x1.png argb 03020104fcfbfafd
reads_as gamma_1x1.png argb c8640aff
run convert "$pictures/rgb_5x5.png" plain.raw --to argb
run convert "$pictures/rgb_interlaced_5x5.png" interlaced.raw --to argb
check "an interlaced file reads as a plain one" same plain.raw interlaced.raw
tail -c 4 plain.raw >last.raw
check "the last pixel of rgb_5x5.png" test "$(hex last.raw)" = a0c8c8ff

# --- raw files and back ---------------------------------------------------------------------------

for name in rgba_2x1 palette_alpha_2x2; do
    width_height=${name##*_}
    run convert "$pictures/$name.png" there.raw --to argb
    run convert there.raw back.png --from argb --size "$width_height"
    run convert back.png again.raw --to argb
    check "$name keeps its pixels and its alpha" same there.raw again.raw
done
bytes '\x00\x40\x80\xFF\x01\x02' grey.raw
run convert grey.raw grey.png --from gray8 --size 3x2
run convert grey.png again.raw --to gray8
check "gray8 comes back" same grey.raw again.raw
check "a grey picture's file is grey" test "$(od -An -tu1 -j25 -N1 grey.png | tr -d ' ')" = 0
run convert grey.png lum.raw --to lum
check "the luminance of a grey picture is itself" same grey.raw lum.raw

bytes '\x00\x00\xFF\xFF\x00\xFF\x00\xFF\xFF\x00\x00\xFF\xFF\xFF\xFF\x00' primaries.raw
run convert primaries.raw primaries.png --from argb --size 4x1
reads_primaries() {  # FORMAT HEX [OPTIONS...]
    local format=$1 expected=$2
    shift 2
    run convert primaries.png primaries.out --to "$format" "$@"
    check "red, green, blue, white as $format $*: $expected, not $(hex primaries.out)" \
        test "$(hex primaries.out)" = "$expected"
}
reads_primaries lum 4c961dff
reads_primaries lum32 ce300100a75602008b740000"00fc0300"
reads_primaries argb 0000ffff00ff00ffff0000ffffffff00

from_raw() {  # FORMAT HEX_OF_ARGB SIZE BYTES OPTIONS...: a raw frame's pixels
    local format=$1 expected=$2 size=$3 content=$4
    shift 4
    bytes "$content" frame.raw
    run convert frame.raw frame.png --from "$format" --size "$size" "$@"
    run convert frame.png frame.out --to argb
    check "$format $content $*: $expected, not $(hex frame.out)" \
        test "$(hex frame.out)" = "$expected"
}
from_raw yuyv 000000ffffffffff 2x1 '\x10\x80\xEB\x80'
from_raw uyvy 000000ffffffffff 2x1 '\x80\x10\x80\xEB'
from_raw yuyv 101010ffebebebff 2x1 '\x10\x80\xEB\x80' --range full
from_raw uyvy 101010ffebebebff 2x1 '\x80\x10\x80\xEB' --range full
from_raw yuyv 000000ffffffffff 2x1 '\x10\x80\xEB\x80' --matrix 709 --range studio
from_raw vuyt 646464ff 1x1 '\x80\x80\x64\x00'

# Samples by hand: the bytes of each format, and what they look like.
from_raw yuvp422 000000ffffffffff 2x1 '\x10\xEB\x80\x80'
from_raw yuv422p 101010ffebebebff 2x1 '\x10\xEB\x80\x80' --range full
from_raw v216 000000ffffffffff 2x1 '\x00\x80\x00\x10\x00\x80\x00\xEB'
from_raw y216 000000ffffffffff 2x1 '\xFF\x80\xFF\x10\xFF\x80\xFF\xEB' --matrix 709
from_raw yuvp216 000000ffffffffff 2x1 '\x00\x10\x00\xEB\x00\x80\x00\x80'
from_raw rgb 030201ff060504ff 2x1 '\x01\x02\x03\x04\x05\x06'
from_raw bgrtq10 0000ffff 1x1 '\x00\x00\xC0\xFF'
from_raw bgrtq10 ff0000ff 1x1 '\xFF\x0F\x00\x00'
from_raw bgr10 0000ffff 1x1 '\xFF\x03\x00\x00'
from_raw bgr10 ff0000ff 1x1 '\x00\x00\xF0\x3F'
from_raw bgr16 010203ff 1x1 '\xFF\x01\xFF\x02\xFF\x03'
from_raw bgra16 010203ff 1x1 '\xFF\x01\xFF\x02\xFF\x03\x00\x00'
from_raw hsv8 0000ffff00ff00ff 2x1 '\x00\xFF\xFF\x55\xFF\xFF'
reads_primaries rgb ff000000ff000000ffffffff
reads_primaries bgrtq10 000000ff00c03f00f00f0000f0cf3fff
reads_primaries bgr16 0000000000ff"000000ff0000"00ff00000000"00ff00ff00ff"
reads_primaries hsv8 00ffff55ffffaaffff0000ff
reads_primaries hsvp 000000000000f0420000704300000000"0000803f0000803f0000803f"00000000\
"0000803f0000803f0000803f0000803f"

repacks() {  # FROM TO SIZE BYTES HEX [OPTIONS...]: a raw frame in another format
    local from=$1 to=$2 size=$3 content=$4 expected=$5
    shift 5
    bytes "$content" from.raw
    run convert from.raw to.raw --from "$from" --to "$to" --size "$size" "$@"
    check "$from $content to $to $*: $expected, not $(hex to.raw)" \
        test "$(hex to.raw)" = "$expected"
}
repacks yuyv uyvy 2x1 '\x01\x02\x03\x04' 02010403
repacks uyvy yuyv 2x2 '\x01\x02\x03\x04\x05\x06\x07\x08' 0201040306050807
repacks yuyv yuvp422 4x1 '\x01\x02\x03\x04\x05\x06\x07\x08' 0103050702060408
repacks yuvp422 uyvy 4x1 '\x01\x03\x05\x07\x02\x06\x04\x08' 0201040306050807
repacks yuvp422 yuvp216 2x1 '\x01\x02\x03\x04' 0001000200030004
repacks yuvp216 v216 2x1 '\x11\x01\x22\x02\x33\x03\x44\x04' 3303110144042202
repacks v216 yuvp216 2x1 '\x33\x03\x11\x01\x44\x04\x22\x02' 1101220233034404
repacks v216 luma32 2x1 '\x33\x03\x11\x01\x44\x04\x22\x02' 1101000022020000
repacks bgr16 bgra16 1x1 '\x11\x01\x22\x02\x33\x03' 110122023303ff00
repacks bgra16 bgr16 1x1 '\x11\x01\x22\x02\x33\x03\x44\x04' 110122023303
repacks bgr16 bgrtq10 1x1 '\xFF\xFF\x00\x00\x40\x00' fc0f4000
repacks bgr10 bgra16 1x1 '\xFF\x03\x00\x00' "00000000c0ffc03f"
repacks argb rgb 2x1 '\x03\x02\x01\xFF\x06\x05\x04\xFF' 010203040506
repacks yuyv yuyv 2x1 '\x10\x80\x10\x80' 10801080 --matrix-from 601 --matrix-to 709
repacks yuyv yuyv 2x1 '\x51\x5A\x51\xF0' 3e663ef0 --matrix-from 601 --matrix-to 709
repacks yuyv uyvy 2x1 '\x51\x5A\x51\xF0' 663ef03e --matrix-from 601 --matrix-to 709
repacks yuvp422 yuvp422 2x1 '\x51\x51\x5A\xF0' 3e3e66f0 --matrix-from 601 --matrix-to 709
repacks vuyt vuyt 1x1 '\xF0\x5A\x51\x07' f0663e07 --matrix-from 601 --matrix-to 709

# A photograph, small enough that byte loops in bash are quick, with equal neighbours in each pair
# of pixels, so that the shared chroma costs nothing.
run zoom "$samples/astronaut.png" small.png --size 64x64 --method linear
run zoom small.png pairs.png --size 128x64 --method nn
run convert pairs.png pairs.argb --to argb
for matrix in 601 709; do
    run convert pairs.png pairs.yuyv --to yuyv --matrix "$matrix"
    run convert pairs.png pairs.uyvy --to uyvy --matrix "$matrix"
    check "yuyv has two bytes a pixel" test "$(size_of pairs.yuyv)" = $((128 * 64 * 2))
    dd if=pairs.yuyv of=swapped.uyvy conv=swab 2>dd.log
    check "uyvy is yuyv with swapped bytes, $matrix" same swapped.uyvy pairs.uyvy
    for format in yuyv uyvy; do
        run convert "pairs.$format" back.png --from "$format" --size 128x64 --matrix "$matrix"
        run convert back.png back.argb --to argb
        difference=$(largest_difference pairs.argb back.argb)
        check "$format $matrix comes back within 3 of 255, not $difference" \
            test "$difference" -le 3
    done
    cp back.argb "back$matrix.argb"
done
for format in yuvp422 v216 yuvp216; do
    for matrix in 601 709; do
        run convert pairs.png "pairs.$format" --to "$format" --matrix "$matrix"
        run convert "pairs.$format" back.png --from "$format" --size 128x64 --matrix "$matrix"
        run convert back.png back.argb --to argb
        check "$format $matrix brings back what yuyv does" same back.argb "back$matrix.argb"
    done
done
for format in rgb bgrtq10 bgr10 bgr16 bgra16; do
    run convert pairs.png "pairs.$format" --to "$format"
    run convert "pairs.$format" back.png --from "$format" --size 128x64
    run convert back.png back.argb --to argb
    check "$format loses nothing" same back.argb pairs.argb
done
for format in hsv8 hsvf hsvp; do
    run convert pairs.png "pairs.$format" --to "$format"
    run convert "pairs.$format" back.png --from "$format" --size 128x64
    run convert back.png back.argb --to argb
    difference=$(largest_difference pairs.argb back.argb)
    check "$format comes back within 8 of 255, not $difference" test "$difference" -le 8
done
run zoom small.png sixes.png --size 54x6 --method nn
run convert sixes.png sixes.v210 --to v210 --matrix 709
check "rows of v210 take a multiple of 128 bytes" test "$(size_of sixes.v210)" = $((256 * 6))
run convert sixes.v210 back.png --from v210 --size 54x6 --matrix 709
run convert sixes.png sixes.yuvp422 --to yuvp422 --matrix 709
run convert sixes.yuvp422 other.png --from yuvp422 --size 54x6 --matrix 709
check "v210 brings back what yuvp422 does" same back.png other.png
run convert sixes.v210 sixes.again --from v210 --to yuvp422 --size 54x6
check "the 8-bit samples in v210 are those of yuvp422" same sixes.yuvp422 sixes.again
run convert pairs.yuyv changed.yuyv --from yuyv --to yuyv --size 128x64 --matrix-from 709 \
    --matrix-to 601
run convert changed.yuyv back.png --from yuyv --size 128x64 --matrix 601
run convert back.png back.argb --to argb
difference=$(largest_difference back.argb back709.argb)
check "a changed matrix reads as the old one, within 5, not $difference" test "$difference" -le 5

run convert pairs.uyvy wrong.png --from uyvy --size 128x64 --matrix 601
run convert wrong.png wrong.argb --to argb
check "the matrix makes a difference" test "$(largest_difference pairs.argb wrong.argb)" -gt 3
run convert pairs.uyvy default.png --from uyvy --size 128x64
check "601 is the default" same wrong.png default.png

# Grey has no chroma to lose, so a second generation has the first one's bytes.
for ((i = 0; i < 256; ++i)); do bytes "\\x$(printf %02x "$i")" level; cat level; done >ramp.raw
run convert ramp.raw ramp.png --from gray8 --size 32x8
for matrix in 601 709; do
    for format in yuyv uyvy; do
        run convert ramp.png first.raw --to "$format" --matrix "$matrix"
        run convert first.raw first.png --from "$format" --size 32x8 --matrix "$matrix"
        run convert first.png second.raw --to "$format" --matrix "$matrix"
        check "$format $matrix: the second generation of greys" same first.raw second.raw
    done
done

# --- zoom -----------------------------------------------------------------------------------------

"${tqipl[@]}" zoom small.png out/x.png --size 8x8 --method '?' 2>stderr
methods=$(sed 's/.*known are: //; s/,//g' stderr)
nearly_same() {  # WHAT FIRST SECOND SIZE DECIBELS: the documented difference of two forms
    local decibels
    check "$1: the two forms differ" test "$(cmp -s "$2" "$3"; echo $?)" = 1
    run zoom "$2" compared.png --size "$4" --method nn --compare "$3"
    decibels=$(sed -n 's/^PSNR.*: \([0-9]*\)\.[0-9]* dB$/\1/p' stdout)
    check "$1: the two forms differ little: '$decibels' dB" test "${decibels:-0}" -ge "$5"
}
check "the known methods are listed: $methods" test "${methods%% *}" = nn
# Pictures from another encoder would differ in the file.
run convert small.png small.argb --to argb
run zoom small.png small_again.png --size 64x64 --method nn
run convert ramp.raw ramp_again.png --from gray8 --size 32x8
run zoom --help
for method in $methods; do
    check "zoom --help tells about $method" grep -Eq "^  $method: [^;]+" stdout
done
for method in $methods; do
    run zoom small.png equal.png --size 64x64 --method "$method"
    check "$method: an equal size has the same pixels" same equal.png small_again.png
    run zoom ramp.png equal.png --size 32x8 --method "$method"
    check "$method: an equal size of a grey picture" same equal.png ramp_again.png
    for size in 128x128 37x23 1x1 200x3; do
        run zoom small.png multi.png --size "$size" --method "$method"
        check "zoom prints the time" grep -Eq ', [0-9.]+ ms \(' stdout
        run zoom small.png single.png --size "$size" --method "$method" --single
        check "--single uses the plain form" grep -q 'plain form' stdout
        if [[ $method = tfi && $size != 1x1 ]]; then
            nearly_same "$method to $size" multi.png single.png "$size" 40
        else
            check "$method to $size: both forms" same multi.png single.png
        fi
        run convert multi.png multi.raw --to argb
        check "$method: the result has the size $size" \
            test "$(size_of multi.raw)" = $((${size%x*} * ${size#*x} * 4))
    done
    run zoom ramp.png multi.png --size 45x17 --method "$method"
    check "$method: grey stays grey" test "$(od -An -tu1 -j25 -N1 multi.png | tr -d ' ')" = 0
    run zoom "$pictures/rgba_2x1.png" multi.png --size 5x5 --method "$method"
    check "$method: alpha stays" test "$(od -An -tu1 -j25 -N1 multi.png | tr -d ' ')" = 6
done
run zoom small.png multi.png --size 40x40 --method super
run zoom small.png single.png --size 40x40 --method super --single
nearly_same "super to 40x40" multi.png single.png 40x40 55
delegates() {  # METHOD SIZE OTHER_METHOD
    local form
    for form in '' --single; do
        run zoom small.png its_own.png --size "$2" --method "$1" $form
        run zoom small.png other.png --size "$2" --method "$3" $form
        check "$1 to $2 $form is $3" same its_own.png other.png
    done
}
for size in 127x128 40x40; do
    delegates linear-correct "$size" linear
    delegates cubic-correct "$size" six-cubic
done
delegates super 65x9 six-cubic
delegates jbi 40x40 super
delegates jbi 64x100 six-cubic
run zoom small.png twice.png --size 128x128 --method nn
run zoom twice.png half.png --size 64x64 --method nn
check "nn twice and half again is the picture" same half.png small_again.png
run zoom "$samples/coffee.png" same.png --size 600x400 --method nn
run convert "$samples/coffee.png" before.raw --to argb
run convert same.png after.raw --to argb
check "a whole photograph at its own size" same before.raw after.raw
compares() {  # TEXT ARGUMENTS...: the second line of zoom
    local expected=$1
    shift
    run zoom "$@"
    check "zoom $*: '$expected', not '$(sed -n 2p stdout)'" \
        test "$(sed -n 2p stdout)" = "PSNR of the luminance against $expected"
}
compares 'small.png: 118.13 dB' small.png equal.png --size 64x64 --method nn --compare small.png
compares 'small.png: 118.13 dB after scaling to 64x64' \
    small.png twice.png --size 128x128 --method nn --compare small.png
compares 'ramp.png: 118.13 dB' ramp.png equal.png --size 32x8 --method linear --compare ramp.png
# Two grey levels apart in every pixel: 10 * log10(65025 / 2).
bytes '\x40\x41\x42\x43' low.raw
bytes '\x42\x43\x44\x45' high.raw
run convert low.raw low.png --from gray8 --size 2x2
run convert high.raw high.png --from gray8 --size 2x2
compares 'high.png: 45.12 dB' low.png equal.png --size 2x2 --method nn --compare high.png
run convert high.raw high_colour.png --from argb --size 1x1
run zoom low.png equal.png --size 1x1 --method nn --compare high_colour.png
check "grey may be compared with colour" grep -q 'high_colour.png: [0-9.]* dB$' stdout
for method in $methods; do
    run zoom small.png half.png --size 32x32 --method "$method" --compare small.png
    decibels=$(sed -n 's/^PSNR.*small.png: \([0-9]*\)\..* dB after scaling to 64x64$/\1/p' stdout)
    check "$method: half the size and back loses some, not all: '$decibels' dB" \
        test "${decibels:-0}" -gt 30 -a "${decibels:-0}" -lt 60
done
run zoom small.png half.png --size 32x32 --method nn
check "one line without --compare" test "$(wc -l <stdout)" = 1
cp small.png inplace.png
run zoom inplace.png inplace.png --size 64x64 --method nn
check "the result may replace the source" same inplace.png small_again.png
ln -s inplace.png link.png
run zoom small.png link.png --size 8x8 --method nn
run zoom small.png eight.png --size 8x8 --method nn
check "a link stays a link" test -L link.png
check "the result is written through a link" same inplace.png eight.png

# --- errors ---------------------------------------------------------------------------------------

printf 'no picture' >text.png
: >empty.png
mkdir folder.png
head -c 200000 "$samples/coffee.png" >cut.png
head -c 20 "$samples/coffee.png" >cut_header.png
head -c -12 "$samples/coffee.png" >cut_end.png
cp "$samples/coffee.png" flipped.png
printf 'X' | dd of=flipped.png bs=1 seek=100000 conv=notrunc 2>dd.log

zoom_from() { fails 1 "$2" zoom "$1" out/x.png --size 8x8 --method nn; }
fails 1 'missing.png: No such file' \
    zoom small.png out/x.png --size 8x8 --method nn --compare missing.png
fails 1 'text.png: not a PNG file' \
    zoom small.png out/x.png --size 8x8 --method nn --compare text.png
zoom_from missing.png 'missing.png: No such file'
zoom_from text.png 'text.png: not a PNG file'
zoom_from empty.png 'empty.png: not a PNG file'
zoom_from folder.png 'folder.png: Is a directory'
zoom_from cut.png 'cut.png: damaged PNG file: the file ends too early'
zoom_from cut_header.png 'cut_header.png: damaged PNG file'
zoom_from cut_end.png 'cut_end.png: damaged PNG file'
zoom_from flipped.png 'flipped.png: damaged PNG file'
zoom_from "$pictures/huge_header.png" 'huge_header.png: size 2000000000x2000000000: at most'
zoom_from $'two\nlines.png' 'two lines.png: No such file'

for size in 12 x 12x x12 axb -3x4 12x13x4 1e3x4 ' 8x8' '8x8 ' 8X8 8*8 +8x8 0x1Fx8 8.0x8; do
    fails 2 "size '$size'" zoom small.png out/x.png "--size=$size" --method nn
done
fails 2 "size ''" zoom small.png out/x.png --size '' --method nn
for size in 0x8 8x0 0x0; do
    fails 1 'at least 1' zoom small.png out/x.png --size "$size" --method nn
    fails 1 'at least 1' convert ramp.raw out/x.png --from gray8 --size "$size"
done
for size in 99999x8 8x99999 32768x32768 99999999999999999999x1; do
    fails 1 'at most' zoom small.png out/x.png --size "$size" --method nn
    fails 1 'at most' convert ramp.raw out/x.png --from gray8 --size "$size"
done
fails 2 "unknown zoom method 'cubism'; known are: nn, linear" \
    zoom small.png out/x.png --size 8x8 --method cubism

fails 1 'missing.png: No such file' convert missing.png out/x.raw --to argb
fails 1 'missing.raw: No such file' convert missing.raw out/x.png --from argb --size 8x8
fails 1 'text.png: not a PNG file' convert text.png out/x.raw --to yuyv
fails 2 "unknown format 'yuv9'; known are: argb, rgb, yuyv" convert small.png out/x.raw --to yuv9
fails 2 "unknown format 'yuv9'" convert ramp.raw out/x.png --from yuv9 --size 8x8
fails 2 'no conversion to yuyv is 2020; there are: studio 601, studio 709' \
    convert small.png out/x.raw --to yuyv --matrix 2020
fails 2 'no conversion to yuyv is full' convert small.png out/x.raw --to yuyv --range full
fails 2 'no conversion from uyvy is full 709' \
    convert pairs.uyvy out/x.png --from uyvy --size 128x64 --range full --matrix 709
fails 2 'no conversion from vuyt is studio' \
    convert ramp.raw out/x.png --from vuyt --size 8x8 --range studio
fails 2 'argb has no range and no matrix' convert small.png out/x.raw --to argb --matrix 601
fails 2 'a PNG file cannot be converted to vuyt' convert small.png out/x.raw --to vuyt
fails 2 'a PNG file cannot be converted to luma32' convert small.png out/x.raw --to luma32
fails 2 'lum cannot be converted to a PNG file' convert ramp.raw out/x.png --from lum --size 8x8
fails 2 'lum32 cannot be converted to a PNG file' convert ramp.raw out/x.png --from lum32 --size 8x8
fails 1 'the width must be even, not 5' convert "$pictures/rgb_5x5.png" out/x.raw --to yuyv
fails 1 'the width must be even, not 5' convert "$pictures/rgb_5x5.png" out/x.raw --to uyvy
fails 1 'the width must be even, not 3' convert ramp.raw out/x.png --from yuyv --size 3x2
fails 1 'gray8 takes a grey PNG file' convert small.png out/x.raw --to gray8
fails 1 'a frame of 16x17 in gray8 takes 272 bytes, the file has 256' \
    convert ramp.raw out/x.png --from gray8 --size 16x17
fails 1 'a frame of 8x8 in yuyv takes 128 bytes, the file has 256' \
    convert ramp.raw out/x.png --from yuyv --size 8x8
fails 1 'takes 64 bytes, the file has more' convert /dev/zero out/x.png --from gray8 --size 8x8
fails 1 'takes 64 bytes, the file has 0' convert /dev/null out/x.png --from gray8 --size 8x8
fails 1 'folder.png: Is a directory' convert folder.png out/x.png --from gray8 --size 8x8
fails 2 'convert takes --to FORMAT, --from FORMAT, or both' convert small.png out/x.raw
fails 2 '--from needs --size' convert ramp.raw out/x.png --from gray8
fails 2 '--size belongs to --from' convert small.png out/x.raw --to argb --size 8x8

# From one raw format to another.
fails 2 '--from needs --size' convert pairs.yuyv out/x.raw --from yuyv --to uyvy
fails 2 'the same format' convert pairs.yuyv out/x.raw --from yuyv --to yuyv --size 128x64
fails 2 'yuyv cannot be repacked to argb; it can to: yuvp422, uyvy, yuvp216, v210, v216, luma32' \
    convert pairs.yuyv out/x.raw --from yuyv --to argb --size 128x64
fails 2 'hsv8 cannot be repacked to rgb' convert ramp.raw out/x.raw --from hsv8 --to rgb --size 8x8
fails 2 '--matrix and --range are for PNG files' \
    convert pairs.yuyv out/x.raw --from yuyv --to uyvy --size 128x64 --matrix 601
fails 2 '--matrix and --range are for PNG files' \
    convert pairs.yuyv out/x.raw --from yuyv --to uyvy --size 128x64 --range full
fails 2 '--matrix-from and --matrix-to belong together' \
    convert pairs.yuyv out/x.raw --from yuyv --to uyvy --size 128x64 --matrix-from 601
fails 2 "no matrix change from '601' to '2020'; there are: 601 to 709, 709 to 601, 2020 to 709, 709" \
    convert pairs.yuyv out/x.raw --from yuyv --to uyvy --size 128x64 --matrix-from 601 \
    --matrix-to 2020
fails 2 'the matrix changes in these formats only: yuyv, uyvy, vuyt, yuvp422' \
    convert ramp.raw out/x.raw --from v216 --to v210 --size 6x1 --matrix-from 601 --matrix-to 709
fails 2 '--matrix-from and --matrix-to need both --from and --to' \
    convert small.png out/x.raw --to yuyv --matrix-from 601 --matrix-to 709
for format in yuvp422 yuv422p v216 yuvp216 hsvf; do
    fails 1 'the width must be even, not 5' \
        convert "$pictures/rgb_5x5.png" out/x.raw --to "$format"
    fails 1 'the width must be even, not 3' \
        convert ramp.raw out/x.png --from "$format" --size 3x2
done
fails 1 'v210 holds groups of 6 pixels, and a part of one is not converted: the width must be a' \
    convert small.png out/x.raw --to v210
fails 1 'a multiple of 6, not 1280' convert ramp.raw out/x.png --from v210 --size 1280x720
fails 1 'a multiple of 6, not 1280' \
    convert ramp.raw out/x.raw --from v210 --to uyvy --size 1280x720
fails 1 'a multiple of 6, not 8' convert ramp.raw out/x.raw --from uyvy --to v210 --size 8x16
fails 1 'a multiple of 6, not 8' convert ramp.raw out/x.raw --from v216 --to uyvy --size 8x8
fails 1 'the width must be even, not 3' \
    convert ramp.raw out/x.raw --from yuyv --to uyvy --size 3x2
fails 1 'a frame of 48x3 in v210 takes 384 bytes, the file has 256' \
    convert ramp.raw out/x.raw --from v210 --to uyvy --size 48x3
fails 1 'a frame of 54x2 in v210 takes 512 bytes, the file has 256' \
    convert ramp.raw out/x.png --from v210 --size 54x2
fails 1 'a frame of 8x8 in bgr16 takes 384 bytes, the file has 256' \
    convert ramp.raw out/x.png --from bgr16 --size 8x8
fails 1 'a frame of 4x4 in hsvp takes 192 bytes, the file has 256' \
    convert ramp.raw out/x.png --from hsvp --size 4x4

fails 2 'subcommand'
fails 2 "unknown command 'paint'; known are: info, zoom, convert, demo, video" paint
fails 2 '' info more
fails 2 '--method' zoom small.png out/x.png --size 8x8
fails 2 '--size' zoom small.png out/x.png --method nn
fails 2 'OUT.png' zoom small.png --size 8x8 --method nn
fails 2 'DIR' demo

# Places that nobody can write to, root included.
for place in small.png/x.png missing/x.png /proc/x.png; do
    fails 1 "cannot write $place" zoom small.png "$place" --size 8x8 --method nn
    fails 1 "cannot write $place" convert small.png "$place" --to argb
done
fails 1 'it is no regular file' zoom small.png folder.png --size 8x8 --method nn
check "the folder is still empty" test -z "$(ls -A folder.png)"
fails 1 'it is no regular file' zoom small.png /dev/null --size 8x8 --method nn
check "the device is still one" test -c /dev/null

# A write that breaks off half-way: no file, or the old one as it was.
breaks_off() {
    (ulimit -f 16 && "${tqipl[@]}" "$@" >stdout 2>stderr)
    check "exit code of a write that breaks off: tqipl $*" test $? = 1
    check "one line for a write that breaks off: $(cat stderr)" test "$(wc -l <stderr)" = 1
    check "the reason of a write that breaks off" grep -q 'cannot write .*: File too large' stderr
}
breaks_off zoom "$samples/coffee.png" out/x.png --size 600x400 --method nn
breaks_off convert "$samples/coffee.png" out/x.raw --to argb
check "nothing is left of a write that broke off" test -z "$(ls -A out)"
mkdir kept
cp small.png kept/x.png
breaks_off zoom "$samples/coffee.png" kept/x.png --size 600x400 --method nn
check "the old file is whole" same small.png kept/x.png
check "and alone" test "$(ls -A kept)" = x.png
if [[ -c /dev/full ]]; then
    "${tqipl[@]}" info >/dev/full 2>stderr
    check "a full standard output is an error" test $? = 1
fi

# --- demo -----------------------------------------------------------------------------------------

mkdir photographs
run zoom "$samples/raccoon.png" photographs/raccoon.png --size 96x72 --method linear
run zoom "$samples/coffee.png" 'photographs/a cup & <more>.png' --size 41x30 --method linear
cp "$pictures/grey_16bit_3x1.png" photographs/grey.png
cp "$pictures/rgba_2x1.png" photographs/tiny.png
printf 'a note' >photographs/README.md
run demo "sheets/all" --samples photographs
page=sheets/all/index.html
check "the page is whole" test "$(tail -n 1 "$page")" = '</html>'
images=$(grep -o '<img ' "$page" | wc -l)
captions=$(grep -o '<figcaption>' "$page" | wc -l)
files=$(find sheets/all -name '*.png' | wc -l)
check "a caption for each picture: $images, $captions" test "$images" = "$captions"
check "a file for each picture: $images, $files" test "$images" = "$files"
check "enough pictures: $images" test "$images" -ge 200
check "a time in each caption" test "$(grep -c '<div class="times">' "$page")" = "$images"
check "every picture lies in the page" \
    test "$(grep -o ' src="data:image/png;base64,' "$page" | wc -l)" = "$images"
check "nothing comes from outside" test "$(grep -Eic '(https?:)?//[a-z]|@import|url\(|<link' \
    <(sed 's/base64,[A-Za-z0-9+/=]*//g' "$page"))" = 0
check "names are escaped" grep -q 'a cup &amp; &lt;more&gt;' "$page"
check "the page says that the bytes are the same" \
    grep -q 'gave the same bytes in all [1-9][0-9]* comparisons' "$page"
check "the host says so too" grep -q 'gave the same bytes in all [1-9][0-9]* comparisons' stdout
check "the page tells the machine" grep -q '<dt>Processors</dt>' "$page"
check "plain lines where there is no terminal" test "$(grep -c $'\r' stdout)" = 0
check "a line for each picture" test "$(grep -Ec '^[0-9]+/[0-9]+ ' stdout)" = "$images"
find sheets/all -name '*.png' >names
while read -r file; do run convert "$file" readable.raw --to argb; done <names
run convert sheets/all/raccoon-original.png original.raw --to argb
run convert photographs/raccoon.png photograph.raw --to argb
check "the original is the photograph" same original.raw photograph.raw
run zoom photographs/raccoon.png linear.png --size 192x144 --method linear
check "the demo's zoom is the zoom command's" same linear.png sheets/all/raccoon-zoom-linear-2x.png
run convert photographs/raccoon.png raccoon.uyvy --to uyvy --matrix 601
run convert raccoon.uyvy raccoon.png --from uyvy --size 96x72 --matrix 601
check "the demo's round trip is the convert command's" \
    same raccoon.png sheets/all/raccoon-uyvy-601.png
check "YUYV and UYVY bring the same picture back" \
    same sheets/all/raccoon-uyvy-709.png sheets/all/raccoon-yuyv-709.png
check "the planar round trip brings the same picture back" \
    same sheets/all/raccoon-yuvp422-709.png sheets/all/raccoon-yuyv-709.png
for id in v210 v216; do
    check "the $id round trip brings the same picture back" \
        same "sheets/all/raccoon-$id-709.png" sheets/all/raccoon-yuyv-709.png
done
for id in bgrtq10 bgr10; do
    run convert "sheets/all/raccoon-$id.png" deep.raw --to argb
    check "the $id round trip loses nothing" same deep.raw photograph.raw
done
check "the planes of YUYV came back" grep -q 'Every byte of the frame came back' "$page"
check "no planes were lost" test "$(grep -c 'did NOT come back' "$page")" = 0
check "the wavelet came back" grep -q 'put together again. Every byte came back' "$page"
for id in mask-opened mask-closed mask-denoised mask-no-specks mask-no-holes mask-regions \
    mask-grown bilateral median median-specks wavelet wavelet-low field-top deinterlaced-bottom; do
    check "the demo has $id" test -s "sheets/all/raccoon-$id.png"
done
mkdir views
run demo views --samples photographs --pictures raccoon-mask.png raccoon-zoom-linear-2x.png
check "only the pictures that were asked for" \
    test "$(ls views | tr '\n' ' ')" = 'raccoon-mask.png raccoon-zoom-linear-2x.png '
check "a small picture asked for is the sheet's" \
    same views/raccoon-mask.png sheets/all/raccoon-mask.png
run convert sheets/all/raccoon-mask.png mask.raw --to gray8
check "a mask is black and white" test -z "$(tr -d '\000\377' <mask.raw | head -c 1)"
run convert sheets/all/raccoon-wavelet-back.png back.raw --to gray8
run convert photographs/raccoon.png luminance.raw --to lum
check "the wavelet's way back is the luminance" same back.raw luminance.raw
run convert sheets/all/raccoon-field-top.png field.raw --to gray8
run convert sheets/all/raccoon-deinterlaced-top.png frame.raw --to gray8
check "the deinterlaced frame begins with the field" \
    same <(head -c 96 frame.raw) <(head -c 96 field.raw)
run zoom sheets/all/raccoon-median.png equal.png --size 96x72 --method nn --compare \
    photographs/raccoon.png
check "the caption's decibels are those of zoom --compare" \
    grep -q "pixels. $(sed -n 's/.*: \(.* dB\)$/\1/p' stdout), noisy" "$page"
check "luma has no plain form" grep -q 'No plain form' "$page"
run convert sheets/all/raccoon-flip.png flipped.raw --to argb
check "the flip begins with the last row" \
    same <(head -c 384 flipped.raw) <(tail -c 384 photograph.raw)

fails 1 'the demo has no picture raccoon-none.png' demo out --samples photographs \
    --pictures raccoon-mask.png raccoon-none.png
fails 1 'cannot read the samples folder missing' demo out/sheet --samples missing
mkdir bare
fails 1 'no PNG files in the samples folder bare' demo out/sheet --samples bare
cp text.png bare/broken.png
fails 1 'bare/broken.png: not a PNG file' demo out/sheet --samples bare
fails 1 'cannot make the folder small.png' demo small.png --samples photographs
fails 1 'cannot make the folder small.png/sheet' demo small.png/sheet --samples photographs
fails 1 'cannot write /proc/' demo /proc --samples photographs
mkdir taken
mkdir taken/raccoon-flip.png
fails 1 'it is no regular file' demo taken --samples photographs
check "the pictures before the failure are whole" \
    same taken/raccoon-original.png sheets/all/raccoon-original.png
check "no page without all its pictures" test ! -e taken/index.html
check "no temporary file is left" test -z "$(find . -name '.tqipl-*')"

echo "$checks checks, $failures failures"
test "$failures" = 0
