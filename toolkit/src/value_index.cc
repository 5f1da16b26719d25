#include "value_index.h"

#include <algorithm>
#include <utility>

namespace tk {

void ValueIndex::put(const Scope &scope, lyd_node *node, const std::string &value)
{
    erase(scope, node);
    scopes_[scope].nodes.emplace(value, node);
    places_[node].push_back({scope, value});
}

// Without nodes, the scope of a parent is closed: the parent may be gone.
void ValueIndex::take(const Place &place, const lyd_node *node)
{
    const auto values = scopes_.find(place.scope);
    if (values == scopes_.end())
        return;
    auto &nodes = values->second.nodes;
    const auto [first, last] = nodes.equal_range(place.value);
    const auto found = std::find_if(first, last, [node](const auto &one) { return one.second == node; });
    if (found != last)
        nodes.erase(found);
    if (nodes.empty() && place.scope.parent && !values->second.isFresh)
        scopes_.erase(values);
}

void ValueIndex::erase(const Scope &scope, const lyd_node *node)
{
    const auto known = places_.find(node);
    if (known == places_.end())
        return;
    auto &places = known->second;
    const auto place =
        std::find_if(places.begin(), places.end(), [&](const Place &one) { return one.scope == scope; });
    if (place == places.end())
        return;
    take(*place, node);
    places.erase(place);
    if (places.empty())
        places_.erase(known);
}

void ValueIndex::erase(const lyd_node *node)
{
    const auto known = places_.find(node);
    if (known == places_.end())
        return;
    for (const Place &place : known->second)
        take(place, node);
    places_.erase(known);
}

std::vector<lyd_node *> ValueIndex::find(const Scope &scope, const std::string &value) const
{
    std::vector<lyd_node *> found;
    if (const auto values = scopes_.find(scope); values != scopes_.end()) {
        const auto [first, last] = values->second.nodes.equal_range(value);
        for (auto node = first; node != last; ++node)
            found.push_back(node->second);
    }
    return found;
}

void ValueIndex::keep()
{
    for (auto values = scopes_.begin(); values != scopes_.end();) {
        values->second.isFresh = false;
        const bool closes = values->second.nodes.empty() && values->first.parent;
        values = closes ? scopes_.erase(values) : std::next(values);
    }
}

void ValueIndex::discard()
{
    for (auto values = scopes_.begin(); values != scopes_.end();) {
        if (!values->second.isFresh) {
            ++values;
            continue;
        }
        for (const auto &[value, node] : std::exchange(values->second.nodes, {}))
            erase(values->first, node);
        values = scopes_.erase(values);
    }
}

} // namespace tk
