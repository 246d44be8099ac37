#!/usr/bin/env bash
# Kinds of video and conversions between them: video_test.sh TQIPL SAMPLES_FOLDER FFMPEG. Frames
# come from ffmpeg, and results are compared with its own, with those of the host's other commands,
# and with bytes worked out by hand. Needs bash, awk, the core utilities and ffmpeg.
source "$(dirname "${BASH_SOURCE[0]}")/video_support.sh"

picture() {  # PIXEL_FORMAT FILE [SIZE]: five moving frames
    film -f lavfi -i "testsrc2=size=${3:-198x102}:rate=25" -frames:v 5 \
        -vf "format=$1,setsar=1${4:+,$4}" -strict -1 -f yuv4mpegpipe "$2"
}

raw() {  # PIXEL_FORMAT Y4M_FILE FILE: as ffmpeg holds the frames
    film -i "$2" -pix_fmt "$1" -f rawvideo "$3"
}

run --help
check "the help names the command" grep -Eq '^  video ' stdout
run video --help
check "the help lists operations" grep -Eq '^  zoom=WIDTHxHEIGHT:METHOD: ' stdout
check "the help lists formats" grep -Eq '^  yuvp422 \(or yuv422p\): planar 4:2:2; C422 in Y4M' stdout
check "the help lists zoom methods" grep -Eq '^  jbi: ' stdout

# --- copies ---------------------------------------------------------------------------------------

for pixels in yuv422p yuv444p gray yuv422p10le yuv422p16le; do
    picture "$pixels" "$pixels.y4m"
    video "$pixels.y4m" copy.y4m
    check "a copy of $pixels is the same file" same "$pixels.y4m" copy.y4m
    timeout 60 "$ffmpeg" -nostdin -v error -i "$pixels.y4m" -strict -1 -f yuv4mpegpipe - 2>film.log |
        host video --quiet - - 2>stderr | timeout 60 "$ffmpeg" -v error -y -f yuv4mpegpipe -i - \
            -strict -1 -f yuv4mpegpipe piped.y4m 2>film.log
    check "every end of the pipe of $pixels" test "${PIPESTATUS[*]}" = "0 0 0"
    check "$pixels through pipes" same "$pixels.y4m" piped.y4m
done

size=198x102
raw yuv422p yuv422p.y4m planar
raw uyvy422 yuv422p.y4m uyvy
raw yuyv422 yuv422p.y4m yuyv
raw bgra yuv422p.y4m argb
raw yuv444p yuv444p.y4m yuvp444
raw gray gray.y4m gray8
film -i yuv422p10le.y4m -vf limiter=min=4:max=1019 -strict -1 -f yuv4mpegpipe ten.y4m
raw yuv422p10le ten.y4m yuvp210
raw yuv422p16le ten.y4m yuvp216
film -i ten.y4m -c:v v210 -f rawvideo v210
cp planar yuvp422
video v210 v216 --from v210 --to v216 --size "$size"

for format in yuvp422 uyvy yuyv argb yuvp444 gray8 yuvp210 yuvp216 v210 v216; do
    video "$format" copy.raw --from "$format" --size "$size"
    check "a copy of raw $format is the same file" same "$format" copy.raw
    host video --quiet - - --from "$format" --size "$size" <"$format" >copy.raw
    check "a copy of raw $format through the standard streams" same "$format" copy.raw
done
printf '\xFF' | dd of=v210 bs=1 seek=3 conv=notrunc 2>/dev/null
video v210 copy.raw --from v210 --size "$size"
check "bits that are no samples are copied" same v210 copy.raw
film -i ten.y4m -c:v v210 -f rawvideo v210

# --- repacking ------------------------------------------------------------------------------------

repacks() {  # FROM TO: the file FROM becomes the file TO
    video "$1" host.raw --from "$1" --to "$2" --size "$size"
    check "$1 to $2" same "$2" host.raw
}
for from in yuvp422 uyvy yuyv; do
    for to in yuvp422 uyvy yuyv; do repacks "$from" "$to"; done
    video "$from" host.y4m --from "$from" --to y4m --size "$size" --interlace p --aspect 1:1
    frames_of host.y4m $((198 * 102 * 2)) >host.raw
    check "$from to Y4M" same yuvp422 host.raw
    check "the header of $from to Y4M: $(header_of host.y4m)" \
        test "$(header_of host.y4m)" = "YUV4MPEG2 W198 H102 F25:1 Ip A1:1 C422"
    video yuv422p.y4m host.raw --to "$from"
    check "Y4M to $from" same "$from" host.raw
