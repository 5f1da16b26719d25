#include "switchsim/calls.h"

#include <algorithm>

namespace switchsim {

void Answering::refuse(std::string_view text, std::int32_t uiErr, std::int32_t appErr)
{
    reply_->ui_err = uiErr;
    reply_->app_err = appErr;
    reply_->reply_buf = keep(text);
}

char *Answering::keep(std::string_view text)
{
    auto copy = std::make_shared<std::string>(text);
    kept_.push_back(copy);
    return copy->data();
}

std::vector<std::uint32_t> *Answering::keepNumbers(std::vector<std::uint32_t> numbers)
{
    auto kept = std::make_shared<std::vector<std::uint32_t>>(std::move(numbers));
    kept_.push_back(kept);
    return kept.get();
}

Call &Call::withArgument(std::string shownAs)
{
    argumentName = std::move(shownAs);
    return *this;
}

Call &Call::quiet()
{
    isQuiet = true;
    return *this;
}

Call &Call::slow()
{
    isSlow = true;
    return *this;
}

namespace {

const ProtobufCFieldDescriptor *replyField(const ProtobufCMessageDescriptor &answer)
{
    const auto *field = protobuf_c_message_descriptor_get_field_by_name(&answer, "reply");
    if (field == nullptr) // the routing daemon's word for it
        field = protobuf_c_message_descriptor_get_field_by_name(&answer, "common");
    return field != nullptr && field->descriptor == &common_resp__descriptor ? field : nullptr;
}

} // namespace

CommonResp *attachReply(ProtobufCMessage &answer, CommonResp &reply)
{
    if (answer.descriptor == &common_resp__descriptor)
        return reinterpret_cast<CommonResp *>(&answer);
    const auto *field = replyField(*answer.descriptor);
    if (field == nullptr)
        return nullptr;
    void *member = reinterpret_cast<unsigned char *>(&answer) + field->offset;
    *static_cast<CommonResp **>(member) = &reply;
    return &reply;
}

bool hasReply(const Call &call)
{
    return call.answer == &common_resp__descriptor || replyField(*call.answer) != nullptr;
}

Call &CallTable::add(Call call)
{
    auto name = call.name;
    return calls_.emplace(std::move(name), std::move(call))->second;
}

void CallTable::onValue(std::string_view name, std::function<std::int32_t()> value)
{
    on<ValueRequest, ValueAnswer>(name, value_request__descriptor, value_answer__descriptor,
                                  [value = std::move(value)](const ValueRequest &, ValueAnswer &answer,
                                                             Answering &) { answer.value = value(); })
        .quiet();
}

const Call *CallTable::find(std::string_view name, std::uint32_t code) const
{
    const auto [begin, end] = calls_.equal_range(name);
    const auto found = std::find_if(begin, end, [code](const auto &row) { return row.second.code == code; });
    return found == end ? nullptr : &found->second;
}

bool CallTable::canRefuse(std::string_view name) const
{
    const auto [begin, end] = calls_.equal_range(name);
    return std::any_of(begin, end, [](const auto &row) { return hasReply(row.second); });
}

} // namespace switchsim
