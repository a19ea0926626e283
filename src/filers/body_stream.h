#pragma once

#include <fstream>
#include <iosfwd>
#include <memory>
#include <string>

namespace pm {

// Storage for the plain text of a compressed body: a temporary file, deleted with this object, or memory
// where no temporary name is to be had.
class BodyStream {
public:
    BodyStream();
    ~BodyStream();
    BodyStream(const BodyStream&) = delete;
    BodyStream& operator=(const BodyStream&) = delete;

    std::iostream& stream() { return *m_stream; }

private:
    std::u16string m_name; // empty when the body is in memory
    std::unique_ptr<std::iostream> m_stream;
};

} // namespace pm
