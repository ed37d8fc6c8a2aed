// By what pages are known again.
#include <gtest/gtest.h>

#include <set>

#include "PageDigests.h"
#include "Pages.h"
#include "TableDefinition.h"
#include "db/jet/RowCursor.h"

namespace vl {
namespace {

using jet::digestOf;
using jet::PageDigests;
using jet::PageMark;
using jet::RowCursor;
using jet::TableDefinition;
using test::Disk;
using test::hexBytes;

constexpr jet::PageNo kDefinition = 1;
constexpr unsigned kMoved = 0x4000;
constexpr unsigned kBody = 0x8000;

std::vector<std::byte> pageOf(unsigned seed) {
    std::vector<std::byte> page(jet::kPageSize);
    for (std::size_t i = 0; i < page.size(); ++i) {
        page[i] = static_cast<std::byte>(seed == 0 ? 0 : i * seed >> 3);
    }
    return page;
}

std::uint64_t digest(const std::vector<std::byte>& page) {
    return digestOf(std::span(page).first<jet::kPageSize>());
}

TEST(JetPageDigest, DependsOnEveryBitAndOnWhereItStands) {
    for (const unsigned seed : {0U, 7U}) {
        std::vector<std::byte> page = pageOf(seed);
        std::set<std::uint64_t> seen{digest(page)};
        std::size_t tried = 1;
        for (std::byte& byte : page) {
            for (const unsigned bit : {0U, 3U, 7U}) {
                byte ^= static_cast<std::byte>(1U << bit);
                seen.insert(digest(page));
                byte ^= static_cast<std::byte>(1U << bit);
                ++tried;
            }
        }
        EXPECT_EQ(seen.size(), tried);
        EXPECT_FALSE(seen.contains(0));
    }
}

TEST(JetPageDigest, TwoChangesDoNotMakeUpForEachOther) {
    std::vector<std::byte> page = pageOf(0);
    std::set<std::uint64_t> seen;
    std::size_t tried = 0;
    // Highest bits of neighbours, in one lane and across lanes.
    for (std::size_t first = 7; first < 512; first += 8) {
        for (std::size_t second = first + 8; second < 512; second += 8) {
            page[first] ^= std::byte{0x80};
            page[second] ^= std::byte{0x80};
            seen.insert(digest(page));
            page[first] ^= std::byte{0x80};
            page[second] ^= std::byte{0x80};
            ++tried;
        }
    }
    EXPECT_EQ(seen.size(), tried);
}

TEST(JetPageDigests, AnswersWhoToldThemOfTheFileAsItStillLooks) {
    const int one = 0;
    const int other = 0;
    jet::FileLook look;
    look.size = 3 * jet::kPageSize;
    PageDigests digests;
    digests.keep(&one, 2, 11);  // nobody has said of what
    digests.use(&one, look);
    EXPECT_EQ(digests.find(&one, 2), 0U);
    digests.keep(&one, 2, 22);
    EXPECT_EQ(digests.find(&one, 2), 22U);
    EXPECT_EQ(digests.find(&one, 1), 0U);
    EXPECT_EQ(digests.find(&one, 200), 0U);
    EXPECT_EQ(digests.find(&other, 2), 0U);
    digests.use(&other, look);  // the same file, opened again
    EXPECT_EQ(digests.find(&other, 2), 22U);
    EXPECT_EQ(digests.find(&one, 2), 0U);
    digests.keep(&one, 2, 33);
    EXPECT_EQ(digests.find(&other, 2), 22U);
    for (const auto& change : std::initializer_list<std::function<void(jet::FileLook&)>>{
             [](auto& l) { l.modified = 1; }, [](auto& l) { l.size += 1; },
             [](auto& l) { l.commitWords[511] = std::byte{1}; },
             [](auto& l) { l.identity.number = 5; }, [](auto& l) { l.identity.volume = 5; }}) {
        jet::FileLook changed = look;
        change(changed);
        digests.use(&other, changed);
        EXPECT_EQ(digests.find(&other, 2), 0U);
        digests.use(&other, look);
        digests.keep(&other, 2, 22);
    }
    digests.forget();
    EXPECT_EQ(digests.find(&other, 2), 0U);
}

// One long column and a memo; the map on page 2 names pages 3 and 4.
std::shared_ptr<TableDefinition> numberAndMemo() {
    auto table = std::make_shared<TableDefinition>();
    table->name = "t";
    table->page = kDefinition;
    table->maxColumns = 2;
    table->variableSlots = 1;
    table->ownedPages = {2, 0};
    jet::Column number;
    number.name = "n";
    number.fixed = true;
    number.length = 4;
    table->columns.push_back(number);
    jet::Column memo;
    memo.name = "m";
    memo.type = jet::ColumnType::Memo;
    memo.number = 1;
    table->columns.push_back(memo);
    return table;
}

// n and a memo of four bytes on page 5, row 0.
std::vector<std::byte> withMemo() {
    return hexBytes(
        "02 00 | 07 00 00 00 | 04 00 00 40 00 05 00 00 00 00 00 00 | 12 00 06 00 | 01 00 | 03");
}
// n alone.
std::vector<std::byte> plain() {
    return hexBytes("02 00 | 07 00 00 00 | 06 00 06 00 | 01 00 | 01");
}

constexpr std::uint32_t kLongValues = 0x4C41564C;

class Identified final : public test::MemoryFile {
public:
    Identified(Disk& disk, jet::FileIdentity identity) : MemoryFile(disk), identity_(identity) {}
    jet::FileIdentity identity() const override { return identity_; }

private:
    jet::FileIdentity identity_;
};

/// Page 3: a plain row and one that has moved to page 4. Page 4: that row's body and a row with a
/// memo on page 5.
struct Sample {
    Sample() : disk("") {
        test::putDataPage(disk, 2, 0, {{hexBytes("00 00000000 18")}});
        test::putDataPage(disk, 3, kDefinition, {{plain()}, {hexBytes("00 04 00 00"), kMoved}});
        test::putDataPage(disk, 4, kDefinition, {{plain(), kBody}, {withMemo()}});
        test::putDataPage(disk, 5, kLongValues, {{hexBytes("61 00 62 00")}});
    }
    std::byte& at(jet::PageNo page, std::size_t offset) {
        return disk.bytes[page * jet::kPageSize + offset];
    }
    std::vector<PageMark> marks() {
        jet::PageFile file = test::pagesOf(disk);
        RowCursor cursor(file, table);
        std::vector<PageMark> all;
        while (cursor.nextPage()) {
            all.push_back(cursor.mark());
        }
        return all;
    }
    /// Which of the pages hold what the marks say, "3", "4", "34" or "".
    std::string held(const std::vector<PageMark>& marks, jet::FileIdentity identity = {}) {
        jet::PageFile file(std::make_unique<Identified>(disk, identity), "memory",
                           jet::Access::Read);
        RowCursor cursor(file, table);
        std::string pages;
        for (const PageMark& mark : marks) {
            EXPECT_TRUE(cursor.nextPage());
            pages += cursor.holds(mark) ? std::to_string(cursor.page()) : "";
        }
        return pages;
    }

