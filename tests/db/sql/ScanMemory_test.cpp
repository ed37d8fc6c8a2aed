// Which pages a query looks at that is asked again.
#include "db/sql/ScanMemory.h"

#include <gtest/gtest.h>

#include "RowSource.h"
#include "base/ErrorState.h"

namespace vl::sql {
namespace {

/// Numbers on pages: page 10 holds the first list, page 11 the second, and so on.
using Pages = std::vector<std::vector<int>>;

class FakeRows final : public PagedRows {
public:
    explicit FakeRows(const Pages& pages) : pages_(pages) {}

    bool next() override { return false; }
    Variant value(std::size_t) const override { return number(); }
    jet::RowId id() const override { return {page(), static_cast<std::uint16_t>(nextRow_ - 1)}; }
    bool nextPage() override {
        nextRow_ = 0;
        return nextPage_ < pages_.size() && ++nextPage_ > 0;
    }
    bool nextOnPage() override { return nextRow_ < pages_[nextPage_ - 1].size() && ++nextRow_ > 0; }
    jet::PageNo page() const override { return static_cast<jet::PageNo>(9 + nextPage_); }
    bool holds(const jet::PageMark& mark) const override {
        return mark.page == page() && mark.digest == digest();
    }
    jet::PageMark mark() override { return {page(), digest(), {}}; }

    int number() const { return pages_[nextPage_ - 1][nextRow_ - 1]; }

private:
    std::uint64_t digest() const {
        std::uint64_t sum = 1;
        for (const int n : pages_[nextPage_ - 1]) {
            sum = sum * 31 + static_cast<std::uint64_t>(n);
        }
        return sum;
    }

    const Pages& pages_;
    std::size_t nextPage_ = 0;
    std::size_t nextRow_ = 0;
};

class ScanMemoryOfEvens : public testing::Test {
protected:
    /// The even numbers, as page.row; a 99 cannot be looked at.
    std::string find(const Pages& pages) {
        FakeRows rows(pages);
        looked = 0;
        std::string found;
        for (const jet::RowId id : memory.find(rows, [&] {
                 ++looked;
                 if (rows.number() == 99) {
                     throw Error(ErrNo::TypeMismatch, "99");
                 }
                 return rows.number() % 2 == 0;
             })) {
            found += std::to_string(id.page) + '.' + std::to_string(id.row) + ' ';
        }
        return found;
    }

    ScanMemory memory;
    int looked = 0;
};

TEST_F(ScanMemoryOfEvens, LooksOnlyAtPagesThatHoldSomethingElse) {
    memory.ask("evens");
    EXPECT_EQ(find({{1, 2, 3}, {4}, {5, 6}}), "10.1 11.0 12.1 ");
    EXPECT_EQ(looked, 6);
    memory.ask("evens");
    EXPECT_EQ(find({{1, 2, 3}, {4}, {5, 6}}), "10.1 11.0 12.1 ");
    EXPECT_EQ(looked, 0);
    EXPECT_EQ(find({{1, 2, 3}, {7}, {5, 6}}), "10.1 12.1 ");
    EXPECT_EQ(looked, 1);
    EXPECT_EQ(find({{1, 2, 3}, {7}, {5, 6}, {}, {8, 8}}), "10.1 12.1 14.0 14.1 ");
    EXPECT_EQ(looked, 2);
    EXPECT_EQ(find({{2}}), "10.0 ");
    EXPECT_EQ(looked, 1);
    EXPECT_EQ(find({{2}, {7}}), "10.0 ");
    EXPECT_EQ(looked, 1);
}

TEST_F(ScanMemoryOfEvens, ForgetsWithAnotherStatementAndWithAnError) {
    memory.ask("evens");
    find({{1, 2}, {3}});
    memory.ask("others");
    find({{1, 2}, {3}});
    EXPECT_EQ(looked, 3);
    EXPECT_THROW(find({{1, 2}, {99}}), Error);
    EXPECT_THROW(find({{1, 2}, {99}}), Error);
    EXPECT_EQ(find({{1, 2}, {3}}), "10.1 ");
    EXPECT_EQ(looked, 3);
    memory.forget();
    find({{1, 2}, {3}});
    EXPECT_EQ(looked, 3);
}

}  // namespace
}  // namespace vl::sql
