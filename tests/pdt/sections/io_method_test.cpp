#include "pdt/description.h"
#include <gtest/gtest.h>

namespace {

using pm::Section;
using pm::test::Description;
using pm::test::DescriptionLoad;
using pm::test::has_item;
using pm::test::Items;
using Marks = std::vector<int>;

struct IoDescription : Description {
    explicit IoDescription(std::string_view io_rows, std::string_view protocols = "") {
        rows(Section::io_method, io_rows).rows(Section::protocol, protocols);
    }
};

Items methods(std::string_view rows, std::string_view protocols = "") {
    return pm::test::items_of(IoDescription(rows, protocols), u"io\\method");
}

Marks io_marks(std::string_view rows) {
    const IoDescription description(rows);
    DescriptionLoad pdt(description);
    PM_Object object;
    pdt.load_into(object);
    return pdt.io_marks();
}

// The marks in the abilities of a method.
Marks method_marks(const Items& items, const std::string& key) {
    const std::string start = key + "abilities=\"";
    for (const std::string& item : items) {
        if (!item.starts_with(start)) continue;
        const std::string text = item.substr(start.size(), item.size() - start.size() - 1);
        EXPECT_EQ(20U, text.size());
        return DescriptionLoad::marks_in(std::u16string(text.begin(), text.end()));
    }
    return {-2};
}

// --- Protocols

struct Protocols {
    explicit Protocols(std::string_view rows, std::string_view strings = "") {
        description.rows(Section::protocol, rows).strings(strings);
        pdt.load_into(object);
    }
    Description description;
    DescriptionLoad pdt{description};
    pm::test::OpenObject object;
};

TEST(Protocol, RowsBecomeRecordsInOrder) {
    Protocols read("8 N 1\tx\tDataBits_8\tOneStopBit = ONESTOPBIT\tNone\n"
                   "7E2\tx\tDataBits_7\tTwoStopBits = TWOSTOPBITS\tEven\n",
                   "DRFX_PROTOCOL__B3 \"first\"\nDRFX_PROTOCOL__B4 \"second\"\n");
    ASSERT_EQ(2, read.pdt.protocols.count());
    const UC_Protocol& first = *read.pdt.protocols.head();
    EXPECT_EQ(std::u16string(u"8_N_1"), first.name.text());
    EXPECT_EQ(std::u16string(u"first"), first.localized_name.text());
    EXPECT_EQ(3, first.data_bits);
    EXPECT_EQ(0, first.stop_bits);
    EXPECT_EQ(0, first.parity);
    const UC_Protocol& second = *read.pdt.protocols.tail();
    EXPECT_EQ(std::u16string(u"7E2"), second.name.text());
    EXPECT_EQ(std::u16string(u"second"), second.localized_name.text());
    EXPECT_EQ(2, second.data_bits);
    EXPECT_EQ(2, second.stop_bits);
    EXPECT_EQ(2, second.parity);
}

TEST(Protocol, UnknownTextsAreMinusOne) {
    Protocols read("P\t\tDataBits_9\tOneStopBit\tnone\n");
    const UC_Protocol& record = *read.pdt.protocols.head();
    EXPECT_EQ(-1, record.data_bits);
    EXPECT_EQ(-1, record.stop_bits);
    EXPECT_EQ(-1, record.parity);
}

TEST(Protocol, WritesNothing) {
    EXPECT_EQ(pm::test::items_of(Description(), u"io"), Protocols("P\n").object.items(u"io"));
}

// --- The plain settings of a group

TEST(IoMethod, TableWithHeadingsOnlyGivesNothing) {
    EXPECT_EQ(Items{}, methods(""));
    EXPECT_EQ(Marks{}, io_marks(""));
}

TEST(IoMethod, GroupWithATypeOnly) {
    const Items expected = {"6\\caps_type=0", "6\\abilities=\"00000000005000000000\""};
    EXPECT_EQ(expected, methods("Network\n"));
    EXPECT_EQ((Marks{0, 2}), io_marks("Network\n"));
}

TEST(IoMethod, SettingsAreWrittenInOrder) {
    const Items expected = {
        "0\\caps_type=0",
        "0\\max_output_timeout=1",
        "0\\min_output_timeout=2",
        "0\\max_input_timeout=3",
        "0\\min_input_timeout=4",
        "0\\default_output_timeout=5",
        "0\\default_input_timeout=6",
        "0\\default_baud_rate=9600",
        "0\\default_protocol=\" 8 N 1\"",
        "0\\abilities=\"55555550505005550500\"",
    };
    EXPECT_EQ(expected, methods("None\t\t\t1\t2\t3\t4\t5\t6\t\t9600\t 8 N 1\n"));
    EXPECT_EQ((Marks{0, 2, 5, 6, 8, 9}), io_marks("None\t\t\t1\t2\t3\t4\t5\t6\t\t9600\t8N1\n"));
}

TEST(IoMethod, EachSettingHasItsMarks) {
    struct Case {
        int column;
        Marks method;
        Marks io;
    };
    const Case cases[] = {
        {1, {10, 11}, {0, 2}},        {2, {7, 10}, {0, 2}},         {3, {1, 5, 10}, {0, 2}},
        {4, {2, 10}, {0, 2}},         {5, {4, 10, 14}, {0, 2}},     {6, {10}, {0, 2}},
        {7, {0, 10, 13}, {0, 2, 8}},  {8, {3, 10}, {0, 2, 9}},      {9, {10, 19}, {0, 2}},
        {10, {8, 10, 17}, {0, 2, 6}}, {11, {6, 10, 15}, {0, 2, 5}}, {12, {10, 12, 18}, {0, 2}},
        {13, {9, 10}, {0, 2}},
    };
    for (const Case& each : cases) {
        const std::string row = "None" + std::string(static_cast<std::size_t>(each.column), '\t') + "1\n";
        EXPECT_EQ(each.method, method_marks(methods(row), "0\\")) << each.column;
        EXPECT_EQ(each.io, io_marks(row)) << each.column;
    }
}

TEST(IoMethod, LeastInputTimeoutDependsOnTheMostOutputTimeout) {
    EXPECT_EQ((Items{"0\\caps_type=0", "0\\abilities=\"00000000005000000000\""}),
              methods("None\t\t\t\t\t\t4\n"));
    EXPECT_TRUE(has_item(methods("None\t\t\t1\n"), "0\\min_input_timeout=0"));
}

TEST(IoMethod, TypesHaveTheirMarks) {
    struct Case {
        const char* type;
        std::string key;
        Marks method;
        Marks io;
    };
    const Case cases[] = {
        {"None", "0\\", {10}, {0, 2}},         {"Does_Own_IO", "1\\", {10}, {0, 2}},
        {"File", "2\\", {10}, {0, 2, 10, 11}}, {"System", "3\\", {10}, {0, 2}},
        {"RS232", "4\\", {10, 16}, {0, 2, 4}}, {"Parallel", "5\\", {10, 16}, {0, 2, 4}},
        {"Network", "6\\", {10}, {0, 2}},
    };
    for (const Case& each : cases) {
        const std::string row = std::string(each.type) + "\n";
        EXPECT_EQ(each.method, method_marks(methods(row), each.key)) << each.type;
        EXPECT_EQ(each.io, io_marks(row)) << each.type;
    }
}

// --- The cells of each row

TEST(IoMethod, HandshakesAddUpOverTheRowsOfAGroup) {
    const Items items = methods("RS232\t\t\t\t\t\t\t\t\tfXOut = 0x2\t\t\tNone\n"
                                "\t\t\t\t\t\t\t\t\tCts = 0x4\t\t\tfXIn = 0x1\n"
                                "\t\t\t\t\t\t\t\t\t\t\t\tRlsd = 0x800\n");
    EXPECT_EQ((Items{"4\\caps_type=0", "4\\default_handshake=6", "4\\handshakes=2049",
                     "4\\abilities=\"00000000005050005055\""}),
              items);
}

TEST(IoMethod, HandshakeNoneSetsTheFlagsAndNoBits) {
    const Items items = methods("RS232\t\t\t\t\t\t\t\t\tNone\t\t\tNone\n");
    EXPECT_TRUE(has_item(items, "4\\default_handshake=0"));
    EXPECT_TRUE(has_item(items, "4\\handshakes=0"));
}

TEST(IoMethod, UnknownTextInABitCellAddsTheEndMark) {
    const Items items = methods("RS232\tmodel\t\t\t\t\t\t\t\tfXOut\t\t\tCts=0x4\nFile\n");
    EXPECT_TRUE(has_item(items, "4\\default_handshake=65535"));
    EXPECT_TRUE(has_item(items, "4\\handshakes=65535"));
    EXPECT_TRUE(has_item(items, "4\\bidi_flags=65535"));
}

TEST(IoMethod, HandshakeInLowerCaseIsUnknown) {
    EXPECT_TRUE(has_item(methods("RS232\t\t\t\t\t\t\t\t\t\t\t\tcts = 0x4\n"), "4\\handshakes=65535"));
}

TEST(IoMethod, ProtocolWithARecordIsCopied) {
    const Items items =
        methods("RS232\t\tP1\n\t\tP2\n",
                "P1\t\tDataBits_8\tOneStopBit = ONESTOPBIT\tOdd\nP2\t\tDataBits_5\tx\tMark\n");
    const Items expected = {
        "4\\caps_type=0",
        "4\\abilities=\"00000005005000005000\"",
        "4\\protocol\\0\\canonical_name=\"P1\"",
        "4\\protocol\\0\\data_bits=3",
        "4\\protocol\\0\\stop_bits=0",
        "4\\protocol\\0\\parity=1",
        "4\\protocol\\0\\localized_name=\"\"",
        "4\\protocol\\0\\caps_type=0",
        "4\\protocol\\1\\canonical_name=\"P2\"",
        "4\\protocol\\1\\data_bits=0",
        "4\\protocol\\1\\stop_bits=-1",
        "4\\protocol\\1\\parity=3",
        "4\\protocol\\1\\localized_name=\"\"",
        "4\\protocol\\1\\caps_type=0",
    };
    EXPECT_EQ(expected, items);
}

TEST(IoMethod, ProtocolWithoutARecordHasTwoItems) {
    const Items expected = {"4\\caps_type=0", "4\\abilities=\"00000005005000005000\"",
                            "4\\protocol\\0\\canonical_name=\"p1\"", "4\\protocol\\0\\caps_type=0"};
    EXPECT_EQ(expected, methods("RS232\t\tp1\n", "P1\n"));
}

TEST(IoMethod, ProtocolCellIsTakenAsItStands) {
    const Items items = methods("RS232\t\t8 N 1\n", "8 N 1\n");
    EXPECT_TRUE(has_item(items, "4\\protocol\\0\\canonical_name=\"8 N 1\""));
    EXPECT_FALSE(has_item(items, "4\\protocol\\0\\parity=-1"));
}

TEST(IoMethod, BaudRatesOfEachRow) {
    const Items expected = {
        "4\\caps_type=0",
        "4\\abilities=\"00000000055000005000\"",
        "4\\baudrates\\0\\rate=1200",
        "4\\baudrates\\0\\caps_type=0",
        "4\\baudrates\\1\\rate=0",
        "4\\baudrates\\1\\caps_type=0",
    };
    EXPECT_EQ(expected, methods("RS232\t\t\t\t\t\t\t\t\t\t\t\t\t1200\n"
                                "\t\t\t\t\t\t\t\t\t\t\t\t\tfast\n"));
}

// --- Groups

TEST(IoMethod, SecondGroupGoesOnWithTheIndicesOfTheFirst) {
    const Items items =
        methods("RS232\t\tA\t\t\t\t\t\t\t\t\t\t\t1200\nParallel\t\tB\t\t\t\t\t\t\t\t\t\t\t2400\n");
    EXPECT_TRUE(has_item(items, "5\\protocol\\1\\canonical_name=\"B\""));
    EXPECT_TRUE(has_item(items, "5\\baudrates\\1\\rate=2400"));
}

TEST(IoMethod, BidirectionalBitsOfEarlierGroupsStay) {
    const Items items = methods("RS232\tModel = 0x1\nParallel\tJams = 0x2000\nFile\n");
    EXPECT_TRUE(has_item(items, "4\\bidi_flags=1"));
    EXPECT_TRUE(has_item(items, "5\\bidi_flags=8193"));
}

TEST(IoMethod, LastGroupHasNoBidirectionalFlags) {
    const Items items = methods("RS232\tModel = 0x1\n");
    EXPECT_EQ((Items{"4\\caps_type=0", "4\\abilities=\"00000000005500005000\""}), items);
}

TEST(IoMethod, HandshakesOfEarlierGroupsAreGone) {
    const Items items = methods("RS232\t\t\t\t\t\t\t\t\tCts = 0x4\t\t\tfXIn = 0x1\n"
                                "Parallel\t\t\t\t\t\t\t\t\t\t\t\tfXOut = 0x2\nFile\n");
    EXPECT_TRUE(has_item(items, "4\\handshakes=1"));
    EXPECT_TRUE(has_item(items, "5\\handshakes=2"));
    EXPECT_EQ((Marks{10, 12, 16, 18}), method_marks(items, "5\\"));
    EXPECT_EQ((Items{"2\\caps_type=0", "2\\abilities=\"00000000005000000000\""}),
              Items(items.end() - 2, items.end()));
}

TEST(IoMethod, HandshakesOfAClosedGroupMarkTheAbilityAndThoseOfTheLastDoNot) {
    const std::string row = "RS232\t\t\t\t\t\t\t\t\t\t\t\tfXIn = 0x1\n";
    EXPECT_EQ((Marks{0, 2, 4}), io_marks(row));
    EXPECT_EQ((Marks{0, 2, 4, 7}), io_marks(row + "Network\n"));
}

TEST(IoMethod, UnknownTypeClosesTheGroupAboveAndItsKeyStays) {
    const Items items = methods("RS232\tModel = 0x1\nbogus\t\tP\n\t\tQ\n");
    const Items expected = {"4\\caps_type=0", "4\\bidi_flags=1", "4\\abilities=\"00000005000000000000\"",
                            "4\\protocol\\0\\canonical_name=\"Q\"", "4\\protocol\\0\\caps_type=0"};
    EXPECT_EQ(expected, items);
}

TEST(IoMethod, UnknownTypeDropsTheWholeLine) {
    EXPECT_EQ(Items{}, methods("rs232\tModel = 0x1\tP\t1\t\t\t\t\t\t\t\t\t\t1200\n"));
    EXPECT_EQ(Marks{0}, io_marks("rs232\n"));
}

TEST(IoMethod, MasksOfADroppedLineAreDropped) {
    const Items items = methods("bogus\tModel = 0x1\t\t\t\t\t\t\t\tfXOut = 0x2\t\t\tfXIn = 0x1\n"
                                "RS232\tJams = 0x2000\t\t\t\t\t\t\t\tNone\t\t\tNone\nFile\n");
    const Items expected = {"4\\caps_type=0",
                            "4\\default_handshake=0",
                            "4\\handshakes=0",
                            "4\\bidi_flags=8192",
                            "4\\abilities=\"00000000005550005055\"",
                            "2\\caps_type=0",
                            "2\\abilities=\"00000000005000000000\""};
    EXPECT_EQ(expected, items);
}

TEST(IoMethod, MasksOfADroppedLineBetweenGroupsAreDropped) {
    const Items items = methods("RS232\nbogus\tModel = 0x1\t\t\t\t\t\t\t\tfXOut = 0x2\t\t\tfXIn = 0x1\n"
                                "File\tJams = 0x2000\nNone\n");
    const Items expected = {"4\\caps_type=0",
                            "4\\abilities=\"00000000000000000000\"",
                            "2\\caps_type=0",
                            "2\\bidi_flags=8192",
                            "2\\abilities=\"00000000005500000000\"",
                            "0\\caps_type=0",
                            "0\\abilities=\"00000000005000000000\""};
    EXPECT_EQ(expected, items);
}

TEST(IoMethod, TypeIsLookedUpBeforeItIsNormalized) {
    EXPECT_EQ(Items{}, methods("Does Own IO\n"));
}

TEST(IoMethod, TypeOfBlanksIsUnknown) {
    const Items items = methods("RS232\n  \t\tP\n");
    EXPECT_FALSE(has_item(items, "4\\protocol\\0\\canonical_name=\"P\""));
}

TEST(IoMethod, DroppedLineIsNotCounted) {
    // The second line counts as the first row, so that no group is closed in front of it.
    const Items items = methods("bogus\nRS232\n");
    EXPECT_EQ((Items{"4\\caps_type=0", "4\\abilities=\"00000000005000005000\""}), items);
}

TEST(IoMethod, FirstRowWithoutATypeAddsToAMethodWithoutAKey) {
    const Items items = methods("\t\tP\t5\t\t\t\t\t\t\t\t\t\t300\n");
    const Items expected = {"abilities=\"00000005050000000000\"", "protocol\\0\\canonical_name=\"P\"",
                            "protocol\\0\\caps_type=0", "baudrates\\0\\rate=300",
                            "baudrates\\0\\caps_type=0"};
    EXPECT_EQ(expected, items);
}

} // namespace
