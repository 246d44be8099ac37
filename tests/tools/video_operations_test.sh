#!/usr/bin/env bash
# Operations on video: video_operations_test.sh TQIPL SAMPLES_FOLDER FFMPEG. Expectations are the
# host's other commands frame by frame, ffmpeg where it does the same, definitions written out in
# awk, and bytes worked out by hand. Needs bash, awk, the core utilities and ffmpeg.
source "$(dirname "${BASH_SOURCE[0]}")/video_support.sh"

size=64x36
film -f lavfi -i "testsrc2=size=$size:rate=25" -frames:v 3 -vf format=yuv422p,setsar=1 \
    -f yuv4mpegpipe in.y4m
film -i in.y4m -pix_fmt yuv422p -f rawvideo yuvp422
film -i in.y4m -pix_fmt uyvy422 -f rawvideo uyvy
film -i in.y4m -pix_fmt yuyv422 -f rawvideo yuyv
film -i in.y4m -pix_fmt yuv444p -f rawvideo yuvp444
film -i in.y4m -pix_fmt bgra -f rawvideo argb
film -i in.y4m -vf extractplanes=y -f rawvideo gray8

# Frames FILE of FORMAT and SIZE through the operations, to the file host.raw.
work_on() {  # FORMAT SIZE FILE OPERATIONS...
    local format=$1 frame_size=$2 file=$3 op arguments=()
    shift 3
    for op; do arguments+=(--op "$op"); done
    video "$file" host.raw --from "$format" --size "$frame_size" "${arguments[@]}"
}

is() {  # TITLE HEX: of host.raw
    check "$1: $(hex host.raw), not $2" test "$(hex host.raw)" = "$2"
}

# ffmpeg's FILTER gives the frames of host.raw.
as_film() {  # TITLE FILTER [PIXEL_FORMAT FILE]
    film -f rawvideo -pix_fmt "${3:-yuv422p}" -s "$size" -i "${4:-yuvp422}" -vf "$2" -f rawvideo \
        expected
    check "$1 as ffmpeg does it" same expected host.raw
}

# --- sizes ----------------------------------------------------------------------------------------

for format in yuvp422 uyvy yuyv yuvp444 argb gray8; do
    declare -A pixels=([yuvp422]=yuv422p [uyvy]=uyvy422 [yuyv]=yuyv422 [yuvp444]=yuv444p
        [argb]=bgra [gray8]=gray)
    work_on "$format" "$size" "$format" flip
    as_film "flip of $format" vflip "${pixels[$format]}" "$format"
    work_on "$format" "$size" "$format" crop=20x10:8:3
    planar=
    [[ $format = ?y?y ]] && planar=format=yuv422p,  # ffmpeg crops no packed 4:2:2
    film -f rawvideo -pix_fmt "${pixels[$format]}" -s "$size" -i "$format" \
        -vf "${planar}crop=20:10:8:3:exact=1" -pix_fmt "${pixels[$format]}" -f rawvideo expected
    check "crop of $format as ffmpeg does it" same expected host.raw
done
work_on yuvp422 "$size" yuvp422 pad=2:3:4:5
as_film pad pad=70:44:2:3,fillborders=2:4:3:5:smear

