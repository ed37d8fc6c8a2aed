// Texts for the wide calls of Windows.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace vl::platform {

inline std::wstring wide(std::string_view text, UINT codePage = CP_UTF8) {
    const auto length = static_cast<int>(text.size());
    const int units = MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0);
    std::wstring out(static_cast<std::size_t>(units), L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), length, out.data(), units);
    return out;
}

/// A character that the code page lacks becomes its nearest one, or "?".
inline std::string narrow(std::wstring_view text, UINT codePage = CP_UTF8) {
    const auto length = static_cast<int>(text.size());
    const int bytes =
        WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(codePage, 0, text.data(), length, out.data(), bytes, nullptr, nullptr);
    return out;
}

/// One argument as the usual start-up code of programs takes it apart again: in quotes, each quote
/// behind a backslash, and backslashes doubled where a quote follows them.
inline std::wstring quotedArgument(std::wstring_view argument) {
    std::wstring out = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : argument) {
        if (c == L'"') {
            out.append(backslashes + 1, L'\\');
        }
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        out += c;
    }
    return out.append(backslashes, L'\\') + L"\"";
}

}  // namespace vl::platform
