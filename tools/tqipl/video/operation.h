#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "video/frame_format.h"

namespace tqipl {

using Emit = std::function<void(Frame& frame)>;

// A step between input and output. Whoever is given a frame may change it, and take its memory in
// exchange for other.
class Operation {
public:
    virtual ~Operation() = default;
    // Emits any number of frames, none included.
    virtual void Take(Frame& frame, const Emit& emit) = 0;
    // After the last frame.
    virtual void Finish(const Emit&) {}
};

using OperationPointer = std::unique_ptr<Operation>;

// An operation of one frame at a time: change(Frame&).
template <class Change> class EachFrame : public Operation {
public:
    explicit EachFrame(Change change) : m_change(std::move(change)) {}
    void Take(Frame& frame, const Emit& emit) override {
        m_change(frame);
        emit(frame);
    }

private:
    Change m_change;
};

template <class Change> OperationPointer ForEachFrame(Change change) {
    return std::make_unique<EachFrame<Change>>(std::move(change));
}

}  // namespace tqipl
