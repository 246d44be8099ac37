// tqipl video: frames from one stream to another, through a list of operations.

#include <csignal>

#include "commands.h"
#include "host_error.h"
#include "video/byte_stream.h"
#include "video/frame_conversion.h"
#include "video/frame_source.h"
#include "video/operations.h"
#include "video/progress.h"

namespace tqipl {

namespace {

constexpr char kY4m[] = "y4m";

const FrameKind& FindKind(const std::string& name) {
    const FrameKind* kind = FindFrameKind(name);
    if (kind == nullptr)
        throw UsageError("unknown format '" + name + "'; known are: y4m, " + FrameKindNames());
    return *kind;
}

Ratio ParseOption(const std::string& option, const std::string& text) {
    Ratio ratio;
    if (!ParseRatio(text, ratio) || !ratio.IsKnown())
        throw UsageError(option + " '" + text +
                         "': write it as a whole number or a ratio, for example 25 or 30000:1001");
    return ratio;
}

Stream RawStream(const VideoOptions& options) {
    Stream stream;
    stream.format = FindKind(options.from).format;
    if (options.size.empty())
        throw UsageError("--from " + options.from +
                         " needs --size WIDTHxHEIGHT: raw frames do not hold their size");
    stream.size = ParseSize(options.size);
    CheckFrameWidth(stream.format, stream.size);
    stream.rate = options.rate.empty() ? Ratio{25, 1} : ParseOption("--rate", options.rate);
    if (!options.aspect.empty()) stream.aspect = ParseOption("--aspect", options.aspect);
    if (!options.interlace.empty()) {
        if (options.interlace.size() != 1 ||
            std::string("ptbm").find(options.interlace) == std::string::npos)
            throw UsageError("--interlace '" + options.interlace +
                             "': known are p, t, b and m, as in Y4M headers");
        stream.interlace = options.interlace[0];
    }
    return stream;
}

void CheckNoRawOptions(const VideoOptions& options) {
    if (!options.size.empty() || !options.rate.empty() || !options.aspect.empty() ||
        !options.interlace.empty())
        throw UsageError(
            "--size, --rate, --aspect and --interlace belong to raw frames, with --from; a Y4M "
            "stream says them itself");
}

FrameSource OpenSource(const VideoOptions& options, InputStream& input) {
    if (options.from != kY4m) return {input, RawStream(options)};
    CheckNoRawOptions(options);
    return FrameSource(input);
}

// What a Y4M stream takes of these frames: the format that keeps the most of them.
FrameFormat Y4mFormatFor(FrameFormat format) {
    if (KindOf(format).y4m != nullptr) return format;
    if (format == FrameFormat::kV210) return FrameFormat::kYuvp210;
    if (format == FrameFormat::kV216) return FrameFormat::kYuvp216;
    return FrameFormat::kYuvp422;
}

// Frames into the first operation, and what each emits into the next.
class Chain {
public:
    Chain(std::vector<OperationPointer> operations, Emit write)
        : m_operations(std::move(operations)), m_write(std::move(write)) {
        for (size_t i = 0; i < m_operations.size(); ++i)
            m_emits.push_back([this, i](Frame& frame) { Run(i + 1, frame); });
    }
    Chain(const Chain&) = delete;
    Chain& operator=(const Chain&) = delete;

    void Take(Frame& frame) { Run(0, frame); }
    void Finish() {
        for (size_t i = 0; i < m_operations.size(); ++i) m_operations[i]->Finish(m_emits[i]);
    }

private:
    void Run(size_t i, Frame& frame) {
        if (i == m_operations.size())
            m_write(frame);
        else
            m_operations[i]->Take(frame, m_emits[i]);
    }

    std::vector<OperationPointer> m_operations;
    std::vector<Emit> m_emits;
    Emit m_write;
};

}  // namespace

std::string VideoFormatList() {
    std::string list = "Formats, all little-endian, rows dense, of raw frames and for --op format:";
    for (const FrameKind& kind : FrameKinds()) {
        list += "\n  " + std::string(kind.name);
        if (*kind.alias != 0) list += std::string(" (or ") + kind.alias + ")";
        list += std::string(": ") + kind.layout;
        if (kind.y4m != nullptr) list += std::string("; C") + kind.y4m + " in Y4M";
    }
    return list;
}

std::string VideoOperationList() { return OperationList(); }

void RunVideo(const VideoOptions& options) {
    const std::string to = options.to.empty() ? options.from : options.to;
    if (to != kY4m) FindKind(to);
    if (!options.matrix.empty() && options.matrix != "601" && options.matrix != "709" &&
        options.matrix != "2020")
        throw UsageError("unknown matrix '" + options.matrix + "'; known are: 601, 709, 2020");
    if (options.from != kY4m) RawStream(options);  // its errors come before those of files
    // Who reads may stop; the write then fails, and is told like any other failure.
    std::signal(SIGPIPE, SIG_IGN);

    InputStream input(options.input);
    FrameSource source = OpenSource(options, input);
    Stream stream = source.Format();
    stream.matrix = options.matrix;

    std::vector<OperationPointer> operations;
    for (const std::string& text : options.operations) AddOperation(text, stream, operations);
    if (stream.hasMask)
        throw UsageError(
            "the mask is put to no use; end the operations on it with --op key or "
            "--op mask");
    const bool isY4m = to == kY4m;
    const FrameFormat format = isY4m ? Y4mFormatFor(stream.format) : FindKind(to).format;
    if (OperationPointer last = ConvertTo(format, stream)) operations.push_back(std::move(last));

    OutputStream output(options.output, input);
    FrameSink sink(output, stream, isY4m ? Y4mHeaderLine(stream, source.Header()) : "");
    uint64_t read = 0;
    uint64_t written = 0;
    VideoProgress progress(options.quiet);
    Chain chain(std::move(operations), [&](Frame& frame) {
        sink.Write(frame);
        ++written;
    });
    for (Frame frame; source.Read(frame);) {
        chain.Take(frame);
        progress.Show(++read, input.BytesRead(), input.Length());
    }
    chain.Finish();
    if (read == 0 && source.Header() == nullptr)
        throw HostError(input.Name() + ": it has no frame");
    output.Close();
    progress.Finish(read, written, stream.size);
}

}  // namespace tqipl
