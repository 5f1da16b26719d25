// Bytes of a NETCONF client in both framings: cut anywhere they must mean the same.
#include "server/netconf/framing.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

using namespace agentd::netconf;

constexpr std::size_t kLimit = 5000;

struct Decoded {
    std::vector<std::string> messages;
    bool isBroken = false;
};

Decoded decode(std::string_view bytes, Framing framing, std::size_t piece)
{
    FrameDecoder decoder(kLimit);
    decoder.use(framing);
    Decoded decoded;
    try {
        for (; !bytes.empty(); bytes.remove_prefix(std::min(piece, bytes.size()))) {
            decoder.append(bytes.substr(0, piece));
            while (auto message = decoder.next())
                decoded.messages.push_back(std::move(*message));
        }
    } catch (const FramingError &) {
        decoded.isBroken = true;
    }
    return decoded;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const Framing framing = data[0] & 1 ? Framing::chunked : Framing::endOfMessage;
    const std::size_t piece = (data[0] >> 1) + std::size_t{1};
    const std::string_view bytes(reinterpret_cast<const char *>(data + 1), size - 1);
    const Decoded whole = decode(bytes, framing, bytes.size() + 1), cut = decode(bytes, framing, piece);
    if (whole.messages != cut.messages || whole.isBroken != cut.isBroken)
        std::abort();
    std::size_t content = 0;
    for (const std::string &message : whole.messages) {
        content += message.size();
        if (message.size() > kLimit)
            std::abort();
        const Decoded again = decode(framed(message, framing), framing, piece);
        if (!message.empty() && (again.isBroken || again.messages != std::vector<std::string>{message}))
            std::abort();
    }
    if (content > size)
        std::abort(); // more came out than went in
    return 0;
}
