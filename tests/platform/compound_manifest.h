#pragma once

#include "platform/code_page.h"
#include "platform/compound_storage.h"
#include <cstddef>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace pm::test {

// What a compound file holds, as text: a line for each stream, and for each storage that is empty. The fields
// are parted by tabs, the names of a path by "/".
//
//     storage <path>
//     stream  <path> <size>     with the content that stream_content() gives
//     hex     <path> <bytes>
//
// Storages above are taken for granted.

// Byte j of a stream of n bytes is 7 j + n.
inline std::string stream_content(std::size_t size) {
    std::string content(size, '\0');
    for (std::size_t at = 0; at < size; ++at)
        content[at] = static_cast<char>(7 * at + size);
    return content;
}

struct Tree {
    std::map<std::u16string, std::string> streams;
    std::map<std::u16string, std::unique_ptr<Tree>> storages;

    Tree& storage(const std::u16string& name) {
        auto& child = storages[name];
        if (!child) child = std::make_unique<Tree>();
        return *child;
    }
    bool operator==(const Tree& other) const {
        if (streams != other.streams || storages.size() != other.storages.size()) return false;
        for (const auto& [name, child] : storages) {
            const auto same = other.storages.find(name);
            if (same == other.storages.end() || !(*child == *same->second)) return false;
        }
        return true;
    }
};

inline std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);)
        parts.push_back(part);
    return parts;
}

inline std::string bytes_of_hex(const std::string& digits) {
    std::string bytes;
    for (std::size_t at = 0; at + 1 < digits.size(); at += 2) {
        bytes.push_back(static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16)));
    }
    return bytes;
}

inline void add_line(Tree& root, const std::string& line) {
    const std::vector<std::string> fields = split(line, '\t');
    std::vector<std::string> path = split(fields.at(1), '/');
    const std::u16string last = to_wide(path.back(), utf8_code_page);
    path.pop_back();
    Tree* tree = &root;
    for (const std::string& name : path)
        tree = &tree->storage(to_wide(name, utf8_code_page));
    if (fields[0] == "storage") {
        tree->storage(last);
    } else if (fields[0] == "stream") {
        tree->streams[last] = stream_content(std::stoul(fields.at(2)));
    } else if (fields[0] == "hex") {
        tree->streams[last] = bytes_of_hex(fields.at(2));
    } else {
        throw std::runtime_error("unknown line " + line);
    }
}

inline Tree read_manifest(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("can't read " + path);
    Tree root;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line[0] != '#') add_line(root, line);
    }
    return root;
}

inline bool write_tree(const Tree& tree, IStorage& storage) {
    for (const auto& [name, content] : tree.streams) {
        const auto stream = storage.CreateStream(name);
        if (!stream || !stream->Write(content.data(), content.size())) return false;
    }
    for (const auto& [name, child] : tree.storages) {
        const auto below = storage.CreateStorage(name);
        if (!below || !write_tree(*child, *below)) return false;
    }
    return true;
}

// All bytes of a stream from its position on.
inline std::string read_rest(IStream& stream) {
    std::string content;
    for (char byte = 0; stream.Read(&byte, 1);)
        content.push_back(byte);
    return content;
}

inline Tree read_tree(IStorage& storage) {
    Tree tree;
    const auto elements = storage.EnumElements();
    if (!elements) throw std::runtime_error("can't be enumerated");
    STATSTG element;
    while (elements->Next(element) == IEnumSTATSTG::Result::element) {
        if (element.is_storage) {
            const auto below = storage.OpenStorage(element.name);
            if (!below) throw std::runtime_error("a storage can't be opened");
            tree.storages[element.name] = std::make_unique<Tree>(read_tree(*below));
        } else {
            const auto stream = storage.OpenStream(element.name);
            if (!stream) throw std::runtime_error("a stream can't be opened");
            tree.streams[element.name] = read_rest(*stream);
        }
    }
    return tree;
}

} // namespace pm::test
