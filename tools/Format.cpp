#include "Format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <utility>
#include <vector>

namespace vl::tools {

namespace {

using jet::ColumnType;

std::string hex(const Bytes& bytes) {
    static constexpr std::string_view kDigits = "0123456789abcdef";
    std::string out = "hex:";
    for (const std::byte b : bytes) {
        out += kDigits[std::to_integer<unsigned>(b) >> 4U];
        out += kDigits[std::to_integer<unsigned>(b) & 15U];
    }
    return out;
}

std::string dateText(DateTime date) {
    constexpr std::int64_t kHalfSecond = 500;
    const Civil c = DateTime::fromMilliseconds(date.milliseconds() + kHalfSecond).civil();
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d", c.year, c.month, c.day,
                  c.hour, c.minute, c.second);
    return text.data();
}

// A single's shortest decimal digits, not those of the double that carries it.
double shortest(float value) {
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    double out = 0;
    std::from_chars(text.data(), end, out);
    return out;
}

std::string escaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        switch (c) {
            case '\t':
                out += "\\t";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\\':
                out += "\\\\";
                break;
            default:
                out += c;
        }
    }
    return out;
}

// The length in the unit that people declare it in.
std::string declared(const jet::Column& column) {
    std::string text(typeName(column.type));
    if (column.type == ColumnType::Text) {
        text += '(' + std::to_string(column.length / 2) + ')';
    } else if (column.type == ColumnType::Binary) {
        text += '(' + std::to_string(column.length) + ')';
    } else if (column.type == ColumnType::Numeric) {
        text += '(' + std::to_string(column.precision) + ',' + std::to_string(column.scale) + ')';
    }
    return column.autoNumber ? text + " autonumber" : text;
}

std::string indexText(const jet::Index& index) {
    std::string text;
    const std::pair<bool, const char*> flags[] = {{index.primary, "primary "},
                                                  {index.unique, "unique "},
                                                  {index.required, "required "},
                                                  {index.ignoreNulls, "ignore nulls "},
                                                  {index.foreign, "foreign "}};
    for (const auto& [set, name] : flags) {
        text += set ? name : "";
    }
    text += "on ";
    for (std::size_t i = 0; i < index.columns.size(); ++i) {
        text += (i == 0 ? "" : ", ") + index.columns[i].name;
        text += index.columns[i].descending ? " desc" : "";
    }
    return text;
}

void appendAligned(std::string& out, const std::vector<std::pair<std::string, std::string>>& rows) {
    std::size_t width = 0;
    for (const auto& row : rows) {
        width = std::max(width, row.first.size());
    }
    for (const auto& [name, rest] : rows) {
        out += "    " + name + std::string(width - name.size() + 2, ' ') + rest + '\n';
    }
}

}  // namespace

std::string_view typeName(ColumnType type) {
    static constexpr std::array<std::pair<ColumnType, std::string_view>, 16> kNames = {{
        {ColumnType::Boolean, "boolean"},
        {ColumnType::Byte, "byte"},
        {ColumnType::Integer, "int"},
        {ColumnType::Long, "long"},
        {ColumnType::Money, "money"},
        {ColumnType::Single, "float"},
        {ColumnType::Double, "double"},
        {ColumnType::Date, "short_date_time"},
        {ColumnType::Binary, "binary"},
        {ColumnType::Text, "text"},
        {ColumnType::Ole, "ole"},
        {ColumnType::Memo, "memo"},
        {ColumnType::Guid, "guid"},
        {ColumnType::Numeric, "numeric"},
        {ColumnType::Block, "block"},
        {ColumnType::Complex, "complex"},
    }};
    const auto* hit = std::find_if(kNames.begin(), kNames.end(),
                                   [type](const auto& entry) { return entry.first == type; });
    return hit == kNames.end() ? "unknown" : hit->second;
}

Json valueJson(const Variant& value, ColumnType type) {
    if (const auto* flag = value.get<bool>()) {
        return *flag;
    }
    if (const auto* whole = value.get<std::int32_t>()) {
        return *whole;
    }
    if (const auto* real = value.get<double>()) {
        return type == ColumnType::Single ? shortest(static_cast<float>(*real)) : *real;
    }
    if (const auto* date = value.get<DateTime>()) {
        return dateText(*date);
    }
    if (const auto* bytes = value.get<Bytes>()) {
        return hex(*bytes);
    }
    if (const auto* text = value.get<std::string>()) {
        return *text;
    }
    return nullptr;
}

Json tableJson(const jet::Table& table) {
    Json columns = Json::array();
    for (const jet::Column& column : table.columns()) {
        columns.push_back({{"name", column.name},
                           {"type", typeName(column.type)},
                           {"length", column.length},
                           {"autonumber", column.autoNumber}});
    }
    Json indexes = Json::array();
    for (const jet::Index& index : table.indexes()) {
        Json keys = Json::array();
        for (const jet::IndexColumn& column : index.columns) {
            keys.push_back(Json::array({column.name, column.descending ? "desc" : "asc"}));
        }
        indexes.push_back({{"name", index.name},
                           {"primary", index.primary},
                           {"unique", index.unique},
                           {"ignoreNulls", index.ignoreNulls},
                           {"required", index.required},
                           {"foreign", index.foreign},
                           {"columns", keys}});
    }
    return {{"table", table.name()},
            {"rows", table.rowCount()},
            {"columns", columns},
            {"indexes", indexes}};
}

std::string lineOf(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string valueText(const Variant& value, ColumnType type) {
    const Json json = valueJson(value, type);
    if (json.is_null()) {
        return "\\N";
    }
    return json.is_string() ? escaped(json.get<std::string>()) : json.dump();
}

std::string tableText(const jet::Table& table) {
    const std::uint32_t rows = table.rowCount();
    std::string out = table.name() + ": " + std::to_string(rows) + (rows == 1 ? " row" : " rows");
    out += "\n  columns\n";
    std::vector<std::pair<std::string, std::string>> lines;
    for (const jet::Column& column : table.columns()) {
        lines.emplace_back(column.name, declared(column));
    }
    appendAligned(out, lines);
    if (!table.indexes().empty()) {
        out += "  indexes\n";
        lines.clear();
        for (const jet::Index& index : table.indexes()) {
            lines.emplace_back(index.name, indexText(index));
        }
        appendAligned(out, lines);
    }
    return out;
}

}  // namespace vl::tools
