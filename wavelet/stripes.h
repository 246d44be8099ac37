#pragma once

namespace tq {

// Unsigned lengths, as the wavelet forms have them, in `count` parts of `length`, of which the last
// takes all that remain; one part where there is less than one for each.
struct Stripes {
    Stripes(unsigned int whole, unsigned int parts)
        : total(whole), count(whole / parts == 0 ? 1 : parts), length(whole / parts) {}
    unsigned int First(unsigned int i) const { return i * length; }
    unsigned int Length(unsigned int i) const { return i + 1 < count ? length : total - First(i); }

    unsigned int total, count, length;
};

}  // namespace tq
