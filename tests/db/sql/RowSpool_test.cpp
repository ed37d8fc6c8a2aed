#include "RowSpool.h"

#include <gtest/gtest.h>

#include <csignal>
#include <random>
#ifndef _WIN32
#include <sys/resource.h>
#endif

#include "base/ErrorState.h"

namespace vl::sql {
namespace {

using Row = std::vector<Variant>;

Row everyKind() {
    Row row;
    row.emplace_back();
    row.emplace_back(Null{});
    row.emplace_back(true);
    row.emplace_back(false);
    row.emplace_back(-2147483647 - 1);
    row.emplace_back(std::int64_t{1} << 40);
    row.emplace_back(-0.5);
    row.emplace_back(DateTime(46346.25));
    row.emplace_back("");
    row.emplace_back(std::string("a\0b", 3));
    row.emplace_back(std::string(70'000, 'x'));
    row.emplace_back(Bytes());
    row.emplace_back(Bytes(2, std::byte{255}));
    return row;
}

std::vector<Row> rowsOf(RowSpool& spool) {
    std::vector<Row> rows;
    spool.forEach([&](const Row& row) { rows.push_back(row); });
    return rows;
}

TEST(SqlRowSpool, GivesBackWhatWasAddedWhereverItWaits) {
    // All in memory; the first few in the file; each row in the file.
    for (const std::size_t most : {RowSpool::kMostInMemory, std::size_t{300'000}, std::size_t{0}}) {
        SCOPED_TRACE(most);
        RowSpool spool(most);
        EXPECT_TRUE(rowsOf(spool).empty());
        std::vector<Row> rows;
        for (int i = 0; i < 20; ++i) {
            Row row = everyKind();
            row.emplace_back(i);
            row.resize(i % 3 == 0 ? 0 : row.size());
            rows.push_back(row);
            spool.add(row);
        }
        EXPECT_EQ(rowsOf(spool), rows);
        EXPECT_EQ(rowsOf(spool), rows) << "again";
        rows.push_back({1});
        spool.add(rows.back());
        EXPECT_EQ(rowsOf(spool), rows) << "with one more";
        spool.clear();
        EXPECT_TRUE(rowsOf(spool).empty());
        spool.add({2});
        EXPECT_EQ(rowsOf(spool), std::vector<Row>{{2}});
    }
}

TEST(SqlRowSpool, WhoTakesMayEndIt) {
    RowSpool spool(10);
    for (int i = 0; i < 100; ++i) {
        spool.add({i});
    }
    int taken = 0;
    EXPECT_THROW(spool.forEach([&](const Row&) {
        if (++taken == 50) {
            throw Error(ErrNo::Io, "no more");
        }
    }),
                 Error);
    EXPECT_EQ(taken, 50);
    EXPECT_EQ(rowsOf(spool).size(), 100U);
}

#ifndef _WIN32
/// Lowers a limit of the process as long as it lives.
class Limit {
public:
    Limit(decltype(RLIMIT_FSIZE) what, rlim_t value) : what_(what) {
        ::getrlimit(what_, &before_);
        const rlimit lower{value, before_.rlim_max};
        EXPECT_EQ(::setrlimit(what_, &lower), 0);
    }
    ~Limit() { ::setrlimit(what_, &before_); }
    Limit(const Limit&) = delete;
    Limit& operator=(const Limit&) = delete;

private:
    decltype(RLIMIT_FSIZE) what_;
    rlimit before_{};
};

std::string refusal(RowSpool& spool) {
    try {
        for (int i = 0; i < 20; ++i) {
            spool.add(everyKind());
        }
        rowsOf(spool);
    } catch (const Error& e) {
        EXPECT_EQ(e.number(), ErrNo::Io);
        return e.what();
    }
    return {};
}

TEST(SqlRowSpool, SaysWhyTheSystemRefuses) {
    {
        RowSpool spool(0);
        const Limit noMoreFiles(RLIMIT_NOFILE, 3);
        EXPECT_EQ(refusal(spool), "cannot make a temporary file: Too many open files");
    }
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    {
        RowSpool spool(0);
        const Limit shortFiles(RLIMIT_FSIZE, 100'000);
        EXPECT_EQ(refusal(spool),
                  "the rows that were found: the temporary file cannot be written: File too large");
    }
    std::signal(SIGXFSZ, handler);
}
#endif

}  // namespace
}  // namespace vl::sql
