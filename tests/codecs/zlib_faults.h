#pragma once

// zlib's start and end calls of the test program: they keep count of live streams and fail on demand.
namespace pm::test {

struct ZlibFaults {
    bool deflate_start = false;
    bool deflate_end = false;
    bool inflate_start = false;
    bool inflate_end = false;
};

// What is to fail from now on.
void set_zlib_faults(const ZlibFaults& faults);
// Streams started and not ended.
int live_zlib_streams();

} // namespace pm::test
