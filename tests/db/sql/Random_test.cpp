// Random expressions against SQLite, which knows three-valued logic from elsewhere, and random
// texts into the parser.
#include <gmock/gmock.h>

#include <iterator>
#include <sstream>

#include "Evaluate.h"
#include "Memory.h"
#include "Random.h"
#include "Sqlite.h"
#include "db/sql/Sql.h"

namespace vl::sql {
namespace {

using jet::ColumnType;
using test::column;
using test::MemoryTable;
using test::Random;
using test::Row;
using test::Sqlite;

// One expression in two spellings: with the brackets that our precedence needs, and with all.
struct Spelled {
    std::string ours;
    std::string theirs;
    int level;  // how tightly its operator binds
};

class Generator {
public:
    explicit Generator(Random& random) : random_(random) {}

    Spelled condition(int depth) {
        switch (depth <= 0 ? 4 + random_.below(6) : random_.below(10)) {
            case 0:
            case 1:
                return joined("AND", 2, condition(depth - 1), condition(depth - 1));
            case 2:
                return joined("OR", 1, condition(depth - 1), condition(depth - 1));
            case 3: {
                const Spelled inner = condition(depth - 1);
                return {"NOT " + bracketed(inner, 3), "(NOT " + inner.theirs + ")", 3};
            }
            case 4: {
                const Spelled a = operand(depth);
                const char* test = random_.below(2) == 0 ? " IS NULL" : " IS NOT NULL";
                return {bracketed(a, 5) + test, "(" + a.theirs + test + ")", 4};
            }
            case 5:
                return list(depth);
            case 6:
                return between(depth);
            default:
                return comparison(depth);
        }
    }

private:
    static constexpr const char* kComparisons[] = {"=", "<>", "<", "<=", ">", ">="};

    static std::string bracketed(const Spelled& s, int level) {
        return s.level < level ? "(" + s.ours + ")" : s.ours;
    }

    Spelled joined(const std::string& op, int level, const Spelled& a, const Spelled& b) {
        return {bracketed(a, level) + " " + op + " " + bracketed(b, level + 1),
                "(" + a.theirs + " " + op + " " + b.theirs + ")", level};
    }

    Spelled comparison(int depth) {
        const bool texts = random_.below(3) == 0;
        return joined(random_.pick(kComparisons), 4, texts ? text() : number(depth),
                      texts ? text() : number(depth));
    }

    Spelled list(int depth) {
        const bool texts = random_.below(3) == 0;
        const auto value = [&] { return texts ? text() : number(depth - 1); };
        const Spelled a = value();
        Spelled out{bracketed(a, 5) + (random_.below(2) == 0 ? " IN (" : " NOT IN ("), "", 4};
        const bool negated = out.ours.find(" NOT IN (") != std::string::npos &&
                             out.ours.compare(out.ours.size() - 9, 9, " NOT IN (") == 0;
        out.theirs = "(" + a.theirs + (negated ? " NOT IN (" : " IN (");
        for (std::size_t n = 1 + random_.below(3), i = 0; i < n; ++i) {
            const Spelled item = value();
            out.ours += (i == 0 ? "" : ", ") + item.ours;
            out.theirs += (i == 0 ? "" : ", ") + item.theirs;
        }
        out.ours += ")";
        out.theirs += "))";
        return out;
    }

    Spelled between(int depth) {
        const Spelled a = number(depth - 1);
        const Spelled low = number(depth - 1);
        const Spelled high = number(depth - 1);
        const char* word = random_.below(2) == 0 ? " BETWEEN " : " NOT BETWEEN ";
        return {bracketed(a, 5) + word + bracketed(low, 5) + " AND " + bracketed(high, 5),
                "(" + a.theirs + word + low.theirs + " AND " + high.theirs + ")", 4};
    }

    Spelled operand(int depth) { return random_.below(3) == 0 ? text() : number(depth); }

    Spelled number(int depth) {
        static constexpr const char* kLeaves[] = {"a", "b", "c", "0", "1", "2", "7", "2.5", "Null"};
        if (depth <= 0 || random_.below(2) == 0) {
            const std::string leaf = random_.pick(kLeaves);
            return {leaf, leaf, 9};
        }
        switch (random_.below(4)) {
            case 0:
                return joined("+", 6, number(depth - 1), number(depth - 1));
            case 1:
                return joined("-", 6, number(depth - 1), number(depth - 1));
            case 2:
                return joined("*", 7, number(depth - 1), number(depth - 1));
            default: {
                const Spelled inner = number(depth - 1);
                return {"- " + bracketed(inner, 8), "(- " + inner.theirs + ")", 8};
            }
        }
    }

