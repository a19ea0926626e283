#pragma once

#include <ios>
#include <new>
#include <sstream>
#include <streambuf>
#include <string_view>

// Files in memory, as the library reads and writes them.
namespace pm::c {

// Bytes of the caller's as a stream's buffer that is read, with places to go to.
class BytesBuffer final : public std::streambuf {
public:
    explicit BytesBuffer(std::string_view bytes) {
        char* const first = const_cast<char*>(bytes.data()); // never written to
        setg(first, first, first + bytes.size());
    }

protected:
    pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode) override {
        const off_type size = egptr() - eback();
        const off_type base = from == std::ios_base::beg   ? 0
                              : from == std::ios_base::end ? size
                                                           : gptr() - eback();
        if (offset < -base || offset > size - base) return pos_type(off_type(-1));
        setg(eback(), eback() + base + offset, egptr());
        return pos_type(base + offset);
    }
    pos_type seekpos(pos_type place, std::ios_base::openmode which) override {
        return seekoff(off_type(place), std::ios_base::beg, which);
    }
};

// A buffer that grows as it is written. Streams swallow what is thrown below them; it is remembered here.
class GrowingBuffer final : public std::stringbuf {
public:
    bool is_out_of_memory() const noexcept { return m_is_out_of_memory; }

protected:
    int_type overflow(int_type unit) override {
        try {
            return std::stringbuf::overflow(unit);
        } catch (const std::bad_alloc&) {
            m_is_out_of_memory = true;
            throw;
        }
    }

private:
    bool m_is_out_of_memory = false;
};

} // namespace pm::c
