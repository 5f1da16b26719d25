// A transport that gives what the test says, and keeps what it was given.
#pragma once

#include "backend/envelope.h"
#include "backend/frame.h"
#include "backend/transport.h"

#include <protobuf-c/protobuf-c.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

namespace backend {

class ScriptedTransport : public Transport {
public:
    std::optional<Bytes> call(BytesView request, Deadline deadline) override
    {
        requests.emplace_back(request.begin(), request.end());
        patience = deadline - std::chrono::steady_clock::now();
        return answer;
    }

    std::optional<Bytes> answer;
    std::vector<Bytes> requests;
    Deadline::duration patience{};
};

inline Bytes operator+(Bytes left, const Bytes &right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

inline Bytes framed(std::uint32_t id, const Bytes &content)
{
    Bytes frame(kFrameHead);
    writeFrameHead(id, content.size(), frame.data());
    return frame + content;
}

// An answer that carries these bytes as its message.
inline Bytes envelopeAround(const Bytes &message)
{
    Bytes envelope;
    const auto at = beginAnswer(true, message.size(), envelope);
    std::copy(message.begin(), message.end(), envelope.begin() + static_cast<std::ptrdiff_t>(at));
    return envelope;
}

inline Bytes packed(const ProtobufCMessage &message)
{
    Bytes bytes(protobuf_c_message_get_packed_size(&message));
    protobuf_c_message_pack(&message, bytes.data());
    return bytes;
}

// The transport of the process for as long as it lives.
class UseTransport {
public:
    explicit UseTransport(std::shared_ptr<Transport> transport) { setTransport(std::move(transport)); }
    ~UseTransport()
    {
        setTransport(nullptr);
        setTimeout(kDefaultTimeout);
    }
    UseTransport(const UseTransport &) = delete;
    UseTransport &operator=(const UseTransport &) = delete;
};

} // namespace backend
