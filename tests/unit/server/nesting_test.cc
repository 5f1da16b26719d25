#include "server/nesting.h"

#include <gmock/gmock.h>

namespace agentd {
namespace {

std::string repeated(std::string_view piece, int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += piece;
    return text;
}

TEST(Nesting, IsBoundedInJson)
{
    const std::pair<std::string, bool> cases[] = {
        {R"({"a": [[1]]})", true},
        {R"({"a": [[[1]]]})", false},
        {R"([1] [1] [1] [1])", true}, // beside one another
        {R"({"a": "[[[[[["})", true},
        {R"({"a\"[[[[[": 1})", true},
        {R"({"a\\": [[[1]]]})", false}, // the string ends behind the two backslashes
        {R"("never ends [[[[)", true},  // the parser's business
        {"]]]][[[[", false},
        {repeated("[", 100000), false}};
    for (const auto &[document, isFine] : cases)
        EXPECT_EQ(!jsonNestingFault(document, 3), isFine) << document.substr(0, 80);
}

TEST(Nesting, IsBoundedInXml)
{
    const std::pair<std::string, bool> cases[] = {
        {"<a><b><c>x</c></b></a>", true},
        {"<a><b><c><d/></c></b></a>", true},
        {"<a><b><c><d></d></c></b></a>", false},
        {"<?xml version='1.0'?><a><b/><b/><b/><b/></a>", true},
        {"<a><!-- <b><c><d><e> --></a>", true},
        {"<a><![CDATA[<b><c><d><e>]]></a>", true},
        {"<a x='>' y=\"<b><c><d><e>\"/>", true},
        {"<a x='/'><b x='/'><c x='/'><d x='/'></d></c></b></a>", false},
        {"<!DOCTYPE a [<!ENTITY e 'x'>]><a/>", false},
        {"<!--", true},
        {"", true},
        {repeated("<a>", 100000), false}};
    for (const auto &[document, isFine] : cases)
        EXPECT_EQ(!xmlNestingFault(document, 3), isFine) << document.substr(0, 80);
}

} // namespace
} // namespace agentd
