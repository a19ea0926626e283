#include <gtest/gtest.h>
#include <report/html.h>

namespace {

using pm::kit::report::Element;
using pm::kit::report::escaped;
using pm::kit::report::Html;

TEST(Escaping, TurnsWhatMarksUpIntoReferences) {
    EXPECT_EQ(escaped("<script>alert(\"1\" & '2')</script>"),
              "&lt;script&gt;alert(&quot;1&quot; &amp; &#39;2&#39;)&lt;/script&gt;");
}

TEST(Escaping, ShowsControlCharactersByTheirPictures) {
    EXPECT_EQ(escaped(std::string_view("a\0b\x1B\x7F\t", 6)), "a␀b␛␡␉");
    EXPECT_EQ(escaped("a\nb"), "a\nb");
    EXPECT_EQ(escaped("a\xC2\x85z"), "a\uFFFDz");
}

TEST(Escaping, LeavesWellFormedTextAlone) {
    EXPECT_EQ(escaped("Großformat – 木 😀"), "Großformat – 木 😀");
}

TEST(Escaping, ReplacesEachByteThatIsNoUtf8) {
    EXPECT_EQ(escaped("a\xFFz"), "a\uFFFDz");
    EXPECT_EQ(escaped("\xC3<"), "\uFFFD&lt;");
    EXPECT_EQ(escaped("\xE2\x82"), "\uFFFD\uFFFD");
    EXPECT_EQ(escaped("\xC0\xBC"), "\uFFFD\uFFFD"); // an overlong <
    EXPECT_EQ(escaped("\xF4\x90\x80\x80"), "\uFFFD\uFFFD\uFFFD\uFFFD");
}

TEST(Escaping, ReplacesASurrogateAsOneCharacter) {
    EXPECT_EQ(escaped("a\xED\xA0\x80z"), "a\uFFFDz");
    EXPECT_EQ(escaped("a\xED\xBF\xBFz"), "a\uFFFDz");
    EXPECT_EQ(escaped("\xED\xA0<"), "\uFFFD\uFFFD&lt;");
}

TEST(HtmlWriter, EscapesTextsAndAttributes) {
    Html html;
    html.element("p", {{"title", "a\"b<"}}, "c<d");
    EXPECT_EQ(html.take(), "\n<p title=\"a&quot;b&lt;\">c&lt;d</p>");
}

TEST(HtmlWriter, ClosesWhatIsOpen) {
    Html html;
    html.open("b");
    {
        const Element inner(html, "i");
        html.empty("br");
        EXPECT_EQ(html.depth(), 2U);
    }
    EXPECT_EQ(html.depth(), 1U);
    EXPECT_EQ(html.take(), "<b><i><br/></i></b>");
}

} // namespace
