// What is opened and what is refused.
#include <gtest/gtest.h>

#include "MemoryFile.h"
#include "support/Support.h"

namespace vl {
namespace {

using test::Disk;

TEST(JetHeader, RefusesWhatIsNoJet4FileAndSaysWhatItIs) {
    const std::string good = test::readFile(test::repoFile("data/first-light.RemindDB"));
    struct Case {
        const char* what;
        std::string bytes;
    };
    const auto with = [&](std::size_t at, const std::string& bytes) {
        std::string changed = good;
        return changed.replace(at, bytes.size(), bytes);
    };
    const Case cases[] = {
        {"is empty, it is no Jet 4 database", ""},
        {"is no Jet 4 database", "Some text, which is no database at all."},
        {"is no Jet 4 database", std::string(8192, '\0')},
        {"is no Jet 4 database", with(4, "standard")},
        {"is a Jet 3 database", with(0x14, std::string(1, '\0'))},
        {"later generation (version 2)", with(0x14, "\2")},
        {"later generation (version 5)", with(0x14, "\5")},
        {"later generation (version 2)", with(4, std::string("Standard ACE DB\0\2", 17))},
        {"encrypted", with(0x3E, "\1")},
        {"encrypted", with(0x41, "\1")},
        {"not even the first page", good.substr(0, 4095)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Disk disk(c.bytes);
        try {
            test::openMemory(disk);
            ADD_FAILURE() << "opened";
        } catch (const Error& e) {
            EXPECT_EQ(e.number(), ErrNo::Format);
            EXPECT_NE(std::string(e.what()).find(c.what), std::string::npos) << e.what();
        }
    }
}

TEST(JetOpen, TellsAFileThatIsNotThereFromOneThatIsRefused) {
    const test::TempFolder folder;
    const auto open = [](const std::filesystem::path& path) {
        return test::errorOf([&] { jet::Database::open(path.string(), jet::Access::Read); });
    };
    EXPECT_EQ(open(folder / "absent.mdb"), ErrNo::NotFound);
    EXPECT_EQ(open(folder / "absent" / "absent.mdb"), ErrNo::NotFound);
    EXPECT_EQ(open(folder.path()), ErrNo::Io);
    test::writeFile(folder / "empty.mdb", "");
    EXPECT_EQ(open(folder / "empty.mdb"), ErrNo::Format);
}

TEST(JetOpen, ReadsTheFirstPageOnly) {
    class Counting : public test::MemoryFile {
    public:
        Counting(Disk& disk, std::uint64_t& bytes) : MemoryFile(disk), bytes_(bytes) {}
        void read(std::uint64_t offset, std::span<std::byte> bytes) const override {
            bytes_ += bytes.size();
            MemoryFile::read(offset, bytes);
        }

    private:
        std::uint64_t& bytes_;
    };
    Disk disk(test::readFile(test::repoFile("data/first-light.RemindDB")));
    std::uint64_t bytes = 0;
    const auto db =
        jet::Database::open(std::make_unique<Counting>(disk, bytes), "memory", jet::Access::Read);
    EXPECT_EQ(bytes, jet::kPageSize);
    EXPECT_EQ(db.table("reminders").name(), "Reminders");
    EXPECT_EQ(test::errorOf([&] { db.table("Remind"); }), ErrNo::NotFound);
}

}  // namespace
}  // namespace vl
