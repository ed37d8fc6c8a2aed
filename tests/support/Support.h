// Files that tests read and write.
#pragma once

#include <filesystem>
#include <string>

namespace vl::test {

/// A file of the repository, e.g. "data/first-light.RemindDB".
std::filesystem::path repoFile(const std::string& relative);

/// The folder of sample files that others made, which is not part of the repository: it stands
/// beside the checkout, where somebody put it there. Empty when it is not there: then the test that
/// asks goes on, and unless it fails it counts as skipped and says that it read none of them.
std::filesystem::path sharedFolder();

/// A folder of the test's own, removed with all that is in it.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& bytes);

}  // namespace vl::test