# One channel through tqipl zoom.
zoomed() {  # FILE FROM_SIZE TO_SIZE METHOD FORMAT: to the standard output
    run convert "$1" each.png --from "$5" --size "$2"
    run zoom each.png zoomed.png --size "$3" --method "$4"
    run convert zoomed.png zoomed.raw --to "$5"
    cat zoomed.raw
}
head -c $((64 * 36 * 2)) yuvp422 >frame
head -c $((64 * 36)) frame >plane.y
tail -c +$((64 * 36 + 1)) frame | head -c $((32 * 36)) >plane.u
tail -c $((32 * 36)) frame >plane.v
head -c $((64 * 36 * 4)) argb >frame.argb
for method in nn linear linear-correct cubic six-cubic cubic-correct super jbi tfi; do
    for to in 130x80 30x20; do
        chroma=$((${to%x*} / 2))x${to#*x}
        {
            zoomed plane.y 64x36 "$to" "$method" gray8
            zoomed plane.u 32x36 "$chroma" "$method" gray8
            zoomed plane.v 32x36 "$chroma" "$method" gray8
        } >expected
        work_on yuvp422 "$size" frame "zoom=$to:$method"
        check "zoom of 4:2:2 to $to by $method" same expected host.raw
        zoomed frame.argb 64x36 "$to" "$method" argb >expected
        work_on argb "$size" frame.argb "zoom=$to:$method"
        check "zoom of argb to $to by $method" same expected host.raw
    done
done
# Those whose forms are not alike: the one on threads runs on one processor too.
for zoom in 130x80:jbi 30x20:super 130x80:tfi; do
    work_on argb "$size" frame.argb "zoom=$zoom"
    timeout 60 taskset -c 0 "${tqipl[@]}" video --quiet frame.argb one --from argb --size "$size" \
        --op "zoom=$zoom"
    check "zoom=$zoom on one processor" same host.raw one
done
work_on uyvy "$size" uyvy zoom=130x80:linear
mv host.raw packed
work_on yuvp422 "$size" yuvp422 zoom=130x80:linear
video packed planar --from uyvy --to yuvp422 --size 130x80
check "zoom of packed 4:2:2 is that of planes" same host.raw planar

# --- one channel, by definition -------------------------------------------------------------------

width=24
height=16
tail -c +1000 "$samples/raccoon.png" | head -c $((width * height)) >noise
# Values of a `width` x `height` image as x[row, column], then the program, which prints bytes.
define() {  # AWK_PROGRAM [OPTIONS...]: from noise to expected
    local program=$1
    shift
    values noise | awk -v w=$width -v h=$height "$@" '
        function limit(v, low, high) { return v < low ? low : v > high ? high : v }
        function mirror(i, n) { return i < 0 ? -i : i >= n ? 2 * n - 2 - i : i }
        function div(a, b) { return a >= 0 ? int(a / b) : -int((b - 1 - a) / b) }
        function median(n,   i, j, v) {
            for (i = 1; i < n; ++i) {
                v = list[i]
                for (j = i; j > 0 && list[j - 1] > v; --j) list[j] = list[j - 1]
                list[j] = v
            }
            return list[int(n / 2)]
        }
        { x[int((NR - 1) / w), (NR - 1) % w] = $1 }
        END { '"$program"' }' >expected
}
defined() {  # OPERATION: the values of host.raw are those expected
    work_on gray8 "${width}x$height" noise "$1"
    values host.raw >found
    check "$1 by its definition" same expected found
}

define 'for (r = 0; r < h; ++r) for (c = 0; c < w; ++c) {
    sum = 8
    for (i = -1; i <= 1; ++i) for (j = -1; j <= 1; ++j)
        sum += (2 - i * i) * (2 - j * j) * x[r + i, c + j]
    inside = r > 0 && r < h - 1 && c > 0 && c < w - 1
    print inside ? int(sum / 16) : 0 + x[r, c]
}'
defined gauss3x3
inner='for (r = 0; r < h; ++r) for (c = 0; c < w; ++c) {
    if (r < R || r > h - R - 1 - D || c < R || c > w - R - 1 - D) { print x[r, c]; continue }
    n = sum = 0
    for (i = -R; i <= R; ++i) for (j = -R; j <= R; ++j) sum += list[n++] = x[r + i, c + j];'
for radius in 1 2; do
    define "$inner"' print int(sum / n) }' -v R=$radius -v D=1
    defined average=$radius
    define "$inner"' print median(n) }' -v R=$radius -v D=1
    defined median=$radius
