#include <cstdio>
#include <pm/pm.h>

// Prints the text of an error number. Linked without a search path.
int main() {
    std::puts(pm::error_text(PM_ERR_BAD_LINE).c_str());
}
