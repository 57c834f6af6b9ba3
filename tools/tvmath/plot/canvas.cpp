#include "canvas.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

inline namespace tvmath {
namespace {

constexpr double png_scale = 2;  // pixels for each point

cairo_status_t append(void* text, unsigned char const* bytes, unsigned int count) {
    static_cast<std::string*>(text)->append(reinterpret_cast<char const*>(bytes), count);
    return CAIRO_STATUS_SUCCESS;
}

// Above that many points across a pixel is a square, below it blends into its neighbours.
constexpr double large_pixel = 2.5;

// The bytes of a PNG with grey pixels, which the drawing library makes of a mask.
std::string grey_png(grey_picture const& picture) {
    int const width = static_cast<int>(picture.width), height = static_cast<int>(picture.height);
    cairo_surface_t* const mask = cairo_image_surface_create(CAIRO_FORMAT_A8, width, height);
    std::string bytes;
    if (unsigned char* const rows = cairo_image_surface_get_data(mask)) {
        for (int y = 0; y < height; ++y)
            std::copy_n(picture.grey.begin() + std::ptrdiff_t{y} * width, width,
                        rows + std::ptrdiff_t{y} * cairo_image_surface_get_stride(mask));
        cairo_surface_mark_dirty(mask);
        if (cairo_surface_write_to_png_stream(mask, append, &bytes) != CAIRO_STATUS_SUCCESS) bytes.clear();
    }
    cairo_surface_destroy(mask);
    return bytes;
}

// The same in the only form that can be painted, which has three bytes for each pixel.
cairo_surface_t* colour_surface(grey_picture const& picture) {
    int const width = static_cast<int>(picture.width), height = static_cast<int>(picture.height);
    cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    unsigned char* const rows = cairo_image_surface_get_data(surface);
    if (!rows) return surface;
    for (int y = 0; y < height; ++y) {
        auto* const row = reinterpret_cast<std::uint32_t*>(
            rows + std::ptrdiff_t{y} * cairo_image_surface_get_stride(surface));
        for (int x = 0; x < width; ++x)
            row[x] = 0x010101u *
                     picture.grey[static_cast<std::size_t>(y) * picture.width + static_cast<std::size_t>(x)];
    }
    cairo_surface_mark_dirty(surface);
    return surface;
}

class cairo_canvas : public canvas {
public:
    cairo_canvas(std::string const& suffix, double width, double height)
        : is_bitmap_(suffix == ".png"),
          surface_(suffix == ".svg" ? cairo_svg_surface_create_for_stream(append, &bytes_, width, height)
                   : suffix == ".pdf"
                       ? cairo_pdf_surface_create_for_stream(append, &bytes_, width, height)
                       : cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(png_scale * width),
                                                    static_cast<int>(png_scale * height))),
          c_(cairo_create(surface_)) {
        if (is_bitmap_) cairo_scale(c_, png_scale, png_scale);
        cairo_set_source_rgb(c_, 1, 1, 1);
        cairo_paint(c_);
        cairo_set_line_join(c_, CAIRO_LINE_JOIN_ROUND);
        cairo_set_fill_rule(c_, CAIRO_FILL_RULE_EVEN_ODD);
    }
    ~cairo_canvas() override {
        cairo_destroy(c_);
        cairo_surface_destroy(surface_);
    }
    cairo_canvas(cairo_canvas const&) = delete;
    cairo_canvas& operator=(cairo_canvas const&) = delete;

    void stroke(canvas_path const& path, pen const& with) override {
        lay(path);
        set(with.ink);
        cairo_set_line_width(c_, with.width);
        cairo_set_dash(c_, &with.dash, with.dash > 0 ? 1 : 0, 0);
        cairo_stroke(c_);
    }

    void fill(canvas_path const& path, color ink) override {
        lay(path);
        set(ink);
        cairo_fill(c_);
    }

    // As round line ends, which is the shortest form of a dot in a file.
    void dots(std::vector<spot> const& at, double radius, color ink) override {
        cairo_new_path(c_);
        for (spot const& p : at) {
            cairo_move_to(c_, p.x, p.y);
            cairo_close_path(c_);
        }
        set(ink);
        cairo_set_line_cap(c_, CAIRO_LINE_CAP_ROUND);
        cairo_set_line_width(c_, 2 * radius);
        cairo_set_dash(c_, nullptr, 0, 0);
        cairo_stroke(c_);
        cairo_set_line_cap(c_, CAIRO_LINE_CAP_BUTT);
    }

    void photograph(grey_picture const& picture, spot corner, double width, double height) override {
        if (picture.width == 0 || picture.height == 0) return;
        cairo_surface_t* const surface = colour_surface(picture);
        // Files that hold PNG take this one, a third of what they would make of three colours.
        if (!is_bitmap_) {
            auto png = std::make_unique<std::string>(grey_png(picture));
            auto const forget = [](void* held) { delete static_cast<std::string*>(held); };
            if (!png->empty() &&
                cairo_surface_set_mime_data(surface, CAIRO_MIME_TYPE_PNG,
                                            reinterpret_cast<unsigned char const*>(png->data()), png->size(),
                                            forget, png.get()) == CAIRO_STATUS_SUCCESS)
                static_cast<void>(png.release());
        }
        cairo_save(c_);
        cairo_translate(c_, corner.x, corner.y);
        cairo_scale(c_, width / picture.width, height / picture.height);
        cairo_set_source_surface(c_, surface, 0, 0);
        cairo_pattern_set_filter(cairo_get_source(c_), width > large_pixel * picture.width
                                                           ? CAIRO_FILTER_NEAREST
                                                           : CAIRO_FILTER_GOOD);
        if (is_bitmap_) {
            // Full to its edges.
            cairo_pattern_set_extend(cairo_get_source(c_), CAIRO_EXTEND_PAD);
            cairo_rectangle(c_, 0, 0, picture.width, picture.height);
            cairo_fill(c_);
        } else {
            cairo_paint(c_);  // a filled rectangle would be a pattern there, not a plain picture
        }
        cairo_restore(c_);
        cairo_surface_destroy(surface);
    }

    void text(spot at, std::string const& words, text_style const& style) override {
        double const left = style.across * text_width(words, style);
        cairo_font_extents_t font;
        cairo_font_extents(c_, &font);
        double const foot = style.up * 0.73 * style.size;  // a capital is about that high
        cairo_save(c_);
        cairo_translate(c_, at.x, at.y);
        if (style.vertical) cairo_rotate(c_, -std::acos(0.0));
        cairo_move_to(c_, -left, foot);
        if (style.halo) {
            cairo_text_path(c_, words.c_str());
            cairo_set_source_rgba(c_, 1, 1, 1, 0.9);
            cairo_set_line_width(c_, 4);
            cairo_set_dash(c_, nullptr, 0, 0);
            cairo_stroke(c_);
            cairo_move_to(c_, -left, foot);
        }
        set(style.ink);
        cairo_show_text(c_, words.c_str());
        cairo_restore(c_);
        cairo_new_path(c_);
    }

    double text_width(std::string const& words, text_style const& style) override {
        cairo_select_font_face(c_, "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                               style.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
        cairo_set_font_size(c_, style.size);
        cairo_text_extents_t extents;
        cairo_text_extents(c_, words.c_str(), &extents);
        return extents.x_advance;
    }

    void begin_clip(spot corner, double width, double height) override {
        cairo_save(c_);
        cairo_new_path(c_);
        cairo_rectangle(c_, corner.x, corner.y, width, height);
        cairo_clip(c_);
    }
    void end_clip() override { cairo_restore(c_); }

    std::string finish() override {
        if (cairo_status(c_) != CAIRO_STATUS_SUCCESS) return {};
        if (is_bitmap_) {
            if (cairo_surface_write_to_png_stream(surface_, append, &bytes_) != CAIRO_STATUS_SUCCESS)
                return {};
        } else {
            cairo_surface_finish(surface_);
        }
        return bytes_;
    }

private:
    void set(color const& ink) { cairo_set_source_rgba(c_, ink.red, ink.green, ink.blue, ink.alpha); }

    void lay(canvas_path const& path) {
        cairo_new_path(c_);
        spot const* p = path.places().data();
        for (canvas_path::step const s : path.steps()) {
            switch (s) {
                case canvas_path::step::move:
                    cairo_move_to(c_, p->x, p->y);
                    ++p;
                    break;
                case canvas_path::step::line:
                    cairo_line_to(c_, p->x, p->y);
                    ++p;
                    break;
                case canvas_path::step::curve:
                    cairo_curve_to(c_, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
                    p += 3;
                    break;
                case canvas_path::step::close:
                    cairo_close_path(c_);
                    break;
            }
        }
    }

    bool const is_bitmap_;
    std::string bytes_;
    cairo_surface_t* const surface_;
    cairo_t* const c_;
};

}  // namespace

bool is_picture_suffix(std::string const& suffix) {
    return suffix == ".svg" || suffix == ".png" || suffix == ".pdf";
}

std::unique_ptr<canvas> make_canvas(std::string const& suffix, double width, double height) {
    if (!is_picture_suffix(suffix)) return nullptr;
    return std::make_unique<cairo_canvas>(suffix, width, height);
}

}  // namespace tvmath
