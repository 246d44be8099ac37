// Images taken apart into planes, and put together again; the luma of 4:2:2 frames.

#include <TQIPLBaseLibU.h>

#include <algorithm>

#include "demo/round_trip.h"
#include "demo/sections.h"
#include "machine.h"
#include "planes.h"

namespace tqipl {

namespace {

// Three planes side by side in one grey picture.
void AddBeside(Planes& planes, unsigned char* picture, int pictureWidth,
               std::initializer_list<int> widths) {
    for (const int width : widths) {
        planes.strides.Add(pictureWidth);
        planes.pointers.Add(picture);
        picture += width;
    }
}

struct SplitOf {
    TQ_COLOR_FORMAT format;
    int pixelBytes;
    Size size;
    Size pictureSize;
    std::vector<uint8_t> frame;  // packed

    void AddPlanes(Planes& planes, unsigned char* picture) const {
        const int first = size.width;
        const int second = format == TQ_COLOR_YUYV ? size.width / 2 : size.width;
        AddBeside(planes, picture, pictureSize.width, {first, second, second});
    }
};

SplitOf ArgbOf(const Picture& source) {
    return {
        TQ_COLOR_ARGB, 4, source.size, {source.size.width * 3, source.size.height}, source.bytes};
}

SplitOf YuyvOf(const Picture& source) {
    const Size size = WholeGroups(source.size, 2);
    SplitOf split{TQ_COLOR_YUYV, 2, size, {size.width * 2, size.height}, {}};
    split.frame.resize(PixelCount(size) * 2);
    IPL_ARGB2YUYV_709(size.width, size.height, source.Stride(), source.Source(), size.width * 2,
                      split.frame.data());
    return split;
}

TimedForm SplitForm(SplitOf& split, bool multiThread) {
    return [&split, multiThread](unsigned char* result) {
        Planes planes;
        split.AddPlanes(planes, result);
        return TimeEither(multiThread, IPL_SplitColor, IPL_SplitColorMultiThread, split.format,
                          split.size.width, split.size.height, split.size.width * split.pixelBytes,
                          split.frame.data(), planes.strides, planes.pointers);
    };
}

Shown ShowSplit(SplitOf split) {
    return MeasurePicture(split.pictureSize, Channels::kGrey, SplitForm(split, false),
                          SplitForm(split, true));
}

// The planes of the split, in the order wanted, to a packed frame again.
Measured MeasureBuild(SplitOf split, bool swapOuter) {
    Picture apart(split.pictureSize, Channels::kGrey);
    SplitForm(split, false)(apart.bytes.data());
    const auto form = [&](bool multiThread) -> TimedForm {
        return [&, multiThread](unsigned char* result) {
            Planes planes;
            split.AddPlanes(planes, apart.Source());
            if (swapOuter) std::swap(planes.pointers.GetAt(0), planes.pointers.GetAt(2));
            return TimeEither(multiThread, IPL_BuildColor, IPL_BuildColorMultiThread, split.format,
                              split.size.width, split.size.height, planes.strides, planes.pointers,
                              split.size.width * split.pixelBytes, result);
        };
    };
    return Measure(split.frame.size(), form(false), form(true));
}

Shown ShowBuildArgb(const Picture& source) {
    Measured measured = MeasureBuild(ArgbOf(source), true);
    Shown shown{Picture(source.size, Channels::kColour), measured.timing, {}};
    shown.picture.bytes = std::move(measured.bytes);
    return shown;
}

Shown ShowBuildYuyv(const Picture& source) {
    const SplitOf split = YuyvOf(source);
    Measured measured = MeasureBuild(split, false);
    Shown shown{Picture(split.size, Channels::kColour), measured.timing, {}};
    shown.remark = measured.bytes == split.frame ? "Every byte of the frame came back."
                                                 : "The frame did NOT come back.";
    IPL_YUYV2ARGB_709(split.size.width, split.size.height, split.size.width * 2,
                      measured.bytes.data(), shown.picture.Stride(), shown.picture.bytes.data());
    return shown;
}

// On one processor the routines take every second luma of a row, whatever is asked for.
Size LumaSize(Size size, bool half) {
    const int width = half || Processors() < 2 ? size.width / 2 : size.width;
    return {width, half ? size.height / 2 : size.height};
}

Shown ShowLuma(const Picture& source, bool half) {
    const SplitOf split = YuyvOf(source);
    const Size size = LumaSize(split.size, half);
    Shown shown = MeasurePicture(
        size, Channels::kGrey,
        [&](unsigned char* result) {
            return TimeOf([&] {
                IPL_YUYV_To_YMultiThread(split.size.width, split.size.height, split.size.width * 2,
                                         const_cast<unsigned char*>(split.frame.data()), size.width,
                                         result, half ? 1 : 0);
            });
        },
        {});
    shown.timing.onlyMultiThread = true;
    return shown;
}

Exhibit Make(const Picture& source, const char* id, const char* title, const char* caption,
             const char* routine, Shown (*show)(const Picture&)) {
    Exhibit exhibit;
    exhibit.id = id;
    exhibit.title = title;
    exhibit.caption = caption;
    exhibit.routine = routine;
    exhibit.make = [&source, show] { return show(source); };
    return exhibit;
}

}  // namespace

std::vector<Exhibit> PlanesExhibits(const Sample& sample) {
    const Picture& source = sample.colour;
    std::vector<Exhibit> exhibits;
    if (!IsTooLarge({source.size.width * 3, source.size.height}))
        exhibits.push_back(Make(source, "split-argb", "Blue, green, red",
                                "The planes of the photograph.", "IPL_SplitColor[MultiThread]",
                                [](const Picture& p) { return ShowSplit(ArgbOf(p)); }));
    exhibits.push_back(Make(source, "build-argb", "Red and blue exchanged",
                            "Built from the planes in another order.",
                            "IPL_BuildColor[MultiThread]", ShowBuildArgb));
    if (source.size.width < 2) return exhibits;
    if (!IsTooLarge({source.size.width * 2, source.size.height}))
        exhibits.push_back(Make(
            source, "split-yuyv", "Luma and chroma", "The planes of a YUYV frame: Y, U, V.",
            "IPL_SplitColor[MultiThread]", [](const Picture& p) { return ShowSplit(YuyvOf(p)); }));
    exhibits.push_back(Make(source, "build-yuyv", "YUYV from its planes", "A 709 frame.",
                            "IPL_BuildColor[MultiThread]", ShowBuildYuyv));
    exhibits.push_back(
        Make(source, "luma", "Luma of YUYV",
             "As it stands in the frame. On one processor the routine gives half the width.",
             "IPL_YUYV_To_YMultiThread", [](const Picture& p) { return ShowLuma(p, false); }));
    if (source.size.height > 1)
        exhibits.push_back(Make(source, "luma-half", "Luma of YUYV, half the size",
                                "The first luma of every pair of every second row.",
                                "IPL_YUYV_To_YMultiThread",
                                [](const Picture& p) { return ShowLuma(p, true); }));
    return exhibits;
}

}  // namespace tqipl
