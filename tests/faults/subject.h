#pragma once

#include "faults/memory_faults.h"
#include "faults/system_calls.h"
#include "store/pmpmgr.h"
#include "support/temp_folder.h"
#include "support/tree_dump.h"
#include <gtest/gtest.h>
#include <map>
#include <pm/pm.h>
#include <pm_test_paths.h>
#include <string>

namespace pm::test {

// A tree whose names can be counted.
class CountedObject : public PM_Object {
public:
    using PM_Object::PM_Object;

    using Names = std::map<std::u16string, std::int32_t>;

    // References that the nodes and properties hold.
    Names names() const {
        Names found;
        count_names(*m_root, found);
        return found;
    }
    // Those that the table counts for a name.
    std::int32_t references(const std::u16string& name) const {
        const PM_PathStrings::Entry* const entry = m_strings->Find(name.c_str());
        return entry != nullptr ? entry->count() : 0;
    }

private:
    static void count_names(const PM_Node& node, Names& names) {
        ++names[node.name()];
        for (const PM_Property* prop = node.first_prop(); prop != nullptr; prop = prop->next()) {
            ++names[prop->name()];
        }
        for (const PM_Node* child = node.first_child(); child != nullptr; child = child->next_sibling()) {
            count_names(*child, names);
        }
    }
};

// The files that operations read, made once.
class FaultFiles {
public:
    static const FaultFiles& get() {
        static const FaultFiles files;
        return files;
    }

    // A file of examples/samples, or one that was made: "sample.doc", "long.pia".
    std::u16string wide(const std::string& name) const {
        return std::filesystem::exists(m_folder / name) ? m_folder.wide(name)
                                                        : wide_file_name(std::string(PM_SAMPLES "/") + name);
    }
    std::string narrow(const std::string& name) const { return to_narrow(wide(name), utf8_code_page); }
    std::string content(const std::string& name) const { return TempFolder::read_file(narrow(name)); }
    static std::u16string wide_file_name(const std::string& name) { return to_wide(name, utf8_code_page); }

private:
    FaultFiles() {
        PM_Object object;
        object.load(wide("plotter.pia").c_str(), PM_Object::FILE_PIA, u"\\");
        object.save(m_folder.wide("sample.doc").c_str(), PM_Object::FILE_DOC, u"", u"\\");
        m_folder.write("long.pia", "PIAFILEVERSION_2.0\nn{\nlong name of a property=\"" +
                                       std::string(5000, 'x') + "\nraw=\\" + std::string(3000, 'A') +
                                       "\\\nb=what is this\nc=\n}\n");
    }

    TempFolder m_folder;
};

// What an operation works on. It notes what it finds; the test's own memory is spared.
class Subject : public ReportHandler {
public:
    Subject() {
        object.SetProperty(u"known\\p", 1);
        object.SetProperty(u"known\\n\\q", u"text");
        object.SetProperty(u"known\\n\\d", 0.1);
        object.SetProperty(u"known\\n\\b", true);
        object.SetProperty(u"sections\\One\\info", u"of one");
        object.SetProperty(u"sections\\One\\data\\x", 1);
        object.SetProperty(u"sections\\Two\\data\\n\\y", u"two");
        object.setVoidProperty(u"raw\\v", "a value that is too long to lie in its property", 47);
    }

    Answer on_report(int, std::uint32_t number, std::u16string_view, std::u16string_view) override {
        note(std::to_string(number));
        return Answer::go_on;
    }

    void note(std::string_view text) {
        const Spared test;
        m_notes.append(text).append(" ");
    }
    void note(std::u16string_view text) {
        const Spared test;
        note(utf8(text));
    }
    const std::string& notes() const { return m_notes; }
    // What the operation noted and the tree that it left.
    std::string outcome() const {
        std::string text = m_notes + '\n';
        for (const TreeItem& item : tree_items(object)) {
            text += item.path + '=' + text_of(item) + '\n';
        }
        return text;
    }
    void forget() { m_notes.clear(); }

    // Where a file may be saved.
    const std::u16string& target() const { return m_target; }
    std::string saved() const {
        const CallsSpared test;
        return TempFolder::read_file(to_narrow(m_target, utf8_code_page));
    }

    CountedObject object{this};

private:
    // Without memory the eleven visible digits of a double count: not more are looked at.
    static std::string text_of(const TreeItem& item) {
        if (item.type != PROP_DOUBLE) return value_text(item);
        char text[40];
        std::snprintf(text, sizeof text, "%.8g", item.as<double>());
        return text;
    }

    static const TempFolder& folder() {
        static const TempFolder shared;
        return shared;
    }

    std::string m_notes;
    std::u16string m_target = folder().wide("saved");
};

} // namespace pm::test
