#include "tvmath/xml_document.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>

#include "persistence/xml_files.h"
#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

using element_ref = ctl::ref<kv::XmlElement>;
using element_list = std::vector<element_ref>;

// Writes down its events; one that is nested takes itself off at the end of its element.
class diary : public kvxml::SAXParseHandler {
public:
    std::string said, mark;
    int open = 0;
    diary* nested = nullptr;   // pushed at <nested>
    bool ends_itself = false;  // with its element
    bool asks_always = false;  // for an element, at any event
    explicit diary(std::string prefix = "") : mark(std::move(prefix)) {}

    void StartElement(kvxml::ISAXReader& reader, wide_string const& name,
                      kvxml::attribute_list const& attributes) override {
        ++open;
        said += mark + "<" + to_utf8(name);
        for (auto const& [key, value] : attributes) said += " " + to_utf8(key) + "=" + to_utf8(value);
        said += ">";
        if (name == u"nested"_w && nested) reader.PushHandler(nested);
        if (name == u"built"_w) reader.BuildElement();
    }
    void EndElement(kvxml::ISAXReader& reader) override {
        said += mark + "</>";
        if (asks_always) reader.BuildElement();
        if (--open < 0 && ends_itself) reader.PopHandler();
        if (ends_itself || !nested) return;
        reader.PopHandler();  // the first handler stays
    }
    void EndElement(kvxml::ISAXReader&, kvxml::Element& element) override {
        --open;
        said += mark + "(" + to_utf8(element.name) + ")";
        kept.swap(element);
    }
    void AddData(kvxml::ISAXReader& reader, wide_string const& text) override {
        said += mark + to_utf8(text);
        if (asks_always) reader.BuildElement();
    }

    kvxml::Element kept;
};

std::string events(test_folder const& folder, std::string const& bytes, bool& good) {
    folder.write(bytes);
    diary handler;
    good = kvxml::read_xml_file(folder.name().c_str(), &handler);
    return handler.said;
}

TEST(XmlReading, TellsTheEventsInTheOrderOfTheDocument) {
    struct {
        char const* name;
        std::string bytes, said;
    } const cases[] = {
        {"all kinds", "<a x='1' y='&lt;2'>p<b/><!-- no --><?no no?>q<![CDATA[<r>]]></a>",
         "<a x=1 y=<2>p<b></>q<r></>"},
        {"blank text is told", "<a> <b/>\r\n</a>", "<a> <b></>\n</>"},
        {"local names", "<p:a xmlns:p='u' p:x='1'><p:q:b/><:/><p:1/></p:a>",
         "<a xmlns:p=u p:x=1><b></><:></><p:1></></>"},
        {"byte order mark", "\xEF\xBB\xBF<a/>", "<a></>"},
        {"ISO-8859-1", "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xFC</a>", "<a>\xC3\xBC</>"},
        {"UTF-16", std::string("\xFF\xFE<\0\xFC\0/\0>\0", 10), "<\xC3\xBC></>"},
        {"beyond 16 bits", "<a x='\xF0\x9F\x93\x90'>&#x1F4D0;</a>",
         "<a x=\xF0\x9F\x93\x90>\xF0\x9F\x93\x90</>"},
    };
    test_folder const folder;
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        bool good = false;
        EXPECT_EQ(events(folder, c.bytes, good), c.said);
        EXPECT_TRUE(good);
        EXPECT_TRUE(kvxml::read_xml_file(folder.name().c_str(), nullptr));
    }
}

