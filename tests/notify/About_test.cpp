#include "notify/About.h"

#include <gtest/gtest.h>

namespace vl {
namespace {

TEST(AboutBox, SaysBothVersions) {
    const BoxRequest box = aboutBox("1.4.27", 4);
    EXPECT_EQ(box.title, "Velmora Events and Reminders...");
    EXPECT_EQ(box.text, " Version 1.4.27\r\n Database version: 4");
    EXPECT_EQ(box.buttons, BoxButtons::Ok);
    EXPECT_EQ(box.icon, BoxIcon::Question);
}

}  // namespace
}  // namespace vl
