#include "MemoryFolder.h"

namespace vl::test {

namespace {

std::string_view textOf(jet::ByteView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

class MemoryFolder::Open final : public jet::File {
public:
    Open(MemoryFolder& folder, std::shared_ptr<Node> node, bool writable)
        : folder_(folder), node_(std::move(node)), writable_(writable) {}
    Open(const Open&) = delete;
    Open& operator=(const Open&) = delete;
    ~Open() override {
        std::erase_if(node_->locks, [&](const Lock& lock) { return lock.owner == this; });
    }

    const std::shared_ptr<Node>& node() const { return node_; }

    std::uint64_t size() const override { return node_->now.size(); }
    std::int64_t modified() const override { return node_->writes; }

    void read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        if (offset + bytes.size() > node_->now.size()) {
            throw Error(ErrNo::Io, "memory: ends before " + std::to_string(offset));
        }
        std::transform(node_->now.begin() + static_cast<std::ptrdiff_t>(offset),
                       node_->now.begin() + static_cast<std::ptrdiff_t>(offset + bytes.size()),
                       bytes.begin(), [](char c) { return static_cast<std::byte>(c); });
    }

    void write(std::uint64_t offset, jet::ByteView bytes) override {
        needRight();
        const auto done = [&](std::size_t length) {
            change({offset, std::string(textOf(bytes.first(length))), false});
        };
        folder_.operation(
            'w', [&] { done(bytes.size() / 2); }, offset + bytes.size() > node_->now.size());
        done(bytes.size());
    }

    void truncate(std::uint64_t size) override {
        needRight();
        folder_.operation('t');
        change({size, {}, true});
    }

    void flush() override {
        folder_.operation('f');
        node_->disk = node_->now;
        node_->waiting.clear();
    }

    bool tryLock(std::uint64_t first, std::uint64_t count, jet::LockKind kind) override {
        if (folder_.lockless) {
            throw Error(ErrNo::Unsupported, "memory: no locks here");
        }
        if (kind == jet::LockKind::Exclusive) {
            needRight();
        }
        const std::uint64_t end = first + count;
        for (const Lock& lock : node_->locks) {
            const bool meet = lock.first < end && first < lock.end;
            if (meet && lock.owner != this &&
                (kind == jet::LockKind::Exclusive || lock.kind == jet::LockKind::Exclusive)) {
                return false;
            }
        }
        node_->locks.push_back({this, first, end, kind});
        return true;
    }

    void unlock(std::uint64_t first, std::uint64_t count) noexcept override {
        std::erase_if(node_->locks, [&](const Lock& lock) {
            return lock.owner == this && lock.first == first && lock.end == first + count;
        });
    }

    bool heldByOthers(std::uint64_t at) override {
        return std::any_of(node_->locks.begin(), node_->locks.end(), [&](const Lock& lock) {
            return lock.owner != this && lock.first <= at && at < lock.end;
        });
    }

private:
    void needRight() const {
        if (!writable_) {
            throw Error(ErrNo::Io, "memory: is open for reading only");
        }
    }

    void change(Piece piece) {
        apply(node_->now, piece);
        node_->waiting.push_back(std::move(piece));
        ++node_->writes;
    }

    MemoryFolder& folder_;
    std::shared_ptr<Node> node_;
    bool writable_;
};

void MemoryFolder::operation(char kind, const std::function<void()>& half, bool grows) {
    const bool off = hit_ && (fault_ == Fault::Stop || fault_ == Fault::Torn);
    if (!off) {
        ++operations_;
        log += kind;
    }
    const bool now = operations_ == at_;
    const bool later = operations_ >= at_;
    const bool fails =
        off || ((fault_ == Fault::Stop || fault_ == Fault::Torn || fault_ == Fault::Once) && now) ||
        (fault_ == Fault::Full && later && grows) || (fault_ == Fault::Never && later);
    if (!fails) {
        return;
    }
    hit_ = true;
    if (half && !off && fault_ != Fault::Stop && fault_ != Fault::Never) {
        half();
    }
    throw Error(ErrNo::Io, "memory: refused");
}

void MemoryFolder::apply(std::string& bytes, const Piece& piece) {
    if (piece.truncates) {
        bytes.resize(piece.offset);
        return;
    }
    bytes.resize(std::max<std::size_t>(bytes.size(), piece.offset + piece.bytes.size()));
    bytes.replace(piece.offset, piece.bytes.size(), piece.bytes);
}

void MemoryFolder::copyTo(MemoryFolder& other, Left left, unsigned seed) const {
    std::mt19937 random(seed);
    const auto coin = [&] { return (random() & 1U) != 0; };
    const auto contentOf = [&](const Node& node) {
        if (left == Left::All) {
            return node.now;
        }
        std::string bytes = node.disk;
        for (const Piece& piece : node.waiting) {
            if (left != Left::Some) {
                break;
            }
            if (piece.truncates) {
                if (coin()) {
                    apply(bytes, piece);
                }
                continue;
            }
            constexpr std::size_t kSector = 512;
            for (std::size_t at = 0; at < piece.bytes.size();) {
                const std::uint64_t place = piece.offset + at;
                const std::size_t length =
                    std::min<std::size_t>(kSector - place % kSector, piece.bytes.size() - at);
                if (coin()) {
                    apply(bytes, {place, piece.bytes.substr(at, length), false});
                }
                at += length;
            }
        }
        return bytes;
    };
    auto names = left == Left::All ? seen_ : flushed_;
    if (left == Left::Some) {
        for (const auto& [name, node] : seen_) {
            if (coin()) {
                names[name] = node;
            }
        }
        for (const auto& [name, node] : flushed_) {
            if (seen_.count(name) == 0 && coin()) {
                names.erase(name);
            }
        }
    }
    for (const auto& [name, node] : names) {
        other.put(name, contentOf(*node));
    }
}

std::unique_ptr<jet::File> MemoryFolder::open(const std::string& path, jet::Access access) {
    const auto found = seen_.find(fileBehind(path));
    if (found == seen_.end()) {
        throw Error(ErrNo::NotFound, path + ": is not there");
    }
    if (readOnly && access == jet::Access::ReadWrite) {
        throw Error(ErrNo::Io, path + ": may only be read");
    }
    return std::make_unique<Open>(*this, found->second, access == jet::Access::ReadWrite);
}

std::unique_ptr<jet::File> MemoryFolder::openOrCreate(const std::string& path,
                                                      const jet::File& /*like*/) {
    if (!exists(path)) {
        if (readOnly) {
            throw Error(ErrNo::Io, path + ": cannot be made");
        }
        operation('c');
        seen_[path] = std::make_shared<Node>("");
    }
    return open(path, jet::Access::ReadWrite);
}

std::unique_ptr<jet::File> MemoryFolder::createNew(const std::string& path, const jet::File& like) {
    if (exists(path)) {
        throw Error(ErrNo::Exists, path + ": is there");
    }
    return openOrCreate(path, like);
}

std::string MemoryFolder::fileBehind(const std::string& path) {
    const auto link = links_.find(path);
    return link == links_.end() ? path : fileBehind(link->second);
}

std::uint64_t MemoryFolder::nameCount(const jet::File& file) {
    const auto& node = dynamic_cast<const Open&>(file).node();
    return static_cast<std::uint64_t>(std::count_if(
        seen_.begin(), seen_.end(), [&](const auto& entry) { return entry.second == node; }));
}

// Nobody has any here.
void MemoryFolder::shareRights(const std::string& path, const jet::File& /*like*/) {
    if (!exists(path)) {
        throw Error(ErrNo::Io, path + ": is not there");
    }
}

bool MemoryFolder::names(const std::string& path, const jet::File& file) {
    const auto found = seen_.find(fileBehind(path));
    return found != seen_.end() && dynamic_cast<const Open&>(file).node() == found->second;
}

void MemoryFolder::remove(const std::string& path) {
    if (exists(path)) {
        operation('r');
        seen_.erase(path);
    }
}

void MemoryFolder::closeAndRemove(std::unique_ptr<jet::File> file, const std::string& path) {
    remove(path);
    file.reset();
}

void MemoryFolder::rename(const std::string& from, const std::string& to) {
    operation('m');
    seen_[to] = seen_.at(from);
    seen_.erase(from);
}

void MemoryFolder::flushFolderOf(const std::string& /*path*/) {
    operation('F');
    flushed_ = seen_;
}

}  // namespace vl::test
