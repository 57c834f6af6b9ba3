#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "plot/canvas.h"

inline namespace tvmath {

/// Keeps what is drawn. Letters are as wide as those of a common font, a little generously.
class recording_canvas : public canvas {
public:
    struct words {
        std::string text;
        double left, top, right, bottom;

        bool is_apart_from(words const& other) const {
            return right <= other.left || other.right <= left || bottom <= other.top || other.bottom <= top ||
                   text.empty() || other.text.empty();
        }
        bool is_within(double x0, double y0, double x1, double y1) const {
            return left >= x0 && top >= y0 && right <= x1 && bottom <= y1;
        }
    };
    std::vector<words> texts;
    std::vector<spot> places, lines;  ///< of all that is drawn, and of lines alone
    std::size_t dot_count = 0;
    grey_picture photo;

    void stroke(canvas_path const& path, pen const& with) override {
        EXPECT_TRUE(std::isfinite(with.width) && with.width >= 0);
        keep(path.places());
        lines.insert(lines.end(), path.places().begin(), path.places().end());
    }
    void fill(canvas_path const& path, color) override { keep(path.places()); }
    void dots(std::vector<spot> const& at, double, color) override {
        keep(at);
        dot_count += at.size();
    }
    void photograph(grey_picture const& picture, spot corner, double width, double height) override {
        photo = picture;
        keep({corner, corner + spot{width, height}});
    }
    void text(spot at, std::string const& text, text_style const& style) override {
        double width = text_width(text, style), height = 0.73 * style.size;
        double left = at.x - style.across * width, bottom = at.y + style.up * height;
        if (style.vertical) {
            texts.push_back(
                {text, at.x - height, at.y - (1 - style.across) * width, at.x, at.y + style.across * width});
        } else {
            texts.push_back({text, left, bottom - height, left + width, bottom});
        }
    }
    double text_width(std::string const& text, text_style const& style) override {
        auto const letters =
            std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; });
        return 0.58 * style.size * static_cast<double>(letters);
    }
    void begin_clip(spot, double, double) override {}
    void end_clip() override {}
    std::string finish() override { return {}; }

    bool says(std::string const& part) const {
        return std::any_of(texts.begin(), texts.end(),
                           [&part](words const& w) { return w.text.find(part) != std::string::npos; });
    }

    /// Everything is somewhere, and every text on a page of that size and clear of all others.
    void expect_readable(double page_width, double page_height) const {
        for (spot const& p : places) ASSERT_TRUE(std::isfinite(p.x) && std::isfinite(p.y));
        for (std::size_t i = 0; i < texts.size(); ++i) {
            EXPECT_TRUE(texts[i].is_within(0, 0, page_width, page_height)) << texts[i].text;
            for (std::size_t k = 0; k < i; ++k) {
                EXPECT_TRUE(texts[i].is_apart_from(texts[k]))
                    << '\'' << texts[i].text << "' upon '" << texts[k].text << '\'';
            }
        }
    }

private:
    void keep(std::vector<spot> const& at) { places.insert(places.end(), at.begin(), at.end()); }
};

}  // namespace tvmath
