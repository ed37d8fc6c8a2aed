// What fuzzers do with an input, and what tests repeat with the inputs that once broke something.
#pragma once

#include <cstddef>
#include <span>

namespace vl::test {

/// Works on a damaged database, in memory. The input says which file, where it is damaged, and what
/// is done with it:
///
///   size  meaning
///   1     n: the file is n % 3, see `DamagedFile.h`; what is done is n / 3 % 6:
///         0 everything is read; 1 rows come, change and go; 2 statements run; 3 columns, indexes
///         and tables come and go; 4 it is backed up, and copied whole; 5 what can be read is saved
///   then, again and again until the input ends:
///   1     page
///   2     offset in the page, little-endian (modulo 4096)
///   1     n, modulo 32: so many bytes follow and take the place of what stands there;
///         0: the file ends here
///
/// Ends the process when anything but values, changes or a fitting `Error` comes of it; when a
/// change that failed has written; when the check finds nothing before a change and something
/// after it; when a copy does not stand the check; and when the check finds nothing in a file and a
/// copy, or what is saved of it, holds other rows. A backup has the same pages, of whatever file.
void useDamaged(std::span<const std::byte> input);

/// Runs the input as a statement on a sound database. Ends the process when anything but a result
/// or a fitting `Error` comes of it.
void runStatement(std::span<const std::byte> input);

}  // namespace vl::test
