#include "faults/subject.h"
#include "support/exceptions.h"
#include <cstdlib>
#include <gtest/gtest.h>
#include <ostream>
#include <pm/codec.h>
#include <pm/srcstreambuf.h>
#include <pm/value_text.h>
#include <sstream>

// What no format and no interface tells is decided here: nulls, empty paths, and buffers that are too small.

namespace {

using namespace pm::test;

struct OpenCase {
    const char* name;
    void (*run)(Subject&);
    const char* outcome; // what it notes, or the class, number, place and detail of what it throws

    friend void PrintTo(const OpenCase& each, std::ostream* out) { *out << each.name; }
};

void note(Subject& subject, std::size_t number) {
    subject.note(std::to_string(number));
}

void note_answer(Subject& subject, bool answer) {
    subject.note(answer ? "true" : "false");
}

// The number of its nodes and properties.
void note_tree(Subject& subject) {
    std::size_t count = 0;
    for (const auto& [node, depth] : pm::root_of(subject.object).walk()) {
        count += 1 + static_cast<std::size_t>(std::ranges::distance(node.properties()));
    }
    note(subject, count);
}

constexpr const char16_t* null_text = nullptr;
constexpr const unsigned char* null_bytes = nullptr;

template<PM_Object::FileType type>
void load(Subject& subject, const char* sample, const char16_t* base) {
    subject.object.load(FaultFiles::get().wide(sample).c_str(), type, base);
    note_tree(subject);
}

template<class Codec>
void encode(Subject& subject, std::uint32_t size) {
    Codec codec(nullptr, size, &subject);
    unsigned char* out = nullptr;
    std::uint32_t out_size = 0;
    const bool answer = codec.encode(out, out_size);
    note_answer(subject, answer);
    if (answer) PM_Mem_Obj::operator delete(out);
}

template<class Codec>
void decode(Subject& subject, std::uint32_t size) {
    Codec codec(nullptr, size, &subject);
    unsigned char* out = nullptr;
    std::uint32_t out_size = 0;
    note_answer(subject, codec.decode(out, out_size));
}

const OpenCase cases[] = {
    // paths
    {"SetOfANullPath", [](Subject& s) { s.object.SetProperty(nullptr, 1); },
     "PM_Warning 51, PM_Object::SetData(),"},
    {"GetOfANullPath",
     [](Subject& s) {
         int value = 0;
         note_answer(s, s.object.GetProperty(nullptr, value));
     },
     "false"},
    {"SizeOfANullPath", [](Subject& s) { note(s, s.object.getPropertySize(nullptr)); },
     "PM_Warning 51, PM_Object::getPropertySize(),"},
    {"ExistenceOfANullPath", [](Subject& s) { note_answer(s, s.object.pathExists(nullptr)); }, "false"},
    {"DeletionOfANullPath", [](Subject& s) { s.object.deletePath(nullptr); },
     "PM_Warning 51, PM_Object::DeletePath(),"},
    {"CopyFromANullPath", [](Subject& s) { s.object.duplicate(nullptr, u"copy"); },
     "PM_Warning 51, PM_Iterator::PM_Iterator(),"},
    {"CopyToANullPath",
     [](Subject& s) {
         s.object.duplicate(u"known", nullptr);
         note_tree(s);
     },
     "23"},
    {"IteratorOfANullPath", [](Subject& s) { delete s.object.newIterator(nullptr, 0); },
     "PM_Warning 51, PM_Iterator::PM_Iterator(),"},
    {"NodeOfANullPath",
     [](Subject& s) {
         pm::make_node(s.object, nullptr);
         note_tree(s);
     },
     "18"},
    {"PropertyAtANullPath",
     [](Subject& s) { note_answer(s, pm::property_at(s.object, nullptr).has_value()); }, "false"},
    // values
    {"NullText",
     [](Subject& s) {
         s.object.SetProperty(u"t", null_text);
         note(s, s.object.getPropertySize(u"t"));
     },
     "2"},
    {"NullNarrowText",
     [](Subject& s) {
         s.object.SetProperty(u"t", null_bytes);
         note(s, s.object.getPropertySize(u"t"));
     },
     "1"},
    {"NullRawDataOfNoBytes",
     [](Subject& s) {
         s.object.setVoidProperty(u"r", nullptr, 0);
         note(s, s.object.getPropertySize(u"r"));
     },
     "0"},
    {"NullRawDataOfSomeBytes",
     [](Subject& s) {
         s.object.setVoidProperty(u"r", nullptr, 5);
         note(s, s.object.getPropertySize(u"r"));
     },
     "0"},
    {"NullBuffer",
     [](Subject& s) {
         char16_t* const none = nullptr;
         note_answer(s, s.object.GetProperty(u"known\\n\\q", none, 100));
     },
     "PM_Warning 58, PM_Property::GetData(), q"},
    {"NullRawBuffer", [](Subject& s) { note_answer(s, s.object.getVoidProperty(u"raw\\v", nullptr, 100)); },
     "PM_Warning 58, PM_Property::GetData(), v"},
    {"BufferThatIsOneByteShort",
     [](Subject& s) {
         char16_t text[5];
         note_answer(s, s.object.GetProperty(u"known\\n\\q", text, sizeof text - 1));
     },
     "PM_Warning 58, PM_Property::GetData(), q"},
    {"PathOf1024Units", [](Subject& s) { s.object.SetProperty(std::u16string(1024, u'x').c_str(), 1); },
     "PM_Warning 51, PM_Object::SetData(), xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"},
    {"TextOf5000Units",
     [](Subject& s) {
         s.object.SetProperty(u"t", std::u16string(5000, u'x').c_str());
         note(s, s.object.getPropertySize(u"t"));
     },
     "8194"},
    // files
    {"LoadOfANullName", [](Subject& s) { s.object.load(null_text, PM_Object::FILE_PIA, u"\\"); },
     "PM_Severe 63, PM_PIAFile::load(),"},
    {"LoadOfADocOfANullName", [](Subject& s) { s.object.load(null_text, PM_Object::FILE_DOC, u"\\"); },
     "PM_Severe 56, PM_DOCFile::open(),"},
    {"LoadOfADescriptionOfANullName",
     [](Subject& s) { s.object.load(null_text, PM_Object::FILE_PDT, u"\\"); },
     "PM_Severe 63, PM_PIAFile::load(),"},
    {"SaveToANullName", [](Subject& s) { s.object.save(null_text, PM_Object::FILE_PIA, u"", u"\\"); },
     "PM_Severe 63, PM_PIAFile::open(),"},
    {"SaveToADocOfANullName", [](Subject& s) { s.object.save(null_text, PM_Object::FILE_DOC, u"", u"\\"); },
     "PM_Severe 56, PM_DOCFile::open(),"},
    {"PiaAtANullBase", [](Subject& s) { load<PM_Object::FILE_PIA>(s, "plotter.pia", nullptr); }, "164"},
    {"PiaAtAnEmptyBase", [](Subject& s) { load<PM_Object::FILE_PIA>(s, "plotter.pia", u""); }, "164"},
    {"DpiaAtANullBase", [](Subject& s) { load<PM_Object::FILE_DPIA>(s, "sections.dpia", nullptr); }, "28"},
    {"DpiaAtAnEmptyBase", [](Subject& s) { load<PM_Object::FILE_DPIA>(s, "sections.dpia", u""); }, "28"},
    {"Pc2AtANullBase", [](Subject& s) { load<PM_Object::FILE_PC2>(s, "office.pc2", nullptr); }, "1446"},
    {"Pc2AtAnEmptyBase", [](Subject& s) { load<PM_Object::FILE_PC2>(s, "office.pc2", u""); }, "1446"},
    {"PcpAtANullBase", [](Subject& s) { load<PM_Object::FILE_PCP>(s, "pens.pcp", nullptr); }, "1313"},
    {"PcpAtAnEmptyBase", [](Subject& s) { load<PM_Object::FILE_PCP>(s, "pens.pcp", u""); }, "1313"},
    {"DocAtANullBase", [](Subject& s) { load<PM_Object::FILE_DOC>(s, "sample.doc", nullptr); }, "164"},
    {"DocAtAnEmptyBase", [](Subject& s) { load<PM_Object::FILE_DOC>(s, "sample.doc", u""); }, "164"},
    {"DescriptionAtANullBase",
     [](Subject& s) { load<PM_Object::FILE_PDT>(s, "dx4200/strings.pdt", nullptr); },
     "PM_Severe 51, PM_PDTFile::load(),"},
    {"DescriptionAtAnEmptyBase", [](Subject& s) { load<PM_Object::FILE_PDT>(s, "dx4200/strings.pdt", u""); },
     "PM_Severe 51, PM_PDTFile::load(),"},
    {"SectionOfANullName",
     [](Subject& s) {
         s.object.load_section(FaultFiles::get().wide("sections.dpia").c_str(), PM_Object::FILE_DPIA, u"\\",
                               nullptr);
     },
     "PM_Severe 83, load_section,"},
    {"SectionAtANullBase",
     [](Subject& s) {
         s.object.load_section(FaultFiles::get().wide("sections.dpia").c_str(), PM_Object::FILE_DPIA, nullptr,
                               u"Office");
     },
     "PM_Severe 83, load_section, Office"},
    {"PlotterAtANullBase",
     [](Subject& s) {
         s.object.load_cfg_section(FaultFiles::get().wide("three-plotters.cfg").c_str(), PM_Object::FILE_CFG,
                                   nullptr, 1);
         note_tree(s);
     },
     "1446"},
    {"SaveWithANullTag",
     [](Subject& s) {
         std::stringstream stream("?");
         s.object.save(stream, PM_Object::FILE_PIA, nullptr, u"\\known\\n");
         s.note(stream.str());
     },
     "PIAFILEVERSION_2.0,\r\nq=\"text\nd=0.1\nb=TRUE"},
    {"SaveOfANullSubtree",
     [](Subject& s) {
         std::stringstream stream("?");
         s.object.save(stream, PM_Object::FILE_PIA, u"", nullptr);
     },
     "PM_Warning 51, PM_Iterator::PM_Iterator(),"},
    {"SaveOfAnEmptySubtree",
     [](Subject& s) {
         std::stringstream stream("?");
         s.object.save(stream, PM_Object::FILE_PIA, u"", u"");
     },
     "PM_Warning 51, PM_Iterator::PM_Iterator(),"},
    {"SaveOfADpiaOfANullSubtree",
     [](Subject& s) {
         std::stringstream stream("?");
         s.object.save(stream, PM_Object::FILE_DPIA, u"", nullptr);
     },
     "PM_Warning 51, PM_Iterator::PM_Iterator(),"},
    {"VersionIntoANullBuffer",
     [](Subject& s) {
         s.object.getFileVersion(FaultFiles::get().wide("plotter.pia").c_str(), nullptr, 100,
                                 PM_Object::FILE_PCP);
         s.note("nothing");
     },
     "nothing"},
    {"VersionOfADocIntoANullBuffer",
     [](Subject& s) {
         s.object.getFileVersion(FaultFiles::get().wide("sample.doc").c_str(), nullptr, 100,
                                 PM_Object::FILE_DOC);
         s.note("nothing");
     },
     "nothing"},
    {"VersionIntoABufferOfOneUnit",
     [](Subject& s) {
         char16_t unit[2] = {u'x', u'y'};
         s.object.getFileVersion(FaultFiles::get().wide("plotter.pia").c_str(), unit, 1, PM_Object::FILE_PCP);
         s.note(unit[0] == u'\0' && unit[1] == u'y' ? "empty" : "overrun");
     },
     "empty"},
    // text forms
    {"BinaryOfANullText",
     [](Subject& s) {
         char* out = nullptr;
         unsigned size = 0;
         note(s, static_cast<std::size_t>(stringtobinary(nullptr, &out, &size)));
     },
     "0"},
    {"BinaryIntoNulls",
     [](Subject& s) {
         note(s, static_cast<std::size_t>(stringtobinary(u"55555555U3_#T@", nullptr, nullptr)));
     },
     "0"},
    {"HexOfNothing",
     [](Subject& s) {
         char text[2] = {};
         note_answer(s, pm_bin_to_hex(nullptr, text, 1) || pm_bin_to_hex(text, nullptr, 1) ||
                            pm_bin_to_hex(text, text, 0) || pm_bin_to_hex(text, text, -1));
     },
     "false"},
    {"BytesOfNothing",
     [](Subject& s) {
         char byte = 0;
         note_answer(s, pm_hex_to_bin(nullptr, &byte) || pm_hex_to_bin("00", nullptr) ||
                            pm_hex_to_bin("", &byte));
     },
     "false"},
    {"CompoundTextOfANull",
     [](Subject&) {
         ZT_String out;
         build_compound_str_ex(nullptr, u"b", out);
     },
     "PM_Memory_Exception 55, .\\pmobj, strlist[idx]"},
    {"CompoundTextOfANegativeCount",
     [](Subject& s) {
         ZT_String out;
         note_answer(s, drc_compound_str_from_list(nullptr, -1, out));
         s.note(out.text());
     },
     "true 00"},
    {"TakingANullCompoundTextApart",
     [](Subject&) {
         ZT_String a;
         ZT_String b;
         extract_compound_str_ex(nullptr, a, b);
     },
     "PM_Memory_Exception 55, .\\pmobj, input"},
    {"NullStrings",
     [](Subject& s) {
         ZT_String text(nullptr);
         text.copy(null_text);
         const ZT_String sum = text + null_text;
         note(s, static_cast<std::size_t>(sum.length()));
     },
     "0"},
    {"NullFormat",
     [](Subject& s) {
         ZT_String text(u"before");
         text.Format(nullptr);
         note(s, static_cast<std::size_t>(text.length()));
     },
     "0"},
    {"NullTextsOfAnException", [](Subject&) { throw PM_Error(PM_ERR_BAD_LINE, nullptr, nullptr, nullptr); },
     "PM_Error 57, null,"},
    // codecs
    {"ZlibEncodesNothing", [](Subject& s) { encode<PM_zlib_Codec>(s, 0); }, "true"},
    {"ZlibEncodesANull", [](Subject& s) { encode<PM_zlib_Codec>(s, 5); }, "94 false"},
    {"ZlibDecodesANull", [](Subject& s) { decode<PM_zlib_Codec>(s, 5); }, "92 false"},
    {"HuffmanEncodesNothing", [](Subject& s) { encode<PM_Huffman_Codec>(s, 0); }, "92 false"},
    {"HuffmanEncodesANull", [](Subject& s) { encode<PM_Huffman_Codec>(s, 5); }, "92 false"},
    {"HuffmanDecodesANull", [](Subject& s) { decode<PM_Huffman_Codec>(s, 5); }, "92 false"},
    {"FramesOfANull",
     [](Subject& s) {
         note_answer(s, pm_zlib_block_fits(nullptr, 5, true) || pm_zlib_block_fits(nullptr, 5, false) ||
                            pm_huffman_block_fits(nullptr, 5));
     },
     "false"},
    // streams and files of no name
    {"BufferOfNulls",
     [](Subject& s) {
         pm_srcstreambuf buffer;
         buffer.setg(nullptr, nullptr, nullptr);
         std::iostream stream(&buffer);
         s.object.load(stream, PM_Object::FILE_PIA, u"\\");
     },
     "PM_Severe 82, PM_PIAFile::getVersion(),"},
    {"IdentityOfNoName", [](Subject&) { (void)pm::identify(u""); }, "PM_Severe 63, pm::identify(),"},
    {"StringFileOfNoFolder", [](Subject& s) { note_answer(s, pm::find_string_file(u"").has_value()); },
     "false"},
    {"IdentityOfNothing", [](Subject& s) { note_answer(s, pm::identify_content({}).has_value()); }, "false"},
};

class OpenBehaviour : public testing::TestWithParam<OpenCase> {};

TEST_P(OpenBehaviour, IsAsDecided) {
    Subject subject;
    const std::type_info* type = nullptr;
    const auto thrown = thrown_by([&] { GetParam().run(subject); }, &type);
    std::string outcome = subject.notes();
    if (thrown) {
        outcome += class_name(*type) + ' ' + std::to_string(thrown->m_number) + ", ";
        outcome += thrown->m_place != nullptr ? utf8(thrown->m_place) : "null";
        outcome += ", " + utf8(thrown->m_detail);
    }
    while (outcome.ends_with(' ') || outcome.ends_with('\n') || outcome.ends_with('\0')) {
        outcome.pop_back();
    }
    EXPECT_EQ(GetParam().outcome, outcome.substr(0, 90));
}

std::string name_of(const testing::TestParamInfo<OpenCase>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Decided, OpenBehaviour, testing::ValuesIn(cases), name_of);

} // namespace
