#include "platform/code_page.h"
#include "support/recording_handler.h"
#include "support/tree_dump.h"
#include "threads/independent.h"
#include <memory>
#include <pm/pm.h>
#include <pm_test_paths.h>
#include <sstream>

namespace {

using pm::test::expect_independent;
using pm::test::failure;
using pm::test::Lines;
using pm::test::RecordingHandler;
using pm::test::Report;
using pm::test::TempFolder;
using pm::test::ThreadWork;
using pm::test::tree_dump;
using pm::test::utf8;
using pm::test::Work;

std::u16string sample(const char* name) {
    return pm::to_wide(std::string(PM_SAMPLES "/") + name, pm::utf8_code_page);
}

void add(Lines& lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
}

// All steps and values of a walk, as the iterator shows them.
Lines printed(const PM_Object& object) {
    Lines lines;
    const std::unique_ptr<PM_Iterator> walk(object.newIterator(u"\\", 0));
    char* value = nullptr;
    std::size_t size = 0;
    PropType type = PROP_NONE;
    PM_Object::NodeType step{};
    do {
        while (const char16_t* name = walk->nextProp(value, size, type)) {
            const bool wide = type == PROP_STRING || type == PROP_DOUBLE;
            lines.push_back(utf8(name) + '=' +
                            (wide ? utf8(reinterpret_cast<const char16_t*>(value)) : value));
        }
    } while (walk->nextNode(step) != nullptr);
    return lines;
}

// Values that differ from thread to thread: the exact form of a double, double-byte text, raw bytes.
void fill(PM_Object& object, int number) {
    for (int index = 0; index < 20; ++index) {
        object.SetProperty(u"\\media\\size\\*\\width", (number + 1) / (index + 3.0), index);
        object.SetProperty(u"\\media\\size\\*\\count", 100 * number + index, index);
        const std::u16string text = u"\u7528\u7D19 \u20AC " + pm::to_wide(std::to_string(number * index));
        object.SetProperty(u"\\media\\size\\*\\name", text.c_str(), index);
        object.SetProperty(u"\\media\\size\\*\\landscape", (number + index) % 2 == 0, index);
    }
    const std::string bytes(static_cast<std::size_t>(number) + 1, 'x');
    object.setVoidProperty(u"\\raw", bytes.data(), static_cast<unsigned>(bytes.size()));
}

Lines loaded(const std::u16string& path, PM_Object::FileType type) {
    PM_Object object;
    object.load(path.c_str(), type, u"\\");
    Lines lines = tree_dump(object);
    add(lines, printed(object));
    return lines;
}

Lines saved_and_loaded(int number, const TempFolder& folder, PM_Object::FileType type, const char16_t* tag) {
    PM_Object object;
    fill(object, number);
    object.save(folder.wide("saved").c_str(), type, tag, u"\\");
    return loaded(folder.wide("saved"), type);
}

Lines pia(int number, const TempFolder& folder) {
    Lines lines = loaded(sample("plotter.pia"), PM_Object::FILE_PIA);
    add(lines, loaded(sample("plotter-compressed.pia"), PM_Object::FILE_PIA));
    add(lines, saved_and_loaded(number, folder, PM_Object::FILE_PIA, u"test"));
    add(lines, saved_and_loaded(number, folder, PM_Object::FILE_PIA, u"test,compress"));
    return lines;
}

// A file of sections, loaded as a whole and by section, and one that is saved.
Lines dpia(int number, const TempFolder& folder) {
    PM_Object whole;
    whole.load(sample("sections.dpia").c_str(), PM_Object::FILE_DPIA, u"\\");
    PM_Object section;
    section.load_section(sample("sections.dpia").c_str(), PM_Object::FILE_DPIA, u"\\", u"Workshop");
    Lines lines = tree_dump(whole);
    add(lines, printed(section));
    PM_Object sections;
    sections.SetProperty(u"\\s\\first\\info", u"the first");
    sections.SetProperty(u"\\s\\first\\data\\number", number);
    sections.SetProperty(u"\\s\\second\\data\\width", number / 7.0);
    sections.save(folder.wide("saved").c_str(), PM_Object::FILE_DPIA, u"", u"s");
    add(lines, loaded(folder.wide("saved"), PM_Object::FILE_DPIA));
    return lines;
}

Lines doc(int number, const TempFolder& folder) {
    return saved_and_loaded(number, folder, PM_Object::FILE_DOC, u"");
}

Lines pc2(int, const TempFolder&) {
    return loaded(sample("office.pc2"), PM_Object::FILE_PC2);
}

Lines cfg(int number, const TempFolder&) {
    PM_Object object;
    object.load_cfg_section(sample("three-plotters.cfg").c_str(), PM_Object::FILE_CFG, u"\\", 1 + number % 3);
    return tree_dump(object);
}

Lines pcp(int, const TempFolder&) {
    return loaded(sample("pens.pcp"), PM_Object::FILE_PCP);
}

Lines pdt(int, const TempFolder&) {
    return loaded(sample("dx4200/strings.pdt"), PM_Object::FILE_PDT);
}

// Text of each kind of page there and back. The system's page is set as well, to what it is.
Lines code_pages(int number, const TempFolder&) {
    Lines lines;
    pm_set_system_code_page(pm_system_code_page());
    const std::u16string text =
        u"A\u00E4\u20AC\u0416\u3042\u7528\uAC00" + pm::to_wide(std::to_string(number));
    for (const unsigned page :
         {437U, 850U, 866U, 874U, 932U, 936U, 949U, 950U, 1252U, 1255U, 28591U, 65001U}) {
        const std::string narrow = pm::to_narrow(text, page);
        lines.push_back(std::to_string(page) + ' ' + narrow + ' ' + utf8(pm::to_wide(narrow, page)));
    }
    return lines;
}

// Bad files of each text format, without a handler, with one that goes on and with one that stops.
Lines failures(int number, const TempFolder& folder) {
    const std::string bad = "\x01 bad " + std::to_string(number);
    const struct {
        PM_Object::FileType type;
        std::string content;
    } files[] = {
        {PM_Object::FILE_PIA, "PIAFILEVERSION_2.0,test\r\nx=1\n" + bad + "\ny=2\n"},
        {PM_Object::FILE_PC2, bad + "\n"},
        {PM_Object::FILE_PCP, bad + "\n"},
        {PM_Object::FILE_DPIA, bad},
    };
    Lines lines;
    for (const auto& file : files) {
        for (const int answer : {-1, 0, 1}) {
            RecordingHandler handler(answer);
            PM_Object object(answer < 0 ? nullptr : &handler);
            std::stringstream stream(file.content, std::ios::in | std::ios::out | std::ios::binary);
            lines.push_back(failure([&] { object.load(stream, file.type, u"\\"); }));
            for (const Report& report : handler.reports) {
                lines.push_back(std::to_string(report.number) + utf8(report.place) + utf8(report.detail));
            }
        }
    }
    const std::u16string absent = folder.wide("absent");
    for (const auto type : {PM_Object::FILE_PIA, PM_Object::FILE_DOC, PM_Object::FILE_PDT}) {
        PM_Object object;
        const std::string told = failure([&] { object.load(absent.c_str(), type, u"\\"); });
        lines.push_back(told.substr(0, told.find(folder.path().string()))); // the folder is the thread's own
    }
    PM_Object object;
    lines.push_back(failure([&] { object.deletePath(u"\\nothing\\here"); }));
    return lines;
}

// The functions on texts and blocks that need no object.
Lines texts(int number, const TempFolder&) {
    Lines lines;
    ZT_String text;
    text.Format(u"%d %s %.3f", number, u"\u00E4", number / 3.0);
    lines.push_back(utf8(text.text()));
    ZT_String compound;
    ZT_String front;
    ZT_String back;
    build_compound_str_ex(u"front", text.text(), compound);
    extract_compound_str_ex(compound.text(), front, back);
    lines.push_back(utf8(compound.text()) + utf8(front.text()) + utf8(back.text()));
    const std::string data(1000 + static_cast<std::size_t>(number), 'x');
    unsigned char* block = nullptr;
    std::uint32_t size = 0;
    PM_zlib_Codec codec(reinterpret_cast<const unsigned char*>(data.data()),
                        static_cast<std::uint32_t>(data.size()), nullptr);
    codec.encodeCRC(block, size);
    lines.push_back(pm::test::hex_text({reinterpret_cast<const char*>(block), size}));
    PM_Mem_Obj::operator delete(block);
    const std::string mixed = data + "abcab" + std::to_string(number);
    PM_Huffman_Codec huffman(reinterpret_cast<const unsigned char*>(mixed.data()),
                             static_cast<std::uint32_t>(mixed.size()), nullptr);
    huffman.encode(block, size);
    lines.push_back(pm::test::hex_text({reinterpret_cast<const char*>(block), size}));
    PM_Mem_Obj::operator delete(block);
    return lines;
}

class Threads : public testing::TestWithParam<ThreadWork> {};

} // namespace

TEST_P(Threads, EachGetsWhatItGetsAlone) {
    expect_independent({GetParam().work}, 3);
}

INSTANTIATE_TEST_SUITE_P(Work, Threads,
                         testing::Values(ThreadWork{"Pia", pia}, ThreadWork{"Dpia", dpia},
                                         ThreadWork{"Doc", doc}, ThreadWork{"Pc2", pc2},
                                         ThreadWork{"Cfg", cfg}, ThreadWork{"Pcp", pcp},
                                         ThreadWork{"Pdt", pdt}, ThreadWork{"CodePages", code_pages},
                                         ThreadWork{"Failures", failures}, ThreadWork{"Texts", texts}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ThreadsOverAllFormats, EachGetsWhatItGetsAlone) {
    expect_independent({pia, doc, pdt, dpia, pcp, failures, pc2, code_pages, cfg, texts}, 2);
}
