#include "server/netconf/sessions.h"

#include <utility>

namespace agentd::netconf {

SessionPointer Sessions::begin(const std::string &user, const std::string &peer, std::function<void()> kill)
{
    auto record = std::make_shared<SessionRecord>();
    record->user = user;
    record->peer = peer;
    record->since = std::chrono::system_clock::now();
    const std::lock_guard lock(mutex_);
    // Numbers are used again only after all others were: zero is none.
    do
        record->id = ++last_ == 0 ? ++last_ : last_;
    while (entries_.contains(record->id));
    entries_.emplace(record->id, Entry{record, std::move(kill)});
    ++begun;
    return record;
}

void Sessions::end(const SessionPointer &session, bool orderly)
{
    session->hasEnded = true;
    const std::lock_guard lock(mutex_);
    if (entries_.erase(session->id) > 0 && !orderly)
        ++dropped;
}

SessionPointer Sessions::kill(std::uint32_t id)
{
    Entry entry;
    {
        const std::lock_guard lock(mutex_);
        const auto found = entries_.find(id);
        if (found == entries_.end() || found->second.record->hasEnded)
            return nullptr;
        entry = found->second;
        entry.record->hasEnded = true;
    }
    entry.kill();
    return entry.record;
}

std::size_t Sessions::count() const
{
    const std::lock_guard lock(mutex_);
    return entries_.size();
}

std::vector<SessionPointer> Sessions::all() const
{
    std::vector<SessionPointer> records;
    const std::lock_guard lock(mutex_);
    records.reserve(entries_.size());
    for (const auto &[id, entry] : entries_)
        records.push_back(entry.record);
    return records;
}

} // namespace agentd::netconf
