// A PC2 file, loaded to the root and to a base that takes the place of a "-".

#include "legacy_fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string content(data, data + size);
    for (const char16_t* base : {u"\\", u"\\plotter-1"}) {
        pm::fuzz::load_with_each_answer(size, [&](PM_Object& object, ZT_Error_Handler*) {
            std::stringstream stream(content);
            object.load(stream, PM_Object::FILE_PC2, base);
        });
    }
    return 0;
}
