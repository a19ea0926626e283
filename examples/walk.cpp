// Prints every property of a PIA file with its path.
//
//     walk FILE

#include <charconv>
#include <cstdio>
#include <iterator>
#include <pm/pm.h>
#include <string>

namespace {

// One for each type of value.
struct ValueText {
    std::string operator()(std::monostate) const { return "(nothing)"; }
    std::string operator()(std::int32_t number) const { return std::to_string(number); }
    std::string operator()(double number) const {
        char text[32];
        return {text, std::to_chars(text, std::end(text), number).ptr}; // reads back exactly
    }
    std::string operator()(const std::string& text) const { return '"' + text + '"'; }
    std::string operator()(bool truth) const { return truth ? "true" : "false"; }
    std::string operator()(const pm::Bytes& bytes) const { return std::to_string(bytes.size()) + " bytes"; }
};

void print_tree(const pm::Tree& tree) {
    for (const auto& [node, depth] : tree.walk()) {
        std::printf("%s\n", node.path().c_str());
        for (const auto& [name, value] : node.properties()) {
            std::printf("%*s%s = %s\n", 2 * depth + 2, "", name.c_str(),
                        std::visit(ValueText(), value).c_str());
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    try {
        print_tree(pm::load(argv[1]).tree);
        return 0;
    } catch (const ZT_Exception& e) {
        std::printf("error %u in %s\n", e.m_number, e.m_place_narrow);
        return 2;
    }
}
