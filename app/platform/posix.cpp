// Linux and its like: folders after the XDG base directory specification, the C library's locale.
#include <langinfo.h>
#include <locale.h>
#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "LocalePattern.h"
#include "Platform.h"

namespace vl::platform {

namespace {

namespace fs = std::filesystem;

std::string homeFolder() {
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') {
        return home;
    }
    const passwd* user = getpwuid(getuid());
    return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : std::string();
}

/// The user's locale for times; the C locale when the environment names none that there is.
class TimeLocale {
public:
    TimeLocale() : locale_(::newlocale(kParts, "", nullptr)) {
        if (locale_ == nullptr) {
            locale_ = ::newlocale(kParts, "C", nullptr);
        }
    }
    ~TimeLocale() {
        if (locale_ != nullptr) {
            ::freelocale(locale_);
        }
    }
    TimeLocale(const TimeLocale&) = delete;
    TimeLocale& operator=(const TimeLocale&) = delete;

    std::string operator[](nl_item item) const {
        return locale_ != nullptr ? ::nl_langinfo_l(item, locale_) : std::string();
    }

    /// Empty when there is no locale, or the text is longer than any date.
    std::string format(const std::string& pattern, const tm& date) const {
        std::array<char, 256> text{};
        const std::size_t length =
            locale_ != nullptr
                ? ::strftime_l(text.data(), text.size(), pattern.c_str(), &date, locale_)
                : 0;
        return {text.data(), length};
    }

private:
    static constexpr int kParts = LC_TIME_MASK | LC_CTYPE_MASK;
    locale_t locale_;
};

}  // namespace

fs::path pathOf(std::string_view text) { return fs::path(text); }
std::string textOf(const fs::path& path) { return path.string(); }

std::string fullPath(const std::string& path) {
    return textOf(fs::weakly_canonical(fs::absolute(pathOf(path))));
}

std::string dataRoot(bool allUsers) {
    // A relative path in these variables is to be ignored.
    const char* named = std::getenv(allUsers ? "XDG_DATA_HOME" : "XDG_CONFIG_HOME");
    if (named != nullptr && *named == '/') {
        return named;
    }
    const std::string home = homeFolder();
    return home.empty() ? home : home + (allUsers ? "/.local/share" : "/.config");
}

std::string programFolder() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return error ? std::string() : textOf(program.parent_path());
}

std::vector<std::string> sharedFolders() {
    const std::string own = programFolder();
    return {textOf((fs::path(own).parent_path() / "share/vlreminders")), own + "/data", own};
}

char separatorOf(std::string_view folder) {
    const bool host =
        folder.find('\\') != std::string_view::npos && folder.find('/') == std::string_view::npos;
    return host ? '\\' : '/';
}

std::string shortTimeFormat() {
    const TimeLocale locale;
    return shortPattern(locale[T_FMT], locale[T_FMT_AMPM]);
}

std::string dayHalfText(bool afternoon) {
    static const TimeLocale locale;
    const std::string text = locale[afternoon ? PM_STR : AM_STR];
    return !text.empty() ? text : afternoon ? "PM" : "AM";
}

std::string shortTimeText(int hour, int minute, int) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%02d:%02d", hour, minute);
    return text.data();
}

std::string dateText(int year, int month, int day, int weekday) {
    tm date{};
    date.tm_year = year - 1900;
    date.tm_mon = month - 1;
    date.tm_mday = day;
    date.tm_wday = weekday % 7;  // Sunday is 0 here
    const TimeLocale locale;
    return locale.format(datePattern(locale[D_FMT]), date);
}

std::string rawCommandLine() { return {}; }
std::string systemSound(std::string_view) { return {}; }

std::string fromSettingsText(std::string_view bytes) { return std::string(bytes); }
std::string toSettingsText(std::string_view text) { return std::string(text); }
std::string_view lineEnd() { return "\n"; }

}  // namespace vl::platform
