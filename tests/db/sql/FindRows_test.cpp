// Searches by an index give the rows of a scan, in its order.
#include "FindRows.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <iostream>

#include "FileTable.h"
#include "IndexBounds.h"
#include "Parser.h"
#include "Random.h"
#include "Tables.h"
#include "db/jet/Database.h"
#include "db/sql/Sql.h"
#include "support/Support.h"

namespace vl::sql {
namespace {

using jet::ColumnType;
using test::column;

// Indexes: primary on a, one on b and c, one on t that ignores nulls, one on d downwards.
TableShape indexed() {
    TableShape shape{"T",
                     {column("a", ColumnType::Long, 4), column("b", ColumnType::Text, 100),
                      column("c", ColumnType::Date, 8), column("t", ColumnType::Text, 100),
                      column("d", ColumnType::Long, 4), column("x", ColumnType::Double, 8),
                      column("m", ColumnType::Memo)},
                     {}};
    const auto index = [&](const char* name, std::vector<jet::IndexColumn> columns) {
        jet::Index added;
        added.name = name;
        added.columns = std::move(columns);
        shape.indexes.push_back(added);
    };
    index("primary", {{"A", false}});
    shape.indexes.back().unique = true;
    index("two", {{"b", false}, {"c", false}});
    index("some", {{"t", false}});
    shape.indexes.back().ignoreNulls = true;
    index("down", {{"d", true}});
    index("real", {{"x", false}});
    index("long", {{"m", false}});
    return shape;
}

std::string shown(const std::vector<Variant>& values) {
    std::string out;
    for (const Variant& value : values) {
        out += (out.empty() ? "" : ",") + (value.isNull() ? "Null" : value.toText());
    }
    return out;
}

// The index and the ranges that a condition is looked up by.
std::string planOf(const std::string& condition) {
    const TableShape shape = indexed();
    Statement statement = parse("SELECT * FROM T WHERE " + condition);
    auto& select = std::get<Select>(statement);
    Scope(shape, select.table, {}).bind(select.where.get());
    const auto ranges = planRanges(select.where.get(), shape);
    if (!ranges) {
        return "scan";
    }
    std::string out;
    for (const IndexRange& range : *ranges) {
        out += (out.empty() ? shape.indexes[range.index].name : "") + " [" + shown(range.from) +
               " " + shown(range.to) + "]";
    }
    return out;
}

TEST(SqlPlan, GoesByTheIndexThatSaysMost) {
    struct Case {
        const char* condition;
        const char* plan;
    };
    static constexpr Case cases[] = {
        {"a = 5", "primary [5 5]"},
        {"5 = a AND b = 'x'", "primary [5 5]"},
        {"a = 2 + 3", "primary [5 5]"},
        {"a IN (1, Null, 2)", "primary [1 1] [2 2]"},
        {"a > 5", "primary [5 ]"},
        {"5 >= a", "primary [ 5]"},
        {"a > 5.5", "primary [5 ]"},
        {"a < 5.5", "primary [ 6]"},
        {"a BETWEEN 2 AND 1e10", "primary [2 2147483647]"},
        {"a > 1 AND a < 9", "primary [1 9]"},
        {"b = 'x'", "two [x x]"},
        {"b IN ('x', 'y') AND a > 3", "two [x x] [y y]"},
        {"b = 'x' AND c IS NULL", "two [x,Null x,Null]"},
        {"c IS NULL", "scan"},  // not the first column
        {"b IS NULL", "two [Null Null]"},
        {"t = 'x'", "some [x x]"},
        {"t > 'x'", "some [x ]"},
        {"t IS NULL", "scan"},  // those it leaves out
        {"d > 5", "down [ 5]"},
        {"d BETWEEN 5 AND 7", "down [7 5]"},
        {"x > 5", "real [5 ]"},
        {"x < 5", "scan"},  // what is no number is less
        {"x = 0", "real [0 0]"},
        {"m = 'x'", "scan"},  // keys of the beginning only
        {"a = 1 OR b = 'x'", "scan"},
        {"NOT a = 1", "scan"},
        {"a <> 1", "scan"},
        {"a = d", "scan"},
        {"a = Null", "scan"},
        {"a + 1 = 5", "scan"},
        {"a = 1 / 0", "scan"},
        {"a = 'x'", "scan"},
        {"b = 5", "scan"},
        {"b LIKE 'x*'", "scan"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.condition);
        EXPECT_EQ(planOf(c.condition), c.plan);
    }
    EXPECT_EQ(planOf("b = '" + std::string(256, 'x') + "'"), "scan");
}

TEST(SqlPlan, ListsMayGiveNoRangeAtAllOrTooMany) {
    const TableShape shape = indexed();
    Statement none = parse("SELECT * FROM T WHERE a IN (Null)");
    auto& select = std::get<Select>(none);
    Scope(shape, select.table, {}).bind(select.where.get());
    EXPECT_TRUE(planRanges(select.where.get(), shape).value().empty());
    std::string many = "a IN (0";
    for (int i = 1; i <= 1000; ++i) {
        many += ", " + std::to_string(i);
    }
    EXPECT_EQ(planOf(many + ")"), "scan");
}

// A table of one row whose index fails.
class BadIndex final : public StoredTable {
public:
    explicit BadIndex(ErrNo number) : number_(number) {}

