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

TEST(Envelope, ARequestKeepsItsHeadAndItsMessage)
{
    const Bytes message = {9, 8, 7};
    const auto bytes = requestBytes({"some_call", -3, 0x99005D, 41}, message);
    const auto request = readRequest(bytes);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->head.call, "some_call");
    EXPECT_EQ(request->head.argument, -3);
    EXPECT_EQ(request->head.code, 0x99005DU);
    EXPECT_EQ(request->head.subType, 41U);
    EXPECT_EQ(Bytes(request->message.begin(), request->message.end()), message);
}

TEST(Envelope, NumbersTravelInNetworkOrder)
{
    EXPECT_EQ(requestBytes({"c", 0x01020304, 0x05060708, 0x090a0b0c}, {}),
              Bytes({1, 1, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 'c'}));
}

TEST(Envelope, ANameIsCutWhereItsLengthEnds)
{
    const std::string name(300, 'n');
    const auto bytes = requestBytes({name}, {1});
    ASSERT_TRUE(readRequest(bytes));
    EXPECT_EQ(readRequest(bytes)->head.call.size(), 255U);
    EXPECT_EQ(readRequest(bytes)->message.size(), 1U);
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

struct AnswerCase {
    const char *name;
    Bytes bytes;
    bool isAnswer;
    bool isPresent = false;
    std::size_t length = 0;
};
class Answers : public ::testing::TestWithParam<AnswerCase> { };

TEST_P(Answers, AreReadOrRefused)
{
    const auto answer = readAnswer(GetParam().bytes);
    ASSERT_EQ(answer.has_value(), GetParam().isAnswer);
    if (answer) {
        EXPECT_EQ(answer->present, GetParam().isPresent);
        EXPECT_EQ(answer->message.size(), GetParam().length);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, Answers,
                         ::testing::Values(AnswerCase{"none", {2, 0}, true},
                                           AnswerCase{"empty", {2, 1}, true, true},
                                           AnswerCase{"full", {2, 1, 5, 6}, true, true, 2},
                                           AnswerCase{"nothing_at_all", {}, false},
                                           AnswerCase{"cut", {2}, false},
                                           AnswerCase{"a_request", {1, 1, 5}, false},
                                           AnswerCase{"unknown_presence", {2, 2}, false},
                                           AnswerCase{"absent_with_content", {2, 0, 5}, false}),
                         [](const auto &row) { return row.param.name; });

} // namespace
} // namespace backend