TEST(XmlReading, RefusesWhatIsNoDocumentAfterTheEventsBeforeTheFault) {
    std::string laughs = "<!DOCTYPE a [<!ENTITY l0 'ha'>";
    for (int i = 1; i < 30; ++i) {
        std::string const last = "&l" + std::to_string(i - 1) + ";";
        laughs += "<!ENTITY l" + std::to_string(i) + " '" + last + last + "'>";
    }
    auto const nested = [](std::size_t n) {
        std::string text;
        for (std::size_t i = 0; i < n; ++i) text += "<a>";
        for (std::size_t i = 0; i < n; ++i) text += "</a>";
        return text;
    };
    struct {
        char const* name;
        std::string bytes, first_said;
    } const cases[] = {
        {"empty", "", ""},
        {"no XML", "text", ""},
        {"truncated", "<a><b>", "<a><b>"},
        {"crossed", "<a><b></a></b>", "<a><b>"},
        {"two roots", "<a/><b/>", "<a></>"},
        {"attribute twice", "<a x='1' x='2'/>", ""},
        {"a NUL", std::string("<a>\0</a>", 8), "<a>"},
        {"half a character", "<a>\xC3</a>", "<a>"},
        {"a lone surrogate", "<a>&#xD800;</a>", "<a>"},
        {"an unknown entity", "<a>&b;</a>", "<a>"},
        {"an unknown encoding", "<?xml version='1.0' encoding='x-none'?><a/>", ""},
        {"a document type", "<!DOCTYPE a><a/>", ""},
        {"a file from outside", "<!DOCTYPE a [<!ENTITY x SYSTEM '/etc/passwd'>]><a>&x;</a>", ""},
        {"growing entities", laughs + "]><a>&l29;</a>", ""},
        {"a million deep", nested(1000000), "<a>"},
        {"one too deep", nested(kvxml::max_depth + 1), "<a>"},
    };
    test_folder const folder;
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        bool good = true;
        std::string const said = events(folder, c.bytes, good);
        EXPECT_FALSE(good);
        EXPECT_EQ(said.substr(0, std::min(said.size(), std::max<std::size_t>(1, c.first_said.size()))),
                  c.first_said);
        element_list kept{ctl::make_ref<kv::XmlElement>(u"old"_w)};
        EXPECT_FALSE(kv::read_xml_file(folder.name().c_str(), kept));
        ASSERT_EQ(kept.size(), 1u);
        EXPECT_EQ(kept[0]->name, u"old"_w);
    }
    bool good = false;
    events(folder, nested(kvxml::max_depth), good);
    EXPECT_TRUE(good);
    diary silent;
    EXPECT_FALSE(kvxml::read_xml_file(folder.name("none.xml").c_str(), &silent));
    EXPECT_FALSE(kvxml::read_xml_file(to_wide(folder.file("").string()).c_str(), &silent));
    EXPECT_FALSE(kvxml::read_xml_file(static_cast<wide_char const*>(nullptr), &silent));
    EXPECT_EQ(silent.said, "");
}

TEST(XmlReading, HandsAnElementToANestedHandlerAndBack) {
    test_folder const folder;
    folder.write("<a><nested>1<b>2</b></nested>3<nested/><c/></a>");
    diary outer("o"), inner("i");
    outer.nested = &inner;
    inner.ends_itself = true;
    ASSERT_TRUE(kvxml::read_xml_file(folder.name().c_str(), &outer));
    EXPECT_EQ(outer.said, "o<a>o<nested>o3o<nested>o<c>o</>o</>");
    EXPECT_EQ(inner.said, "i1i<b>i2i</>i</>i</>");
}

