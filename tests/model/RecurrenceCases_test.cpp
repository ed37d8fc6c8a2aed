#include <algorithm>
#include <iostream>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "support/Support.h"

#include "RecurrenceCase.h"

namespace vl {
namespace {

using test::RecurrenceCase;

std::vector<std::string> texts(const std::vector<DateTime>& times) {
    std::vector<std::string> out;
    out.reserve(times.size());
    for (const DateTime time : times) {
        out.push_back(test::isoText(time));
    }
    return out;
}

void check(const RecurrenceCase& c) {
    const Recurrence r = c.load();
    const std::vector<DateTime> found = r.between(c.from, c.to, c.max);
    EXPECT_THAT(texts(found), testing::ElementsAreArray(c.expected));
    for (const RecurrenceCase::Next& next : c.nexts) {
        EXPECT_EQ(test::isoOrNull(r.next(next.after)), next.next)
            << "after " << test::isoText(next.after);
    }
    if (c.last) {
        EXPECT_EQ(test::isoOrNull(r.last()), *c.last) << "last";
    }
    // Backwards, and each on its own day.
    for (std::size_t i = found.size(); i-- > 1;) {
        EXPECT_EQ(r.previous(found[i]), found[i - 1]) << "before " << test::isoText(found[i]);
    }
    for (const DateTime one : found) {
        const std::vector<DateTime> same = r.between(one, one);
        ASSERT_EQ(same.size(), 1U);
        EXPECT_EQ(same.front(), one);
    }
}

void checkFile(const std::filesystem::path& file, std::size_t atLeast) {
    const std::vector<RecurrenceCase> cases = test::readCases(file);
    std::cout << cases.size() << " cases of " << file.filename().string() << '\n';
    EXPECT_GE(cases.size(), atLeast);
    for (const RecurrenceCase& c : cases) {
        SCOPED_TRACE(testing::Message() << c.id << ": " << c.title << ' ' << c.lines);
        check(c);
    }
}

TEST(RecurrenceCases, ConfirmedByTwoLibrariesHold) {
    checkFile(test::repoFile("tests/data/recurrence/confirmed.jsonl"), 175);
}

TEST(RecurrenceCases, OfTheNeighbouringFolderHold) {
    const std::filesystem::path folder = test::sharedFolder();
    if (folder.empty()) {
        std::cout << "no cases: there is no folder beside the checkout\n";
        return;
    }
    checkFile(folder / "recurrence-cases.jsonl", 197);
}

}  // namespace
}  // namespace vl
