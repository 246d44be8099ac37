// Bytes in order, from and to files, pipes and devices.

#include "video/byte_stream.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "host_error.h"

namespace tqipl {

namespace {

constexpr size_t kBufferBytes = 65536;
constexpr size_t kLargestTransfer = size_t{1} << 30;

[[noreturn]] void FailTo(const char* verb, const std::string& name, int error) {
    throw HostError(std::string("cannot ") + verb + " " + name + ": " +
                    std::generic_category().message(error));
}

// Whether a call that failed is to be made again: at once, or when a descriptor that does not block
// is ready.
bool MayRetry(int error, int descriptor, short events) {
    if (error == EINTR) return true;
    if (error != EAGAIN && error != EWOULDBLOCK) return false;
    pollfd waiting{descriptor, events, 0};
    return poll(&waiting, 1, -1) >= 0 || errno == EINTR;
}

// A file never takes the number of a standard stream that is closed.
int Open(const std::string& path, int flags) {
    const int descriptor = open(path.c_str(), flags | O_CLOEXEC, 0666);
    if (descriptor < 0 || descriptor > STDERR_FILENO) return descriptor;
    const int higher = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    close(descriptor);
    errno = error;
    return higher;
}

}  // namespace

InputStream::InputStream(const std::string& path)
    : m_name(path == "-" ? "the standard input" : path), m_buffer(kBufferBytes) {
    m_descriptor = path == "-" ? STDIN_FILENO : Open(path, O_RDONLY);
    struct stat status;
    if (m_descriptor < 0 || fstat(m_descriptor, &status) != 0) FailTo("read", m_name, errno);
    if (S_ISDIR(status.st_mode)) FailTo("read", m_name, EISDIR);
    if (!S_ISREG(status.st_mode)) return;
    const off_t begin = lseek(m_descriptor, 0, SEEK_CUR);
    if (begin >= 0 && begin <= status.st_size)
        m_length = static_cast<uint64_t>(status.st_size - begin);
}

InputStream::~InputStream() {
    if (m_descriptor > STDERR_FILENO) close(m_descriptor);
}

size_t InputStream::ReadSome(uint8_t* data, size_t bytes) {
    for (;;) {
        const ssize_t found = read(m_descriptor, data, std::min(bytes, kLargestTransfer));
        if (found >= 0) return static_cast<size_t>(found);
        if (!MayRetry(errno, m_descriptor, POLLIN)) FailTo("read", m_name, errno);
    }
}

bool InputStream::Fill() {
    m_begin = 0;
    m_end = ReadSome(m_buffer.data(), m_buffer.size());
    return m_end > 0;
}

size_t InputStream::Read(std::span<uint8_t> bytes) {
    const size_t buffered = std::min(bytes.size(), m_end - m_begin);
    std::copy_n(m_buffer.data() + m_begin, buffered, bytes.data());
    m_begin += buffered;
    size_t filled = buffered;
    while (filled < bytes.size()) {
        const size_t found = ReadSome(bytes.data() + filled, bytes.size() - filled);
        if (found == 0) break;
        filled += found;
    }
    m_read += filled;
    return filled;
}

InputStream::Line InputStream::ReadLine(std::string& line, size_t limit) {
    line.clear();
    for (;;) {
        if (m_begin == m_end && !Fill()) return line.empty() ? Line::kNone : Line::kCut;
        const char c = static_cast<char>(m_buffer[m_begin++]);
        ++m_read;
        if (c == '\n') return Line::kWhole;
        if (line.size() == limit) return Line::kTooLong;
        line += c;
    }
}

OutputStream::OutputStream(const std::string& path, const InputStream& input)
    : m_name(path == "-" ? "the standard output" : path) {
    if (path == "-" && isatty(STDOUT_FILENO) != 0)
        throw UsageError("the standard output is a terminal; send the frames to a file or a pipe");
    m_descriptor = path == "-" ? STDOUT_FILENO : Open(path, O_WRONLY | O_CREAT);
    struct stat status;
    if (m_descriptor < 0 || fstat(m_descriptor, &status) != 0) FailTo("write", m_name, errno);
    struct stat read;
    if (S_ISREG(status.st_mode) && fstat(input.Descriptor(), &read) == 0 &&
        read.st_dev == status.st_dev && read.st_ino == status.st_ino)
        throw HostError("cannot write " + m_name + ": it is the file that is read");
    m_regular = S_ISREG(status.st_mode);
    if (!m_regular) return;
    if (path != "-") {
        if (ftruncate(m_descriptor, 0) != 0) FailTo("write", m_name, errno);
        return;
    }
    const bool appends = (fcntl(m_descriptor, F_GETFL) & O_APPEND) != 0;
    const off_t start = appends ? status.st_size : lseek(m_descriptor, 0, SEEK_CUR);
    if (start < 0) FailTo("write", m_name, errno);
    m_start = static_cast<uint64_t>(start);
}

OutputStream::~OutputStream() {
    if (m_descriptor > STDERR_FILENO) close(m_descriptor);
}

void OutputStream::Fail(int error) {
    // If the cut fails too there is nothing more to be done; the first reason is the one to tell.
    if (m_regular && m_written != m_whole &&
        ftruncate(m_descriptor, static_cast<off_t>(m_start + m_whole)) == 0)
        lseek(m_descriptor, static_cast<off_t>(m_start + m_whole), SEEK_SET);
    FailTo("write", m_name, error);
}

void OutputStream::Write(std::span<const uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written =
            write(m_descriptor, bytes.data(), std::min(bytes.size(), kLargestTransfer));
        if (written < 0 && MayRetry(errno, m_descriptor, POLLOUT)) continue;
        if (written < 0) Fail(errno);
        m_written += static_cast<uint64_t>(written);
        bytes = bytes.subspan(static_cast<size_t>(written));
    }
}

void OutputStream::Write(const std::string& text) {
    Write({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

void OutputStream::Close() {
    const int descriptor = m_descriptor;
    m_descriptor = -1;
    if (close(descriptor) != 0 && errno != EINTR) FailTo("write", m_name, errno);
}

}  // namespace tqipl
