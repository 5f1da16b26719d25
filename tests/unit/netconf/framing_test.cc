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

struct Case {
    std::string name;
    Framing framing;
    std::string bytes;
    std::vector<std::string> messages;
    std::string error = ""; // a part of it

    friend std::ostream &operator<<(std::ostream &out, const Case &c) { return out << c.bytes; }
};

constexpr Framing kOld = Framing::endOfMessage, kNew = Framing::chunked;

const Case kCases[] = {
    {"one_message", kOld, "<a/>]]>]]>", {"<a/>"}},
    {"two_messages", kOld, "<a/>]]>]]>\n<b/>]]>]]>", {"<a/>", "\n<b/>"}},
    {"an_end_that_is_none", kOld, "<a>]]>]]</a>]]>]]>", {"<a>]]>]]</a>"}},
    {"an_end_behind_brackets", kOld, "<a/>]]]]>]]>", {"<a/>]]"}},
    {"an_empty_message", kOld, "]]>]]>", {""}},
    {"no_end_yet", kOld, "<a/>]]>]]", {}},
    {"a_message_at_the_limit", kOld, std::string(kLimit, 'x') + "]]>]]>", {std::string(kLimit, 'x')}},
    {"a_message_over_the_limit", kOld, std::string(kLimit + 1, 'x') + "]]>]]>", {}, "longer"},
    {"a_message_without_an_end", kOld, std::string(2 * kLimit, 'x'), {}, "longer"},

    {"one_chunk", kNew, "\n#4\n<a/>\n##\n", {"<a/>"}},
    {"several_chunks", kNew, "\n#1\n<\n#2\na/\n#1\n>\n##\n", {"<a/>"}},
    {"several_messages", kNew, "\n#4\n<a/>\n##\n\n#4\n<b/>\n##\n", {"<a/>", "<b/>"}},
    {"chunk_marks_inside_a_chunk", kNew, "\n#8\n<a>\n##\n<\n#4\n</a>\n##\n", {"<a>\n##\n<</a>"}},
    {"no_end_of_chunks_yet", kNew, "\n#4\n<a/>\n#", {}},
    {"a_chunk_that_goes_on", kNew, "\n#9\n<a/>", {}},
    {"the_other_framing", kNew, "<a/>]]>]]>", {}, "header was expected"},
    {"no_header", kNew, "\nX5\n<a/>", {}, "header was expected"},
    {"a_negative_size", kNew, "\n#-5\n<a/>", {}, "no number"},
    {"a_size_of_zero", kNew, "\n#0\n\n##\n", {}, "out of range"},
    {"a_size_with_a_leading_zero", kNew, "\n#04\n<a/>\n##\n", {}, "out of range"},
    {"a_size_of_a_gigabyte", kNew, "\n#1073741824\n<a/>", {}, "longer"},
    {"the_largest_size", kNew, "\n#4294967295\n<a/>", {}, "longer"},
    {"a_size_beyond_it", kNew, "\n#4294967296\n<a/>", {}, "out of range"},
    {"a_size_without_end", kNew, "\n#11111111111111111111", {}, "too long"},
    {"no_size", kNew, "\n#\n<a/>", {}, "no size"},
    {"a_blank_in_the_size", kNew, "\n#4 \n<a/>", {}, "no number"},
    {"a_chunk_longer_than_stated", kNew, "\n#3\n<a/>\n##\n", {}, "header was expected"},
    {"an_end_without_a_chunk", kNew, "\n##\n", {}, "behind a chunk"},
    {"a_chunk_after_the_end", kNew, "\n#4\n<a/>\n##\n#4\n<b/>", {"<a/>"}, "header was expected"},
    {"an_end_that_is_cut", kNew, "\n#4\n<a/>\n##x", {}, "behind a chunk"},
    {"chunks_over_the_limit", kNew, "\n#60\n" + std::string(60, 'x') + "\n#60\n", {}, "longer"},
};

class Decodes : public testing::TestWithParam<Case> { };

TEST_P(Decodes, InPiecesOfAnySize)
{
    const Case &c = GetParam();
    for (const std::size_t piece :
         {std::size_t{1}, std::size_t{2}, std::size_t{3}, std::size_t{7}, c.bytes.size()}) {
        const Result result = decode(c.bytes, c.framing, piece);
        EXPECT_THAT(result.messages, ElementsAreArray(c.messages)) << "pieces of " << piece;
        if (c.error.empty())
            EXPECT_EQ(result.error, "");
        else
            EXPECT_THAT(result.error, HasSubstr(c.error)) << "pieces of " << piece;
    }
}

INSTANTIATE_TEST_SUITE_P(Table, Decodes, testing::ValuesIn(kCases),
                         [](const auto &of) { return of.param.name; });

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
