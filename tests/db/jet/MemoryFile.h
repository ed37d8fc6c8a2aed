// A file in memory, for the engine's file layer.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/ErrorState.h"
#include "db/jet/Database.h"
#include "support/ErrorOf.h"

namespace vl::test {

/// What a `MemoryFile` works on, kept by the test.
struct Disk {
    std::vector<std::byte> bytes;
    int writes = 0;
    int flushes = 0;
    /// Writes and flushes in their order ("w", "f").
    std::string log;
    /// The operation (write or flush) that fails, counted from 1; 0 none.
    int failAt = 0;

    explicit Disk(const std::string& content) {
        const auto* begin = reinterpret_cast<const std::byte*>(content.data());
        bytes.assign(begin, begin + content.size());
    }
};

class MemoryFile : public jet::File {
public:
    explicit MemoryFile(Disk& disk) : disk_(disk) {}

    std::uint64_t size() const override { return disk_.bytes.size(); }
    // Tests change the bytes by hand, too.
    std::int64_t modified() const override {
        const std::string_view bytes(reinterpret_cast<const char*>(disk_.bytes.data()),
                                     disk_.bytes.size());
        return static_cast<std::int64_t>(std::hash<std::string_view>()(bytes) >> 1U);
    }
    void read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        if (offset + bytes.size() > disk_.bytes.size()) {
            throw Error(ErrNo::Io, "memory: ends before");
        }
        std::copy_n(disk_.bytes.begin() + static_cast<std::ptrdiff_t>(offset), bytes.size(),
                    bytes.begin());
    }
    void write(std::uint64_t offset, jet::ByteView bytes) override {
        ++disk_.writes;
        operation('w');
        if (offset + bytes.size() > disk_.bytes.size()) {
            disk_.bytes.resize(offset + bytes.size());
        }
        std::copy(bytes.begin(), bytes.end(),
                  disk_.bytes.begin() + static_cast<std::ptrdiff_t>(offset));
    }
    void truncate(std::uint64_t size) override {
        operation('t');
        disk_.bytes.resize(size);
    }
    // Nobody else has it.
    bool tryLock(std::uint64_t, std::uint64_t, jet::LockKind) override { return true; }
    void unlock(std::uint64_t, std::uint64_t) noexcept override {}
    bool heldByOthers(std::uint64_t) override { return false; }
    void flush() override {
        ++disk_.flushes;
        operation('f');
    }

private:
    void operation(char kind) {
        disk_.log += kind;
        if (static_cast<int>(disk_.log.size()) == disk_.failAt) {
            throw Error(ErrNo::Io, "memory: refused");
        }
    }

    Disk& disk_;
};

inline jet::Database openMemory(Disk& disk, jet::Access access = jet::Access::Read) {
    return jet::Database::open(std::make_unique<MemoryFile>(disk), "memory", access);
}

}  // namespace vl::test
