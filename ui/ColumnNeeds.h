// How wide columns have to be for what they say.
#pragma once

#include <vector>

class QFontMetrics;

namespace vl {

class GridModel;

/// By column, the width of the longest text without the cell's margins: of a moment, among those of
/// the days around now and of the rows' first and last one, in the user's time format; of a word,
/// among the rows' (up to a limit, one may be a whole sentence). 0 of a column whose texts are of
/// any length. A pass over the rows' keys: a fraction of a millisecond for ten thousand.
std::vector<int> neededWidths(const GridModel& model, const QFontMetrics& metrics);

}  // namespace vl
