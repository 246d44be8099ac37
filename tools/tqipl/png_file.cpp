// PNG files to pictures and back.

#include "png_file.h"

#include <png.h>

#include <csetjmp>
#include <cstdio>
#include <new>

#include "file_access.h"
#include "host_error.h"

// libpng reports an error with longjmp to the setjmp of the running step. A step therefore holds no
// object with a destructor, and returns false when libpng gave up.

namespace tqipl {

namespace {

constexpr size_t kSignatureBytes = 8;

struct PngError {
    char text[200] = "";
};

void OnError(png_structp png, png_const_charp message) {
    auto* error = static_cast<PngError*>(png_get_error_ptr(png));
    std::snprintf(error->text, sizeof error->text, "%s", message);
    png_longjmp(png, 1);
}

void OnWarning(png_structp, png_const_charp) {}

void ReadBytes(png_structp png, png_bytep to, size_t count) {
    auto* file = static_cast<std::FILE*>(png_get_io_ptr(png));
    if (std::fread(to, 1, count, file) != count) png_error(png, "the file ends too early");
}

class PngReader {
public:
    explicit PngReader(std::FILE* file) {
        m_png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &m_error, OnError, OnWarning);
        m_info = m_png ? png_create_info_struct(m_png) : nullptr;
        if (!m_info) {
            png_destroy_read_struct(&m_png, nullptr, nullptr);
            throw std::bad_alloc();
        }
        png_set_read_fn(m_png, file, ReadBytes);
        png_set_sig_bytes(m_png, kSignatureBytes);
        png_set_user_limits(m_png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);  // CheckSize limits it
    }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;
    ~PngReader() { png_destroy_read_struct(&m_png, &m_info, nullptr); }

    bool ReadHeader() {
        if (setjmp(png_jmpbuf(m_png))) return false;
        png_read_info(m_png, m_info);
        m_size = {static_cast<int>(png_get_image_width(m_png, m_info)),
                  static_cast<int>(png_get_image_height(m_png, m_info))};
        const int colourType = png_get_color_type(m_png, m_info);
        const bool alpha = (colourType & PNG_COLOR_MASK_ALPHA) != 0 ||
                           png_get_valid(m_png, m_info, PNG_INFO_tRNS) != 0;
        const bool grey = (colourType & PNG_COLOR_MASK_COLOR) == 0;
        m_channels = alpha ? Channels::kColourAlpha : grey ? Channels::kGrey : Channels::kColour;
        return true;
    }

    // After ReadHeader: the rows in the picture's layout, and the rest of the file.
    bool ReadRows(uint8_t* pixels, size_t stride) {
        if (setjmp(png_jmpbuf(m_png))) return false;
        png_set_expand(m_png);
        png_set_scale_16(m_png);
        if (m_channels != Channels::kGrey) {
            png_set_gray_to_rgb(m_png);
            png_set_bgr(m_png);
        }
        if (m_channels == Channels::kColour) png_set_filler(m_png, 0xFF, PNG_FILLER_AFTER);
        const int passes = png_set_interlace_handling(m_png);
        png_read_update_info(m_png, m_info);
        if (png_get_rowbytes(m_png, m_info) != stride) png_error(m_png, "unknown row layout");
        for (int pass = 0; pass < passes; ++pass)
            for (int y = 0; y < m_size.height; ++y)
                png_read_row(m_png, pixels + static_cast<size_t>(y) * stride, nullptr);
        png_read_end(m_png, nullptr);
        return true;
    }

    Size PictureSize() const { return m_size; }
    Channels PictureChannels() const { return m_channels; }
    std::string ErrorText() const { return m_error.text; }

private:
    PngError m_error;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
    Size m_size;
    Channels m_channels = Channels::kColour;
};

void AppendBytes(png_structp png, png_bytep from, size_t count) {
    auto* file = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
    bool appended = true;
    try {
        file->insert(file->end(), from, from + count);
    } catch (const std::bad_alloc&) {
        appended = false;  // no exception may pass through libpng
    }
    if (!appended) png_error(png, "out of memory");
}

class PngWriter {
public:
    explicit PngWriter(std::vector<uint8_t>& file) {
        m_png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &m_error, OnError, OnWarning);
        m_info = m_png ? png_create_info_struct(m_png) : nullptr;
        if (!m_info) {
            png_destroy_write_struct(&m_png, nullptr);
            throw std::bad_alloc();
        }
        png_set_write_fn(m_png, &file, AppendBytes, nullptr);
    }
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;
    ~PngWriter() { png_destroy_write_struct(&m_png, &m_info); }

    bool Write(const Picture& picture) {
        if (setjmp(png_jmpbuf(m_png))) return false;
        const int colourType = picture.channels == Channels::kGrey     ? PNG_COLOR_TYPE_GRAY
                               : picture.channels == Channels::kColour ? PNG_COLOR_TYPE_RGB
                                                                       : PNG_COLOR_TYPE_RGBA;
        png_set_IHDR(m_png, m_info, static_cast<png_uint_32>(picture.size.width),
                     static_cast<png_uint_32>(picture.size.height), 8, colourType,
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(m_png, m_info);
        if (picture.channels != Channels::kGrey) png_set_bgr(m_png);
        if (picture.channels == Channels::kColour) png_set_filler(m_png, 0, PNG_FILLER_AFTER);
        const size_t stride = static_cast<size_t>(picture.Stride());
        for (int y = 0; y < picture.size.height; ++y)
            png_write_row(m_png, picture.bytes.data() + static_cast<size_t>(y) * stride);
        png_write_end(m_png, m_info);
        return true;
    }

    std::string ErrorText() const { return m_error.text; }

private:
    PngError m_error;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
};

}  // namespace

Picture ReadPng(const std::filesystem::path& path) {
    const InputFile file = OpenForReading(path);
    png_byte signature[kSignatureBytes];
    if (std::fread(signature, 1, kSignatureBytes, file.get()) != kSignatureBytes ||
        png_sig_cmp(signature, 0, kSignatureBytes) != 0)
        throw HostError(path.string() + ": not a PNG file");

    PngReader reader(file.get());
    const auto fail = [&] {
        throw HostError(path.string() + ": damaged PNG file: " + reader.ErrorText());
    };
    if (!reader.ReadHeader()) fail();
    try {
        CheckSize(reader.PictureSize());
    } catch (const HostError& error) {
        throw HostError(path.string() + ": " + error.what());
    }
    Picture picture(reader.PictureSize(), reader.PictureChannels());
    if (!reader.ReadRows(picture.bytes.data(), static_cast<size_t>(picture.Stride()))) fail();
    return picture;
}

std::vector<uint8_t> EncodePng(const Picture& picture) {
    std::vector<uint8_t> file;
    PngWriter writer(file);
    if (!writer.Write(picture)) throw HostError("cannot encode a PNG file: " + writer.ErrorText());
    return file;
}

void WritePng(const std::filesystem::path& path, const Picture& picture) {
    WriteWhole(path, EncodePng(picture));
}

}  // namespace tqipl
