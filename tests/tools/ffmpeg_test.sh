#!/usr/bin/env bash
# Raw frames between ffmpeg and the command-line host: ffmpeg_test.sh TQIPL SAMPLES_FOLDER FFMPEG.
# Where a conversion only moves samples, those that ffmpeg holds in its own pixel formats must be
# those that the host writes, bit for bit. Needs bash, awk and the core utilities.
set -uo pipefail
export LC_ALL=C

read -ra tqipl <<<"$1"
samples=$(cd "$2" && pwd)
ffmpeg=$3
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

same() {  # FILE FILE: the same bytes, and some
    [[ -s $1 ]] && cmp "$1" "$2"
}

run() {  # ARGUMENTS...: the host succeeds
    local code=0
    "${tqipl[@]}" "$@" >stdout 2>stderr || code=$?
    check "exit code $code of: tqipl $*: $(cat stderr)" test "$code" = 0
}

repack() {  # FROM TO: frame.FROM to host.TO
    rm -f "host.$2"
    run convert "frame.$1" "host.$2" --from "$1" --to "$2" --size "$size"
}

film() {  # ARGUMENTS...: ffmpeg makes one frame
    local code=0
    "$ffmpeg" -nostdin -v error -y "$@" 2>film.log || code=$?
    check "exit code $code of: ffmpeg $*: $(cat film.log)" test "$code" = 0
}

# FROM_FORMAT FROM_FILE TO_FORMAT TO_FILE: ffmpeg changes the pixel format of a raw frame.
refilm() {
    film -f rawvideo -pix_fmt "$1" -s "$size" -i "$2" -pix_fmt "$3" -f rawvideo "$4"
}

# Numbers, one a line. The first argument is the bytes a number has.
numbers() { od -An -v -w"$1" -tu"$1" "$2"; }
calculate() { awk "{ print $1 }"; }

same_numbers() {  # TITLE: the lists `expected` and `found` are equal, and not empty
    check "$1: something to compare" test -s expected
    check "$1" cmp expected found
}

different() {  # FILE: it holds more than one value, so that it can show a wrong order
    test "$(od -An -v -w2 -tx2 "$1" | sort -u | head -n 100 | wc -l)" -ge 50
}

