// What readers that are not ours find in the files that we make: mdbtools and mdb-reader.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <random>
#include <sstream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Made.h"
#include "Mdb.h"
#include "Value.h"
#include "db/jet/Transaction.h"
#include "support/Support.h"

#ifdef _WIN32
#define popen _popen
#define pclose _pclose
#endif

namespace vl {
namespace {

namespace fs = std::filesystem;
using jet::ColumnType;
using jet::Database;
using jet::NewColumn;
using jet::NewIndex;
using jet::Table;
using nlohmann::json;
using Changes = std::vector<Table::Change>;

std::string outputOf(const std::string& command) {
    std::FILE* pipe = popen(command.c_str(), "r");
    EXPECT_NE(pipe, nullptr) << command;
    std::string output;
    for (int c = pipe ? std::fgetc(pipe) : EOF; c != EOF; c = std::fgetc(pipe)) {
        output += static_cast<char>(c);
    }
    EXPECT_EQ(pipe ? pclose(pipe) : -1, 0) << command;
    return output;
}

json plain(const Variant& value, ColumnType type) {
    if (const auto* bytes = value.get<Bytes>()) {
        std::string hex;
        for (const std::byte b : *bytes) {
            constexpr const char* kDigits = "0123456789abcdef";
            hex += kDigits[std::to_integer<unsigned>(b) / 16];
            hex += kDigits[std::to_integer<unsigned>(b) % 16];
        }
        return hex;
    }
    if (value.isNull()) {
        return nullptr;
    }
    if (const auto* date = value.get<DateTime>()) {
        const std::string text = formatDateTime(*date);
        return text.size() == 10 ? text + " 00:00:00" : text;
    }
    if (const auto* text = value.get<std::string>()) {
        if (type == ColumnType::Guid) {
            return text->substr(1, text->size() - 2);
        }
        if (type == ColumnType::Money || type == ColumnType::Numeric) {
            return std::stod(*text);
        }
        return *text;
    }
    if (const auto* flag = value.get<bool>()) {
        return *flag;
    }
    return value.toDouble();
}

/// The user's tables as we read them, by name.
std::map<std::string, json> oursOf(const fs::path& file) {
    std::map<std::string, json> tables;
    const Database db = Database::open(file.string(), jet::Access::Read);
    for (const jet::TableInfo& info : db.tables()) {
        if (info.system) {
            continue;
        }
        const Table table = db.table(info.name);
        json rows = json::array();
        for (const test::Row& row : test::rowsOf(table).values) {
            json values = json::array();
            for (std::size_t i = 0; i < row.size(); ++i) {
                values.push_back(plain(row[i], table.columns()[i].type));
            }
            rows.push_back(std::move(values));
        }
        json names = json::array();
        for (const jet::Column& column : table.columns()) {
            names.push_back(column.name);
        }
        tables[info.name] = {{"columns", names}, {"rows", rows}, {"count", table.rowCount()}};
    }
    return tables;
}

/// Whether mdb-reader is there; the test before this one installs it, if that can be done.
bool readerThere() { return fs::exists(fs::path(VL_READERS) / "node_modules/mdb-reader"); }

std::map<std::string, json> mdbReaderOf(const fs::path& file) {
    const std::string output =
        outputOf("node \"" + test::repoFile("tests/readers/dump.mjs").string() + "\" \"" +
                 VL_READERS + "\" \"" + file.string() + "\"");
    std::map<std::string, json> tables;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        json table = json::parse(line);
        json names = json::array();
        for (const json& column : table["columns"]) {
            names.push_back(column["name"]);
        }
        tables[table["table"]] = {
            {"columns", names}, {"rows", table["rows"]}, {"count", table["count"]}};
    }
    return tables;
}

NewIndex indexOn(const char* name, const char* column, bool primary = false) {
    NewIndex index;
    index.name = name;
    index.primary = primary;
    index.columns = {{column, false}};
    return index;
}

void allTypes(Database& db) {
    const std::vector<NewColumn> columns = {
        {"Yes", ColumnType::Boolean},    {"Byte", ColumnType::Byte},
        {"Short", ColumnType::Integer},  {"Number", ColumnType::Long, 0, true},
        {"Price", ColumnType::Money},    {"Single", ColumnType::Single},
        {"Double", ColumnType::Double},  {"Date", ColumnType::Date},
        {"Bin", ColumnType::Binary, 20}, {"Text", ColumnType::Text, 50},
        {"Picture", ColumnType::Ole},    {"Memo", ColumnType::Memo},
        {"Guid", ColumnType::Guid},      {"Exact", ColumnType::Numeric, 0, false, 10, 3},
    };
    db.createTable("All types", columns,
                   std::vector{indexOn("PrimaryKey", "Number", true), indexOn("Text", "Text")});
    jet::Transaction change(db);
    Table table = db.table("All types");
    table.insert(Changes{{0, true},
                         {1, 200},
                         {2, -12345},
                         {4, "12.3456"},
                         {5, 0.5},
                         {6, 3.25},
                         {7, DateTime::fromCivil(2026, 11, 21, 9, 30)},
                         {8, Bytes{std::byte{1}, std::byte{0}, std::byte{255}}},
                         {9, "caf\xC3\xA9"},
                         {10, Bytes(5000, std::byte{7})},
                         {11, std::string(9000, 'm')},
                         {12, "{E9EDD90C-CE55-4151-ABE1-A1ACE1007515}"},
                         {13, "-123.456"}});
    table.insert(Changes{});
    table.insert(Changes{{9, "\xD0\x9C\xD0\xB8\xD1\x80"}, {11, "short"}});
    change.commit();
}

void addedColumns(Database& db) {
    db.createTable("Added", std::vector<NewColumn>{{"n", ColumnType::Long}});
    const auto fill = [&](int from, int to, std::size_t column, const std::string& value) {
        jet::Transaction change(db);
        Table table = db.table("Added");
        for (int i = from; i < to; ++i) {
            Changes row{{0, i}};
            if (column > 0) {
                row.emplace_back(column, value + std::to_string(i));
            }
            table.insert(row);
        }
        change.commit();
    };
    fill(0, 50, 0, "");
    db.addColumn("Added", {"text", ColumnType::Text});
    db.addColumn("Added", {"yes", ColumnType::Boolean});
    fill(50, 100, 1, "text ");
    db.addColumn("Added", {"memo", ColumnType::Memo});
    fill(100, 130, 3, std::string(3000, 'x'));
    db.createIndex("Added", indexOn("n", "n", true));
    db.createIndex("Added", indexOn("text", "text"));
}

void wide(Database& db) {
    std::vector<NewColumn> columns = {{"n", ColumnType::Long}};
    for (int i = 1; i < 230; ++i) {
        columns.push_back(
            {"column " + std::to_string(i), i % 5 == 0 ? ColumnType::Memo : ColumnType::Text, 100});
    }
    db.createTable("Wide", columns, std::vector{indexOn("PrimaryKey", "n", true)});
    for (int i = 230; i < 255; ++i) {
        db.addColumn("Wide", {"column " + std::to_string(i), ColumnType::Date});
    }
    jet::Transaction change(db);
    db.table("Wide").insert(
        Changes{{0, 1}, {5, "five"}, {229, "last but"}, {254, DateTime(40000)}});
    change.commit();
}

void dropped(Database& db) {
    allTypes(db);
    db.createTable("Stays", std::vector<NewColumn>{{"a", ColumnType::Text}});
    db.dropTable("All types");
    jet::Transaction change(db);
    db.table("Stays").insert(Changes{{0, "here"}});
    change.commit();
}

/// Everything that statements do to rows, again and again: they grow, shrink, move, come and go.
class Churn {
public:
    Churn(Database& db, std::string table) : db_(db), name_(std::move(table)) {}

