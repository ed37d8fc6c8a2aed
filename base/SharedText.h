// A text that is read far more often than it is set.
#pragma once

#include <atomic>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace vl {

/// A text in one pointer: the empty one is nothing more, any other is one block that all copies
/// share. Setting it makes a new block, so who shares the old one sees nothing of it. Of objects
/// with many texts, most of them empty or equal to another object's, it takes a fraction of what
/// `std::string` takes.
///
/// Texts of 2 GiB and more are cut there. Copies may be used in several threads, as those of a
/// `std::shared_ptr` may.
class SharedText {
public:
    SharedText() noexcept = default;
    SharedText(std::string_view text);
    SharedText(const std::string& text) : SharedText(std::string_view(text)) {}
    SharedText(const char* text) : SharedText(std::string_view(text)) {}
    SharedText(const SharedText& other) noexcept : block_(other.block_) {
        if (block_ != nullptr) {
            block_->users.fetch_add(1, std::memory_order_relaxed);
        }
    }
    SharedText(SharedText&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
    SharedText& operator=(SharedText other) noexcept {
        std::swap(block_, other.block_);
        return *this;
    }
    ~SharedText() {
        if (block_ != nullptr && block_->users.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            release(block_);
        }
    }

    /// Good as long as this text, or a copy of it, is not set anew.
    std::string_view view() const noexcept {
        return block_ != nullptr ? std::string_view(textOf(block_), lengthOf(block_))
                                 : std::string_view();
    }
    std::string str() const { return std::string(view()); }
    operator std::string_view() const noexcept { return view(); }
    operator std::string() const { return str(); }

    bool empty() const noexcept { return block_ == nullptr; }
    std::size_t size() const noexcept { return block_ != nullptr ? lengthOf(block_) : 0; }
    void clear() noexcept { *this = SharedText(); }

    /// A text to be set, and to what: no part of the texts that are set.
    struct Setting {
        SharedText* to;
        std::string_view text;
    };
    /// Sets several texts for the price of one: they share an allocation, which stays as long as
    /// one of them or of their copies does. For the own texts of one object, which come and go
    /// together.
    static void setTogether(std::span<const Setting> settings);

    /// Whether both are one block, or empty.
    bool sharesWith(const SharedText& other) const noexcept { return block_ == other.block_; }

    friend bool operator==(const SharedText& a, const SharedText& b) noexcept {
        return a.block_ == b.block_ || a.view() == b.view();
    }
    friend bool operator==(const SharedText& a, std::string_view b) noexcept {
        return a.view() == b;
    }
    friend bool operator==(const SharedText& a, const char* b) noexcept { return a.view() == b; }
    friend bool operator==(const SharedText& a, const std::string& b) noexcept {
        return a.view() == b;
    }
    friend std::strong_ordering operator<=>(const SharedText& a, const SharedText& b) noexcept {
        return a.view() <=> b.view();
    }
    friend std::string operator+(std::string a, const SharedText& b) {
        return std::move(a.append(b.view()));
    }
    friend std::string operator+(const SharedText& a, std::string_view b) {
        return a.str().append(b);
    }
    friend std::ostream& operator<<(std::ostream& out, const SharedText& text);

private:
    // The text follows it.
    struct Block {
        std::atomic<std::uint32_t> users;
        std::uint32_t length;  // and `kTogether`
    };
    // Begins an allocation of several blocks, of which each stands behind its distance from here.
    struct Group {
        std::atomic<std::uint32_t> blocks;  // that are in use
    };
    static constexpr std::uint32_t kTogether = 0x80000000;  // the block is one of a group

    static std::size_t lengthOf(const Block* block) noexcept { return block->length & ~kTogether; }
    static const char* textOf(const Block* block) noexcept {
        return reinterpret_cast<const char*>(block + 1);
    }
    static void release(Block* block) noexcept;

    Block* block_ = nullptr;  // null: empty
};

}  // namespace vl

template <>
struct std::hash<vl::SharedText> {
    std::size_t operator()(const vl::SharedText& text) const noexcept {
        return std::hash<std::string_view>()(text.view());
    }
};
