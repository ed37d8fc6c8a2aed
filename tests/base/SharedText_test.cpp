#include "base/SharedText.h"

#include <gtest/gtest.h>

#include <sstream>
#include <thread>
#include <vector>

namespace vl {
namespace {

TEST(SharedText, HoldsWhatItWasGiven) {
    for (const std::string& text : {std::string(), std::string("a"), std::string("with\0zero", 9),
                                    std::string(70'000, 'x')}) {
        const SharedText shared(text);
        EXPECT_EQ(shared.view(), text);
        EXPECT_EQ(shared.size(), text.size());
        EXPECT_EQ(shared.empty(), text.empty());
        EXPECT_EQ(std::string(shared), text);
    }
}

TEST(SharedText, CopiesAreOneBlockUntilOneIsSet) {
    SharedText first("Room 7");
    SharedText second = first;
    EXPECT_TRUE(second.sharesWith(first));
    second = "Room 8";
    EXPECT_EQ(first, "Room 7");
    EXPECT_EQ(second, "Room 8");
    second = first;
    first.clear();
    EXPECT_TRUE(first.empty());
    EXPECT_EQ(second, "Room 7") << "who shared it keeps it";
}

TEST(SharedText, IsSetToItselfUnharmed) {
    SharedText text("Room 7");
    const SharedText& same = text;
    text = same;
    EXPECT_EQ(text, "Room 7");
    text = text.view().substr(5);
    EXPECT_EQ(text, "7");
}

TEST(SharedText, SetTogetherTheyAreWhatTheyWereSetTo) {
    const std::vector<std::vector<std::string>> cases = {
        {},
        {"one"},
        {"", ""},
        {"", "one", ""},
        {"a", "bc", "def", "ghij", "klmno"},
        {"first", "", std::string("with\0zero", 9), std::string(70'000, 'x'), "last"}};
    for (const auto& texts : cases) {
        std::vector<SharedText> shared(texts.size(), SharedText("before"));
        std::vector<SharedText::Setting> settings;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            settings.push_back({&shared[i], texts[i]});
        }
        SharedText::setTogether(settings);
        for (std::size_t i = 0; i < texts.size(); ++i) {
            EXPECT_EQ(shared[i].view(), texts[i]);
            EXPECT_EQ(shared[i].empty(), texts[i].empty());
        }
    }
}

TEST(SharedText, OneOfSeveralSetTogetherOutlivesTheOthers) {
    for (std::size_t kept = 0; kept < 3; ++kept) {
        SharedText copy;
        {
            std::vector<SharedText> texts(3);
            const std::vector<SharedText::Setting> settings = {
                {&texts[0], "the first"}, {&texts[1], "the second"}, {&texts[2], "the third"}};
            SharedText::setTogether(settings);
            copy = texts[kept];
            EXPECT_TRUE(copy.sharesWith(texts[kept]));
            EXPECT_FALSE(copy.sharesWith(texts[(kept + 1) % 3]));
            texts[(kept + 1) % 3] = "set anew";
            EXPECT_EQ(texts[(kept + 2) % 3].view().substr(0, 4), "the ");
        }
        EXPECT_EQ(copy.view(),
                  std::vector<std::string>({"the first", "the second", "the third"})[kept]);
    }
}

TEST(SharedText, MovedFromIsEmpty) {
    SharedText from("Room 7");
    const SharedText to = std::move(from);
    EXPECT_EQ(to, "Room 7");
    EXPECT_TRUE(from.empty());  // NOLINT(bugprone-use-after-move): promised here
}

TEST(SharedText, ComparesLikeText) {
    EXPECT_EQ(SharedText("a"), SharedText("a")) << "in blocks of their own";
    EXPECT_NE(SharedText("a"), SharedText("A"));
    EXPECT_EQ(SharedText(), "");
    EXPECT_EQ(std::string("a"), SharedText("a"));
    EXPECT_LT(SharedText("a"), SharedText("b"));
    EXPECT_LT(SharedText(), SharedText("a"));
    EXPECT_GT(SharedText("\xC3\xA9"), SharedText("z")) << "bytes are not signed";
}

TEST(SharedText, JoinsTextsAndStreams) {
    const SharedText text("b");
    EXPECT_EQ("a" + text + "c", "abc");
    EXPECT_EQ(text + "c", "bc");
    std::string grown("a");
    grown += text;
    EXPECT_EQ(grown, "ab");
    std::ostringstream out;
    out << text;
    EXPECT_EQ(out.str(), "b");
}

TEST(SharedText, TakesOnePointer) { EXPECT_EQ(sizeof(SharedText), sizeof(void*)); }

TEST(SharedText, CopiesMayComeAndGoInSeveralThreads) {
    const SharedText alone("Room 7");
    std::vector<SharedText> together(2);
    const std::vector<SharedText::Setting> settings = {{&together[0], "Room 8"},
                                                       {&together[1], "Room 9"}};
    SharedText::setTogether(settings);
    const std::vector<const SharedText*> all = {&alone, &together[0], &together[1]};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 10'000; ++i) {
                for (const SharedText* text : all) {
                    SharedText copy = *text;
                    const SharedText other = copy;
                    copy.clear();
                    ASSERT_EQ(other.size(), 6U);
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(alone, "Room 7");
    EXPECT_EQ(together[0], "Room 8");
    EXPECT_EQ(together[1], "Room 9");
}

}  // namespace
}  // namespace vl
