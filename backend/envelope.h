// What a transport carries: a packed message with the name of the call that it belongs to.
//
// Layout, numbers big-endian:
//   request  u8 1, u8 length of the name, i32 argument, u32 code, u32 sub-type, name, packed message
//   answer   u8 2, u8 1 if an answer follows and 0 if there is none, packed message
#pragma once

#include "backend/bytes.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace backend {

// More than any message of the switch; what is longer is refused on both sides.
inline constexpr std::size_t kMaxMessage = 4U << 20;

struct RequestHead {
    std::string_view call;     // the client function's name, at most 255 characters
    std::int32_t argument = 0; // the number that some calls take beside their record
    std::uint32_t code = 0;    // of a security message
    std::uint32_t subType = 0; // of a security message
};

struct Request {
    RequestHead head;
    BytesView message;
};

struct Answer {
    bool present = false; // false: the daemon took the request and gave no answer
    BytesView message;
};

// Writes the head of a request and makes room for `length` bytes of message behind it. Returns the
// offset of that room. The name is cut at 255 characters.
std::size_t beginRequest(const RequestHead &head, std::size_t length, Bytes &out);

// The same for an answer.
std::size_t beginAnswer(bool present, std::size_t length, Bytes &out);

// What was read points into `bytes`. Nothing: the bytes are no request (no answer).
std::optional<Request> readRequest(BytesView bytes);
std::optional<Answer> readAnswer(BytesView bytes);

} // namespace backend
