#pragma once

#include <memory>
#include <string>
#include <vector>

inline namespace tvmath {

/// A place on a picture, in points, y downward; also a place in the plane of a drawing, y upward.
struct spot {
    double x = 0, y = 0;
};

inline spot operator+(spot a, spot b) {
    return {a.x + b.x, a.y + b.y};
}
inline spot operator-(spot a, spot b) {
    return {a.x - b.x, a.y - b.y};
}
inline spot operator*(double s, spot a) {
    return {s * a.x, s * a.y};
}

struct color {
    double red = 0, green = 0, blue = 0, alpha = 1;
};

struct pen {
    color ink;
    double width = 1;
    double dash = 0;  ///< 0 draws a solid line
};

/// What is drawn in one stroke: pieces of straight lines and cubic Bezier curves.
class canvas_path {
public:
    enum class step { move, line, curve, close };

    void move_to(spot p) { add(step::move, p); }
    /// Begins a piece when there is none.
    void line_to(spot p) { add(step::line, p); }
    void curve_to(spot a, spot b, spot end) {
        add(step::curve, a);
        places_.push_back(b);
        places_.push_back(end);
    }
    void close() { steps_.push_back(step::close); }
    /// What follows begins a piece of its own.
    void interrupt() { broken_ = true; }

    bool is_empty() const { return places_.empty(); }
    std::vector<step> const& steps() const { return steps_; }
    /// One place for each move and line, three for each curve.
    std::vector<spot> const& places() const { return places_; }

private:
    void add(step s, spot p) {
        bool const begins = places_.empty() || broken_;
        broken_ = false;
        steps_.push_back(begins && s == step::line ? step::move : s);
        places_.push_back(p);
    }

    std::vector<step> steps_;
    std::vector<spot> places_;
    bool broken_ = false;
};

struct text_style {
    double size = 8;
    color ink = {};
    bool bold = false;
    /// Where the place given lies in the text: 0 at its left end, 0.5 in its middle, 1 at its right end.
    double across = 0;
    /// The same upward: 0 at its foot, 0.5 in the middle of its capitals, 1 at their top.
    double up = 0;
    bool halo = false;      ///< White around the letters, so that they stand out from lines.
    bool vertical = false;  ///< Runs upward.
};

/// A photograph: 8-bit grey from black to white, row by row from the top.
struct grey_picture {
    unsigned int width = 0, height = 0;
    std::vector<unsigned char> grey;  ///< width height of them
};

/// A picture in the making: the same calls give SVG, PNG and PDF.
class canvas {
public:
    virtual ~canvas() = default;
    virtual void stroke(canvas_path const& path, pen const& with) = 0;
    /// Fills between pieces that lie within each other.
    virtual void fill(canvas_path const& path, color ink) = 0;
    /// Round dots of the same size.
    virtual void dots(std::vector<spot> const& at, double radius, color ink) = 0;
    /// Lays the photograph into the rectangle. Pixels that become large on the page stay squares.
    virtual void photograph(grey_picture const& picture, spot corner, double width, double height) = 0;
    virtual void text(spot at, std::string const& words, text_style const& style) = 0;
    virtual double text_width(std::string const& words, text_style const& style) = 0;
    /// What follows, until `end_clip`, is drawn within this rectangle only.
    virtual void begin_clip(spot corner, double width, double height) = 0;
    virtual void end_clip() = 0;
    /// Ends the picture and gives its bytes; empty when it cannot be made.
    virtual std::string finish() = 0;
};

/// Whether `suffix` (".svg", ".png", ".pdf") is a picture that this build can make.
bool is_picture_suffix(std::string const& suffix);

/// A white picture of that size in points. Null unless `is_picture_suffix`.
std::unique_ptr<canvas> make_canvas(std::string const& suffix, double width, double height);

}  // namespace tvmath
