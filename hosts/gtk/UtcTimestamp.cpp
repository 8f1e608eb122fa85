#include "gtk/UtcTimestamp.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace brevanta {

namespace {

using namespace std::chrono;

constexpr sys_days firstDay = year(0) / January / 1;
constexpr sys_days endOfTime = year(10000) / January / 1;
constexpr std::string_view pattern = "0000-00-00T00:00:00.000Z"; // A zero stands for any digit.

bool hasTheForm(std::string_view text)
{
    if (text.size() != pattern.size())
        return false;
    for (std::size_t place = 0; place < pattern.size(); ++place) {
        const bool isDigit = text[place] >= '0' && text[place] <= '9';
        if (pattern[place] == '0' ? !isDigit : text[place] != pattern[place])
            return false;
    }
    return true;
}

int number(std::string_view text, std::size_t place, std::size_t digits)
{
    int value = 0;
    std::from_chars(text.data() + place, text.data() + place + digits, value);
    return value;
}

}

std::optional<std::string> formatUtcTimestamp(double secondsSince1970)
{
    const auto rounded = std::round(secondsSince1970 * 1000);
    constexpr auto least = static_cast<double>(milliseconds(firstDay.time_since_epoch()).count());
    constexpr auto end = static_cast<double>(milliseconds(endOfTime.time_since_epoch()).count());
    if (!(rounded >= least && rounded < end))
        return std::nullopt;
    const sys_time<milliseconds> time(milliseconds(static_cast<std::int64_t>(rounded)));
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    std::array<char, 64> text {};
    const auto length = std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ",
        static_cast<int>(date.year()), static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
        static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count()));
    return std::string(text.data(), static_cast<std::size_t>(length));
}

std::optional<double> parseUtcTimestamp(std::string_view text)
{
    if (!hasTheForm(text))
        return std::nullopt;
    const year_month_day date(year(number(text, 0, 4)), month(static_cast<unsigned>(number(text, 5, 2))),
        day(static_cast<unsigned>(number(text, 8, 2))));
    const hours hour(number(text, 11, 2));
    const minutes minute(number(text, 14, 2));
    const seconds second(number(text, 17, 2));
    if (!date.ok() || hour >= days(1) || minute >= hours(1) || second >= minutes(1))
        return std::nullopt;
    const milliseconds sinceEpoch
        = sys_days(date).time_since_epoch() + hour + minute + second + milliseconds(number(text, 20, 3));
    return static_cast<double>(sinceEpoch.count()) / 1000;
}

}
