#pragma once

#include "frame/band.h"

// Band tasks of HSV in floats. Strides of float images and planes count floats.

namespace tq {

class HsvImageToBytesTask : public CTQIPLTaskBase {
public:
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nSrcStride = 0;
    float* m_pSrc = nullptr;
    int m_nDstStride = 0;
    unsigned char* m_pDst = nullptr;
};

class BytesToHsvPlanesTask : public CTQIPLTaskBase {
public:
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nSrcStride = 0;
    unsigned char* m_pSrc = nullptr;
    int m_nHStride = 0;
    float* m_pH = nullptr;
    int m_nSStride = 0;
    float* m_pS = nullptr;
    int m_nVStride = 0;
    float* m_pV = nullptr;
};

class HsvPlanesToBytesTask : public CTQIPLTaskBase {
public:
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nHStride = 0;
    float* m_pH = nullptr;
    int m_nSStride = 0;
    float* m_pS = nullptr;
    int m_nVStride = 0;
    float* m_pV = nullptr;
    int m_nDstStride = 0;
    unsigned char* m_pDst = nullptr;
};

}  // namespace tq

class CZYUYV2HSVTask_601 final : public tq::PixelBandTask<float> {
public:
    int Run() override;
};

class CZYUYV2HSVTask_709 final : public tq::PixelBandTask<float> {
public:
    int Run() override;
};

class CZHSV2YUYVTask_601 final : public tq::HsvImageToBytesTask {
public:
    int Run() override;
};

class CZHSV2YUYVTask_709 final : public tq::HsvImageToBytesTask {
public:
    int Run() override;
};

class CZYUYV2HSVPTask_601 final : public tq::BytesToHsvPlanesTask {
public:
    int Run() override;
};

class CZYUYV2HSVPTask_709 final : public tq::BytesToHsvPlanesTask {
public:
    int Run() override;
};

class CZHSVP2YUYVTask_601 final : public tq::HsvPlanesToBytesTask {
public:
    int Run() override;
};

class CZHSVP2YUYVTask_709 final : public tq::HsvPlanesToBytesTask {
public:
    int Run() override;
};

class CZBGRA2HSV_Task final : public tq::BytesToHsvPlanesTask {
public:
    int Run() override;
};

class CZHSV2RGBA_Task final : public CTQIPLTaskBase {
public:
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nHStride = 0;
    float* m_pH = nullptr;
    int m_nSStride = 0;
    float* m_pS = nullptr;
    int m_nVStride = 0;
    float* m_pV = nullptr;
    int m_nAlphaStride = 0;
    float* m_pAlpha = nullptr;  // may be null: byte 3 is left alone then
    int m_nDstStride = 0;
    unsigned char* m_pDst = nullptr;
    int Run() override;
};