done
for from in yuvp210 yuvp216 v210 v216; do
    for to in yuvp210 yuvp216 v210 v216; do repacks "$from" "$to"; done
done
# Rows that end within a group of six pixels, or fill 128 bytes exactly.
for size in 200x4 202x4 192x4 2x4; do
    picture yuv422p10le odd.y4m "$size" limiter=min=4:max=1019
    film -i odd.y4m -c:v v210 -f rawvideo expected
    video odd.y4m host.raw --to v210
    check "V210 of $size" same expected host.raw
    raw yuv422p10le odd.y4m expected
    video host.raw back.raw --from v210 --to yuvp210 --size "$size"
    check "V210 of $size and back" same expected back.raw
done
size=198x102
values yuvp422 | awk '{ print 0; print $1 }' >expected
video yuvp422 host.raw --from yuvp422 --to yuvp216 --size "$size"
values host.raw >found
check "eight bits to sixteen" same expected found
repack_back=$(values yuvp216 | awk 'NR % 2 == 0' | md5sum)
video yuvp216 host.raw --from yuvp216 --to yuvp422 --size "$size"
check "sixteen bits to eight are the upper ones" test "$repack_back" = "$(values host.raw | md5sum)"

# --- conversions ----------------------------------------------------------------------------------

plane() { head -c $((198 * 102)) "$1"; }
split_frames() {  # FILE BYTES: frame.0, frame.1, ...
    rm -f frame.*
    split -b "$2" -d -a 1 "$1" frame.
}
# Each frame on its own through tqipl convert. Arguments are those of the way there.
by_convert() {  # FROM TO BYTES [OPTIONS]: of the frames in the file FROM, to the file expected
    local from=$1 to=$2 each
    split_frames "$from" "$3"
    shift 3
    : >expected
    for each in frame.?; do
        if [[ $to = argb ]]; then
            run convert "$each" each.png --from "$from" --size "$size" "$@"
            run convert each.png each.raw --to argb
        else
            run convert "$each" each.png --from "$from" --size "$size"
            run convert each.png each.raw --to "$to" "$@"
        fi
        cat each.raw >>expected
    done
}
for matrix in 601 709; do
    for yuv in yuvp422 uyvy yuyv; do
        by_convert "$yuv" argb $((198 * 102 * 2)) --matrix "$matrix"
        video "$yuv" host.raw --from "$yuv" --to argb --size "$size" --matrix "$matrix"
        check "$yuv to argb by $matrix" same expected host.raw
        by_convert argb "$yuv" $((198 * 102 * 4)) --matrix "$matrix"
        video argb host.raw --from argb --to "$yuv" --size "$size" --matrix "$matrix"
        check "argb to $yuv by $matrix" same expected host.raw
    done
done
video yuvp422 default.raw --from yuvp422 --to argb --size "$size"
video yuvp422 host.raw --from yuvp422 --to argb --size "$size" --matrix 601
check "the matrix is 601 where nobody says it" same default.raw host.raw
video yuvp422 host.raw --from yuv422p --to bgra --size "$size"
check "other names of formats" same default.raw host.raw

bytes '\x10\x20\x30\x40\x50\x61\x81\x91' >tiny.yuvp422  # 4x1
video tiny.yuvp422 host.raw --from yuvp422 --to yuvp444 --size 4x1
check "4:2:2 to 4:4:4 repeats chroma: $(hex host.raw)" \
    test "$(hex host.raw)" = 102030405050616181819191
bytes '\x10\x20\x30\x40\x50\x53\x61\x61\x00\xFF\x80\x82' >tiny.yuvp444
video tiny.yuvp444 host.raw --from yuvp444 --to yuvp422 --size 4x1
check "4:4:4 to 4:2:2 takes the mean, truncated: $(hex host.raw)" \
    test "$(hex host.raw)" = 1020304051617f81
