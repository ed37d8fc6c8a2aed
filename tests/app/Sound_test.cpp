#include "app/Sound.h"

#include <gtest/gtest.h>
#ifndef _WIN32
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#endif

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>

#include "Environment.h"
#include "app/Files.h"
#include "base/ErrorState.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::repoFile;
using test::TempFolder;
using test::Variable;
using test::writeFile;

// The current folder for the length of a test.
class CurrentFolder {
public:
    explicit CurrentFolder(const fs::path& folder) : before_(fs::current_path()) {
        fs::current_path(folder);
    }
    ~CurrentFolder() { fs::current_path(before_); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

private:
    fs::path before_;
};

TEST(FindSound, LooksInTheCurrentFolderFirst) {
    const TempFolder folder;
    const CurrentFolder here(folder.path());
    EXPECT_EQ(findSound("nowhere.wav"), "");
    writeFile(folder / "reminder.wav", "x");
    writeFile(folder / "-other.wav", "x");
    EXPECT_EQ(findSound(""), (folder / "reminder.wav").string());
    EXPECT_EQ(findSound("reminder.wav"), (folder / "reminder.wav").string());
    EXPECT_EQ(findSound("-other.wav"), (folder / "-other.wav").string());
    EXPECT_EQ(findSound((folder / "reminder.wav").string()), (folder / "reminder.wav").string());
    EXPECT_EQ(findSound("below/reminder.wav"), "");
    EXPECT_EQ(findSound("."), "");
}

TEST(FindSound, ThenBesideTheProgram) {
    const TempFolder elsewhere;
    const CurrentFolder here(elsewhere.path());
    const fs::path data = fs::path(programFolder()) / "data";
    const bool made = fs::create_directory(data);
    writeFile(data / "sound-test.wav", "x");
    EXPECT_EQ(findSound("sound-test.wav"), (data / "sound-test.wav").string());
    fs::remove(data / "sound-test.wav");
    if (made) {
        fs::remove(data);
    }
}

// The sound that is installed: what it is, and that it neither clicks nor clips.
TEST(ReminderSound, IsShortSoftAndMono) {
    const std::string wav = readFile(repoFile("data/reminder.wav"));
    const auto number = [&](std::size_t at, std::size_t bytes) {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < bytes; ++i) {
            value |= static_cast<std::uint32_t>(static_cast<unsigned char>(wav.at(at + i)))
                     << (8 * i);
        }
        return value;
    };
    ASSERT_EQ(wav.substr(0, 4) + wav.substr(8, 8), "RIFFWAVEfmt ");
    EXPECT_EQ(number(20, 2), 1U);      // PCM
    EXPECT_EQ(number(22, 2), 1U);      // mono
    EXPECT_EQ(number(24, 4), 22050U);  // samples a second
    EXPECT_EQ(number(34, 2), 16U);     // bits a sample
    ASSERT_EQ(wav.substr(36, 4), "data");
    const std::size_t samples = number(40, 4) / 2;
    EXPECT_LT(static_cast<double>(samples) / 22050.0, 1.2);
    EXPECT_LT(wav.size(), 64'000U);
    int peak = 0;
    const auto sample = [&](std::size_t i) {
        return static_cast<int>(static_cast<std::int16_t>(number(44 + 2 * i, 2)));
    };
    for (std::size_t i = 0; i < samples; ++i) {
        peak = std::max(peak, std::abs(sample(i)));
    }
    EXPECT_GT(peak, 10'000);
    EXPECT_LT(peak, 30'000);
    EXPECT_LT(std::abs(sample(0)), 50);
    EXPECT_LT(std::abs(sample(samples - 1)), 50);
}

#ifndef _WIN32
/// Fake players first in PATH; each notes that it was called, and with what.
class Players : public testing::Test {
protected:
    void SetUp() override { writeFile(sound, "x"); }

    void install(const std::string& name, const std::string& script) {
        writeFile(folder / name, "#!/bin/sh\necho \"" + name + " $#: $1\" >> '" +
                                     (folder / "calls").string() + "'\n" + script + "\n");
        fs::permissions(folder / name, fs::perms(0755));
    }
    std::string calls() { return readFile(folder / "calls"); }
    std::string call(const std::string& name) { return name + " 1: " + sound.string() + "\n"; }
    static void expectNoChildren() {
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);  // not even a zombie
        EXPECT_EQ(errno, ECHILD);
    }

    TempFolder folder;
    fs::path sound = folder / "a b.wav";
    // Nothing but the fake ones: a real player must not take part.
    Variable path{"PATH", folder.path().c_str()};
    SoundPlayer player;
};

TEST_F(Players, TheFirstThatSucceedsPlays) {
    install("paplay", "exit 0");
    install("pw-play", "exit 0");
    player.play(sound.string());
    player.wait();
    EXPECT_EQ(calls(), call("paplay"));
    EXPECT_FALSE(player.failed());
    EXPECT_FALSE(player.playing());
    expectNoChildren();
}

TEST_F(Players, AFailingOneIsFollowedByTheNext) {
    install("paplay", "exit 1");
    install("pw-play", "kill -9 $$");
    install("aplay", "exit 0");
    player.play(sound.string());
    player.wait();
    EXPECT_EQ(calls(), call("paplay") + call("pw-play") + call("aplay"));
    EXPECT_FALSE(player.failed());
    expectNoChildren();
}

TEST_F(Players, AMissingOneIsPassedOver) {
    install("aplay", "exit 0");
    player.play(sound.string());
    player.wait();
    EXPECT_EQ(calls(), call("aplay"));
    EXPECT_FALSE(player.failed());
}

TEST_F(Players, SaysWhenNobodyPlayedIt) {
    player.play(sound.string());
    player.wait();
    EXPECT_TRUE(player.failed());
    install("paplay", "exit 3");
    player.play(sound.string());
    player.wait();
    EXPECT_TRUE(player.failed());
    install("paplay", "exit 0");
    player.play(sound.string());
    player.wait();
    EXPECT_FALSE(player.failed());
    expectNoChildren();
}

TEST_F(Players, PlaysReminderWavForAnEmptyName) {
    const CurrentFolder here(folder.path());
    writeFile(folder / "reminder.wav", "x");
    install("paplay", "exit 0");
    player.play();
    player.wait();
    EXPECT_EQ(calls(), "paplay 1: " + (folder / "reminder.wav").string() + "\n");
}

TEST_F(Players, StopsWithAllItsHelpers) {
    // A wrapper whose own child would go on playing; the pipe says when both run, and is closed
    // when both are gone.
    const fs::path pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    install("paplay", "exec 3> '" + pipe.string() + "'\n/bin/sleep 600 &\necho up >&3\nwait");
    install("pw-play", "exit 0");
    player.play(sound.string());
    EXPECT_TRUE(player.playing());
    std::FILE* reading = std::fopen(pipe.c_str(), "r");
    ASSERT_NE(reading, nullptr);
    EXPECT_EQ(std::fgetc(reading), 'u');
    player.stop();
    while (std::fgetc(reading) != EOF) {
    }
    std::fclose(reading);
    EXPECT_FALSE(player.playing());
    EXPECT_FALSE(player.failed());
    EXPECT_EQ(calls(), call("paplay"));  // a stopped sound is not tried with the next player
    expectNoChildren();
}

TEST_F(Players, AreStoppedByTheNextSoundAndTheEnd) {
    install("paplay", "exec /bin/sleep 600");
    player.play(sound.string());
    player.play(sound.string());
    { const SoundPlayer other; }
    player.play("nowhere.wav");  // stops the one before even so
    EXPECT_FALSE(player.playing());
    EXPECT_TRUE(player.failed());
    expectNoChildren();
}

TEST_F(Players, KeepsPendingError) {
    ErrorState::set(ErrNo::Locked);
    player.play("nowhere.wav");
    player.play(sound.string());
    player.wait();
    player.stop();
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}
#endif

}  // namespace
}  // namespace vl
