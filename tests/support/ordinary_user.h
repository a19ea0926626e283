#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

namespace pm::test {

// While one lives, the process has no rights of root.
class OrdinaryUser {
public:
    OrdinaryUser() : m_is_root(geteuid() == 0) {
        if (m_is_root && seteuid(nobody) != 0) ADD_FAILURE() << "can't give up the rights of root";
    }
    ~OrdinaryUser() {
        if (m_is_root && seteuid(0) != 0) ADD_FAILURE() << "can't take back the rights of root";
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    static constexpr uid_t nobody = 65534;
    bool m_is_root;
};

} // namespace pm::test
