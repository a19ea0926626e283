#include "works.h"

#include "../long_description.h"
#include "content.h"
#include "timing.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <numeric>
#include <pm/pm.h>
#include <random>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <zlib.h>

extern char** environ;

namespace pm::bench {
namespace {

namespace fs = std::filesystem;

constexpr const char16_t* root = u"\\";

// A folder that ends with its owner.
class Folder {
public:
    Folder() {
        std::string name = (fs::temp_directory_path() / "pm_compare_XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
        m_path = name;
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::u16string file(const char* name) const { return (m_path / name).u16string(); }

private:
    fs::path m_path;
};

std::string saved(const PM_Object& object, const char16_t* tag) {
    std::stringstream stream;
    object.save(stream, PM_Object::FILE_PIA, tag, root);
    return std::move(stream).str();
}

// A load of a text into a tree that ends behind the timing.
Task load_task(std::string name, double per, const std::string& text, PM_Object::FileType type) {
    const auto tree = std::make_shared<std::unique_ptr<PM_Object>>();
    const auto stream = std::make_shared<std::stringstream>(text);
    return {std::move(name), per,
            [=] {
                *tree = std::make_unique<PM_Object>();
                (*tree)->load(*stream, type, root);
            },
            [=] {
                tree->reset();
                stream->clear();
                stream->seekg(0);
            }};
}

template<class Load>
Task file_load_task(std::string name, double per, Load load) {
    const auto tree = std::make_shared<std::unique_ptr<PM_Object>>();
    return {std::move(name), per,
            [=] {
                *tree = std::make_unique<PM_Object>();
                load(**tree);
            },
            [=] { tree->reset(); }};
}

std::string file_content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), {}};
    if (content.empty()) throw std::runtime_error("can't read " + path);
    return content;
}

std::string deflated(const std::string& text, int level) {
    uLongf size = compressBound(text.size());
    std::string result(size, '\0');
    compress2(reinterpret_cast<Bytef*>(result.data()), &size, reinterpret_cast<const Bytef*>(text.data()),
              text.size(), level);
    result.resize(size);
    return result;
}

std::size_t lines_in(const std::string& text) {
    std::size_t lines = 0;
    const char* at = text.data();
    const char* const end = at + text.size();
    while (const void* found = std::memchr(at, '\n', static_cast<std::size_t>(end - at))) {
        at = static_cast<const char*>(found) + 1;
        ++lines;
    }
    return lines;
}

nlohmann::ordered_json run_group(const char* name, std::vector<Task> tasks, double seconds,
                                 clockid_t clock = CLOCK_THREAD_CPUTIME_ID) {
    std::cerr << "  " << name << '\n';
    run_by_turns(tasks, seconds, clock);
    nlohmann::ordered_json group{{"group", name}};
    for (const Task& task : tasks) {
        group["tasks"].push_back({{"name", task.name},
                                  {"ns", median(task.samples)},
                                  {"per", task.per},
                                  {"runs", task.samples.size()}});
    }
    return group;
}

// PIA text and what touches the same bytes and does nothing else.
nlohmann::ordered_json text_group(double seconds, std::size_t count) {
    PM_Object object;
    fill(object, Content(ContentShape::ten_a_node, count), "");
    const std::string text = saved(object, u"bench");
    const std::string packed = saved(object, u"bench,compress");
    const std::string stream = deflated(text, Z_BEST_COMPRESSION);
    std::string copy(text.size(), '\0');
    const auto per = static_cast<double>(count);
    return run_group("PIA text",
                     {{"memcpy", per,
                       [&] {
                           std::memcpy(copy.data(), text.data(), text.size());
                           keep(copy.data());
                       }},
                      {"lines", per, [&] { keep(lines_in(text)); }},
                      {"inflate", per,
                       [&] {
                           uLongf size = copy.size();
                           uncompress(reinterpret_cast<Bytef*>(copy.data()), &size,
                                      reinterpret_cast<const Bytef*>(stream.data()), stream.size());
                       }},
                      {"deflate", per, [&] { keep(deflated(text, Z_BEST_COMPRESSION).size()); }},
                      load_task("load", per, text, PM_Object::FILE_PIA),
                      load_task("load compressed", per, packed, PM_Object::FILE_PIA),
                      {"save", per, [&] { keep(saved(object, u"bench").size()); }},
                      {"save compressed", per, [&] { keep(saved(object, u"bench,compress").size()); }}},
                     seconds);
}

// Look-ups, and the reading of their paths, which no look-up does without.
nlohmann::ordered_json path_group(double seconds, std::size_t count) {
    PM_Object object;
    const Content content(ContentShape::ten_a_node, count);
    fill(object, content, "");
    std::vector<std::u16string> paths;
    for (const ContentProperty& property : content.properties()) {
        const std::string path = "\\" + content.joined_path(property, '\\');
        paths.emplace_back(path.begin(), path.end());
    }
    std::vector<std::uint32_t> in_order(count);
    std::iota(in_order.begin(), in_order.end(), 0U);
    std::vector<std::uint32_t> shuffled = in_order;
    std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(20));

