// What fuzzers do with an input, and what tests repeat with the inputs that once broke something.
#pragma once

#include <cstddef>
#include <span>

namespace vl::test {

/// Reads everything of a damaged database and tries to write into it. The input says which file
/// and where it is damaged:
///
///   size  meaning
///   1     the file: 0 first-light.RemindDB, 1 generated-reminders.RemindDB (modulo 2)
///   then, again and again until the input ends:
///   1     page
///   2     offset in the page, little-endian (modulo 4096)
///   1     n, modulo 32: so many bytes follow and take the place of what stands there;
///         0: the file ends here
///
/// Ends the process when anything but values or a fitting `Error` comes of it.
void readDamaged(std::span<const std::byte> input);

/// Runs the input as a statement on a sound database. Ends the process when anything but a result
/// or a fitting `Error` comes of it.
void runStatement(std::span<const std::byte> input);

}  // namespace vl::test
