#include <atomic>
#include <string>

#include "persistence/xml/document_text.h"
#include "platform/file_replace.h"
#include "platform/thread_id.h"
#include "services/file_text.h"
#include "tvmath/xml_document.h"

inline namespace tvmath {
namespace kvxml {

namespace {

// A document that grows in a file beside its place, until it is complete.
class sax_writer final : public ISAXWriter {
public:
    sax_writer(file_path const& fresh, file_path const& target)
        : fresh_(fresh), target_(target), file_(fresh, file_use::write) {}
    ~sax_writer() override { sax_writer::Close(); }

    bool is_open() const { return file_.is_open(); }

    bool StartElement(wide_string const& name, attribute_list const& attributes) override {
        return is_good() && keep(text_.start(name, attributes));
    }
    bool EndElement() override { return is_good() && keep(text_.end()); }
    bool AddData(wide_string const& text) override { return is_good() && keep(text_.add(text)); }

    bool Close() override {
        if (!file_.is_open()) return stored_;
        stored_ = good_ && text_.is_complete() && write_out() && file_.flush_to_disk();
        stored_ = file_.close() && stored_ && replace_file(fresh_, target_, {});
        std::error_code ignored;
        if (!stored_) std::filesystem::remove(fresh_, ignored);
        return stored_;
    }

private:
    static constexpr std::size_t block = 1 << 16;

    // One refusal is enough: a document with something left out is not the caller's any more.
    bool is_good() const { return good_ && file_.is_open(); }
    bool keep(bool accepted) {
        good_ = accepted && (text_.bytes.size() < block || write_out());
        return good_;
    }
    bool write_out() {
        bool const written = file_.write(text_.bytes.data(), text_.bytes.size());
        text_.bytes.clear();
        return written;
    }

    file_path fresh_, target_;
    open_file file_;
    document_text text_;
    bool good_ = true, stored_ = false;
};

// Where a link leads to, so that the link stays.
file_path behind_links(file_path const& name) {
    std::error_code failed;
    file_path real = std::filesystem::canonical(name, failed);
    return failed ? name : real;
}

// A name of its own for each writer: of two that write the same file, the last to close wins, whole.
file_path name_beside(file_path name) {
    static std::atomic<unsigned int> count{0};
    name += '.';
    name += std::to_string(current_thread_id()) + '-' + std::to_string(count++) + ".writing";
    return name;
}

}  // namespace

ctl::ref<ISAXWriter> write_xml_file(wide_char const* path) {
    if (!path) return {};
    file_path const target = behind_links(to_file_path(path));
    // An old file that may not be written is not to be replaced either; this opens it without a change.
    std::error_code ignored;
    if (std::filesystem::exists(target, ignored) && !open_file(target, file_use::append).is_open()) return {};
    auto const writer = ctl::make_ref<sax_writer>(name_beside(target), target);
    return writer->is_open() ? ctl::ref<ISAXWriter>(writer) : ctl::ref<ISAXWriter>();
}

}  // namespace kvxml
}  // namespace tvmath
