// Checks of the functions for colours and planes.
#include "functions_host.h"

namespace host {

namespace {

// Both forms, from the same source, leave the same bytes, and not those that stood there.
using PixelForm = void (*)(int, int, int, Byte*, int, Byte*);
void ExpectSameForms(PixelForm plain, PixelForm multiThread, int srcBytes, int dstBytes,
                     const char* what) {
    MakePicture();
    const int width = kWidth * 4 / (srcBytes > 4 ? srcBytes : 4);
    plain(width, kHeight, kWidth * 4, g_picture, kWidth * dstBytes, g_left);
    multiThread(width, kHeight, kWidth * 4, g_picture, kWidth * dstBytes, g_right);
    ExpectSame(g_left, g_right, sizeof g_left, what);
    Check(g_left[0] != 1 || g_left[1] != 1 || g_left[2] != 1 || g_left[3] != 1, what);
}

}  // namespace

void Luminance() {
    Byte pixel[] = {10, 20, 30, 200}, byte = 0;
    int sum = 0;
    IPL_ARGB2LUM(1, 1, 4, pixel, 1, &byte);
    CheckEqual(byte, 22, "IPL_ARGB2LUM");  // 22370 / 1024
    IPL_BGRA_To_Lum32(1, 1, 4, pixel, 1, &sum);
    CheckEqual(sum, 22370, "IPL_BGRA_To_Lum32");
    unsigned int word = 400u << 22 | 300u << 12 | 200u << 2;
    IPL_BGR10b_To_Lum32(1, 1, 4, reinterpret_cast<Byte*>(&word), 1, &sum);
    CheckEqual(sum, 326100, "IPL_BGR10b_To_Lum32");
    IPL_BGR10b_To_Lum_MultiThread(1, 1, 4, reinterpret_cast<Byte*>(&word), 1, &byte);
    CheckEqual(byte, 80, "IPL_BGR10b_To_Lum_MultiThread");  // 81525 / 1024
    unsigned short deep[] = {1000, 2000, 3000};
    IPL_BGR16b_To_Lum32_MultiThread(1, 1, 6, reinterpret_cast<Byte*>(deep), 1, &sum);
    CheckEqual(sum, 2237000, "IPL_BGR16b_To_Lum32_MultiThread");
    ExpectSameForms(IPL_ARGB2LUM, IPL_ARGB2LUM_MultiThread, 4, 1, "IPL_ARGB2LUM_MultiThread");
}

void Packed422() {
    Byte packed[] = {50, 128, 90, 128}, argb[8], back[4] = {};
    IPL_YUYV422_To_ARGB444(2, 1, 4, packed, 8, argb);
    Expect<Byte>(argb, {50, 50, 50, 255, 90, 90, 90, 255}, "IPL_YUYV422_To_ARGB444");
    Byte studio[] = {128, 16, 128, 235};
    IPL_UYVY2ARGB_601(2, 1, 4, studio, 8, argb);
    Expect<Byte>(argb, {0, 0, 0, 255, 255, 255, 255, 255}, "IPL_UYVY2ARGB_601");
    IPL_ARGB2UYVY_709(2, 1, 8, argb, 4, back);
    Expect<Byte>(back, {128, 16, 128, 235}, "IPL_ARGB2UYVY_709");
    std::memset(back, 99, sizeof back);
    IPL_ARGB2UYVY_601(2, 1, 8, argb, 4, back);
    Expect<Byte>(back, {128, 128, 99, 235}, "IPL_ARGB2UYVY_601");
    IPL_UYVY_To_YMultiThread(2, 2, 0, studio, 1, back, 1);
    CheckEqual(back[0], 16, "IPL_UYVY_To_YMultiThread");
    Byte rgb[] = {1, 2, 3};
    IPL_RGB2BGRA(1, 1, 3, rgb, 4, back);
    Expect<Byte>(back, {3, 2, 1, 0}, "IPL_RGB2BGRA");
    ExpectSameForms(IPL_YUYV2ARGB_709, IPL_YUYV2ARGB_709_MultiThread, 2, 4,
                    "IPL_YUYV2ARGB_709_MultiThread");
    ExpectSameForms(IPL_ARGB2YUYV_601, IPL_ARGB2YUYV_601_MultiThread, 4, 2,
                    "IPL_ARGB2YUYV_601_MultiThread");
    ExpectSameForms(IPL_VUYT444_To_ARGB444, IPL_VUYT444_To_ARGB444_MultiThread, 4, 4,
                    "IPL_VUYT444_To_ARGB444_MultiThread");
}

void Planar422() {
    Byte white[] = {255, 255, 255, 0, 0, 0, 0, 0}, planes[4] = {}, argb[8] = {};
    IPL_ARGB_To_YUVP422_601(2, 1, 8, white, planes);
    Expect<Byte>(planes, {235, 16, 128, 128}, "IPL_ARGB_To_YUVP422_601");
    IPL_YUVP422_To_ARGB_709(2, 1, planes, 8, argb);
    Expect<Byte>(argb, {255, 255, 255, 255, 0, 0, 0, 255}, "IPL_YUVP422_To_ARGB_709");
    IPL_YUVP_422_To_ARGB444_MultiThread(2, 1, planes, 8, argb);
    Expect<Byte>(argb, {235, 235, 235, 255, 16, 16, 16, 255},
                 "IPL_YUVP_422_To_ARGB444_MultiThread");
}

void Hsv() {
    float h = -1, s = -1, v = -1;
    IPL_RGB2HSV_32f_32f(0, 255, 0, h, s, v);
    ExpectNear(h, 120, "hue of green");
    ExpectNear(s, 1, "saturation of green");
    ExpectNear(v, 1, "value of green");
    IPL_RGB2HSV_8u_32f(51, 51, 51, h, s, v);
    Check(h == 0 && s == 0, "grey has no hue");
    ExpectNear(v, 0.2f, "value of grey");
    Byte r = 9, g = 9, b = 9;
    IPL_HSV2RGB_32f_8u(240, 1, 1, r, g, b);
    Check(r == 0 && g == 0 && b == 255, "IPL_HSV2RGB_32f_8u");

    Byte red[] = {0, 0, 255, 9}, target[] = {7, 7, 7, 7};
    IPL_BGRA2HSV(1, 1, 4, red, 1, &h, 1, &s, 1, &v);
    Check(h == 0 && s == 1 && v == 1, "IPL_BGRA2HSV");
    IPL_HSV2BGRA(1, 1, 1, &h, 1, &s, 1, &v, 4, target);
    Expect<Byte>(target, {0, 0, 255, 7}, "IPL_HSV2BGRA without alpha");
    float alpha = 0.2f;
    IPL_HSV2BGRA(1, 1, 1, &h, 1, &s, 1, &v, 1, &alpha, 4, target);
    Expect<Byte>(target, {0, 0, 255, 51}, "IPL_HSV2BGRA with alpha");
    std::memset(target, 7, sizeof target);
    IPL_HSV2BGRA_MultiThread(1, 1, 1, &h, 1, &s, 1, &v, 4, target);
    Expect<Byte>(target, {0, 0, 255, 7}, "IPL_HSV2BGRA_MultiThread without alpha");
    IPL_HSV2BGRA_MultiThread(1, 1, 1, &h, 1, &s, 1, &v, 1, &alpha, 4, target);
    Expect<Byte>(target, {0, 0, 255, 51}, "IPL_HSV2BGRA_MultiThread with alpha");
    Byte green[] = {0, 255, 0, 9};
    IPL_BGRA2HSV_8u_C3R(1, 1, 4, green, 4, target);
    Expect<Byte>(target, {85, 255, 255, 0}, "IPL_BGRA2HSV_8u_C3R");
    Byte plain[6] = {}, forms[6] = {}, uyvy[] = {90, 60, 190, 170};
    IPL_UYVY2HSV_8u(2, 1, 4, uyvy, 6, plain, TQ_COLOR_MATRIX_601);
    IPL_UYVY2HSV_8u_MultiThread(2, 1, 4, uyvy, 6, forms, TQ_COLOR_MATRIX_2020);
    ExpectSame(plain, forms, 6, "IPL_UYVY2HSV_8u_MultiThread");
    Check(plain[1] != 0, "IPL_UYVY2HSV_8u");
    float floats[6] = {};
    Byte grey[] = {126, 128, 126, 128};
    IPL_YUYV2HSV_601(2, 1, 4, grey, 6, floats);
    Check(floats[1] < 0.01f && floats[2] > 127 && floats[2] < 129, "IPL_YUYV2HSV_601");
    IPL_HSV2YUYV_601_MultiThread(2, 1, 6, floats, 4, target);
    Expect<Byte>(target, {126, 128, 126, 128}, "IPL_HSV2YUYV_601_MultiThread");
}

void Deep() {
    // Y 64, 128 ... 384, U 512, 516, 520, V 256, 260, 264
    unsigned int v210[32] = {512u | 64u << 10 | 256u << 20, 128u | 516u << 10 | 192u << 20,
                             260u | 256u << 10 | 520u << 20, 320u | 264u << 10 | 384u << 20};
    Byte* words = reinterpret_cast<Byte*>(v210);
    Byte uyvy[12] = {};
    IPL_V210_To_UYVY(6, 1, 128, words, 12, uyvy);
    Expect<Byte>(uyvy, {128, 16, 64, 32, 129, 48, 65, 64, 130, 80, 66, 96}, "IPL_V210_To_UYVY");
    int lum[6] = {};
    IPL_V210_To_Lum32MultiThread(6, 1, 128, words, 6, lum);
    Expect<int>(lum, {64, 128, 192, 256, 320, 384}, "IPL_V210_To_Lum32MultiThread");

    unsigned short y[6] = {}, u[3] = {}, v[3] = {};
    CTQArray<int, int> strides;
    CTQArray<Byte*, Byte*> planes;
    unsigned short* const samples[] = {y, u, v};
    for (int i = 0; i < 3; ++i) {
        strides.Add(i == 0 ? 12 : 6);
        planes.Add(reinterpret_cast<Byte*>(samples[i]));
    }
    IPL_V210_To_YUVP216(6, 1, 128, words, strides, planes);
    Expect<unsigned short>(y, {4096, 8192, 12288, 16384, 20480, 24576}, "Y of 16 bits");
    Expect<unsigned short>(u, {32768, 33024, 33280}, "U of 16 bits");
    Expect<unsigned short>(v, {16384, 16640, 16896}, "V of 16 bits");
    unsigned int back[32] = {};
    IPL_YUVP216_To_V210MultiThread(6, 1, strides, planes, 128, reinterpret_cast<Byte*>(back));
    ExpectSame(back, v210, 16, "IPL_YUVP216_To_V210MultiThread");

    unsigned int tq = 1023u << 22 | 512u << 12 | 4u << 2;
    Byte bgra[] = {9, 9, 9, 9};
    IPL_BGRTQ10b_To_BGRA(1, 1, 4, reinterpret_cast<Byte*>(&tq), 4, bgra);
    Expect<Byte>(bgra, {1, 128, 255, 9}, "IPL_BGRTQ10b_To_BGRA");
}

void Planes() {
    Byte argb[] = {1, 2, 3, 4, 5, 6, 7, 8}, plane[4][2] = {}, back[8] = {};
    CTQArray<int, int> strides;
    CTQArray<Byte*, Byte*> planes;
    for (int i = 0; i < 3; ++i) {
        strides.Add(2);
        planes.Add(plane[i]);
    }
    IPL_SplitColor(TQ_COLOR_ARGB, 2, 1, 8, argb, strides, planes);
    Expect<Byte>(plane[0], {1, 5, 2, 6, 3, 7, 0, 0}, "IPL_SplitColor to three planes");
    IPL_BuildColorMultiThread(TQ_COLOR_ARGB, 2, 1, strides, planes, 8, back);
    Expect<Byte>(back, {1, 2, 3, 255, 5, 6, 7, 255}, "IPL_BuildColorMultiThread of three");
    strides.Add(2);
    planes.Add(plane[3]);
    IPL_SplitColorMultiThread(TQ_COLOR_ARGB, 2, 1, 8, argb, strides, planes);
    Expect<Byte>(plane[3], {4, 8}, "IPL_SplitColorMultiThread to four planes");
    IPL_BuildColor(TQ_COLOR_ARGB, 2, 1, strides, planes, 8, back);
    ExpectSame(back, argb, 8, "IPL_BuildColor of four");
    CheckEqual(strides.GetSize(), 4, "strides in use");
}

void Matrices() {
    // Grey stays; the overloads differ in what they do with the image's other format.
    Byte image[] = {128, 100, 128, 50}, ayuv[8] = {}, coloured[] = {60, 100, 200, 50};
    IPL_YUV601x709(TQ_COLOR_UYVY, 2, 1, 4, image);
    Expect<Byte>(image, {128, 100, 128, 50}, "IPL_YUV601x709 of grey in place");
    IPL_YUV601x709(2, 1, TQ_COLOR_UYVY, 4, image, TQ_COLOR_AYUV, 8, ayuv);
    Expect<Byte>(ayuv, {128, 128, 100, 255, 128, 128, 50, 255}, "IPL_YUV601x709 to AYUV");
    IPL_YUV709x601(TQ_COLOR_UYVY, 2, 1, 4, image);
    Expect<Byte>(image, {128, 100, 128, 50}, "IPL_YUV709x601 of grey in place");
    std::memset(ayuv, 0, sizeof ayuv);
    IPL_YUV709x601(2, 1, TQ_COLOR_UYVY, 4, image, TQ_COLOR_AYUV, 8, ayuv);
    Expect<Byte>(ayuv, {128, 128, 100, 255, 128, 128, 50, 255}, "IPL_YUV709x601 to AYUV");
    Byte other[4];
    std::memcpy(other, coloured, 4);
    IPL_YUV709x2020(TQ_COLOR_UYVY, 2, 1, 4, coloured);
    Check(std::memcmp(other, coloured, 4) != 0, "IPL_YUV709x2020 changes colours");
    IPL_YUV709x2020MultiThread(TQ_COLOR_UYVY, 2, 1, 4, other);
    ExpectSame(other, coloured, 4, "IPL_YUV709x2020MultiThread");
    Byte y[] = {100, 50}, u = 128, v = 128;
    IPL_YUVP_422_709x601(2, 1, 2, y, 1, &u, 1, &v);
    Check(y[0] == 100 && y[1] == 50 && u == 128 && v == 128, "IPL_YUVP_422_709x601 of grey");
}

}  // namespace host
