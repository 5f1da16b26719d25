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
    struct Case {
        std::string document;
        bool isFine;
    };
    const Case cases[] = {
        {R"({"a": [[1]]})", true},
        {R"({"a": [[[1]]]})", false},
        {R"([1] [1] [1] [1])", true}, // beside one another
        {R"({"a": "[[[[[["})", true},
        {R"({"a\"[[[[[": 1})", true},
        {R"({"a\\": [[[1]]]})", false}, // the string ends behind the two backslashes
        {R"("never ends [[[[)", true},  // the parser's business
        {"]]]]", true},
        {"]]]][[[[", false},
        {"", true},
        {repeated("[", 100000), false},
    };
    for (const Case &c : cases)
        EXPECT_EQ(!jsonNestingFault(c.document, 3), c.isFine) << c.document.substr(0, 80);
}

TEST(Nesting, IsBoundedInXml)
{
    struct Case {
        std::string document;
        bool isFine;
    };
    const Case cases[] = {
        {"<a><b><c>x</c></b></a>", true},
        {"<a><b><c><d/></c></b></a>", true},
        {"<a><b><c><d></d></c></b></a>", false},
        {"<?xml version='1.0'?><a><b/><b/><b/><b/></a>", true},
        {"<a><!-- <b><c><d><e> --></a>", true},
        {"<a><![CDATA[<b><c><d><e>]]></a>", true},
        {"<a x='>' y=\"<b><c><d><e>\"/>", true},
        {"<a x='/'><b x='/'><c x='/'><d x='/'></d></c></b></a>", false},
        {"<!DOCTYPE a [<!ENTITY e 'x'>]><a/>", false},
        {"<a", true},
        {"<", true},
        {"<!--", true},
        {"", true},
        {repeated("<a>", 100000), false},
    };
    for (const Case &c : cases)
        EXPECT_EQ(!xmlNestingFault(c.document, 3), c.isFine) << c.document.substr(0, 80);
}

} // namespace
} // namespace agentd
