// What a check has found.
#pragma once

#include <string>
#include <vector>

#include "base/ErrorState.h"
#include "db/jet/Types.h"

namespace vl::jet {

struct Finding {
    PageNo page = 0;
    std::string what;
};

/// Collects findings; of a file that is damaged all over only the first ones.
class Findings {
public:
    static constexpr std::size_t kMost = 500;

    /// `fileName` is what errors begin with.
    explicit Findings(std::string fileName) : fileName_(std::move(fileName)) {}

    void add(PageNo page, std::string what);
    /// Runs `step`. Damage that it throws becomes a finding, on the page that the error names or
    /// else on `page`, and the answer is false; other errors pass.
    template <class Step>
    bool attempt(PageNo page, Step&& step) {
        try {
            step();
            return true;
        } catch (const Error& e) {
            if (e.number() != ErrNo::Corrupt) {
                throw;
            }
            addError(page, e.what());
            return false;
        }
    }

    std::size_t count() const noexcept { return all_; }
    std::vector<Finding> take();

private:
    void addError(PageNo page, std::string what);

    std::string fileName_;
    std::vector<Finding> findings_;
    std::size_t all_ = 0;
};

}  // namespace vl::jet