done
define "$inner"' print median(n) }' -v R=1 -v D=0
defined median3x3
define 'for (r = 0; r < h; ++r) for (c = 0; c < w; ++c) {
    sum = all = 0
    for (i = -2; i <= 2; ++i) for (j = -2; j <= 2; ++j) {
        k = int(exp(-(i * i + j * j) / 8) * 1024 + 0.5)
        all += k
        if ((r + i, c + j) in x) sum += k * x[r + i, c + j]
    }
    print int(sum / all)
}'
defined gauss=2
define 'for (r = 0; r < h; ++r) for (c = 0; c < w; ++c) {
    sum = all = 0
    for (i = -2; i <= 2; ++i) for (j = -2; j <= 2; ++j) if ((r + i, c + j) in x) {
        d = x[r + i, c + j] - x[r, c]
        k = int(exp(-(i * i + j * j) / 8) * 1024 + 0.5) * int(exp(-d * d / 800) * 100 + 0.5)
        all += k
        sum += k * x[r + i, c + j]
    }
    print int(sum / all)
}'
defined bilateral=2:20:direct
define 't[-2] = t[2] = -1; t[-1] = t[1] = 2; t[0] = 6
for (r = 0; r < h; r += 2) for (c = 0; c < w; c += 2) {
    sum = 32
    for (i = -2; i <= 2; ++i) for (j = -2; j <= 2; ++j)
        sum += t[i] * t[j] * x[mirror(r + i, h), mirror(c + j, w)]
    print limit(div(sum, 64), 0, 255)
}'
defined half
define 't[-2] = t[2] = -1; t[-1] = t[1] = 2; t[0] = 6
for (r = 0; r < h; ++r) for (c = 0; c < w; ++c) {
    sum = 0
    for (i = -2; i <= 2; ++i) sum += t[i] * x[mirror(r + i, h), c]
    print limit(div(sum, 8), 16, 235)
}'
defined soften

# The two forms that work in rows and columns are the same away from the edges.
crop=crop=20x12:14:10
work_on yuvp422 "$size" yuvp422 bilateral=3:20:separable "$crop" luma
mv host.raw separable
work_on yuvp422 "$size" yuvp422 bilateral=3:20 "$crop" luma
check "bilateral on threads, away from the edges" same separable host.raw
work_on yuvp422 "$size" yuvp422 "$crop" luma
check "bilateral changes something" test "$(cmp separable host.raw | wc -l)" = 1
work_on yuvp422 "$size" yuvp422 bilateral=3:20
mv host.raw first
timeout 60 taskset -c 0 "${tqipl[@]}" video --quiet yuvp422 host.raw --from yuvp422 --size "$size" \
    --op bilateral=3:20
check "bilateral on one processor, to the last row" same first host.raw
head -c $((64 * 36)) /dev/zero | tr '\0' '\144' >flat
for op in bilateral=3:20 bilateral=3:20:separable gauss3x3 lowpass soften; do
    work_on gray8 "$size" flat "$op"
    check "$op keeps a flat picture" same flat host.raw
done

# Which planes.
for op in gauss3x3 average=1 median=1 median3x3; do
    for planes in all luma; do
        joint=:
        [[ $op == *3x3 ]] && joint==
        work_on yuvp422 "$size" frame "$op$joint$planes"
        mv host.raw whole
        work_on gray8 64x36 plane.y "$op"
        mv host.raw expected
        for plane in plane.u plane.v; do
            if [[ $planes = all ]]; then
                work_on gray8 32x36 "$plane" "$op"
                cat host.raw >>expected
            else
                cat "$plane" >>expected
            fi
        done
        check "$op of $planes" same expected whole
    done
    work_on argb "$size" frame.argb "$op"
    mv host.raw whole
    for channel in 0 1 2 3; do
        od -An -v -w4 -tu1 frame.argb | awk -v c=$channel '{ printf "%c", $(c + 1) }' >channel
        od -An -v -w4 -tu1 whole | awk -v c=$channel '{ print $(c + 1) }' >found
        values channel >expected
        if [[ $channel != 3 ]]; then
            work_on gray8 "$size" channel "$op"
            values host.raw >expected
        fi
        check "$op of channel $channel of argb" same expected found
    done
done

# --- fields ---------------------------------------------------------------------------------------