TEST(XmlReading, BuildsAnElementOnRequest) {
    test_folder const folder;
    folder.write("<a>0<built x='1' y='2'>p<b z='3'>\n<c>first</c> <c/>\n</b>q</built>4<b/></a>");
    diary handler;
    handler.asks_always = true;  // elsewhere than at a start, to no effect
    ASSERT_TRUE(kvxml::read_xml_file(folder.name().c_str(), &handler));
    EXPECT_EQ(handler.said, "<a>0<built x=1 y=2>(built)4<b></></>");

    kvxml::Element& built = handler.kept;
    wide_string value = u"old"_w;
    EXPECT_FALSE(built.find_attribute(u"z"_w, value));
    EXPECT_EQ(value, u"old"_w);
    EXPECT_TRUE(built.find_attribute(u"y"_w, value));
    EXPECT_EQ(value, u"2"_w);
    EXPECT_EQ(built.text, u"pq"_w);
    kvxml::Element *b = nullptr, *c = nullptr;
    ASSERT_TRUE(built.find_element(u"b"_w, b));
    EXPECT_EQ(b->parent, &built);
    EXPECT_EQ(b->text, u""_w);
    ASSERT_TRUE(b->find_element(u"c"_w, c));
    EXPECT_EQ(c->text, u"first"_w);
    EXPECT_EQ(c->parent, b);
    EXPECT_FALSE(b->find_element(u"d"_w, c));
    EXPECT_EQ(b->children.size(), 2u);
}

TEST(XmlReading, LetsTheHandlersOwnExceptionPass) {
    struct : kvxml::SAXParseHandler {
        void AddData(kvxml::ISAXReader&, wide_string const&) override { throw std::runtime_error("mine"); }
    } handler;
    test_folder const folder;
    folder.write("<a>1<b/>2</a>");
    EXPECT_THROW(kvxml::read_xml_file(folder.name().c_str(), &handler), std::runtime_error);
}

bool equal(element_list const& a, element_list const& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i]->name != b[i]->name || a[i]->text != b[i]->text || a[i]->attributes != b[i]->attributes)
            return false;
        if (!equal(a[i]->children, b[i]->children)) return false;
    }
    return true;
}

// Any 16 bits, those that matter to a parser more often.
wide_string any_text(seeded_random& random, unsigned int most) {
    constexpr char16_t special[] = u"<>&\"'\t\n\r ]]>a;#\0\x1B\x7F\x85\xFC\xD800\xDC00\xFFFE\xFFFF";
    wide_string text;
    for (unsigned int n = random.below(most + 1); n != 0; --n) {
        text += random.coin() ? special[random.below(std::size(special) - 1)]
                              : static_cast<wide_char>(random.bits());
    }
    return text;
}

element_ref any_tree(seeded_random& random, int depth) {
    constexpr char16_t const* names[] = {u"a", u"_b.1-", u"\xFC", u"\x4E00", u"Start-Angle"};
    auto const element = ctl::make_ref<kv::XmlElement>(as_wide(names[random.below(5)]), any_text(random, 12));
    for (char16_t const* name : names) {
        if (random.coin()) element->attributes.emplace_back(as_wide(name), any_text(random, 8));
    }
    for (unsigned int n = depth > 0 ? random.below(4) : 0; n != 0; --n) {
        element->children.push_back(any_tree(random, depth - 1));
    }
    return element;
}

// What XML can hold of a text.
void clean(kv::XmlElement& element) {
    auto const clean_text = [](wide_string& text) {
        text = to_wide(to_utf8(text));  // lone surrogates
        for (wide_char& c : text) {
            if ((c < 0x20 && c != '\t' && c != '\n' && c != '\r') || c >= 0xFFFE) c = 0xFFFD;
        }
    };
    clean_text(element.text);
    if (!element.children.empty() &&
        to_utf8(element.text).find_first_not_of(" \t\r\n") == std::string::npos) {
        element.text.clear();
    }
    for (auto& attribute : element.attributes) clean_text(attribute.value);
    for (element_ref const& child : element.children) clean(*child);
}