# A frame of ten bits a sample from ffmpeg, as three planes and as V210.
ten_bits() {
    refilm yuv422p10le planes10 yuv422p10le planes10.again
    check "$title: ffmpeg keeps a frame" same planes10 planes10.again
    check "$title: the frame is a picture" different planes10
    film -f rawvideo -pix_fmt yuv422p10le -s "$size" -i planes10 -c:v v210 -f rawvideo frame.v210
    # ffmpeg fills the low six bits with zeros.
    refilm yuv422p10le planes10 yuv422p16le planes16
    numbers 2 planes10 | calculate '$1 * 64' >expected
    numbers 2 planes16 | calculate '$1' >found
    same_numbers "$title: ffmpeg makes ten bits wider by shifting"

    repack v210 yuvp216
    check "$title: v210 to yuvp216" same planes16 host.yuvp216
    cp planes16 frame.yuvp216
    repack yuvp216 v210
    check "$title: yuvp216 to v210" same frame.v210 host.v210
    repack yuvp216 v216
    numbers 2 planes16 | calculate '$1' >samples16
    pixels=$((${size%x*} * ${size#*x}))
    paste -d '\n' <(tail -n +$((pixels + 1)) samples16 | head -n $((pixels / 2))) \
        <(head -n "$pixels" samples16 | awk 'NR % 2 == 1') \
        <(tail -n $((pixels / 2)) samples16) \
        <(head -n "$pixels" samples16 | awk 'NR % 2 == 0') >expected
    numbers 2 host.v216 | calculate '$1' >found
    same_numbers "$title: yuvp216 to v216"
    mv host.v216 frame.v216
    repack v216 yuvp216
    check "$title: v216 to yuvp216" same planes16 host.yuvp216
    repack v216 v210
    check "$title: v216 to v210" same frame.v210 host.v210
    repack v210 v216
    check "$title: v210 to v216" same frame.v216 host.v216
    repack v210 luma32
    numbers 2 planes10 | calculate '$1' | head -n "$pixels" >expected
    numbers 4 host.luma32 | calculate '$1' >found
    same_numbers "$title: v210 to luma32"

    # The upper eight bits.
    repack v210 yuvp422
    numbers 2 planes10 | calculate 'int($1 / 4)' >expected
    numbers 1 host.yuvp422 | calculate '$1' >found
    same_numbers "$title: v210 to yuvp422"
    repack v210 uyvy
    refilm uyvy422 host.uyvy yuv422p planes8
    check "$title: v210 to uyvy" same host.yuvp422 planes8
    repack v210 yuyv
    refilm yuyv422 host.yuyv yuv422p planes8
    check "$title: v210 to yuyv" same host.yuvp422 planes8
}

# A frame of eight bits a sample from ffmpeg, as three planes and packed.
eight_bits() {
    check "$title: the frame is a picture" different frame.yuvp422
    refilm yuv422p frame.yuvp422 uyvy422 frame.uyvy
    refilm yuv422p frame.yuvp422 yuyv422 frame.yuyv
    check "$title: ffmpeg's packed frames differ" test "$(cmp frame.uyvy frame.yuyv | wc -l)" = 1
    repack uyvy yuvp422
    check "$title: uyvy to yuvp422" same frame.yuvp422 host.yuvp422
    repack yuyv yuvp422
    check "$title: yuyv to yuvp422" same frame.yuvp422 host.yuvp422
    repack yuvp422 uyvy
    check "$title: yuvp422 to uyvy" same frame.uyvy host.uyvy
    repack yuvp422 yuyv
    check "$title: yuvp422 to yuyv" same frame.yuyv host.yuyv
    repack uyvy yuyv
    check "$title: uyvy to yuyv" same frame.yuyv host.yuyv
    repack yuyv uyvy
    check "$title: yuyv to uyvy" same frame.uyvy host.uyvy
    # ffmpeg's encoder makes eight bits wider with zeros as well.
    film -f rawvideo -pix_fmt yuv422p -s "$size" -i frame.yuvp422 -c:v v210 -f rawvideo frame.v210
    repack yuvp422 v210
    check "$title: yuvp422 to v210" same frame.v210 host.v210
    repack v210 uyvy
    check "$title: v210 to uyvy" same frame.uyvy host.uyvy
    repack v210 yuyv
    check "$title: v210 to yuyv" same frame.yuyv host.yuyv
}

# Sixteen bits a sample, every bit in use.
sixteen_bits() {
    repack yuvp216 v216
    cp host.v216 frame.v216
    repack v216 yuvp216
    check "$title: yuvp216 to v216 and back" same frame.yuvp216 host.yuvp216
    numbers 2 host.v216 | awk 'NR % 2 == 0 { print $1 + 0 }' >found
    numbers 2 frame.yuvp216 | calculate '$1' | head -n $((${size%x*} * ${size#*x})) >expected
    same_numbers "$title: the luma of v216"
    repack v216 luma32
    numbers 4 host.luma32 | calculate '$1' >found
    same_numbers "$title: v216 to luma32"
    repack yuvp216 v210
    film -f v210 -video_size "$size" -i host.v210 -pix_fmt yuv422p10le -f rawvideo planes10
    numbers 2 frame.yuvp216 | calculate 'int($1 / 64)' >expected
    numbers 2 planes10 | calculate '$1' >found
    same_numbers "$title: ffmpeg reads the v210 frame of yuvp216"
}

# Red, green and blue: ffmpeg's bgr48le, bgra64le, x2bgr10le and rgb24 lie as the host's bgr16,
# bgra16, bgr10 and rgb.
bgr() {
    refilm bgra64le frame.bgra16 bgr48le frame.bgr16
    check "$title: the frame is a picture" different frame.bgr16
    repack bgra16 bgr16
    check "$title: bgra16 to bgr16" same frame.bgr16 host.bgr16
    repack bgr16 bgra16
    numbers 2 frame.bgr16 | awk '{ print $1 + 0 } NR % 3 == 0 { print 255 }' >expected
    numbers 2 host.bgra16 | calculate '$1' >found
    same_numbers "$title: bgr16 to bgra16"
    repack bgr16 bgrtq10
    numbers 2 frame.bgr16 | calculate 'int($1 / 64)' >expected
    numbers 4 host.bgrtq10 | awk '{
        print int($1 / 4) % 1024; print int($1 / 4096) % 1024; print int($1 / 4194304)
    }' >found
    same_numbers "$title: bgr16 to bgrtq10"

    refilm bgra64le frame.bgra16 x2bgr10le frame.bgr10
    repack bgr10 bgr16
    numbers 4 frame.bgr10 | awk '{
        print int($1 / 1048576) % 1024 * 64; print int($1 / 1024) % 1024 * 64; print $1 % 1024 * 64
    }' >expected
    numbers 2 host.bgr16 | calculate '$1' >found
    same_numbers "$title: bgr10 to bgr16"
    # The two bits above are not samples: ffmpeg sets them, the host clears them.
    mv host.bgr16 frame.bgr16
    repack bgr16 bgr10
    numbers 4 frame.bgr10 | calculate '$1 % 1073741824' >expected
    numbers 4 host.bgr10 | calculate '$1' >found
    same_numbers "$title: bgr16 to bgr10"
}

sources() {  # FORMAT FILE [FILTER]: the frame of this title
    film "${input[@]}" -frames:v 1 -vf "scale=${size/x/:},format=$1${3:+,$3}" -f rawvideo "$2"
}

# 198 is a multiple of 6 but not of 48: V210 rows then end in padding.
for size in 1920x1080 198x102; do
    for title in testsrc2 raccoon; do
        if [[ $title = testsrc2 ]]; then
            input=(-f lavfi -i "testsrc2=size=$size:rate=1")
        else
            input=(-i "$samples/raccoon.png")
        fi
        title="$title $size"
        # ffmpeg's V210 encoder keeps out of the codes that a serial line reserves.
        sources yuv422p10le planes10 limiter=min=4:max=1019
        ten_bits
        sources yuv422p frame.yuvp422 limiter=min=1:max=254
        eight_bits
    done
done

title="noise $size"
# A compressed file is as good as noise.
tail -c $((${size%x*} * ${size#*x} * 4)) "$samples/raccoon.png" >frame.yuvp216
sixteen_bits

title="raccoon $size"
input=(-i "$samples/raccoon.png")
sources bgra64le frame.bgra16
bgr

# 8-bit pictures, read by both.
size=$("${tqipl[@]}" convert "$samples/coffee.png" frame.argb --to argb |
    sed -n 's/^frame.argb: \([0-9]*x[0-9]*\),.*/\1/p')
check "the size is told: $size" test -n "$size"
film -i "$samples/coffee.png" -pix_fmt bgra -f rawvideo film.argb
check "a PNG file to argb" same film.argb frame.argb
film -i "$samples/coffee.png" -pix_fmt rgb24 -f rawvideo film.rgb
run convert "$samples/coffee.png" frame.rgb --to rgb
check "a PNG file to rgb" same film.rgb frame.rgb
repack argb rgb
check "argb to rgb" same film.rgb host.rgb
run convert frame.rgb back.png --from rgb --size "$size"
film -i back.png -pix_fmt rgb24 -f rawvideo back.rgb
check "rgb to a PNG file" same film.rgb back.rgb

echo "$checks checks, $failures failures"
test "$failures" = 0
