#include "platform/compound_storage.h"

#include "platform/compound_manifest.h"
#include "support/temp_folder.h"
#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <pm/object.h>
#include <pm_test_paths.h>
#include <stdexcept>
#include <string>
#include <vector>
// After the library's headers, whose classes have the system's names.
#include <objbase.h>
#include <windows.h>

// The system's structured storage as a reader and writer that nobody here wrote.

namespace pm::test {
namespace {

struct Releaser {
    template<class Interface>
    void operator()(Interface* object) const {
        object->Release();
    }
};
template<class Interface>
using Com = std::unique_ptr<Interface, Releaser>;

void succeed(HRESULT result) {
    if (FAILED(result)) throw std::runtime_error("the system's storage failed: " + std::to_string(result));
}

const wchar_t* native(const std::u16string& text) {
    return reinterpret_cast<const wchar_t*>(text.c_str());
}
std::u16string wide(const wchar_t* text) {
    return reinterpret_cast<const char16_t*>(text);
}

constexpr DWORD alone = STGM_SHARE_EXCLUSIVE;

Com<::IStorage> system_open(const std::u16string& name) {
    ::IStorage* storage = nullptr;
    succeed(::StgOpenStorage(native(name), nullptr, STGM_READ | alone, nullptr, 0, &storage));
    return Com<::IStorage>(storage);
}

Com<::IStorage> system_create(const std::u16string& name) {
    ::IStorage* storage = nullptr;
    succeed(::StgCreateDocfile(native(name), STGM_CREATE | STGM_READWRITE | alone, 0, &storage));
    return Com<::IStorage>(storage);
}

std::string content_of(::IStream& stream) {
    std::string content;
    char block[5000];
    ULONG got = 0;
    do {
        succeed(stream.Read(block, sizeof block, &got));
        content.append(block, got);
    } while (got > 0);
    return content;
}

// "storage\" or "storage\stream=content" in the order in which the reader gives them.
using Elements = std::vector<std::pair<std::u16string, std::string>>;

void append(::IStorage& storage, const std::u16string& path, Elements& elements) {
    ::IEnumSTATSTG* raw = nullptr;
    succeed(storage.EnumElements(0, nullptr, 0, &raw));
    const Com<::IEnumSTATSTG> list(raw);
    ::STATSTG element{};
    while (list->Next(1, &element, nullptr) == S_OK) {
        const std::u16string name = wide(element.pwcsName);
        CoTaskMemFree(element.pwcsName);
        if (element.type == STGTY_STORAGE) {
            elements.emplace_back(path + name + u'\\', "");
            ::IStorage* below = nullptr;
            succeed(storage.OpenStorage(native(name), nullptr, STGM_READ | alone, nullptr, 0, &below));
            append(*Com<::IStorage>(below), path + name + u'\\', elements);
        } else {
            ::IStream* stream = nullptr;
            succeed(storage.OpenStream(native(name), nullptr, STGM_READ | alone, 0, &stream));
            elements.emplace_back(path + name, content_of(*Com<::IStream>(stream)));
        }
    }
}

void append(pm::IStorage& storage, const std::u16string& path, Elements& elements) {
    const auto list = storage.EnumElements();
    pm::STATSTG element;
    while (list && list->Next(element) == pm::IEnumSTATSTG::Result::element) {
        if (element.is_storage) {
            elements.emplace_back(path + element.name + u'\\', "");
            append(*storage.OpenStorage(element.name), path + element.name + u'\\', elements);
        } else {
            elements.emplace_back(path + element.name, read_rest(*storage.OpenStream(element.name)));
        }
    }
}

Elements read_by_system(const std::u16string& name) {
    Elements elements;
    append(*system_open(name), u"", elements);
    return elements;
}

Elements read_by_us(const std::u16string& name) {
    Elements elements;
    const auto root = pm::StgOpenStorage(name);
    if (!root) throw std::runtime_error("not opened");
    append(*root, u"", elements);
    return elements;
}

void write(pm::IStorage& storage, const std::u16string& name, const std::string& content) {
    const auto stream = storage.CreateStream(name);
    ASSERT_TRUE(stream && stream->Write(content.data(), content.size()));
}

void write(::IStorage& storage, const std::u16string& name, const std::string& content) {
    ::IStream* raw = nullptr;
    succeed(storage.CreateStream(native(name), STGM_CREATE | STGM_WRITE | alone, 0, 0, &raw));
    const Com<::IStream> stream(raw);
    succeed(stream->Write(content.data(), static_cast<ULONG>(content.size()), nullptr));
}

Com<::IStorage> make_storage(::IStorage& storage, const std::u16string& name) {
    ::IStorage* raw = nullptr;
    succeed(storage.CreateStorage(native(name), STGM_CREATE | STGM_READWRITE | alone, 0, 0, &raw));
    return Com<::IStorage>(raw);
}
std::unique_ptr<pm::IStorage> make_storage(pm::IStorage& storage, const std::u16string& name) {
    return storage.CreateStorage(name);
}

std::u16string numbered(const char* start, int number) {
    const std::string text = start + std::to_string(number);
    return {text.begin(), text.end()};
}

// Streams around the sizes at which they lie elsewhere, storages in storages, names of all lengths.
template<class Storage>
void fill(Storage& root) {
    int number = 0;
    for (const std::size_t size : {0, 1, 63, 64, 65, 511, 512, 513, 4095, 4096, 4097, 100000}) {
        ++number;
        write(root, numbered("Size", number), std::string(size, static_cast<char>('a' + number)));
    }
    for (std::size_t length = 1; length <= 31; ++length) {
        write(root, std::u16string(length, u'n'), std::to_string(length));
    }
    const auto below = make_storage(root, u"Storage");
    for (int child = 0; child < 200; ++child) {
        write(*below, numbered("child", child), std::to_string(child));
    }
    const auto deeper = make_storage(*below, u"deeper");
    make_storage(*deeper, u"empty");
    write(*deeper, u"last", "content");
}

class StructuredStorage : public testing::Test {
protected:
    TempFolder folder;
    std::u16string name = folder.wide("file.doc");
};

TEST_F(StructuredStorage, SystemReadsWhatWeWrite) {
    fill(*pm::StgCreateDocfile(name));
    const Elements ours = read_by_us(name);
    EXPECT_EQ(12U + 31U + 1U + 200U + 3U, ours.size());
    EXPECT_EQ(ours, read_by_system(name));
}

TEST_F(StructuredStorage, WeReadWhatTheSystemWrites) {
    fill(*system_create(name));
    const Elements theirs = read_by_system(name);
    EXPECT_EQ(12U + 31U + 1U + 200U + 3U, theirs.size());
    EXPECT_EQ(theirs, read_by_us(name));
}

TEST_F(StructuredStorage, WeReadWhatTheSystemChanged) {
    fill(*pm::StgCreateDocfile(name));
    {
        ::IStorage* raw = nullptr;
        succeed(::StgOpenStorage(native(name), nullptr, STGM_READWRITE | alone, nullptr, 0, &raw));
        const Com<::IStorage> root(raw);
        for (int number = 1; number <= 12; number += 2) {
            succeed(root->DestroyElement(native(numbered("Size", number))));
        }
        write(*root, u"Size2", "shorter");
        write(*root, u"added", std::string(5000, 'x'));
    }
    EXPECT_EQ(read_by_system(name), read_by_us(name));
}

TEST_F(StructuredStorage, SystemReadsWhatWeChanged) {
    fill(*system_create(name));
    {
        const auto root = pm::StgOpenStorage(name);
        ASSERT_TRUE(root);
        write(*root, u"Size2", "shorter");
        write(*root, u"added", std::string(5000, 'x'));
    }
    const Elements ours = read_by_us(name);
    EXPECT_EQ(ours, read_by_system(name));
    EXPECT_NE(ours.end(),
              std::ranges::find(ours, std::pair(std::u16string(u"Size2"), std::string("shorter"))));
}

TEST_F(StructuredStorage, SystemReadsTheSampleAsADocFile) {
    PM_Object object;
    object.load(std::filesystem::path(PM_SAMPLES "/plotter.pia").u16string().c_str(), PM_Object::FILE_PIA,
                u"\\");
    object.save(name.c_str(), PM_Object::FILE_DOC, u"EXAMPLE_1.0", u"\\");
    const Elements ours = read_by_us(name);
    EXPECT_FALSE(ours.empty());
    EXPECT_EQ(ours, read_by_system(name));
}

// Files of other writers, and what the names begin with that the system's reader may drop: Wine folds the
// cases of some letters otherwise than the format, and so loses its way in the tree.
struct ForeignFile {
    const char* name;
    std::vector<std::u16string> may_drop;
    bool same_order = true;

