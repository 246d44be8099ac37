#pragma once

// Networks of comparators, made at compile time: sorting, and merging of sorted lists of which only
// a part is wanted. Included by kernel files only.

#include "frame/simd.h"

namespace {

constexpr int kMaxWires = 128;

// Puts the lower value on one wire and the higher on another; what nobody takes is not computed.
struct Comparator {
    uint8_t low, high;
    bool takesLow, takesHigh;
};

// An ordered list of wires.
struct Wires {
    int count = 0;
    uint8_t at[kMaxWires] = {};

    constexpr void Add(int wire) { at[count++] = static_cast<uint8_t>(wire); }
    // Those at begin, begin + step, ... up to end.
    constexpr Wires Part(int begin, int end, int step) const {
        Wires part;
        for (int i = begin; i < end; i += step) part.Add(at[i]);
        return part;
    }
};

constexpr Wires WiresFrom(int first, int count) {
    Wires wires;
    for (int i = 0; i < count; ++i) wires.Add(first + i);
    return wires;
}

struct Network {
    int count = 0;
    Comparator comparators[512] = {};
    Wires outputs;  // in rising order

    constexpr void Compare(int low, int high) {
        comparators[count++] = {static_cast<uint8_t>(low), static_cast<uint8_t>(high), true, true};
    }

    // Batcher's merge of two sorted lists of any lengths: the lists at odd and those at even places
    // are merged, after which neighbours are out of order at most.
    constexpr Wires Merge(const Wires& a, const Wires& b) {
        if (a.count == 0) return b;
        if (b.count == 0) return a;
        Wires merged;
        if (a.count == 1 && b.count == 1) {
            Compare(a.at[0], b.at[0]);
            merged.Add(a.at[0]);
            merged.Add(b.at[0]);
            return merged;
        }
        const Wires odd = Merge(a.Part(0, a.count, 2), b.Part(0, b.count, 2));
        const Wires even = Merge(a.Part(1, a.count, 2), b.Part(1, b.count, 2));
        merged.Add(odd.at[0]);
        int i = 0;
        for (; i < even.count && i + 1 < odd.count; ++i) {
            Compare(even.at[i], odd.at[i + 1]);
            merged.Add(even.at[i]);
            merged.Add(odd.at[i + 1]);
        }
        if (i < even.count) merged.Add(even.at[i]);
        if (i + 1 < odd.count) merged.Add(odd.at[i + 1]);
        return merged;
    }

    constexpr Wires Sort(const Wires& wires) {
        if (wires.count < 2) return wires;
        const int half = wires.count / 2;
        return Merge(Sort(wires.Part(0, half, 1)), Sort(wires.Part(half, wires.count, 1)));
    }

    // Only the outputs `first` to `last` are wanted.
    constexpr void Keep(int first, int last) {
        outputs = outputs.Part(first, last + 1, 1);
        bool wanted[kMaxWires] = {};
        for (int i = 0; i < outputs.count; ++i) wanted[outputs.at[i]] = true;
        for (int i = count; i-- > 0;) {
            Comparator& c = comparators[i];
            c.takesLow = wanted[c.low];
            c.takesHigh = wanted[c.high];
            wanted[c.low] = wanted[c.high] = c.takesLow || c.takesHigh;
        }
    }
};

constexpr Network SortingNetwork(int count) {
    Network network;
    network.outputs = network.Sort(WiresFrom(0, count));
    return network;
}

// Of the merged list the elements `first` to `last`. The first list comes in on the first wires.
constexpr Network MergingNetwork(int countA, int countB, int first, int last) {
    Network network;
    network.outputs = network.Merge(WiresFrom(0, countA), WiresFrom(countA, countB));
    network.Keep(first, last);
    return network;
}

// The comparators from kBegin to kEnd - 1 of Source::kNetwork.
template <class Source, int kBegin, int kEnd>
[[gnu::always_inline]] inline void Run([[maybe_unused]] U8v* wires) {
    if constexpr (kEnd - kBegin > 1) {
        constexpr int kMiddle = (kBegin + kEnd) / 2;
        Run<Source, kBegin, kMiddle>(wires);
        Run<Source, kMiddle, kEnd>(wires);
    } else if constexpr (kEnd - kBegin == 1) {
        constexpr Comparator c = Source::kNetwork.comparators[kBegin];
        const U8v a = wires[c.low], b = wires[c.high];
        if constexpr (c.takesLow) wires[c.low] = Smaller(a, b);
        if constexpr (c.takesHigh) wires[c.high] = Larger(a, b);
    }
}

}  // namespace
