#pragma once

#include "pdt/abilities.h"
#include "pdt/load_steps.h"
#include "platform/files.h"
#include "store/pmpmgr.h"
#include "support/temp_folder.h"
#include "support/tree_dump.h"
#include <algorithm>
#include <fstream>
#include <pm/pm.h>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pm::test {

inline std::string to_narrow_name(const char16_t* text) {
    return to_narrow(text, utf8_code_page);
}

// In the order in which a load opens them.
inline constexpr Section loaded_sections[] = {
    Section::custom_capability,
    Section::dithering_method,
    Section::protocol,
    Section::io_method,
    Section::media_collating,
    Section::media_cutting,
    Section::media_description,
    Section::media_destination,
    Section::media_folding,
    Section::media_size,
    Section::media_source_entry,
    Section::media_source,
    Section::media_stapling,
    Section::media_type,
    Section::memory_area,
    Section::raster_capability,
    Section::resolution,
    Section::resolution_color_memory,
    Section::misc_info,
    Section::misc_localizable_info,
    Section::line_type_capabilities,
};

// The current folder, as long as one lives.
class CurrentFolder {
public:
    explicit CurrentFolder(const std::filesystem::path& folder) : m_old(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }
    ~CurrentFolder() { std::filesystem::current_path(m_old); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

private:
    std::filesystem::path m_old;
};

// A folder with a device description in which every table has its two heading lines only, and no text is
// translated, until a test says otherwise.
class Description {
public:
    Description() {
        strings("");
        for (int section = 0; section < section_count; ++section)
            rows(static_cast<Section>(section), "");
    }

    static std::string file_of(Section section) { return to_narrow_name(section_name(section)) + ".pdt"; }

    // The whole string file.
    Description& strings(std::string_view content) {
        m_folder.write("strings.pdt", content);
        return *this;
    }
    // The data rows of a table, behind its headings.
    Description& rows(Section section, std::string_view rows) {
        return whole(section, "heading\tof columns\nlist\ttext\n" + std::string(rows));
    }
    // A whole table.
    Description& whole(Section section, std::string_view content) {
        m_folder.write(file_of(section), content);
        return *this;
    }
    // More of a table.
    Description& append(Section section, std::string_view content) {
        std::ofstream(m_folder / file_of(section), std::ios::binary | std::ios::app)
            .write(content.data(), static_cast<std::streamsize>(content.size()));
        return *this;
    }
    Description& remove(Section section) {
        std::filesystem::remove(m_folder / file_of(section));
        return *this;
    }

    const TempFolder& folder() const { return m_folder; }
    std::u16string string_file() const { return m_folder.wide("strings.pdt"); }
    std::u16string path_of(Section section) const { return m_folder.wide(file_of(section)); }

    void load(PM_Object& object, const char16_t* base = u"\\") const {
        object.load(string_file().c_str(), PM_Object::FILE_PDT, base);
    }

private:
    TempFolder m_folder;
};

// Reads a description, or single tables of it, with what a load carries open to look at: records that no item
// shows, and the abilities.
class DescriptionLoad : public PdtLoad {
public:
    explicit DescriptionLoad(const Description& description) {
        string_file = description.string_file();
        base = u"\\";
    }
    // All steps of a load.
    void load_into(PM_Object& target) {
        begin(target);
        for (const LoadStep& step : load_steps()) {
            run_step(*this, step);
        }
    }
    // The step of one table.
    void load_section_into(PM_Object& target, Section section) {
        if (object == nullptr) begin(target);
        run_step(*this, load_step_of(section));
    }

    // Without the one that every load marks.
    std::vector<int> media_marks() const {
        std::vector<int> marks = marks_in(FlagAccess::text(media_abilities));
        std::erase(marks, static_cast<int>(MediaAbility::form_read));
        return marks;
    }
    std::vector<int> io_marks() const { return marks_in(FlagAccess::text(io_abilities)); }
    std::vector<int> color_marks() const { return marks_in(FlagAccess::text(color_abilities)); }

    // The numbers of the flags that are marked in a set's text; any other value than a mark shows as -1.
    static std::vector<int> marks_in(std::u16string_view text) {
        std::vector<int> marks;
        for (std::size_t index = 0; index < text.size(); ++index) {
            if (text[index] == u'0') continue;
            marks.push_back(text[index] == u'5' ? static_cast<int>(index) : -1);
        }
        return marks;
    }

private:
    void begin(PM_Object& target) {
        object = &target;
        std::ifstream stream(native_file_name(string_file), std::ios::binary);
        LineReader reader;
        reader.attach(stream);
        strings.load_strings(reader, string_file.c_str());
    }
};

// A tree whose nodes can be looked at.
class OpenObject : public PM_Object {
public:
    const PM_Node& root() const { return *m_root; }

    // All items below a node as tree_dump() gives them. Empty without the node.
    std::vector<std::string> items(std::u16string_view path) const {
        const PM_Node* node = m_root;
        for (std::size_t at = 0; node != nullptr && at < path.size();) {
            const std::size_t end = std::min(path.find(u'\\', at), path.size());
            node = find(*node, path.substr(at, end - at));
            at = end + 1;
        }
        return node != nullptr ? tree_dump(tree_items(*node)) : std::vector<std::string>();
    }

private:
    static const PM_Node* find(const PM_Node& node, std::u16string_view name) {
        const PM_Node* child = node.first_child();
        while (child != nullptr && child->name() != name)
            child = child->next_sibling();
        return child;
    }
};

// The tree of a description, below `path`.
inline std::vector<std::string> items_of(const Description& description, std::u16string_view path) {
    OpenObject object;
    description.load(object);
    return object.items(path);
}

using Items = std::vector<std::string>;

inline bool has_item(const Items& items, std::string_view item) {
    return std::find(items.begin(), items.end(), item) != items.end();
}

} // namespace pm::test
