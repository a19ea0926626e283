#pragma once

#include "support/file_size_limit.h"
#include "support/temp_folder.h"
#include <cstdint>
#include <optional>
#include <string>
#include <sys/mount.h>

namespace pm::test {

// A folder whose disk holds 64 KB, where the system lets one be made; elsewhere no file of this process and
// of its children grows beyond that as long as this lives, which fails another way.
class SmallDisk {
public:
    static constexpr std::size_t size = 64 * 1024;

    SmallDisk() {
        m_is_disk = mount("tmpfs", path().c_str(), "tmpfs", MS_NOSUID | MS_NODEV, "size=64k") == 0;
        if (!m_is_disk) m_limit.emplace(size);
    }
    ~SmallDisk() {
        if (m_is_disk) umount2(path().c_str(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    const TempFolder& folder() const { return m_folder; }
    std::string path() const { return m_folder.path().string(); }
    // That tells of it.
    std::uint32_t number() const { return m_is_disk ? 65 : 82; }
    const char* text() const {
        return m_is_disk ? "There is no space left on the disk (error 65)"
                         : "Reading or writing failed, or the file ends too early (error 82)";
    }

private:
    TempFolder m_folder;
    bool m_is_disk = false;
    std::optional<FileSizeLimit> m_limit;
};

} // namespace pm::test
