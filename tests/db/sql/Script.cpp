#include "Script.h"

#include <algorithm>
#include <cstdio>

namespace vl::sql::test {

namespace {

constexpr std::size_t kMostTables = 4;
constexpr std::size_t kMostColumns = 9;
constexpr int kMostIndexes = 6;

std::string join(const std::vector<std::string>& parts) {
    std::string out;
    for (const std::string& part : parts) {
        out += (out.empty() ? "" : ", ") + part;
    }
    return out;
}

std::string ourType(Kind kind) {
    switch (kind) {
        case Kind::Whole:
            return "LONG";
        case Kind::Real:
            return "DOUBLE";
        case Kind::Text:
            return "TEXT(60)";
        case Kind::Memo:
            return "MEMO";
        case Kind::Date:
            return "DATETIME";
        case Kind::Flag:
            return "YESNO";
    }
    return {};
}

std::string theirType(Kind kind) {
    switch (kind) {
        case Kind::Whole:
            return "INTEGER";
        case Kind::Real:
            return "REAL";
        case Kind::Flag:
            return "INTEGER NOT NULL DEFAULT 0";
        default:
            return "TEXT COLLATE NOCASE";
    }
}

bool isText(Kind kind) { return kind == Kind::Text || kind == Kind::Memo; }

}  // namespace

Script::Both Script::literal(Kind kind) {
    if (kind != Kind::Flag && random_.oneIn(8)) {
        return {"Null", "NULL"};
    }
    switch (kind) {
        case Kind::Whole: {
            const std::string number = std::to_string(static_cast<int>(random_.below(40)) - 10);
            return {number, number};
        }
        case Kind::Real: {
            const std::string number = std::to_string(random_.below(100)) + ".5";
            return {number, number};
        }
        case Kind::Text:
        case Kind::Memo: {
            static constexpr const char* kTexts[] = {"Ann", "ann", "BOB", "bob",  "Zoe",  "x1",
                                                     "X10", "9",   "",    "Maya", "maYa2"};
            const std::string text = random_.pick(kTexts);
            // Now and then too long for its row's page to keep it in place.
            const std::string longer(
                kind == Kind::Memo && random_.oneIn(5) ? 300 + random_.below(5000) : 0, 'q');
            return {"\"" + text + longer + "\"", "'" + text + longer + "'"};
        }
        case Kind::Date: {
            char day[32];
            std::snprintf(day, sizeof day, "2026-%02d-%02d",
                          1 + static_cast<int>(random_.below(12)),
                          1 + static_cast<int>(random_.below(28)));
            const std::string time = random_.oneIn(2) ? "00:00:00" : "14:30:05";
            return {"#" + (std::string(day) + " ") + time + "#",
                    "'" + (std::string(day) + " ") + time + "'"};
        }
        case Kind::Flag:
            return random_.oneIn(2) ? Both{"True", "-1"} : Both{"0", "0"};
    }
    return {};
}

// What a column can be set to: a literal, or something made of the row's own values.
Script::Both Script::value(const ScriptTable& table, const ScriptColumn& column) {
    if (random_.oneIn(2)) {
        return literal(column.kind);
    }
    std::vector<ScriptColumn> same;
    std::copy_if(table.columns.begin() + 1, table.columns.end(), std::back_inserter(same),
                 [&](const ScriptColumn& other) { return other.kind == column.kind; });
    if (same.empty()) {
        return literal(column.kind);
    }
    const std::string name = random_.any(same).name;
    switch (column.kind) {
        case Kind::Whole:
            return {name + " + 3", name + " + 3"};
        case Kind::Real:
            return {"2.25 - " + name, "2.25 - " + name};
        case Kind::Date:
            return {name + " + 1", "datetime(" + name + ", '+1 day')"};
        case Kind::Flag: {
            const Both both = test(table);
            return {"(" + both.ours + ")", "COALESCE(-(" + both.theirs + "), 0)"};
        }
        default:
            return {name, name};
    }
}

Script::Both Script::test(const ScriptTable& table) {
    const ScriptColumn& column = random_.any(table.columns);
    const std::string& name = column.name;
    static constexpr const char* kOps[] = {"=", "<>", "<", "<=", ">", ">="};
    switch (random_.below(column.kind == Kind::Flag ? 2 : 6)) {
        case 0:
            if (column.kind == Kind::Flag) {
                return {name, name + " <> 0"};
            }
            return random_.oneIn(2) ? Both{name + " IS NULL", name + " IS NULL"}
                                    : Both{name + " IS NOT NULL", name + " IS NOT NULL"};
        case 1: {
            const Both other = literal(column.kind);
            const std::string op = column.kind == Kind::Flag ? " = " : " <> ";
            return {name + op + other.ours, name + op + other.theirs};
        }
        case 2: {
            const Both low = literal(column.kind);
            const Both high = literal(column.kind);
            return {name + " BETWEEN " + low.ours + " AND " + high.ours,
                    name + " BETWEEN " + low.theirs + " AND " + high.theirs};
        }
        case 3: {
            std::vector<std::string> ours;
            std::vector<std::string> theirs;
            for (std::size_t n = 1 + random_.below(4); n > 0; --n) {
                const Both item = literal(column.kind);
                ours.push_back(item.ours);
                theirs.push_back(item.theirs);
            }
            return {name + " IN (" + join(ours) + ")", name + " IN (" + join(theirs) + ")"};
        }
        case 4:
            if (isText(column.kind)) {
                return random_.oneIn(2) ? Both{name + " LIKE \"*a*\"", name + " LIKE '%a%'"}
                                        : Both{name + " LIKE \"?o?\"", name + " LIKE '_o_'"};
            }
            [[fallthrough]];
        default: {
            const Both other = literal(column.kind);
            const std::string op = random_.pick(kOps);
            return {name + " " + op + " " + other.ours, name + " " + op + " " + other.theirs};
        }
    }
}

Script::Both Script::condition(const ScriptTable& table, int depth) {
    if (depth == 0 || random_.oneIn(3)) {
        return test(table);
    }
    if (random_.oneIn(4)) {
        const Both inner = condition(table, depth - 1);
        return {"NOT (" + inner.ours + ")", "NOT (" + inner.theirs + ")"};
    }
    const Both a = condition(table, depth - 1);
    const Both b = condition(table, depth - 1);
    const std::string op = random_.oneIn(3) ? ") OR (" : ") AND (";
    return {"(" + a.ours + op + b.ours + ")", "(" + a.theirs + op + b.theirs + ")"};
}

Script::Both Script::where(const ScriptTable& table) {
    if (random_.oneIn(10)) {
        return {};
    }
    const Both both = condition(table, 2);
    return {" WHERE " + both.ours, " WHERE " + both.theirs};
}

ScriptColumn Script::newColumn(int number, bool mayBeUnique) {
    static constexpr Kind kKinds[] = {Kind::Whole, Kind::Real, Kind::Text,
                                      Kind::Memo,  Kind::Date, Kind::Flag};
    ScriptColumn column{"c" + std::to_string(number), random_.pick(kKinds)};
    column.unique = mayBeUnique && column.kind == Kind::Text && random_.oneIn(4);
    return column;
}

ScriptStatement Script::create() {
    ScriptTable table{"T" + std::to_string(++created_), {{"id", Kind::Whole, true}}};
    std::string ours = "CREATE TABLE " + table.name + " (id LONG CONSTRAINT pk PRIMARY KEY";
    std::string theirs = "CREATE TABLE " + table.name + " (id INTEGER PRIMARY KEY";
    for (int i = 1; i <= 2 + static_cast<int>(random_.below(4)); ++i) {
        const ScriptColumn column = newColumn(i, true);
        const char* unique = column.unique ? " UNIQUE" : "";
        ours += ", " + column.name + " " + ourType(column.kind) + unique;
        theirs += ", " + column.name + " " + theirType(column.kind) + unique;
        table.columns.push_back(column);
    }
    changed_ = table;
    return {What::Create, ours + ")", theirs + ")", table.name};
}

ScriptStatement Script::addColumn(const ScriptTable& table) {
    changed_ = table;
    const ScriptColumn column = newColumn(static_cast<int>(table.columns.size()), false);
    changed_.columns.push_back(column);
    const std::string start = "ALTER TABLE " + table.name + " ADD COLUMN " + column.name + " ";
    return {What::AddColumn, start + ourType(column.kind), start + theirType(column.kind),
            table.name};
}

// Two rows with the same value make a unique one fail in both.
ScriptStatement Script::index(const ScriptTable& table) {
    changed_ = table;
    const std::string name = table.name + "i" + std::to_string(++changed_.indexes);
    std::vector<std::string> keys;
    std::vector<std::size_t> places;
    for (std::size_t n = 1 + random_.below(2); n > 0; --n) {
        const std::size_t place = random_.below(table.columns.size());
        const bool taken = std::find(places.begin(), places.end(), place) != places.end();
        if (!taken && table.columns[place].kind != Kind::Memo) {
            places.push_back(place);
            keys.push_back(table.columns[place].name + (random_.oneIn(3) ? " DESC" : ""));
        }
    }
    if (keys.empty()) {
        places.push_back(0);
        keys.emplace_back("id");
    }
    ScriptColumn& first = changed_.columns[places[0]];
    const bool unique = keys.size() == 1 && first.kind != Kind::Flag && random_.oneIn(4);
    first.unique = first.unique || unique;
    const std::string middle = std::string(unique ? "UNIQUE " : "") + "INDEX " + name + " ON " +
                               table.name + " (" + join(keys) + ")";
    return {What::Index, "CREATE " + middle + (random_.oneIn(3) ? " WITH IGNORE NULL" : ""),
            "CREATE " + middle, table.name};
}

ScriptStatement Script::insert(const ScriptTable& table) {
    std::vector<std::string> names;
    std::vector<std::string> ours;
    std::vector<std::string> theirs;
    for (const ScriptColumn& column : table.columns) {
        if (column.name == "id") {
            names.push_back(column.name);
            ours.push_back(std::to_string(random_.below(2000)));
            theirs.push_back(ours.back());
        } else if (!random_.oneIn(4)) {
            const Both both = literal(column.kind);
            names.push_back(column.name);
            ours.push_back(both.ours);
            theirs.push_back(both.theirs);
        }
    }
    const std::string start = "INSERT INTO " + table.name + " (" + join(names) + ") VALUES (";
    return {What::Insert, start + join(ours) + ")", start + join(theirs) + ")", table.name};
}

ScriptStatement Script::insertSelect(const ScriptTable& table) {
    const ScriptTable& source = anyTable();
    std::vector<std::string> names = {"id"};
    std::vector<std::string> values = {"id + " + std::to_string(1 + random_.below(3000))};
    for (const ScriptColumn& column : table.columns) {
        const auto same =
            std::find_if(source.columns.begin() + 1, source.columns.end(),
                         [&](const ScriptColumn& other) { return other.kind == column.kind; });
        if (column.name != "id" && same != source.columns.end() && !column.unique) {
            names.push_back(column.name);
            values.push_back(same->name);
        }
    }
    const Both condition = where(source);
    const std::string start = "INSERT INTO " + table.name + " (" + join(names) + ") SELECT " +
                              join(values) + " FROM " + source.name;
    return {What::InsertSelect, start + condition.ours, start + condition.theirs, table.name};
}

// A unique column is changed in one row only: whether a row may take the value that another one
// gives up is a matter of which comes first.
ScriptStatement Script::update(const ScriptTable& table) {
    std::vector<std::string> ours;
    std::vector<std::string> theirs;
    bool oneRow = false;
    for (const ScriptColumn& column : table.columns) {
        if (column.name == "id" || !random_.oneIn(3)) {
            continue;
        }
        const Both both = value(table, column);
        ours.push_back(column.name + " = " + both.ours);
        theirs.push_back(column.name + " = " + both.theirs);
        oneRow = oneRow || column.unique;
    }
    if (ours.empty()) {
        ours.emplace_back("id = id + 5000");  // refused where the number is taken
        theirs = ours;
        oneRow = true;
    }
    Both condition = where(table);
    if (oneRow) {
        const std::string id = " WHERE id = " + std::to_string(random_.below(2000));
        condition = {id, id};
    }
    const std::string start = "UPDATE " + table.name + " SET ";
    return {What::Update, start + join(ours) + condition.ours,
            start + join(theirs) + condition.theirs, table.name};
}

ScriptStatement Script::remove(const ScriptTable& table) {
    const Both both = condition(table, 2);
    const std::string where = " FROM " + table.name + " WHERE ";
    return {What::Delete, (random_.oneIn(2) ? "DELETE *" : "DELETE") + where + both.ours,
            "DELETE" + where + both.theirs, table.name};
}

ScriptStatement Script::aggregate(const ScriptTable& table) {
    const std::string& name = random_.any(table.columns).name;
    const std::string start = "SELECT COUNT(*), COUNT(" + name + "), MIN(" + name + "), MAX(" +
                              name + ") FROM " + table.name;
    const Both condition = where(table);
    return {What::Select, start + condition.ours, start + condition.theirs, {}, true, true};
}

ScriptStatement Script::select(const ScriptTable& table) {
    if (random_.oneIn(4)) {
        return aggregate(table);
    }
    const bool distinct = random_.oneIn(4);
    std::vector<std::string> names;
    for (const ScriptColumn& column : table.columns) {
        if (random_.oneIn(2)) {
            names.push_back((random_.oneIn(2) ? table.name + "." : "") + column.name);
        }
    }
    if (names.empty() || !distinct) {
        names.emplace_back("id + 1");
    }
    const Both condition = where(table);
    const std::string list = (distinct ? "DISTINCT " : "") + join(names);
    Both order;
    std::string top;
    if (!distinct && random_.oneIn(2)) {
        order.ours = " ORDER BY " + random_.any(table.columns).name +
                     (random_.oneIn(2) ? " DESC" : "") + ", id";
        order.theirs = order.ours;
        if (random_.oneIn(2)) {
            const std::string count = std::to_string(1 + random_.below(9));
            top = "TOP " + count + " ";
            order.theirs += " LIMIT " + count;
        }
    }
    const std::string from = " FROM " + table.name;
    return {What::Select,
            "SELECT " + top + list + from + condition.ours + order.ours,
            "SELECT " + list + from + condition.theirs + order.theirs,
            {},
            !order.ours.empty(),
            distinct};
}

ScriptStatement Script::next() {
    if (tables_.empty() || (tables_.size() < kMostTables && random_.oneIn(60))) {
        return create();
    }
    const ScriptTable& table = anyTable();
    switch (random_.below(20)) {
        case 0:
            if (table.columns.size() < kMostColumns) {
                return addColumn(table);
            }
            break;
        case 1:
            if (table.indexes < kMostIndexes) {
                return index(table);
            }
            break;
        case 2:
            if (random_.oneIn(12)) {
                return {What::Drop, "DROP TABLE " + table.name, "DROP TABLE " + table.name,
                        table.name};
            }
            break;
        case 3:
        case 4:
            return remove(table);
        case 5:
            return insertSelect(table);
        case 6:
        case 7:
        case 8:
        case 9:
            return update(table);
        case 10:
        case 11:
        case 12:
        case 13:
            return select(table);
        default:
            break;
    }
    return insert(table);
}

void Script::succeeded(const ScriptStatement& statement) {
    const auto table = std::find_if(
        tables_.begin(), tables_.end(),
        [&](const ScriptTable& candidate) { return candidate.name == statement.table; });
    switch (statement.what) {
        case What::Create:
            tables_.push_back(changed_);
            break;
        case What::AddColumn:
        case What::Index:
            *table = changed_;
            break;
        case What::Drop:
            tables_.erase(table);
            break;
        default:
            break;
    }
}

}  // namespace vl::sql::test
