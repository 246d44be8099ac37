#pragma once

#include "frame/band.h"

// The band task of the MultiThread copies.

class CZMemoryTask final : public tq::PixelBandTask<unsigned char> {
public:
    int m_nMode = 0;  // 0: one byte a pixel, 1: four, 2: two, other: nothing
    int Run() override;
};
