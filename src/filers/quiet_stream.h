#pragma once

#include <ios>

namespace pm {

// Keeps a caller's stream from throwing by itself, so that what fails has a number: exceptions() are off as
// long as this lives and then on again. The state stays as it came to be; it is for the stream's next use to
// throw.
class QuietStream {
public:
    explicit QuietStream(std::ios& stream) : m_stream(stream), m_exceptions(stream.exceptions()) {
        m_stream.exceptions(std::ios::goodbit);
    }
    ~QuietStream() {
        try {
            m_stream.exceptions(m_exceptions);
        } catch (const std::ios::failure&) { // of the state as it is; both are set all the same
        }
    }
    QuietStream(const QuietStream&) = delete;
    QuietStream& operator=(const QuietStream&) = delete;

private:
    std::ios& m_stream;
    std::ios::iostate m_exceptions;
};

} // namespace pm
