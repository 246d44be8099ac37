#pragma once

namespace tqipl {

// The sheet's style sheet and script, each for an element of its own in the page.
extern const char* const kSheetStyle;
extern const char* const kSheetScript;

}  // namespace tqipl
