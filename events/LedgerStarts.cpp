// What the ledger knows beside events: checks there were, starts that exceptions have replaced.
#include <algorithm>
#include <iterator>
#include <set>

#include "LedgerParts.h"

namespace vl {

DateTime Ledger::lastCheck(std::string_view database) const {
    const auto found = content_->checked.find(nameOf(database));
    return found != content_->checked.end() ? earlierOf(found->second.back(), TimeZone::local())
                                            : DateTime();
}

std::vector<DateTime> Ledger::checks(std::string_view database) const {
    const TimeZone here = TimeZone::local();
    std::vector<DateTime> all;
    const auto found = content_->checked.find(nameOf(database));
    if (found != content_->checked.end()) {
        std::transform(found->second.begin(), found->second.end(), std::back_inserter(all),
                       [&](const Noted& check) { return earlierOf(check, here); });
    }
    return all;
}

DateTime Ledger::lastCheckBy(std::string_view database, DateTime moment) const {
    const auto all = checks(database);
    const auto last =
        std::find_if(all.rbegin(), all.rend(), [&](DateTime check) { return check <= moment; });
    return last != all.rend() ? *last : DateTime();
}

void Ledger::noteCheck(std::string_view database, DateTime when) {
    const DateTime known = lastCheck(database);
    if (known.date() == when.date() && known <= when) {
        return;
    }
    store([&] {
        const Noted noted = notedNow(when);
        ledger::addCheck(content_->checked[nameOf(database)], noted);
        return ledger::lineEnd(ledger::checkLine(nameOf(database), noted));
    });
}

std::vector<Noted> Ledger::replaced(std::string_view database, const SeriesName& series) const {
    std::set<Noted> starts;
    for (const std::string& base : {series.VLBase, std::string()}) {
        const auto found =
            content_->replaced.find(ledger::keyOf(nameOf(database), SeriesName{series.id, base}));
        if (found != content_->replaced.end()) {
            starts.insert(found->second.begin(), found->second.end());
        }
    }
    return {starts.begin(), starts.end()};
}

std::vector<Ledger::Replaced> Ledger::allReplaced(std::string_view database) const {
    const std::string& name = nameOf(database);
    std::vector<Replaced> all;
    for (const auto& [key, starts] : content_->replaced) {
        const auto& [owner, series] = content_->masters.at(key);
        if (owner == name) {
            all.push_back({series, {starts.begin(), starts.end()}});
        }
    }
    return all;
}

void Ledger::keepReplaced(std::string_view database, const SeriesName& series, DateTime start) {
    keepReplaced(database, {{series, {notedNow(start)}}});
}

void Ledger::keepReplaced(std::string_view database, const std::vector<Replaced>& all) {
    const std::string name = nameOf(database);
    const auto isNew = [&](const SeriesName& series, const Noted& start) {
        const auto known = content_->replaced.find(ledger::keyOf(name, series));
        return known == content_->replaced.end() || !known->second.contains(start);
    };
    const auto anyNew = [&](const Replaced& one) {
        return std::any_of(one.starts.begin(), one.starts.end(),
                           [&](const Noted& start) { return isNew(one.series, start); });
    };
    if (std::none_of(all.begin(), all.end(), anyNew)) {
        return;
    }
    store([&] {
        std::string lines;
        for (const auto& [series, starts] : all) {
            for (const Noted& start : starts) {
                if (isNew(series, start)) {
                    const std::string key = ledger::keyOf(name, series);
                    content_->masters[key] = {name, series};
                    content_->replaced[key].insert(start);
                    lines += ledger::lineEnd(ledger::replacedLine(name, series, start));
                }
            }
        }
        ++replacedVersion_;
        return lines;
    });
}

void Ledger::keepRecentlyReplaced(std::string_view database, std::vector<Replaced> all) {
    const DateTime now = reference(*content_);
    for (Replaced& one : all) {
        std::erase_if(one.starts, [&](const Noted& start) { return isLongAgo(start.local, now); });
    }
    keepReplaced(database, all);
}

}  // namespace vl
