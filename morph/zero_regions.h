#pragma once

// Regions of zero pixels in masks whose background is 255: their removal, and the seeds that the
// growth of the others starts from.

#include <cstdint>
#include <vector>

#include "morph/labelling_bands.h"
#include "morph/labelling_tasks.h"
#include "morph/runs.h"

namespace tq {

constexpr unsigned char kBackground = 255;

// Whether a mask of this size is worked on at all: an int holds every column and row.
bool HasIntSize(unsigned int width, unsigned int height);

// Sets the regions with at most threshold pixels whose roots are among the runs to kBackground.
// `image` is the first byte of row 0.
void FillSmallZeroRegions(RunVector& runs, unsigned char* image, unsigned int stride,
                          unsigned int threshold);

// Appends the first and the last pixel of each run that a denoised mask still has.
void CollectSeeds(RunVector& runs, const unsigned char* image, unsigned int stride,
                  std::vector<Seed>& seeds);

// Makes the tasks, and labels and denoises a mask with them. Their runs then serve to collect
// seeds.
void DenoiseZeroBands(TaskSet<CZFCCDeNoiseEx2_Task>& tasks, int width, int height,
                      unsigned int stride, unsigned char* mask, unsigned int threshold);

}  // namespace tq
