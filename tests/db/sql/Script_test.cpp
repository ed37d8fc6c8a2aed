// Random scripts: each statement by our engine, on a file, and by SQLite; both compared after each.
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <optional>

#include "Memory.h"
#include "Script.h"
#include "Sqlite.h"
#include "db/jet/MemoryFile.h"
#include "db/jet/check/Check.h"
#include "db/sql/Sql.h"
#include "support/Support.h"

namespace vl::sql {
namespace {

using test::Random;
using test::Script;
using test::ScriptStatement;
using test::Sqlite;
using test::What;

std::string emptyFile() {
    const vl::test::TempFolder folder;
    const std::string path = (folder / "empty.mdb").string();
    jet::Database::create(path);
    return vl::test::readFile(path);
}

std::string textOf(const Variant& value) {
    if (value.isNull()) {
        return "NULL";
    }
    if (value.is<std::string>()) {
        return value.toText();
    }
    if (const auto* date = value.get<DateTime>()) {
        const std::string text = formatDateTime(*date);
        return text.size() > 10 ? text : text + " 00:00:00";
    }
    char number[64];
    std::snprintf(number, sizeof number, "%.15g", value.toDouble());
    return number;
}

Sqlite::Rows textsOf(const Result& result) {
    Sqlite::Rows rows;
    for (const auto& row : result.rows) {
        std::vector<std::string>& texts = rows.emplace_back();
        for (const Variant& value : row) {
            texts.push_back(textOf(value));
        }
    }
    return rows;
}

void fold(Sqlite::Rows& rows) {
    for (auto& row : rows) {
        for (std::string& text : row) {
            std::transform(text.begin(), text.end(), text.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        }
    }
}

class Comparison {
public:
    explicit Comparison(Random& random)
        : script_(random),
          disk_(emptyFile()),
          db_(vl::test::openMemory(disk_, jet::Access::ReadWrite)) {}

    void step() {
        const ScriptStatement statement = script_.next();
        SCOPED_TRACE(statement.ours.substr(0, 500));
        ++counts_[static_cast<std::size_t>(statement.what)];
        const auto before = disk_.bytes;
        std::optional<Sqlite::Rows> theirs;
        try {
            theirs = sqlite_.run(statement.theirs);
        } catch (const std::runtime_error& e) {
            ASSERT_THAT(e.what(), testing::HasSubstr("UNIQUE constraint failed"));
        }
        Result ours;
        const auto error = test::caught([&] { ours = execute(db_, statement.ours); });
        ASSERT_EQ(error.number, theirs ? ErrNo::None : ErrNo::Exists) << error.text;
        if (!theirs) {
            ++refused_;
            ASSERT_TRUE(disk_.bytes == before) << "a refused statement has changed the file";
        } else {
            script_.succeeded(statement);
            compare(statement, ours, *theirs);
        }
    }

    /// The file as a whole, read anew.
    void check() {
        jet::Database reread = vl::test::openMemory(disk_);
        for (const jet::Finding& finding : jet::checkDatabase(reread)) {
            ADD_FAILURE() << "page " << finding.page << ": " << finding.what;
        }
    }

    void print() const {
        static constexpr std::array<const char*, 9> kNames = {
            "CREATE TABLE",  "ALTER TABLE", "CREATE INDEX", "DROP TABLE", "INSERT",
            "INSERT SELECT", "UPDATE",      "DELETE",       "SELECT"};
        for (std::size_t i = 0; i < kNames.size(); ++i) {
            std::cout << (i == 0 ? "" : ", ") << counts_[i] << ' ' << kNames[i];
        }
        std::cout << "; " << refused_ << " refused by both, " << compared_
                  << " rows compared, file of " << disk_.bytes.size() / 1024 << " KiB\n";
    }

    int refused() const { return refused_; }

private:
    void compare(const ScriptStatement& statement, const Result& ours, Sqlite::Rows theirs) {
        Sqlite::Rows mine = textsOf(ours);
        if (statement.what == What::Select) {
            ASSERT_TRUE(ours.isQuery);
            if (!statement.ordered) {
                sortBoth(mine, theirs);
            }
            if (statement.anyCase) {
                fold(mine);
                fold(theirs);
                if (!statement.ordered) {
                    sortBoth(mine, theirs);
                }
            }
            compared_ += mine.size();
            ASSERT_EQ(mine, theirs) << statement.theirs;
            return;
        }
        if (statement.what == What::Drop) {
            return;
        }
        if (statement.what >= What::Insert) {
            ASSERT_EQ(ours.affected, sqlite_.changes());
        }
        const std::string all = "SELECT * FROM " + statement.table;
        mine = textsOf(execute(db_, all));
        theirs = sqlite_.run(all);
        sortBoth(mine, theirs);
        compared_ += mine.size();
        ASSERT_EQ(mine, theirs) << statement.theirs;
    }

    static void sortBoth(Sqlite::Rows& a, Sqlite::Rows& b) {
        std::sort(a.begin(), a.end());
        std::sort(b.begin(), b.end());
    }

    Script script_;
    Sqlite sqlite_;
    vl::test::Disk disk_;
    jet::Database db_;
    std::array<int, 9> counts_{};
    int refused_ = 0;
    std::size_t compared_ = 0;
};

// VL_ROUNDS makes it as long as one likes.
TEST(SqlScript, DoesWhatSqliteDoes) {
    Random random;
    SCOPED_TRACE(testing::Message() << "VL_SEED=" << random.seed());
    const int statements = test::rounds(4000);
    constexpr int kScript = 1000;  // then a new file
    constexpr int kCheck = 100;
    int refused = 0;
    for (int done = 0; done < statements;) {
        Comparison comparison(random);
        for (int i = 1; i <= kScript && done < statements; ++i, ++done) {
            comparison.step();
            if (i % kCheck == 0) {
                comparison.check();
            }
            ASSERT_FALSE(HasFailure());
        }
        comparison.print();
        refused += comparison.refused();
    }
    EXPECT_GT(refused, 0);  // both sides have something to refuse
    EXPECT_LT(refused, statements / 3);
}

}  // namespace
}  // namespace vl::sql