    void run() {
        constexpr int kBatches = 40;
        constexpr int kSteps = 40;
        rows_ = test::rowsOf(db_.table(name_)).ids;
        for (int batch = 0; batch < kBatches; ++batch) {
            jet::Transaction change(db_);
            Table table = db_.table(name_);
            for (int i = 0; i < kSteps; ++i) {
                step(table);
            }
            change.commit();
        }
    }

private:
    std::size_t below(std::size_t n) { return random_() % n; }

    void step(Table& table) {
        constexpr std::size_t kFewest = 30;
        const std::size_t action = below(10);
        if (rows_.size() < kFewest || action < 2) {
            Changes row;
            for (std::size_t i = 0; i < table.columns().size(); ++i) {
                add(row, table, i);
            }
            rows_.push_back(table.insert(row));
            return;
        }
        const std::size_t at = below(rows_.size());
        if (action < 4) {
            table.remove(rows_[at]);
            rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(at));
            return;
        }
        Changes changes;
        for (std::size_t n = 1 + below(3); n > 0; --n) {
            add(changes, table, below(table.columns().size()));
        }
        table.update(rows_[at], changes);
    }

    void add(Changes& changes, const Table& table, std::size_t place) {
        const jet::Column& column = table.columns()[place];
        const bool twice = std::any_of(changes.begin(), changes.end(),
                                       [&](const auto& change) { return change.first == place; });
        if (!column.autoNumber && !twice) {
            changes.emplace_back(place, valueFor(column, isKey(table, column.name)));
        }
    }

