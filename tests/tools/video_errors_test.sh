#!/usr/bin/env bash
# How video fails: video_errors_test.sh TQIPL SAMPLES_FOLDER FFMPEG. Each failure is one line on
# stderr and an exit code, and leaves whole frames or nothing. Needs bash, awk and the core
# utilities.
source "$(dirname "${BASH_SOURCE[0]}")/video_support.sh"

# --- truncated streams ----------------------------------------------------------------------------

frame='\x10\x20\x30\x40\x50\x60\x70\x80\x90\xA0\xB0\xC0\xD0\xE0\xF0\xFF'  # 4x2 in 4:2:2
header='YUV4MPEG2 W4 H2 F25:1 Ip A1:1 C422'
bytes "$header\nFRAME\n${frame}FRAME Ippp\n$frame" >whole.y4m
begin=$((${#header} + 1))
first=$((begin + 6 + 16))
length=$(size_of whole.y4m)
check "the second frame ends the stream" test $((first + 11 + 16)) = "$length"

# Cut behind each byte: what was whole goes on, the rest is one line.
for ((cut = 0; cut < length; ++cut)); do
    head -c "$cut" whole.y4m >cut.y4m
    rm -f out.y4m
    code=0
    host video --quiet - out.y4m <cut.y4m >stdout 2>stderr || code=$?
    check "nothing on stdout, cut at $cut" test ! -s stdout
    if ((cut == begin || cut == first)); then
        check "a stream of $cut bytes is whole: $(cat stderr)" test "$code" = 0
        check "a stream of $cut bytes is copied" same cut.y4m out.y4m
        continue
    fi
    if ((cut < begin)); then
        told 1 "the standard input: " "$code" "a header cut at $cut"
        check "no file for a header cut at $cut" test ! -e out.y4m
        continue
    fi
    told 1 "the standard input: the stream ends within" "$code" "a stream cut at $cut"
    kept=$((cut < first ? begin : first))
    head -c "$kept" whole.y4m >expected
    check "$kept bytes are written of $cut" same expected out.y4m
done
video whole.y4m whole.raw --to yuvp422
for ((cut = 1; cut < 32; ++cut)); do
    head -c "$cut" whole.raw >cut.raw
    code=0
    host video --quiet cut.raw out.raw --from yuvp422 --size 4x2 >stdout 2>stderr || code=$?
    if ((cut == 16)); then
        check "a raw frame is whole" test "$code" = 0
        continue
    fi
    told 1 "cut.raw: the stream ends within frame $((cut / 16 + 1)), which has $((cut % 16)) of 16" \
        "$code" "raw frames cut at $cut"
    check "whole raw frames of $cut bytes" test "$(size_of out.raw)" = $((cut / 16 * 16))
done
# A held frame is not flushed into an output that is known to be short.
bytes "YUV4MPEG2 W4 H4 F50:1 C422\nFRAME\n$frame${frame}FRAME\n$frame" >cut.y4m
fails 1 "the stream ends within frame 2, which has 16 of 32 bytes" video cut.y4m out.y4m --op p2i
check "a cut pair writes no frame" \
    test "$(cat out.y4m)" = "YUV4MPEG2 W4 H4 F25:1 C422 It"

# --- headers --------------------------------------------------------------------------------------

rm -f out
refused() {  # TEXT HEADER
    bytes "$2\nFRAME\n$frame" >in.y4m
    fails 1 "$1" video in.y4m out
    check "no output for: $2" test ! -e out
}
advice='convert it first, for example with ffmpeg -pix_fmt yuv422p'
refused "no Y4M stream" "YUV4MPEG W4 H2 C422"
refused "no Y4M stream" "YUV4MPEG2W4 H2 C422"
refused "no Y4M stream" " YUV4MPEG2 W4 H2 C422"
refused "no field W" "YUV4MPEG2 H2 C422"
refused "no field H" "YUV4MPEG2 W4 C422"
refused "no field W" "YUV4MPEG2"
refused "no field C, so the frames are 4:2:0, which the library does not have; $advice" \
    "YUV4MPEG2 W4 H2"
for colour in 420 420jpeg 420mpeg2 420paldv 420p10; do
    refused "the frames are 4:2:0 (C$colour), which the library does not have; $advice" \
        "YUV4MPEG2 W4 H2 C$colour"
done
for colour in 411 444alpha 444p10 422p12 mono16 mono10 "" 4222 RGB; do
    refused "the frames are C$colour, which is not known; known are C422, C444, Cmono" \
        "YUV4MPEG2 W4 H2 C$colour"
done
refused "'Z1', which is not known" "YUV4MPEG2 W4 H2 Z1 C422"
refused "'w4', which is not known" "YUV4MPEG2 w4 W4 H2 C422"
refused "two fields W" "YUV4MPEG2 W4 W4 H2 C422"
refused "two fields C" "YUV4MPEG2 W4 H2 C422 C444"
for side in W W-4 W+4 W4x W0x4 "W4\t"; do
    refused "which is no size" "YUV4MPEG2 $side H2 C422"
done
refused "both sides must be at least 1" "YUV4MPEG2 W0 H2 C422"
refused "both sides must be at least 1" "YUV4MPEG2 W4 H0 C422"
for side in 32770 2147483648 4294967300 99999999999999999999; do
    refused "at most 32768 pixels a side" "YUV4MPEG2 W$side H2 C422"
    refused "at most 32768 pixels a side" "YUV4MPEG2 W4 H$side C422"
done
refused "134217728 in all" "YUV4MPEG2 W32768 H32768 C422"
refused "the width must be even, not 5" "YUV4MPEG2 W5 H2 C422"
refused "the width must be even, not 5" "YUV4MPEG2 W5 H2 C422p10"
for ratio in F F25 F25: F:1 F-1:1 F25:1:1 F99999999999:1 F2147483648:1 A1 A1/1 Ax:y; do
    refused "which is no ratio" "YUV4MPEG2 W4 H2 $ratio C422"
done
for interlace in I Ix Ipp; do
    refused "which is no interlacing" "YUV4MPEG2 W4 H2 $interlace C422"
done
: >in.y4m
fails 1 "in.y4m: it is empty; a Y4M stream begins with a header" video in.y4m out
head -c 100000 /dev/zero >in.y4m
fails 1 "no Y4M stream" video in.y4m out
{
    printf '%s X' "$header"
    head -c 5000 /dev/zero | tr '\0' y
} >in.y4m
fails 1 "the Y4M header has no end" video in.y4m out
fails 1 "no Y4M stream" video "$samples/coffee.png" out

lines() {  # TEXT LINE: in the place of the second line FRAME
    bytes "$header\nFRAME\n$frame$2\n$frame" >in.y4m
    fails 1 "$1" video in.y4m out.y4m
    head -c "$first" in.y4m >expected
    check "the frame before '$2' is written" same expected out.y4m
}
lines "there is no line FRAME before frame 2" "FRAM"
lines "there is no line FRAME before frame 2" "FRAMES"
lines "there is no line FRAME before frame 2" "frame"
lines "there is no line FRAME before frame 2" " FRAME"
lines "there is no line FRAME before frame 2" ""
lines "there is no line FRAME before frame 2" "FRAME $(head -c 5000 /dev/zero | tr '\0' y)"

# --- files ----------------------------------------------------------------------------------------

fails 1 "cannot read nothing.y4m: No such file or directory" video nothing.y4m out
fails 1 "cannot read .: Is a directory" video . out
fails 1 "cannot write nowhere/out: No such file or directory" video whole.y4m nowhere/out
fails 1 "cannot write .: Is a directory" video whole.y4m .
cp whole.y4m own.y4m
fails 1 "cannot write own.y4m: it is the file that is read" video own.y4m own.y4m
ln -s own.y4m link.y4m
fails 1 "cannot write link.y4m: it is the file that is read" video own.y4m link.y4m
check "the file that is read stays" same whole.y4m own.y4m
fails 1 "cannot write /dev/full: No space left on device" video whole.y4m /dev/full
code=0
host video whole.y4m - >/dev/full 2>stderr || code=$?
told 1 "cannot write the standard output: No space left on device" "$code" "video to /dev/full"
code=0
host video whole.y4m - >&- 2>stderr || code=$?
told 1 "cannot write the standard output: Bad file descriptor" "$code" "video to a closed output"
code=0
host video - out <&- 2>stderr || code=$?
told 1 "cannot read the standard input: Bad file descriptor" "$code" "video from a closed input"

# Many frames, so that the failure comes within them.
{
    bytes "$header\n"
    for _ in {1..400}; do bytes "FRAME\n$frame"; done
} >long.y4m
# A limit on the file's size stands in for a full disk.
code=0
(
    ulimit -f 2
    host video long.y4m short.y4m
) 2>stderr || code=$?
told 1 "cannot write short.y4m: File too large" "$code" "a file beyond the limit"
check "$(size_of short.y4m) bytes of whole frames" \
    test $((($(size_of short.y4m) - begin) % 22)) = 0 -a "$(size_of short.y4m)" -gt 1900
head -c "$(size_of short.y4m)" long.y4m >expected
check "the frames before the limit" same expected short.y4m
printf 'before\n' >appended
code=0
(
    ulimit -f 2
    host video long.y4m - >>appended
) 2>stderr || code=$?
told 1 "cannot write the standard output: File too large" "$code" "output beyond the limit"
{
    printf 'before\n'
    head -c $(($(size_of appended) - 7)) long.y4m
} >expected
check "whole frames behind what was there" same expected appended
check "$(size_of appended) bytes behind what was there" \
    test $((($(size_of appended) - 7 - begin) % 22)) = 0

# A reader that has enough.
for _ in {1..400}; do tail -c +$((begin + 1)) long.y4m; done >many
{
    bytes "$header\n"
    cat many
} >many.y4m
host video many.y4m - 2>stderr | head -c 1000 >taken
codes=("${PIPESTATUS[@]}")
told 1 "cannot write the standard output: Broken pipe" "${codes[0]}" "a closed pipe"
head -c 1000 many.y4m >expected
check "what the reader took" same expected taken

# --- the command line -----------------------------------------------------------------------------

rm -f out
usage() {  # TEXT ARGUMENTS...
    local text=$1
    shift
    fails 2 "$text" video whole.y4m out "$@"
    check "no output of: tqipl video $*" test ! -e out
}
usage "unknown operation 'blur'; known are: zoom, half, crop" --op blur
usage "unknown operation ''" --op ""
usage "unknown operation ''" --op =1
usage "zoom: the size is missing; write --op zoom=WIDTHxHEIGHT:METHOD" --op zoom
usage "zoom: the method is missing" --op zoom=8x8
usage "zoom: size '8': write it as WIDTHxHEIGHT" --op zoom=8:nn
usage "zoom: size 0x8: both sides must be at least 1" --op zoom=0x8:nn
usage "zoom: size 99999x8: at most 32768" --op zoom=99999x8:nn
usage "unknown zoom method 'best'; known are: nn, linear" --op zoom=8x8:best
usage "zoom: 'fast' is not understood" --op zoom=8x8:nn:fast
fails 1 "the width must be even, not 7" video whole.y4m out --op zoom=7x8:nn
usage "half of yuvp422 takes a width that is a multiple of 4 and an even height, not 2x2" \
    --op crop=2x2:0:0 --op half
usage "crop: the left column is missing" --op crop=2x2
usage "crop: the left column is a whole number from 0 to 3, not '4'" --op crop=2x2:4:0
usage "crop: the top row is a whole number from 0 to 1, not '-1'" --op crop=2x2:0:-1
usage "crop: 4x2 from column 2 and row 0 is not inside 4x2" --op crop=4x2:2:0
usage "crop: pixels of yuvp422 share their chroma by twos: columns must be even" --op crop=2x2:1:0
usage "pad: pixels of yuvp422 share their chroma by twos" --op pad=1:0:1:0
usage "pad: the bottom border is missing" --op pad=2:2:2
fails 1 "at most 32768 pixels a side" video whole.y4m out --op pad=32768:0:0:0
usage "flip: 'up' is not understood; write --op flip" --op flip=up
usage "deinterlace takes an even height of at least 4, not 2" --op deinterlace
usage "deinterlace: 'x' is not understood" --op zoom=4x4:nn --op deinterlace=top:x
usage "say which field is first" --op zoom=4x4:nn --op deinterlace
usage "p2i takes an even height of at least 4, not 2" --op p2i
usage "put --op deinterlace before it" --op zoom=4x4:nn --op p2i --op p2i
usage "soften takes a height of at least 3, not 2" --op soften
usage "bilateral: the radius is missing" --op bilateral
usage "bilateral: sigma is missing" --op bilateral=2
usage "bilateral: the radius is a whole number from 1 to 64, not '0'" --op bilateral=0:2
usage "bilateral: the radius is a whole number from 1 to 4, not '5'" --op bilateral=5:2:direct
usage "bilateral: sigma is a whole number from 1 to 255, not '1.5'" --op bilateral=2:1.5
usage "gauss: the radius is a whole number from 1 to 32, not '33'" --op gauss=33
usage "average: the radius is a whole number from 1 to 64, not ''" --op average=
usage "median: the radius is a whole number from 1 to 64, not '3x3'" --op median=3x3
usage "median3x3: 'chroma' is not understood" --op median3x3=chroma
usage "the mask is put to no use" --op threshold=100
usage "threshold: the level is a whole number from 0 to 255, not '256'" --op threshold=256
for op in remove-specks=1 fill-holes=1 erosion=1 dilation=1 opening=1 closing=1 denoise=1 key mask; do
    usage "${op%=*} works on a mask; put --op threshold=LEVEL before it" --op $op
done
usage "erosion: the radius along rows is a whole number from 0 to 1024, not '-1'" \
    --op threshold=1 --op erosion=1:-1 --op key
usage "remove-specks: the number of pixels is a whole number from 1 to 2147483647, not '0'" \
    --op threshold=1 --op remove-specks=0 --op key
for op in zoom=8x8:nn half crop=2x2:0:0 pad=2:2:2:2 flip deinterlace p2i threshold=2; do
    usage "${op%=*} would part the frames from their mask" --op threshold=1 --op $op --op key
done
usage "format: the format is missing" --op format
usage "format: unknown format 'rgb'; known are: uyvy, yuyv, yuvp422" --op format=rgb
usage "matrix: the change is missing" --op matrix
usage "matrix: '601' is no change of matrix" --op matrix=601
usage "no matrix change from '601' to '2020'; there are: 601 to 709" --op matrix=601-2020
usage "matrix=601-709: the frames have the matrix 709 here" --op matrix=601-709 --op matrix=601-709
usage "matrix=601-709: the frames have the matrix 2020 here" --matrix 2020 --op matrix=601-709
usage "has the matrices 601 and 709, and the frames have 2020" --matrix 2020 --op format=argb
usage "hsv has the matrices 601 and 709" --op matrix=709-2020 --op hsv=0:1:1
usage "hsv: the hue is a number from -360 to 360, not '1e9'" --op hsv=1e9:1:1
usage "hsv: the saturation is a number from 0 to 16, not 'nan'" --op hsv=0:nan:1
usage "hsv: the value is missing" --op hsv=0:1
usage "hsv takes yuyv, argb, and gray8 cannot become one of these without loss" --op luma \
    --op hsv=0:1:1
usage "zoom takes yuvp422, yuvp444, gray8, argb, and v210 cannot become one of these without loss" \
    --op format=v210 --op zoom=8x8:nn
usage "matrix takes yuvp422, yuyv, uyvy, yuvp444, and argb cannot" --op format=argb \
    --op matrix=601-709
usage "unknown format 'avi'; known are: y4m, uyvy" --to avi
usage "unknown format 'avi'; known are: y4m, uyvy" --from avi
usage "--from uyvy needs --size WIDTHxHEIGHT" --from uyvy
usage "belong to raw frames, with --from" --size 4x2
usage "belong to raw frames, with --from" --rate 25
usage "unknown matrix '240'; known are: 601, 709, 2020" --matrix 240
usage "--rate '0'" --from uyvy --size 4x2 --rate 0
usage "--rate '25:0'" --from uyvy --size 4x2 --rate 25:0
usage "--rate 'x'" --from uyvy --size 4x2 --rate x
usage "--aspect '1:1:1'" --from uyvy --size 4x2 --aspect 1:1:1
usage "--interlace 'x': known are p, t, b and m" --from uyvy --size 4x2 --interlace x
usage "size '4': write it as" --from uyvy --size 4
fails 1 "the width must be even, not 3" video whole.y4m out --from uyvy --size 3x2
fails 1 "the width must be even, not 3" video whole.raw out --from argb --to uyvy --size 3x2
fails 2 "--unknown" video whole.y4m out --unknown
fails 2 "OUT is required" video whole.y4m
: >empty.raw
fails 1 "empty.raw: it has no frame" video empty.raw out --from uyvy --size 4x2
bytes "YUV4MPEG2 W4 H2 C422 XCOLORRANGE=FULL\nFRAME\n$frame" >full.y4m
for op in matrix=601-709 hsv=0:1:1 format=argb; do
    fails 2 "is for studio range, and the header says XCOLORRANGE=FULL" video full.y4m full.out \
        --op $op
done
timeout 60 script -qec "${tqipl[*]} video whole.y4m -; echo code \$?" terminal </dev/null >/dev/null
check "no frames to a terminal: $(cat terminal)" grep -q 'the standard output is a terminal' terminal
check "the exit code at a terminal" grep -q 'code 2' terminal

summary
