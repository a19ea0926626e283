#pragma once

#include "filers/line_reader.h"
#include "support/exceptions.h"
#include "support/expect_report.h"
#include "support/recording_handler.h"
#include "support/temp_folder.h"
#include "support/tree_dump.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <pm/error_number.h>
#include <pm/object.h>
#include <pm_test_paths.h>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

namespace pm::test {

inline std::stringstream binary_stream(const std::string& content) {
    return std::stringstream(content, std::ios::in | std::ios::out | std::ios::binary);
}

inline void load_text(PM_Object& object, PM_Object::FileType type, const std::string& content,
                      const char16_t* base = u"\\") {
    std::stringstream stream = binary_stream(content);
    object.load(stream, type, base);
}

// The values of an object; nothing where there is no such property.
inline std::optional<int> long_at(const PM_Object& object, const char16_t* path) {
    int value = 0;
    return object.GetProperty(path, value) ? std::optional(value) : std::nullopt;
}

inline std::optional<double> double_at(const PM_Object& object, const char16_t* path) {
    double value = 0;
    return object.GetProperty(path, value) ? std::optional(value) : std::nullopt;
}

inline std::optional<std::u16string> string_at(const PM_Object& object, const char16_t* path) {
    std::array<char16_t, 4097> text{};
    const bool found = object.GetProperty(path, text.data(), sizeof text);
    return found ? std::optional<std::u16string>(text.data()) : std::nullopt;
}

inline std::optional<std::string> raw_at(const PM_Object& object, const char16_t* path) {
    std::string bytes(1024, '\0');
    if (!object.getVoidProperty(path, bytes.data(), static_cast<unsigned>(bytes.size()))) {
        return std::nullopt;
    }
    bytes.resize(object.getPropertySize(path));
    return bytes;
}

// A property as text: its path, its type and its value.
struct DumpedProperty {
    std::string path;
    PropType type;
    std::string value;

    std::string text() const { return path + " " + type_name(type) + " " + value; }
};

// All properties in the order of the tree.
inline std::vector<DumpedProperty> dump(const PM_Object& object) {
    std::vector<DumpedProperty> all;
    for (const TreeItem& item : tree_items(object)) {
        all.push_back(
            {"\\" + item.path, item.type, item.type == PROP_VOID ? hex_text(item.bytes) : value_text(item)});
    }
    return all;
}

inline std::vector<std::string> dumped_lines(const PM_Object& object) {
    std::vector<std::string> lines;
    for (const DumpedProperty& property : dump(object)) {
        lines.push_back(property.text());
    }
    return lines;
}

inline std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

inline std::string sample(const std::string& name) {
    return TempFolder::read_file(std::filesystem::path(PM_SAMPLES) / name);
}

inline std::vector<std::string> reference_lines(const std::string& name) {
    return lines_of(TempFolder::read_file(std::filesystem::path(PM_TEST_DATA) / "legacy" / name));
}

// Gives some bytes and then fails with an errno value.
class FailingBuffer : public std::streambuf {
public:
    FailingBuffer(std::string content, int code) : m_content(std::move(content)), m_code(code) {}

protected:
    std::streamsize xsgetn(char* to, std::streamsize count) override {
        if (m_next == m_content.size()) {
            errno = m_code;
            throw std::runtime_error("the device failed");
        }
        const std::size_t given = std::min(static_cast<std::size_t>(count), m_content.size() - m_next);
        std::copy_n(m_content.data() + m_next, given, to);
        m_next += given;
        // A device that fails in the middle of a block fails that block.
        if (given < static_cast<std::size_t>(count)) {
            errno = m_code;
            throw std::runtime_error("the device failed");
        }
        return count;
    }
    pos_type seekpos(pos_type, std::ios::openmode) override {
        m_next = 0;
        return 0;
    }

private:
    std::string m_content;
    std::size_t m_next = 0;
    int m_code;
};

// As many comment lines as fill a reader's first block, so that a failure behind them comes later.
inline std::string filled_to_block(std::string content) {
    constexpr std::size_t block = LineReader::block_size;
    while (content.size() + 2 < block) {
        content += ";\n";
    }
    content.resize(block, '\n');
    return content;
}

} // namespace pm::test
