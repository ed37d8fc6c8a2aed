#include "db/Connection.h"

#include <gmock/gmock.h>

#include "base/ErrorState.h"
#include "support/ErrorOf.h"
#include "support/Support.h"

namespace vl {
namespace {

using test::errorOf;

std::string stringFor(const std::string& file) {
    return "Provider=Microsoft.Jet.OLEDB.4.0; Data Source=" + file + "; User Id=admin;";
}

class ConnectionTest : public testing::Test {
protected:
    std::string copyTo(const std::string& name) {
        const auto path = folder_ / name;
        vl::test::writeFile(path,
                            vl::test::readFile(vl::test::repoFile("data/first-light.RemindDB")));
        return path.string();
    }

    vl::test::TempFolder folder_;
    Connection connection_;
};

TEST_F(ConnectionTest, OpensAndCloses) {
    EXPECT_EQ(connection_.State(), Connection::kStateClosed);
    EXPECT_EQ(connection_.ConnectionString(), "");
    const std::string text = stringFor(copyTo("a.RemindDB"));
    connection_.Open(text);
    EXPECT_EQ(connection_.State(), Connection::kStateOpen);
    EXPECT_EQ(connection_.ConnectionString(), text);
    EXPECT_EQ(errorOf([&] { connection_.Open(text); }), ErrNo::Exists);
    EXPECT_EQ(connection_.State(), Connection::kStateOpen);
    connection_.Close();
    connection_.Close();
    EXPECT_EQ(connection_.State(), Connection::kStateClosed);
    EXPECT_EQ(connection_.ConnectionString(), text);
}

TEST_F(ConnectionTest, TakesThePathAsItStands) {
    for (const char* name : {"with blanks .RemindDB", "semi;colon.RemindDB", "equal=sign.RemindDB",
                             "\xC3\xA4\xE6\x9C\x83.RemindDB", "; User Id=odd; User Id=.RemindDB"}) {
        SCOPED_TRACE(name);
        Connection connection;
        connection.Open(stringFor(copyTo(name)));
        EXPECT_EQ(connection.State(), Connection::kStateOpen);
    }
    connection_.Open("data source=" + copyTo("plain.RemindDB"));
    EXPECT_EQ(connection_.State(), Connection::kStateOpen);
}

TEST_F(ConnectionTest, SaysWhyItDoesNotOpen) {
    const std::string file = copyTo("a.RemindDB");
    vl::test::writeFile(folder_ / "text.RemindDB", "not a database");
    EXPECT_EQ(errorOf([&] { connection_.Open(stringFor("")); }), ErrNo::NotFound);
    EXPECT_EQ(errorOf([&] { connection_.Open("nothing"); }), ErrNo::NotFound);
    EXPECT_EQ(errorOf([&] { connection_.Open(stringFor(file + "x")); }), ErrNo::NotFound);
    EXPECT_EQ(errorOf([&] { connection_.Open(stringFor((folder_ / "text.RemindDB").string())); }),
              ErrNo::Format);
    EXPECT_EQ(errorOf([&] { connection_.Open(stringFor(file), "admin", "secret"); }),
              ErrNo::Unsupported);
    EXPECT_EQ(connection_.State(), Connection::kStateClosed);
    EXPECT_EQ(errorOf([&] { connection_.Execute("SELECT * FROM Reminders"); }), ErrNo::NotFound);
}

TEST_F(ConnectionTest, WritesThoughItWasOpenedForReading) {
    connection_.Open(stringFor(copyTo("a.RemindDB")));
    EXPECT_EQ(connection_.Execute("SELECT * FROM Reminders WHERE Hidden").rows.size(), 0U);
    EXPECT_EQ(
        connection_.Execute("UPDATE Reminders SET Hidden = True WHERE EventID < 1004").affected, 3);
    EXPECT_EQ(connection_.Execute("SELECT * FROM Reminders WHERE Hidden").rows.size(), 3U);
    EXPECT_EQ(connection_.State(), Connection::kStateOpen);
}

// Another program writes the file anew, and gives the new one its name.
TEST_F(ConnectionTest, GoesOnWithTheFileThatTookThePlaceOfTheOldOne) {
    const std::string file = copyTo("a.RemindDB");
    const std::string count = "SELECT COUNT(*) FROM Reminders";
    const std::string change = "UPDATE Reminders SET Hidden = True WHERE EventID < 1003";
    const auto replace = [&](int gone) {
        const std::string other = copyTo("b.RemindDB");
        Connection writer;
        writer.Open(stringFor(other));
        writer.Execute("DELETE FROM Reminders WHERE EventID > " + std::to_string(1012 - gone));
        writer.Close();
        std::filesystem::rename(other, file);
    };
    const auto shown = [&] {
        int rows = 0;
        connection_.ForRows("SELECT * FROM Reminders", [&](sql::RowStream& stream) {
            for (rows = 0; stream.next();) {
                ++rows;
            }
        });
        return rows;
    };
    const auto counted = [&] { return connection_.Execute(count).rows[0][0].toInt32(); };
    connection_.Open(stringFor(file));
    ASSERT_EQ(counted(), 12);
    replace(1);
    const int fewer = counted();
    EXPECT_LT(fewer, 12);
    replace(2);
    EXPECT_LT(shown(), fewer);
    EXPECT_EQ(connection_.Execute(change).affected, 2);
    copyTo("c.RemindDB");
    std::filesystem::rename(folder_ / "c.RemindDB", file);
    EXPECT_EQ(connection_.Execute(change).affected, 2) << "written to the new one";
    EXPECT_EQ(connection_.Execute("SELECT * FROM Reminders WHERE Hidden").rows.size(), 2U);
    EXPECT_EQ(counted(), 12);
    std::filesystem::remove(file);
    EXPECT_EQ(errorOf([&] { counted(); }), ErrNo::NotFound);
    EXPECT_EQ(connection_.State(), Connection::kStateOpen);
}

}  // namespace
}  // namespace vl
