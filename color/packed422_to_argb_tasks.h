#pragma once

#include "frame/band.h"

// Band tasks of packed 4:2:2 to ARGB.

class CYUYV2ARGBTask final : public tq::PixelBandTask<unsigned char> {
public:
    int Run() override;
};

class CUYVY2ARGBTask final : public tq::PixelBandTask<unsigned char> {
public:
    int Run() override;
};

class CVUYT2ARGBTask final : public tq::PixelBandTask<unsigned char> {
public:
    int Run() override;
};

class CZYUYV2ARGBTask_601 final : public tq::PixelBandTask<unsigned char> {
public:
    int Run() override;
};

class CZUYVY2ARGBTask_601 final : public tq::PixelBandTask<unsigned char> {
public:
    int Run() override;
};

class CZYUYV2ARGBTask_709 final : public tq::PixelBandTask<unsigned char> {
public:
    int Run() override;
};

class CZUYVY2ARGBTask_709 final : public tq::PixelBandTask<unsigned char> {
public:
    int Run() override;
};
