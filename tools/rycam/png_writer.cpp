#include "png_writer.h"

#include <png.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

namespace rycam {
namespace {

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};

// libpng reports errors through a callback that must not return; it longjmps back into
// WritePng. The text is kept for the caller.
void OnError(png_structp png, png_const_charp message) {
    auto* error = static_cast<std::string*>(png_get_error_ptr(png));
    *error = message;
    png_longjmp(png, 1);
}

void OnWarning(png_structp, png_const_charp) {}

class PngWrite {
  public:
    explicit PngWrite(std::string& error)
        : png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, &error, OnError, OnWarning)),
          info_(png_ != nullptr ? png_create_info_struct(png_) : nullptr) {}
    ~PngWrite() { png_destroy_write_struct(&png_, &info_); }
    PngWrite(const PngWrite&) = delete;
    PngWrite& operator=(const PngWrite&) = delete;

    bool Ready() const { return png_ != nullptr && info_ != nullptr; }
    png_structp png() const { return png_; }
    png_infop info() const { return info_; }

  private:
    png_structp png_;
    png_infop info_;
};

// The writing itself, in a function of its own: nothing with a destructor may live in the
// frame that setjmp returns to.
bool Encode(PngWrite& write, FILE* file, const Picture& picture, png_bytep* rows) {
    if (setjmp(png_jmpbuf(write.png())) != 0)
        return false;
    png_init_io(write.png(), file);
    const int colour = picture.channels == 1 ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB;
    png_set_IHDR(write.png(), write.info(), picture.width, picture.height, picture.bitDepth, colour,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    // Frames are many and large: speed matters more than the last percent of size.
    png_set_compression_level(write.png(), 1);
    png_set_filter(write.png(), PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
    png_write_info(write.png(), write.info());
    if (picture.channels == 3)
        png_set_bgr(write.png());
    if (picture.bitDepth == 16)
        png_set_swap(write.png());  // PNG samples are big-endian
    png_write_image(write.png(), rows);
    png_write_end(write.png(), nullptr);
    return true;
}

}  // namespace

bool WritePng(const std::string& path, const Picture& picture, std::string& error) {
    std::unique_ptr<FILE, FileCloser> file(std::fopen(path.c_str(), "wb"));
    if (file == nullptr) {
        error = std::strerror(errno);
        return false;
    }
    PngWrite write(error);
    if (!write.Ready()) {
        error = "libpng could not start";
        return false;
    }
    const size_t rowBytes = size_t{picture.width} * picture.channels * (picture.bitDepth / 8);
    std::vector<png_bytep> rows(picture.height);
    for (uint32_t y = 0; y < picture.height; ++y)
        rows[y] = const_cast<png_bytep>(picture.pixels.data() + y * rowBytes);
    if (!Encode(write, file.get(), picture, rows.data()))
        return false;
    if (std::fflush(file.get()) != 0) {
        error = std::strerror(errno);
        return false;
    }
    return true;
}

}  // namespace rycam
