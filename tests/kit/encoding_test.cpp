#include <gtest/gtest.h>
#include <pm/kit/encoding.h>
#include <pm/kit/stored.h>

namespace pm::kit {

namespace {

// A tree of one text, as code page 1252 reads these bytes: those below 80 and from A0 on are characters of
// the same number.
TextEncoding encoding_of(std::u16string_view text) {
    Tree tree;
    tree.set("\\a", text);
    return text_encoding(tree);
}

TEST(TextEncoding, TextWithoutOtherCharactersIsAscii) {
    EXPECT_EQ(TextEncoding::ascii, text_encoding(Tree()));
    EXPECT_EQ(TextEncoding::ascii, encoding_of(u"plain"));
}

TEST(TextEncoding, SequencesOfUtf8AreSeenInWhatTheyReadAs) {
    EXPECT_EQ(TextEncoding::utf8, encoding_of(u"B\u00C3\u00BCro"));
    EXPECT_EQ(TextEncoding::utf8, encoding_of(u"\u00E2\u201A\u00AC"));       // the bytes E2 82 AC
    EXPECT_EQ(TextEncoding::utf8, encoding_of(u"\u00F0\u0178\u02DC\u20AC")); // F0 9F 98 80
}

TEST(TextEncoding, CharactersThatMakeNoSequenceAreOthers) {
    EXPECT_EQ(TextEncoding::other, encoding_of(u"B\u00FCro"));
    EXPECT_EQ(TextEncoding::other, encoding_of(u"\u00C3"));
    EXPECT_EQ(TextEncoding::other, encoding_of(u"\u00C0\u00AF")); // longer than need be
    EXPECT_EQ(TextEncoding::other, encoding_of(u"\u0416"));       // not of the page at all
}

TEST(TextEncoding, SequenceThatIsCutIsNone) {
    EXPECT_EQ(TextEncoding::other, encoding_of(u"\u00E2\u201A"));
    EXPECT_EQ(TextEncoding::other, encoding_of(u"\u00F5\u20AC\u20AC\u20AC")); // beyond the last character
}

TEST(TextEncoding, TextWithoutAValueDoesNotCount) {
    Tree tree;
    put(tree, "\\a", {PROP_STRING, true, std::nullopt});
    EXPECT_EQ(TextEncoding::ascii, text_encoding(tree));
}

TEST(TextEncoding, BothTogetherAreMixed) {
    EXPECT_EQ(TextEncoding::mixed, encoding_of(u"\u00C3\u00BC \u00FC"));
}

TEST(TextEncoding, NamesCountToo) {
    Tree tree;
    tree.set(u"\\n\u00C3\u00BC\\a", 1);
    EXPECT_EQ(TextEncoding::utf8, text_encoding(tree));
    tree.set(u"\\a\u00FC", 1);
    EXPECT_EQ(TextEncoding::mixed, text_encoding(tree));
}

} // namespace

} // namespace pm::kit
