#pragma once

// Rows of the report, and what each of them does before it times anything: check the bytes, and
// time a memcpy that moves as many.

#include <cstdint>
#include <functional>
#include <string>

#include "bench/support/frames.h"

namespace tqbench {

struct Row {
    std::string name;
    int64_t items;                       // pixels, tasks or buffers that a call handles
    int64_t bytes;                       // read and written by a call; 0 if it moves no image
    bool threaded;                       // timed by the wall clock, not by the caller's CPU time
    std::function<std::string()> check;  // what is wrong, or nothing; may be empty
    std::function<void()> prepare;       // before each timing; may be empty
    std::function<void()> call;
};

// A row whose check fails prints what is wrong and no number.
void AddRow(Row row);

// The rows so far whose check failed.
int WrongRows();

using Call = std::function<void(uint8_t* src, uint8_t* dst)>;

// A form on dense images of one size.
struct Form {
    std::string name;             // of the plain form; empty if there is none
    std::string multiThreadName;  // empty if there is none
    std::string size;             // as the rows name it
    Size srcSize, dstSize;
    int64_t srcBytes, dstBytes;  // read from the source and written to the destination
    bool hasKernels;             // a row at every level, not one
    // Without a plain form `plain` is the other one: the first check calls it.
    Call plain, multiThread, reference;
    // Only where the MultiThread form has other bytes than the plain one.
    Call multiThreadReference = {};
    // Fills dst before the timing of a form that works in place; empty for any other.
    std::function<void(uint8_t* dst)> fill = {};
};

// The plain form at every level that this machine runs, the MultiThread form at the highest, and
// other libraries that do the same work.
void AddForm(const Form& form);

// AddLabellingPeers: other libraries that find the regions of a mask.
#if defined(TQIPL_BENCH_PEERS)
void AddPeerRows(const Form& form);
void AddLabellingPeers(const std::string& kind, Size size, uint8_t* mask, int64_t runs,
                       const std::function<size_t()>& countRegions);
#else
inline void AddPeerRows(const Form&) {}
inline void AddLabellingPeers(const std::string&, Size, uint8_t*, int64_t,
                              const std::function<size_t()>&) {}
#endif

}  // namespace tqbench
