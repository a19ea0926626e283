#include "codecs/zlib_faults.h"

#include <dlfcn.h>
#include <zlib.h>

namespace {

pm::test::ZlibFaults current;
int live = 0;

// The definition behind the ones below: zlib's own.
template<class Function>
Function* real(Function*, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

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

extern "C" {

int deflateInit2_(z_streamp stream, int level, int method, int window_bits, int memory_level, int strategy,
                  const char* version, int size) {
    if (current.deflate_start) return Z_MEM_ERROR;
    return started(real(&deflateInit2_, "deflateInit2_")(stream, level, method, window_bits, memory_level,
                                                         strategy, version, size));
}

int deflateEnd(z_streamp stream) {
    return ended(real(&deflateEnd, "deflateEnd")(stream), current.deflate_end);
}

int inflateInit_(z_streamp stream, const char* version, int size) {
    if (current.inflate_start) return Z_MEM_ERROR;
    return started(real(&inflateInit_, "inflateInit_")(stream, version, size));
}

int inflateEnd(z_streamp stream) {
    return ended(real(&inflateEnd, "inflateEnd")(stream), current.inflate_end);
}
}