bytes '\x0A\x14\x1F\x28\x32\x3C' >rows  # 1x6
work_on gray8 1x6 rows deinterlace
is "a frame of each field" "0a151f293232""14141e28323c"
work_on gray8 1x6 rows deinterlace=bottom
is "the bottom field first" "14141e28323c""0a151f293232"
work_on gray8 1x6 rows deinterlace=single:top
is "the top field alone" 0a151f293232
bytes 'YUV4MPEG2 W1 H6 Ib Cmono\nFRAME Ib\n\x0A\x14\x1F\x28\x32\x3C' >rows.y4m
video rows.y4m out.y4m --op deinterlace=single
check "the stream's own order" test "$(tail -c 12 out.y4m | od -An -v -tx1 | tr -d ' \n')" = \
    "$(printf 'FRAME\n' | od -An -v -tx1 | tr -d ' \n')14141e28323c"
work_on yuvp422 "$size" yuvp422 deinterlace
mv host.raw planar
for packed in uyvy yuyv; do
    video "$packed" host.raw --from "$packed" --to yuvp422 --size "$size" --op deinterlace
    check "deinterlace of $packed" same planar host.raw
done
work_on argb "$size" argb deinterlace=single
od -An -v -w4 -tu1 host.raw | awk '{ printf "%c", $2 }' >found
od -An -v -w4 -tu1 argb | awk '{ printf "%c", $2 }' >green
work_on gray8 "$size" green deinterlace=single
check "deinterlace of argb is that of its channels" same host.raw found

# Each field by its definition: first and last row copied, the rest softened.
field='t[-2] = t[2] = -1; t[-1] = t[1] = 2; t[0] = 6
for (n = 0; n < 2; ++n) for (r = n; r < h; r += 2) for (c = 0; c < w; ++c) {
    o = r + n * h * TWO
    sum = 4
    for (i = -2; i <= 2; ++i) sum += t[i] * x[o + i, c]
    inside = r >= 2 && r < h - 2
    y[r, c] = inside ? limit(div(sum, 8), LOW, HIGH) : x[o, c]
}
for (r = 0; r < h; ++r) for (c = 0; c < w; ++c) print y[r, c]'
define "$field" -v TWO=0 -v LOW=16 -v HIGH=235
defined p2i
tail -c +1500 "$samples/coffee.png" | head -c $((width * height)) >noise.2
mv noise noise.1
cat noise.1 noise.2 >noise
define "$field" -v TWO=1 -v LOW=16 -v HIGH=235
defined p2i
cat noise.2 noise.1 >noise
work_on gray8 "${width}x$height" noise p2i=bottom
values host.raw >found
check "the bottom field of the first frame" same expected found
cat noise.1 noise.2 noise.1 >noise
mv expected pair
cp noise.1 noise
define "$field" -v TWO=0 -v LOW=16 -v HIGH=235
cat pair expected >three
cat noise.1 noise.2 noise.1 >noise
work_on gray8 "${width}x$height" noise p2i
values host.raw >found
check "an odd last frame gives both fields" same three found
# Packed pairs are four bytes alike, and not limited to the range of luma.
cat noise.1 noise.2 >noise
define "$field" -v TWO=1 -v LOW=0 -v HIGH=255
for format in uyvy yuyv; do
    work_on "$format" $((width / 2))x$height noise p2i
    values host.raw >found
    check "p2i of $format" same expected found
done
work_on argb $((width / 4))x$height noise p2i
values host.raw >found
check "p2i of argb" same expected found
video noise host.raw --from uyvy --to yuvp422 --size $((width / 2))x$height
video host.raw planes --from yuvp422 --to uyvy --size $((width / 2))x$height --op p2i
values planes >found
check "p2i of planar 4:2:2" same expected found
work_on yuvp444 8x16 noise p2i
values host.raw | head -n 128 >luma.444
head -c 128 noise >noise.y
tail -c +385 noise | head -c 128 >>noise.y
od -An -v -w1 -tu1 noise.y | tr -d ' ' | awk -v w=8 -v h=16 -v TWO=1 -v LOW=0 -v HIGH=255 '
    function limit(v, low, high) { return v < low ? low : v > high ? high : v }
    function div(a, b) { return a >= 0 ? int(a / b) : -int((b - 1 - a) / b) }
    { x[int((NR - 1) / w), (NR - 1) % w] = $1 } END { '"$field"' }' >expected
