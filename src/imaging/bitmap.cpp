#include <algorithm>
#include <memory>
#include <vector>

#include "imaging/image_size.h"
#include "persistence/little_endian.h"
#include "platform/surface.h"
#include "tvmath/overlay.h"

inline namespace tvmath {
namespace {

constexpr std::uint32_t header_size = 40, levels = 256;

unsigned int padded(unsigned int width) {
    return (width + 3) / 4 * 4;
}

unsigned char level_of(double grey) {
    double const level = grey * levels;
    if (!(level > 0)) return 0;  // NaN too
    return static_cast<unsigned char>(std::min(level, levels - 1.0));
}

// The header and the table of colours.
std::vector<unsigned char> dib_start(unsigned int width, unsigned int height) {
    constexpr std::uint16_t planes = 1, bits_per_pixel = 8;
    std::vector<unsigned char> bytes;
    for (std::uint32_t number : {header_size, width, height}) put_little_endian(bytes, number);
    put_little_endian(bytes, planes);
    put_little_endian(bytes, bits_per_pixel);
    // Compression, bytes of pixels, pixels to the metre twice, colours in the table, colours that matter.
    for (std::uint32_t number : {0u, padded(width) * height, 0u, 0u, levels, levels}) {
        put_little_endian(bytes, number);
    }
    for (unsigned int level = 0; level < levels; ++level) put_little_endian(bytes, level * 0x010101u);
    return bytes;
}

}  // namespace

CDib::CDib(image const& source) {
    unsigned int const height = rows(source), width = cols(source);
    if (height == 0 || width == 0 || is_oversized(height, width)) return;
    std::vector<unsigned char> const start = dib_start(width, height);
    bytes_ = idioms::array<unsigned char>(static_cast<unsigned int>(start.size()) + padded(width) * height);
    unsigned char* to = std::copy(start.begin(), start.end(), bytes_.lazycopy_begin());
    for (unsigned int y = height; y-- > 0; to += padded(width)) {
        vector const& row = source[y];
        std::transform(row.begin(), row.end(), to, level_of);
    }
    width_ = static_cast<int>(width);
    height_ = static_cast<int>(height);
}

unsigned char const* CDib::row(int y) const {
    std::size_t const start = header_size + std::size_t{4} * levels;
    return begin() + start + static_cast<std::size_t>(y) * padded(static_cast<unsigned int>(width_));
}

HBITMAP__* create_bitmap(image source) {
    return create_bitmap(source, std::vector<ctl::ref<IDrawCallback>>());
}

HBITMAP__* create_bitmap(image source, ctl::ref<IDrawCallback> overlay) {
    return create_bitmap(source, std::vector<ctl::ref<IDrawCallback>>{overlay});
}

HBITMAP__* create_bitmap(image source, std::vector<ctl::ref<IDrawCallback>> const& overlays) {
    CDib const dib(source);
    if (dib.is_trivial()) return nullptr;
    std::unique_ptr<HBITMAP__, decltype(&release_bitmap)> bitmap(make_bitmap(dib.width(), dib.height()),
                                                                 &release_bitmap);
    if (!bitmap) return nullptr;
    std::unique_ptr<HDC__, decltype(&close_device)> const device(open_device(bitmap.get()), &close_device);
    if (!device) return nullptr;

    draw_dib(device.get(), dib.begin());
    for (ctl::ref<IDrawCallback> const& overlay : overlays) {
        if (!!overlay) overlay->draw(device.get(), dib.width(), dib.height());
    }
    return bitmap.release();
}

}  // namespace tvmath
