// Filters against noise, and how much of it they take away.

#include <TQIPLBaseLibU.h>

#include <algorithm>

#include "demo/sections.h"
#include "luminance.h"

namespace tqipl {

namespace {

constexpr int kSigma = 40;

// The same numbers on every run and on every machine.
class Random {
public:
    unsigned int Below(unsigned int end) {
        m_state = m_state * 1664525u + 1013904223u;
        return (m_state >> 16) % end;
    }

private:
    uint32_t m_state = 20;
};

// Nearly normal, with a deviation of about 18 grey levels.
Picture WithNoise(Picture picture) {
    Random random;
    for (uint8_t& value : picture.bytes) {
        int noise = -62;
        for (int i = 0; i < 4; ++i) noise += static_cast<int>(random.Below(32));
        value = static_cast<uint8_t>(std::clamp(value + noise, 0, 255));
    }
    return picture;
}

// One pixel in twenty is black or white.
Picture WithSpecks(Picture picture) {
    Random random;
    for (uint8_t& value : picture.bytes) {
        const unsigned int drawn = random.Below(40);
        if (drawn < 2) value = drawn == 0 ? 0 : 255;
    }
    return picture;
}

using AddNoise = Picture (*)(Picture);

Shown ShowNoise(const Picture& source, AddNoise addNoise) {
    const Picture clean = LuminanceOf(source);
    Shown shown;
    shown.timing.byHost = true;
    shown.timing.plainMs = TimeOf([&] { shown.picture = addNoise(clean); });
    shown.remark = Decibels(Psnr(clean, shown.picture)) + ".";
    return shown;
}

using Filter = void (*)(Size size, unsigned char* src, unsigned char* dst);

struct FilterExhibit {
    const char* id;
    const char* title;
    const char* caption;
    const char* routine;
    AddNoise addNoise;
    Filter filter;
    int undefinedRows;  // at the bottom; the picture goes without them
    bool onlyMultiThread;
};

// The first rows of a grey picture.
Picture TopOf(const Picture& picture, int rows) {
    Picture top({picture.size.width, rows}, Channels::kGrey);
    std::copy_n(picture.bytes.begin(), top.bytes.size(), top.bytes.begin());
    return top;
}

// What a filter leaves unwritten stays as noisy as it was.
Shown ShowFilter(const Picture& source, const FilterExhibit& exhibit) {
    const Picture clean = LuminanceOf(source);
    const Picture noisy = exhibit.addNoise(clean);
    Shown shown = MeasurePicture(
        clean.size, Channels::kGrey,
        [&](unsigned char* result) {
            std::copy(noisy.bytes.begin(), noisy.bytes.end(), result);
            return TimeOf([&] { exhibit.filter(clean.size, noisy.Source(), result); });
        },
        {});
    shown.timing.onlyMultiThread = exhibit.onlyMultiThread;
    const int rows = clean.size.height - exhibit.undefinedRows;
    if (exhibit.undefinedRows != 0) shown.picture = TopOf(shown.picture, rows);
    shown.remark = Decibels(Psnr(TopOf(clean, rows), shown.picture)) + ", noisy " +
                   Decibels(Psnr(TopOf(clean, rows), TopOf(noisy, rows))) + ".";
    return shown;
}

constexpr int kSeparableRadius = 2;

constexpr FilterExhibit kFilters[] = {
    {"bilateral", "Bilateral", "Radius 3, sigma 40: flat parts are smoothed, edges stay.",
     "IPL_Bilteral_8u_C1R", WithNoise,
     [](Size size, unsigned char* src, unsigned char* dst) {
         IPL_Bilteral_8u_C1R(size.width, size.height, size.width, src, size.width, dst, 3, kSigma);
     },
     0, false},
    {"bilateral-separable", "Bilateral, separable",
     "Radius 2, in rows and then in columns; limited to 16 to 235.", "IPL_BilteralEx_8u_C1R",
     WithNoise,
     [](Size size, unsigned char* src, unsigned char* dst) {
         IPL_BilteralEx_8u_C1R(size.width, size.height, size.width, src, size.width, dst,
                               kSeparableRadius, kSigma);
     },
     0, false},
    {"bilateral-threads", "Bilateral, separable, on all processors",
     "A filter with other edges, not the one before on threads; without its last four rows, which "
     "are not defined.",
     "IPL_BilteralExMutiThread_8u_C1R", WithNoise,
     [](Size size, unsigned char* src, unsigned char* dst) {
         IPL_BilteralExMutiThread_8u_C1R(size.width, size.height, size.width, src, size.width, dst,
                                         kSeparableRadius, kSigma);
     },
     2 * kSeparableRadius, true},
    {"gauss-3x3", "Gauss, three by three", "Less noise, softer edges.", "IPL_Gauss3x3_8u_C1R",
     WithNoise,
     [](Size size, unsigned char* src, unsigned char* dst) {
         IPL_Gauss3x3_8u_C1R(size.width, size.height, size.width, src, size.width, dst);
     },
     0, false},
    {"gauss", "Gauss, radius 2", "Wider, and darker at the edges of the image.", "IPL_Gauss_8u_C1R",
     WithNoise,
     [](Size size, unsigned char* src, unsigned char* dst) {
         IPL_Gauss_8u_C1R(size.width, size.height, size.width, src, size.width, dst, 2);
     },
     0, false},
    {"average", "Average, radius 2", "The mean of 25 pixels; the image's edges stay noisy.",
     "IPL_Average_8u_C1R", WithNoise,
     [](Size size, unsigned char* src, unsigned char* dst) {
         IPL_Average_8u_C1R(size.width, size.height, size.width, src, size.width, dst, 2);
     },
     0, false},
    {"median", "Median, radius 2", "The middle one of 25 pixels.", "IPL_Median_8u_C1R", WithNoise,
     [](Size size, unsigned char* src, unsigned char* dst) {
         IPL_Median_8u_C1R(size.width, size.height, size.width, src, size.width, dst, 2);
     },
     0, false},
    {"median-specks", "Median of specks", "The middle one of nine pixels; a speck hardly ever is.",
     "IPL_Median3x3_8u_C1R", WithSpecks,
     [](Size size, unsigned char* src, unsigned char* dst) {
         IPL_Median3x3_8u_C1R(size.width, size.height, size.width, src, size.width, dst);
     },
     0, false},
    {"average-specks", "Average of specks", "The mean of nine pixels: specks become blots.",
     "IPL_Average_8u_C1R", WithSpecks,
     [](Size size, unsigned char* src, unsigned char* dst) {
         IPL_Average_8u_C1R(size.width, size.height, size.width, src, size.width, dst, 1);
     },
     0, false},
};

Exhibit NoiseExhibit(const Picture& source, const char* id, const char* title, const char* caption,
                     AddNoise addNoise) {
    Exhibit exhibit;
    exhibit.id = id;
    exhibit.title = title;
    exhibit.caption = caption;
    exhibit.view = View::kDetail;
    exhibit.make = [&source, addNoise] { return ShowNoise(source, addNoise); };
    return exhibit;
}

}  // namespace

std::vector<Exhibit> FilterExhibits(const Sample& sample) {
    const Picture& source = sample.colour;
    std::vector<Exhibit> exhibits{
        NoiseExhibit(source, "noise", "Noise", "Up to 62 grey levels up or down, mostly few.",
                     WithNoise),
        NoiseExhibit(source, "specks", "Specks", "One pixel in twenty is black or white.",
                     WithSpecks)};
    for (const FilterExhibit& each : kFilters) {
        if (source.size.height <= each.undefinedRows) continue;
        Exhibit exhibit;
        exhibit.id = each.id;
        exhibit.title = each.title;
        exhibit.caption = each.caption;
        exhibit.routine = each.routine;
        exhibit.view = View::kDetail;
        exhibit.make = [&source, &each] { return ShowFilter(source, each); };
        exhibits.push_back(exhibit);
    }
    return exhibits;
}

}  // namespace tqipl
