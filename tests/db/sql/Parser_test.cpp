#include "Parser.h"

#include <gmock/gmock.h>

#include "Memory.h"

namespace vl::sql {
namespace {

using test::caught;

// An expression with all its brackets, to see what binds how.
std::string shown(const Expr& e) {
    static constexpr const char* kNames[] = {
        "",     "",   "?",       "AND", "OR", "NOT", "=", "<>", "<",  "<=",  ">", ">=", "IS NULL",
        "LIKE", "IN", "BETWEEN", "&",   "+",  "-",   "*", "/",  "\\", "MOD", "^", "-"};
    if (e.op == Op::Literal) {
        return e.literal.isNull() ? "Null" : e.literal.toText();
    }
    if (e.op == Op::Column) {
        return e.column.table.empty() ? e.column.name : e.column.table + "." + e.column.name;
    }
    std::string out = std::string("(") + kNames[static_cast<int>(e.op)];
    for (const ExprPtr& operand : e.operands) {
        out += ' ' + shown(*operand);
    }
    return out + ')';
}

std::string whereOf(const std::string& condition) {
    const Statement s = parse("SELECT * FROM T WHERE " + condition);
    return shown(*std::get<Select>(s).where);
}

TEST(SqlParser, BindsOperatorsByTheirPrecedence) {
    struct Case {
        const char* text;
        const char* tree;
    };
    static constexpr Case cases[] = {
        {"a=1 OR b=2 AND c=3", "(OR (= a 1) (AND (= b 2) (= c 3)))"},
        {"(a=1 OR b=2) AND c=3", "(AND (OR (= a 1) (= b 2)) (= c 3))"},
        {"NOT a=1 AND b=2", "(AND (NOT (= a 1)) (= b 2))"},
        {"NOT (a=1 AND b=2)", "(NOT (AND (= a 1) (= b 2)))"},
        {"NOT NOT a", "(NOT (NOT a))"},
        {"a AND b AND c AND d", "(AND a b c d)"},
        {"a OR b OR c", "(OR a b c)"},
        {"a+b*c-d/e=f", "(= (- (+ a (* b c)) (/ d e)) f)"},
        {"a-b-c", "(- (- a b) c)"},
        {"-a*b", "(* (- a) b)"},
        {"a\\b*c MOD d + e", "(+ (MOD (\\ a (* b c)) d) e)"},
        {"-a^-b^c", "(- (^ a (- (^ b c))))"},
        {"a^b*c", "(* (^ a b) c)"},
        {"- -a", "(- (- a))"},
        {"+a", "a"},
        {"a & b + c = d", "(= (& a (+ b c)) d)"},
        {"a IS NULL", "(IS NULL a)"},
        {"a is not null", "(NOT (IS NULL a))"},
        {"a+1 IS NULL OR b", "(OR (IS NULL (+ a 1)) b)"},
        {"a LIKE \"x*\" & b AND c", "(AND (LIKE a (& x* b)) c)"},
        {"a NOT LIKE 'x'", "(NOT (LIKE a x))"},
        {"a IN (1, 2+3, b)", "(IN a 1 (+ 2 3) b)"},
        {"a NOT IN (1)", "(NOT (IN a 1))"},
        {"a BETWEEN 1 AND 2 AND b", "(AND (BETWEEN a 1 2) b)"},
        {"NOT a NOT BETWEEN 1 AND 2", "(NOT (NOT (BETWEEN a 1 2)))"},
        {"T.a = [T].[b c]", "(= T.a T.b c)"},
        {"[and] = 1", "(= and 1)"},
        {"((((a))))", "a"},
        {"a = true or b = Null", "(OR (= a True) (= b Null))"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(whereOf(c.text), c.tree);
    }
}

TEST(SqlParser, ReadsTheClausesOfASelect) {
    const Statement parsed = parse(
        "select distinct top 3 T.*, a, T.b as [my b], count(*), min(T.c) from [T t] where a "
        "order by a desc, T.b asc, c ;");
    const auto& s = std::get<Select>(parsed);
    EXPECT_TRUE(s.distinct);
    EXPECT_EQ(s.top, 3);
    ASSERT_EQ(s.items.size(), 5U);
    EXPECT_EQ(s.items[0].kind, ItemKind::All);
    EXPECT_EQ(s.items[0].table, "T");
    EXPECT_EQ(s.items[2].alias, "my b");
    EXPECT_EQ(s.items[3].kind, ItemKind::CountAll);
    EXPECT_EQ(s.items[4].kind, ItemKind::Min);
    EXPECT_EQ(shown(*s.items[4].value), "T.c");
    EXPECT_EQ(s.table.name, "T t");
    EXPECT_NE(s.where, nullptr);
    ASSERT_EQ(s.order.size(), 3U);
    EXPECT_TRUE(s.order[0].descending);
    EXPECT_FALSE(s.order[1].descending);
    EXPECT_FALSE(s.order[2].descending);
}

TEST(SqlParser, WordsOfClausesMayBeColumns) {
    const Statement parsed = parse("SELECT top, count, [from], desc FROM T ORDER BY desc DESC");
    EXPECT_EQ(std::get<Select>(parsed).items.size(), 4U);
    EXPECT_FALSE(std::get<Select>(parsed).top.has_value());
}

TEST(SqlParser, ReadsAnUpdate) {
    const Statement parsed = parse("UPDATE T SET a = 1, T.b = \"x\" & c WHERE d;");
    const auto& u = std::get<Update>(parsed);
    ASSERT_EQ(u.assignments.size(), 2U);
    EXPECT_EQ(u.assignments[1].column.table, "T");
    EXPECT_EQ(shown(*u.assignments[1].value), "(& x c)");
    EXPECT_EQ(shown(*u.where), "d");
}

TEST(SqlParser, ReadsAnInsert) {
    const Statement one = parse("INSERT INTO [T t] (a, [b c]) VALUES (1 + 2, ?);");
    const auto& values = std::get<Insert>(one);
    EXPECT_EQ(values.table.name, "T t");
    ASSERT_EQ(values.columns.size(), 2U);
    EXPECT_EQ(values.columns[1].name, "b c");
    ASSERT_EQ(values.values.size(), 2U);
    EXPECT_EQ(shown(*values.values[0]), "(+ 1 2)");
    const Statement many = parse("insert into T select a, 'x' from U where b order by 1");
    const auto& rows = std::get<Insert>(many);
    EXPECT_TRUE(rows.columns.empty());
    ASSERT_TRUE(rows.rows.has_value());
    EXPECT_EQ(rows.rows->table.name, "U");
    EXPECT_EQ(rows.rows->order.size(), 1U);
}

TEST(SqlParser, ReadsADelete) {
    for (const char* text : {"DELETE FROM T WHERE a", "DELETE * FROM T WHERE a;",
                             "delete T.* from T where a", "DELETE [T].* FROM [T] AS t WHERE a"}) {
        SCOPED_TRACE(text);
        const Statement parsed = parse(text);
        const auto& statement = std::get<Delete>(parsed);
        EXPECT_EQ(statement.table.name, "T");
        EXPECT_EQ(shown(*statement.where), "a");
    }
    EXPECT_EQ(std::get<Delete>(parse("DELETE * FROM T")).where, nullptr);
}

TEST(SqlParser, ReadsTheDefinitionOfATable) {
    const Statement parsed = parse(
        "CREATE TABLE T (id COUNTER CONSTRAINT pk PRIMARY KEY, name TEXT(50) NOT NULL UNIQUE, "
        "[any text] VARCHAR WITH COMPRESSION, price DECIMAL(9, 2), raw BINARY(16), d DOUBLE "
        "PRECISION NULL, CONSTRAINT two UNIQUE (name, price))");
    const auto& table = std::get<CreateTable>(parsed);
    ASSERT_EQ(table.columns.size(), 6U);
    EXPECT_TRUE(table.columns[0].autoNumber);
    EXPECT_EQ(table.columns[1].length, 50);
    EXPECT_TRUE(table.columns[1].required);
    EXPECT_EQ(table.columns[2].name.name, "any text");
    EXPECT_EQ(table.columns[2].length, 255);
    EXPECT_EQ(table.columns[3].type, jet::ColumnType::Numeric);
    EXPECT_EQ(table.columns[3].precision, 9);
    EXPECT_EQ(table.columns[3].scale, 2);
    EXPECT_EQ(table.columns[4].length, 16);
    EXPECT_EQ(table.columns[5].type, jet::ColumnType::Double);
    EXPECT_FALSE(table.columns[5].required);
    ASSERT_EQ(table.indexes.size(), 3U);
    EXPECT_EQ(table.indexes[0].name, "pk");
    EXPECT_TRUE(table.indexes[0].primary);
    EXPECT_TRUE(table.indexes[1].unique);
    EXPECT_FALSE(table.indexes[1].primary);
    EXPECT_EQ(table.indexes[2].name, "two");
    EXPECT_EQ(table.indexes[2].keys.size(), 2U);
}

TEST(SqlParser, KnowsTheWordsForTypes) {
    struct Case {
        const char* words;
        jet::ColumnType type;
    };
    using jet::ColumnType;
    static constexpr Case cases[] = {
        {"BIT", ColumnType::Boolean},     {"yesno", ColumnType::Boolean},
        {"Logical", ColumnType::Boolean}, {"BYTE", ColumnType::Byte},
        {"SHORT", ColumnType::Integer},   {"SMALLINT", ColumnType::Integer},
        {"LONG", ColumnType::Long},       {"INTEGER", ColumnType::Long},
        {"MONEY", ColumnType::Money},     {"CURRENCY", ColumnType::Money},
        {"REAL", ColumnType::Single},     {"SINGLE", ColumnType::Single},
        {"FLOAT", ColumnType::Double},    {"NUMBER", ColumnType::Double},
        {"DATETIME", ColumnType::Date},   {"DATE", ColumnType::Date},
        {"TEXT", ColumnType::Text},       {"CHARACTER VARYING(9)", ColumnType::Text},
        {"MEMO", ColumnType::Memo},       {"LONGTEXT", ColumnType::Memo},
        {"IMAGE", ColumnType::Ole},       {"LONGBINARY", ColumnType::Ole},
        {"GUID", ColumnType::Guid},       {"NUMERIC", ColumnType::Numeric},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.words);
        const Statement parsed = parse(std::string("ALTER TABLE T ADD COLUMN a ") + c.words);
        EXPECT_EQ(std::get<AddColumn>(parsed).column.type, c.type);
    }
}

TEST(SqlParser, ReadsOtherDefinitions) {
    const Statement index =
        parse("CREATE UNIQUE INDEX i ON T (a, b DESC, c ASC) WITH IGNORE NULL;");
    const IndexSpec& spec = std::get<CreateIndex>(index).index;
    EXPECT_TRUE(spec.unique);
    EXPECT_TRUE(spec.ignoreNulls);
    EXPECT_FALSE(spec.required);
    ASSERT_EQ(spec.keys.size(), 3U);
    EXPECT_TRUE(spec.keys[1].descending);
    EXPECT_FALSE(spec.keys[2].descending);
    EXPECT_TRUE(std::get<CreateIndex>(parse("CREATE INDEX i ON T (a) WITH PRIMARY")).index.primary);
    EXPECT_TRUE(
        std::get<CreateIndex>(parse("CREATE INDEX i ON T (a) WITH DISALLOW NULL")).index.required);
    const Statement key = parse("ALTER TABLE T ADD CONSTRAINT k PRIMARY KEY (a, b)");
    EXPECT_TRUE(std::get<CreateIndex>(key).index.primary);
    EXPECT_EQ(std::get<AddColumn>(parse("ALTER TABLE T ADD a LONG")).column.name.name, "a");
    EXPECT_EQ(std::get<DropTable>(parse("drop table [T t];")).table.name, "T t");
    const Statement drop = parse("drop index [by name] on T;");
    EXPECT_EQ(std::get<DropIndex>(drop).name, "by name");
    EXPECT_EQ(std::get<DropIndex>(drop).table.name, "T");
}

TEST(SqlParser, ReadsWhatMayStandBehindSelect) {
    struct Case {
        const char* text;
        bool distinct;
        int top;
        bool percent;
        ItemKind first;
    };
    static constexpr Case cases[] = {
        {"SELECT ALL * FROM T", false, 0, false, ItemKind::All},
        {"SELECT DISTINCTROW a FROM T", false, 0, false, ItemKind::Value},
        {"SELECT DISTINCTROW TOP 5 a FROM T", false, 5, false, ItemKind::Value},
        {"SELECT DISTINCT TOP 5 PERCENT a FROM T", true, 5, true, ItemKind::Value},
        {"SELECT TOP 100 percent * FROM T", false, 100, true, ItemKind::All},
        // Columns that are called so.
        {"SELECT All FROM T", false, 0, false, ItemKind::Value},
        {"SELECT All, a FROM T", false, 0, false, ItemKind::Value},
        {"SELECT All.a FROM [All]", false, 0, false, ItemKind::Value},
        {"SELECT Top FROM T", false, 0, false, ItemKind::Value},
        {"SELECT Top - 1 FROM T", false, 0, false, ItemKind::Value},
        {"SELECT Top - 1 AS x FROM T", false, 0, false, ItemKind::Value},
        {"SELECT Top - 1 * 2 FROM T", false, 0, false, ItemKind::Value},
        {"SELECT TOP 5 Percent FROM T", false, 5, false, ItemKind::Value},
        {"SELECT TOP 5 Percent AS p FROM T", false, 5, false, ItemKind::Value},
        {"SELECT Mod MOD 2 FROM T Limit", false, 0, false, ItemKind::Value},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const Statement parsed = parse(c.text);
        const auto& select = std::get<Select>(parsed);
        EXPECT_EQ(select.distinct, c.distinct);
        EXPECT_EQ(select.top.value_or(0), c.top);
        EXPECT_EQ(select.percent, c.percent);
        EXPECT_EQ(select.items.at(0).kind, c.first);
    }
}

struct Refusal {
    const char* text;
    ErrNo number;
    const char* message;
};

TEST(SqlParser, NamesThePlaceAndWhatWasExpected) {
    static constexpr auto S = ErrNo::Syntax;
    static constexpr auto U = ErrNo::Unsupported;
    static constexpr Refusal cases[] = {
        {"", S,
         "line 1, column 1: expected SELECT, INSERT, UPDATE, DELETE, CREATE, ALTER or DROP, found "
         "the end of the statement"},
        {"  \n ;", S,
         "line 2, column 2: expected SELECT, INSERT, UPDATE, DELETE, CREATE, ALTER or DROP, found "
         ";"},
        {"VACUUM", S,
         "line 1, column 1: expected SELECT, INSERT, UPDATE, DELETE, CREATE, ALTER or DROP, found "
         "VACUUM"},
        {"SELECT", S, "line 1, column 7: expected a column or \"*\", found the end"},
        {"SELECT FROM T", S, "line 1, column 8: expected a column or \"*\", found FROM"},
        {"SELECT * T", S, "line 1, column 10: expected \",\" or FROM, found T"},
        {"SELECT *,", S, "line 1, column 10: expected a column or \"*\""},
        {"SELECT * FROM", S, "line 1, column 14: expected a table, found the end"},
        {"SELECT * FROM WHERE", S, "line 1, column 15: expected a table, found WHERE"},
        {"SELECT * FROM T WHERE", S, "line 1, column 22: expected a column, a literal or \"(\""},
        {"SELECT * FROM T WHERE a =", S, "line 1, column 26: expected a column, a literal"},
        {"SELECT * FROM T WHERE (a = 1", S, "line 1, column 29: expected an operator or \")\""},
        {"SELECT * FROM T WHERE a = 1)", S, "line 1, column 28: expected the end of the statement"},
        {"SELECT * FROM T WHERE a b", S, "line 1, column 25: expected the end of the statement"},
        {"SELECT * FROM T\nWHERE a IS 1", S, "line 2, column 12: expected NULL, found 1"},
        {"SELECT * FROM T WHERE a IN 1", S, "line 1, column 28: expected \"(\", found 1"},
        {"SELECT * FROM T WHERE a IN ()", S, "line 1, column 29: expected a column, a literal"},
        {"SELECT * FROM T WHERE a IN (1 2)", S, "line 1, column 31: expected \",\" or \")\""},
        {"SELECT * FROM T WHERE a BETWEEN 1, 2", S, "line 1, column 34: expected AND, found ,"},
        {"SELECT * FROM T WHERE a NOT 1", S, "line 1, column 25: expected the end of the"},
        {"SELECT * FROM T WHERE a.b.c", S, "line 1, column 26: expected the end of the statement"},
        {"SELECT * FROM T WHERE a.*", S, "line 1, column 25: expected a column, found *"},
        {"SELECT * FROM T ORDER a", S, "line 1, column 23: expected BY, found a"},
        {"SELECT * FROM T ORDER BY a,", S, "line 1, column 28: expected a column"},
        {"SELECT * FROM T; x", S, "line 1, column 18: expected nothing behind the semicolon"},
        {"SELECT * FROM T;;", S, "line 1, column 17: expected nothing behind the semicolon"},
        {"SELECT TOP 0 * FROM T", S, "line 1, column 12: expected a whole number from 1"},
        {"SELECT TOP 1.5 * FROM T", S, "line 1, column 12: expected a whole number from 1"},
        {"SELECT TOP -1 * FROM T", S,
         "line 1, column 12: expected a whole number from 1 behind TOP, found -1"},
        {"SELECT TOP -1 a FROM T", S, "line 1, column 12: expected a whole number from 1"},
        {"SELECT TOP 101 PERCENT a FROM T", S,
         "line 1, column 12: expected a whole number from 1 to 100 behind TOP, found 101"},
        {"SELECT * FROM T LIMIT 5", U,
         "line 1, column 17: LIMIT is not supported, expected TOP and the number behind SELECT"},
        {"SELECT * FROM T WHERE a LIMIT 5", U, "line 1, column 25: LIMIT is not supported"},
        {"SELECT * FROM T ORDER BY a LIMIT 5", U, "line 1, column 28: LIMIT is not supported"},
        {"SELECT a ^ FROM T", S, "line 1, column 12: expected a column, a literal"},
        {"SELECT a MOD FROM T", S, "line 1, column 14: expected a column, a literal"},
        {"SELECT COUNT( FROM T", S, "line 1, column 15: expected a column, a literal"},
        {"SELECT MIN(*) FROM T", S, "line 1, column 12: expected a column, a literal"},
        {"SELECT a AS FROM T", S, "line 1, column 13: expected a name behind AS, found FROM"},
        {"UPDATE T a = 1", S, "line 1, column 10: expected SET, found a"},
        {"UPDATE T SET", S, "line 1, column 13: expected a column, found the end"},
        {"UPDATE T SET a 1", S, "line 1, column 16: expected \"=\", found 1"},
        {"UPDATE T SET a = 1,", S, "line 1, column 20: expected a column"},
        {"UPDATE T SET a = WHERE", S, "line 1, column 18: expected a column, a literal or"},
        {"UPDATE T SET status = \"a\"b\" WHERE (GUID=\"x\");", S,
         "line 1, column 43: expected a closing quote"},
        {"INSERT T VALUES (1)", S, "line 1, column 8: expected INTO, found T"},
        {"INSERT INTO T", S, "line 1, column 14: expected \"(\", VALUES or SELECT, found the end"},
        {"INSERT INTO T () VALUES (1)", S, "line 1, column 16: expected a column, found )"},
        {"INSERT INTO T (a) VALUES ()", S, "line 1, column 27: expected a column, a literal"},
        {"INSERT INTO T VALUES (1), (2)", S, "line 1, column 25: expected the end"},
        {"DELETE T FROM T", S, "line 1, column 10: expected \".\", found FROM"},
        {"DELETE FROM T x", S, "line 1, column 15: expected the end of the statement, found x"},
        {"CREATE VIEW V AS SELECT 1", S, "line 1, column 8: expected TABLE, INDEX or UNIQUE"},
        {"CREATE TABLE T ()", S, "line 1, column 17: expected a column, found )"},
        {"CREATE TABLE T (UNIQUE (a))", S, "line 1, column 14: expected a column or more"},
        {"CREATE TABLE T (a)", S, "line 1, column 18: expected a type such as TEXT(50)"},
        {"CREATE TABLE T (a LONGISH)", S, "line 1, column 19: expected a type such as"},
        {"CREATE TABLE T (a TEXT(0))", S, "line 1, column 24: expected a length from 1 to 255"},
        {"CREATE TABLE T (a TEXT(256))", S, "line 1, column 24: expected a length from 1 to"},
        {"CREATE TABLE T (a DECIMAL(5, 6))", S, "line 1, column 30: expected a scale from 0 to 5"},
        {"CREATE TABLE T (a LONG(4))", S, "line 1, column 23: expected PRIMARY KEY or UNIQUE"},
        {"CREATE TABLE T (a LONG, )", S, "line 1, column 25: expected a column, found )"},
        {"CREATE TABLE T (a LONG NOT)", S, "line 1, column 27: expected NULL, found )"},
        {"CREATE TABLE T (a LONG DEFAULT 1)", U, "line 1, column 24: DEFAULT is not supported"},
        {"CREATE TABLE T (a LONG REFERENCES U)", U, "line 1, column 24: REFERENCES is not"},
        {"CREATE INDEX ON T (a)", S, "line 1, column 17: expected ON, found T"},
        {"CREATE INDEX i ON T (a) WITH NULL", S, "line 1, column 30: expected PRIMARY, DISALLOW"},
        {"ALTER TABLE T DROP COLUMN a", U, "line 1, column 15: DROP is not supported"},
        {"ALTER TABLE T RENAME a", S, "line 1, column 15: expected ADD, found RENAME"},
        {"DROP INDEX i", S, "line 1, column 13: expected ON, found the end of the statement"},
        {"DROP INDEX ON T", S, "line 1, column 15: expected ON, found T"},
        {"DROP T", S, "line 1, column 6: expected TABLE or INDEX, found T"},
        {"SELECT * FROM T, U", U, "line 1, column 16: more than one table"},
        {"SELECT * FROM T INNER JOIN U ON 1", U, "line 1, column 17: INNER is not supported"},
        {"SELECT a FROM T GROUP BY a", U, "line 1, column 17: GROUP is not supported"},
        {"SELECT SUM(a) FROM T", U, "line 1, column 8: no function SUM exists here"},
        {"SELECT * FROM T WHERE Now() > a", U, "line 1, column 23: no function Now exists here"},
    };
    for (const Refusal& c : cases) {
        SCOPED_TRACE(c.text);
        const auto error = caught([&] { parse(c.text); });
        EXPECT_EQ(error.number, c.number);
        EXPECT_THAT(error.text, testing::StartsWith(c.message));
    }
}

std::string repeated(const std::string& piece, int times) {
    std::string out;
    for (int i = 0; i < times; ++i) {
        out += piece;
    }
    return out;
}

TEST(SqlParser, RefusesNestingBeyondTheLimit) {
    const auto brackets = [](int n) { return repeated("(", n) + "a" + repeated(")", n); };
    EXPECT_EQ(whereOf(brackets(kMaxDepth - 1)), "a");
    for (const std::string& text :
         {brackets(kMaxDepth), brackets(100'000), repeated("NOT ", 100'000) + "a",
          repeated("-", 100'000) + "a", "a" + repeated("+a", 100'000),
          "a" + repeated("=a", 100'000), "a" + repeated(" IS NULL", 100'000),
          repeated("(a AND b OR ", 100'000), repeated("a IN (", 100'000),
          repeated("a BETWEEN (", 100'000)}) {
        SCOPED_TRACE(text.substr(0, 30));
        const auto error = caught([&] { whereOf(text); });
        EXPECT_EQ(error.number, ErrNo::Syntax);
        EXPECT_THAT(error.text, testing::HasSubstr("at most 200 levels"));
    }
}

TEST(SqlParser, LongChainsAreNotDeep) {
    const Statement s =
        parse("SELECT * FROM T WHERE a=0" + repeated(" OR a=1", 50'000) + repeated(" AND b", 9));
    EXPECT_EQ(std::get<Select>(s).where->operands.size(), 50'001U);
}

}  // namespace
}  // namespace vl::sql
