#include "faults/memory_operations.h"

#include "filers/memory_stream.h"
#include <memory>
#include <pm/inspect.h>
#include <sstream>

namespace pm::test {

namespace {

// The names and contents of files are there before memory fails.
const std::u16string& name_of(const char* sample) {
    static std::map<std::string, std::u16string> names;
    const Spared test;
    std::u16string& name = names[sample];
    if (name.empty()) name = FaultFiles::get().wide(sample);
    return name;
}

std::string& content_of(const char* sample) {
    static std::map<std::string, std::string> contents;
    const Spared test;
    std::string& content = contents[sample];
    if (content.empty()) content = FaultFiles::get().content(sample);
    return content;
}

template<PM_Object::FileType type>
void load(Subject& subject, const char* sample) {
    subject.object.load(name_of(sample).c_str(), type, u"\\loaded");
}

template<PM_Object::FileType type>
void load_stream(Subject& subject, const char* sample) {
    std::string& content = content_of(sample);
    MemoryStream stream({content.data(), content.size()});
    subject.object.load(stream, type, u"\\loaded");
}

// What was saved is looked at without what fails.
void save(Subject& subject, PM_Object::FileType type, const char16_t* tag, bool utf8 = false) {
    subject.object.save(subject.target().c_str(), type, tag, u"\\", utf8);
    const Spared test;
    subject.note(hex_text(subject.saved()));
}

void save_dpia(Subject& subject) {
    subject.object.save(subject.target().c_str(), PM_Object::FILE_DPIA, u"", u"\\sections");
    const Spared test;
    subject.note(hex_text(subject.saved()));
}

// Takes what fits and has no memory of its own.
class FixedBuffer : public std::streambuf {
public:
    FixedBuffer() { setp(m_block, m_block + sizeof m_block); }
    std::string_view written() const { return {m_block, m_end}; }

protected:
    int sync() override {
        m_end = std::max(m_end, position());
        return 0;
    }
    pos_type seekoff(off_type offset, std::ios::seekdir, std::ios::openmode) override {
        return seekpos(offset, std::ios::out);
    }
    pos_type seekpos(pos_type position, std::ios::openmode) override {
        sync();
        setp(m_block, m_block + sizeof m_block);
        pbump(static_cast<int>(off_type(position)));
        return position;
    }

private:
    std::size_t position() const { return static_cast<std::size_t>(pptr() - pbase()); }