check "p2i of 4:4:4" same expected luma.444
# Sixteen bits: what eight bits give, in the upper byte, for a picture without fine rows.
video flat flat.16 --from gray8 --to yuvp216 --size "$size"
video flat.16 host.raw --from yuvp216 --size "$size" --op p2i
check "p2i of a flat picture of sixteen bits" same flat.16 host.raw

# --- masks ----------------------------------------------------------------------------------------

# 10x5: a block of 3x3 with a hole, and a speck.
bytes '\xC8\xC8\xC8\x0A\x0A\x0A\x0A\x0A\x0A\x0A\xC8\x0A\xC8\x0A\x0A\x0A\x0A\x0A\xC8\x0A' >blob
bytes '\xC8\xC8\xC8\x0A\x0A\x0A\x0A\x0A\x0A\x0A' >>blob
head -c 20 /dev/zero | tr '\0' '\012' >>blob
mask() {  # TITLE ROWS OPERATIONS...: ROWS are those of the mask, # for 255
    local title=$1 rows=$2
    shift 2
    work_on gray8 10x5 blob threshold=100 "$@" mask
    check "$title: $(hex host.raw | sed 's/ff/#/g; s/00/./g')" \
        test "$(hex host.raw | sed 's/ff/#/g; s/00/./g')" = "${rows//[[:space:]]/}"
}
mask "a threshold" "###....... #.#.....#. ###....... .......... .........."
mask "no specks" "###....... #.#....... ###....... .......... .........." remove-specks=1
mask "no specks of eight pixels" ".......... .......... .......... .......... .........." \
    remove-specks=8
mask "no holes" "###....... ###.....#. ###....... .......... .........." fill-holes=1
mask "erosion" "##........ ##........ .......... .......... .........." fill-holes=1 erosion=1
mask "erosion along rows" "##........ ##........ ##........ .......... .........." fill-holes=1 \
    erosion=0:1
mask "dilation" "####...### ####...### ####...### ####...... .........." dilation=1
mask "opening" "###....... ###....... ###....... .......... .........." fill-holes=1 opening=1
mask "closing" "###.....## ###.....## ###....... .......... .........." closing=1
mask "opening and closing, with a hole" ".......... .......... .......... .......... .........." \
    denoise=1
mask "opening and closing" "###....... ###....... ###....... .......... .........." fill-holes=1 \
    denoise=1
work_on gray8 10x5 blob threshold=199 mask
mv host.raw above
work_on gray8 10x5 blob threshold=200 mask
is "nothing is above the level" "$(printf '00%.0s' {1..50})"
work_on gray8 10x5 blob threshold=200:below mask
check "below the level" test "$(hex host.raw | tr f0 0f)" = "$(hex above)"

{
    cat blob
    head -c 50 /dev/zero | tr '\0' '\125'
} >coloured
work_on yuvp422 10x5 coloured threshold=100 key
key_chroma=$(printf '5555808080''5555808055''5555808080''8080808080''8080808080')
is "black outside the mask, and pairs of pixels" "c8c8c810101010101010c810c81010101010c810c8c8c8$(
    printf '10%.0s' {1..27})$key_chroma$key_chroma"
video coloured host.raw --from yuvp422 --to uyvy --size 10x5
mv host.raw packed
work_on uyvy 10x5 packed threshold=100 key
mv host.raw packed
work_on yuvp422 10x5 coloured threshold=100 key
video packed planar --from uyvy --to yuvp422 --size 10x5
check "key of packed 4:2:2" same host.raw planar
bytes '\xFF\xFF\xFF\x07\x0A\x0A\x0A\x09' >two
work_on argb 2x1 two threshold=100 key
is "black in argb, alpha stays" ffffff0700000009
bytes '\xC8\x0A\x40\x41\x42\x43' >two
work_on yuvp444 2x1 two threshold=100 key
is "black in 4:4:4" c81040804280
# The mask stays with its frame while the picture changes.
work_on gray8 10x5 blob threshold=100 soften gauss3x3 key
work_on gray8 10x5 blob threshold=100 remove-specks=1 fill-holes=1 mask
timeout 60 taskset -c 0 "${tqipl[@]}" video --quiet blob one --from gray8 --size 10x5 \
    --op threshold=100 --op remove-specks=1 --op fill-holes=1 --op mask
