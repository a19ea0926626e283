#include <cstdio>
#include <pm/pm.h>

// Prints a value that went through a tree, and a message.
int main() {
    pm::Tree tree;
    tree.set("\\media\\copies", 2);
    std::printf("%d %s\n", tree.at<int>("\\media\\copies"), pm::error_text(PM_ERR_BAD_LINE).c_str());
}
