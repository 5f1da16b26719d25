#include "backend/envelope.h"

#include <gtest/gtest.h>

namespace backend {
namespace {

Bytes requestBytes(const RequestHead &head, const Bytes &message)
{
    Bytes bytes;
    const auto at = beginRequest(head, message.size(), bytes);
    std::copy(message.begin(), message.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
    return bytes;
}

TEST(Envelope, NumbersTravelInNetworkOrder)
{
    const auto bytes = requestBytes({"c", -0x01020304, 0x05060708, 0x090a0b0c}, {5});
    EXPECT_EQ(bytes, Bytes({1, 1, 0xfe, 0xfd, 0xfc, 0xfc, 5, 6, 7, 8, 9, 10, 11, 12, 'c', 5}));
    const auto request = readRequest(bytes);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->head.call, "c");
    EXPECT_EQ(request->head.argument, -0x01020304);
    EXPECT_EQ(request->message.size(), 1U);
    EXPECT_EQ(readRequest(requestBytes({std::string(300, 'n')}, {1}))->head.call.size(), 255U) << "cut";
}

TEST(Envelope, WhatIsNoRequestIsRefused)
{
    const auto good = requestBytes({"call"}, {});
    ASSERT_TRUE(readRequest(good));
    for (std::size_t length = 0; length < good.size(); length++)
        EXPECT_FALSE(readRequest(BytesView(good).first(length))) << length;
    auto answer = good;
    answer[0] = 2;
    EXPECT_FALSE(readRequest(answer));
    EXPECT_FALSE(readRequest(requestBytes({"call"}, Bytes(kMaxMessage + 1))));
}

TEST(Envelope, AnswersAreReadOrRefused)
{
    const std::pair<Bytes, std::size_t> good[] = {{{2, 0}, 0}, {{2, 1}, 0}, {{2, 1, 5, 6}, 2}};
    for (const auto &[bytes, length] : good) {
        const auto answer = readAnswer(bytes);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->present, bytes[1] == 1);
        EXPECT_EQ(answer->message.size(), length);
    }
    for (const Bytes &bad : {Bytes{}, Bytes{2}, Bytes{1, 1, 5}, Bytes{2, 2}, Bytes{2, 0, 5}})
        EXPECT_FALSE(readAnswer(bad)) << ::testing::PrintToString(bad);
}

} // namespace
} // namespace backend