check "masks on one processor" same host.raw one

# --- colours --------------------------------------------------------------------------------------

work_on yuvp422 "$size" yuvp422 grey
as_film grey lutyuv=u=128:v=128
for change in 601-709 709-601 2020-709 709-2020; do
    for format in yuvp422 uyvy yuyv; do
        head -c $((64 * 36 * 2)) "$format" >frame
        run convert frame expected --from "$format" --to "$format" --size "$size" \
            --matrix-from "${change%-*}" --matrix-to "${change#*-}"
        work_on "$format" "$size" frame matrix=$change
        check "$change in $format" same expected host.raw
    done
    head -c $((64 * 36 * 3)) yuvp444 >frame
    paste <(values frame | tail -n 2304) <(values frame | tail -n 4608 | head -n 2304) \
        <(values frame | head -n 2304) | awk '{ printf "%c%c%c%c", $1, $2, $3, 255 }' >vuyt
    run convert vuyt expected --from vuyt --to vuyt --size "$size" \
        --matrix-from "${change%-*}" --matrix-to "${change#*-}"
    work_on yuvp444 "$size" frame matrix=$change
    paste <(values host.raw | tail -n 2304) <(values host.raw | tail -n 4608 | head -n 2304) \
        <(values host.raw | head -n 2304) | awk '{ printf "%c%c%c%c", $1, $2, $3, 255 }' >found
    check "$change in 4:4:4" same expected found
done
head -c $((64 * 36 * 2)) yuvp422 >frame
video frame first --from yuvp422 --to argb --size "$size" --op matrix=601-709
video frame changed --from yuvp422 --size "$size" --op matrix=601-709
video changed second --from yuvp422 --to argb --size "$size" --matrix 709
check "the matrix goes with the frames" same first second

bytes '\x00\x00\xFF\x11\x00\xFF\x00\x22\xFF\x00\x00\x33\x80\x80\x80\x44' >four
work_on argb 4x1 four hsv=120:1:1
is "red, green, blue and grey turned" 00ff0011ff0000220000ff3380808044
work_on argb 4x1 four hsv=-240:1:1
is "turned the other way" 00ff0011ff0000220000ff3380808044
work_on argb 4x1 four hsv=0:0:1
is "no saturation" ffffff11ffffff22ffffff3380808044
work_on argb 4x1 four hsv=0:1:0.5
is "half the value" 00007f11007f00227f00003340404044
work_on argb 4x1 four hsv=0:1:4
is "no value above the largest" 0000ff1100ff0022ff000033ffffff44
bytes '\x51\x5A\x51\xF0' >red  # the red of the matrix 601
work_on yuyv 2x1 red hsv=0:0:1
is "no saturation in 4:2:2" eb80eb80
work_on yuyv 2x1 red hsv=0:1:0
is "no value in 4:2:2" 10801080
work_on yuyv 2x1 red hsv=120:1:1
is "red becomes the green of the matrix 601" 90369022
video red host.raw --from yuyv --size 2x1 --op hsv=120:1:1 --matrix 709
check "another matrix, another green" test "$(hex host.raw)" != 90369022

# Several operations in the order in which they are given.
work_on gray8 1x6 rows flip deinterlace=single:top
is "flip first" 3c32281e1414
work_on gray8 1x6 rows deinterlace=single:top flip
is "flip last" 3232291f150a
# 4:2:2 packed stays packed where nothing needs planes.
work_on uyvy "$size" uyvy flip matrix=601-709 deinterlace=single p2i soften
mv host.raw packed
work_on yuyv "$size" yuyv flip matrix=601-709 deinterlace=single p2i soften
video host.raw again --from yuyv --to uyvy --size "$size"
check "a list of operations on uyvy and yuyv" same packed again

summary