    friend void PrintTo(const ForeignFile& file, std::ostream* out) { *out << file.name; }
};

class ForeignCompoundFile : public StructuredStorage, public testing::WithParamInterface<ForeignFile> {
protected:
    static bool may_drop(const std::u16string& path) {
        return std::ranges::any_of(GetParam().may_drop,
                                   [&path](const std::u16string& start) { return path.starts_with(start); });
    }
};

TEST_P(ForeignCompoundFile, IsReadAlike) {
    const std::filesystem::path fixture = std::filesystem::path(PM_TEST_DATA "/compound") / GetParam().name;
    folder.write("file.doc", TempFolder::read_file(fixture));
    Elements theirs = read_by_system(name);
    Elements ours = read_by_us(name);
    std::erase_if(ours, [&theirs](const auto& element) {
        return may_drop(element.first) && std::ranges::find(theirs, element) == theirs.end();
    });
    if (!GetParam().same_order) {
        std::ranges::sort(ours);
        std::ranges::sort(theirs);
    }
    EXPECT_EQ(theirs, ours);
    EXPECT_FALSE(theirs.empty());
}

INSTANTIATE_TEST_SUITE_P(Fixtures, ForeignCompoundFile,
                         testing::Values(ForeignFile{"cfb_deep.doc", {}},
                                         ForeignFile{"cfb_many.doc", {u"many\\iTEM"}},
                                         ForeignFile{"cfb_names.doc", {u"aB", u"aZ", u"a[", u"a_"}, false},
                                         ForeignFile{"cfb_sizes.doc", {}},
                                         ForeignFile{"gsf_createole.doc", {}},
                                         ForeignFile{"gsf_large_sectors.doc", {}}));

} // namespace
} // namespace pm::test