    Disk disk;
    std::shared_ptr<TableDefinition> table = numberAndMemo();
};

TEST(JetPageMark, NamesThePagesOnWhichRowsHaveSomething) {
    Sample sample;
    const auto marks = sample.marks();
    ASSERT_EQ(marks.size(), 2U);
    EXPECT_EQ(marks[0].elsewhere, std::vector<jet::PageNo>{4});
    EXPECT_EQ(marks[1].elsewhere, std::vector<jet::PageNo>{5});
    EXPECT_EQ(sample.held(marks), "34");
    EXPECT_EQ(sample.held({marks[1], marks[0]}), "");
}

TEST(JetPageMark, KnowsAPageUntilSomethingOfItsRowsChanges) {
    struct Case {
        jet::PageNo page;
        std::size_t offset;
        const char* held;
    };
    static constexpr std::size_t kLast = jet::kPageSize - 1;
    static constexpr Case cases[] = {
        {3, kLast, "4"},   // the page itself
        {4, kLast, ""},    // the row that moved there is page 3's
        {5, kLast, "3"},   // the memo
        {5, 100, "3"},     // beside it: not told apart
        {2, kLast, "34"},  // not theirs
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.page << ' ' << c.offset);
        Sample sample;
        const auto marks = sample.marks();
        if (c.page == 2) {
            test::putDataPage(sample.disk, 6, 9, {});
        } else {
            sample.at(c.page, c.offset) ^= std::byte{4};
        }
        EXPECT_EQ(sample.held(marks), c.held);
    }
}

TEST(JetPageMark, KnowsNothingWhenColumnsAreOthers) {
    Sample sample;
    const auto marks = sample.marks();
    sample.table = numberAndMemo();
    EXPECT_EQ(sample.held(marks), "34");
    sample.table->columns[1].name = "other";
    EXPECT_EQ(sample.held(marks), "");
    sample.table = numberAndMemo();
    sample.table->columns.pop_back();
    EXPECT_EQ(sample.held(marks), "");
    sample.table = numberAndMemo();
    sample.table->columns[0].type = jet::ColumnType::Single;
    EXPECT_EQ(sample.held(marks), "");
}

// One that was put into its place may have the same pages, and other rows behind the same numbers.
TEST(JetPageMark, KnowsNothingOfAnotherFile) {
    Sample sample;
    const auto marks = sample.marks();
    EXPECT_EQ(sample.held(marks, {0, 0}), "34");
    EXPECT_EQ(sample.held(marks, {1, 0}), "");
    EXPECT_EQ(sample.held(marks, {0, 1}), "");
}

TEST(JetPageMark, DoesNotKnowAPageWhoseRowsCannotBeRead) {
    Sample sample;
    test::putDataPage(sample.disk, 4, kDefinition, {{plain()}});  // not one that moved here
    const auto marks = sample.marks();
    EXPECT_EQ(marks.at(0).digest, 0U);
    EXPECT_EQ(sample.held(marks), "4");
}

TEST(JetPageMark, DoesNotKnowAPageWhoseOtherPagesAreCutOff) {
    Sample sample;
    const auto marks = sample.marks();
    sample.disk.bytes.resize(5 * jet::kPageSize);
    EXPECT_EQ(sample.held(marks), "3");
}

TEST(JetPageMark, LeavesTheRowsToWhoAsksForThem) {
    Sample sample;
    jet::PageFile file = test::pagesOf(sample.disk);
    RowCursor cursor(file, sample.table);
    EXPECT_FALSE(cursor.nextOnPage());
    std::vector<std::pair<jet::PageNo, int>> rows;
    while (cursor.nextPage()) {
        const PageMark early = cursor.mark();
        int count = 0;
        for (; cursor.nextOnPage(); ++count) {
            EXPECT_EQ(cursor.id().page, cursor.page());
        }
        EXPECT_FALSE(cursor.nextOnPage());
        EXPECT_EQ(cursor.mark().digest, early.digest);
        rows.emplace_back(cursor.page(), count);
    }
    EXPECT_FALSE(cursor.nextPage());
    EXPECT_FALSE(cursor.nextOnPage());
    EXPECT_EQ(rows, (std::vector<std::pair<jet::PageNo, int>>{{3, 2}, {4, 1}}));
}

}  // namespace
}  // namespace vl
