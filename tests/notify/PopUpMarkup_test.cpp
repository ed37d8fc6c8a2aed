#include "notify/PopUpMarkup.h"

#include <gtest/gtest.h>

#include "base/ErrorState.h"

namespace vl {
namespace {

void add(GenCollection& col, const char* GUID, const char* summary, const char* line) {
    auto entry = std::make_shared<ValueList>();
    entry->items = {Variant(summary), Variant(line)};
    col.Add(Variant(ObjectRef(entry)), GUID);
}

TEST(xamlEncodePlaintext, EscapesTheAmpersandFirst) {
    EXPECT_EQ(xamlEncodePlaintext("a & b"), "a &amp; b");
    EXPECT_EQ(xamlEncodePlaintext("&lt;"), "&amp;lt;");
    EXPECT_EQ(xamlEncodePlaintext("<b>'x' \"y\"</b>"),
              "&lt;b&gt;&apos;x&apos; &quot;y&quot;&lt;/b&gt;");
    EXPECT_EQ(xamlEncodePlaintext("one\r\ntwo\nthree"), "one<LineBreak/>two\nthree");
    EXPECT_EQ(xamlEncodePlaintext(""), "");
    EXPECT_EQ(xamlEncodePlaintext("Café 会議"), "Café 会議");
}

TEST(popUpMarkup, HasRowsFromZeroAndTagsFromOne) {
    GenCollection col;
    add(col, "{A}", "Lunch & talk", " 15 minutes (12:15)");
    add(col, "{B}", "Call", " 1 hour (13:00)");
    EXPECT_EQ(popUpMarkup(col),
              "<Grid VerticalAlignment='Center' HorizontalAlignment='Center'>"
              "    <Grid.ColumnDefinitions>        <ColumnDefinition/>    </Grid.ColumnDefinitions>"
              "    <Grid.RowDefinitions>      <RowDefinition/>      <RowDefinition/>"
              "    </Grid.RowDefinitions>"
              "    <Border Grid.Column='0' Grid.Row='0'><TextBlock><Hyperlink Tag='1' "
              "Click='MarkupHyperlinkClick'>Lunch &amp; talk  15 minutes (12:15)</Hyperlink>"
              "</TextBlock></Border>"
              "    <Border Grid.Column='0' Grid.Row='1'><TextBlock><Hyperlink Tag='2' "
              "Click='MarkupHyperlinkClick'>Call  1 hour (13:00)</Hyperlink></TextBlock></Border>"
              "</Grid>")
        << "two blanks stand between summary and line: the line begins with one";
}

TEST(popUpMarkup, OfNothingIsAnEmptyGrid) {
    const std::string markup = popUpMarkup(GenCollection());
    EXPECT_EQ(markup.find("<RowDefinition/>"), std::string::npos);
    EXPECT_EQ(markup.find("<Border"), std::string::npos);
    EXPECT_EQ(markup.substr(markup.size() - 7), "</Grid>");
}

TEST(popUpMarkup, AnEntryWithoutItsListKeepsItsPlace) {
    GenCollection col;
    col.Add(Variant("no list"), "{A}");
    add(col, "{B}", "Call", " 1 hour (13:00)");
    EXPECT_NE(popUpMarkup(col).find("Grid.Row='1'><TextBlock><Hyperlink Tag='2' "
                                    "Click='MarkupHyperlinkClick'>Call"),
              std::string::npos);
}

}  // namespace
}  // namespace vl
