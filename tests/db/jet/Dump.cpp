#include "Dump.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace vl::test {

namespace {

namespace fs = std::filesystem;
using jet::ColumnType;
using Json = nlohmann::json;

std::string typeName(ColumnType type, DumpKind kind) {
    static const std::map<ColumnType, std::array<const char*, 2>> kNames = {
        {ColumnType::Boolean, {"boolean", "boolean"}},
        {ColumnType::Byte, {"byte", "byte"}},
        {ColumnType::Integer, {"int", "integer"}},
        {ColumnType::Long, {"long", "long"}},
        {ColumnType::Money, {"money", "currency"}},
        {ColumnType::Single, {"float", "float"}},
        {ColumnType::Double, {"double", "double"}},
        {ColumnType::Date, {"short_date_time", "datetime"}},
        {ColumnType::Binary, {"binary", "binary"}},
        {ColumnType::Text, {"text", "text"}},
        {ColumnType::Ole, {"ole", "ole"}},
        {ColumnType::Memo, {"memo", "memo"}},
        {ColumnType::Guid, {"guid", "repid"}},
        {ColumnType::Numeric, {"numeric", "numeric"}},
    };
    return kNames.at(type)[kind == DumpKind::A ? 0 : 1];
}

std::string hex(const Bytes& bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string out = "hex:";
    for (const std::byte b : bytes) {
        out += kDigits[std::to_integer<unsigned>(b) >> 4];
        out += kDigits[std::to_integer<unsigned>(b) & 15];
    }
    return out;
}

// Rounded to the second, as the dumps are.
std::string dateText(DateTime d, DumpKind kind) {
    const Civil c = DateTime::fromMilliseconds(d.milliseconds() + 500).civil();
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d%s", c.year, c.month,
                  c.day, c.hour, c.minute, c.second, kind == DumpKind::A ? "" : ".000Z");
    return text.data();
}

Json toJson(const Variant& value, DumpKind kind) {
    if (const auto* b = value.get<bool>()) {
        return *b;
    }
    if (const auto* n = value.get<std::int32_t>()) {
        return *n;
    }
    if (const auto* d = value.get<double>()) {
        return *d;
    }
    if (const auto* d = value.get<DateTime>()) {
        return dateText(*d, kind);
    }
    if (const auto* s = value.get<std::string>()) {
        return *s;
    }
    if (const auto* b = value.get<Bytes>()) {
        return hex(*b);
    }
    EXPECT_TRUE(value.isNull()) << "a value of a kind that no column has";
    return nullptr;
}

Json columnsOf(const jet::Table& table, DumpKind kind) {
    Json columns = Json::array();
    for (const jet::Column& c : table.columns()) {
        const std::string type = typeName(c.type, kind);
        if (kind == DumpKind::A) {
            columns.push_back({{"name", c.name},
                               {"type", type},
                               {"length", c.length},
                               {"autonumber", c.autoNumber}});
        } else {
            columns.push_back({c.name, type, c.type == ColumnType::Boolean ? 0 : c.length});
        }
    }
    return columns;
}

Json indexesOf(const jet::Table& table) {
    Json indexes = Json::array();
    for (const jet::Index& i : table.indexes()) {
        Json columns = Json::array();
        for (const jet::IndexColumn& c : i.columns) {
            columns.push_back({c.name, c.descending ? "desc" : "asc"});
        }
        indexes.push_back({{"name", i.name},
                           {"primary", i.primary},
                           {"unique", i.unique},
                           {"ignoreNulls", i.ignoreNulls},
                           {"required", i.required},
                           {"foreign", i.foreign},
                           {"columns", columns}});
    }
    return indexes;
}

std::vector<Json> rowsOf(const jet::Table& table, DumpKind kind) {
    std::vector<Json> rows;
    jet::RowCursor cursor = table.scan();
    while (cursor.next()) {
        Json row = Json::object();
        for (std::size_t i = 0; i < table.columns().size(); ++i) {
            row[table.columns()[i].name] = toJson(cursor.value(i), kind);
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<Json> readLines(const fs::path& path) {
    std::ifstream in(path);
    std::vector<Json> lines;
    for (std::string line; std::getline(in, line);) {
        lines.push_back(Json::parse(line));
    }
    return lines;
}

void cutTo(std::vector<Json>& rows, const std::string& dumpName, std::size_t kept) {
    if (dumpName.find(".first") != std::string::npos) {
        rows.resize(std::min(rows.size(), kept));
    } else if (dumpName.find(".last") != std::string::npos && rows.size() > kept) {
        rows.erase(rows.begin(), rows.end() - static_cast<std::ptrdiff_t>(kept));
    }
}

}  // namespace

void compareWithDump(const jet::Table& table, const fs::path& dump, DumpKind kind, bool anyOrder,
                     Compared& compared) {
    SCOPED_TRACE(dump.string());
    std::vector<Json> expected = readLines(dump);
    ASSERT_FALSE(expected.empty());
    const Json header = expected.front();
    expected.erase(expected.begin());

    EXPECT_EQ(header.at("table"), table.name());
    EXPECT_EQ(header.at("columns"), columnsOf(table, kind));
    if (kind == DumpKind::A) {
        EXPECT_EQ(header.at("indexes"), indexesOf(table));
    }
    std::vector<Json> rows = rowsOf(table, kind);
    if (table.name() != "MSysACEs" && table.name() != "MSysQueries") {  // there it is advisory
        EXPECT_EQ(rows.size(), table.rowCount());
    }
    EXPECT_EQ(header.at("rows"), table.rowCount());
    cutTo(rows, dump.filename().string(), expected.size());
    ASSERT_EQ(rows.size(), expected.size());
    if (anyOrder) {
        std::sort(rows.begin(), rows.end());
        std::sort(expected.begin(), expected.end());
    }
    for (std::size_t r = 0; r < rows.size(); ++r) {
        ASSERT_EQ(rows[r].size(), expected[r].size()) << "row " << r;
        for (const auto& [name, value] : expected[r].items()) {
            ASSERT_EQ(rows[r].at(name), value) << "row " << r << ", column " << name;
        }
        compared.values += static_cast<int>(rows[r].size());
    }
    compared.rows += static_cast<int>(rows.size());
    ++compared.tables;
}

void compareWithDumps(const fs::path& file, const fs::path& folder, Compared& compared) {
    SCOPED_TRACE(file.string());
    const jet::Database db = jet::Database::open(file.string(), jet::Access::Read);
    for (const jet::TableInfo& info : db.tables()) {
        // "f_..._Data" is a hidden table of the desktop product.
        const bool system = info.name.starts_with("MSys") || info.name.starts_with("f_");
        EXPECT_EQ(info.system, system) << info.name;
    }
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        const bool a = name.find(".a.") != std::string::npos;
        const bool b = name.find(".b.") != std::string::npos;
        if (!(a || b) || entry.path().extension() != ".jsonl") {
            continue;
        }
        // The second reader returns moved rows where they have moved to.
        const bool anyOrder = b && file.filename().string().starts_with("overflowTest");
        const std::string table = name.substr(0, name.find(a ? ".a." : ".b."));
        compareWithDump(db.table(table), entry.path(), a ? DumpKind::A : DumpKind::B, anyOrder,
                        compared);
    }
    ++compared.files;
}

}  // namespace vl::test
