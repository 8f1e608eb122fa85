#include "posix/LoginRecordsPosix.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <utmpx.h>

namespace brevanta {

namespace {

class UserAccountingReader {
public:
    UserAccountingReader() { ::setutxent(); }
    ~UserAccountingReader() { ::endutxent(); }
    UserAccountingReader(const UserAccountingReader&) = delete;
    UserAccountingReader& operator=(const UserAccountingReader&) = delete;

    [[nodiscard]] const utmpx* next() { return ::getutxent(); }
};

LoginRecord recordOf(const utmpx& entry)
{
    // The field has no NUL behind it when it is full.
    const auto length = ::strnlen(entry.ut_line, sizeof(entry.ut_line));
    return { std::string(entry.ut_line, length),
        static_cast<double>(entry.ut_tv.tv_sec) + static_cast<double>(entry.ut_tv.tv_usec) / 1e6 };
}

}

std::vector<LoginRecord> readLoginRecords()
{
    std::vector<LoginRecord> records;
    UserAccountingReader reader;
    while (const auto* entry = reader.next()) {
        if (entry->ut_type == USER_PROCESS)
            records.push_back(recordOf(*entry));
    }
    return records;
}

LoginRecordsPosix::LoginRecordsPosix(std::function<bool(std::string_view line)> isConsoleLine, Source source)
    : m_isConsoleLine(std::move(isConsoleLine))
    , m_source(std::move(source))
{
}

std::optional<double> LoginRecordsPosix::consoleLoginTime() const
{
    std::optional<double> newest;
    for (const auto& record : m_source()) {
        if (m_isConsoleLine(record.line))
            newest = std::max(newest.value_or(record.time), record.time);
    }
    return newest;
}

}
