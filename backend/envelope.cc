#include "backend/envelope.h"

#include "backend/big_endian.h"

#include <algorithm>

namespace backend {
namespace {

constexpr std::uint8_t kRequest = 1;
constexpr std::uint8_t kAnswer = 2;
constexpr std::size_t kRequestHead = 14;
constexpr std::size_t kAnswerHead = 2;

} // namespace

std::size_t beginRequest(const RequestHead &head, std::size_t length, Bytes &out)
{
    const auto name = head.call.substr(0, 255);
    out.resize(kRequestHead + name.size() + length);
    out[0] = kRequest;
    out[1] = static_cast<std::uint8_t>(name.size());
    putU32(&out[2], static_cast<std::uint32_t>(head.argument));
    putU32(&out[6], head.code);
    putU32(&out[10], head.subType);
    std::copy(name.begin(), name.end(), out.begin() + kRequestHead);
    return kRequestHead + name.size();
}

std::size_t beginAnswer(bool present, std::size_t length, Bytes &out)
{
    out.resize(kAnswerHead + length);
    out[0] = kAnswer;
    out[1] = present ? 1 : 0;
    return kAnswerHead;
}

std::optional<Request> readRequest(BytesView bytes)
{
    if (bytes.size() < kRequestHead || bytes[0] != kRequest)
        return std::nullopt;
    const std::size_t messageAt = kRequestHead + bytes[1];
    if (bytes.size() < messageAt || bytes.size() - messageAt > kMaxMessage)
        return std::nullopt;
    Request request;
    request.head.call = {reinterpret_cast<const char *>(&bytes[0]) + kRequestHead, bytes[1]};
    request.head.argument = static_cast<std::int32_t>(getU32(&bytes[2]));
    request.head.code = getU32(&bytes[6]);
    request.head.subType = getU32(&bytes[10]);
    request.message = bytes.subspan(messageAt);
    return request;
}

std::optional<Answer> readAnswer(BytesView bytes)
{
    if (bytes.size() < kAnswerHead || bytes[0] != kAnswer || bytes[1] > 1)
        return std::nullopt;
    const auto message = bytes.subspan(kAnswerHead);
    const bool present = bytes[1] == 1;
    if (message.size() > kMaxMessage || (!present && !message.empty()))
        return std::nullopt;
    return Answer{present, message};
}

} // namespace backend
