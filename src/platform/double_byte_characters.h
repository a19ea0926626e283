#pragma once

#include <cstdint>
#include <memory>

namespace pm {

// What the system knows of the characters of two bytes of one code page.
class DoubleByteCharacters {
public:
    // Null if the system can't convert the page. Throws std::bad_alloc if there is no memory.
    static std::unique_ptr<DoubleByteCharacters> open(unsigned code_page);
    virtual ~DoubleByteCharacters() = default;
    DoubleByteCharacters(const DoubleByteCharacters&) = delete;
    DoubleByteCharacters& operator=(const DoubleByteCharacters&) = delete;

    // The unit of a character; U+FFFD for one that the page doesn't define.
    virtual char16_t unit_of(unsigned char lead, unsigned char trail) = 0;
    // Of several characters with this unit the one that it goes out as: the lead byte times 0x100 plus the
    // trail byte, or a single byte. 0 if there is none.
    virtual std::uint16_t bytes_of(char16_t unit) = 0;

protected:
    DoubleByteCharacters() = default;
};

} // namespace pm
