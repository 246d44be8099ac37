#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "picture.h"

// PNG files to pictures and back. The sample values go through as they stand in the file: no gamma
// and no colour profile is applied.

namespace tqipl {

// Any PNG: palettes are expanded, 16-bit samples rounded to 8 bits, grey without transparency
// stays grey, every other transparency becomes alpha. Throws HostError for a file that is missing,
// no PNG, damaged, cut short or too large.
Picture ReadPng(const std::filesystem::path& path);

std::vector<uint8_t> EncodePng(const Picture& picture);

void WritePng(const std::filesystem::path& path, const Picture& picture);

}  // namespace tqipl
