#include "RowSpool.h"

#include <cassert>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <system_error>

#include "base/ErrorState.h"

namespace vl::sql {

namespace {

using Length = std::uint64_t;

// Only this program reads them, and only now: as the machine has them.

template <class T>
void put(std::string& bytes, T value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

void putBytes(std::string& bytes, const void* data, std::size_t size) {
    put<Length>(bytes, size);
    bytes.append(static_cast<const char*>(data), size);
}

class Reader {
public:
    explicit Reader(std::string_view bytes) : bytes_(bytes) {}

    bool atEnd() const noexcept { return at_ == bytes_.size(); }
    template <class T>
    T take() {
        T value;
        std::memcpy(&value, bytes_.data() + at_, sizeof value);
        at_ += sizeof value;
        return value;
    }
    std::string_view takeBytes() {
        const auto size = static_cast<std::size_t>(take<Length>());
        at_ += size;
        return bytes_.substr(at_ - size, size);
    }

private:
    std::string_view bytes_;
    std::size_t at_ = 0;
};

enum class Kind : std::uint8_t { Empty, Null, Flag, Long, Wide, Double, Date, Text, Bytes };

struct Writer {
    std::string& bytes;

    void operator()(Empty) const { put(bytes, Kind::Empty); }
    void operator()(Null) const { put(bytes, Kind::Null); }
    void operator()(bool v) const { with(Kind::Flag, v); }
    void operator()(std::int32_t v) const { with(Kind::Long, v); }
    void operator()(std::int64_t v) const { with(Kind::Wide, v); }
    void operator()(double v) const { with(Kind::Double, v); }
    void operator()(DateTime v) const { with(Kind::Date, v.days()); }
    void operator()(const std::string& v) const {
        put(bytes, Kind::Text);
        putBytes(bytes, v.data(), v.size());
    }
    void operator()(const Bytes& v) const {
        put(bytes, Kind::Bytes);
        putBytes(bytes, v.data(), v.size());
    }
    void operator()(const ObjectRef&) const { assert(false); }

private:
    template <class T>
    void with(Kind kind, T value) const {
        put(bytes, kind);
        put(bytes, value);
    }
};

Variant valueFrom(Reader& reader) {
    switch (reader.take<Kind>()) {
        case Kind::Empty:
            return {};
        case Kind::Null:
            return Null{};
        case Kind::Flag:
            return reader.take<bool>();
        case Kind::Long:
            return reader.take<std::int32_t>();
        case Kind::Wide:
            return reader.take<std::int64_t>();
        case Kind::Double:
            return reader.take<double>();
        case Kind::Date:
            return DateTime(reader.take<double>());
        case Kind::Text:
            return reader.takeBytes();
        case Kind::Bytes:
            break;
    }
    const std::string_view bytes = reader.takeBytes();
    const auto* begin = reinterpret_cast<const std::byte*>(bytes.data());
    return Bytes(begin, begin + bytes.size());
}

std::vector<Variant> rowFrom(std::string_view bytes) {
    std::vector<Variant> row;
    for (Reader reader(bytes); !reader.atEnd();) {
        row.push_back(valueFrom(reader));
    }
    return row;
}

[[noreturn]] void failFile(const std::string& what) {
    throw Error(ErrNo::Io, "the rows that were found: the temporary file " + what);
}

// Right after the system has refused.
[[noreturn]] void failFile(const std::string& what, int reason) {
    failFile(what + ": " + std::generic_category().message(reason));
}

void readFrom(std::FILE* file, void* to, std::size_t size) {
    if (std::fread(to, 1, size, file) == size) {
        return;
    }
    if (std::ferror(file) == 0) {
        failFile("ends too early");
    }
    failFile("cannot be read", errno);
}

}  // namespace

void RowSpool::clear() noexcept {
    memory_.clear();
    file_.reset();
    rowsInFile_ = 0;
    rowsInMemory_ = 0;
}

void RowSpool::add(const std::vector<Variant>& row) {
    std::string bytes;
    for (const Variant& value : row) {
        std::visit(Writer{bytes}, value.value());
    }
    putBytes(memory_, bytes.data(), bytes.size());
    ++rowsInMemory_;
    if (memory_.size() > most_) {
        moveToFile();
    }
}

void RowSpool::moveToFile() {
    if (!file_) {
        file_ = jet::temporaryFile();
    }
    if (std::fwrite(memory_.data(), 1, memory_.size(), file_.get()) != memory_.size()) {
        failFile("cannot be written", errno);
    }
    rowsInFile_ += rowsInMemory_;
    memory_.clear();
    rowsInMemory_ = 0;
}

std::string RowSpool::fromFile() {
    Length size = 0;
    readFrom(file_.get(), &size, sizeof size);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    readFrom(file_.get(), bytes.data(), bytes.size());
    return bytes;
}

void RowSpool::forEach(const Take& take) {
    if (file_) {
        if (std::fflush(file_.get()) != 0) {
            failFile("cannot be written", errno);
        }
        std::rewind(file_.get());
        for (std::size_t i = 0; i < rowsInFile_; ++i) {
            take(rowFrom(fromFile()));
        }
        if (std::fseek(file_.get(), 0, SEEK_END) != 0) {
            failFile("cannot be read", errno);
        }
    }
    for (Reader reader(memory_); !reader.atEnd();) {
        take(rowFrom(reader.takeBytes()));
    }
}

}  // namespace vl::sql
