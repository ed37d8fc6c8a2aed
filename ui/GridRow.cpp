#include "ui/GridRow.h"

#include <string>
#include <tuple>

#include "base/Text.h"
#include "ui/QtText.h"

namespace vl {

namespace {

constexpr std::size_t kSummaryUnits = 50;

auto shown(const GridRow& r) {
    return std::tie(r.GUID, r.summary, r.detail, r.due, r.reminder, r.fate, r.span.start,
                    r.span.end, r.span.allDay, r.dismissed, r.repeats, r.location, r.field,
                    r.source, r.toolTip, r.ofEvent);
}

}  // namespace

bool showsTheSame(const GridRow& a, const GridRow& b) { return shown(a) == shown(b); }

QString rowSummary(std::string_view subject) {
    return qtText(text::leftUtf16(subject, kSummaryUnits)).simplified();
}

}  // namespace vl
