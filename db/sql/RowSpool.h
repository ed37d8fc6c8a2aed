// Rows that are kept until somebody takes them, however many they are.
#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/Variant.h"
#include "db/jet/TemporaryFile.h"

namespace vl::sql {

/// Keeps rows as bytes: in memory up to a bound, what comes beyond it in a temporary file. A single
/// row may be longer than the bound. Values are those of a result: no objects.
class RowSpool {
public:
    static constexpr std::size_t kMostInMemory = std::size_t{4} << 20;

    explicit RowSpool(std::size_t mostInMemory = kMostInMemory) : most_(mostInMemory) {}

    /// Forgets all rows.
    void clear() noexcept;

    /// Throws `Error` (`ErrNo::Io`) when the temporary file cannot be written.
    void add(const std::vector<Variant>& row);

    using Take = std::function<void(const std::vector<Variant>& row)>;
    /// Gives all rows in their order, one in memory at a time; may be called again. Throws `Error`
    /// (`ErrNo::Io`), and what `take` throws.
    void forEach(const Take& take);

private:
    void moveToFile();
    std::string fromFile();

    std::size_t most_;
    std::string memory_;  // the rows behind those of the file, each after its length
    std::unique_ptr<std::FILE, jet::CloseFile> file_;  // null until it is needed
    std::size_t rowsInFile_ = 0;
    std::size_t rowsInMemory_ = 0;
};

}  // namespace vl::sql
