// memcpy of whole ARGB frames: what this machine's memory does in this run. Its vs_memcpy shows how
// steady the run is.

#include <cstring>

#include "bench/families.h"
#include "bench/support/rows.h"

namespace tqbench {

void AddMemcpy() {
    for (const Size size : kSizes) {
        const auto bytes = static_cast<size_t>(size.Pixels() * 4);
        AddRow({.name = "memcpy/" + ToString(size),
                .items = size.Pixels(),
                .bytes = size.Pixels() * 8,
                .threaded = false,
                .check = {},
                .prepare = {},
                .call = [=] { std::memcpy(GetFrames().dst, GetFrames().picture, bytes); }});
    }
}

}  // namespace tqbench
