// A folder in memory that stops at any operation, and what is left of it after a crash.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "base/ErrorState.h"
#include "db/jet/File.h"

namespace vl::test {

/// Files by name, in memory. Keeps apart what programs see and what is on the disk: a write, and
/// the name of a new file, is safe only when it was flushed. Locks are those of open files, as the
/// machine's own are. Must outlive what is open in it.
class MemoryFolder final : public jet::FileSystem {
public:
    enum class Fault {
        None,
        Stop,   ///< at operation `at` the machine goes off: nothing that comes later happens
        Torn,   ///< the same, and a write of that moment is half done
        Once,   ///< operation `at` fails, and a write is half done; the others go on
        Full,   ///< from operation `at` on no file grows
        Never,  ///< from operation `at` on all fail
    };

    /// A loss of power, or the death of the program alone.
    enum class Left {
        All,      ///< what programs saw: the system has lived on
        Flushed,  ///< nothing that was not flushed
        Some,     ///< of the rest some, in pieces of 512 bytes
    };

    MemoryFolder() = default;

    void put(const std::string& path, const std::string& bytes) {
        seen_[path] = std::make_shared<Node>(bytes);
        flushed_ = seen_;
    }
    /// One more name of a file, and a name that leads to another name.
    void hardLink(const std::string& path, const std::string& more) {
        seen_[more] = seen_.at(path);
    }
    void link(const std::string& path, const std::string& more) { links_[more] = path; }
    /// What programs see; empty when there is no such file.
    std::string bytes(const std::string& path) const {
        const auto found = seen_.find(path);
        return found == seen_.end() ? std::string() : found->second->now;
    }
    bool exists(const std::string& path) const { return seen_.count(path) != 0; }
    std::size_t files() const { return seen_.size(); }

    void fail(Fault fault, int at) {
        fault_ = fault;
        at_ = at;
        operations_ = 0;
        hit_ = false;
    }
    /// Whether it has come to the fault.
    bool hit() const { return hit_; }
    int operations() const { return operations_; }
    /// The operations in their order: "w", "t"runcate, "f"lush, "F"older flushed, "c"reate,
    /// "r"emove, rena"m"e.
    std::string log;
    /// Nobody may write here, nor make files.
    bool readOnly = false;
    /// Locks are not known here.
    bool lockless = false;

    /// What a later start of the machine, or of the program, finds; no locks, no fault.
    void copyTo(MemoryFolder& other, Left left, unsigned seed = 0) const;

    std::unique_ptr<jet::File> open(const std::string& path, jet::Access access) override;
    std::unique_ptr<jet::File> openOrCreate(const std::string& path, const jet::File&) override;
    std::unique_ptr<jet::File> createNew(const std::string& path, const jet::File& like) override;
    std::string fileBehind(const std::string& path) override;
    std::uint64_t nameCount(const jet::File& file) override;
    void shareRights(const std::string& path, const jet::File& like) override;
    bool names(const std::string& path, const jet::File& file) override;
    void remove(const std::string& path) override;
    void closeAndRemove(std::unique_ptr<jet::File> file, const std::string& path) override;
    void rename(const std::string& from, const std::string& to) override;
    void flushFolderOf(const std::string& path) override;

private:
    struct Piece {
        std::uint64_t offset = 0;
        std::string bytes;
        bool truncates = false;
    };
    struct Lock {
        const void* owner;
        std::uint64_t first, end;
        jet::LockKind kind;
    };
    struct Node {
        explicit Node(std::string content) : now(content), disk(std::move(content)) {}
        std::string now;
        std::string disk;
        std::vector<Piece> waiting;  // written, not flushed
        std::vector<Lock> locks;
        std::int64_t writes = 0;
    };
    class Open;

    /// Counts an operation; throws when it fails. A write asks how much of it is done all the same.
    void operation(char kind, const std::function<void()>& half = {}, bool grows = false);
    static void apply(std::string& bytes, const Piece& piece);

    std::map<std::string, std::string> links_;
    std::map<std::string, std::shared_ptr<Node>> seen_;
    std::map<std::string, std::shared_ptr<Node>> flushed_;
    Fault fault_ = Fault::None;
    int at_ = 0;
    int operations_ = 0;
    bool hit_ = false;
};

}  // namespace vl::test
