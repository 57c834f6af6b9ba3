#include "platform/surface.h"

#include <algorithm>
#include <new>

#include "platform/posix/surface_memory.h"

inline namespace tvmath {
namespace {

constexpr std::ptrdiff_t dib_header = 40, dib_colours = 1024;

bool holds(HBITMAP__ const& bitmap, std::int64_t x, std::int64_t y) {
    return x >= 0 && x < bitmap.width && y >= 0 && y < bitmap.height;
}

}  // namespace

HBITMAP__* make_bitmap(int width, int height) {
    try {
        return new HBITMAP__{
            width, height,
            std::vector<std::uint32_t>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height))};
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}

void release_bitmap(HBITMAP__* bitmap) {
    delete bitmap;
}

int bitmap_width(HBITMAP__ const* bitmap) {
    return bitmap ? bitmap->width : 0;
}

int bitmap_height(HBITMAP__ const* bitmap) {
    return bitmap ? bitmap->height : 0;
}

unsigned long bitmap_pixel(HBITMAP__ const* bitmap, int x, int y) {
    if (!bitmap || !holds(*bitmap, x, y)) return 0;
    auto const row = static_cast<std::size_t>(y) * static_cast<std::size_t>(bitmap->width);
    return bitmap->pixels[row + static_cast<std::size_t>(x)];
}

HDC__* open_device(HBITMAP__* bitmap) {
    return new (std::nothrow) HDC__{bitmap};
}

void close_device(HDC__* device) {
    delete device;
}

void draw_dib(HDC__* device, unsigned char const* dib) {
    std::uint32_t colours[256];
    unsigned char const* entry = dib + dib_header;  // blue, green, red, and a byte that is not used
    for (std::uint32_t& colour : colours) {
        colour = std::uint32_t{entry[0]} << 16 | std::uint32_t{entry[1]} << 8 | entry[2];
        entry += 4;
    }

    HBITMAP__& target = *device->target;
    unsigned char const* row = dib + dib_header + dib_colours;
    std::ptrdiff_t const padded = (std::ptrdiff_t{target.width} + 3) / 4 * 4;
    for (int y = 0; y < target.height; ++y, row += padded) {
        std::transform(row, row + target.width, target.row(y),
                       [&](unsigned char level) { return colours[level]; });
    }
}

drawing_pen select_pen(HDC__* device, drawing_pen pen) {
    drawing_pen const before = device->pen;
    device->pen = {visible_colour(pen.colour), std::max(pen.width, 1)};
    return before;
}

void move_to(HDC__* device, std::int64_t x, std::int64_t y) {
    constexpr std::int64_t most = std::int64_t{1} << 40;
    device->x = std::clamp(x, -most, most);
    device->y = std::clamp(y, -most, most);
}

void set_pixel(HDC__* device, std::int64_t x, std::int64_t y, unsigned long colour) {
    if (holds(*device->target, x, y)) device->target->row(y)[x] = visible_colour(colour);
}

}  // namespace tvmath
