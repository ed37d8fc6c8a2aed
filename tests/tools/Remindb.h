// Runs remindb as its users do: as a process of its own.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace vl::test {

using Json = nlohmann::ordered_json;

struct Outcome {
    int code;  ///< -1 when a signal ended it
    std::string out;
    std::string err;
};

/// `input` is what it reads from its standard input; `output` a file to write to instead of `out`.
/// `dataHome` is the folder in which the program's own lies; one without anything unless it is
/// given.
Outcome remindb(const std::vector<std::string>& arguments, const std::string& input = {},
                const std::string& output = {}, const std::string& dataHome = {});

/// A JSON value for each line.
std::vector<Json> linesOf(const std::string& text);

}  // namespace vl::test
