// Frames from and to byte streams.

#include "video/frame_source.h"

#include "host_error.h"

namespace tqipl {

FrameSource::FrameSource(InputStream& input) : m_input(input) {
    std::string line;
    switch (input.ReadLine(line, kLongestY4mLine)) {
        case InputStream::Line::kNone:
            throw HostError(input.Name() + ": it is empty; a Y4M stream begins with a header");
        case InputStream::Line::kWhole:
            break;
        default:
            // Other kinds of files have few line ends; what they are not is the better news.
            ParseY4mHeader(input.Name(), line.substr(0, line.find(' ')) + " W2 H2 C422");
            throw HostError(input.Name() + ": the Y4M header has no end");
    }
    m_header = std::make_unique<Y4mHeader>(ParseY4mHeader(input.Name(), line));
    m_stream = m_header->stream;
}

FrameSource::FrameSource(InputStream& input, const Stream& stream)
    : m_input(input), m_stream(stream) {}

bool FrameSource::ReadFrameLine(Frame& frame) {
    const auto fail = [&](const std::string& what) {
        throw HostError(m_input.Name() + ": " + what + " before frame " +
                        std::to_string(m_count + 1));
    };
    std::string line;
    const InputStream::Line state = m_input.ReadLine(line, kLongestY4mLine);
    if (state == InputStream::Line::kNone) return false;
    if (state == InputStream::Line::kCut) fail("the stream ends within the line");
    const bool isFrame = line == "FRAME" || line.starts_with("FRAME ");
    if (state != InputStream::Line::kWhole || !isFrame) fail("there is no line FRAME");
    frame.parameters = line.substr(5);
    return true;
}

bool FrameSource::Read(Frame& frame) {
    if (m_header && !ReadFrameLine(frame)) return false;
    frame.Fit(m_stream.format, m_stream.size);
    const size_t bytes = frame.bytes.size() - 1;
    const size_t found = m_input.Read({frame.bytes.data(), bytes});
    if (found == 0 && !m_header) return false;
    if (found != bytes)
        throw HostError(m_input.Name() + ": the stream ends within frame " +
                        std::to_string(m_count + 1) + ", which has " + std::to_string(found) +
                        " of " + std::to_string(bytes) + " bytes");
    ++m_count;
    return true;
}

FrameSink::FrameSink(OutputStream& output, const Stream& stream, const std::string& header)
    : m_output(output), m_bytes(FrameBytes(stream.format, stream.size)), m_isY4m(!header.empty()) {
    if (m_isY4m) m_output.Write(header + "\n");
    m_output.EndUnit();
}

void FrameSink::Write(const Frame& frame) {
    if (m_isY4m) m_output.Write("FRAME" + frame.parameters + "\n");
    m_output.Write({frame.bytes.data(), m_bytes});
    m_output.EndUnit();
}

}  // namespace tqipl
