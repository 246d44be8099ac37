#pragma once

#include "color/plane_arrays.h"
#include "frame/band.h"

// Band tasks of V210 and V216.

class CZV210toBGRA_Task final : public tq::PixelBandTask<unsigned char> {
public:
    int m_nMode = 0;  // 0: IPL_V210_To_BGRA_601, 1: IPL_V210_To_BGRA_709, other: nothing
    int Run() override;
};

class CZV216toBGRA_Task final : public tq::PixelBandTask<unsigned char> {
public:
    int m_nMode = 0;  // 0: IPL_V216_To_BGRA_601, 1: IPL_V216_To_BGRA_709, other: nothing
    int Run() override;
};

class CZV210toLum32_Task final : public tq::PixelBandTask<int> {
public:
    int Run() override;
};

class CZV216toLum32_Task final : public tq::PixelBandTask<int> {
public:
    int Run() override;
};

class CZV210toYUVP216_Task final : public tq::PackedToPlanesTask {
public:
    int Run() override;
};

class CZV216toYUVP216_Task final : public tq::PackedToPlanesTask {
public:
    int Run() override;
};

class CZYUVP216toV210_Task final : public tq::PlanesToPackedTask {
public:
    int Run() override;
};

class CZYUVP216toV216_Task final : public tq::PlanesToPackedTask {
public:
    int Run() override;
};
