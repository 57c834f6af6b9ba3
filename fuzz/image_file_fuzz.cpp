#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "files/image_file.h"
#include "files/png_file.h"

// Any bytes as a picture, by the first of them as they are, behind the start of a PGM, or as the header and
// the packed pixels of a PNG whose checksums hold. What is read has grey values only, and is read again from
// a PNG as it was but for rounding.

namespace {

void require(bool holds) {
    if (!holds) ::abort();
}

std::string big_endian(std::size_t value) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(value >> shift & 255u);
    return text;
}

std::string chunk(std::string const& content) {  // its name and what it holds
    auto const* const bytes = reinterpret_cast<unsigned char const*>(content.data());
    return big_endian(content.size() - 4) + content +
           big_endian(::crc32(0, bytes, static_cast<uInt>(content.size())));
}

// 2 bytes of size, depth, type and interlacing, the number of chunks before the pixels with a byte of length
// each, the pixels.
std::string png_of(std::string text) {
    text.resize(text.size() + 6);
    std::string const header = {0, 0, 0, text[0], 0, 0, 0, text[1], text[2], text[3], 0, 0, text[4]};
    std::string png = "\x89PNG\r\n\x1A\n" + chunk("IHDR" + header);
    char const* const names[] = {"PLTE", "tRNS", "iCCP", "IDAT", "zTXt", "sBIT", "acTL", "IHDR"};
    std::size_t at = 6;
    for (int n = text[5] & 7; n > 0 && at + 1 < text.size(); --n) {
        auto const length = static_cast<unsigned char>(text[at + 1]);
        std::string const held = text.substr(at + 2 < text.size() ? at + 2 : text.size(), length);
        png += chunk(names[text[at] & 7] + held);
        at += 2 + held.size();
    }
    std::string const raw = text.substr(at < text.size() ? at : text.size());
    std::string packed(::compressBound(static_cast<uLong>(raw.size())), '\0');
    uLongf size = packed.size();
    ::compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<Bytef const*>(raw.data()),
               static_cast<uLong>(raw.size()));
    return png + chunk("IDAT" + packed.substr(0, size)) + chunk("IEND");
}

bool read(std::string const& bytes, image& m) {
    std::istringstream in(bytes);
    std::string reason;
    bool const good = read_image(in, m, reason);
    require(good == reason.empty());
    for (char const c : reason) require(c >= ' ' && c <= '~');
    return good;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const text(reinterpret_cast<char const*>(data), size);
    std::string const rest = text.substr(size > 0 ? 1 : 0);
    int const form = size > 0 ? data[0] % 8 : 0;
    image m, again;
    if (!read(form == 0 ? text : form == 1 ? "P2 " + rest : form == 2 ? "P5 " + rest : png_of(rest), m))
        return 0;
    require(rows(m) > 0 && cols(m) > 0);
    for (vector const& row : m) {
        require(row.capacity() == cols(m));
        for (double const value : row) require(value >= 0 && value <= 1);
    }
    if (std::uint64_t{rows(m)} * cols(m) > 100000) return 0;
    require(read(png_bytes(m, 16), again) && rows(again) == rows(m) && cols(again) == cols(m));
    for (unsigned int y = 0; y < rows(m); ++y) {
        for (unsigned int x = 0; x < cols(m); ++x) {
            double const d = m[y][x] - again[y][x];
            require(d * 65535 <= 0.5000001 && d * 65535 >= -0.5000001);
        }
    }
    return 0;
}
