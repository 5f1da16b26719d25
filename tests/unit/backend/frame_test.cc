#include "backend/frame.h"
#include "scripted_transport.h"

#include <gmock/gmock.h>

#include <string>

namespace backend {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Feeds a stream in pieces and writes down what comes out: "ID:LENGTH" for a frame, "broken" for the end.
std::vector<std::string> readAll(const Bytes &stream, std::size_t piece)
{
    FrameReader reader;
    std::vector<std::string> seen;
    for (std::size_t at = 0; at < stream.size(); at += piece) {
        if (!reader.feed(BytesView(stream).subspan(at, std::min(piece, stream.size() - at)))) {
            seen.push_back("broken");
            return seen;
        }
        while (const auto frame = reader.next())
            seen.push_back(std::to_string(frame->id) + ":" + std::to_string(frame->content.size()));
    }
    return seen;
}

TEST(Frames, ComeOutWholeHoweverTheyArrive)
{
    const auto good = framed(7, {1, 2, 3}) + framed(0xffffffff, {}) + framed(9, Bytes(5000, 0xf5));
    const auto foreign = framed(7, {1}) + Bytes{'{'} + framed(8, {1});
    auto cutOff = framed(7, {1, 2, 3});
    cutOff.pop_back();
    for (const std::size_t piece : {1U, 2U, 11U, 12U, 13U, 100'000U}) {
        EXPECT_THAT(readAll(good, piece), ElementsAre("7:3", "4294967295:0", "9:5000")) << piece;
        EXPECT_THAT(readAll(cutOff, piece), IsEmpty()) << piece;
        // In one piece the stream is found broken when the first frame is taken out.
        EXPECT_THAT(readAll(foreign, piece), AnyOf(ElementsAre("7:1", "broken"), ElementsAre("7:1")))
            << piece;
    }
}

TEST(Frames, WithABadHeadBreakTheStreamAtOnce)
{
    Bytes tooLong(kFrameHead);
    writeFrameHead(1, kMaxFrame + 1, tooLong.data());
    for (const Bytes &head : {Bytes{'G'}, Bytes{0xf5, 'X'}, Bytes{0xf5, 'D', 'M', 2}, tooLong}) {
        FrameReader reader;
        EXPECT_FALSE(reader.feed(head)) << ::testing::PrintToString(head);
        EXPECT_FALSE(reader.feed(framed(1, {}))) << "a broken stream stays broken";
        EXPECT_FALSE(reader.next());
    }
}

} // namespace
} // namespace backend
