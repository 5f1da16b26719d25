#include "server/restconf/query.h"

#include "server/restconf/errors.h"
#include "server/restconf/fields.h"
#include "server/restconf/uri.h"
#include "server/text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace agentd::restconf {
namespace {

constexpr unsigned kDeepest = 65535;

template <typename Value>
struct Word {
    std::string_view word;
    Value value;
};

template <typename Value, std::size_t count>
Value oneOf(const std::array<Word<Value>, count> &words, std::string_view name, std::string_view text)
{
    for (const Word<Value> &candidate : words) {
        if (candidate.word == text)
            return candidate.value;
    }
    throw badUri(std::string(name) + ": unknown value '" + printableText(text) + "'");
}

void setContent(Query &query, std::string_view text)
{
    static constexpr std::array words{
        Word<tk::Content>{"all", tk::Content::all},
        Word<tk::Content>{"config", tk::Content::config},
        Word<tk::Content>{"nonconfig", tk::Content::nonconfig},
    };
    query.content = oneOf(words, "content", text);
}

void setDepth(Query &query, std::string_view text)
{
    if (text == "unbounded") {
        query.depth = 0;
        return;
    }
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, query.depth);
    if (error != std::errc() || stop != end || query.depth < 1 || query.depth > kDeepest)
        throw badUri("depth: neither 1 to 65535 nor 'unbounded'");
}

void setFields(Query &query, std::string_view text)
{
    query.fields = parseFields(text);
}

void setWithDefaults(Query &query, std::string_view text)
{
    static constexpr std::array words{
        Word<tk::WithDefaults>{"explicit", tk::WithDefaults::explicitOnly},
        Word<tk::WithDefaults>{"trim", tk::WithDefaults::trim},
        Word<tk::WithDefaults>{"report-all", tk::WithDefaults::reportAll},
        Word<tk::WithDefaults>{"report-all-tagged", tk::WithDefaults::reportAllTagged},
    };
    query.withDefaults = oneOf(words, "with-defaults", text);
}

void setInsert(Query &query, std::string_view text)
{
    static constexpr std::array words{
        Word<tk::InsertWhere>{"first", tk::InsertWhere::first},
        Word<tk::InsertWhere>{"last", tk::InsertWhere::last},
        Word<tk::InsertWhere>{"before", tk::InsertWhere::before},
        Word<tk::InsertWhere>{"after", tk::InsertWhere::after},
    };
    query.insert = oneOf(words, "insert", text);
}

// The value is a path of its own, whose keys are percent-encoded once more (RFC 8040, section 4.8.6).
void setPoint(Query &query, std::string_view text)
{
    if (text.size() < 2 || text.front() != '/')
        throw badUri("point: not the path of a data resource");
    query.point = parseSteps(text.substr(1));
}

struct Parameter {
    std::string_view name;
    std::array<QueryUse, 2> uses;
    void (*set)(Query &, std::string_view);
};

constexpr std::array kParameters{
    Parameter{"content", {QueryUse::read, QueryUse::read}, setContent},
    Parameter{"depth", {QueryUse::read, QueryUse::api}, setDepth},
    Parameter{"fields", {QueryUse::read, QueryUse::read}, setFields},
    Parameter{"with-defaults", {QueryUse::read, QueryUse::read}, setWithDefaults},
    Parameter{"insert", {QueryUse::insert, QueryUse::insert}, setInsert},
    Parameter{"point", {QueryUse::insert, QueryUse::insert}, setPoint},
};

const Parameter &parameterFor(const std::string &name, QueryUse use)
{
    for (const Parameter &parameter : kParameters) {
        if (parameter.name != name)
            continue;
        if (std::find(parameter.uses.begin(), parameter.uses.end(), use) == parameter.uses.end())
            throw badUri("the query parameter '" + name + "' does not belong to this request");
        return parameter;
    }
    throw badUri("unknown query parameter '" + printableText(name) + "'");
}

void checkPoint(const Query &query)
{
    const bool needsPoint = query.insert == tk::InsertWhere::before || query.insert == tk::InsertWhere::after;
    if (needsPoint && query.point.empty())
        throw badUri("insert before and after need a point");
    if (!needsPoint && !query.point.empty())
        throw badUri("point belongs to insert before or after");
}

} // namespace

Query parseQuery(std::optional<std::string_view> text, QueryUse use)
{
    Query query;
    if (!text || text->empty())
        return query;
    std::vector<const Parameter *> seen;
    for (const std::string_view piece : split(*text, '&')) {
        const auto equals = piece.find('=');
        const std::string name = percentDecoded(piece.substr(0, equals));
        const Parameter &parameter = parameterFor(name, use);
        if (std::find(seen.begin(), seen.end(), &parameter) != seen.end())
            throw badUri("the query parameter '" + name + "' stands there twice");
        seen.push_back(&parameter);
        if (equals == piece.npos)
            throw badUri("the query parameter '" + name + "' has no value");
        parameter.set(query, percentDecoded(piece.substr(equals + 1)));
    }
    checkPoint(query);
    return query;
}

} // namespace agentd::restconf
