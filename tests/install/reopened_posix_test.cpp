#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <malloc.h>
#include <string>

// The library opened and closed again and again, with the part of a host that uses it.

namespace {

class OpenedClient {
public:
    OpenedClient() : m_handle(dlopen(PM_CLIENT, RTLD_NOW | RTLD_LOCAL)) {}
    ~OpenedClient() {
        if (m_handle != nullptr) dlclose(m_handle);
    }
    OpenedClient(const OpenedClient&) = delete;
    OpenedClient& operator=(const OpenedClient&) = delete;

    bool is_open() const { return m_handle != nullptr; }
    bool use_library() const { return reinterpret_cast<bool (*)()>(dlsym(m_handle, "use_library"))(); }

private:
    void* m_handle;
};

bool is_loaded(const char* library) {
    void* const handle = dlopen(library, RTLD_NOW | RTLD_NOLOAD);
    if (handle == nullptr) return false;
    dlclose(handle);
    return true;
}

struct Held {
    std::size_t bytes;
    std::ptrdiff_t mapped_files;
    std::ptrdiff_t files;
};

// Other mappings are the heap's, and a sanitizer's.
std::ptrdiff_t count_mapped_files() {
    std::ifstream maps("/proc/self/maps");
    std::ptrdiff_t count = 0;
    for (std::string line; std::getline(maps, line);) {
        if (line.find('/') != std::string::npos) ++count;
    }
    return count;
}

Held held() {
    const struct mallinfo2 heap = mallinfo2();
    const auto mapped_files = count_mapped_files();
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return {heap.uordblks + heap.hblkhd, mapped_files, std::distance(begin(files), end(files))};
}

TEST(Reopened, LibraryLeavesNothingBehindWhenItIsClosed) {
    constexpr int times = 1000;
    constexpr int first_times = 20;
    Held before{};
    for (int i = 0; i < times; ++i) {
        if (i == first_times) before = held();
        const OpenedClient client;
        ASSERT_TRUE(client.is_open()) << dlerror();
        ASSERT_TRUE(client.use_library());
    }
    const Held after = held();
    EXPECT_LE(after.bytes, before.bytes + 8 * times); // the smallest block takes 32 each time
    EXPECT_EQ(after.mapped_files, before.mapped_files);
    EXPECT_EQ(after.files, before.files);
}

// Else the first test would open it once.
TEST(Reopened, LibraryIsGoneWhenItIsClosed) {
    {
        const OpenedClient client;
        ASSERT_TRUE(client.is_open()) << dlerror();
        ASSERT_TRUE(client.use_library());
        EXPECT_TRUE(is_loaded(PM_LIBRARY) && is_loaded(PM_MESSAGE_LIBRARY));
    }
    EXPECT_FALSE(is_loaded(PM_LIBRARY) || is_loaded(PM_MESSAGE_LIBRARY));
}

} // namespace
