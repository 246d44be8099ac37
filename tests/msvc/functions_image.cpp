// Checks of the functions for buffers and images, zooms, masks, filters and wavelets.
#include "functions_host.h"

namespace host {

void Buffers() {
    const int size = 2 << 20;
    Byte* buffer = IPL_Malloc(size);
    Check(buffer != nullptr && reinterpret_cast<uintptr_t>(buffer) % 16 == 0, "IPL_Malloc(int)");
    std::memset(buffer, 0x5A, static_cast<size_t>(size));
    IPL_Free(buffer);
    buffer = IPL_Malloc(size, 1);
    ExpectAll(buffer, static_cast<size_t>(size), 0, "IPL_Malloc(int, int) gives zeros");
    IPL_Free(buffer);
    IPL_Free(nullptr);
    void* manager = IPL_GetMemoryManager();
    Check(manager != nullptr, "IPL_GetMemoryManager");
    IPL_DeletMemoryManager(manager);
}

void ImageMemory() {
    Byte source[16], target[16];
    for (int i = 0; i < 16; ++i) source[i] = static_cast<Byte>(i + 1);
    std::memset(target, 99, sizeof target);
    IPL_Memcpy(target, source, 3);
    Expect<Byte>(target, {1, 2, 3, 99}, "IPL_Memcpy of a block");
    std::memset(target, 99, sizeof target);
    IPL_Memcpy(TQ_COLOR_GRAY8, 2, 2, 4, source, 3, target);
    Expect<Byte>(target, {1, 2, 99, 5, 6, 99}, "IPL_Memcpy by format");
    std::memset(target, 99, sizeof target);
    IPL_MemcpyMultiThread(TQ_COLOR_UYVY, 3, 2, 8, source, 5, target);
    Expect<Byte>(target, {1, 2, 3, 4, 99, 9, 10, 11, 12, 99}, "IPL_MemcpyMultiThread by format");
    std::memset(target, 99, sizeof target);
    IPL_Memcpy_C1R_16u(1, 2, 4, source, 3, target);
    Expect<Byte>(target, {1, 2, 99, 5, 6, 99}, "IPL_Memcpy_C1R_16u");
    IPL_MemcpyInvert_CR4(1, 2, 8, source, 4, target);
    Expect<Byte>(target, {9, 10, 11, 12, 1, 2, 3, 4}, "IPL_MemcpyInvert_CR4");
    IPL_InvertImage_C4R(1, 2, 4, target);
    Expect<Byte>(target, {1, 2, 3, 4, 9, 10, 11, 12}, "IPL_InvertImage_C4R");
    std::memset(target, 99, sizeof target);
    IPL_MemcpyAndPad_C1R(2, 1, 4, source, 6, target, 1, 1, 2, 0);
    Expect<Byte>(target, {1, 1, 2, 2, 2, 99, 1, 1, 2, 2, 2}, "IPL_MemcpyAndPad_C1R");

    // A rectangle by value: with a format, and without one, which is four bytes a pixel.
    std::memset(target, 99, sizeof target);
    IPL_MemcpyIn(TQ_COLOR_UYVY, 4, 1, 8, source, 8, target, TQ_RECT{2, -5, 9, 9}, 0);
    Expect<Byte>(target, {99, 99, 99, 99, 5, 6, 7, 8, 99}, "IPL_MemcpyIn with a format");
    std::memset(target, 99, sizeof target);
    IPL_MemcpyIn(3, 1, 12, source, 12, target, TQ_RECT{1, 0, 2, 1}, 1);
    Expect<Byte>(target, {0, 0, 0, 0, 5, 6, 7, 8, 0, 0, 0, 0, 99}, "IPL_MemcpyIn without");
    std::memset(target, 99, sizeof target);
    IPL_MemcpyOut(3, 1, 12, source, 12, target, TQ_RECT{1, 0, 2, 1}, 0);
    Expect<Byte>(target, {1, 2, 3, 4, 99, 99, 99, 99, 9, 10, 11, 12}, "IPL_MemcpyOut without");

    std::memset(target, 99, sizeof target);
    IPL_ZeroMemory(target, 2);
    Expect<Byte>(target, {0, 0, 99}, "IPL_ZeroMemory of a block");
    std::memset(target, 99, sizeof target);
    IPL_ZeroMemory(TQ_COLOR_AYUV, target, 6);
    Expect<Byte>(target, {0x80, 0x80, 0x10, 0, 99, 99, 99}, "IPL_ZeroMemory of a block by format");
    std::memset(target, 99, sizeof target);
    IPL_ZeroMemory(TQ_COLOR_YUYV, 2, 2, 6, target);
    Expect<Byte>(target, {0x10, 0x80, 0x10, 0x80, 99, 99, 0x10, 0x80, 0x10, 0x80, 99},
                 "IPL_ZeroMemory by rows");
    IPL_BlackMemory(TQ_COLOR_BGR10B, 1, 1, 4, target);
    Expect<Byte>(target, {0, 0, 0, 0xFF}, "IPL_BlackMemory");
    IPL_FillMemory_C1R(2, 1, 4, target, 0xF1);
    IPL_FillMemory_C4R(1, 1, 4, target + 4, 0x81020304ul);
    Expect<Byte>(target, {0xF1, 0xF1, 0, 0xFF, 4, 3, 2, 0x81}, "IPL_FillMemory");

    // A rectangle by reference comes back normalised.
    TQ_RECT rect = {-3, -1, 2, 77};
    IPL_FillMemoryIn_C1R(4, 2, 4, target, rect, 7);
    Expect<Byte>(target, {7, 7, 0, 0xFF, 7, 7, 2, 0x81}, "IPL_FillMemoryIn_C1R");
    Expect<int>(&rect.left, {0, 0, 2, 2}, "a normalised rectangle");
    rect = {1, 0, 2, 1};
    IPL_BlackMemoryOut(TQ_COLOR_ARGB, 2, 1, 8, target, rect);
    Expect<Byte>(target, {0, 0, 0, 0, 7, 7, 2, 0x81}, "IPL_BlackMemoryOut");

    CheckEqual(IPL_PixelRatio(TQ_COLOR_UYVY), 2, "IPL_PixelRatio(TQ_COLOR_FORMAT)");
    CheckEqual(IPL_PixelRatio(32ul), 4, "IPL_PixelRatio(unsigned long)");
    TQ_COLOR_FORMAT format = TQ_COLOR_YUYV;
    CheckEqual(IPL_PixelRatioEx(format), 2, "IPL_PixelRatioEx(TQ_COLOR_FORMAT&)");
    unsigned long number = 4;
    CheckEqual(IPL_PixelRatioEx(number), 4, "IPL_PixelRatioEx(unsigned long&)");
}

using Zoom = void (*)(int, int, int, Byte*, int, int, int, Byte*);
void ExpectZooms(Zoom plain, Zoom multiThread, int channels, const char* what) {
    // A flat picture stays flat, larger and smaller.
    std::memset(g_right, 90, sizeof g_right);
    const int widths[] = {kWidth * 2 + 3, kWidth / 2 - 1};
    for (const int width : widths) {
        const int height = width * kHeight / kWidth;
        std::memset(g_left, 1, sizeof g_left);
        plain(kWidth, kHeight, kWidth * channels, g_right, width, height, width * channels, g_left);
        for (int i = 0; i < width * height * channels; ++i) {
            if (!Check(g_left[i] >= 89 && g_left[i] <= 91, what)) return;
        }
        Check(g_left[width * height * channels] == 1, what);
    }
    if (multiThread == nullptr) return;
    MakePicture();
    const int width = kWidth * 3 / 2;
    plain(kWidth, kHeight, kWidth * channels, g_picture, width, kHeight, width * channels, g_left);
    multiThread(kWidth, kHeight, kWidth * channels, g_picture, width, kHeight, width * channels,
                g_right);
    ExpectSame(g_left, g_right, sizeof g_left, what);
}

void Zooms() {
    Byte pixels[] = {1, 2, 3, 4}, target[8] = {};
    IPL_ZoomNN_8u_C1R(4, 1, 4, pixels, 8, 1, 8, target);
    Expect<Byte>(target, {1, 1, 2, 2, 3, 3, 4, 4}, "IPL_ZoomNN_8u_C1R");
    IPL_ZoomNN_8u_C4R(1, 1, 4, pixels, 2, 1, 8, target);
    Expect<Byte>(target, {1, 2, 3, 4, 1, 2, 3, 4}, "IPL_ZoomNN_8u_C4R");
#define EXPECT_ZOOMS(method, channels)                                     \
    ExpectZooms(IPL_Zoom##method##_8u_C##channels##R,                      \
                IPL_Zoom##method##MultiThread_8u_C##channels##R, channels, \
                "IPL_Zoom" #method "_8u_C" #channels "R")
    EXPECT_ZOOMS(Linear, 1);
    EXPECT_ZOOMS(Linear, 4);
    EXPECT_ZOOMS(LinearCorrect, 1);
    EXPECT_ZOOMS(LinearCorrect, 4);
    EXPECT_ZOOMS(Cubic, 1);
    EXPECT_ZOOMS(Cubic, 4);
    ExpectZooms(IPL_Zoom6Cubic_8u_C1R, IPL_Zoom6CubicMultiThread_8u_C1R, 1, "IPL_Zoom6Cubic");
    ExpectZooms(IPL_Zoom6Cubic_8u_C4R, IPL_Zoom6CubicMultiThread_8u_C4R, 4, "IPL_Zoom6Cubic");
    EXPECT_ZOOMS(CubicCorrect, 1);
    EXPECT_ZOOMS(CubicCorrect, 4);
    EXPECT_ZOOMS(Super, 1);
    EXPECT_ZOOMS(Super, 4);
    EXPECT_ZOOMS(JBI, 1);
    EXPECT_ZOOMS(JBI, 4);
#undef EXPECT_ZOOMS
    // Its forms differ on pictures, by design.
    ExpectZooms(IPL_ZoomTFI_8u_C1R, nullptr, 1, "IPL_ZoomTFI_8u_C1R");
    ExpectZooms(IPL_ZoomTFIMultiThread_8u_C1R, nullptr, 1, "IPL_ZoomTFIMultiThread_8u_C1R");
    ExpectZooms(IPL_ZoomTFI_8u_C4R, nullptr, 4, "IPL_ZoomTFI_8u_C4R");
}

void Morphology() {
    Byte mask[25] = {}, other[25] = {};
    mask[12] = 255;
    IPL_FDilation(5, 5, 5, mask, 0, 1);
    Expect<Byte>(mask + 10, {0, 255, 255, 255, 0}, "IPL_FDilation of radiusX 1");
    IPL_FDilation_MultiThread(5, 5, 5, mask, 5, other, 5, 0);
    Expect<Byte>(other + 20, {0, 255, 255, 255, 0}, "IPL_FDilation_MultiThread to another");
    Expect<Byte>(mask + 20, {0, 0, 0, 0, 0}, "its source");
    IPL_FErosion(5, 5, 5, mask, 0, 1);
    Expect<Byte>(mask + 10, {0, 0, 255, 0, 0}, "IPL_FErosion");
    mask[12] = 7;
    IPL_FErosion_MultiThread(5, 5, 5, mask, 0, 0);
    Expect<Byte>(mask + 10, {0, 0, 255, 0, 0}, "IPL_FErosion_MultiThread in place");
    IPL_Opening(5, 5, 5, mask, 1, 1);
    ExpectAll(mask, 25, 0, "IPL_Opening");
    mask[6] = mask[8] = 255;
    IPL_FClosing_MultiThread(5, 5, 5, mask, 0, 1, 0, 1);
    Expect<Byte>(mask + 5, {255, 255, 255, 255, 255}, "IPL_FClosing_MultiThread in place");
    IPL_FOpening_MultiThread(5, 5, 5, mask, 5, other, 1, 0, 1, 0);
    ExpectAll(other, 25, 0, "IPL_FOpening_MultiThread to another");
    Expect<Byte>(mask + 5, {255, 255, 255, 255, 255}, "its source");
    mask[7] = 0;
    IPL_FClosing_MultiThread(5, 5, 5, mask, 5, other, 0, 1, 0, 1);
    Expect<Byte>(other + 5, {255, 255, 255, 255, 255}, "IPL_FClosing_MultiThread to another");
    other[5] = 0;
    IPL_FOpening_MultiThread(5, 5, 5, other, 0, 1, 0, 0);
    Expect<Byte>(other + 5, {0, 0, 255, 255, 255}, "IPL_FOpening_MultiThread in place");
}

void Labelling() {
    const int64_t blocks = LiveBlocks();
    {
        Byte mask[8 * 64] = {};
        for (int i = 0; i < 64; i += 2) {  // boxes of 2 x 1, and specks of one pixel
            mask[i * 8 + 1] = mask[i * 8 + 2] = 255;
            mask[i * 8 + 6] = 255;
        }
        CTQArray<TQ_RECT, TQ_RECT&> rects;
        TQ_RECT stale = {9, 9, 9, 9};
        rects.Add(stale);
        IPL_FCCLabeling(8, 64, 8, mask, &rects, 1);
        CheckEqual(rects.GetSize(), 32, "IPL_FCCLabeling lists the boxes");
        Expect<int>(&rects.GetAt(31).left, {1, 62, 2, 62}, "the last box");
        CheckEqual(mask[6], 0, "IPL_FCCLabeling clears specks");
        // The host goes on with the storage that the module made, and the other way round.
        for (int i = 0; i < 100; ++i) rects.Add(stale);
        Expect<int>(&rects.GetAt(131).left, {9, 9, 9, 9}, "a box that the host added");
        IPL_FCCLabeling2(8, 64, 8, mask, &rects, 2);
        CheckEqual(rects.GetSize(), 0, "IPL_FCCLabeling2 lists no box");
        ExpectAll(mask, sizeof mask, 0, "IPL_FCCLabeling2 clears boxes");
    }
    CheckEqual(LiveBlocks(), blocks, "blocks of the host's own heap");

    Byte image[16], connect[16];
    std::memset(connect, 1, sizeof connect);
    std::memset(image, 0, sizeof image);
    image[5] = image[10] = 1;
    CTQArray<TQ_RECT, TQ_RECT&> boxes;
    IPL_FCCLabelingEx(4, 4, 4, image, connect, &boxes, 1);
    CheckEqual(boxes.GetSize(), 1, "IPL_FCCLabelingEx");
    Expect<int>(&boxes.GetAt(0).left, {1, 1, 2, 2}, "its box");
    boxes.SetSize(0);

    Byte specks[] = {255, 0, 255, 0, 0, 0};
    IPL_FCCLabelingDeNoiseEx(6, 1, 6, specks, 2);
    Expect<Byte>(specks, {255, 255, 255, 0, 0, 0}, "IPL_FCCLabelingDeNoiseEx");
    IPL_FCCLabelingDeNoise(6, 1, 6, specks, 3);
    ExpectAll(specks, 6, 0, "IPL_FCCLabelingDeNoise");
}

void Growth() {
    Byte guide[25], mask[25];
    std::memset(guide, 0, sizeof guide);
    std::memset(mask, 255, sizeof mask);
    mask[11] = mask[12] = 0;
    IPL_FCCDeNoiseAndGrowth2(5, 5, 5, guide, 5, mask, 1);
    ExpectAll(mask, 25, 0, "IPL_FCCDeNoiseAndGrowth2 grows over the guide");
    std::memset(mask, 255, sizeof mask);
    mask[12] = 0;
    IPL_FCCDeNoiseAndGrowth2(5, 5, 5, guide, 5, mask, 1);
    ExpectAll(mask, 25, 255, "IPL_FCCDeNoiseAndGrowth2 clears specks");
    mask[12] = 0;
    std::memset(guide, 255, sizeof guide);
    IPL_FCCDeNoiseAndGrowth(5, 5, 5, guide, 5, mask, 0);
    ExpectAll(mask, 25, 255, "IPL_FCCDeNoiseAndGrowth clears what the guide does not confirm");
}

void Filters() {
    Byte image[25] = {}, target[25] = {};
    image[12] = 160;
    IPL_Gauss3x3_8u_C1R(5, 5, 5, image, 5, target);
    Expect<Byte>(target + 5, {0, 10, 20, 10, 0, 0, 20, 40, 20, 0}, "IPL_Gauss3x3_8u_C1R");
    IPL_Gauss3x3_8u_C1R(5, 5, 5, image);
    ExpectSame(image, target, 25, "IPL_Gauss3x3_8u_C1R in place");
    IPL_Median3x3_8u_C1R(5, 5, 5, image, 5, target);
    CheckEqual(target[12], 20, "IPL_Median3x3_8u_C1R");
    IPL_Median_8u_C1R(5, 5, 5, image, 5, target, 1);
    CheckEqual(target[12], 20, "IPL_Median_8u_C1R");
    IPL_Average_8u_C1R(5, 5, 5, image, 5, target, 1);
    CheckEqual(target[12], 17, "IPL_Average_8u_C1R");  // 160 / 9
    IPL_Average_8u_C1R(5, 5, 5, image, 1);
    CheckEqual(image[12], 17, "IPL_Average_8u_C1R in place");
    std::memset(image, 100, sizeof image);
    IPL_Bilteral_8u_C1R(5, 5, 5, image, 5, target, 1, 10);
    ExpectAll(target, 25, 100, "IPL_Bilteral_8u_C1R of a flat image");
    image[12] = 250;
    IPL_Bilteral_8u_C1R(5, 5, 5, image, 1, 10);
    CheckEqual(image[12], 250, "IPL_Bilteral_8u_C1R in place keeps an edge");
    IPL_Median_8u_C1R(5, 5, 5, image, 1);
    CheckEqual(image[12], 100, "IPL_Median_8u_C1R in place");

    Byte flat[64], smooth[64] = {};
    std::memset(flat, 100, sizeof flat);
    IPL_BilteralEx_8u_C1R(8, 8, 8, flat, 8, smooth, 1, 10);
    ExpectAll(smooth, 64, 100, "IPL_BilteralEx_8u_C1R of a flat image");
    flat[0] = 5;  // results are held in 16 to 235
    IPL_BilteralEx_8u_C1R(8, 8, 8, flat, 1, 10);
    CheckEqual(flat[0], 16, "IPL_BilteralEx_8u_C1R in place");
    std::memset(flat, 100, sizeof flat);
    std::memset(smooth, 0, sizeof smooth);
    IPL_BilteralExMutiThread_8u_C1R(8, 8, 8, flat, 8, smooth, 1, 10);
    ExpectAll(smooth, 48, 100, "IPL_BilteralExMutiThread_8u_C1R of a flat image");
    std::memset(flat, 5, sizeof flat);
    IPL_BilteralExMutiThread_8u_C1R(8, 8, 8, flat, 1, 10);
    ExpectAll(flat, 48, 16, "IPL_BilteralExMutiThread_8u_C1R in place");
    std::memset(flat, 100, sizeof flat);
    IPL_Gauss_8u_C1R(8, 8, 8, flat, 8, smooth, 1);
    CheckEqual(smooth[27], 100, "IPL_Gauss_8u_C1R inside a flat image");
    Check(smooth[0] < 100 && smooth[0] > 20, "IPL_Gauss_8u_C1R at its corner");
    IPL_Gauss_8u_C1R(8, 8, 8, flat, 1);
    ExpectSame(flat, smooth, 64, "IPL_Gauss_8u_C1R in place");

    Byte field0[] = {10, 30}, field1[] = {20, 40}, frame0[4] = {}, frame1[4] = {};
    IPL_Deinterlace_8u_C1R(1, 2, 1, field0, 1, field1, 1, frame0, 1, frame1);
    Expect<Byte>(frame0, {10, 20, 30, 30}, "first frame of IPL_Deinterlace_8u_C1R");
    Expect<Byte>(frame1, {20, 20, 30, 40}, "second frame");
}

void Psnr() {
    Byte left[] = {10, 20, 30, 40}, right[] = {14, 20, 30, 40};
    ExpectNear(IPL_GetPSNR_8u_C1R(4, 1, 4, left, 4, left), 118.13f, "IPL_GetPSNR of equal planes");
    // sqrt(16 / 4) = 2, and 10 * log10(32512.5)
    ExpectNear(IPL_GetPSNR_8u_C1R(4, 1, 4, left, 4, right), 45.12f, "IPL_GetPSNR_8u_C1R");
    float y = 0, u = 0, v = 0;
    right[1] = 22;
    IPL_GetPSNR_YUYV(2, 1, 4, left, 4, right, y, u, v);
    ExpectNear(y, 43.61f, "IPL_GetPSNR_YUYV of Y");  // sqrt(8)
    ExpectNear(u, 45.12f, "IPL_GetPSNR_YUYV of U");
    ExpectNear(v, 118.13f, "IPL_GetPSNR_YUYV of V");
}

void Wavelets() {
    MakePicture();
    int* bands = reinterpret_cast<int*>(g_left);
    IPL_FwdWavelet_53_C1(kWidth, kHeight, kWidth, g_picture, kWidth, bands);
    IPL_InvWavelet_53_C1(kWidth, kHeight, kWidth, bands, kWidth, g_right);
    ExpectSame(g_right, g_picture, kPixels, "the inverse of the transform");
    Byte flat[64], small[16] = {};
    std::memset(flat, 100, sizeof flat);
    IPL_FwdWavelet_53_C1(8, 8, 8, flat, 8, bands);
    CheckEqual(bands[0], 6400, "the low band of a flat image");
    CheckEqual(bands[4], 0, "its high band");
    IPL_WaveletLL_53_C1(8, 8, 8, flat, 4, small, 16, 90);
    ExpectAll(small, 16, 90, "IPL_WaveletLL_53_C1 limits");
    IPL_WaveletLL_53_C1_16u_MultiThread(4, 4, 8, flat, 4, small, 0x7000, 0x8000);
    ExpectAll(small + 1, 1, 0x70, "IPL_WaveletLL_53_C1_16u_MultiThread limits");
    IPL_WaveletFilter_53_C1(8, 8, 8, flat);
    ExpectAll(flat, 64, 100, "IPL_WaveletFilter_53_C1 of a flat image");
}

void ProgressiveToInterlaced() {
    MakePicture();
    const EVXR_P2I_MODE modes[] = {EVXR_P2I_TOP_FIELD, EVXR_P2I_BOTTOM_FIELD, EVXR_P2I_FRAME};
    for (const EVXR_P2I_MODE mode : modes) {
        std::memset(g_left, 1, sizeof g_left);
        std::memset(g_right, 1, sizeof g_right);
        IPL_P2I_Wavelet53_C1R(kWidth, kHeight, kWidth, g_picture, kWidth, g_left, mode);
        IPL_P2I_Wavelet53_MultiThread_C1R(kWidth, kHeight, kWidth, g_picture, kWidth, g_right,
                                          mode);
        ExpectSame(g_left, g_right, sizeof g_left, "IPL_P2I_Wavelet53_MultiThread_C1R");
        const int rows = mode == EVXR_P2I_FRAME ? kHeight : kHeight / 2;
        Check(g_left[rows * kWidth - 1] >= 16 && g_left[rows * kWidth] == 1, "rows of a mode");
    }
    Byte flat[64], target[64] = {};
    std::memset(flat, 9, sizeof flat);
    IPL_P2I_Wavelet53_C4R(2, 8, 8, flat, 8, target, EVXR_P2I_FRAME);
    ExpectAll(target, 64, 9, "IPL_P2I_Wavelet53_C4R of a flat image");
    IPL_P2I_Wavelet53_C1R(8, 8, 8, flat, 8, target, EVXR_P2I_FRAME);
    ExpectAll(target, 64, 16, "IPL_P2I_Wavelet53_C1R limits");
}

}  // namespace host