    char m_block[4096] = {};
    std::size_t m_end = 0;
};

constexpr const char* type_names[] = {"pia", "pcp", "pc2", "doc", "pdt", "dpia", "cfg"};

constexpr const char* no_filer = "PM_Memory_Exception 55, PM_Object::load(), pFiler";
constexpr const char* no_load = "PM_Memory_Exception 55, PM_Object::load(), ";
constexpr const char* no_saver = "PM_Memory_Exception 55, PM_Object::save(), pFiler";
constexpr const char* no_save = "PM_Memory_Exception 55, PM_Object::save(), ";
constexpr const char* no_pia_line = "PM_Memory_Exception 55, .\\pmpia, line";
constexpr const char* no_pia_data = "PM_Memory_Exception 55, .\\pmpia, data";
constexpr const char* no_pia_file = "PM_Memory_Exception 55, .\\pmpia, buffer";
constexpr const char* not_decoded = "PM_Severe 84, .\\pmpia, decompression of PIA data failed";
constexpr const char* not_encoded = "PM_Severe 85, .\\pmpia, compression of PIA data failed";
constexpr const char* no_output = "PM_Memory_Exception 55, PM_PIAFile::save(), buffer";
constexpr const char* no_iterator = "PM_Memory_Exception 55, PM_PIAFile::save(), piter";
constexpr const char* no_descriptor = "PM_Memory_Exception 55, PM_DPIAFile::load(), descriptor";
constexpr const char* no_info = "PM_Memory_Exception 55, PM_DPIAFile::load(), info";

const MemoryOperation operations[] = {
    {"LoadPia", [](Subject& s) { load<PM_Object::FILE_PIA>(s, "plotter.pia"); },
     store_failures(
         {no_filer, no_load, no_pia_line, no_pia_data, "PM_Severe 64, PM_PIAFile::open(), plotter.pia"})},
    {"LoadPiaStream", [](Subject& s) { load_stream<PM_Object::FILE_PIA>(s, "plotter.pia"); },
     store_failures({no_filer, no_load, no_pia_line, no_pia_data})},
    {"LoadCompressedPia", [](Subject& s) { load<PM_Object::FILE_PIA>(s, "plotter-compressed.pia"); },
     store_failures({no_filer, no_load, no_pia_file, no_pia_line, no_pia_data, not_decoded,
                     "PM_Severe 64, PM_PIAFile::open(), plotter-compressed.pia"})},
    {"LoadLongPia", [](Subject& s) { load<PM_Object::FILE_PIA>(s, "long.pia"); },
     store_failures(
         {no_filer, no_load, no_pia_line, no_pia_data, "PM_Severe 64, PM_PIAFile::open(), long.pia"})},
    {"LoadDpia", [](Subject& s) { load<PM_Object::FILE_DPIA>(s, "sections.dpia"); },
     store_failures(
         {no_filer, no_load, no_descriptor, no_info, "PM_Severe 64, PM_DPIAFile::open(), sections.dpia"})},
    {"LoadDpiaStream", [](Subject& s) { load_stream<PM_Object::FILE_DPIA>(s, "sections.dpia"); },
     store_failures({no_filer, no_load, no_descriptor, no_info})},
    {"LoadSection",
     [](Subject& s) {
         s.object.load_section(name_of("sections.dpia").c_str(), PM_Object::FILE_DPIA, u"\\loaded",
                               u"Workshop");
     },
     store_failures({no_filer, no_load, no_descriptor, no_info, no_pia_file, no_pia_line, not_decoded,
                     "nothing done", "PM_Severe 64, PM_DPIAFile::open(), sections.dpia"}),
     LessDone::nothing},
    {"LoadPc2", [](Subject& s) { load<PM_Object::FILE_PC2>(s, "office.pc2"); },
     store_failures({no_filer, no_load, "57", "PM_Severe 64, PM_PIAFile::open(), office.pc2"}),
     LessDone::bad_line},
    {"LoadPc2Stream", [](Subject& s) { load_stream<PM_Object::FILE_PC2>(s, "office.pc2"); },
     store_failures({no_filer, no_load, "57"}), LessDone::bad_line},
    {"LoadCfg",
     [](Subject& s) {
         s.object.load_cfg_section(name_of("three-plotters.cfg").c_str(), PM_Object::FILE_CFG, u"\\loaded",
                                   2);
     },
     store_failures({no_filer, no_load, "57", "PM_Severe 64, PM_PIAFile::open(), three-plotters.cfg"}),
     LessDone::bad_line},
    {"LoadPcp", [](Subject& s) { load<PM_Object::FILE_PCP>(s, "pens.pcp"); },
     store_failures({no_filer, no_load, "PM_Severe 64, PM_PIAFile::open(), pens.pcp"})},
    {"LoadPcpStream", [](Subject& s) { load_stream<PM_Object::FILE_PCP>(s, "pens.pcp"); },
     store_failures({no_filer, no_load})},
    {"LoadDoc", [](Subject& s) { load<PM_Object::FILE_DOC>(s, "sample.doc"); },
     store_failures({no_filer, no_load, "PM_Severe 56, PM_DOCFile::open(), sample.doc"})},
    {"LoadPdt", [](Subject& s) { load<PM_Object::FILE_PDT>(s, "dx4200/strings.pdt"); },
     store_failures({no_filer, no_load, "PM_Severe 64, PM_PIAFile::open(), strings.pdt",
                     "PM_Severe 64, PM_PDTFile::load(), "})},
    {"SavePia",
     [](Subject& s) { save(s, PM_Object::FILE_PIA, u"tag"); },
     {no_saver, no_save, no_output, no_iterator, "PM_Severe 64, PM_PIAFile::open(), saved"}},
    {"SavePiaUtf8",
     [](Subject& s) { save(s, PM_Object::FILE_PIA, u"tag", true); },
     {no_saver, no_save, no_output, no_iterator, "PM_Severe 64, PM_PIAFile::open(), saved"}},
    {"SaveCompressedPia",
     [](Subject& s) { save(s, PM_Object::FILE_PIA, u"compress"); },
     {no_saver, no_save, no_output, no_iterator, not_encoded, "PM_Severe 64, PM_PIAFile::open(), saved"}},
    {"SavePiaStream",
     [](Subject& s) {
         FixedBuffer buffer;
         std::iostream stream(&buffer);
         s.object.save(stream, PM_Object::FILE_PIA, u"", u"\\known");
         s.note(buffer.written());
     },
     {no_saver, no_output, no_iterator}},
    {"SaveDpia",
     save_dpia,
     {no_saver, no_save, no_output, no_iterator, not_encoded,
      "PM_Memory_Exception 55, PM_DPIAFile::save(), descriptor",
      "PM_Memory_Exception 55, PM_DPIAFile::save(), info",
      "PM_Memory_Exception 55, PM_DPIAFile::save(), pIter", "PM_Severe 64, PM_DPIAFile::open(), saved",
      "PM_Severe 64, PM_PIAFile::save(), "}},
    {"SaveDpiaStream",
     [](Subject& s) {
         FixedBuffer buffer;
         std::iostream stream(&buffer);
         s.object.save(stream, PM_Object::FILE_DPIA, u"", u"\\sections");
         const Spared test;
         s.note(hex_text(buffer.written()));
     },
     {no_saver, no_save, no_output, no_iterator, not_encoded,
      "PM_Memory_Exception 55, PM_DPIAFile::save(), descriptor",
      "PM_Memory_Exception 55, PM_DPIAFile::save(), info",
      "PM_Memory_Exception 55, PM_DPIAFile::save(), pIter", "PM_Severe 64, PM_PIAFile::save(), "}},
    {"SaveDoc",
     [](Subject& s) { save(s, PM_Object::FILE_DOC, u""); },
     {no_saver, no_save, "PM_Memory_Exception 55, PM_DOCFile::save(), piter",
      "PM_Severe 60, PM_DOCFile::save(), saved"}},
    {"VersionOfPia",
     [](Subject& s) {
         char16_t version[40];
         s.object.getFileVersion(name_of("plotter.pia").c_str(), version, 40, PM_Object::FILE_PCP);
         s.note(version);
     },
     {"PM_Memory_Exception 55, PM_Object::getFileVersion(), ",
      "PM_Memory_Exception 55, PM_Object::getFileVersion(), pFiler",
      "PM_Severe 64, PM_PIAFile::open(), plotter.pia"}},
    {"VersionOfDoc",
     [](Subject& s) {
         char16_t version[40];
         s.object.getFileVersion(name_of("sample.doc").c_str(), version, 40, PM_Object::FILE_DOC);
         s.note(version);
     },
     {"PM_Memory_Exception 55, PM_Object::getFileVersion(), ",
      "PM_Memory_Exception 55, PM_Object::getFileVersion(), pFiler",
      "PM_Severe 56, PM_DOCFile::open(), sample.doc"}},
    {"Identify",
     [](Subject& s) {
         for (const char* const sample :
              {"plotter.pia", "sections.dpia", "office.pc2", "sample.doc", "pens.pcp"}) {
             const auto identity = identify(name_of(sample));
             s.note(identity ? type_names[identity->type] : "unknown");
         }
     },
     {no_descriptor, no_info, "PM_Memory_Exception 55, pm::identify(), ",
      "PM_Severe 64, pm::identify(), plotter.pia", "PM_Severe 64, pm::identify(), sections.dpia",
      "PM_Severe 64, pm::identify(), office.pc2", "PM_Severe 64, pm::identify(), sample.doc",
      "PM_Severe 64, pm::identify(), pens.pcp"}},
    {"IdentifyContent",
     [](Subject& s) {
         const auto identity = identify_content(content_of("three-plotters.cfg"));
         s.note(identity ? type_names[identity->type] : "unknown");
     },
     {"PM_Memory_Exception 55, pm::identify(), ", "PM_Memory_Exception 55, pm::cfg_plotters(), "}},
    {"Sections",
     [](Subject& s) {
         for (const DpiaSection& section : dpia_sections(name_of("sections.dpia"))) {
             const Spared test;
             s.note(utf8(section.name));
         }
     },
     {no_descriptor, no_info, "PM_Memory_Exception 55, pm::dpia_sections(), ",
      "PM_Severe 64, PM_DPIAFile::open(), sections.dpia"}},
    {"Plotters",
     [](Subject& s) {
         for (const CfgPlotter& plotter : cfg_plotters(name_of("three-plotters.cfg"))) {
             s.note(std::to_string(plotter.number));
         }
     },
     {"PM_Memory_Exception 55, pm::cfg_plotters(), ",
      "PM_Severe 64, PM_PIAFile::open(), three-plotters.cfg"}},
};

} // namespace

std::span<const MemoryOperation> filer_operations() {
    return operations;
}

} // namespace pm::test
