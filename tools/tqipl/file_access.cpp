// Files, read whole or written whole.

#include "file_access.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "host_error.h"

namespace tqipl {

namespace {

[[noreturn]] void Fail(const std::string& doing, const std::filesystem::path& path, int error) {
    throw HostError("cannot " + doing + " " + path.string() + ": " +
                    std::generic_category().message(error));
}

struct stat StatusOf(const InputFile& file, const std::filesystem::path& path) {
    struct stat status;
    if (fstat(fileno(file.get()), &status) != 0) Fail("read", path, errno);
    return status;
}

// A file of its own beside the target. Whatever was not renamed is removed.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::filesystem::path& target) : m_target(target) {
        for (int attempt = 0;; ++attempt) {
            m_path = target.parent_path() /
                     (".tqipl-" + std::to_string(getpid()) + "-" + std::to_string(attempt));
            m_descriptor = open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (m_descriptor >= 0) return;
            if (errno != EEXIST || attempt == 1000) Fail("write", m_target, errno);
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (m_descriptor >= 0) close(m_descriptor);
        if (!m_renamed) unlink(m_path.c_str());
    }

    void Write(std::span<const uint8_t> bytes) {
        while (!bytes.empty()) {
            const ssize_t written = write(m_descriptor, bytes.data(), bytes.size());
            if (written < 0 && errno == EINTR) continue;
            if (written < 0) Fail("write", m_target, errno);
            bytes = bytes.subspan(static_cast<size_t>(written));
        }
    }

    void TakeTargetName() {
        const int descriptor = m_descriptor;
        m_descriptor = -1;
        if (close(descriptor) != 0) Fail("write", m_target, errno);
        if (rename(m_path.c_str(), m_target.c_str()) != 0) Fail("write", m_target, errno);
        m_renamed = true;
    }

private:
    std::filesystem::path m_target;
    std::filesystem::path m_path;
    int m_descriptor = -1;
    bool m_renamed = false;
};

}  // namespace

InputFile OpenForReading(const std::filesystem::path& path) {
    InputFile file(std::fopen(path.c_str(), "rb"));
    if (!file) Fail("read", path, errno);
    if (S_ISDIR(StatusOf(file, path).st_mode)) Fail("read", path, EISDIR);
    return file;
}

std::vector<uint8_t> ReadExactly(const std::filesystem::path& path, size_t bytes,
                                 const std::string& what) {
    const auto fail = [&](const std::string& found) {
        throw HostError(path.string() + ": " + what + " takes " + std::to_string(bytes) +
                        " bytes, the file has " + found);
    };
    const InputFile file = OpenForReading(path);
    const struct stat status = StatusOf(file, path);
    if (S_ISREG(status.st_mode) && static_cast<uintmax_t>(status.st_size) != bytes)
        fail(std::to_string(status.st_size));
    std::vector<uint8_t> content(bytes);
    const size_t found = std::fread(content.data(), 1, bytes, file.get());
    if (std::ferror(file.get())) Fail("read", path, errno);
    if (found != bytes) fail(std::to_string(found));
    if (std::fgetc(file.get()) != EOF) fail("more");
    return content;
}

void WriteWhole(const std::filesystem::path& path, std::span<const uint8_t> bytes) {
    std::error_code ignored;
    // Through a link, so that the link stays one.
    const std::filesystem::path target = std::filesystem::is_symlink(path, ignored)
                                             ? std::filesystem::weakly_canonical(path, ignored)
                                             : path;
    // A rename would put a plain file in the place of a device or a pipe.
    struct stat status;
    if (stat(target.c_str(), &status) == 0 && !S_ISREG(status.st_mode))
        throw HostError("cannot write " + path.string() + ": it is no regular file");
    TemporaryFile file(target);
    file.Write(bytes);
    file.TakeTargetName();
}

void MakeFolder(const std::filesystem::path& path) {
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (!error && !std::filesystem::is_directory(path, error) && !error)
        error = std::make_error_code(std::errc::not_a_directory);
    if (error) Fail("make the folder", path, error.value());
}

}  // namespace tqipl
