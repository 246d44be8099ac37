#pragma once

#include <tqipl/types.h>

#include "color/plane_arrays.h"
#include "frame/band.h"

// Band tasks of splitting images into planes and building them again.

// A band of an image and its planes, with arrays of its own.
class CImageSplit {
public:
    virtual ~CImageSplit() {}
    TQ_COLOR_FORMAT m_nFormat = TQ_COLOR_FORMAT{};
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nStride = 0;
    unsigned char* m_pImage = nullptr;
    tq::StrideArray m_strides;
    tq::PlaneArray m_planes;
};

class CImageBuild {
public:
    virtual ~CImageBuild() {}
    TQ_COLOR_FORMAT m_nFormat = TQ_COLOR_FORMAT{};
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nStride = 0;
    unsigned char* m_pImage = nullptr;
    tq::StrideArray m_strides;
    tq::PlaneArray m_planes;
};

class CFunImageTask final : public CTQIPLTaskBase {
public:
    int m_nMode = 0;  // 0: IPL_SplitColor of m_split, 1: IPL_BuildColor of m_build, other: nothing
    CImageSplit m_split;
    CImageBuild m_build;
    int Run() override;
};
