// How the program meets a failing step: it notes the number and carries on.
//
// Engines throw `Error`. A procedure of the program opens an `ErrScope`, runs each step through
// `attempt` and leaves the pending number as it found it. Here is the only `catch (...)`.
#pragma once

#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

namespace vl {

/// What went wrong, as the pending error number tells it. Numbers are not stored anywhere.
enum class ErrNo {
    None = 0,
    Overflow,      ///< a number leaves the range of its type
    TypeMismatch,  ///< a value does not convert to the type that is wanted
    NotFound,      ///< a file, table, column, property or key that is not there
    Exists,        ///< a name or key that is already taken
    Format,        ///< a file that is no Jet 4 database, or an encrypted one
    Corrupt,       ///< a page or row that contradicts itself
    Locked,        ///< somebody else holds the file
    ReadOnly,      ///< a write to what may only be read
    Io,            ///< the system refused a read, write, open or start
    Syntax,        ///< a text that does not follow its grammar
    Unsupported,   ///< asked for correctly, but not a thing that can be done
    Unexpected,    ///< anything that is not an `Error`: a bug, or out of memory
};

/// An error of an engine: number, and a text that says what, where and what was expected.
class Error : public std::runtime_error {
public:
    Error(ErrNo number, const std::string& text) : std::runtime_error(text), number_(number) {}
    ErrNo number() const noexcept { return number_; }

private:
    ErrNo number_;
};

/// The pending error number: the program's one global value. Single-threaded, as the program is.
class ErrorState {
public:
    static ErrNo number() noexcept { return number_; }
    static void set(ErrNo number) noexcept { number_ = number; }
    static void clear() noexcept { number_ = ErrNo::None; }

private:
    static inline ErrNo number_ = ErrNo::None;
};

/// First line of a procedure that carries on after failing steps. Whatever was pending when the
/// procedure was entered is pending again when it is left, by `return` or by an exception.
class ErrScope {
public:
    [[nodiscard]] ErrScope() noexcept : saved_(ErrorState::number()) {}
    ~ErrScope() { ErrorState::set(saved_); }
    ErrScope(const ErrScope&) = delete;
    ErrScope& operator=(const ErrScope&) = delete;

private:
    ErrNo saved_;
};

/// A place in the source.
struct Place {
    const char* file;
    int line;
    static constexpr Place here(const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
        return {file, line};
    }
};

/// Makes `error` the pending number and writes `where` and its text to the trace, if one is open.
void absorb(std::exception_ptr error, Place where) noexcept;

/// Writes a line to the trace, if one is open: for what is worth knowing and is no error.
void trace(const std::string& line, Place where = Place::here()) noexcept;

/// Absorbed errors go to this file from now on, appended; an empty name closes the trace. The
/// program opens it at start with the value of the environment variable VL_TRACE.
void openTrace(const std::string& fileName) noexcept;

/// Runs one step. False: it threw, its number is pending, and the caller goes on.
/// A step computes first and assigns last, so that a failed one leaves its target as it was.
template <class Step>
bool attempt(Step&& step, Place where = Place::here()) noexcept {
    try {
        std::forward<Step>(step)();
        return true;
    } catch (...) {
        absorb(std::current_exception(), where);
        return false;
    }
}

}  // namespace vl
