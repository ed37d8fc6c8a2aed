// The machine's files, and a word before each reading of one.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "base/ErrorState.h"
#include "db/jet/File.h"

namespace vl::sql::test {

/// Passes everything on.
class WatchedFile final : public jet::File {
public:
    using BeforeRead = std::function<void(std::size_t size)>;

    WatchedFile(std::unique_ptr<jet::File> file, const BeforeRead& before)
        : file_(std::move(file)), before_(before) {}

    const jet::File& real() const { return *file_; }

    jet::FileIdentity identity() const override { return file_->identity(); }
    std::uint64_t size() const override { return file_->size(); }
    std::int64_t modified() const override { return file_->modified(); }
    void read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        before_(bytes.size());
        file_->read(offset, bytes);
    }
    void write(std::uint64_t offset, jet::ByteView bytes) override { file_->write(offset, bytes); }
    void truncate(std::uint64_t size) override { file_->truncate(size); }
    void flush() override { file_->flush(); }
    bool tryLock(std::uint64_t first, std::uint64_t count, jet::LockKind kind) override {
        return file_->tryLock(first, count, kind);
    }
    void unlock(std::uint64_t first, std::uint64_t count) noexcept override {
        file_->unlock(first, count);
    }
    bool heldByOthers(std::uint64_t at) override { return file_->heldByOthers(at); }

private:
    std::unique_ptr<jet::File> file_;
    const BeforeRead& before_;
};

/// For readers: nothing is made, removed or renamed by way of it.
class WatchedFiles final : public jet::FileSystem {
public:
    /// Called with the number of bytes that are about to be read.
    WatchedFile::BeforeRead beforeRead = [](std::size_t) {};

    std::unique_ptr<jet::File> open(const std::string& path, jet::Access access) override {
        return std::make_unique<WatchedFile>(real_.open(path, access), beforeRead);
    }
    std::unique_ptr<jet::File> openOrCreate(const std::string& path, const jet::File&) override {
        refuse(path);
    }
    std::unique_ptr<jet::File> createNew(const std::string& path, const jet::File&) override {
        refuse(path);
    }
    std::string fileBehind(const std::string& path) override { return real_.fileBehind(path); }
    std::uint64_t nameCount(const jet::File& file) override {
        return real_.nameCount(behind(file));
    }
    void shareRights(const std::string& path, const jet::File&) override { refuse(path); }
    bool names(const std::string& path, const jet::File& file) override {
        return real_.names(path, behind(file));
    }
    void remove(const std::string& path) override { refuse(path); }
    void closeAndRemove(std::unique_ptr<jet::File>, const std::string& path) override {
        refuse(path);
    }
    void rename(const std::string& from, const std::string&) override { refuse(from); }
    void flushFolderOf(const std::string& path) override { refuse(path); }

private:
    static const jet::File& behind(const jet::File& file) {
        return dynamic_cast<const WatchedFile&>(file).real();
    }
    [[noreturn]] static void refuse(const std::string& path) {
        throw Error(ErrNo::Unsupported, path + ": is only read here");
    }

    jet::FileSystem& real_ = jet::systemFiles();
};

}  // namespace vl::sql::test
