// The luminance plane of a picture, enlarged twice.

#include <TQIPLBaseLibU.h>

#include <cstdio>
#include <vector>

int main() {
    const int width = 360, height = 288;
    std::vector<unsigned char> argb(width * height * 4);
    for (int y = 0; y < height; ++y)
        IPL_FillMemory_C4R(width, 1, width * 4, &argb[y * width * 4],
                           0xFF000000 | y % 256 * 0x10101);

    std::vector<unsigned char> plane(width * height), large(plane.size() * 4);
    IPL_ARGB2LUM_MultiThread(width, height, width * 4, argb.data(), width, plane.data());
    IPL_ZoomLinearMultiThread_8u_C1R(width, height, width, plane.data(), width * 2, height * 2,
                                     width * 2, large.data());

    std::printf("row 101 of the enlarged plane begins with %d\n", large[101 * width * 2]);
    return large[101 * width * 2] == 50 ? 0 : 1;
}
