#include "platform/compound_sectors.h"

#include "platform/compound_bytes.h"
#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace pm {
namespace {

using namespace compound;
using test::Bytes;
using Numbers = std::vector<std::uint32_t>;

constexpr std::uint32_t end = end_of_chain;

TEST(SectorChains, ChainIsFollowedToItsEnd) {
    SectorChains chains({2, end, 1});
    EXPECT_EQ((Numbers{0, 2, 1}), chains.take_chain(0));
}

TEST(SectorChains, EndIsAnEmptyChain) {
    SectorChains chains({end});
    EXPECT_EQ(Numbers{}, chains.take_chain(end));
}

TEST(SectorChains, CycleIsNoChain) {
    EXPECT_FALSE(SectorChains({0}).take_chain(0));
    EXPECT_FALSE(SectorChains({1, 2, 0}).take_chain(0));
    EXPECT_FALSE(SectorChains({1, 2, 1}).take_chain(0));
}

TEST(SectorChains, SectorOutsideTheTableIsNoChain) {
    EXPECT_FALSE(SectorChains({1, 2}).take_chain(0));
    EXPECT_FALSE(SectorChains({1, 2}).take_chain(2));
    EXPECT_FALSE(SectorChains({fat_sector}).take_chain(0));
    EXPECT_FALSE(SectorChains({difat_sector}).take_chain(0));
    EXPECT_FALSE(SectorChains().take_chain(0));
}

TEST(SectorChains, FreeMarkEndsAChainToo) {
    SectorChains chains({1, free_sector});
    EXPECT_EQ((Numbers{0, 1}), chains.take_chain(0));
    EXPECT_EQ(Numbers{}, chains.take_chain(free_sector));
}

TEST(SectorChains, ChainIsFollowedAsFarAsAskedAndNoFurther) {
    SectorChains chains({1, 2, 3, 1000});
    EXPECT_EQ((Numbers{0, 1}), chains.take_chain(0, 2));
    EXPECT_EQ(Numbers{}, chains.take_chain(1000, 0));
    EXPECT_EQ((Numbers{2, 3}), chains.take_chain(2, 2));
}

TEST(SectorChains, ShorterChainThanAskedIsNone) {
    EXPECT_FALSE(SectorChains({1, end}).take_chain(0, 3));
    EXPECT_FALSE(SectorChains({1, end, end}).take_chain(0, 3));
    EXPECT_FALSE(SectorChains({1, 0, end}).take_chain(0, 3));
    EXPECT_FALSE(SectorChains({1, end}).take_chain(0, 0xFFFFFFFFFFFFFFFF));
}

TEST(SectorChains, AsMuchOfAChainAsThereIsCanBeTaken) {
    EXPECT_EQ((Numbers{0, 1}), SectorChains({1, end}).take_up_to(0, 5));
    EXPECT_EQ((Numbers{0, 1}), SectorChains({1, 1000}).take_up_to(0, 5));
    EXPECT_EQ((Numbers{0}), SectorChains({1, end}).take_up_to(0, 1));
    EXPECT_EQ(Numbers{}, SectorChains({1, end}).take_up_to(1000, 5));
}

TEST(SectorsOf, LastSectorCountsWhole) {
    EXPECT_EQ(0U, sectors_of(0, 9));
    EXPECT_EQ(1U, sectors_of(1, 9));
    EXPECT_EQ(1U, sectors_of(512, 9));
    EXPECT_EQ(2U, sectors_of(513, 9));
    EXPECT_EQ(std::uint64_t{1} << 55, sectors_of(0xFFFFFFFFFFFFFFFF, 9));
}

TEST(SectorChains, SectorBelongsToOneChain) {
    SectorChains chains({2, 2, end});
    EXPECT_EQ((Numbers{0, 2}), chains.take_chain(0));
    EXPECT_FALSE(chains.take_chain(1));
    EXPECT_FALSE(chains.take_chain(0));
}

TEST(SectorChains, SectorIsTakenOnce) {
    SectorChains chains({end, end});
    EXPECT_TRUE(chains.take(1));
    EXPECT_FALSE(chains.take(1));
    EXPECT_FALSE(chains.take(2));
    EXPECT_FALSE(chains.take_chain(1));
}

TEST(CopySectors, TakesTheFirstBytesInTheOrderOfTheSectors) {
    const Bytes space = test::bytes_of("--aabbcc");
    EXPECT_EQ(test::bytes_of("ccaab"), copy_sectors({space, 2, 1}, {2, 0, 1}, 5));
    EXPECT_EQ(Bytes{}, copy_sectors({space, 2, 1}, {2}, 0));
}

TEST(CopySectors, MoreThanTheSectorsHoldIsRefused) {
    const Bytes space = test::bytes_of("--aabbcc");
    EXPECT_FALSE(copy_sectors({space, 2, 1}, {0, 1}, 5));
    EXPECT_FALSE(copy_sectors({space, 2, 1}, {}, 1));
    EXPECT_FALSE(copy_sectors({space, 2, 1}, {0}, 0xFFFFFFFFFFFFFFFF));
}

TEST(CopySectors, LastSectorMayBeCutShortBehindTheBytes) {
    const Bytes space = test::bytes_of("--aab");
    EXPECT_EQ(test::bytes_of("aab"), copy_sectors({space, 2, 1}, {0, 1}, 3));
    EXPECT_FALSE(copy_sectors({space, 2, 1}, {0, 1}, 4));
}

class Header : public testing::Test {
protected:
    Header() {
        CompoundTree tree;
        test::add_stream(tree, tree.root(), u"name", "content");
        file = test::file_of(tree);
    }
    bool opens() const { return CompoundSectors::open(file).has_value(); }
    bool opens_with16(std::size_t at, unsigned value) {
        test::put16(file, at, value);
        return opens();
    }
    bool opens_with32(std::size_t at, std::uint32_t value) {
        put32(file, at, value);
        return opens();
    }