    const TableShape& shape() const override { return shape_; }
    std::unique_ptr<RowSource> scan() const override {
        return std::make_unique<test::MemoryRows>(rows_, std::vector<jet::RowId>{{0, 0}});
    }
    std::unique_ptr<RowSource> rows(std::vector<jet::RowId> ids) const override {
        return std::make_unique<test::MemoryRows>(rows_, std::move(ids));
    }
    std::vector<jet::RowId> find(const IndexRange&) const override {
        throw Error(number_, "page 7: is bad");
    }
    void insert(const Changes&) override { FAIL(); }
    void update(jet::RowId, const Changes&) override { FAIL(); }
    void remove(jet::RowId) override { FAIL(); }

private:
    ErrNo number_;
    TableShape shape_ = indexed();
    test::Rows rows_{test::Row{5, "b", Null{}, Null{}, Null{}, Null{}, Null{}}};
};

TEST(SqlFindRows, ADamagedIndexIsPassedOverAndTheTraceTellsIt) {
    const vl::test::TempFolder folder;
    const std::string trace = (folder / "trace").string();
    Statement parsed = parse("SELECT * FROM T WHERE a = 5");
    auto& select = std::get<Select>(parsed);
    const auto find = [&](ErrNo number) {
        const BadIndex table(number);
        Scope(table.shape(), select.table, {}).bind(select.where.get());
        const auto rows = findRows(table, select.where.get());
        return rows->next() && !rows->next();
    };
    openTrace(trace);
    EXPECT_TRUE(find(ErrNo::Unsupported));  // no key of that kind: nothing is wrong
    openTrace("");
    EXPECT_EQ(vl::test::readFile(trace), "");
    openTrace(trace);
    EXPECT_TRUE(find(ErrNo::Corrupt));
    openTrace("");
    EXPECT_THAT(vl::test::readFile(trace),
                testing::HasSubstr("an index that is damaged is passed over: page 7: is bad"));
    // These would not spare the rows either.
    for (const ErrNo number : {ErrNo::Io, ErrNo::Locked, ErrNo::NotFound}) {
        EXPECT_EQ(test::caught([&] { find(number); }).number, number);
    }
}

// Conditions on the indexed columns of a table, with values from its rows and from near them.
class Conditions {
public:
    Conditions(test::Random& random, const jet::Table& table)
        : random_(random), columns_(table.columns()) {
        jet::RowCursor row = table.scan();
        while (rows_.size() < kRows && row.next()) {
            std::vector<Variant>& values = rows_.emplace_back();
            for (std::size_t i = 0; i < columns_.size(); ++i) {
                values.push_back(columns_[i].type == ColumnType::Ole ? Variant(Null{})
                                                                     : row.value(i));
            }
        }
        for (const jet::Index& index : table.indexes()) {
            for (const jet::IndexColumn& part : index.columns) {
                for (std::size_t i = 0; i < columns_.size(); ++i) {
                    if (columns_[i].name == part.name) {
                        indexed_.push_back(i);
                    }
                }
            }
        }
    }

    bool any() const { return !rows_.empty() && !indexed_.empty(); }

    std::string next(std::vector<Parameter>& values) {
        std::string out;
        for (std::size_t n = 1 + random_.below(3); n > 0; --n) {
            out += (out.empty() ? "" : " AND ") + one(values);
        }
        return out;
    }

private:
    static constexpr std::size_t kRows = 300;

