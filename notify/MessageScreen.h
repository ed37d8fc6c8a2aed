// Message boxes, asked of the screen. The window shows them; tests answer them.
#pragma once

#include <cstdint>
#include <string>

namespace vl {

enum class BoxButtons : std::uint8_t { Ok, YesNoCancel };
enum class BoxIcon : std::uint8_t { None, Question, Critical };
enum class BoxAnswer : std::uint8_t { Ok, Yes, No, Cancel };

/// A box as its caller words it. Lines of the text are parted by CR LF or by CR.
struct BoxRequest {
    std::string title;
    std::string text;
    BoxButtons buttons = BoxButtons::Ok;
    BoxIcon icon = BoxIcon::Question;

    friend bool operator==(const BoxRequest&, const BoxRequest&) = default;
};

class MessageScreen {
public:
    virtual ~MessageScreen() = default;

    /// Shows the box and waits for its answer. Closing it by its frame answers `Ok` where that is
    /// the only button, else `Cancel`. While it is open timers tick and events change: who asks
    /// keeps copies of what it goes on with.
    virtual BoxAnswer ShowBox(const BoxRequest& box) = 0;
};

}  // namespace vl