    Bytes file;
};

TEST_F(Header, OfAFileWrittenHereIsSound) {
    EXPECT_TRUE(opens());
}

TEST_F(Header, EveryByteOfTheSignatureCounts) {
    for (std::size_t at = 0; at < signature.size(); ++at) {
        const std::byte before = file[at];
        file[at] ^= std::byte{1};
        EXPECT_FALSE(opens());
        file[at] = before;
    }
}

TEST_F(Header, CutShortIsRefused) {
    for (const std::size_t size : {0U, 1U, 8U, 76U, 511U, 512U}) {
        EXPECT_FALSE(CompoundSectors::open(std::span(file).first(size)));
    }
}

TEST_F(Header, OtherByteOrderIsRefused) {
    EXPECT_FALSE(opens_with16(byte_order_at, 0xFEFF));
}

TEST_F(Header, OtherSectorSizesAreRefused) {
    for (const unsigned shift : {0U, 6U, 8U, 10U, 11U, 13U, 31U, 32U, 64U, 0xFFFFU}) {
        EXPECT_FALSE(opens_with16(sector_shift_at, shift)) << shift;
    }
}

TEST_F(Header, OtherMiniSectorSizesAreRefused) {
    for (const unsigned shift : {0U, 5U, 7U, 9U, 0xFFFFU})
        EXPECT_FALSE(opens_with16(mini_shift_at, shift)) << shift;
}

TEST_F(Header, OtherLimitOfSmallStreamsIsRefused) {
    EXPECT_FALSE(opens_with32(mini_cutoff_at, 0));
    EXPECT_FALSE(opens_with32(mini_cutoff_at, 4097));
    EXPECT_FALSE(opens_with32(mini_cutoff_at, 0xFFFFFFFF));
}

TEST_F(Header, TableOfMoreSectorsThanTheFileIsRefused) {
    EXPECT_FALSE(opens_with32(fat_count_at, static_cast<std::uint32_t>(file.size() / 512 + 1)));
    EXPECT_FALSE(opens_with32(fat_count_at, 0xFFFFFFFF));
}

TEST_F(Header, TableSectorOutsideTheFileIsRefused) {
    EXPECT_FALSE(opens_with32(difat_at, static_cast<std::uint32_t>(file.size() / 512 - 1)));
    EXPECT_FALSE(opens_with32(difat_at, 0xFFFFFFFF));
}

TEST_F(Header, TableSectorListedTwiceIsRefused) {
    put32(file, difat_at + 4, get32(file, difat_at));
    EXPECT_FALSE(opens_with32(fat_count_at, 2));
}

TEST_F(Header, TableSectorThatIsCutShortIsRefused) {
    const std::size_t table = get32(file, difat_at);
    file.resize(512 * (table + 2) - 1);
    EXPECT_FALSE(opens());
}

// A header that needs lists of table sectors of its own, as files of 7 megabytes have.
class TableList : public testing::Test {
protected:
    TableList() : file(512 * (1 + sectors)) {
        CompoundTree tree;
        const Bytes header = test::file_of(tree);
        std::copy(header.begin(), header.begin() + header_size, file.begin());
        put32(file, fat_count_at, 110);
        for (std::uint32_t place = 0; place < 109; ++place)
            put32(file, difat_at + 4 * place, place);
        put32(file, difat_start_at, 110);
        put32(file, 512 * 111, 109);
        put32(file, 512 * 111 + 508, end);
    }
    bool opens() const { return CompoundSectors::open(file).has_value(); }

    static constexpr std::size_t sectors = 300;
    Bytes file;
};

TEST_F(TableList, GoesOnInASectorOfItsOwn) {
    EXPECT_TRUE(opens());
}

TEST_F(TableList, OutsideTheFileIsRefused) {
    put32(file, difat_start_at, sectors);
    EXPECT_FALSE(opens());
    put32(file, difat_start_at, end);
    EXPECT_FALSE(opens());
}

TEST_F(TableList, CycleIsRefused) {
    put32(file, fat_count_at, 299);
    put32(file, 512 * 111 + 508, 110);
    EXPECT_FALSE(opens());
}

TEST_F(TableList, ThatEndsEarlyIsRefused) {
    put32(file, fat_count_at, 109 + 128);
    EXPECT_FALSE(opens());
}

} // namespace
} // namespace pm
