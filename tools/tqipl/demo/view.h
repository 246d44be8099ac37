#pragma once

#include "demo/exhibit.h"

namespace tqipl {

// What the sheet shows of a picture: small enough that a page of many stays light.
Picture MakeView(const Picture& picture, View view);

}  // namespace tqipl
