// What readers that are not ours find in the files that we make: mdbtools and mdb-reader.
#include <cstdio>
#include <functional>
#include <iostream>
#include <map>
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

struct Case {
    const char* name;
    std::function<void(Database&)> fill;
    std::vector<std::string> tables;
};

class JetReaders : public testing::TestWithParam<Case> {
protected:
    void SetUp() override {
        Database::create(file.string(), [](Database& db) {
            if (GetParam().fill) {
                GetParam().fill(db);
            }
        });
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
        ASSERT_EQ(rows.size(), table["rows"].size()) << name;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            for (std::size_t c = 0; c < table["columns"].size(); ++c) {
                const std::string& column = table["columns"][c].get_ref<const std::string&>();
                const json& value = table["rows"][i][c];
                // What is null it leaves out; bytes it writes in a way of its own.
                if (value.is_null()) {
                    EXPECT_FALSE(rows[i].contains(column)) << name << ", " << column;
                } else if (column != "Bin" && column != "Picture" && column != "Guid") {
                    ASSERT_TRUE(rows[i].contains(column)) << name << ", " << column;
                    const json& theirs = rows[i][column];
                    EXPECT_EQ(value.is_boolean() ? json(theirs != 0) : theirs, value)
                        << name << ", " << column;
                }
            }
        }
    }
}

TEST_P(JetReaders, MdbReaderFindsTheSame) {
    if (!readerThere()) {
        std::cout << "mdb-reader is not installed: NOT compared\n";
        return;
    }
    const auto theirs = mdbReaderOf(file);
    ASSERT_EQ(theirs.size(), ours.size());
    for (const auto& [name, table] : ours) {
        ASSERT_TRUE(theirs.contains(name)) << name;
        EXPECT_EQ(theirs.at(name)["columns"], table["columns"]) << name;
        EXPECT_EQ(theirs.at(name)["count"], table["count"]) << name;
        EXPECT_EQ(theirs.at(name)["rows"], table["rows"]) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Files, JetReaders,
                         testing::Values(Case{"Empty", {}, {}},
                                         Case{"AllTypes", allTypes, {"All types"}},
                                         Case{"AddedColumns", addedColumns, {"Added"}},
                                         Case{"Wide", wide, {"Wide"}},
                                         Case{"Dropped", dropped, {"Stays"}}),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace vl
