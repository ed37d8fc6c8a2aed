#include "ui/ToastMarkup.h"

#include <gtest/gtest.h>

namespace vl {
namespace {

TEST(ToastMarkup, ReadsOneLinkPerHyperlink) {
    const QString markup =
        "<Grid VerticalAlignment='Center'>    <Grid.ColumnDefinitions>        <ColumnDefinition/>"
        "    </Grid.ColumnDefinitions>    <Grid.RowDefinitions>      <RowDefinition/>"
        "    </Grid.RowDefinitions>"
        "    <Border Grid.Column='0' Grid.Row='0'><TextBlock><Hyperlink Tag='1' "
        "Click='MarkupHyperlinkClick'>Tom &amp; Ann &lt;b&gt; &apos;x&apos; &quot;y&quot;  5 "
        "minutes "
        "(14:30)</Hyperlink></TextBlock></Border>"
        "    <Border Grid.Column='0' Grid.Row='1'><TextBlock><Hyperlink Tag='12' "
        "Click='MarkupHyperlinkClick'>one<LineBreak/>two</Hyperlink></TextBlock></Border></Grid>";
    const std::vector<ToastLink> expected{{1, "Tom & Ann <b> 'x' \"y\"  5 minutes (14:30)"},
                                          {12, "one\ntwo"}};
    EXPECT_EQ(readToastMarkup(markup), expected);
}

TEST(ToastMarkup, KeepsGoingWhereItCan) {
    struct Case {
        const char* markup;
        int links;
    };
    static constexpr Case cases[] = {
        {"", 0},
        {"no markup", 0},
        {"<Grid></Grid>", 0},
        {"<Grid><Hyperlink Tag='1'></Hyperlink></Grid>", 1},  // empty, but it has its place
        {"<Grid><Hyperlink Tag='1'>a</Hyperlink><Hyperlink Tag=", 1},  // torn
        {"<Grid><Hyperlink Tag='1'>a", 0},
        {"<Grid><Hyperlink Tag='1'>a & b</Hyperlink></Grid>", 0},  // not escaped
        {"<Grid><Hyperlink Tag='1'>a\x01 b</Hyperlink></Grid>", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.markup);
        EXPECT_EQ(readToastMarkup(c.markup).size(), static_cast<std::size_t>(c.links));
    }
    EXPECT_EQ(readToastMarkup("<G><Hyperlink Tag='x'>a</Hyperlink></G>").at(0).tag, 0);
}

}  // namespace
}  // namespace vl