TEST(XmlWriting, AnyTreeIsReadBackWithWhatXmlCanHold) {
    bool const has_xmllint = std::system("xmllint --version >/dev/null 2>&1") == 0;
    test_folder const folder;
    seeded_random random(7400);
    for (int trial = 0; trial < 300; ++trial) {
        SCOPED_TRACE(trial);
        element_list const tree{any_tree(random, 4)};
        ASSERT_TRUE(kv::write_xml_file(folder.name().c_str(), tree));
        std::string const bytes = folder.bytes();
        element_list read;
        ASSERT_TRUE(kv::read_xml_file(folder.name().c_str(), read)) << bytes;
        clean(*tree[0]);
        EXPECT_TRUE(equal(tree, read)) << bytes;
        ASSERT_TRUE(kv::write_xml_file(folder.name().c_str(), read));
        EXPECT_EQ(folder.bytes(), bytes);
        if (has_xmllint && trial % 10 == 0) {
            EXPECT_EQ(std::system(("xmllint --noout " + folder.file().string()).c_str()), 0) << bytes;
        }
    }
    EXPECT_EQ(folder.file_count(), 1u);
}

TEST(XmlWriting, IndentsWhereTheTextDoesNotChangeByIt) {
    auto const leaf = ctl::make_ref<kv::XmlElement>(u"leaf"_w, u" <]]> "_w);
    auto const mixed = ctl::make_ref<kv::XmlElement>(u"mixed"_w, u"text"_w);
    mixed->children = {leaf, element_ref(), leaf};
    auto const root = ctl::make_ref<kv::XmlElement>(u"root"_w, u"\n "_w);
    root->attributes = {{u"k"_w, u"\"\t\xFC"_w}, kv::XmlAttribute(u"e"_w)};
    root->children = {mixed, ctl::make_ref<kv::XmlElement>(u"empty"_w), element_ref()};
    test_folder const folder;
    ASSERT_TRUE(kv::write_xml_file(folder.name().c_str(), {root}));
    EXPECT_EQ(folder.bytes(),
              "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
              "<root k=\"&quot;&#9;\xC3\xBC\" e=\"\">\n"
              "  <mixed>text<leaf> &lt;]]&gt; </leaf><leaf> &lt;]]&gt; </leaf></mixed>\n"
              "  <empty/>\n"
              "</root>\n");
}

TEST(XmlWriting, RefusesWhatCannotBeReadAndKeepsTheOldFile) {
    test_folder const folder;
    kvxml::attribute_list const none;
    auto const tree = [](wide_string const& name, wide_string const& attribute) {
        auto const element = ctl::make_ref<kv::XmlElement>(name);
        element->attributes.emplace_back(attribute);
        element->attributes.emplace_back(u"x"_w);
        return element;
    };
    element_ref const good = tree(u"a"_w, u"y"_w), deep = ctl::make_ref<kv::XmlElement>(u"a"_w);
    deep->children.push_back(deep);  // contains itself
    ASSERT_TRUE(kv::write_xml_file(folder.name().c_str(), {good}));
    std::string const old = folder.bytes();
    for (element_list const& list : {element_list{},
                                     {good, good},
                                     {tree(u""_w, u"y"_w)},
                                     {tree(u"1"_w, u"y"_w)},
                                     {tree(u"a b"_w, u"y"_w)},
                                     {tree(u"a"_w, u"x"_w)},
                                     {tree(u"a"_w, u"<"_w)},
                                     {deep}}) {
        EXPECT_FALSE(kv::write_xml_file(folder.name().c_str(), list));
    }
    deep->children.clear();
    {
        auto const writer = kvxml::write_xml_file(folder.name().c_str());
        ASSERT_FALSE(!writer);
        EXPECT_TRUE(writer->AddData(u" \n"_w) && writer->StartElement(u"a"_w, none));
    }  // released with an element open
    {
        auto const writer = kvxml::write_xml_file(folder.name().c_str());
        EXPECT_TRUE(writer->StartElement(u"a"_w, none) && writer->EndElement());
        EXPECT_FALSE(writer->EndElement());
        EXPECT_FALSE(writer->AddData(u""_w));
        EXPECT_FALSE(writer->Close());
    }
    EXPECT_EQ(folder.bytes(), old);
    {
        auto const writer = kvxml::write_xml_file(folder.name().c_str()), copy = writer;
        EXPECT_TRUE(writer->StartElement(u"b"_w, none) && writer->EndElement() && copy->Close() &&
                    writer->Close());
        EXPECT_FALSE(writer->AddData(u" "_w));
    }
    EXPECT_NE(folder.bytes(), old);
    EXPECT_EQ(folder.file_count(), 1u);
    for (char const* place : {"", "none/a.xml"}) {
        EXPECT_TRUE(!kvxml::write_xml_file(to_wide((folder.file("") / place).string()).c_str())) << place;
    }
    EXPECT_TRUE(!kvxml::write_xml_file(static_cast<wide_char const*>(nullptr)));
}

