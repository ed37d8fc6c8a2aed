// A text that is read far more often than it is set.
#pragma once

#include <atomic>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <new>
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
            usersOf(block_).fetch_add(1, std::memory_order_relaxed);
        }
    }
    SharedText(SharedText&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
    SharedText& operator=(SharedText other) noexcept {
        std::swap(block_, other.block_);
        return *this;
    }
    ~SharedText() {
        if (block_ != nullptr) {
            release(usersOf(block_));
        }
    }

    /// Good as long as this text, or a copy of it, is not set anew.
    std::string_view view() const noexcept {
        return block_ != nullptr ? std::string_view(textOf(block_), block_->length)
                                 : std::string_view();
    }
    std::string str() const { return std::string(view()); }
    operator std::string_view() const noexcept { return view(); }
    operator std::string() const { return str(); }

    bool empty() const noexcept { return block_ == nullptr; }
    std::size_t size() const noexcept { return block_ != nullptr ? block_->length : 0; }
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
    // An allocation begins with the number of those who use any of its blocks, which is asked for
    // as often as a copy comes or goes: several texts of one object have one such number.
    using Users = std::atomic<std::uint32_t>;
    // The text follows it.
    struct Block {
        std::uint32_t distance;  // from the beginning of the allocation
        std::uint32_t length;
    };

    static Users& usersOf(Block* block) noexcept {
        return *std::launder(
            reinterpret_cast<Users*>(reinterpret_cast<std::byte*>(block) - block->distance));
    }
    static const char* textOf(const Block* block) noexcept {
        return reinterpret_cast<const char*>(block + 1);
    }
    static std::size_t sizeFor(std::string_view text) noexcept;
    static Block* put(std::byte* room, std::size_t distance, std::string_view text) noexcept;
    // Who is the only one is so for good: nobody is left to make a copy.
    static void release(Users& users) noexcept {
        if (users.load(std::memory_order_acquire) == 1 ||
            users.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            free(users);
        }
    }
    static void free(Users& users) noexcept;

    Block* block_ = nullptr;  // null: empty
};

}  // namespace vl

template <>
struct std::hash<vl::SharedText> {
    std::size_t operator()(const vl::SharedText& text) const noexcept {
        return std::hash<std::string_view>()(text.view());
    }
};
