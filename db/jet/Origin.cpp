#include "Origin.h"

#include "base/ErrorState.h"

namespace vl::jet {

void Origin::corrupt(const std::string& what) const {
    throw Error(ErrNo::Corrupt, std::string(file) + ", page " + std::to_string(page) + ": " + what);
}

}  // namespace vl::jet
