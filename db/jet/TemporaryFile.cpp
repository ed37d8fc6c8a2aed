#include "TemporaryFile.h"

#include <cerrno>
#include <system_error>

#include "base/ErrorState.h"

#ifdef _WIN32
#include <cstdlib>
#endif

namespace vl::jet {

namespace {

#ifdef _WIN32
// The system's own would be made in the root folder, where not everybody may write.
std::FILE* open() {
    wchar_t* name = _wtempnam(nullptr, L"remindb");
    std::FILE* file = name == nullptr ? nullptr : _wfopen(name, L"w+bTD");
    std::free(name);
    return file;
}
#else
std::FILE* open() { return std::tmpfile(); }
#endif

}  // namespace

std::unique_ptr<std::FILE, CloseFile> temporaryFile() {
    std::unique_ptr<std::FILE, CloseFile> file(open());
    if (!file) {
        throw Error(ErrNo::Io,
                    "cannot make a temporary file: " + std::generic_category().message(errno));
    }
    return file;
}

}  // namespace vl::jet
