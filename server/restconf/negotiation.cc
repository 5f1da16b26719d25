#include "server/restconf/negotiation.h"

#include "server/text.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <vector>

namespace agentd::restconf {
namespace {

constexpr std::array kDataOffers{
    Offer{"application/yang-data+json", tk::Encoding::json},
    Offer{"application/yang-data+xml", tk::Encoding::xml},
    Offer{"application/json", tk::Encoding::json},
    Offer{"application/xml", tk::Encoding::xml},
};

constexpr std::array kHostMetaOffers{
    Offer{"application/xrd+xml", tk::Encoding::xml},
    Offer{"application/json", tk::Encoding::json},
    Offer{"application/xml", tk::Encoding::xml},
};

constexpr int kFullQuality = 1000;

struct Range {
    std::string_view type; // "application" or "*"
    std::string_view subtype;
    int quality = kFullQuality; // in thousandths
};

// qvalue of RFC 9110: "0", "1" and up to three decimals. -1: malformed.
int parseQuality(std::string_view text)
{
    if (text.empty() || text.size() > 5 || (text[0] != '0' && text[0] != '1') ||
        (text.size() > 1 && text[1] != '.'))
        return -1;
    int value = text[0] - '0';
    for (std::size_t i = 2; i < 5; ++i) {
        const char digit = i < text.size() ? text[i] : '0';
        if (digit < '0' || digit > '9')
            return -1;
        value = value * 10 + (digit - '0');
    }
    return value > kFullQuality ? -1 : value;
}

std::optional<Range> parseRange(std::string_view text)
{
    const auto pieces = split(text, ';');
    const std::string_view type = trimmed(pieces.front());
    const auto slash = type.find('/');
    if (slash == type.npos || slash == 0 || slash + 1 == type.size())
        return std::nullopt;
    Range range{type.substr(0, slash), type.substr(slash + 1)};
    if (range.type == "*" && range.subtype != "*")
        return std::nullopt;
    for (auto piece = pieces.begin() + 1; piece != pieces.end(); ++piece) {
        const std::string_view parameter = trimmed(*piece);
        if (parameter.size() > 2 && equalsIgnoringCase(parameter.substr(0, 2), "q="))
            range.quality = parseQuality(parameter.substr(2));
    }
    return range.quality < 0 ? std::nullopt : std::optional(range);
}

// 0: doesn't match, 1: */*, 2: application/*, 3: the type itself.
int specificity(const Range &range, std::string_view mediaType)
{
    const auto slash = mediaType.find('/');
    if (range.type == "*")
        return 1;
    if (!equalsIgnoringCase(range.type, mediaType.substr(0, slash)))
        return 0;
    if (range.subtype == "*")
        return 2;
    return equalsIgnoringCase(range.subtype, mediaType.substr(slash + 1)) ? 3 : 0;
}

// The range that decides about the type is the most specific one.
const Range *rangeFor(const std::vector<Range> &ranges, std::string_view mediaType)
{
    const Range *best = nullptr;
    for (const Range &range : ranges) {
        if (specificity(range, mediaType) > (best ? specificity(*best, mediaType) : 0))
            best = &range;
    }
    return best;
}

std::vector<Range> parseAccept(std::string_view accept)
{
    std::vector<Range> ranges;
    for (const std::string_view piece : split(accept, ',')) {
        if (const auto range = parseRange(piece))
            ranges.push_back(*range);
    }
    return ranges;
}

} // namespace

std::span<const Offer> dataOffers()
{
    return kDataOffers;
}

std::span<const Offer> hostMetaOffers()
{
    return kHostMetaOffers;
}

std::optional<Offer> negotiate(std::optional<std::string_view> accept, std::span<const Offer> offers,
                               tk::Encoding preferred)
{
    const auto ranges = parseAccept(accept.value_or("*/*"));
    std::optional<Offer> best;
    std::tuple<int, int, bool> bestRank;
    for (const Offer &offer : offers) {
        const Range *range = rangeFor(ranges, offer.mediaType);
        if (!range || range->quality == 0)
            continue;
        const std::tuple rank(range->quality, specificity(*range, offer.mediaType),
                              offer.encoding == preferred);
        if (!best || rank > bestRank) {
            best = offer;
            bestRank = rank;
        }
    }
    return best;
}

std::optional<tk::Encoding> encodingOf(std::string_view contentType)
{
    const std::string_view type = trimmed(contentType.substr(0, contentType.find(';')));
    const auto offer = std::find_if(kDataOffers.begin(), kDataOffers.end(),
                                    [&](const Offer &o) { return equalsIgnoringCase(o.mediaType, type); });
    return offer == kDataOffers.end() ? std::nullopt : std::optional(offer->encoding);
}

} // namespace agentd::restconf
