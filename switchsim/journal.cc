#include "switchsim/journal.h"

#include "backend/field_kind.h"
#include "backend/wire_check.h"

namespace switchsim {
namespace {

struct FreeMessage {
    void operator()(ProtobufCMessage *message) const { protobuf_c_message_free_unpacked(message, nullptr); }
};

Json unpackedAsJson(const ProtobufCMessageDescriptor &descriptor, const backend::Bytes &bytes)
{
    const std::unique_ptr<ProtobufCMessage, FreeMessage> message(backend::unpackChecked(descriptor, bytes));
    return message ? asJson(*message) : Json(nullptr);
}

std::size_t weightOf(const JournalLine &line)
{
    return sizeof(line) + line.request.size() + (line.answer ? line.answer->size() : 0);
}

// The arguments that stand beside the record come first, under their names.
Json requestAsJson(const JournalLine &line)
{
    const Call &call = *line.call;
    Json request = Json::object();
    if (call.code != 0) {
        request["message"] = backend::recordName(*call.request);
        request["code"] = call.code;
        request["sub_type"] = line.subType;
    }
    if (!call.argumentName.empty())
        request[call.argumentName] = line.argument;
    // A member of the record goes before an argument of the same name.
    request.update(unpackedAsJson(*call.request, line.request));
    return request;
}

} // namespace

Json asJson(const JournalLine &line)
{
    Json json;
    json["seq"] = line.seq;
    json["call"] = line.call->name;
    json["request"] = requestAsJson(line);
    json["answer"] = line.answer ? unpackedAsJson(*line.call->answer, *line.answer) : Json(nullptr);
    return json;
}

std::uint64_t Journal::begin(const Call &call, const backend::Request &request)
{
    const std::lock_guard lock(mutex_);
    JournalLine line;
    line.seq = ++last_;
    line.call = &call;
    line.argument = request.head.argument;
    line.subType = request.head.subType;
    line.request.assign(request.message.begin(), request.message.end());
    bytes_ += weightOf(line);
    lines_.push_back(std::move(line));
    dropOldest();
    return last_;
}

void Journal::finish(std::uint64_t seq, std::optional<backend::Bytes> answer)
{
    {
        const std::lock_guard lock(mutex_);
        if (lines_.empty() || seq < lines_.front().seq)
            return;
        auto &line = lines_[static_cast<std::size_t>(seq - lines_.front().seq)];
        bytes_ += answer ? answer->size() : 0;
        line.answer = std::move(answer);
        line.isFinished = true;
        dropOldest();
    }
    changed_.notify_all();
}

void Journal::dropOldest()
{
    while (lines_.size() > kMaxLines || (bytes_ > kMaxBytes && lines_.size() > 1)) {
        bytes_ -= weightOf(lines_.front());
        lines_.pop_front();
    }
}

std::vector<JournalLine> Journal::readAfter(std::uint64_t seq, std::size_t limit) const
{
    const std::lock_guard lock(mutex_);
    std::vector<JournalLine> found;
    if (!hasAfter(seq))
        return found;
    const std::uint64_t first = std::max(seq + 1, lines_.front().seq);
    for (auto i = static_cast<std::size_t>(first - lines_.front().seq); i < lines_.size(); i++) {
        if (!lines_[i].isFinished || found.size() == limit)
            break;
        found.push_back(lines_[i]);
    }
    return found;
}

bool Journal::waitAfter(std::uint64_t seq, std::chrono::milliseconds time) const
{
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, time, [this, seq] { return hasAfter(seq); });
}

bool Journal::hasAfter(std::uint64_t seq) const
{
    if (lines_.empty() || seq >= last_)
        return false;
    const std::uint64_t first = std::max(seq + 1, lines_.front().seq);
    return lines_[static_cast<std::size_t>(first - lines_.front().seq)].isFinished;
}

} // namespace switchsim