    std::string one(std::vector<Parameter>& values) {
        const std::size_t column = random_.any(indexed_);
        const std::string name = "[" + columns_[column].name + "]";
        const auto value = [&] {
            values.push_back({"", near(random_.any(rows_)[column])});
            return std::string("?");
        };
        switch (random_.below(8)) {
            case 0:
                return name + " IS NULL";
            case 1:
                return name + " BETWEEN " + value() + " AND " + value();
            case 2: {
                std::string list = name + " IN (" + value();
                for (std::size_t n = random_.below(4); n > 0; --n) {
                    list += ", " + value();
                }
                return list + ")";
            }
            case 3:
            case 4:
                return name + " = " + value();
            default: {
                static constexpr const char* kOps[] = {" < ", " <= ", " > ", " >= "};
                const char* op = random_.pick(kOps);
                return random_.oneIn(4) ? value() + op + name : name + op + value();
            }
        }
    }

    // The value itself, or one that an index must not confuse with it.
    Variant near(const Variant& value) {
        if (!random_.oneIn(2)) {
            return value;
        }
        if (const auto* text = value.get<std::string>()) {
            static constexpr const char* kTails[] = {" ", "x", "-", "\xC3\xA9"};
            return random_.oneIn(2) ? *text + random_.pick(kTails)
                                    : text->substr(0, text->size() / 2);
        }
        if (const auto* whole = value.get<std::int32_t>()) {
            return *whole + 0.5;
        }
        if (const auto* date = value.get<DateTime>()) {
            return DateTime::fromMilliseconds(date->milliseconds() + 1);
        }
        return value;
    }

    test::Random& random_;
    std::vector<jet::Column> columns_;
    std::vector<std::vector<Variant>> rows_;
    std::vector<std::size_t> indexed_;
};

struct Counts {
    int statements = 0;
    int byIndex = 0;
    std::size_t rows = 0;
    int refused = 0;
};

// OR is none of what an index is looked up by: the second statement scans.
void compareWithScan(jet::Database& db, const std::string& table, const std::string& condition,
                     const std::vector<Parameter>& values, Counts& counts) {
    SCOPED_TRACE(condition);
    const std::string from = "SELECT * FROM [" + table + "] WHERE ";
    Result scanned;
    const auto refused =
        test::caught([&] { scanned = execute(db, from + "(" + condition + ") OR False", values); });
    ++counts.statements;
    if (refused.number != ErrNo::None) {
        ++counts.refused;
        return;
    }
    const Result found = execute(db, from + condition, values);
    EXPECT_EQ(found.rows, scanned.rows);
    counts.rows += found.rows.size();
    Statement parsed = parse(from + condition);
    auto& select = std::get<Select>(parsed);
    const FileTable file(db.table(table));
    Scope(file.shape(), select.table, values).bind(select.where.get());
    counts.byIndex += planRanges(select.where.get(), file.shape()) ? 1 : 0;
}

TEST(SqlPlan, FindsTheRowsOfAScanInAllFiles) {
    test::Random random;
    SCOPED_TRACE(testing::Message() << "VL_SEED=" << random.seed());
    std::vector<std::filesystem::path> files = {
        vl::test::repoFile("data/first-light.RemindDB"),
        vl::test::repoFile("tests/data/generated-reminders.RemindDB")};
    const auto shared = vl::test::sharedFolder();
    if (!shared.empty()) {
        for (const auto& entry : std::filesystem::directory_iterator(shared / "jet4" / "samples")) {
            if (entry.path().extension() == ".mdb") {
                files.push_back(entry.path());
            }
        }
    }
    Counts counts;
    for (const auto& file : files) {
        SCOPED_TRACE(file);
        jet::Database db = jet::Database::open(file.string(), jet::Access::Read);
        for (const jet::TableInfo& info : db.tables()) {
            SCOPED_TRACE(info.name);
            Conditions conditions(random, db.table(info.name));
            for (int i = conditions.any() ? test::rounds(20) : 0; i > 0; --i) {
                std::vector<Parameter> values;
                const std::string condition = conditions.next(values);
                compareWithScan(db, info.name, condition, values, counts);
            }
            ASSERT_FALSE(HasFailure());
        }
    }
    std::cout << counts.statements << " conditions over " << files.size() << " files ("
              << (shared.empty() ? "no files of the shared folder" : "shared files included")
              << "), " << counts.byIndex << " by an index, " << counts.rows << " rows, "
              << counts.refused << " refused\n";
    EXPECT_GT(counts.byIndex, counts.statements / 4);
    EXPECT_GT(counts.rows, 0U);
    EXPECT_LT(counts.refused, counts.statements / 10);
}

}  // namespace
}  // namespace vl::sql
