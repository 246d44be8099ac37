#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

// Bytes in order, from and to files, pipes and devices. "-" is the standard input or output. Every
// function throws HostError with the name and the system's reason.

namespace tqipl {

class InputStream {
public:
    explicit InputStream(const std::string& path);
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;
    ~InputStream();

    const std::string& Name() const { return m_name; }
    int Descriptor() const { return m_descriptor; }

    // Fewer bytes than asked for only at the end.
    size_t Read(std::span<uint8_t> bytes);

    enum class Line { kWhole, kNone, kCut, kTooLong };
    // Up to a line end, which is taken and left out. kNone at the end of the stream, kCut if the
    // end comes within the line.
    Line ReadLine(std::string& line, size_t limit);

    uint64_t BytesRead() const { return m_read; }
    // Of all that is to be read, where a regular file tells it.
    std::optional<uint64_t> Length() const { return m_length; }

private:
    size_t ReadSome(uint8_t* data, size_t bytes);
    bool Fill();

    std::string m_name;
    int m_descriptor = -1;
    std::vector<uint8_t> m_buffer;
    size_t m_begin = 0;
    size_t m_end = 0;
    uint64_t m_read = 0;
    std::optional<uint64_t> m_length;
};

class OutputStream {
public:
    // Refuses the file that `input` reads.
    OutputStream(const std::string& path, const InputStream& input);
    OutputStream(const OutputStream&) = delete;
    OutputStream& operator=(const OutputStream&) = delete;
    ~OutputStream();

    // What is written between two calls of EndUnit stays or goes together: where a regular file
    // takes only a part, that part is cut off again.
    void Write(std::span<const uint8_t> bytes);
    void Write(const std::string& text);
    void EndUnit() { m_whole = m_written; }

    void Close();

private:
    [[noreturn]] void Fail(int error);

    std::string m_name;
    int m_descriptor = -1;
    bool m_regular = false;
    uint64_t m_start = 0;
    uint64_t m_written = 0;
    uint64_t m_whole = 0;
};

}  // namespace tqipl
