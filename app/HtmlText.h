// Plain text out of HTML.
#pragma once

#include <string>
#include <string_view>

namespace vl {

/// What a reader of the HTML sees: tags, comments, styles and scripts are gone, character
/// references are resolved, runs of white space are one blank, and paragraphs, line breaks, list
/// items and table rows are lines of their own ("\n"; an empty line around paragraphs and
/// headings; a tab between the cells of a row). White space in `pre` stays.
/// A text without any tag keeps its white space, and a "<" that begins no tag stays ("1 < 2",
/// "<john@example.com>"); only character references are resolved.
/// Never throws; broken markup gives what can be made of it. The time grows with the length.
std::string htmlToText(std::string_view html);

}  // namespace vl
