#pragma once

#include "frame/band.h"

// Band tasks of Y extraction and of RGB/BGRA repacking.

class CZYUV2Y_Task final : public tq::PixelBandTask<unsigned char> {
public:
    int m_nMode = 0;  // 0: YUYV, 1: UYVY, other: nothing
    int m_bHalf = 0;  // not 0: the first luma of every pair
    int Run() override;
};

class CZBGRA2RGB_Task final : public tq::PixelBandTask<unsigned char> {
public:
    int m_nMode = 0;  // 0: IPL_BGRA2RGB, 1: IPL_RGB2BGRA, other: nothing
    // Whether another band stands before and after this one, whose rows may meet its own.
    bool m_bBandBefore = false;
    bool m_bBandAfter = false;
    int Run() override;
};
