#include "codecs/zlib_faults.h"

#include <zlib.h>

namespace {

pm::test::ZlibFaults current;
int live = 0;

int started(int result) {
    if (result == Z_OK) ++live;
    return result;
}

int ended(int result, bool fails) {
    --live;
    return fails ? Z_STREAM_ERROR : result;
}

} // namespace

namespace pm::test {

void set_zlib_faults(const ZlibFaults& faults) {
    current = faults;
}

int live_zlib_streams() {
    return live;
}

} // namespace pm::test

// The linker sends what calls zlib's functions to the first of each pair; the second is zlib's own.
extern "C" {

int __real_deflateInit2_(z_streamp stream, int level, int method, int window_bits, int memory_level,
                         int strategy, const char* version, int size);
int __wrap_deflateInit2_(z_streamp stream, int level, int method, int window_bits, int memory_level,
                         int strategy, const char* version, int size) {
    if (current.deflate_start) return Z_MEM_ERROR;
    return started(
        __real_deflateInit2_(stream, level, method, window_bits, memory_level, strategy, version, size));
}

int __real_deflateEnd(z_streamp stream);
int __wrap_deflateEnd(z_streamp stream) {
    return ended(__real_deflateEnd(stream), current.deflate_end);
}

int __real_inflateInit_(z_streamp stream, const char* version, int size);
int __wrap_inflateInit_(z_streamp stream, const char* version, int size) {
    if (current.inflate_start) return Z_MEM_ERROR;
    return started(__real_inflateInit_(stream, version, size));
}

int __real_inflateEnd(z_streamp stream);
int __wrap_inflateEnd(z_streamp stream) {
    return ended(__real_inflateEnd(stream), current.inflate_end);
}
}
