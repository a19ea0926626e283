#include "base/no_memory.h"
#include "filers/pmdoc.h"
#include "filers/pmdpia.h"
#include "filers/pmpia.h"
#include "filers/quiet_stream.h"
#include "legacy/pmpc2.h"
#include "legacy/pmpcp.h"
#include "pdt/pmpdt.h"
#include <algorithm>
#include <cerrno>
#include <memory>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <pm/object.h>

// The one place that knows every filer class.

namespace {

constexpr const char16_t* source = u"$Workfile: pmobj $ $Revision: #1 $";
constexpr const char16_t* load_place = u"PM_Object::load()";
constexpr const char16_t* save_place = u"PM_Object::save()";
constexpr const char16_t* version_place = u"PM_Object::getFileVersion()";

using FileType = PM_Object::FileType;
using FilerMaker = PM_File* (*)(ZT_Error_Handler*);

template<class Filer>
PM_File* make(ZT_Error_Handler* handler) {
    return new Filer(handler);
}

struct FilerRow {
    FileType type;
    bool loads_path;
    bool loads_stream;
    bool saves_path;
    bool saves_stream;
    FilerMaker maker;
};

constexpr FilerRow filers[] = {
    {PM_Object::FILE_PIA, true, true, true, true, make<PM_PIAFile>},
    {PM_Object::FILE_PCP, true, true, false, false, make<PM_PCPFile>},
    {PM_Object::FILE_PC2, true, true, false, false, make<PM_PC2File>},
    {PM_Object::FILE_DOC, true, false, true, false, make<PM_DOCFile>},
    {PM_Object::FILE_DPIA, true, true, true, true, make<PM_DPIAFile>},
    {PM_Object::FILE_PDT, true, true, false, false, make<PM_PDTFile>},
};

struct VersionRow {
    FileType type;
    FilerMaker maker;
};

// Kept this narrow: the header of a PIA file is asked for as FILE_PCP.
constexpr VersionRow version_filers[] = {
    {PM_Object::FILE_PCP, make<PM_PIAFile>},
    {PM_Object::FILE_DOC, make<PM_DOCFile>},
};

// Makes the filer of an operation, which dies with the result.
std::unique_ptr<PM_File> make_filer(const PM_Node* root, FilerMaker maker, ZT_Error_Handler* handler,
                                    const char16_t* place) {
    if (root == nullptr) throw PM_Severe(PM_ERR_NO_ROOT, place, u"m_root", source);
    if (maker == nullptr) throw PM_Warning(PM_ERR_TYPE_REFUSED, place, u"", source);
    std::unique_ptr<PM_File> filer(maker(handler));
    if (!filer) throw PM_Memory_Exception(place, u"pFiler", source);
    return filer;
}

FilerMaker find_maker(FileType type, bool FilerRow::*accepts) {
    const auto* row = std::find_if(std::begin(filers), std::end(filers),
                                   [&](const FilerRow& each) { return each.type == type && each.*accepts; });
    return row != std::end(filers) ? row->maker : nullptr;
}

FilerMaker find_version_maker(FileType type) {
    const auto* row = std::find_if(std::begin(version_filers), std::end(version_filers),
                                   [type](const VersionRow& each) { return each.type == type; });
    return row != std::end(version_filers) ? row->maker : nullptr;
}

// The calls of one operation. errno starts at 0 in each, so that a stream that fails for no reason of the
// system's isn't blamed on an older one.
template<class Begin, class Work>
void drive(PM_File& filer, const char16_t* place, Begin begin, Work work) {
    pm::telling_no_memory(place, u"", source, [&] {
        errno = 0;
        begin(filer);
        errno = 0;
        work(filer);
        filer.close();
    });
}

auto open_file(const char16_t* path, bool write) {
    return [path, write](PM_File& filer) { filer.open(path, write); };
}

auto attach_stream(std::iostream& stream) {
    return [&stream](PM_File& filer) { filer.attach(&stream); };
}

} // namespace

void PM_Object::load(const char16_t* path, FileType type, const char16_t* base) {
    const auto filer = make_filer(m_root, find_maker(type, &FilerRow::loads_path), m_handler, load_place);
    drive(*filer, load_place, open_file(path, false), [&](PM_File& each) { each.load(this, base, type); });
}

void PM_Object::load(std::iostream& stream, FileType type, const char16_t* base) {
    const auto filer = make_filer(m_root, find_maker(type, &FilerRow::loads_stream), m_handler, load_place);
    const pm::QuietStream quiet(stream);
    drive(*filer, load_place, attach_stream(stream), [&](PM_File& each) { each.load(this, base, type); });
}

void PM_Object::load_section(const char16_t* path, FileType type, const char16_t* base,
                             const char16_t* name) {
    const auto maker = type == FILE_DPIA ? make<PM_DPIAFile> : nullptr;
    const auto filer = make_filer(m_root, maker, m_handler, load_place);
    drive(*filer, load_place, open_file(path, false),
          [&](PM_File& each) { static_cast<PM_DPIAFile&>(each).load_section(this, base, name); });
}

void PM_Object::load_cfg_section(const char16_t* path, FileType type, const char16_t* base, int n) {
    const auto maker = type == FILE_CFG ? make<PM_CFGFile> : nullptr;
    const auto filer = make_filer(m_root, maker, m_handler, load_place);
    drive(*filer, load_place, open_file(path, false),
          [&](PM_File& each) { static_cast<PM_CFGFile&>(each).load_section(this, base, n); });
}

void PM_Object::save(const char16_t* path, FileType type, const char16_t* tag,
                     const char16_t* subtree) const {
    save(path, type, tag, subtree, false);
}

void PM_Object::save(const char16_t* path, FileType type, const char16_t* tag, const char16_t* subtree,
                     bool utf8) const {
    const auto filer = make_filer(m_root, find_maker(type, &FilerRow::saves_path), nullptr, save_place);
    if (type == FILE_PIA) static_cast<PM_PIAFile&>(*filer).set_utf8(utf8);
    drive(*filer, save_place, open_file(path, true),
          [&](PM_File& each) { each.save(this, subtree, type, tag); });
}

void PM_Object::save(std::iostream& stream, FileType type, const char16_t* tag,
                     const char16_t* subtree) const {
    save(stream, type, tag, subtree, false);
}

void PM_Object::save(std::iostream& stream, FileType type, const char16_t* tag, const char16_t* subtree,
                     bool utf8) const {
    const auto filer = make_filer(m_root, find_maker(type, &FilerRow::saves_stream), nullptr, save_place);
    if (type == FILE_PIA) static_cast<PM_PIAFile&>(*filer).set_utf8(utf8);
    const pm::QuietStream quiet(stream);
    drive(*filer, save_place, attach_stream(stream),
          [&](PM_File& each) { each.save(this, subtree, type, tag); });
}

void PM_Object::getFileVersion(const char16_t* path, char16_t* buffer, std::size_t size,
                               FileType type) const {
    const auto filer = make_filer(m_root, find_version_maker(type), nullptr, version_place);
    drive(*filer, version_place, open_file(path, false),
          [&](PM_File& each) { each.getVersion(buffer, size); });
}

void PM_Object::getFileVersion(const char16_t* path, char16_t* buffer, FileType type) const {
    getFileVersion(path, buffer, PM_File::unchecked, type);
}
