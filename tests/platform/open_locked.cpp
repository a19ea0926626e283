#include "platform/locked_file.h"

#include <filesystem>

// open_locked FILE: ends with 0 if it could open the file for itself.
int main(int argc, char** argv) {
    if (argc != 2) return 2;
    return pm::LockedFile::open(std::filesystem::path(argv[1]).u16string()) != nullptr ? 0 : 1;
}
