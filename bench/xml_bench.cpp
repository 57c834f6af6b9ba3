#include <benchmark/benchmark.h>
#include <expat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "support/bench_name.h"
#include "tvmath/xml_document.h"

inline namespace tvmath {
namespace {

namespace fs = std::filesystem;

// In memory where there is such a folder, so that the library's own time shows and not the disk's.
fs::path const folder =
    (fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path()) / "tvmath_xml_bench";

// What the files of measured features look like: each circle two elements, with five numbers.
ctl::ref<kv::XmlElement> features(std::int64_t elements) {
    auto const root = ctl::make_ref<kv::XmlElement>(u"Features"_w);
    for (std::int64_t i = 0; i < elements / 2; ++i) {
        auto const circle = ctl::make_ref<kv::XmlElement>(u"Circle"_w),
                   center = ctl::make_ref<kv::XmlElement>(u"Center"_w);
        center->attributes = {{u"XAxis"_w, to_wide(std::to_string(1.25 * static_cast<double>(i)))},
                              {u"YAxis"_w, u"-12.345678"_w},
                              {u"ZAxis"_w, u"0.001"_w}};
        circle->attributes = {{u"radius"_w, u"3.1415927"_w}, {u"name"_w, u"Bohrung 12 \x00D8"_w}};
        circle->children.push_back(center);
        root->children.push_back(circle);
    }
    return root;
}

std::string file_of(std::int64_t elements) {
    fs::create_directories(folder);
    fs::path const file = folder / (std::to_string(elements) + ".xml");
    if (!fs::exists(file)) kv::write_xml_file(to_wide(file.string()).c_str(), {features(elements)});
    return file.string();
}

void finish(benchmark::State& state, std::string const& file) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fs::file_size(file)));
}

// Counts, so that nothing can be left out.
struct counter : kvxml::SAXParseHandler {
    std::size_t units = 0;
    void StartElement(kvxml::ISAXReader&, wide_string const& name,
                      kvxml::attribute_list const& list) override {
        units += name.size();
        for (auto const& [key, value] : list) units += key.size() + value.size();
    }
    void EndElement(kvxml::ISAXReader&) override { ++units; }
    void EndElement(kvxml::ISAXReader&, kvxml::Element&) override {}
    void AddData(kvxml::ISAXReader&, wide_string const& text) override { units += text.size(); }
};

void read_events(benchmark::State& state) {
    std::string const file = file_of(state.range(0));
    wide_string const name = to_wide(file);
    for (auto _ : state) {
        counter handler;
        if (!kvxml::read_xml_file(name.c_str(), &handler)) state.SkipWithError("not read");
        benchmark::DoNotOptimize(handler.units);
    }
    finish(state, file);
}

// The yardstick: the same events in 8 bits, as the parser gives them, by the same blocks.
void read_bare_expat(benchmark::State& state) {
    std::string const file = file_of(state.range(0));
    for (auto _ : state) {
        std::size_t units = 0;
        std::unique_ptr<std::remove_pointer_t<XML_Parser>, void (*)(XML_Parser)> const parser(
            ::XML_ParserCreate(nullptr), &::XML_ParserFree);
        ::XML_SetUserData(parser.get(), &units);
        ::XML_SetElementHandler(
            parser.get(),
            [](void* user, XML_Char const* name, XML_Char const** attributes) {
                auto& n = *static_cast<std::size_t*>(user);
                n += std::char_traits<char>::length(name);
                for (; *attributes; ++attributes) n += std::char_traits<char>::length(*attributes);
            },
            [](void* user, XML_Char const*) { ++*static_cast<std::size_t*>(user); });
        ::XML_SetCharacterDataHandler(parser.get(), [](void* user, XML_Char const*, int length) {
            *static_cast<std::size_t*>(user) += static_cast<std::size_t>(length);
        });
        std::unique_ptr<std::FILE, int (*)(std::FILE*)> const in(std::fopen(file.c_str(), "rb"),
                                                                 &std::fclose);
        for (bool at_end = false; !at_end;) {
            std::size_t const got = std::fread(::XML_GetBuffer(parser.get(), 1 << 16), 1, 1 << 16, in.get());
            at_end = got < (1 << 16);
            if (::XML_ParseBuffer(parser.get(), static_cast<int>(got), at_end) != XML_STATUS_OK) std::abort();
        }
        benchmark::DoNotOptimize(units);
    }
    finish(state, file);
}

void read_tree(benchmark::State& state) {
    std::string const file = file_of(state.range(0));
    wide_string const name = to_wide(file);
    for (auto _ : state) {
        std::vector<ctl::ref<kv::XmlElement>> tree;
        if (!kv::read_xml_file(name.c_str(), tree)) state.SkipWithError("not read");
        benchmark::DoNotOptimize(tree.data());
    }
    finish(state, file);
}

void write_tree(benchmark::State& state) {
    std::vector<ctl::ref<kv::XmlElement>> const tree{features(state.range(0))};
    std::string const file = file_of(state.range(0));
    wide_string const name = to_wide(file + ".out");
    for (auto _ : state) {
        if (!kv::write_xml_file(name.c_str(), tree)) state.SkipWithError("not written");
    }
    finish(state, file);
}

// 1000: the features of a part; 100000: a scan.
bool const registered = [] {
    register_sizes("xml_read_events", "tvmath", read_events, {1000, 100000});
    register_sizes("xml_read_events", "expat", read_bare_expat, {1000, 100000});
    register_sizes("xml_read_tree", "tvmath", read_tree, {1000, 100000});
    register_sizes("xml_write_tree", "tvmath", write_tree, {1000, 100000});
    return true;
}();

}  // namespace
}  // namespace tvmath
