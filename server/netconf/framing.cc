#include "server/netconf/framing.h"

#include <algorithm>
#include <utility>

namespace agentd::netconf {

namespace {

constexpr std::string_view kEndOfMessage = "]]>]]>";
constexpr std::string_view kEndOfChunks = "\n##\n";
constexpr std::size_t kLongestHeader = 13; // "\n#4294967295\n"

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// The size that a chunk header states; it has 1 to 10 digits.
std::uint32_t chunkSize(std::string_view digits)
{
    std::uint64_t size = 0;
    for (const char c : digits) {
        if (!isDigit(c))
            throw FramingError("a chunk size is no number");
        size = size * 10 + static_cast<unsigned>(c - '0');
    }
    if (digits.front() == '0' || size > UINT32_MAX)
        throw FramingError("a chunk size is out of range");
    return static_cast<std::uint32_t>(size);
}

} // namespace

void FrameDecoder::append(std::string_view bytes)
{
    dropTaken();
    input_.append(bytes);
}

std::optional<std::string> FrameDecoder::next()
{
    return framing_ == Framing::endOfMessage ? nextEndOfMessage() : nextChunked();
}

std::optional<std::string> FrameDecoder::nextEndOfMessage()
{
    const auto end = input_.find(kEndOfMessage, std::max(at_, scanned_));
    if (end == std::string::npos) {
        // What may be the beginning of the end is not the message's.
        scanned_ = std::max(at_, input_.size() - std::min(input_.size(), kEndOfMessage.size() - 1));
        refuseLong(scanned_ - at_);
        return std::nullopt;
    }
    refuseLong(end - at_);
    std::string message = input_.substr(at_, end - at_);
    at_ = end + kEndOfMessage.size();
    return message;
}

std::optional<std::string> FrameDecoder::nextChunked()
{
    for (;;) {
        if (state_ == State::chunkData) {
            takeData();
            if (chunkLeft_ > 0)
                return std::nullopt;
            state_ = State::chunkHeader;
        }
        bool ends = false;
        if (!readHeader(ends))
            return std::nullopt;
        if (ends)
            return std::exchange(message_, {});
        state_ = State::chunkData;
    }
}

// "\n#" and a size and "\n", or the end of the chunks. False: more bytes are needed.
bool FrameDecoder::readHeader(bool &ends)
{
    const std::string_view rest = std::string_view(input_).substr(at_);
    const auto known = std::min<std::size_t>(rest.size(), 2);
    if (rest.substr(0, known) != kEndOfChunks.substr(0, known))
        throw FramingError("a chunk header was expected");
    if (rest.size() < 3)
        return false;
    if (rest[2] == '#') {
        if (rest.size() < kEndOfChunks.size())
            return false;
        if (rest[3] != '\n' || message_.empty())
            throw FramingError("an end of chunks was expected behind a chunk");
        at_ += kEndOfChunks.size();
        ends = true;
        return true;
    }
    const auto close = rest.substr(0, kLongestHeader).find('\n', 2);
    const std::string_view digits = rest.substr(2, std::min(close, kLongestHeader - 1) - 2);
    if (close == rest.npos && rest.size() >= kLongestHeader)
        throw FramingError("a chunk header is too long");
    if (digits.empty())
        throw FramingError("a chunk has no size");
    const std::uint32_t size = chunkSize(digits);
    if (close == rest.npos)
        return false;
    refuseLong(std::uint64_t{message_.size()} + size);
    chunkLeft_ = size;
    at_ += close + 1;
    return true;
}

void FrameDecoder::takeData()
{
    const std::size_t there = std::min<std::size_t>(chunkLeft_, input_.size() - at_);
    message_.append(input_, at_, there);
    at_ += there;
    chunkLeft_ -= static_cast<std::uint32_t>(there);
}

void FrameDecoder::refuseLong(std::uint64_t size) const
{
    if (size > limit_)
        throw FramingError("a message is longer than this server takes");
}

// What was taken goes only now and then, so that many small messages in one piece cost no quadratic time.
void FrameDecoder::dropTaken()
{
    if (at_ < input_.size() / 2)
        return;
    scanned_ -= std::min(scanned_, at_);
    input_.erase(0, at_);
    at_ = 0;
    if (input_.empty() && input_.capacity() > 65536)
        input_.shrink_to_fit();
}

std::string framed(std::string_view message, Framing framing)
{
    std::string bytes;
    bytes.reserve(message.size() + 32);
    if (framing == Framing::endOfMessage)
        return bytes.append(message).append(kEndOfMessage);
    bytes.append("\n#").append(std::to_string(message.size())).append("\n");
    return bytes.append(message).append(kEndOfChunks);
}

} // namespace agentd::netconf
