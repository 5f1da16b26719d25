#include "server/restconf/conditions.h"

#include "server/restconf/errors.h"
#include "server/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>

namespace agentd::restconf {
namespace {

using std::chrono::days;
using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

constexpr std::array<std::string_view, 7> kWeekdays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array<std::string_view, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// 64-bit FNV-1a: tells answers of one resource apart, no more is asked of it.
std::uint64_t digest(std::string_view text)
{
    std::uint64_t value = 14695981039346656037U;
    for (const char c : text)
        value = (value ^ static_cast<unsigned char>(c)) * 1099511628211U;
    return value;
}

bool isTagCharacter(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte == 0x21 || (byte >= 0x23 && byte != 0x7f);
}

// Consumes one entity tag at the front.
TagList::Tag takeTag(std::string_view &text)
{
    TagList::Tag tag;
    if (text.substr(0, 2) == "W/") {
        tag.isWeak = true;
        text.remove_prefix(2);
    }
    const auto end = text.empty() || text.front() != '"' ? text.npos : text.find('"', 1);
    if (end == text.npos)
        throw badHeader("an entity tag stands in double quotes");
    tag.value = text.substr(1, end - 1);
    if (!std::all_of(tag.value.begin(), tag.value.end(), isTagCharacter))
        throw badHeader("an entity tag holds a bad character");
    text.remove_prefix(end + 1);
    return tag;
}

TagList parseTags(std::string_view text)
{
    TagList list;
    if (trimmed(text) == "*") {
        list.any = true;
        return list;
    }
    for (;;) {
        text = trimmed(text);
        list.tags.push_back(takeTag(text));
        text = trimmed(text);
        if (text.empty())
            return list;
        if (text.front() != ',')
            throw badHeader("entity tags are separated by commas");
        text.remove_prefix(1);
    }
}

bool isOfVersion(const std::string &tag, const tk::Stamp &stamp)
{
    return tag == stamp.tag || tag.substr(0, tag.rfind('.')) == stamp.tag;
}

// If-Match compares strongly: a weak tag never matches. The version decides for reads and edits alike.
bool matches(const TagList &list, const tk::Stamp &stamp)
{
    return std::any_of(list.tags.begin(), list.tags.end(),
                       [&](const TagList::Tag &tag) { return !tag.isWeak && isOfVersion(tag.value, stamp); });
}

Seconds inSeconds(std::chrono::system_clock::time_point when)
{
    return std::chrono::floor<seconds>(when);
}

void checkUnmodified(const Conditions &conditions, const tk::Stamp &stamp)
{
    // If-Match is the more precise of the two and overrides it.
    if (!conditions.ifMatch && conditions.ifUnmodifiedSince &&
        inSeconds(stamp.modified) > *conditions.ifUnmodifiedSince)
        throw preconditionFailed("the datastore was changed after the time given in If-Unmodified-Since");
}

// A number of exactly so many digits at that place, or -1.
int digitsAt(std::string_view text, std::size_t at, std::size_t count)
{
    int value = -1;
    const char *const first = text.data() + at;
    const auto [stop, error] = std::from_chars(first, first + count, value);
    return error == std::errc() && stop == first + count && *first != '-' ? value : -1;
}

} // namespace

Conditions parseConditions(const ConditionHeaders &headers)
{
    Conditions conditions;
    if (headers.ifMatch)
        conditions.ifMatch = parseTags(*headers.ifMatch);
    if (headers.ifNoneMatch)
        conditions.ifNoneMatch = parseTags(*headers.ifNoneMatch);
    if (headers.ifModifiedSince)
        conditions.ifModifiedSince = parseHttpDate(*headers.ifModifiedSince);
    if (headers.ifUnmodifiedSince)
        conditions.ifUnmodifiedSince = parseHttpDate(*headers.ifUnmodifiedSince);
    return conditions;
}

void checkEdit(const Conditions &conditions, const tk::Stamp &stamp, bool exists)
{
    if (conditions.ifMatch && !(conditions.ifMatch->any ? exists : matches(*conditions.ifMatch, stamp)))
        throw preconditionFailed("If-Match does not name the present version");
    checkUnmodified(conditions, stamp);
    if (conditions.ifNoneMatch &&
        (conditions.ifNoneMatch->any ? exists : matches(*conditions.ifNoneMatch, stamp)))
        throw preconditionFailed("If-None-Match names the present version");
}

bool isNotModified(const Conditions &conditions, const Representation &representation)
{
    // Something is answered, so "*" is met.
    if (conditions.ifMatch && !conditions.ifMatch->any && !matches(*conditions.ifMatch, representation.stamp))
        throw preconditionFailed("If-Match does not name the present version");
    checkUnmodified(conditions, representation.stamp);
    if (conditions.ifNoneMatch) {
        const auto &tags = conditions.ifNoneMatch->tags;
        return conditions.ifNoneMatch->any ||
            std::any_of(tags.begin(), tags.end(),
                        [&](const TagList::Tag &tag) { return tag.value == representation.tag; });
    }
    return conditions.ifModifiedSince && !representation.mayHoldState &&
        inSeconds(representation.stamp.modified) <= *conditions.ifModifiedSince;
}

std::string entityTag(const tk::Stamp &stamp, std::optional<std::string_view> body)
{
    if (!body)
        return stamp.tag;
    std::array<char, 17> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), digest(*body), 16);
    return stamp.tag + "." + std::string(text.data(), error == std::errc() ? end : text.data());
}

std::string httpDate(std::chrono::system_clock::time_point when)
{
    const Seconds time = inSeconds(when);
    const auto day = std::chrono::floor<days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(time - day);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s, %02u %s %04d %02d:%02d:%02d GMT",
                  kWeekdays[std::chrono::weekday(day).c_encoding()].data(), unsigned{date.day()},
                  kMonths[unsigned{date.month()} - 1].data(), int{date.year()},
                  static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()));
    return text.data();
}

std::optional<Seconds> parseHttpDate(std::string_view text)
{
    static constexpr std::string_view shape = "Sun, 06 Nov 1994 08:49:37 GMT";
    text = trimmed(text);
    if (text.size() != shape.size() || text.substr(3, 2) != ", " || text[7] != ' ' || text[11] != ' ' ||
        text[16] != ' ' || text[19] != ':' || text[22] != ':' || text.substr(25) != " GMT")
        return std::nullopt;
    const auto month = std::find(kMonths.begin(), kMonths.end(), text.substr(8, 3));
    const int day = digitsAt(text, 5, 2), year = digitsAt(text, 12, 4);
    const int hour = digitsAt(text, 17, 2), minute = digitsAt(text, 20, 2), second = digitsAt(text, 23, 2);
    const std::chrono::year_month_day date(
        std::chrono::year{year}, std::chrono::month(static_cast<unsigned>(month - kMonths.begin()) + 1),
        std::chrono::day(static_cast<unsigned>(day)));
    const bool isTime = hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second <= 60;
    if (month == kMonths.end() || day < 1 || year < 0 || !date.ok() || !isTime)
        return std::nullopt;
    return std::chrono::sys_days(date) + hours(hour) + minutes(minute) + seconds(second);
}

} // namespace agentd::restconf
