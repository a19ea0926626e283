#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

// replacing_editor OLD NEW FILE: an editor that replaces the first OLD in a file by NEW. Ends with 1 if it
// isn't there or words are missing.
int main(int argc, char** argv) {
    if (argc != 4) return 1;
    std::ifstream in(argv[3], std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(in), {}};
    in.close();
    const std::string old = argv[1];
    const std::size_t at = content.find(old);
    if (at == std::string::npos) return 1;
    content.replace(at, old.size(), argv[2]);
    std::ofstream out(argv[3], std::ios::binary);
    out << content;
    return out.flush() ? 0 : 1;
}
