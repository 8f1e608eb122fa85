#include "functional/support/TemporaryDirectory.h"
#include "posix/LoginRecordsPosix.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <utmpx.h>
#ifdef __GLIBC__
#include <utmp.h>
#endif

namespace brevanta {

namespace {

bool isConsole(std::string_view line) { return line == "console" || line.starts_with(':'); }

}

TEST(LoginRecordsTest, TheNewestRecordOfAConsoleLineCounts)
{
    struct Case {
        const char* name;
        std::vector<LoginRecord> records;
        std::optional<double> expected;
    };
    const Case cases[] = {
        { "no record at all", {}, std::nullopt },
        { "no console among them", { { "pts/0", 100 }, { "ttys001", 200 }, { "", 300 } }, std::nullopt },
        { "one", { { "console", 100.5 } }, 100.5 },
        { "others are newer", { { "pts/0", 900 }, { "console", 100 }, { "pts/1", 800 } }, 100 },
        { "newest last", { { "console", 100 }, { ":0", 200 } }, 200 },
        { "newest first", { { ":0", 200 }, { "console", 100 } }, 200 },
        { "before 1970 and at its begin", { { "console", -5 }, { "console", 0 } }, 0 },
        { "before 1970 only", { { "console", -5 } }, -5 },
    };
    for (const auto& [name, records, expected] : cases) {
        const LoginRecordsPosix login(isConsole, [&records] { return records; });
        EXPECT_EQ(login.consoleLoginTime(), expected) << name;
    }
}

TEST(LoginRecordsTest, IsReadAnewAtEachQuestion)
{
    std::vector<LoginRecord> records;
    const LoginRecordsPosix login(isConsole, [&records] { return records; });
    EXPECT_EQ(login.consoleLoginTime(), std::nullopt);
    records.push_back({ "console", 7 });
    EXPECT_EQ(login.consoleLoginTime(), 7);
}

#ifdef __GLIBC__

namespace {

class AccountingFile {
public:
    AccountingFile() { ::utmpname(m_path.c_str()); }
    ~AccountingFile() { ::utmpname(_PATH_UTMP); }
    AccountingFile(const AccountingFile&) = delete;
    AccountingFile& operator=(const AccountingFile&) = delete;

    void append(short type, std::string_view line, std::int32_t seconds, std::int32_t microseconds = 0) const
    {
        utmpx entry {};
        entry.ut_type = type;
        std::ranges::copy(line, entry.ut_line);
        entry.ut_tv.tv_sec = static_cast<decltype(entry.ut_tv.tv_sec)>(seconds); // Unsigned in newer headers.
        entry.ut_tv.tv_usec = microseconds;
        std::ofstream(m_path, std::ios::app | std::ios::binary)
            .write(reinterpret_cast<const char*>(&entry), sizeof(entry));
    }

    [[nodiscard]] const std::string& path() const { return m_path; }

private:
    functional::TemporaryDirectory m_folder;
    std::string m_path { (m_folder.path() / "utmp").string() };
};

}

TEST(LoginRecordsTest, AMissingDatabaseHoldsNoRecord)
{
    const AccountingFile file;
    EXPECT_TRUE(readLoginRecords().empty());
}

TEST(LoginRecordsTest, ReadsUsersSessionsAndNothingElse)
{
    const AccountingFile file;
    const std::string longestLine(sizeof(utmpx::ut_line), 'l');
    file.append(BOOT_TIME, "~", 50);
    file.append(USER_PROCESS, ":0", 100, 250'000);
    file.append(LOGIN_PROCESS, "tty1", 150);
    file.append(DEAD_PROCESS, ":0", 300);
    file.append(USER_PROCESS, longestLine, 200);
    const std::vector<LoginRecord> expected { { ":0", 100.25 }, { longestLine, 200 } };
    EXPECT_EQ(readLoginRecords(), expected);
    EXPECT_EQ(readLoginRecords(), expected) << "from the begin once more";
}

TEST(LoginRecordsTest, ADamagedTailIsNoRecord)
{
    const AccountingFile file;
    file.append(USER_PROCESS, "console", 100);
    std::ofstream(file.path(), std::ios::app) << "cut short";
    EXPECT_EQ(readLoginRecords(), (std::vector<LoginRecord> { { "console", 100 } }));
}

#endif

}