// Changed bytes give a tree or false; a tree is one that can be written, unless a name is too exotic, and
// then read as it was.
TEST(XmlReading, OfChangedDocumentsGivesATreeOrFalse) {
    test_folder const folder;
    seeded_random random(7401);
    constexpr char const* splices[] = {"<",         ">",     "</a>", "<!DOCTYPE", "]]>",
                                       "<![CDATA[", "&amp;", "&#0;", "\"",        "\xFF"};
    int read_count = 0;
    for (int trial = 0; trial < 2000; ++trial) {
        SCOPED_TRACE(trial);
        if (trial % 100 == 0) {
            ASSERT_TRUE(kv::write_xml_file(folder.name().c_str(), {any_tree(random, 3)}));
        }
        std::string const original = folder.bytes();
        std::string bytes = original;
        for (unsigned int n = 1 + random.below(3); n != 0; --n) {
            std::size_t const at = random.below(static_cast<unsigned int>(bytes.size()));
            switch (random.below(4)) {
                case 0:
                    bytes[at] = static_cast<char>(random.bits());
                    break;
                case 1:
                    bytes.erase(at, 1 + random.below(8));
                    break;
                case 2:
                    bytes.insert(at, splices[random.below(std::size(splices))]);
                    break;
                default:
                    bytes.insert(at, bytes.substr(random.below(static_cast<unsigned int>(bytes.size())), 20));
            }
        }
        folder.write(bytes);
        element_list first, second;
        if (kv::read_xml_file(folder.name().c_str(), first) &&
            kv::write_xml_file(folder.name().c_str(), first)) {
            ++read_count;
            EXPECT_TRUE(kv::read_xml_file(folder.name().c_str(), second) && equal(first, second)) << bytes;
        }
        folder.write(original);
    }
    EXPECT_GT(read_count, 50);
}

TEST(XmlReading, HugeTokensTakeLinearTimeAndTreesOfAnyDepthDie) {
    test_folder const folder;
    // Scanned anew with every block of the file, 20 MB would take minutes.
    std::string const much(20000000, 'x');
    folder.write("<a y='" + much + "'><!--" + much + "--></a>");
    element_list read;
    ASSERT_TRUE(kv::read_xml_file(folder.name().c_str(), read));
    EXPECT_EQ(read[0]->attributes[0].value.size(), much.size());

    auto tree = std::make_unique<kvxml::Element>();
    element_ref simple = ctl::make_ref<kv::XmlElement>(), shared;
    for (int i = 0; i < 300000; ++i) {
        auto above = std::make_unique<kvxml::Element>(u"a"_w);
        above->children.resize(2);  // one of them null
        above->children[0] = std::move(tree);
        tree = std::move(above);
        auto const up = ctl::make_ref<kv::XmlElement>(u"a"_w);
        up->children = {simple, ctl::make_ref<kv::XmlElement>(), element_ref()};
        simple = up;
        if (i == 150000) shared = up;
    }
    EXPECT_FALSE(kv::write_xml_file(folder.name().c_str(), {simple}));
    kv::XmlElement copy = *simple;
    simple = {};
    copy = *copy.children[0];
    EXPECT_EQ(copy.children.size(), 3u);
    copy = kv::XmlElement();
    EXPECT_EQ(shared->children.size(), 3u);
}

}  // namespace
}  // namespace tvmath
