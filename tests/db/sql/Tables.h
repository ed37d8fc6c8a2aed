// Tables in memory that several tests read and change.
#pragma once

#include "Memory.h"

namespace vl::sql::test {

/// Texts that differ in case and blanks only, nulls, and sums that sort otherwise as texts.
inline MemoryTable people() {
    using jet::ColumnType;
    return {{"People",
             {column("Name", ColumnType::Text, 100), column("Age", ColumnType::Long, 4),
              column("Town", ColumnType::Text, 100), column("Pay", ColumnType::Money, 8)}},
            {{"Ann", 30, "Bonn", "9.5000"},
             {"bob", 25, "KIEL", "10.0000"},
             {"Cid", Null{}, Null{}, Null{}},
             {"Dora", 30, "kiel ", "100.0000"},
             {"Eve", 41, "Bonn", "-1.0000"}}};
}

/// Two rows with a column of every kind; `Nothing` is null, `No` numbers the rows itself, `T` has
/// room for five characters.
inline MemoryTable kinds() {
    using jet::ColumnType;
    jet::Column number = column("No", ColumnType::Long, 4);
    number.autoNumber = true;
    const auto row = [](int no, int l) {
        return Row{no,     no == 1, 1,         2,
                   l,      4.0,     2.5,       DateTime::fromCivil(2026, 11, 15, 14, 30),
                   "Abc ", "eight", "10.5000", Bytes{std::byte{1}, std::byte{2}},
                   Null{}, 7,       Null{},    "{00000000-0000-0000-0000-00000000000A}"};
    };
    return {{"T",
             {number, column("Flag", ColumnType::Boolean, 1), column("B", ColumnType::Byte, 1),
              column("I", ColumnType::Integer, 2), column("L", ColumnType::Long, 4),
              column("S", ColumnType::Single, 4), column("X", ColumnType::Double, 8),
              column("D", ColumnType::Date, 8), column("T", ColumnType::Text, 10),
              column("M", ColumnType::Memo), column("Pay", ColumnType::Money, 8),
              column("Raw", ColumnType::Binary, 20), column("Odd", ColumnType::Complex, 4),
              column("N", ColumnType::Long, 4), column("Nothing", ColumnType::Text, 510),
              column("Id", ColumnType::Guid, 16)}},
            {row(1, 3), row(2, 30)}};
}

inline std::vector<std::string> firstColumn(const Result& result) {
    std::vector<std::string> values;
    for (const Row& row : result.rows) {
        values.push_back(row.at(0).isNull() ? "Null" : row.at(0).toText());
    }
    return values;
}

}  // namespace vl::sql::test
