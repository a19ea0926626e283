#include "tools/run_tool.h"

namespace pm::test {

namespace {

class PmToolCodec : public ToolTest {
protected:
    const std::string text = "the quick brown fox jumps over the lazy dog\n";
};

TEST_F(PmToolCodec, PlainBlockGivesBackItsData) {
    folder.write("text", text);
    expect_output({"codec", "zlib", "encode", "text", "block"}, "");
    EXPECT_TRUE(folder.read("block").starts_with("pmzlibcodec" + std::string("\x2C\0\0\0", 4)));
    expect_output({"codec", "zlib", "decode", "block", "back"}, "");
    EXPECT_EQ(text, folder.read("back"));
}

TEST_F(PmToolCodec, CheckedBlockIsFourBytesLonger) {
    folder.write("text", text);
    expect_output({"codec", "zlib", "encode", "text", "plain"}, "");
    expect_output({"codec", "zlib", "encode", "--crc", "text", "checked"}, "");
    EXPECT_EQ(folder.read("plain").size() + 4, folder.read("checked").size());
    expect_output({"codec", "zlib", "decode", "checked", "back", "--crc"}, "");
    EXPECT_EQ(text, folder.read("back"));
}

TEST_F(PmToolCodec, EmptyFileGoesThroughABlock) {
    folder.write("text", "");
    expect_output({"codec", "zlib", "encode", "text", "block"}, "");
    expect_output({"codec", "zlib", "decode", "block", "back"}, "");
    EXPECT_EQ("", folder.read("back"));
}

TEST_F(PmToolCodec, BodyOfACompressedFileIsDecodedBehindItsHeader) {
    expect_output({"codec", "zlib", "decode", "--crc", sample_folder + "/plotter-compressed.pia", "body"},
                  "");
    EXPECT_TRUE(folder.read("body").starts_with("name=\"DX-4200 in the drawing office\n"));
}

TEST_F(PmToolCodec, FileWithoutABlockIsTrouble) {
    folder.write("text", text);
    expect_trouble({"codec", "zlib", "decode", "text", "back"},
                   "text: The data holds no compressed block (error 92)");
    EXPECT_EQ((std::vector<std::string>{"text"}), file_names());
}

TEST_F(PmToolCodec, BlockBehindAZeroByteIsNotSeen) {
    folder.write("text", text);
    expect_output({"codec", "zlib", "encode", "text", "block"}, "");
    folder.write("late", '\0' + folder.read("block"));
    expect_trouble({"codec", "zlib", "decode", "late", "back"},
                   "late: The data holds no compressed block (error 92)");
}

TEST_F(PmToolCodec, CutBlockIsTrouble) {
    folder.write("text", text);
    expect_output({"codec", "zlib", "encode", "text", "block"}, "");
    const std::string block = folder.read("block");
    for (const std::size_t size : {block.size() - 1, std::size_t{19}, std::size_t{18}, std::size_t{11}}) {
        folder.write("cut", block.substr(0, size));
        expect_trouble({"codec", "zlib", "decode", "cut", "back"}, "cut: the block is longer than the file");
    }
}

TEST_F(PmToolCodec, BlockThatAnnouncesTooMuchIsTrouble) {
    folder.write("block", "pmzlibcodec" + std::string("\xFF\xFF\xFF\xFF\x08\0\0\0", 8) + "12345678");
    expect_trouble({"codec", "zlib", "decode", "block", "back"},
                   "block: the block announces more data than it can hold");
}

TEST_F(PmToolCodec, DamagedBlockIsTrouble) {
    folder.write("block", "pmzlibcodec" + std::string("\x08\0\0\0\x08\0\0\0", 8) + "12345678");
    expect_trouble({"codec", "zlib", "decode", "block", "back"},
                   "block: Decompression failed: the data is damaged or larger than announced (error 97)");
}

TEST_F(PmToolCodec, HuffmanBlockLosesTheLastByte) {
    folder.write("text", "mississippi");
    expect_output({"codec", "huffman", "encode", "text", "block"}, "");
    EXPECT_TRUE(folder.read("block").starts_with("pmhuffcodec"));
    expect_output({"codec", "huffman", "decode", "block", "back"}, "");
    EXPECT_EQ("mississipp", folder.read("back"));
}

TEST_F(PmToolCodec, HuffmanNeedsTwoDifferentBytes) {
    folder.write("text", "aaaa");
    const ToolRun result = run({"codec", "huffman", "encode", "text", "block"});
    EXPECT_EQ(2, result.status);
    EXPECT_EQ((std::vector<std::string>{"text"}), file_names());
}

TEST_F(PmToolCodec, CutHuffmanBlockIsTrouble) {
    folder.write("text", "mississippi");
    expect_output({"codec", "huffman", "encode", "text", "block"}, "");
    const std::string block = folder.read("block");
    for (const std::size_t size : {block.size() - 1, std::size_t{1039}, std::size_t{1038}, std::size_t{11}}) {
        folder.write("cut", block.substr(0, size));
        expect_trouble({"codec", "huffman", "decode", "cut", "back"},
                       "cut: the block is longer than the file");
    }
    folder.write("cut", block.substr(0, 10));
    expect_trouble({"codec", "huffman", "decode", "cut", "back"},
                   "cut: The data holds no compressed block (error 92)");
}

TEST_F(PmToolCodec, MistakesOnTheCommandLineAreTrouble) {
    folder.write("text", text);
    expect_trouble({"codec", "lzw", "encode", "text", "block"},
                   "lzw: no such codec; there are zlib and huffman; see pmtool codec --help");
    expect_trouble({"codec", "zlib", "pack", "text", "block"},
                   "pack: this must be encode or decode; see pmtool codec --help");
    expect_trouble({"codec", "huffman", "encode", "--crc", "text", "block"},
                   "--crc is for zlib blocks only; see pmtool codec --help");
    expect_trouble({"codec", "zlib", "encode", "no", "block"}, "no: The file doesn't exist (error 63)");
}

} // namespace

} // namespace pm::test
