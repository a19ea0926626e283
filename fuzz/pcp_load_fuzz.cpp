// A PCP file. Its version is read too.

#include "legacy/pmpcp.h"
#include "legacy_fuzz.h"

namespace {

// A file may end inside a default block, which the next load would be in.
void leave_default_block() {
    std::stringstream stream(";Created by Draftex\nEND_COLOR\n");
    PM_Object object;
    object.load(stream, PM_Object::FILE_PCP, u"\\");
}

void read_version(const std::string& content) {
    std::stringstream stream(content);
    pm::fuzz::CountingHandler handler(true);
    PM_PCPFile filer(&handler);
    filer.attach(&stream);
    constexpr std::size_t capacity = 16;
    const std::unique_ptr<char16_t[]> buffer(new char16_t[capacity]());
    filer.getVersion(buffer.get(), capacity);
    pm::fuzz::require(buffer[capacity - 1] == 0);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string content(data, data + size);
    pm::fuzz::load_with_each_answer(size, [&](PM_Object& object, ZT_Error_Handler*) {
        leave_default_block();
        std::stringstream stream(content);
        object.load(stream, PM_Object::FILE_PCP, u"\\base");
    });
    read_version(content);
    return 0;
}
