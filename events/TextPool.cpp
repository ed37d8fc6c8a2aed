#include "TextPool.h"

#include <cstdint>
#include <cstring>

namespace vl {

namespace {

constexpr std::size_t kPlaces = 1024;
constexpr std::size_t kLongest = 512;  // bytes; what is longer is hardly ever there twice

std::uint64_t mixed(std::uint64_t hash, const char* from, std::size_t size) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, from, size);
    hash = (hash ^ word) * 0x9E3779B97F4A7C15U;
    return hash ^ (hash >> 29);
}

// Two rows of words at a time, since each step of one waits for the step before it. Not the same on
// every machine, and nobody keeps it.
std::uint64_t hashOf(std::string_view text) noexcept {
    constexpr std::size_t kWord = sizeof(std::uint64_t);
    std::uint64_t even = text.size();
    std::uint64_t odd = ~even;
    std::size_t at = 0;
    for (; text.size() - at >= 2 * kWord; at += 2 * kWord) {
        even = mixed(even, text.data() + at, kWord);
        odd = mixed(odd, text.data() + at + kWord, kWord);
    }
    if (text.size() - at >= kWord) {
        even = mixed(even, text.data() + at, kWord);
        at += kWord;
    }
    odd = mixed(odd, text.data() + at, text.size() - at);
    return mixed(even, reinterpret_cast<const char*>(&odd), kWord);
}

}  // namespace

TextPool::TextPool() : recent_(kPlaces) {}

SharedText TextPool::of(std::string_view text) {
    const Answer answer = ask(text);
    if (answer.known != nullptr) {
        return *answer.known;
    }
    const SharedText made = text;
    if (answer.keep) {
        keep(answer, made);
    }
    return made;
}

// Who stands there makes room only for one that comes a second time: of most texts there is one,
// and these would drive out those that many events have.
TextPool::Answer TextPool::ask(std::string_view text) {
    if (text.empty() || text.size() > kLongest) {
        return {};
    }
    const std::uint64_t hash = hashOf(text);
    Answer answer{nullptr, static_cast<std::uint32_t>(hash % kPlaces),
                  static_cast<std::uint32_t>(hash >> 32), false};
    Entry& entry = recent_[answer.place];
    if (entry.mark == answer.mark && entry.text == text) {
        answer.known = &entry.text;
        return answer;
    }
    answer.keep = entry.text.empty() || entry.seen == answer.mark;
    entry.seen = answer.mark;
    return answer;
}

}  // namespace vl
