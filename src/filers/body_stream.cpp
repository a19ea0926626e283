#include "filers/body_stream.h"

#include "platform/files.h"
#include <sstream>

namespace pm {

BodyStream::BodyStream() : m_name(make_temp_file()) {
    constexpr auto mode = std::ios::in | std::ios::out | std::ios::trunc | std::ios::binary;
    if (m_name.empty()) {
        m_stream = std::make_unique<std::stringstream>(mode);
    } else {
        m_stream = std::make_unique<std::fstream>(native_file_name(m_name), mode);
    }
}

BodyStream::~BodyStream() {
    m_stream.reset();
    if (!m_name.empty()) delete_file(m_name);
}

} // namespace pm
