// The help page that is installed with the program.
#include <gtest/gtest.h>

#include <regex>

#include <QAction>

#include "notify/Periods.h"
#include "notify/ReminderState.h"
#include "support/Support.h"
#include "ui/HelpNumbers.h"
#include "ui/QtText.h"
#include "ui/Tray.h"

namespace vl {
namespace {

class HelpPage : public testing::Test {
protected:
    std::size_t count(const std::string& pattern) const {
        const std::regex wanted(pattern, std::regex::icase);
        return static_cast<std::size_t>(std::distance(
            std::sregex_iterator(page.begin(), page.end(), wanted), std::sregex_iterator()));
    }
    std::string page = test::readFile(test::repoFile("data/help/index.html"));
};

TEST_F(HelpPage, HasAnAnchorForEveryHelpNumber) {
    for (const int number : kHelpNumbers) {
        EXPECT_EQ(count("id=\"" + std::to_string(number) + "\""), 1U) << number;
    }
}

TEST_F(HelpPage, HasAnAnchorForEveryPlace) {
    for (const char* place : kHelpPlaces) {
        const std::string anchor = std::to_string(kHelpMainWindow) + "\\" + place;
        EXPECT_EQ(count("id=\"" + anchor + "\""), 1U) << place;
    }
}

TEST_F(HelpPage, HasATargetForEachOfItsLinks) {
    const std::regex link("href=\"([^\"]*)\"");
    std::size_t links = 0;
    for (std::sregex_iterator i(page.begin(), page.end(), link), end; i != end; ++i, ++links) {
        const std::string target = (*i)[1];
        ASSERT_EQ(target.front(), '#') << "one page, opened offline: " << target;
        EXPECT_EQ(count("id=\"" + target.substr(1) + "\""), 1U) << target;
    }
    EXPECT_GT(links, 0U);
}

TEST_F(HelpPage, ExplainsEveryEntryOfTheMenu) {
    const ReminderState state;
    Tray tray(QIcon(), QIcon(), state);
    int entries = 0;
    for (const QAction* entry : tray.menu().findChildren<QAction*>()) {
        QString text = entry->text();
        text.remove(u'&').remove(QLatin1String("..."));
        if (entry->objectName().startsWith("mnu") && entry->objectName() != "mnuShowHide") {
            ++entries;
            EXPECT_GE(count("<b>" + plainText(text) + "</b>"), 1U) << plainText(text);
        }
    }
    EXPECT_GE(entries, 13);
}

TEST_F(HelpPage, ExplainsThePeriodsThatDoNotExplainThemselves) {
    for (const char* code : {"R", "N", "Di", "H"}) {
        const std::string text = periods()[periodIndex(code).value()].text;
        EXPECT_GE(count("<b>" + text + "</b>"), 1U) << text;
    }
}

TEST_F(HelpPage, NeedsNothingFromElsewhere) {
    for (const char* remote : {"<script", "src=", "http:", "https:", "@import", "url\\("}) {
        EXPECT_EQ(count(remote), 0U) << remote;
    }
    EXPECT_GE(count("prefers-color-scheme: *dark"), 1U);
    EXPECT_EQ(count("<meta charset=\"utf-8\">"), 1U);
}

}  // namespace
}  // namespace vl
