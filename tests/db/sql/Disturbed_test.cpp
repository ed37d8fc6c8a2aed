// What a query remembers of pages that another engine wrote while they were read.
#include <gmock/gmock.h>

#include <fstream>

#include "WatchedFiles.h"
#include "db/jet/PageDigests.h"
#include "db/sql/ScanMemory.h"
#include "db/sql/Sql.h"
#include "support/Support.h"

namespace vl::sql {
namespace {

using jet::Database;
using testing::ElementsAre;

constexpr const char* kQuery = "SELECT n FROM t WHERE n = 1 OR m LIKE '*AAAA*' ORDER BY n";

/// Two rows on one page, each with a memo on a page of its own. The first one's memo need not be
/// read for the query; so the digest of its page is asked for when the rows have been looked at,
/// and that reads the pages behind it from the file, that of the other memo among them.
class SqlDisturbed : public testing::Test {
protected:
    SqlDisturbed() {
        auto db = Database::create(path_);
        execute(db, "CREATE TABLE t (n LONG, m MEMO)");
        execute(db, "INSERT INTO t (n, m) VALUES (1, '" + std::string(kLength, 'x') + "')");
        execute(db, "INSERT INTO t (n, m) VALUES (2, '" + std::string(kLength, 'B') + "')");
    }

    /// The other engine replaces the second row's memo, once in each reading, so many times: just
    /// when pages are read ahead.
    void disturb(int times) {
        times_ = times;
        files_.beforeRead = [this](std::size_t size) {
            if (size > jet::kPageSize && times_ > 0) {
                --times_;
                writeOther();
            }
        };
    }

    /// Letters are stored in two bytes each.
    static std::string stored(char letter) {
        std::string bytes;
        for (std::size_t i = 0; i < kLength; ++i) {
            bytes += letter;
            bytes += '\0';
        }
        return bytes;
    }

    void writeOther() {
        const std::string bytes = vl::test::readFile(path_);
        std::size_t at = bytes.find(stored('B'));
        const char other = at != std::string::npos ? 'A' : 'B';
        if (other == 'B') {
            at = bytes.find(stored('A'));
        }
        ASSERT_NE(at, std::string::npos);
        std::fstream file(path_, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>(at));
        file << stored(other);
        constexpr std::size_t kAnothersCounter = 0xE04;
        file.seekp(kAnothersCounter);
        file.put(static_cast<char>(bytes[kAnothersCounter] + 1));
    }

    std::vector<int> found() {
        std::vector<int> numbers;
        for (const auto& row : execute(*db_, kQuery, memory_).rows) {
            numbers.push_back(row.at(0).toInt32());
        }
        return numbers;
    }

    void open() {
        jet::OpenOptions options;
        options.files = &files_;
        options.digests = std::make_shared<jet::PageDigests>();
        db_ = std::make_unique<Database>(Database::open(path_, jet::Access::Read, options));
    }

    static constexpr std::size_t kLength = 1500;
    vl::test::TempFolder folder_;
    std::string path_ = (folder_ / "t.mdb").string();
    test::WatchedFiles files_;
    std::unique_ptr<Database> db_;
    ScanMemory memory_;
    int times_ = 0;
};

TEST_F(SqlDisturbed, APageThatIsReadAgainIsLookedAtAgain) {
    open();
    disturb(1);
    EXPECT_THAT(found(), ElementsAre(1, 2));
    EXPECT_EQ(times_, 0) << "it wrote";
    EXPECT_THAT(found(), ElementsAre(1, 2));
}

// The last of the readings is given, though it may not belong together; it is not remembered.
TEST_F(SqlDisturbed, NothingIsRememberedOfAReadingThatNeverBelongedTogether) {
    open();
    disturb(3);
    found();
    EXPECT_EQ(times_, 0) << "it wrote in each reading";
    EXPECT_THAT(found(), ElementsAre(1, 2));
}

TEST_F(SqlDisturbed, WhoIsNotDisturbedFindsWhatIsThere) {
    open();
    EXPECT_THAT(found(), ElementsAre(1));
    writeOther();
    EXPECT_THAT(found(), ElementsAre(1, 2));
    writeOther();
    EXPECT_THAT(found(), ElementsAre(1));
}

}  // namespace
}  // namespace vl::sql
