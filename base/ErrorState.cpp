#include "base/ErrorState.h"

#include <cstdio>
#include <memory>

namespace vl {

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

std::unique_ptr<std::FILE, CloseFile>& traceFile() noexcept {
    static std::unique_ptr<std::FILE, CloseFile> file;
    return file;
}

void write(Place where, const char* text) noexcept {
    if (std::FILE* file = traceFile().get()) {
        std::fprintf(file, "%s:%d: %s\n", where.file, where.line, text);
        std::fflush(file);  // the trace is read when things go wrong: keep nothing back
    }
}

}  // namespace

void absorb(std::exception_ptr error, Place where) noexcept {
    try {
        std::rethrow_exception(std::move(error));
    } catch (const Error& e) {
        ErrorState::set(e.number());
        write(where, e.what());
    } catch (const std::exception& e) {
        ErrorState::set(ErrNo::Unexpected);
        write(where, e.what());
    } catch (...) {
        ErrorState::set(ErrNo::Unexpected);
        write(where, "unknown exception");
    }
}

void trace(const std::string& line, Place where) noexcept { write(where, line.c_str()); }

void openTrace(const std::string& fileName) noexcept {
    traceFile().reset(fileName.empty() ? nullptr : std::fopen(fileName.c_str(), "a"));
}

}  // namespace vl
