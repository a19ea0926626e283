#pragma once

#include "support/system.h"

namespace pm::test {

// While one lives, the process has no rights of root.
class OrdinaryUser {
public:
    OrdinaryUser() : m_was_root(drop_rights_of_root()) {}
    ~OrdinaryUser() {
        if (m_was_root) take_back_rights_of_root();
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    bool m_was_root;
};

} // namespace pm::test
