// What the sheet shows of a picture.

#include "demo/view.h"

#include <TQIPLBaseLibU.h>

#include <algorithm>
#include <utility>

namespace tqipl {

namespace {

constexpr int kLongestSide = 480;
constexpr Size kDetail{320, 240};

Picture Scale(const Picture& picture, Size size) {
    Picture scaled(size, picture.channels);
    (picture.IsGrey() ? IPL_ZoomLinearMultiThread_8u_C1R : IPL_ZoomLinearMultiThread_8u_C4R)(
        picture.size.width, picture.size.height, picture.Stride(), picture.Source(), size.width,
        size.height, scaled.Stride(), scaled.bytes.data());
    return scaled;
}

int LongestSide(const Picture& picture) {
    return std::max(picture.size.width, picture.size.height);
}

// Linear zoom skips pixels in a strong reduction; halving first keeps them all.
Picture Reduce(Picture picture) {
    while (LongestSide(picture) >= kLongestSide * 2)
        picture = Scale(
            picture, {std::max(picture.size.width / 2, 1), std::max(picture.size.height / 2, 1)});
    const int side = LongestSide(picture);
    if (side <= kLongestSide) return picture;
    return Scale(picture, {std::max(picture.size.width * kLongestSide / side, 1),
                           std::max(picture.size.height * kLongestSide / side, 1)});
}

Picture Crop(const Picture& picture) {
    const Size size{std::min(picture.size.width, kDetail.width),
                    std::min(picture.size.height, kDetail.height)};
    Picture detail(size, picture.channels);
    unsigned char* from = picture.Source() +
                          (picture.size.height - size.height) / 2 * picture.Stride() +
                          (picture.size.width - size.width) / 2 * picture.PixelBytes();
    IPL_Memcpy_C1R(detail.Stride(), size.height, picture.Stride(), from, detail.Stride(),
                   detail.bytes.data());
    return detail;
}

}  // namespace

Picture MakeView(const Picture& picture, View view) {
    return view == View::kDetail ? Crop(picture) : Reduce(picture);
}

}  // namespace tqipl
