// Writes the compound file that a manifest tells: write_compound_file <manifest> <file>

#include "platform/compound_manifest.h"
#include <cstdio>
#include <exception>

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    try {
        const pm::test::Tree tree = pm::test::read_manifest(argv[1]);
        const auto root = pm::StgCreateDocfile(pm::to_wide(argv[2], pm::utf8_code_page));
        return root && pm::test::write_tree(tree, *root) && root->Commit() ? 0 : 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}
