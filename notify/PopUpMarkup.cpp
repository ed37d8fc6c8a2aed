#include "notify/PopUpMarkup.h"

#include "base/Text.h"

namespace vl {

namespace {

std::string textAt(const ValueList& list, std::size_t index) {
    return index < list.items.size() ? list.items[index].toText() : std::string();
}

std::string entryMarkup(std::size_t position, const ValueList& entry) {
    return "    <Border Grid.Column='0' Grid.Row='" + std::to_string(position - 1) +
           "'><TextBlock><Hyperlink Tag='" + std::to_string(position) +
           "' Click='MarkupHyperlinkClick'>" + xamlEncodePlaintext(textAt(entry, 0)) + " " +
           xamlEncodePlaintext(textAt(entry, 1)) + "</Hyperlink></TextBlock></Border>";
}

}  // namespace

std::string xamlEncodePlaintext(std::string_view pPlainText) {
    std::string out = text::replaceAll(pPlainText, "&", "&amp;");
    out = text::replaceAll(out, "<", "&lt;");
    out = text::replaceAll(out, ">", "&gt;");
    out = text::replaceAll(out, "'", "&apos;");
    out = text::replaceAll(out, "\"", "&quot;");
    return text::replaceAll(out, "\r\n", "<LineBreak/>");
}

std::string popUpMarkup(const GenCollection& EvCol) {
    std::string markup =
        "<Grid VerticalAlignment='Center' HorizontalAlignment='Center'>"
        "    <Grid.ColumnDefinitions>"
        "        <ColumnDefinition/>"
        "    </Grid.ColumnDefinitions>"
        "    <Grid.RowDefinitions>";
    for (std::size_t i = 1; i <= EvCol.Count(); ++i) {
        markup += "      <RowDefinition/>";
    }
    markup += "    </Grid.RowDefinitions>";
    for (std::size_t i = 1; i <= EvCol.Count(); ++i) {
        // An entry without its list would shift the tags: it keeps its place as an empty link.
        const auto entry = objectAt<ValueList>(EvCol, i);
        markup += entryMarkup(i, entry ? *entry : ValueList());
    }
    return markup + "</Grid>";
}

}  // namespace vl
