// Both framings, fed in one piece and byte by byte.
#include "server/netconf/framing.h"

#include <gmock/gmock.h>

namespace agentd::netconf {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::size_t kLimit = 100;

struct Result {
    std::vector<std::string> messages;
    std::string error;
};

Result decode(const std::string &bytes, Framing framing, std::size_t piece)
{
    FrameDecoder decoder(kLimit);
    decoder.use(framing);
    Result result;
    try {
        for (std::size_t at = 0; at < bytes.size(); at += piece) {
            decoder.append(std::string_view(bytes).substr(at, piece));
            while (auto message = decoder.next())
                result.messages.push_back(*message);
        }
    } catch (const FramingError &error) {
        result.error = error.what();
    }
    return result;
}

constexpr Framing kOld = Framing::endOfMessage, kNew = Framing::chunked;

TEST(FrameDecoder, TakesPiecesOfAnySize)
{
    const std::string full(kLimit, 'x');
    const struct {
        Framing framing;
        std::string bytes;
        std::vector<std::string> messages;
        std::string error = ""; // a part of it
    } table[] = {
        {kOld, "<a/>]]>]]>\n<b/>]]>]]>", {"<a/>", "\n<b/>"}},
        {kOld, "<a>]]>]]</a>]]>]]>", {"<a>]]>]]</a>"}},
        {kOld, "<a/>]]]]>]]>", {"<a/>]]"}},
        {kOld, "]]>]]>", {""}},
        {kOld, full + "]]>]]>", {full}},
        {kOld, full + "x]]>]]>", {}, "longer"},
        {kOld, full + full, {}, "longer"},

        {kNew, "\n#1\n<\n#2\na/\n#1\n>\n##\n", {"<a/>"}},
        {kNew, "\n#4\n<a/>\n##\n\n#4\n<b/>\n##\n", {"<a/>", "<b/>"}},
        {kNew, "\n#8\n<a>\n##\n<\n#4\n</a>\n##\n", {"<a>\n##\n<</a>"}},
        {kNew, "\n#4\n<a/>\n#", {}},
        {kNew, "<a/>]]>]]>", {}, "header was expected"},
        {kNew, "\n#4 \n<a/>", {}, "no number"},
        {kNew, "\n#0\n\n##\n", {}, "out of range"},
        {kNew, "\n#04\n<a/>\n##\n", {}, "out of range"},
        {kNew, "\n#4294967295\n<a/>", {}, "longer"},
        {kNew, "\n#4294967296\n<a/>", {}, "out of range"},
        {kNew, "\n#11111111111111111111", {}, "too long"},
        {kNew, "\n#\n<a/>", {}, "no size"},
        {kNew, "\n#3\n<a/>\n##\n", {}, "header was expected"},
        {kNew, "\n##\n", {}, "behind a chunk"},
        {kNew, "\n#4\n<a/>\n##\n#4\n<b/>", {"<a/>"}, "header was expected"},
        {kNew, "\n#60\n" + std::string(60, 'x') + "\n#60\n", {}, "longer"},
    };
    for (const auto &[framing, bytes, messages, error] : table)
        for (const std::size_t piece : {std::size_t{1}, std::size_t{3}, bytes.size()}) {
            const Result result = decode(bytes, framing, piece);
            EXPECT_THAT(result.messages, ElementsAreArray(messages)) << bytes << " in pieces of " << piece;
            EXPECT_THAT(result.error,
                        error.empty() ? testing::Matcher<std::string>(IsEmpty()) : HasSubstr(error))
                << bytes;
        }
}

TEST(FrameDecoder, ChangesTheFramingBehindAMessage)
{
    FrameDecoder decoder(kLimit);
    decoder.append("<hello/>]]>]]>\n#4\n<a/>\n##\n");
    EXPECT_EQ(decoder.next(), "<hello/>");
    decoder.use(Framing::chunked);
    EXPECT_EQ(decoder.next(), "<a/>");
    EXPECT_EQ(decoder.next(), std::nullopt);
}

TEST(Framed, IsWhatADecoderTakes)
{
    const std::string message = "<a>\n##\n#5\n</a>";
    for (const Framing framing : {kOld, kNew})
        EXPECT_THAT(decode(framed(message, framing), framing, 5).messages, ElementsAre(message));
}

} // namespace
} // namespace agentd::netconf
