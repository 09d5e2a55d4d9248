#include "CrashReport.h"

#include <algorithm>

namespace tarvo::lastwords {

namespace {

/// Years count from March, so that the leap day is a year's last one.
struct Date
{
    std::uint64_t year;
    std::uint64_t month;
    std::uint64_t day;
};

/// Of the proleptic Gregorian calendar, for days since 1970-01-01.
Date dateOf(std::uint64_t days)
{
    constexpr std::uint64_t daysOfEra = 146'097;  // 400 years
    const std::uint64_t shifted = days + 719'468; // since 0000-03-01
    const std::uint64_t era = shifted / daysOfEra;
    const std::uint64_t dayOfEra = shifted % daysOfEra;
    const std::uint64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36'524 - dayOfEra / (daysOfEra - 1)) / 365;
    const std::uint64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::uint64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
    const std::uint64_t month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
    return {era * 400 + yearOfEra + (month <= 2 ? 1 : 0), month, dayOfYear - (153 * monthFromMarch + 2) / 5 + 1};
}

} // namespace

BoundedText &BoundedText::operator<<(const char *text)
{
    while (*text != '\0' && m_size + 1 < m_text.size())
        m_text[m_size++] = *text++;
    m_text[m_size] = '\0';
    return *this;
}

BoundedText &BoundedText::hex(std::uint64_t number)
{
    *this << "0x";
    return add(number, 16, 1);
}

BoundedText &BoundedText::add(std::uint64_t number, unsigned base, unsigned width)
{
    std::array<char, 65> digits{};
    size_t first = digits.size() - 1;
    for (unsigned written = 0; number > 0 || written < width; ++written) {
        digits[--first] = "0123456789abcdef"[number % base];
        number /= base;
    }
    return *this << &digits[first];
}

BoundedText fileName(std::int64_t seconds)
{
    constexpr std::uint64_t secondsOfDay = 86'400;
    const auto since = static_cast<std::uint64_t>(std::max<std::int64_t>(seconds, 0));
    const Date date = dateOf(since / secondsOfDay);
    const std::uint64_t second = since % secondsOfDay;
    BoundedText name;
    name << "crash-";
    name.padded(date.year, 4) << "-";
    name.padded(date.month, 2) << "-";
    name.padded(date.day, 2) << "_";
    name.padded(second / 3600, 2) << "-";
    name.padded(second / 60 % 60, 2) << "-";
    name.padded(second % 60, 2) << ".txt";
    return name;
}

} // namespace tarvo::lastwords
