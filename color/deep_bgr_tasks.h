#pragma once

#include "color/plane_arrays.h"
#include "frame/band.h"

// Band tasks of the deep BGR formats.

class CZBGRTQ10btoBGRA_Task final : public tq::PixelBandTask<unsigned char> {
public:
    int m_nMode = 0;  // 0: IPL_BGRTQ10b_To_BGRA, 1: IPL_BGRTQ10b_To_BGRTQ16b, other: nothing
    int Run() override;
};

class CZBGRTQ16btoBGRA_Task final : public tq::PixelBandTask<unsigned char> {
public:
    int m_nMode = 0;  // 0: IPL_BGRTQ16b_To_BGRA, 1: IPL_BGRTQ16b_To_BGRTQ10b, other: nothing
    int Run() override;
};

class CZBGR10b_To_BGRA16b_Task final : public tq::PackedToPlanesTask {
public:
    int Run() override;
};

class CZBGR16b_To_BGRA16b_Task final : public tq::PackedToPlanesTask {
public:
    int Run() override;
};

class CZBGRA16b_To_BGR10b_Task final : public tq::PlanesToPackedTask {
public:
    int Run() override;
};

class CZBGRA16b_To_BGR16b_Task final : public tq::PlanesToPackedTask {
public:
    int Run() override;
};