    const auto look_up = [&](const std::vector<std::uint32_t>& indexes) {
        std::size_t sum = 0;
        for (const std::uint32_t index : indexes) {
            sum += object.getPropertySize(paths[index].c_str());
        }
        keep(sum);
    };
    const auto read = [&](const std::vector<std::uint32_t>& indexes) {
        std::size_t sum = 0;
        for (const std::uint32_t index : indexes) {
            sum += std::char_traits<char16_t>::length(paths[index].c_str());
        }
        keep(sum);
    };
    const auto per = static_cast<double>(count);
    return run_group("paths",
                     {{"read", per, [&] { read(in_order); }},
                      {"look-up", per, [&] { look_up(in_order); }},
                      {"read, shuffled", per, [&] { read(shuffled); }},
                      {"look-up, shuffled", per, [&] { look_up(shuffled); }}},
                     seconds);
}

nlohmann::ordered_json section_group(double seconds, int sections) {
    const Folder folder;
    const std::u16string all = folder.file("all.dpia");
    const std::u16string alone = folder.file("alone.pia");
    const Content content(ContentShape::ten_a_node, 100);
    {
        PM_Object object;
        for (int section = 0; section < sections; ++section)
            fill(object, content, "s\\section" + std::to_string(section) + "\\data\\");
        object.save(all.c_str(), PM_Object::FILE_DPIA, u"", u"s");
        object.save(alone.c_str(), PM_Object::FILE_PIA, u"x,compress", u"s\\section0\\data", true);
    }
    const std::string last = "section" + std::to_string(sections - 1);
    const std::u16string name(last.begin(), last.end());
    return run_group(
        "DPIA",
        {file_load_task("load_section", 1,
                        [=](PM_Object& object) {
                            object.load_section(all.c_str(), PM_Object::FILE_DPIA, root, name.c_str());
                        }),
         file_load_task("its own file", 1,
                        [=](PM_Object& object) { object.load(alone.c_str(), PM_Object::FILE_PIA, root); })},
        seconds);
}

nlohmann::ordered_json doc_group(double seconds, std::size_t count) {
    const Folder folder;
    const std::u16string path = folder.file("bench.doc");
    PM_Object object;
    fill(object, Content(ContentShape::ten_a_node, count), "");
    const auto per = static_cast<double>(count);
    return run_group(
        "DOC",
        {{"save", per, [&] { object.save(path.c_str(), PM_Object::FILE_DOC, u"", root); }},
         file_load_task("load", per,
                        [=](PM_Object& tree) { tree.load(path.c_str(), PM_Object::FILE_DOC, root); })},
        seconds);
}

