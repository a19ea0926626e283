// Prints every property of a PIA file with its path.
//
//     walk FILE

#include <cstdio>
#include <cstring>
#include <memory>
#include <pm/pm.h>
#include <string>

namespace {

// Good enough for names and numbers; a real program converts to UTF-8.
std::string narrow(std::u16string_view text) {
    std::string result;
    for (const char16_t unit : text) {
        result += unit < 0x80 ? static_cast<char>(unit) : '?';
    }
    return result;
}

std::string value_text(const char* value, std::size_t size, PropType type) {
    if (type != PROP_STRING && type != PROP_DOUBLE) return value;
    // Strings and doubles come as wide text.
    std::u16string wide((size - 1) / sizeof(char16_t), u'\0');
    std::memcpy(wide.data(), value, wide.size() * sizeof(char16_t));
    return narrow(wide.c_str());
}

void print_properties(PM_Iterator& iterator, const std::string& path) {
    char* value = nullptr;
    std::size_t size = 0;
    PropType type = PROP_NONE;
    while (const char16_t* name = iterator.nextProp(value, size, type)) {
        std::printf("%s%s = %s\n", path.c_str(), narrow(name).c_str(), value_text(value, size, type).c_str());
    }
}

std::string parent_of(const std::string& path) {
    return path.substr(0, path.rfind('\\', path.size() - 2) + 1);
}

void print_tree(const PM_Object& object) {
    const std::unique_ptr<PM_Iterator> iterator(object.newIterator(u"\\", 0));
    std::string path;
    print_properties(*iterator, path);
    PM_Object::NodeType step = PM_Object::NODE_SIBLING;
    while (const char16_t* name = iterator->nextNode(step)) {
        if (step != PM_Object::NODE_CHILD) path = parent_of(path);
        if (step == PM_Object::NODE_PARENT) continue;
        path += narrow(name) + "\\";
        print_properties(*iterator, path);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    try {
        PM_Object object;
        const std::string file = argv[1];
        object.load(std::u16string(file.begin(), file.end()).c_str(), PM_Object::FILE_PIA, u"\\");
        print_tree(object);
        return 0;
    } catch (const ZT_Exception& e) {
        std::printf("error %u in %s\n", e.m_number, e.m_place_narrow);
        return 2;
    }
}
