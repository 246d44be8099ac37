// A 1920x1080 YUYV frame, studio range, BT.709, to ARGB on all processors.

#include <TQIPLBaseLibU.h>

#include <cstdio>
#include <vector>

int main() {
    const int width = 1920, height = 1080;
    std::vector<unsigned char> yuyv(width * height * 2), argb(width * height * 4);
    // 75 % grey: luma 180, chroma 128.
    IPL_FillMemory_C4R(width / 2, height, width * 2, yuyv.data(), 0x80B480B4);

    IPL_YUYV2ARGB_709_MultiThread(width, height, width * 2, yuyv.data(), width * 4, argb.data());

    std::printf("blue %d, green %d, red %d, alpha %d\n", argb[0], argb[1], argb[2], argb[3]);
    return argb[0] == 191 && argb[3] == 255 ? 0 : 1;
}
