// Random changes of all kinds to the tables of all files there are.
#include <cstdlib>
#include <iostream>

#include <gtest/gtest.h>

#include "Mdb.h"
#include "Pages.h"
#include "RandomRows.h"
#include "Rows.h"
#include "base/Text.h"
#include "db/jet/Transaction.h"
#include "db/jet/check/Check.h"
#include "db/jet/define/NewTable.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using jet::Access;
using jet::ColumnType;
using jet::Table;
using test::below;
using test::Disk;
using test::Model;
using test::Random;
using test::randomValue;
using Change = Table::Change;

std::size_t fromEnvironment(const char* name, std::size_t otherwise) {
    const char* text = std::getenv(name);
    return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

struct Counts {
    int files = 0;
    int tables = 0;
    std::size_t inserts = 0;
    std::size_t updates = 0;
    std::size_t removes = 0;
    std::size_t refused = 0;
    std::size_t takenBack = 0;
    std::size_t compared = 0;  // rows that the other reader read
};

std::string textOf(const std::vector<jet::Finding>& findings) {
    std::string text;
    for (const jet::Finding& finding : findings) {
        text += "page " + std::to_string(finding.page) + ": " + finding.what + "\n";
    }
    return text;
}

// It does not put the halves of characters beyond U+FFFF together.
std::string asTheyPrint(const std::string& s) {
    std::string text;
    for (std::size_t at = 0; at < s.size();) {
        const char32_t c = text::nextCharacter(s, at);
        if (c > 0xFFFF) {
            text += "??";
        } else {
            text::appendCharacter(text, c);
        }
    }
    return text;
}

// Whether the other reader's value is ours. It cuts long texts off and prints bytes in its own way:
// these are left out.
bool sameAsTheirs(const nlohmann::json& row, const jet::Column& column, const Variant& value) {
    if (column.type == ColumnType::Ole || column.type == ColumnType::Binary ||
        column.type == ColumnType::Block || column.type == ColumnType::Guid) {
        return true;
    }
    if (value.isNull() || value == Variant("")) {
        return !row.contains(column.name) || row.at(column.name) == "";
    }
    if (!row.contains(column.name)) {
        return false;
    }
    const nlohmann::json& theirs = row.at(column.name);
    if (const auto* date = value.get<DateTime>()) {
        const std::string day = formatDateTime(*date);
        return theirs == (day.size() == 10 ? day + " 00:00:00" : day);
    }
    if (const auto* flag = value.get<bool>()) {
        return theirs == (*flag ? 1 : 0);
    }
    if (column.type == ColumnType::Text || column.type == ColumnType::Memo) {
        return theirs == asTheyPrint(*value.get<std::string>());
    }
    const double ours = value.toDouble();
    return std::abs(theirs.get<double>() - ours) <= 1e-6 * std::abs(ours);
}

// The columns in which a row of theirs is another than ours.
std::vector<std::size_t> differences(const nlohmann::json& theirs, const Table& table,
                                     const Model::Row& row, std::size_t most) {
    std::vector<std::size_t> columns;
    for (std::size_t i = 0; i < row.size() && columns.size() < most; ++i) {
        if (!sameAsTheirs(theirs, table.columns()[i], row[i])) {
            columns.push_back(i);
        }
    }
    return columns;
}

// What is nearest to a row that none of theirs is.
std::string nearest(const std::vector<nlohmann::json>& theirs, const Table& table,
                    const Model::Row& row) {
    std::string text;
    std::size_t least = row.size() + 1;
    for (const nlohmann::json& candidate : theirs) {
        const std::vector<std::size_t> columns = differences(candidate, table, row, row.size());
        if (columns.size() < least) {
            least = columns.size();
            text.clear();
            for (const std::size_t i : columns) {
                const jet::Column& column = table.columns()[i];
                text += column.name + ": " + (row[i].isNull() ? "null" : row[i].toText()) +
                        "\ntheirs: " + candidate.value(column.name, nlohmann::json()).dump() + "\n";
            }
        }
    }
    return text;
}

void expectTheySee(const Disk& disk, const Table& table, const Model& model, Counts& counts) {
    const test::TempFolder folder;
    const fs::path path = folder / "copy.mdb";
    test::writeFile(
        path, std::string(reinterpret_cast<const char*>(disk.bytes.data()), disk.bytes.size()));
    const auto theirs = test::mdbRows(path, table.name());
    ASSERT_EQ(theirs.size(), model.rows().size());
    // Moved rows come where they have moved to.
    std::vector<bool> taken(theirs.size());
    std::size_t first = 0;
    for (const auto& [id, row] : model.rows()) {
        std::size_t n = first;
        while (n < theirs.size() && (taken[n] || !differences(theirs[n], table, row, 1).empty())) {
            ++n;
        }
        ASSERT_LT(n, theirs.size())
            << "row " << id.second << " on page " << id.first << " of ours is none of theirs\n"
            << nearest(theirs, table, row);
        taken[n] = true;
        while (first < taken.size() && taken[first]) {
            ++first;
        }
    }
    counts.compared += theirs.size();
}

/// Changes to one table, and what it holds meanwhile.
class Run {
public:
    Run(jet::Database& db, Table& table, jet::ColumnRules rules, Random& random, Counts& counts)
        : db_(db),
          table_(table),
          random_(random),
          counts_(counts),
          model_(table, std::move(rules)) {}

    const Model& model() const { return model_; }

    // Some changes in one transaction, which now and then is taken back.
    void batch(int steps) {
        const Model before = model_;
        jet::Transaction change(db_);
        for (int i = 0; i < steps && !testing::Test::HasFatalFailure(); ++i) {
            step();
        }
        if (below(random_, 5) == 0) {
            model_ = before;
            ++counts_.takenBack;
        } else {
            change.commit();
        }
    }

private:
    void step() {
        const std::size_t kind = below(random_, 10);
        const std::size_t rows = model_.rows().size();
        if (rows == 0 || (kind < 4 && rows < 400)) {
            insert();
        } else if (kind < 8) {
            update();
        } else {
            const jet::RowId id = model_.anyRow(random_);
            if (errorOf([&] { table_.remove(id); }) == ErrNo::None) {
                model_.remove(id);
                ++counts_.removes;
            } else {
                ++counts_.refused;
                ASSERT_TRUE(isReferredTo()) << text_;
            }
        }
    }

    void insert() {
        std::vector<Change> changes;
        Model::Row row;
        for (std::size_t i = 0; i < table_.columns().size(); ++i) {
            const jet::Column& column = table_.columns()[i];
            row.push_back(column.type == ColumnType::Boolean ? Variant(false) : Variant(Null{}));
            if (!column.autoNumber && below(random_, 4) != 0) {
                row[i] = randomValue(random_, column);
                changes.emplace_back(i, row[i]);
            }
        }
        jet::RowId id;
        const ErrNo error = errorOf([&] { id = table_.insert(changes); });
        if (error == ErrNo::None) {
            takeNumbers(id, row);
            ASSERT_FALSE(model_.refuses(row, nullptr));
            ASSERT_FALSE(model_.rows().contains({id.page, id.row}));
            model_.put(id, std::move(row));
            ++counts_.inserts;
        } else {
            expectRefused(error, row, nullptr);
        }
    }

    // What the table itself has put into a row.
    void takeNumbers(jet::RowId id, Model::Row& row) {
        for (std::size_t i = 0; i < table_.columns().size(); ++i) {
            if (table_.columns()[i].autoNumber) {
                jet::RowCursor cursor = table_.scan();
                while (cursor.next() && cursor.id() != id) {
                }
                row[i] = cursor.value(i);
                ASSERT_FALSE(row[i].isNull());
            }
        }
    }

    void update() {
        const jet::RowId id = model_.anyRow(random_);
        std::vector<Change> changes;
        const std::size_t columns = 1 + below(random_, 4);
        for (std::size_t i = 0; i < columns; ++i) {
            const std::size_t position = below(random_, table_.columns().size());
            if (!table_.columns()[position].autoNumber) {
                changes.emplace_back(position, randomValue(random_, table_.columns()[position]));
            }
        }
        const Model::Row& before = model_.rows().at({id.page, id.row});
        Model::Row row = model_.changed(before, changes);
        const ErrNo error = errorOf([&] { table_.update(id, changes); });
        if (error == ErrNo::None) {
            ASSERT_FALSE(model_.refuses(row, &before));
            model_.put(id, std::move(row));
            ++counts_.updates;
        } else {
            expectRefused(error, row, &before);
        }
    }

    void expectRefused(ErrNo error, const Model::Row& row, const Model::Row* before) {
        ++counts_.refused;
        if (error == ErrNo::Overflow || isReferredTo()) {
            return;  // too many long texts for one row, or a row that others depend on
        }
        ASSERT_TRUE(error == ErrNo::Exists || error == ErrNo::TypeMismatch) << text_;
        ASSERT_TRUE(model_.refuses(row, before));
    }

    // Whether a relationship was the last error's reason.
    bool isReferredTo() const { return text_.find("relationship") != std::string::npos; }

    template <class Step>
    ErrNo errorOf(Step&& step) {
        try {
            step();
        } catch (const Error& e) {
            text_ = e.what();
            return e.number();
        }
        return ErrNo::None;
    }

    std::string text_;  // of the last error
    jet::Database& db_;
    Table& table_;
    Random& random_;
    Counts& counts_;
    Model model_;
};

jet::ColumnRules rulesOf(Disk& disk, const jet::Database& db, const std::string& name) {
    jet::PageFile file = test::pagesOf(disk);
    for (const jet::TableInfo& info : db.tables()) {
        if (info.name == name) {
            return jet::ColumnRules::load(
                file, jet::readTableDefinition(file, info.definitionPage, name));
        }
    }
    return {};
}

void changeTable(const std::string& bytes, const std::string& name, std::size_t batches,
                 Random& random, Counts& counts) {
    SCOPED_TRACE(name);
    Disk disk(bytes);
    auto db = test::openMemory(disk, Access::ReadWrite);
    Table table = db.table(name);
    Run run(db, table, rulesOf(disk, db, name), random, counts);
    ++counts.tables;
    for (std::size_t i = 0; i < batches && !testing::Test::HasFatalFailure(); ++i) {
        SCOPED_TRACE(testing::Message() << "batch " << i);
        run.batch(40);
        run.model().expectSame();
        ASSERT_EQ(textOf(checkDatabase(db)), "");
        if (i % 4 == 3) {
            expectTheySee(disk, table, run.model(), counts);
        }
    }
}

// Every type of column, indexes of every kind on most of them.
std::string tableOfAllTypes() {
    const test::TempFolder folder;
    const fs::path path = folder / "all.mdb";
    {
        auto db = jet::Database::create(path.string());
        std::vector<jet::NewColumn> columns;
        std::vector<jet::NewIndex> indexes;
        const auto column = [&](const char* name, ColumnType type) -> jet::NewColumn& {
            columns.push_back({});
            columns.back().name = name;
            columns.back().type = type;
            return columns.back();
        };
        const auto index = [&](std::vector<jet::IndexColumn> parts) -> jet::NewIndex& {
            indexes.push_back({});
            indexes.back().name = "I" + std::to_string(indexes.size());
            indexes.back().columns = std::move(parts);
            return indexes.back();
        };
        column("Id", ColumnType::Long).autoNumber = true;
        column("Flag", ColumnType::Boolean);
        column("Small", ColumnType::Byte);
        column("Int", ColumnType::Integer);
        column("Long", ColumnType::Long);
        column("Money", ColumnType::Money);
        column("Single", ColumnType::Single);
        column("Double", ColumnType::Double);
        column("Date", ColumnType::Date);
        column("Text", ColumnType::Text);
        column("Short", ColumnType::Text).length = 20;
        column("Needed", ColumnType::Text).required = true;
        column("Full", ColumnType::Text).allowZeroLength = false;
        column("Memo", ColumnType::Memo);
        column("Memo2", ColumnType::Memo);
        column("Ole", ColumnType::Ole);
        column("Bytes", ColumnType::Binary).length = 40;
        column("Guid", ColumnType::Guid);
        jet::NewColumn& numeric = column("Numeric", ColumnType::Numeric);
        numeric.precision = 20;
        numeric.scale = 4;
        index({{"Id", false}}).primary = true;
        index({{"Long", true}});
        index({{"Short", false}, {"Int", true}}).unique = true;
        index({{"Text", false}}).ignoreNulls = true;
        index({{"Text", true}});
        index({{"Memo2", false}});
        index({{"Flag", false}, {"Date", true}});
        index({{"Money", false}, {"Small", true}});
        index({{"Single", false}});
        index({{"Double", true}});
        index({{"Guid", false}, {"Bytes", true}}).ignoreNulls = true;
        index({{"Numeric", false}});
        db.createTable("All", columns, indexes);
    }
    return test::readFile(path);
}

TEST(JetRandomRows, TablesHoldWhatTheyShould) {
    const std::size_t seed = fromEnvironment("VL_SEED", 20261121);
    const std::size_t batches = fromEnvironment("VL_ROW_BATCHES", 12);
    Random random(seed);
    Counts counts;
    std::vector<std::pair<std::string, std::string>> files = {
        {"first-light", test::firstLight()},
        {"generated-reminders", test::generated()},
        {"all types", tableOfAllTypes()}};
    if (const fs::path shared = test::sharedFolder(); !shared.empty()) {
        for (const auto& file : fs::directory_iterator(shared / "jet4" / "samples")) {
            if (file.is_regular_file() && file.path().extension() == ".mdb") {
                files.emplace_back(file.path().filename().string(), test::readFile(file.path()));
            }
        }
    }
    std::sort(files.begin(), files.end());
    for (const auto& [name, bytes] : files) {
        SCOPED_TRACE(name);
        Disk disk(bytes);
        const auto db = test::openMemory(disk);
        for (const jet::TableInfo& info : db.tables()) {
            if (!info.system) {
                changeTable(bytes, info.name, batches, random, counts);
            }
            if (HasFatalFailure()) {
                std::cout << "seed " << seed << '\n';
                return;
            }
        }
        ++counts.files;
    }
    std::cout << "seed " << seed << ": " << counts.files << " files, " << counts.tables
              << " tables, " << counts.inserts << " inserts, " << counts.updates << " updates, "
              << counts.removes << " removes, " << counts.refused << " refused, "
              << counts.takenBack << " transactions taken back, " << counts.compared
              << " rows read by another reader\n";
}

}  // namespace
}  // namespace vl
