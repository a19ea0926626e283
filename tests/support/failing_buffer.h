#pragma once

#include <stdexcept>
#include <streambuf>
#include <string>
#include <utility>

namespace pm::test {

// Gives a text and fails behind it.
class FailingBuffer : public std::streambuf {
public:
    explicit FailingBuffer(std::string text) : m_text(std::move(text)) {
        setg(m_text.data(), m_text.data(), m_text.data() + m_text.size());
    }

protected:
    int_type underflow() override { throw std::runtime_error("the device failed"); }

private:
    std::string m_text;
};

} // namespace pm::test