video tiny.yuvp444 host.raw --from yuvp444 --to gray8 --size 4x1
check "4:4:4 to luma: $(hex host.raw)" test "$(hex host.raw)" = 10203040
video tiny.yuvp422 host.raw --from yuvp422 --op luma --to yuyv --size 4x1
check "luma to packed 4:2:2: $(hex host.raw)" test "$(hex host.raw)" = 1080208030804080
video tiny.yuvp422 host.raw --from yuvp422 --op luma --to yuvp444 --size 4x1
check "luma to 4:4:4: $(hex host.raw)" test "$(hex host.raw)" = 102030408080808080808080
video yuvp444 host.raw --from yuvp444 --to gray8 --size "$size"
film -i yuv444p.y4m -vf extractplanes=y -f rawvideo expected
check "luma as ffmpeg extracts it" same expected host.raw
video tiny.yuvp422 host.y4m --from yuvp422 --to y4m --op format=v210 --size 4x1
check "v210 in Y4M is 422p10: $(header_of host.y4m)" \
    test "$(header_of host.y4m)" = "YUV4MPEG2 W4 H1 F25:1 I? A0:0 C422p10"
frames_of host.y4m 16 >host.raw
check "ten bits: $(hex host.raw)" test "$(hex host.raw)" = 40008000c00000014001840104024402
video tiny.yuvp422 host.y4m --from yuvp422 --to y4m --op format=v216 --size 4x1
check "v216 in Y4M is 422p16" grep -aq ' C422p16$' host.y4m
video tiny.yuvp422 host.y4m --from yuvp422 --to y4m --op format=yuv444p --size 4x1
check "4:4:4 in Y4M is 444" grep -aq ' C444$' host.y4m
video tiny.yuvp422 host.y4m --from yuvp422 --to y4m --op luma --size 4x1
check "luma in Y4M is mono" grep -aq ' Cmono$' host.y4m

# --- headers --------------------------------------------------------------------------------------

frame='\x01\x02\x03\x04\x05\x06\x07\x08'  # 2x2 in 4:2:2
header() {  # HEADER EXPECTED [ARGUMENTS...]: of one frame
    bytes "$1\nFRAME\n$frame" >in.y4m
    local text=$1 expected=$2
    shift 2
    video in.y4m out.y4m "$@"
    check "the header '$text' with $* becomes '$(header_of out.y4m)', not '$expected'" \
        test "$(header_of out.y4m)" = "$expected"
}
header "YUV4MPEG2 W2 H2 C422" "YUV4MPEG2 W2 H2 C422"
header "YUV4MPEG2  C422 H2 XA=B  W2 F30000:1001 Xlast" \
    "YUV4MPEG2  C422 H2 XA=B  W2 F30000:1001 Xlast"
header "YUV4MPEG2  C422 H2 XA=B  W2 F30000:1001 A10:11 Xlast" \
    "YUV4MPEG2 C422 H2 XA=B W2 F30000:1001 A20:11 Xlast" --op flip --op crop=2x1:0:1 \
    --op zoom=2x2:nn
header "YUV4MPEG2 W2 H2 A10:11 C422 XYSCSS=422 XB" "YUV4MPEG2 W4 H2 A5:11 C422 XYSCSS=422 XB" \
    --op zoom=4x2:nn
header "YUV4MPEG2 W2 H2 A0:0 C422" "YUV4MPEG2 W4 H2 A0:0 C422" --op zoom=4x2:nn
header "YUV4MPEG2 W2 H2 A1:1 C422" "YUV4MPEG2 W4 H4 A1:1 C422" --op zoom=4x4:nn
header "YUV4MPEG2 W2 H2 It C422 XYSCSS=422 XB" "YUV4MPEG2 W2 H2 It Cmono XB" --op luma
header "YUV4MPEG2 W2 H2 It C422" "YUV4MPEG2 W2 H2 Ib C422" --op flip
header "YUV4MPEG2 W2 H2 Ib C422" "YUV4MPEG2 W2 H2 It C422" --op flip
header "YUV4MPEG2 W2 H2 Ip C422" "YUV4MPEG2 W2 H2 Ip C422" --op flip
header "YUV4MPEG2 W2 H2 It C422" "YUV4MPEG2 W2 H1 Ib C422" --op crop=2x1:0:1
header "YUV4MPEG2 W2 H2 Ib C422" "YUV4MPEG2 W2 H1 Ib C422" --op crop=2x1:0:0
header "YUV4MPEG2 W2 H2 Ib C422" "YUV4MPEG2 W2 H4 It C422" --op pad=0:1:0:1
header "YUV4MPEG2 W2 H2 It C422" "YUV4MPEG2 W2 H5 It C422" --op pad=0:2:0:1
header "YUV4MPEG2 W2 H2 F25:1 Ip A1:1 C422" "YUV4MPEG2 W2 H4 F25:1 Ip A1:1 C422" --op pad=0:1:0:1
header "YUV4MPEG2 W2 H2 F50:2 It C422" "YUV4MPEG2 W2 H4 F50:1 Ip C422" --op pad=0:1:0:1 \
    --op deinterlace
