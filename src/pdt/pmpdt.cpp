#include "pdt/pmpdt.h"

#include "base/text.h"
#include "pdt/failure.h"
#include "pdt/load_steps.h"
#include <memory>
#include <pm/error_number.h>

namespace {

constexpr int version_column = 62;

void check_arguments(const PM_Object* object, const char16_t* root, PM_Object::FileType type) {
    if (object == nullptr) pm::throw_pdt_failure(PM_ERR_NOTHING_THERE, root);
    if (pm::view(root).empty()) pm::throw_pdt_failure(PM_ERR_BAD_PATH, root);
    if (type != PM_Object::FILE_PDT) pm::throw_pdt_failure(PM_ERR_WRONG_TYPE, root);
}

} // namespace

PM_PDTFile::~PM_PDTFile() = default;

void PM_PDTFile::load(PM_Object* object, const char16_t* root, PM_Object::FileType type) {
    const auto load = std::make_unique<pm::PdtLoad>();
    load_strings(load->strings);
    check_arguments(object, root, type);
    load->string_file = m_filename;
    load->object = object;
    load->base = root;
    for (const pm::LoadStep& step : pm::load_steps()) {
        pm::run_step(*load, step);
    }
}

void PM_PDTFile::load_strings(pm::StringTable& strings) {
    m_stream->clear();
    rewind_reader();
    strings.load_strings(m_reader, file_name());
    if (m_stream->bad()) pm::throw_pdt_failure(PM_ERR_NOT_OPENED, file_name());
}

void PM_PDTFile::getVersion(char16_t* buffer, std::size_t size) {
    pm::SectionReader section(pm::folder_of(m_filename), pm::Section::global_static_lists,
                              pm::SectionReader::heading_lines - 1);
    pm::RowLine line;
    section.read_row(line);
    std::size_t position = 0;
    for (int column = 1; column < version_column; ++column) {
        line.next_field(position);
    }
    copy_version(line.next_field(position), buffer, size);
}
