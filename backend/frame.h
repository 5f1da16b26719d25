// Frames on a stream socket: each carries one request or one answer.
//
// A frame is the four bytes of kFrameMagic, a number that pairs an answer with its request, the length of
// what follows (both 32 bits, big-endian), and the content.
#pragma once

#include "backend/bytes.h"
#include "backend/envelope.h"

#include <array>
#include <cstdint>
#include <optional>

namespace backend {

// Not text, so that a peer can tell a frame from a line of text by its first byte.
inline constexpr std::array<std::uint8_t, 4> kFrameMagic = {0xf5, 'D', 'M', 1};
inline constexpr std::size_t kFrameHead = 12;
inline constexpr std::size_t kMaxFrame = kMaxMessage + 512; // a message and its envelope

struct Frame {
    std::uint32_t id = 0;
    Bytes content;
};

// Writes the head of a frame into `out`, which has kFrameHead bytes.
void writeFrameHead(std::uint32_t id, std::size_t length, std::uint8_t *out);

// Takes a stream apart. Memory grows with what has arrived, never with what a head announces.
class FrameReader {
public:
    // Adds bytes as they arrived. False: the stream is no longer a row of frames and must be closed.
    bool feed(BytesView bytes);

    // The next whole frame, if one is there.
    std::optional<Frame> next();

private:
    bool isHeadGood() const;

    Bytes pending_;
    bool broken_ = false;
};

} // namespace backend
