// The character references of HTML.
#pragma once

#include <string>
#include <string_view>

namespace vl {

/// Appends the character that the reference at `html[at]` (which is "&") stands for, or the "&"
/// itself when none is there, and moves `at` behind it. The named ones are those of HTML 4 and
/// "apos"; a name without its semicolon counts where no letter, digit or "=" follows.
void appendReference(std::string& out, std::string_view html, std::size_t& at);

}  // namespace vl
