#pragma once

#include <tqipl/types.h>

#include "frame/band.h"

// Band tasks of the change of colour matrix.

namespace tq {

// The fields of the tasks of one layout, in this order.
class PackedMatrixTask : public CTQIPLTaskBase {
public:
    TQ_COLOR_FORMAT m_nFormat = TQ_COLOR_FORMAT{};
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nStride = 0;
    unsigned char* m_pImage = nullptr;
};

class PlanarMatrixTask : public CTQIPLTaskBase {
public:
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nYStride = 0;
    int m_nUStride = 0;
    int m_nVStride = 0;
    unsigned char* m_pY = nullptr;
    unsigned char* m_pU = nullptr;
    unsigned char* m_pV = nullptr;
};

}  // namespace tq

class CYUV601To709Task final : public tq::PackedMatrixTask {
public:
    int Run() override;
};

class CYUV709To601Task final : public tq::PackedMatrixTask {
public:
    int Run() override;
};

class CYUV2020To709Task final : public tq::PackedMatrixTask {
public:
    int Run() override;
};

class CYUV709To2020Task final : public tq::PackedMatrixTask {
public:
    int Run() override;
};

class CColor601x709Task_YUVP422 final : public tq::PlanarMatrixTask {
public:
    int Run() override;
};

class CColor709x601Task_YUVP422 final : public tq::PlanarMatrixTask {
public:
    int Run() override;
};

class CColor709x2020Task_YUVP422 final : public tq::PlanarMatrixTask {
public:
    int Run() override;
};

class CColor2020x709Task_YUVP422 final : public tq::PlanarMatrixTask {
public:
    int Run() override;
};