    static bool isKey(const Table& table, const std::string& column) {
        for (const jet::Index& index : table.indexes()) {
            for (const jet::IndexColumn& part : index.columns) {
                if (part.name == column) {
                    return true;
                }
            }
        }
        return false;
    }

    Variant valueFor(const jet::Column& column, bool key) {
        // Around where a value leaves its row, its page, and fills pages.
        static constexpr std::size_t kMemo[] = {1,    32,   33,   64,   65,   500,
                                                2000, 2038, 2039, 4076, 9000, 30000};
        static constexpr std::size_t kText[] = {1, 3, 30, 64, 120, 255};
        const int number = ++made_;
        if (!key && column.type != ColumnType::Boolean && below(8) == 0) {
            return Null{};
        }
        switch (column.type) {
            case ColumnType::Boolean:
                return below(2) == 0;
            case ColumnType::Long:
                return number;
            case ColumnType::Date:
                return DateTime::fromCivil(2026, 1, 1).addSeconds(number);
            case ColumnType::Text:
                return key ? Variant("key " + std::to_string(number))
                           : Variant(text(std::min<std::size_t>(kText[below(std::size(kText))],
                                                                column.length / 2U)));
            case ColumnType::Memo:
                return text(kMemo[below(std::size(kMemo))]);
            default:
                return Null{};
        }
    }

    // Of so many units; some can be stored with a byte each, some cannot.
    std::string text(std::size_t units) {
        static constexpr const char* kUnits[] = {"a", "b", "\xC3\xA4", "\xD0\x96", "\xE6\x97\xA5"};
        const std::size_t kinds = below(2) == 0 ? 2 : std::size(kUnits);
        std::string out;
        for (; units > 0; --units) {
            out += kUnits[below(kinds)];
        }
        return out;
    }

    Database& db_;
    std::string name_;
    std::vector<jet::RowId> rows_;
    std::mt19937 random_{20261121};
    int made_ = 0;
};

void churned(Database& db) {
    db.createTable("Churned",
                   std::vector<NewColumn>{{"Number", ColumnType::Long, 0, true},
                                          {"Key", ColumnType::Text, 50},
                                          {"Text", ColumnType::Text, 255},
                                          {"Memo", ColumnType::Memo},
                                          {"Other", ColumnType::Memo},
                                          {"Date", ColumnType::Date},
                                          {"Yes", ColumnType::Boolean}},
                   std::vector{indexOn("PrimaryKey", "Number", true), indexOn("Key", "Key"),
                               indexOn("Date", "Date")});
    Churn(db, "Churned").run();
    db.addColumn("Churned", {"Later", ColumnType::Memo});
    Churn(db, "Churned").run();
}

struct Case {
    const char* name;
    std::function<void(Database&)> fill;
    std::vector<std::string> tables;
    const char* base = nullptr;  ///< a file of another engine's that is changed; else a new one is
};

class JetReaders : public testing::TestWithParam<Case> {
protected:
    void SetUp() override {
        if (GetParam().base != nullptr) {
            test::writeFile(file, test::readFile(test::repoFile(GetParam().base)));
            auto db = Database::open(file.string(), jet::Access::ReadWrite);
            GetParam().fill(db);
        } else {
            Database::create(file.string(), [](Database& db) {
                if (GetParam().fill) {
                    GetParam().fill(db);
                }
            });
        }
        ours = oursOf(file);
        std::vector<std::string> names;
        for (const auto& [name, table] : ours) {
            names.push_back(name);
        }
        ASSERT_EQ(names, GetParam().tables);
    }

    test::TempFolder folder;
    fs::path file = folder / "made.mdb";
    std::map<std::string, json> ours;
};

