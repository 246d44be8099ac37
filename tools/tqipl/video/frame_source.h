#pragma once

#include <memory>

#include "video/byte_stream.h"
#include "video/y4m.h"

// Frames from a Y4M stream, or raw ones behind one another.

namespace tqipl {

class FrameSource {
public:
    // Reads the header of a Y4M stream.
    explicit FrameSource(InputStream& input);
    // Raw frames of this stream.
    FrameSource(InputStream& input, const Stream& stream);

    const Stream& Format() const { return m_stream; }
    // Null for raw frames.
    const Y4mHeader* Header() const { return m_header.get(); }

    // False at the end of the stream. Throws HostError if that comes within a frame.
    bool Read(Frame& frame);

private:
    bool ReadFrameLine(Frame& frame);

    InputStream& m_input;
    Stream m_stream;
    std::unique_ptr<Y4mHeader> m_header;
    uint64_t m_count = 0;
};

// Frames to a Y4M stream, or raw ones behind one another.
class FrameSink {
public:
    // `header` is the first line of a Y4M stream; empty for raw frames.
    FrameSink(OutputStream& output, const Stream& stream, const std::string& header);

    void Write(const Frame& frame);

private:
    OutputStream& m_output;
    size_t m_bytes;
    bool m_isY4m;
};

}  // namespace tqipl
