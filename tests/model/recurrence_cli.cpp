// Reads case lines and writes what the engine makes of them, for comparison with other programs:
// {"id": ..., "occurrences": [...], "last": ..., "next": [...]}
#include <exception>
#include <iostream>
#include <string>

#include "RecurrenceCase.h"

int main() {
    using vl::test::RecurrenceCase;
    try {
        for (std::string line; std::getline(std::cin, line);) {
            if (line.empty()) {
                continue;
            }
            const RecurrenceCase c = RecurrenceCase::read(nlohmann::json::parse(line));
            const vl::Recurrence r = c.load();
            const auto orNull = [](vl::DateTime time) {
                return time.isZero() ? nlohmann::json() : nlohmann::json(vl::test::isoText(time));
            };
            nlohmann::json out;
            out["id"] = c.id;
            out["occurrences"] = nlohmann::json::array();
            for (const vl::DateTime time : r.between(c.from, c.to, c.max)) {
                out["occurrences"].push_back(vl::test::isoText(time));
            }
            out["last"] = orNull(r.last());
            out["next"] = nlohmann::json::array();
            for (const RecurrenceCase::Next& next : c.nexts) {
                out["next"].push_back({{"after", vl::test::isoText(next.after)},
                                       {"next", orNull(r.next(next.after))}});
            }
            std::cout << out.dump() << '\n';
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}
