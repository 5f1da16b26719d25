// A stream of frames as a socket brings it: cut anywhere, and whatever is in it.
#include "backend/frame.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    // The first byte says how many bytes arrive at a time.
    const std::size_t piece = data[0] + std::size_t{1};
    backend::BytesView rest(data + 1, size - 1);
    backend::FrameReader reader;
    std::size_t content = 0;
    while (!rest.empty()) {
        const auto some = rest.first(std::min(piece, rest.size()));
        rest = rest.subspan(some.size());
        if (!reader.feed(some))
            return 0;
        while (const auto frame = reader.next()) {
            content += backend::kFrameHead + frame->content.size();
            if (const auto request = backend::readRequest(frame->content);
                request && request->message.size() + request->head.call.size() > frame->content.size())
                std::abort();
            if (const auto answer = backend::readAnswer(frame->content);
                answer && answer->message.size() > frame->content.size())
                std::abort();
        }
    }
    if (content > size)
        std::abort(); // more came out than went in
    return 0;
}
