// Message framing of NETCONF over SSH (RFC 6242): from bytes to messages and back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace agentd::netconf {

// The peer's bytes are no messages: the session cannot go on.
class FramingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class Framing {
    endOfMessage, // "]]>]]>" ends a message: the hello, and all of base:1.0
    chunked,      // base:1.1
};

// Takes bytes in pieces of any size. Holds at most one message of `limit` bytes and what came behind it.
class FrameDecoder {
public:
    explicit FrameDecoder(std::size_t limit)
        : limit_(limit)
    {
    }

    void append(std::string_view bytes);

    // The next whole message, or nothing as long as more bytes are needed. Throws FramingError.
    std::optional<std::string> next();

    // The message just taken was the last one of the old framing.
    void use(Framing framing) { framing_ = framing; }

    // Whether a message has begun that is not whole yet.
    bool isInMessage() const { return !message_.empty() || at_ < input_.size(); }

private:
    enum class State { chunkHeader, chunkData };

    std::optional<std::string> nextEndOfMessage();
    std::optional<std::string> nextChunked();
    bool readHeader(bool &ends);
    void takeData();
    void refuseLong(std::uint64_t size) const;
    void dropTaken();

    const std::size_t limit_;
    Framing framing_ = Framing::endOfMessage;
    std::string input_;
    std::size_t at_ = 0;      // what of the input is taken
    std::size_t scanned_ = 0; // no end of message begins before
    State state_ = State::chunkHeader;
    std::uint32_t chunkLeft_ = 0;
    std::string message_; // the chunks of the message so far
};

// A message ready to be sent.
std::string framed(std::string_view message, Framing framing);

} // namespace agentd::netconf
