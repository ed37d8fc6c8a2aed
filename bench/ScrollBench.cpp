// What a step costs in a list of many rows: scrolled by the wheel, by a page, and filled anew.
//
//   bench_scroll [rows]
//
// Painted into memory (Qt's platform "offscreen"), the median of many steps.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <QApplication>
#include <QScrollBar>

#include "ui/Grid.h"
#include "ui/Rows.h"

namespace {

using vl::GridRow;

std::vector<GridRow> manyRows(int count) {
    std::vector<GridRow> rows;
    rows.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        rows.push_back(
            vl::test::reminderRow("{" + number + "}", "Appointment number " + number, i));
    }
    return rows;
}

template <class Step>
double median(int times, Step&& step) {
    std::vector<double> each;
    for (int i = 0; i < times; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        step();
        each.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
                .count());
    }
    std::nth_element(each.begin(), each.begin() + times / 2, each.end());
    return each[static_cast<std::size_t>(times / 2)];
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const int count = argc > 1 ? std::atoi(argv[1]) : 10'000;
    vl::GridList list(0, vl::test::clockText);
    vl::ColumnWidths widths;
    vl::Grid grid(list, widths);
    grid.InitGrid();
    list.setNow(vl::test::someFriday());
    grid.resize(760, 400);
    grid.show();
    QApplication::processEvents();

    const double fill = median(5, [&] {
        list.setRows({});
        list.setRows(manyRows(count));
        grid.viewport()->repaint();
    });
    QScrollBar& bar = *grid.verticalScrollBar();
    const auto scrolled = [&](int by) {
        return median(200, [&] {
            bar.setValue(bar.value() + by);
            grid.viewport()->repaint();
        });
    };
    const double wheel = scrolled(3 * bar.singleStep());
    bar.setValue(0);
    const double page = scrolled(bar.pageStep());
    std::printf("%d rows: wheel step %.2f ms, page %.2f ms, filled anew %.1f ms\n", count, wheel,
                page, fill);
    return 0;
}