std::string coded(const std::string& data,
                  bool (PM_Huffman_Codec::*operation)(unsigned char*&, std::uint32_t&)) {
    PM_Huffman_Codec codec(reinterpret_cast<const unsigned char*>(data.data()),
                           static_cast<std::uint32_t>(data.size()), nullptr);
    unsigned char* out = nullptr;
    std::uint32_t size = 0;
    if (!(codec.*operation)(out, size)) throw std::runtime_error("the Huffman codec failed");
    std::string result(reinterpret_cast<const char*>(out), size);
    PM_Mem_Obj::operator delete(out);
    return result;
}

nlohmann::ordered_json huffman_group(double seconds) {
    constexpr std::size_t bytes = 4U << 20;
    PM_Object object;
    fill(object, Content(ContentShape::ten_a_node, 10'000), "");
    const std::string piece = saved(object, u"bench");
    std::string text;
    while (text.size() < bytes)
        text += piece;
    text.resize(bytes);
    const std::string block = coded(text, &PM_Huffman_Codec::encode);
    const std::string all_but_last = text.substr(0, bytes - 1); // the last symbol is never given back
    if (coded(block, &PM_Huffman_Codec::decode) != all_but_last) {
        throw std::runtime_error("the Huffman codec differs");
    }
    return run_group("Huffman, 4 MB",
                     {{"encode", bytes, [&] { keep(coded(text, &PM_Huffman_Codec::encode).size()); }},
                      {"decode", bytes, [&] { keep(coded(block, &PM_Huffman_Codec::decode).size()); }}},
                     seconds);
}

nlohmann::ordered_json sample_group(double seconds) {
    return run_group("older formats",
                     {load_task("PC2 sample", 1, file_content(PM_SAMPLES "/office.pc2"), PM_Object::FILE_PC2),
                      load_task("PCP sample", 1, file_content(PM_SAMPLES "/pens.pcp"), PM_Object::FILE_PCP)},
                     seconds);
}

nlohmann::ordered_json description_group(const char* name, double seconds, int times) {
    const LongDescription description(times);
    const auto load = [file = description.string_file()](PM_Object& object) {
        object.load(file.c_str(), PM_Object::FILE_PDT, root);
    };
    return run_group(
        name, {{"files", 1, [&] { decode_files(description); }}, file_load_task("load", 1, load)}, seconds);
}

void run_program(std::vector<const char*> arguments) {
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int failed = posix_spawn(&child, arguments.front(), &actions, nullptr,
                                   const_cast<char* const*>(arguments.data()), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (failed != 0 || waitpid(child, &status, 0) != child || status != 0) {
        throw std::runtime_error(std::string(arguments.front()) + " failed");
    }
}

nlohmann::ordered_json tool_group(double seconds) {
    return run_group("tool",
                     {{"pmtool get", 1,
                       [] {
                           run_program({PM_TOOL, "get", PM_SAMPLES "/plotter.pia", "\\media\\copies"});
                       }},
                      {"an empty program", 1, [] { run_program({"/bin/true"}); }}},
                     seconds, CLOCK_MONOTONIC);
}

} // namespace

nlohmann::ordered_json measure_works(double seconds, bool quick) {
    nlohmann::ordered_json groups;
    groups.push_back(text_group(2 * seconds, quick ? 10'000 : 100'000));
    groups.push_back(path_group(seconds, quick ? 10'000 : 100'000));
    groups.push_back(section_group(seconds, quick ? 100 : 1000));
    groups.push_back(doc_group(seconds, quick ? 1000 : 10'000));
    groups.push_back(huffman_group(seconds));
    groups.push_back(sample_group(seconds));
    groups.push_back(description_group("device description", seconds, 1));
    groups.push_back(description_group("ten times the rows", seconds, 10));
    if (!quick) groups.push_back(description_group("a hundred times the rows", seconds, 100));
    groups.push_back(tool_group(seconds));
    return groups;
}

} // namespace pm::bench
