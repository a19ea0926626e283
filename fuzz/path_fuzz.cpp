// A little program: an operation, an index and a path each, one behind the other. Beside the tree goes a
// plain model of it, which must give the same answers.
//
// An operation is a byte, the index behind it one byte, which is -1 for 0xFF, or behind 0xFE four; the path
// is the rest of the line, a unit for each byte, or for each two if the operation is odd.

#include "fuzz_support.h"
#include "wide_text.h"
#include <algorithm>
#include <map>
#include <memory>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <pm/iterator.h>
#include <pm/object.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

using pm::fuzz::require;

constexpr std::size_t longest_path = 1023;
constexpr std::size_t most_components = 256;

// ---- the model

struct ModelNode {
    std::map<std::u16string, ModelNode> children;
    std::map<std::u16string, int> properties;
};

using Names = std::vector<std::u16string>;

std::u16string decimal(int number) {
    const std::string digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

std::u16string resolved(const std::u16string& path, int index) {
    std::u16string text = path;
    if (const std::size_t star = path.find(u'*'); star != std::u16string::npos) {
        text.replace(star, 1, decimal(index));
    } else if (index != -1) {
        text += u'\\' + decimal(index);
    }
    return text;
}

Names components(const std::u16string& path) {
    Names names;
    std::size_t at = 0;
    while ((at = path.find_first_not_of(u'\\', at)) != std::u16string::npos) {
        const std::size_t end = std::min(path.find(u'\\', at), path.size());
        names.push_back(path.substr(at, end - at));
        at = end;
    }
    return names;
}

// The node that holds the last name, if there is one.
ModelNode* parent_of(ModelNode& root, const Names& names) {
    ModelNode* node = &root;
    for (std::size_t i = 0; i + 1 < names.size(); ++i) {
        const auto child = node->children.find(names[i]);
        if (child == node->children.end()) return nullptr;
        node = &child->second;
    }
    return node;
}

const int* find_value(ModelNode& root, const Names& names) {
    if (names.empty()) return nullptr;
    ModelNode* const node = parent_of(root, names);
    if (node == nullptr) return nullptr;
    const auto found = node->properties.find(names.back());
    return found == node->properties.end() ? nullptr : &found->second;
}

// ---- the operations, on both

// 0, or the number of the exception.
template<class Operation>
std::uint32_t number_of(Operation operation) {
    try {
        operation();
    } catch (const PM_Warning& e) {
        return e.m_number;
    }
    return 0;
}

class Pair {
public:
    void set(const std::u16string& path, int index) {
        const std::u16string text = resolved(path, index);
        const Names names = components(text);
        const int value = ++m_value;
        const auto number = number_of([&] { m_object.SetProperty(path.c_str(), value, index); });
        if (text.size() > longest_path || names.empty() || names.size() > most_components) {
            require(number == PM_ERR_BAD_PATH);
            return;
        }
        require(number == 0);
        ModelNode* node = &m_model;
        for (std::size_t i = 0; i + 1 < names.size(); ++i) {
            node = &node->children[names[i]];
        }
        node->properties[names.back()] = value;
    }

    void get(const std::u16string& path, int index) {
        const std::u16string text = resolved(path, index);
        int value = 0;
        bool found = false;
        const auto number = number_of([&] { found = m_object.GetProperty(path.c_str(), value, index); });
        if (text.size() > longest_path) {
            require(number == PM_ERR_BAD_PATH);
            return;
        }
        const Names names = components(text);
        require(number == 0 || (number == PM_ERR_BAD_PATH && names.size() > most_components));
        const int* const expected = find_value(m_model, names);
        require(found == (expected != nullptr) && (!found || value == *expected));
    }

    void ask_size(const std::u16string& path, int index) {
        const std::u16string text = resolved(path, index);
        std::size_t size = 0;
        const auto number = number_of([&] { size = m_object.getPropertySize(path.c_str(), index); });
        if (text.size() <= longest_path && find_value(m_model, components(text)) != nullptr) {
            require(number == 0 && size == sizeof(std::int32_t));
            return;
        }
        require(number == PM_ERR_BAD_PATH || number == PM_ERR_NO_SUCH_NODE ||
                number == PM_ERR_NO_SUCH_PROPERTY);
    }

    void erase(const std::u16string& path) {
        const Names names = components(path);
        const auto number = number_of([&] { m_object.deletePath(path.c_str()); });
        ModelNode* const node = names.empty() ? nullptr : parent_of(m_model, names);
        // The property goes first when both are there.
        const bool gone = node != nullptr && (node->properties.erase(names.back()) > 0 ||
                                              node->children.erase(names.back()) > 0);
        require(gone ? number == 0 : number == PM_ERR_BAD_PATH || number == PM_ERR_NOTHING_THERE);
    }

    void ask_whether_it_exists(const std::u16string& path) {
        const Names names = components(path);
        bool exists = false;
        const auto number = number_of([&] { exists = m_object.pathExists(path.c_str()); });
        require(number == 0 || (number == PM_ERR_BAD_PATH && names.size() > most_components));
        if (exists) require(!names.empty() && parent_of(m_model, names) != nullptr);
        if (find_value(m_model, names) != nullptr) require(exists);
    }

    // In the end there are as many nodes and properties.
    void compare_counts() const {
        std::size_t counted = 0;
        std::vector<const ModelNode*> pending{&m_model};
        while (!pending.empty()) {
            const ModelNode& node = *pending.back();
            pending.pop_back();
            counted += 1 + node.properties.size();
            for (const auto& child : node.children) {
                pending.push_back(&child.second);
            }
        }
        const std::unique_ptr<PM_Iterator> steps(m_object.newIterator(u"\\", 0));
        char* value = nullptr;
        std::size_t size = 0;
        PropType type = PROP_NONE;
        PM_Object::NodeType step = PM_Object::NODE_SIBLING;
        do {
            if (step == PM_Object::NODE_PARENT) continue;
            --counted;
            while (steps->nextProp(value, size, type) != nullptr) {
                --counted;
            }
        } while (steps->nextNode(step) != nullptr);
        require(counted == 0);
    }

private:
    PM_Object m_object;
    ModelNode m_model;
    int m_value = 0;
};

// ---- the program

class Program {
public:
    Program(const std::uint8_t* data, std::size_t size) : m_at(data), m_end(data + size) {}

    bool more() const { return m_at != m_end; }
    std::uint8_t byte() { return more() ? *m_at++ : std::uint8_t{0}; }
    int index() {
        const int first = byte();
        if (first == 0xFF) return -1;
        if (first != 0xFE) return first;
        std::uint32_t number = 0;
        for (int i = 0; i < 4; ++i) {
            number = number << 8 | byte();
        }
        return static_cast<int>(number);
    }
    std::u16string path(bool two_bytes) {
        const std::uint8_t* const end = std::find(m_at, m_end, '\n');
        std::u16string text = pm::fuzz::wide_text(m_at, static_cast<std::size_t>(end - m_at), two_bytes);
        m_at = end == m_end ? end : end + 1;
        return text.substr(0, text.find(u'\0')); // as the library sees it
    }

private:
    const std::uint8_t* m_at;
    const std::uint8_t* m_end;
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Program program(data, size);
    Pair pair;
    while (program.more()) {
        const std::uint8_t operation = program.byte();
        const int index = program.index();
        const std::u16string path = program.path(operation % 2 != 0);
        switch (operation / 2 % 6) {
        case 0:
            pair.get(path, index);
            break;
        case 1:
            pair.ask_size(path, index);
            break;
        case 2:
            pair.erase(path);
            break;
        case 3:
            pair.ask_whether_it_exists(path);
            break;
        default:
            pair.set(path, index);
        }
    }
    pair.compare_counts();
    return 0;
}