std::string shown(const json& value) {
    constexpr std::size_t kMost = 60;
    const std::string text = value.dump();
    return text.size() <= kMost ? text : text.substr(0, kMost) + "...";
}

// A row that has moved has a place of its own for each of them: the order does not count.
void expectSameRows(json theirs, json ours, const json& columns) {
    ASSERT_EQ(theirs.size(), ours.size());
    std::sort(theirs.begin(), theirs.end());
    std::sort(ours.begin(), ours.end());
    for (std::size_t i = 0; i < ours.size(); ++i) {
        for (std::size_t c = 0; c < columns.size(); ++c) {
            ASSERT_EQ(theirs[i][c], ours[i][c])
                << "row " << i << " by order, " << columns[c] << ": " << shown(theirs[i][c])
                << ", not " << shown(ours[i][c]);
        }
    }
}

// mdbtools writes bytes in a way of its own, and leaves out what is null and what is empty.
bool isBytes(const json& column) {
    return column == "Bin" || column == "Picture" || column == "Guid";
}

json inOrder(const json& row, const json& table) {
    json values = json::array();
    for (std::size_t c = 0; c < table["columns"].size(); ++c) {
        const json& column = table["columns"][c];
        const auto& name = column.get_ref<const std::string&>();
        const bool flag = table["rows"][0][c].is_boolean();
        json value = row.contains(name) && !isBytes(column) ? row[name] : json();
        values.push_back(flag ? json(value != 0) : std::move(value));
    }
    return values;
}

// Each half of a character that takes two units becomes a question mark there.
std::string inHalves(const std::string& text) {
    constexpr unsigned char kFirstOfFour = 0xF0;
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool pair = static_cast<unsigned char>(text[i]) >= kFirstOfFour;
        out += pair ? "??" : text.substr(i, 1);
        i += pair ? 3 : 0;
    }
    return out;
}

json asMdbtoolsHasThem(const json& table) {
    json rows = table["rows"];
    for (json& row : rows) {
        for (std::size_t c = 0; c < row.size(); ++c) {
            if (isBytes(table["columns"][c]) || row[c] == "") {
                row[c] = nullptr;
            } else if (row[c].is_string()) {
                row[c] = inHalves(row[c].get<std::string>());
            }
        }
    }
    return rows;
}

TEST_P(JetReaders, MdbtoolsFindsTheSame) {
    std::string names;
    for (const auto& [name, table] : ours) {
        names += name + "\n";
    }
    EXPECT_EQ(outputOf("mdb-tables -1 \"" + file.string() + "\""), names);
    const std::string schema = outputOf("mdb-schema \"" + file.string() + "\"");
    for (const auto& [name, table] : ours) {
        EXPECT_NE(schema.find("CREATE TABLE [" + name + "]"), std::string::npos);
        const auto rows = test::mdbRows(file, name);
        json theirs = json::array();
        for (const json& row : rows) {
            theirs.push_back(inOrder(row, table));
        }
        expectSameRows(theirs, asMdbtoolsHasThem(table), table["columns"]);
    }
}

TEST_P(JetReaders, MdbReaderFindsTheSame) {
    if (!readerThere()) {
        GTEST_SKIP() << "0 files were compared: mdb-reader is not installed";
    }
    const auto theirs = mdbReaderOf(file);
    ASSERT_EQ(theirs.size(), ours.size());
    for (const auto& [name, table] : ours) {
        ASSERT_TRUE(theirs.contains(name)) << name;
        EXPECT_EQ(theirs.at(name)["columns"], table["columns"]) << name;
        EXPECT_EQ(theirs.at(name)["count"], table["count"]) << name;
        expectSameRows(theirs.at(name)["rows"], table["rows"], table["columns"]);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Files, JetReaders,
    testing::Values(Case{"Empty", {}, {}}, Case{"AllTypes", allTypes, {"All types"}},
                    Case{"AddedColumns", addedColumns, {"Added"}}, Case{"Wide", wide, {"Wide"}},
                    Case{"Dropped", dropped, {"Stays"}}, Case{"Churned", churned, {"Churned"}},
                    Case{"ChurnedOfAnother",
                         [](Database& db) { Churn(db, "Reminders").run(); },
                         {"Reminders"},
                         "tests/data/generated-reminders.RemindDB"}),
    [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace vl
