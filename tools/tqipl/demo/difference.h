#pragma once

#include "demo/exhibit.h"

namespace tqipl {

inline constexpr int kAmplification = 8;

// The distance of a picture to one that is at least as large, amplified, alpha left out. The remark
// says how large it is; the time is the host's.
Shown ShowDifference(const Picture& before, Picture after);

}  // namespace tqipl
