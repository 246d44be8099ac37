#pragma once

#include "frame/band.h"

// Band tasks of ARGB to packed 4:2:2.

class CZARGB2YUYVTask_601 final : public tq::PixelBandTask<unsigned char> {
public:
    int Run() override;
};

class CZARGB2YUYVTask_709 final : public tq::PixelBandTask<unsigned char> {
public:
    int Run() override;
};

class CZARGB2UYVYTask_601 final : public tq::PixelBandTask<unsigned char> {
public:
    int Run() override;
};

class CZARGB2UYVYTask_709 final : public tq::PixelBandTask<unsigned char> {
public:
    int Run() override;
};
