#include "base/ErrorState.h"

#include <gtest/gtest.h>

#include "support/Support.h"

namespace vl {
namespace {

TEST(ErrScope, KeepsPendingError) {
    ErrorState::set(ErrNo::Locked);
    {
        const ErrScope scope;
        EXPECT_FALSE(attempt([] { throw Error(ErrNo::Corrupt, "page 3"); }));
        EXPECT_EQ(ErrorState::number(), ErrNo::Corrupt);
    }
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

TEST(ErrScope, PutsTheErrorBackWhenAnExceptionLeaves) {
    ErrorState::set(ErrNo::Io);
    try {
        const ErrScope scope;
        ErrorState::set(ErrNo::Syntax);
        throw 1;
    } catch (int) {
        EXPECT_EQ(ErrorState::number(), ErrNo::Io);
    }
    ErrorState::clear();
}

TEST(Attempt, TellsWhetherTheStepWasDone) {
    const ErrScope scope;
    ErrorState::clear();
    int done = 0;
    EXPECT_TRUE(attempt([&] { ++done; }));
    EXPECT_EQ(ErrorState::number(), ErrNo::None);
    EXPECT_FALSE(attempt([&] {
        throw std::runtime_error("no number of ours");
        ++done;
    }));
    EXPECT_EQ(ErrorState::number(), ErrNo::Unexpected);
    EXPECT_FALSE(attempt([] { throw 42; }));
    EXPECT_EQ(done, 1);
}

TEST(Trace, NamesPlaceAndText) {
    const ErrScope scope;
    const test::TempFolder folder;
    openTrace((folder / "trace.txt").string());
    attempt([] { throw Error(ErrNo::Corrupt, "page 3 is no data page"); });
    const int line = __LINE__ - 1;
    trace("read 12 rows");
    openTrace("");
    attempt([] { throw Error(ErrNo::Corrupt, "after the end"); });
    const std::string text = test::readFile(folder / "trace.txt");
    EXPECT_NE(text.find("ErrorState_test.cpp:" + std::to_string(line) + ": page 3 is no data page"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("read 12 rows"), std::string::npos);
    EXPECT_EQ(text.find("after the end"), std::string::npos);
}

TEST(Trace, AnUnwritableTraceIsNoError) {
    openTrace("/nowhere/at/all");
    trace("lost");
    openTrace("");
    EXPECT_EQ(ErrorState::number(), ErrNo::None);
}

}  // namespace
}  // namespace vl
