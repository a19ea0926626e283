#include "base/hash_table.h"
#include <gtest/gtest.h>
#include <vector>

namespace {

using Table = ZT_Hash_Table<const char16_t*, const char16_t*>;

TEST(HashTable, FreshOneHas32BucketsAndGrowsBehind480Entries) {
    const Table table;
    EXPECT_EQ(0, table.count());
    EXPECT_EQ(32, table.bucket_count());
    EXPECT_EQ(480, table.growth_threshold());
}

TEST(HashTable, HashFoldsTheHalvesOfAPointer) {
    EXPECT_EQ(0U, Table::hash(0));
    EXPECT_EQ(1U, Table::hash(4));
    // x = 0x12345678: x ^ x >> 10 = 0x1230DB6D; >> 8 ^ x = 0x122666A3 ...
    const std::uint32_t x = 0x12345678;
    const std::uint32_t expected = ((((x >> 10) ^ x) >> 8) ^ x) >> 2;
    EXPECT_EQ(expected, Table::hash(0x12345678));
    EXPECT_EQ(expected, Table::hash(0x1234567800000000));
    EXPECT_EQ(0U, Table::hash(0x1234567812345678));
}

TEST(HashTable, FindsByIdentityAndNotByText) {
    Table table;
    const char16_t key[] = u"a";
    const char16_t same_text[] = u"a";
    table.insert(key, u"value");
    ASSERT_NE(nullptr, table.find(key));
    EXPECT_EQ(std::u16string(u"value"), *table.find(key));
    EXPECT_EQ(nullptr, table.find(same_text));
}

TEST(HashTable, LaterEntryOfAKeyIsFound) {
    Table table;
    const char16_t key[] = u"a";
    table.insert(key, u"first");
    table.insert(key, u"second");
    EXPECT_EQ(2, table.count());
    EXPECT_EQ(std::u16string(u"second"), *table.find(key));
}

TEST(HashTable, GrowsBehindItsThreshold) {
    Table table;
    const std::vector<char16_t> keys(1000);
    for (int entry = 0; entry < 480; ++entry)
        table.insert(&keys[static_cast<std::size_t>(entry)], u"");
    EXPECT_EQ(32, table.bucket_count());
    table.insert(&keys[480], u"");
    EXPECT_EQ(64, table.bucket_count());
    EXPECT_EQ(960, table.growth_threshold());
    for (std::size_t entry = 481; entry < 961; ++entry)
        table.insert(&keys[entry], u"");
    EXPECT_EQ(128, table.bucket_count());
    EXPECT_EQ(1920, table.growth_threshold());
    EXPECT_EQ(961, table.count());
}

TEST(HashTable, FindsAllEntriesAfterGrowing) {
    Table table;
    const std::vector<char16_t> keys(5000);
    for (const char16_t& key : keys)
        table.insert(&key, &key);
    EXPECT_EQ(512, table.bucket_count());
    for (const char16_t& key : keys) {
        ASSERT_NE(nullptr, table.find(&key));
        EXPECT_EQ(&key, *table.find(&key));
    }
}

// One key three times, with as many others behind it as told.
void fill_with_a_repeated_key(Table& table, const std::vector<char16_t>& keys) {
    for (const char16_t* value : {u"first", u"second", u"third"}) {
        table.insert(keys.data(), value);
    }
    for (std::size_t key = 1; key < keys.size(); ++key) {
        table.insert(&keys[key], u"");
    }
}

TEST(HashTable, LaterEntryOfAKeyIsFoundHoweverOftenTheTableGrew) {
    // 32, 64, 128, 256 and 512 buckets.
    for (const std::size_t count : {477U, 479U, 1000U, 2000U, 5000U}) {
        const std::vector<char16_t> keys(count);
        Table table;
        fill_with_a_repeated_key(table, keys);
        EXPECT_EQ(std::u16string(u"third"), *table.find(keys.data())) << count;
    }
}

} // namespace
