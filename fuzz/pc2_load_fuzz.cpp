// A PC2 file.

#include "legacy_fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string content(data, data + size);
    pm::fuzz::load_with_each_answer(size, [&](PM_Object& object, ZT_Error_Handler*) {
        std::stringstream stream(content);
        object.load(stream, PM_Object::FILE_PC2, u"\\");
    });
    return 0;
}