    Spelled text() {
        static constexpr const char* kLeaves[] = {"s",      "t",     "'ann'", "'Bob'",
                                                  "'bob '", "'zoe'", "''",    "Null"};
        const std::string leaf = random_.pick(kLeaves);
        // SQLite passes over blanks at the end only when told so; letters it folds by itself.
        return {leaf, leaf == "Null" ? leaf : "rtrim(" + leaf + ") COLLATE NOCASE", 9};
    }

    Random& random_;
};

TEST(SqlRandom, ConditionsKeepTheRowsThatSqliteKeeps) {
    Random random;
    SCOPED_TRACE(testing::Message() << "VL_SEED=" << random.seed());
    const TableShape shape{"T",
                           {column("n", ColumnType::Long, 4), column("a", ColumnType::Long, 4),
                            column("b", ColumnType::Long, 4), column("c", ColumnType::Double, 8),
                            column("s", ColumnType::Text, 40), column("t", ColumnType::Text, 40)}};
    std::vector<Row> rows;
    const Variant numbers[] = {Null{}, 0, 1, 2, -3, 7};
    const Variant texts[] = {Null{}, "", "Ann", "ann ", "bob", "BOB", "Zoe"};
    Sqlite sqlite;
    sqlite.run("CREATE TABLE T (n, a, b, c, s, t)");
    for (int i = 0; i < 60; ++i) {
        rows.push_back({i, random.pick(numbers), random.pick(numbers), random.pick(numbers),
                        random.pick(texts), random.pick(texts)});
        std::string values;
        for (const Variant& v : rows.back()) {
            values += values.empty() ? "" : ", ";
            values += v.isNull()            ? "NULL"
                      : v.is<std::string>() ? "'" + v.toText() + "'"
                                            : v.toText();
        }
        sqlite.run("INSERT INTO T VALUES (" + values + ")");
    }
    const MemoryTable table(shape, rows);
    std::size_t kept = 0;
    for (int round = 0; round < 3000; ++round) {
        const Spelled where = Generator(random).condition(4);
        SCOPED_TRACE(where.ours);
        std::vector<std::string> theirs;
        for (const auto& row : sqlite.run("SELECT n FROM T WHERE " + where.theirs)) {
            theirs.push_back(row[0]);
        }
        std::vector<std::string> ours;
        for (const Row& row : table.select("SELECT n FROM T WHERE " + where.ours).rows) {
            ours.push_back(row[0].toText());
        }
        ASSERT_EQ(ours, theirs) << where.theirs;
        kept += ours.size();
    }
    // Not all or nothing: then the conditions would say little.
    EXPECT_GT(kept, 3000U * 60 / 10);
    EXPECT_LT(kept, 3000U * 60 * 9 / 10);
}

// Whatever comes in, parsing ends with a statement or with an `Error` that names a place.
void expectStatementOrError(const std::string& text) {
    try {
        parse(text);
    } catch (const Error& e) {
        ASSERT_TRUE(e.number() == ErrNo::Syntax || e.number() == ErrNo::Unsupported) << e.what();
        ASSERT_THAT(e.what(), testing::StartsWith("line "));
    }
    isQuery(text);
}

TEST(SqlRandom, BytesNeverBreakTheParser) {
    Random random;
    SCOPED_TRACE(testing::Message() << "VL_SEED=" << random.seed());
    for (int round = 0; round < 20'000; ++round) {
        std::string text = random.below(2) == 0 ? "SELECT * FROM T WHERE " : "";
        // What is no UTF-8 is refused as a whole, before any of it is understood.
        const std::size_t kinds = random.below(4) == 0 ? 256 : 128;
        for (std::size_t n = random.below(60); n > 0; --n) {
            text.push_back(static_cast<char>(random.below(kinds)));
        }
        ASSERT_NO_FATAL_FAILURE(expectStatementOrError(text));
    }
}

TEST(SqlRandom, TokenSoupsNeverBreakTheParser) {
    static constexpr const char* kTokens[] = {"SELECT", "DISTINCT",  "TOP",
                                              "*",      ",",         "FROM",
                                              "T",      "WHERE",     "AND",
                                              "OR",     "NOT",       "(",
                                              ")",      "=",         "<>",
                                              "<",      "<=",        ">",
                                              ">=",     "IS",        "NULL",
                                              "LIKE",   "IN",        "BETWEEN",
                                              "+",      "-",         "/",
                                              "&",      "ORDER",     "BY",
                                              "ASC",    "DESC",      "COUNT",
                                              "MIN",    "UPDATE",    "SET",
                                              "a",      "[b c]",     ".",
                                              ";",      "1",         "2.5",
                                              "'x'",    "\"y\"",     "#2026-11-15#",
                                              "True",   "AS",        "\xC2\xAFItems",
                                              "MOD",    "\\",        "^",
                                              "0x0A1B", "#2:30 PM#", "PERCENT",
                                              "ALL",    "LIMIT",     "DISTINCTROW"};
    Random random;
    SCOPED_TRACE(testing::Message() << "VL_SEED=" << random.seed());
    int parsed = 0;
    for (int round = 0; round < 50'000; ++round) {
        std::string text = random.below(4) == 0 ? "" : "SELECT * FROM T WHERE ";
        for (std::size_t n = 1 + random.below(8); n > 0; --n) {
            text += std::string(random.pick(kTokens)) + ' ';
        }
        ASSERT_NO_FATAL_FAILURE(expectStatementOrError(text));
        parsed += test::caught([&] { parse(text); }).number == ErrNo::None ? 1 : 0;
    }
    EXPECT_GT(parsed, 100);  // some of it is grammar
}

// Valid statements of every kind, from which others are made by leaving out, doubling, swapping
// and replacing tokens.
constexpr const char* kStatements[] = {
    "SELECT DISTINCT TOP 5 T.a AS x , b + 1 , * FROM T AS t WHERE a = 1 ORDER BY 2 DESC , b",
    "SELECT COUNT ( * ) , MIN ( a ) FROM T WHERE a LIKE 'x*' AND NOT b IS NULL OR c IN ( 1 , ? )",
    "SELECT ALL TOP 5 PERCENT a MOD 2 AS x , b \\ - 3 ^ c FROM T WHERE d > #2:30 PM# ORDER BY x",
    "INSERT INTO T ( a , [b c] ) VALUES ( 1 , #2026-11-15# )",
    "INSERT INTO T SELECT a , 'x' & b FROM U WHERE a BETWEEN - 1 AND 2 * ( 3 - c ) ;",
    "UPDATE T SET a = Null , T.b = @p WHERE ( a >= 1 ) AND b <> True",
    "DELETE T.* FROM T WHERE a NOT IN ( 1 , 2 ) ;",
    "CREATE TABLE T ( a COUNTER CONSTRAINT k PRIMARY KEY , b TEXT ( 5 ) NOT NULL , UNIQUE ( a ) )",
    "CREATE UNIQUE INDEX i ON T ( a DESC , b ) WITH DISALLOW NULL",
    "ALTER TABLE T ADD COLUMN a DECIMAL ( 9 , 2 ) UNIQUE",
    "ALTER TABLE T ADD CONSTRAINT k PRIMARY KEY ( a )",
    "DROP TABLE T"};

std::vector<std::string> words(const std::string& statement) {
    std::istringstream in(statement);
    return {std::istream_iterator<std::string>(in), {}};
}

void mutate(std::vector<std::string>& tokens, Random& random) {
    const std::size_t at = random.below(tokens.size());
    const auto place = tokens.begin() + static_cast<std::ptrdiff_t>(at);
    switch (random.below(5)) {
        case 0:
            tokens.erase(place);
            break;
        case 1:
            tokens.insert(place, tokens[at]);
            break;
        case 2:
            std::swap(tokens[at], tokens[random.below(tokens.size())]);
            break;
        case 3: {  // a piece of another statement
            const auto other = words(random.pick(kStatements));
            const std::size_t from = random.below(other.size());
            const std::size_t count =
                1 + random.below(std::min<std::size_t>(4, other.size() - from));
            tokens.insert(place, other.begin() + static_cast<std::ptrdiff_t>(from),
                          other.begin() + static_cast<std::ptrdiff_t>(from + count));
            break;
        }
        default: {  // deeper
            const std::string bracket = random.oneIn(2) ? "( " : "NOT ";
            for (std::size_t n = random.below(300); n > 0; --n) {
                tokens[at] = bracket + tokens[at];
            }
        }
    }
}

TEST(SqlRandom, ChangedStatementsNeverBreakTheParser) {
    Random random;
    SCOPED_TRACE(testing::Message() << "VL_SEED=" << random.seed());
    for (const char* statement : kStatements) {
        EXPECT_EQ(test::caught([&] { parse(statement); }).text, "");
    }
    int parsed = 0;
    const int statements = test::rounds(20'000);
    for (int round = 0; round < statements; ++round) {
        std::vector<std::string> tokens = words(random.pick(kStatements));
        for (std::size_t n = 1 + random.below(3); n > 0 && !tokens.empty(); --n) {
            mutate(tokens, random);
        }
        std::string text;
        for (const std::string& token : tokens) {
            text += token + ' ';
        }
        ASSERT_NO_FATAL_FAILURE(expectStatementOrError(text)) << text;
        parsed += test::caught([&] { parse(text); }).number == ErrNo::None ? 1 : 0;
    }
    EXPECT_GT(parsed, statements / 100);  // some of it is still grammar
}

}  // namespace
}  // namespace vl::sql
