#pragma once

#include "frame/band.h"

// Band tasks of the luminance family.

class CZARGB2LUMTask final : public tq::PixelBandTask<unsigned char> {
public:
    int Run() override;
};

class CZBGR2LUMTask final : public tq::PixelBandTask<unsigned char> {
public:
    int m_nMode = 0;  // 0: IPL_BGR10b_To_Lum, 1: IPL_BGR16b_To_Lum, other: nothing
    int Run() override;
};

class CZBGRA2Lum32 final : public tq::PixelBandTask<int> {
public:
    int Run() override;
};

class CZBGR2LUM32 final : public tq::PixelBandTask<int> {
public:
    int m_nMode = 0;  // 0: IPL_BGR10b_To_Lum32, 1: IPL_BGR16b_To_Lum32, other: nothing
    int Run() override;
};
