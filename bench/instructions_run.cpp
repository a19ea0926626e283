// One work of the library in measured_work(), for bench/instructions to count its instructions. Prints for
// how many units, such as properties, that is.

#include "compare/content.h"
#include "long_description.h"
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <memory>
#include <pm/pm.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

// Found by its name.
extern "C" [[gnu::noinline]] void measured_work(const std::function<void()>& work) {
    work();
    asm volatile("" : : : "memory");
}

namespace {

using pm::bench::Content;
using pm::bench::ContentProperty;
using pm::bench::ContentShape;

constexpr const char16_t* root = u"\\";
constexpr std::size_t property_count = 10'000;

std::vector<std::u16string> paths_of(const Content& content) {
    std::vector<std::u16string> paths;
    for (const ContentProperty& property : content.properties()) {
        const std::string path = "\\" + content.joined_path(property, '\\');
        paths.emplace_back(path.begin(), path.end());
    }
    return paths;
}

std::string file_content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), {}};
    if (content.empty()) throw std::runtime_error("can't read " + path);
    return content;
}

// The tree that the works below stand on.
struct Bench {
    Bench() { pm::bench::fill(*object, content, ""); }

    Content content{ContentShape::ten_a_node, property_count};
    std::vector<std::u16string> paths = paths_of(content);
    std::unique_ptr<PM_Object> object = std::make_unique<PM_Object>();
};

void save(const PM_Object& object, std::stringstream& stream, const char16_t* tag) {
    object.save(stream, PM_Object::FILE_PIA, tag, root);
}

void measure_load(const std::string& text, PM_Object::FileType type) {
    std::stringstream stream(text);
    PM_Object object;
    measured_work([&] { object.load(stream, type, root); });
}

std::size_t load_pia(const char16_t* tag) {
    const Bench bench;
    std::stringstream stream;
    save(*bench.object, stream, tag);
    measure_load(stream.str(), PM_Object::FILE_PIA);
    return property_count;
}

std::size_t save_pia(const char16_t* tag) {
    const Bench bench;
    std::stringstream stream;
    measured_work([&] { save(*bench.object, stream, tag); });
    return property_count;
}

// Those of the properties that hold integers.
template<class Access>
std::size_t access_integers(Access access) {
    const Bench bench;
    std::size_t count = 0;
    measured_work([&] {
        for (std::size_t index = 0; index < bench.paths.size(); ++index) {
            if (!std::holds_alternative<int>(bench.content.properties()[index].value)) continue;
            access(*bench.object, bench.paths[index].c_str());
            ++count;
        }
    });
    return count;
}

std::size_t get() {
    return access_integers([](PM_Object& object, const char16_t* path) {
        int value = 0;
        if (!object.GetProperty(path, value)) throw std::runtime_error("a property is missing");
    });
}

std::size_t set() {
    return access_integers([](PM_Object& object, const char16_t* path) { object.SetProperty(path, 1); });
}

std::size_t walk() {
    const Bench bench;
    std::size_t count = 0;
    measured_work([&] {
        const std::unique_ptr<PM_Iterator> iterator(bench.object->newIterator(root, 0));
        PM_Object::NodeType step{};
        do {
            if (step == PM_Object::NODE_PARENT) continue;
            char* value = nullptr;
            std::size_t size = 0;
            PropType type = PROP_NONE;
            while (iterator->nextProp(value, size, type) != nullptr)
                ++count;
        } while (iterator->nextNode(step) != nullptr);
    });
    return count;
}

std::size_t destroy() {
    Bench bench;
    measured_work([&] { bench.object.reset(); });
    return property_count;
}

std::size_t load_sample(const char* name, PM_Object::FileType type) {
    measure_load(file_content(std::string(PM_SAMPLES "/") + name), type);
    return 1;
}

std::size_t load_description(int times) {
    const pm::bench::LongDescription description(times);
    PM_Object object;
    measured_work([&] { object.load(description.string_file().c_str(), PM_Object::FILE_PDT, root); });
    return static_cast<std::size_t>(times);
}

// A file that ends with its owner.
class BenchFile {
public:
    explicit BenchFile(const char* name)
        : m_path(std::filesystem::temp_directory_path() / (name + std::to_string(getpid()))) {}
    ~BenchFile() { std::filesystem::remove(m_path); }
    BenchFile(const BenchFile&) = delete;
    BenchFile& operator=(const BenchFile&) = delete;

    std::u16string name() const { return m_path.u16string(); }

private:
    std::filesystem::path m_path;
};

std::size_t save_doc() {
    const Bench bench;
    const BenchFile file("pm_instructions.doc");
    measured_work([&] { bench.object->save(file.name().c_str(), PM_Object::FILE_DOC, u"", root); });
    return property_count;
}

std::size_t load_doc() {
    const Bench bench;
    const BenchFile file("pm_instructions.doc");
    bench.object->save(file.name().c_str(), PM_Object::FILE_DOC, u"", root);
    PM_Object object;
    measured_work([&] { object.load(file.name().c_str(), PM_Object::FILE_DOC, root); });
    return property_count;
}

// The last of a thousand.
std::size_t load_section() {
    constexpr int sections = 1000;
    const Content content(ContentShape::ten_a_node, 100);
    const BenchFile file("pm_instructions.dpia");
    PM_Object object;
    for (int section = 0; section < sections; ++section)
        pm::bench::fill(object, content, "s\\section" + std::to_string(section) + "\\data\\");
    object.save(file.name().c_str(), PM_Object::FILE_DPIA, u"", u"s");
    PM_Object loaded;
    measured_work(
        [&] { loaded.load_section(file.name().c_str(), PM_Object::FILE_DPIA, root, u"section999"); });
    return 1;
}

struct Work {
    std::string_view name;
    std::size_t (*run)();
};

constexpr Work works[] = {
    {"load", [] { return load_pia(u"bench"); }},
    {"save", [] { return save_pia(u"bench"); }},
    {"get", get},
    {"set", set},
    {"walk", walk},
    {"destroy", destroy},
    {"load-compressed", [] { return load_pia(u"bench,compress"); }},
    {"save-compressed", [] { return save_pia(u"bench,compress"); }},
    {"DOC-load", load_doc},
    {"DOC-save", save_doc},
    {"DPIA-section", load_section},
    {"PC2-sample", [] { return load_sample("office.pc2", PM_Object::FILE_PC2); }},
    {"PCP-sample", [] { return load_sample("pens.pcp", PM_Object::FILE_PCP); }},
    {"PDT-sample", [] { return load_description(1); }},
    {"PDT-ten-times", [] { return load_description(10); }},
};

} // namespace

int main(int argc, char** argv) {
    if (argc == 1) {
        for (const Work& work : works)
            std::cout << work.name << '\n';
        return EXIT_SUCCESS;
    }
    try {
        for (const Work& work : works) {
            if (work.name == argv[1]) {
                std::cout << work.run() << '\n';
                return EXIT_SUCCESS;
            }
        }
    } catch (const std::exception& exception) {
        std::cerr << "pm_instructions: " << exception.what() << '\n';
        return EXIT_FAILURE;
    }
    std::cerr << "pm_instructions: no such work\n";
    return 2;
}
