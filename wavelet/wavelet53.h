#pragma once

// One level of the 5/3 transform and its inverse. Lines are periodic over their whole pairs of
// samples; the last sample of an odd length takes no part. Strides as in IPL_FwdWavelet_53_C1 and
// IPL_InvWavelet_53_C1.
//
// Both directions of the image are sums without rounding, so they may be taken in either order.
// Here the columns come first, all of them at once: they give two rows at a time, which then are
// transformed as lines.
class CZDWT53 {
public:
    virtual ~CZDWT53() {}

    void ForwardImage(int width, int height, int srcStride, const unsigned char* src, int dstStride,
                      int* dst) const;
    void InverseImage(int width, int height, int srcStride, const int* src, int dstStride,
                      unsigned char* dst) const;
};