header "YUV4MPEG2 W2 H2 F50:2 It C422" "YUV4MPEG2 W2 H4 F50:2 Ip C422" --op pad=0:1:0:1 \
    --op deinterlace=single
header "YUV4MPEG2 W2 H2 F60000:1001 Ip C422" "YUV4MPEG2 W2 H4 F30000:1001 It C422" \
    --op pad=0:1:0:1 --op p2i
header "YUV4MPEG2 W2 H2 C422 XCOLORRANGE=LIMITED" \
    "YUV4MPEG2 W2 H4 C422 XCOLORRANGE=LIMITED Ib" --op pad=0:1:0:1 --op p2i=bottom
header "YUV4MPEG2 W2 H2 F25:1 C422" "YUV4MPEG2 W2 H4 F25:2 C422 It" --op pad=0:1:0:1 --op p2i
header "YUV4MPEG2 W2 H2 C422 XCOLORRANGE=FULL" "YUV4MPEG2 W2 H2 Cmono XCOLORRANGE=FULL" --op luma
bytes "YUV4MPEG2 W2 H2 Im C422\nFRAME Ipp1 Xa\n${frame}FRAME\n${frame}FRAME Itt\n$frame" >in.y4m
video in.y4m out.y4m
check "parameters of frames are copied" same in.y4m out.y4m
video in.y4m out.y4m --op flip --op flip
check "parameters of frames go with them" same in.y4m out.y4m
video in.y4m out.raw --to yuvp422
check "raw frames have no parameters" test "$(hex out.raw)" = "$(
    for _ in 1 2 3; do bytes "$frame"; done | od -An -v -tx1 | tr -d ' \n')"
bytes "YUV4MPEG2 W2 H2 C422\n" >in.y4m
video in.y4m out.y4m
check "a stream without a frame" same in.y4m out.y4m
video tiny.yuvp422 out.y4m --from yuvp422 --to y4m --size 4x1 --rate 30000/1001 --interlace b \
    --aspect 16:11
check "the options of raw frames: $(header_of out.y4m)" \
    test "$(header_of out.y4m)" = "YUV4MPEG2 W4 H1 F30000:1001 Ib A16:11 C422"

# --- progress -------------------------------------------------------------------------------------

host video yuv422p.y4m out.y4m 2>stderr
check "one line at the end: $(cat stderr)" grep -Eqx \
    '5 frames read, 5 written, 198x102, [0-9.]+ frames/s, [0-9.]+ ms' stderr
check "only one line" test "$(wc -l <stderr)" = 1
host video yuv422p.y4m out.y4m --quiet 2>stderr
check "none with --quiet" test ! -s stderr
# A terminal, and a stream that takes its time.
mkfifo slow
{
    head -c 100000 yuv422p.y4m
    sleep 0.5
    tail -c +100001 yuv422p.y4m
} >slow &
timeout 60 script -qec "${tqipl[*]} video slow out.y4m" terminal </dev/null >/dev/null
wait
check "a terminal's line is written over" grep -Eq $'\r[0-9] frames?, [0-9.]+ frames/s' terminal
check "the last line on a terminal" grep -Eq '5 frames read, 5 written' terminal
check "no part of a stream whose length is not known" test "$(grep -c ' %' terminal)" = 0
# A file, and a reader that takes its time.
{
    sleep 0.5
    cat
} <slow >read.y4m &
timeout 60 script -qec "${tqipl[*]} video yuv422p.y4m slow" terminal </dev/null >/dev/null
wait
check "the part of a file that is done: $(tr '\r' '/' <terminal)" \
    grep -Eq $'\r[1-4] frames?, [0-9.]+ frames/s, [1-9][0-9] %' terminal
check "the slow reader has the whole stream" same yuv422p.y4m read.y4m

summary
