#include "png_file.h"

#include <png.h>

#include <algorithm>
#include <csetjmp>

inline namespace tvmath {
namespace {

// What libpng said last; it leaves by a jump, so this is no string.
struct png_failure {
    char words[100] = "";
};

[[noreturn]] void fail(png_structp png, png_const_charp words) {
    auto* const failure = static_cast<png_failure*>(png_get_error_ptr(png));
    std::size_t n = 0;
    for (; n + 1 < sizeof failure->words && words[n] != '\0'; ++n)
        failure->words[n] = words[n] >= ' ' && words[n] <= '~' ? words[n] : '?';
    failure->words[n] = '\0';
    png_longjmp(png, 1);
}

void ignore(png_structp, png_const_charp) {}

// Makes calls of libpng; false when one of them failed. The jump passes this function and `calls`, and
// neither may hold an object with a destructor.
template <class steps>
bool succeeds(png_structp png, steps const& calls) {
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    calls();
    return true;
}

void supply(png_structp png, png_bytep to, std::size_t count) {
    if (!static_cast<byte_source*>(png_get_io_ptr(png))->take(to, count)) png_error(png, "it ends too soon");
}

// How the pixels of a PNG lie in the bytes of a row, once unpacked to whole bytes, and what they mean.
struct pixel_layout {
    unsigned int width = 0, height = 0;
    unsigned int white = 0, channels = 1;  // white: the greatest value of a channel
    bool has_color = false, has_palette = false, interlaced = false;
    std::vector<double> palette;  // grey of each entry
};

// In integers, so that white is 1 and a grey pixel keeps its value.
double luma(unsigned int red, unsigned int green, unsigned int blue, unsigned int white) {
    return (2126.0 * red + 7152.0 * green + 722.0 * blue) / (10000.0 * white);
}

// Writes the greys of `count` pixels to every `step`-th place of `to`. False for an index beyond the palette.
bool set_greys(pixel_layout const& layout, unsigned char const* from, unsigned int count, double* to,
               unsigned int step) {
    bool const wide = layout.white > 255;
    std::size_t const stride = std::size_t{layout.channels} << (wide ? 1 : 0);
    for (unsigned int i = 0; i < count; ++i, from += stride, to += step) {
        auto const value = [from, wide](unsigned int channel) -> unsigned int {
            return wide ? 256u * from[2 * channel] + from[2 * channel + 1] : from[channel];
        };
        if (layout.has_palette) {
            if (from[0] >= layout.palette.size()) return false;
            *to = layout.palette[from[0]];
        } else {
            *to = layout.has_color ? luma(value(0), value(1), value(2), layout.white)
                                   : static_cast<double>(value(0)) / layout.white;
        }
    }
    return true;
}

// The pixels that one pass of an interlaced picture brings: x, x + dx, ... of the rows y, y + dy, ...
struct pixel_grid {
    unsigned int x, dx, y, dy;
};
constexpr pixel_grid all_pixels = {0, 1, 0, 1};
constexpr pixel_grid adam7[] = {{0, 8, 0, 8}, {4, 8, 0, 8}, {0, 4, 4, 8}, {2, 4, 0, 4},
                                {0, 2, 2, 4}, {1, 2, 0, 2}, {0, 1, 1, 2}};

class png_reader {
public:
    explicit png_reader(byte_source& source) : source_(source) {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &failure_, fail, ignore);
        if (png_) info_ = png_create_info_struct(png_);
    }
    ~png_reader() { png_destroy_read_struct(&png_, &info_, nullptr); }
    png_reader(png_reader const&) = delete;
    png_reader& operator=(png_reader const&) = delete;

    bool read(image& out, std::string& reason) {
        if (!info_ || !read_header()) return damaged(reason);
        if (!settle_size(layout_.width, layout_.height, source_, reason)) return false;
        image picture = rows_to_come(layout_.height);
        if (!start_rows() || !read_rows(picture)) return damaged(reason);
        // Only behind this is the last row, too, known to be what was written.
        if (!succeeds(png_, [this] { png_read_end(png_, nullptr); })) return damaged(reason);
        out = picture;
        return true;
    }

private:
    bool damaged(std::string& reason) const {
        reason = source_.trouble();
        if (reason.empty()) reason = std::string("is a damaged PNG: ") + failure_.words;
        return false;
    }

    bool read_header() {
        return succeeds(png_, [this] {
            png_set_read_fn(png_, &source_, supply);
            // What is larger than we read is told by us.
            png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
            // Chunks that say nothing of the pixels are passed over, and none of them is unpacked.
            png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
            png_read_info(png_, info_);
            layout_.width = png_get_image_width(png_, info_);
            layout_.height = png_get_image_height(png_, info_);
        });
    }

    bool start_rows() {
        int const type = png_get_color_type(png_, info_);
        layout_.white = (1u << png_get_bit_depth(png_, info_)) - 1;
        layout_.channels = png_get_channels(png_, info_);
        layout_.has_palette = type == PNG_COLOR_TYPE_PALETTE;
        layout_.has_color = (type & PNG_COLOR_MASK_COLOR) != 0;
        layout_.interlaced = png_get_interlace_type(png_, info_) != PNG_INTERLACE_NONE;
        png_colorp colors = nullptr;
        int n = 0;
        if (layout_.has_palette) png_get_PLTE(png_, info_, &colors, &n);
        for (png_colorp c = colors; c != colors + n; ++c)
            layout_.palette.push_back(luma(c->red, c->green, c->blue, 255));
        return succeeds(png_, [this] {
            png_set_packing(png_);
            png_read_update_info(png_, info_);
        });
    }

    // Each pass of an interlaced picture comes as the small picture that it is; its pixels go to their
    // places.
    bool read_rows(image& picture) {
        std::vector<unsigned char> bytes(png_get_rowbytes(png_, info_));
        unsigned char* const row = bytes.data();
        pixel_grid const* const first = layout_.interlaced ? adam7 : &all_pixels;
        for (pixel_grid const* pass = first; pass != first + (layout_.interlaced ? 7 : 1); ++pass) {
            if (pass->x >= layout_.width) continue;
            unsigned int const count = (layout_.width - pass->x + pass->dx - 1) / pass->dx;
            for (unsigned int y = pass->y; y < layout_.height; y += pass->dy) {
                if (!succeeds(png_, [this, row] { png_read_row(png_, row, nullptr); })) return false;
                double* const line = row_to_write(picture, y, layout_.width) + pass->x;
                if (!set_greys(layout_, row, count, line, pass->dx)) {
                    failure_ = {"a pixel is beyond its palette"};
                    return false;
                }
            }
        }
        return true;
    }

    byte_source& source_;
    png_failure failure_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    pixel_layout layout_;
};

bool append(std::string& text, png_bytep bytes, std::size_t count) noexcept {
    try {
        text.append(reinterpret_cast<char const*>(bytes), count);
        return true;
    } catch (...) {
        return false;
    }
}

void collect(png_structp png, png_bytep bytes, std::size_t count) {
    if (!append(*static_cast<std::string*>(png_get_io_ptr(png)), bytes, count)) png_error(png, "no memory");
}

class png_writer {
public:
    png_writer(unsigned int width, unsigned int height, int type, int depth) {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, &failure_, fail, ignore);
        if (png_) info_ = png_create_info_struct(png_);
        good_ = info_ && succeeds(png_, [=, this] {
                    png_set_write_fn(png_, &bytes_, collect, nullptr);
                    png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
                    png_set_IHDR(png_, info_, width, height, depth, type, PNG_INTERLACE_NONE,
                                 PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
                    // A third of the time of the usual choices, for a fifth more bytes.
                    png_set_compression_level(png_, 1);
                    png_set_filter(png_, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
                    png_write_info(png_, info_);
                });
    }
    ~png_writer() { png_destroy_write_struct(&png_, &info_); }
    png_writer(png_writer const&) = delete;
    png_writer& operator=(png_writer const&) = delete;

    void add_row(unsigned char const* row) {
        good_ = good_ && succeeds(png_, [this, row] { png_write_row(png_, row); });
    }
    /// The bytes; empty when anything failed.
    std::string finish() {
        good_ = good_ && succeeds(png_, [this] { png_write_end(png_, nullptr); });
        return good_ ? std::move(bytes_) : std::string();
    }

private:
    std::string bytes_;
    png_failure failure_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    bool good_ = false;
};

}  // namespace

bool read_png(byte_source& source, image& out, std::string& reason) {
    return png_reader(source).read(out, reason);
}

std::string png_bytes(rgb_picture const& picture) {
    std::size_t const stride = std::size_t{3} * picture.width;
    if (stride == 0 || picture.height == 0 || picture.rgb.size() != stride * picture.height) return {};
    png_writer writer(picture.width, picture.height, PNG_COLOR_TYPE_RGB, 8);
    for (unsigned int y = 0; y < picture.height; ++y) writer.add_row(picture.rgb.data() + y * stride);
    return writer.finish();
}

std::string png_bytes(image const& grey, int depth) {
    if (cols(grey) == 0) return {};
    bool const wide = depth == 16;
    double const white = wide ? 65535 : 255;
    png_writer writer(cols(grey), rows(grey), PNG_COLOR_TYPE_GRAY, wide ? 16 : 8);
    std::vector<unsigned char> bytes(std::size_t{cols(grey)} << (wide ? 1 : 0));
    for (unsigned int y = 0; y < rows(grey); ++y) {
        unsigned char* to = bytes.data();
        for (double const value : grey[y]) {
            // The comparisons are such that NaN becomes 0.
            double const level = value > 0 ? std::min(value, 1.0) * white + 0.5 : 0;
            auto const whole = static_cast<unsigned int>(level);
            if (wide) *to++ = static_cast<unsigned char>(whole >> 8);
            *to++ = static_cast<unsigned char>(whole & 255u);
        }
        writer.add_row(bytes.data());
    }
    return writer.finish();
}

}  // namespace tvmath
