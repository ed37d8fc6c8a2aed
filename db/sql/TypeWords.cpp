#include "TypeWords.h"

#include <algorithm>
#include <array>

namespace vl::sql {

namespace {

using jet::ColumnType;

constexpr std::int32_t kMostUnits = 255;  // of a text, or bytes
constexpr std::int32_t kMostDigits = 28;  // of a decimal
constexpr std::int32_t kUsualDigits = 18;

struct TypeWord {
    std::string_view word;
    ColumnType type;
    std::string_view second = {};  // may follow, and changes nothing
    bool autoNumber = false;
};

constexpr std::array<TypeWord, 54> kWords = {{
    {"BIT", ColumnType::Boolean},
    {"BOOLEAN", ColumnType::Boolean},
    {"LOGICAL", ColumnType::Boolean},
    {"LOGICAL1", ColumnType::Boolean},
    {"YESNO", ColumnType::Boolean},
    {"BYTE", ColumnType::Byte},
    {"INTEGER1", ColumnType::Byte},
    {"TINYINT", ColumnType::Byte},
    {"SHORT", ColumnType::Integer},
    {"SMALLINT", ColumnType::Integer},
    {"INTEGER2", ColumnType::Integer},
    {"LONG", ColumnType::Long},
    {"INT", ColumnType::Long},
    {"INTEGER", ColumnType::Long},
    {"INTEGER4", ColumnType::Long},
    {"COUNTER", ColumnType::Long, {}, true},
    {"AUTOINCREMENT", ColumnType::Long, {}, true},
    {"IDENTITY", ColumnType::Long, {}, true},
    {"CURRENCY", ColumnType::Money},
    {"MONEY", ColumnType::Money},
    {"SINGLE", ColumnType::Single},
    {"REAL", ColumnType::Single},
    {"FLOAT4", ColumnType::Single},
    {"IEEESINGLE", ColumnType::Single},
    {"DOUBLE", ColumnType::Double, "PRECISION"},
    {"FLOAT", ColumnType::Double},
    {"FLOAT8", ColumnType::Double},
    {"IEEEDOUBLE", ColumnType::Double},
    {"NUMBER", ColumnType::Double},
    {"DATE", ColumnType::Date},
    {"DATETIME", ColumnType::Date},
    {"TIME", ColumnType::Date},
    {"TIMESTAMP", ColumnType::Date},
    {"BINARY", ColumnType::Binary, "VARYING"},
    {"VARBINARY", ColumnType::Binary},
    {"TEXT", ColumnType::Text},
    {"CHAR", ColumnType::Text, "VARYING"},
    {"CHARACTER", ColumnType::Text, "VARYING"},
    {"VARCHAR", ColumnType::Text},
    {"STRING", ColumnType::Text},
    {"ALPHANUMERIC", ColumnType::Text},
    {"NCHAR", ColumnType::Text, "VARYING"},
    {"MEMO", ColumnType::Memo},
    {"LONGTEXT", ColumnType::Memo},
    {"LONGCHAR", ColumnType::Memo},
    {"NOTE", ColumnType::Memo},
    {"IMAGE", ColumnType::Ole},
    {"LONGBINARY", ColumnType::Ole},
    {"OLEOBJECT", ColumnType::Ole},
    {"GENERAL", ColumnType::Ole},
    {"GUID", ColumnType::Guid},
    {"UNIQUEIDENTIFIER", ColumnType::Guid},
    {"DECIMAL", ColumnType::Numeric},
    {"NUMERIC", ColumnType::Numeric},
}};

std::int32_t number(TokenStream& tokens, const char* what, std::int32_t least, std::int32_t most) {
    const Token& token = tokens.current();
    const auto* value = token.literal.get<std::int32_t>();
    if (value == nullptr || *value < least || *value > most) {
        tokens.failExpected(std::string(what) + " from " + std::to_string(least) + " to " +
                            std::to_string(most));
    }
    const std::int32_t number = *value;
    tokens.take();
    return number;
}

void closeBracket(TokenStream& tokens) { tokens.expectSymbol(")"); }

void length(TokenStream& tokens, ColumnSpec& column) {
    column.length = kMostUnits;
    if (tokens.takeSymbol("(")) {
        column.length = static_cast<std::uint16_t>(number(tokens, "a length", 1, kMostUnits));
        closeBracket(tokens);
    }
}

void digits(TokenStream& tokens, ColumnSpec& column) {
    column.precision = kUsualDigits;
    if (!tokens.takeSymbol("(")) {
        return;
    }
    column.precision = static_cast<std::uint8_t>(number(tokens, "a precision", 1, kMostDigits));
    if (tokens.takeSymbol(",")) {
        column.scale = static_cast<std::uint8_t>(number(tokens, "a scale", 0, column.precision));
    }
    closeBracket(tokens);
}

// Texts are stored compressed where they can be, whether it is asked for or not.
void passCompression(TokenStream& tokens) {
    if (tokens.current().isWord("WITH") &&
        (tokens.following().isWord("COMPRESSION") || tokens.following().isWord("COMP"))) {
        tokens.take();
        tokens.take();
    }
}

}  // namespace

void parseType(TokenStream& tokens, ColumnSpec& column) {
    const Token& token = tokens.current();
    const auto* hit = std::find_if(kWords.begin(), kWords.end(),
                                   [&](const TypeWord& word) { return token.isWord(word.word); });
    if (hit == kWords.end()) {
        tokens.failExpected("a type such as TEXT(50), LONG, DATETIME or YESNO");
    }
    tokens.take();
    if (!hit->second.empty()) {
        tokens.takeWord(hit->second);
    }
    column.type = hit->type;
    column.autoNumber = hit->autoNumber;
    switch (column.type) {
        case ColumnType::Text:
            length(tokens, column);
            passCompression(tokens);
            break;
        case ColumnType::Memo:
            passCompression(tokens);
            break;
        case ColumnType::Binary:
            length(tokens, column);
            break;
        case ColumnType::Numeric:
            digits(tokens, column);
            break;
        default:
            break;
    }
}

}  // namespace vl::sql
