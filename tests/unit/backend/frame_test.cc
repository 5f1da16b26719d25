#include "backend/frame.h"

#include <gmock/gmock.h>

#include <string>

namespace backend {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

Bytes framed(std::uint32_t id, const Bytes &content)
{
    Bytes frame(kFrameHead);
    writeFrameHead(id, content.size(), frame.data());
    frame.insert(frame.end(), content.begin(), content.end());
    return frame;
}

Bytes operator+(Bytes left, const Bytes &right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

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

class FramePieces : public ::testing::TestWithParam<std::size_t> { };

TEST_P(FramePieces, WholeFramesComeOutHoweverTheyArrive)
{
    const auto stream = framed(7, {1, 2, 3}) + framed(0xffffffff, {}) + framed(9, Bytes(5000, 0xf5));
    EXPECT_THAT(readAll(stream, GetParam()), ElementsAre("7:3", "4294967295:0", "9:5000"));
}

TEST_P(FramePieces, AFrameThatIsCutOffNeverComesOut)
{
    auto stream = framed(7, {1, 2, 3});
    stream.pop_back();
    EXPECT_THAT(readAll(stream, GetParam()), IsEmpty());
}

TEST_P(FramePieces, AForeignByteBehindAFrameBreaksTheStream)
{
    const auto stream = framed(7, {1}) + Bytes{'{'} + framed(8, {1});
    const auto seen = readAll(stream, GetParam());
    EXPECT_EQ(std::count(seen.begin(), seen.end(), "8:1"), 0);
    // In one piece the stream is found broken when the first frame is taken out.
    EXPECT_TRUE(seen == std::vector<std::string>({"7:1", "broken"}) ||
                seen == std::vector<std::string>({"7:1"}));
}

INSTANTIATE_TEST_SUITE_P(Sizes, FramePieces, ::testing::Values(1, 2, 11, 12, 13, 100'000));

struct BadHead {
    std::string name;
    Bytes head;
};
class FrameHeads : public ::testing::TestWithParam<BadHead> { };

TEST_P(FrameHeads, BreakTheStreamAtOnce)
{
    FrameReader reader;
    EXPECT_FALSE(reader.feed(GetParam().head));
    EXPECT_FALSE(reader.feed(framed(1, {}))) << "a broken stream stays broken";
    EXPECT_FALSE(reader.next());
}

INSTANTIATE_TEST_SUITE_P(Table, FrameHeads,
                         ::testing::Values(BadHead{"text", {'G'}}, BadHead{"second_byte", {0xf5, 'X'}},
                                           BadHead{"version", {0xf5, 'D', 'M', 2}},
                                           BadHead{"one_byte_too_long",
                                                   [] {
                                                       Bytes head(kFrameHead);
                                                       writeFrameHead(1, kMaxFrame + 1, head.data());
                                                       return head;
                                                   }()},
                                           BadHead{"four_gigabytes",
                                                   {0xf5, 'D', 'M', 1, 0, 0, 0, 1, 0xff, 0xff, 0xff, 0xff}}),
                         [](const auto &row) { return row.param.name; });

} // namespace
} // namespace backend
