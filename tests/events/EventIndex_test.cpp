// The index follows its collection from change to change.
#include "events/EventIndex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "base/Text.h"
#include "support/Events.h"

namespace vl {
namespace {

using test::at;
using test::single;

class Following : public testing::Test {
protected:
    std::size_t below(std::size_t n) { return random_() % n; }

    /// With one of forty ids, each written in two ways.
    std::shared_ptr<calEvent> anyEvent(const std::string& GUID) {
        const auto event = single(GUID, at(static_cast<int>(below(24)), 0), {15});
        event->id = (below(2) == 0 ? "id" : "ID") + std::to_string(below(40));
        return event;
    }
    std::string anyKey() { return "event " + std::to_string(below(400)); }

    void replaceOne() {
        const std::string key = anyKey();
        events.UpdateItem(key, Variant(anyEvent(key)));
    }
    void changeOne() {
        const std::string key = anyKey();
        switch (below(3)) {
            case 0:
                events.Remove(key);
                break;
            case 1:
                events.Add(Variant(anyEvent(key)), key,
                           static_cast<std::int64_t>(below(events.Count() + 1)));
                break;
            default:
                replaceOne();
        }
    }
    void touchOne() {
        const std::string key = anyKey();
        if (const auto event = objectAt<calEvent>(events, key)) {
            event->id = "id" + std::to_string(below(40));
            event->StartDateTime = at(static_cast<int>(below(24)), 0);
            index.look(key);
        }
    }

    calEvent* firstWithId(const std::string& id) const {
        for (const Variant& item : events) {
            const auto event = objectIn<calEvent>(item);
            if (event && text::equalsNoCase(event->id, id)) {
                return event.get();
            }
        }
        return nullptr;
    }

    void expectFollowed() {
        ASSERT_EQ(index.events().size(), events.Count());
        const Window window{at(static_cast<int>(below(12)), 0),
                            at(static_cast<int>(12 + below(12)), 0)};
        for (std::size_t i = 0; i < events.Count(); ++i) {
            const auto event = objectAt<calEvent>(events, i + 1);
            ASSERT_EQ(index.events()[i], event.get());
            ASSERT_EQ(index.mayStart(i, window), window.holds(event->StartDateTime)) << i;
        }
        for (int id = 0; id < 40; ++id) {
            const std::string wanted = "Id" + std::to_string(id);
            ASSERT_EQ(index.firstWithId(wanted), firstWithId(wanted)) << wanted;
        }
    }

    GenCollection events;
    EventIndex index;
    unsigned seed = std::random_device{}();

private:
    std::mt19937 random_{seed};
};

TEST_F(Following, KnowsWhatItsCollectionHoldsNow) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    for (int i = 0; i < 300; ++i) {
        const std::string key = "event " + std::to_string(i);
        events.Add(Variant(anyEvent(key)), key);
    }
    for (int step = 0; step < 200; ++step) {
        const bool sameOrder = below(2) == 0;
        for (std::size_t changes = below(6); changes > 0; --changes) {
            sameOrder ? replaceOne() : changeOne();
        }
        index.bring(events);
        if (below(3) == 0) {
            touchOne();
        }
        ASSERT_NO_FATAL_FAILURE(expectFollowed());
    }
}

TEST_F(Following, AnEventThatTakesAnothersPlaceMayHaveWhatAQueryHasLeft) {
    for (const char* key : {"A", "B"}) {
        events.Add(Variant(anyEvent(key)), key);
    }
    index.bring(events);
    index.forgetQueries(events);
    const auto isLeft = [&](std::uint32_t i) {
        const auto left = index.left();
        return std::find(left.begin(), left.end(), i) != left.end();
    };
    ASSERT_FALSE(isLeft(1));
    const auto event = anyEvent("B");
    event->iRemMinutes = 7;
    events.UpdateItem("B", Variant(event));
    index.bring(events);
    EXPECT_TRUE(isLeft(1));
    EXPECT_FALSE(isLeft(0));
    index.forgetQueries(events);
    EXPECT_TRUE(isForgotten(*event));
}

}  // namespace
}  // namespace vl
