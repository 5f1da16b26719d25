#include "server/restconf/errors.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <pugixml.hpp>

namespace agentd::restconf {
namespace {

std::string namespaceOf(const std::string &module)
{
    return module == "m" || module == "n" ? "urn:" + module : "";
}

tk::Error deviceRefusal()
{
    return {1042, "operation-failed", "1042", "/m:a/l[k='x:y']/n:b", "VLAN <7> \"does\" not exist & won't"};
}

TEST(ErrorDocument, SaysTheSameInJson)
{
    tk::Error brief;
    brief.tag = "malformed-message";
    brief.message = "line 1";
    const auto expected = nlohmann::json::parse(R"({"ietf-restconf:errors": {"error": [
        {"error-type": "application", "error-tag": "operation-failed", "error-app-tag": "1042",
         "error-path": "/m:a/l[k='x:y']/n:b", "error-message": "VLAN <7> \"does\" not exist & won't"},
        {"error-type": "protocol", "error-tag": "malformed-message", "error-message": "line 1"}]}})");
    EXPECT_EQ(nlohmann::json::parse(errorDocument({deviceRefusal(), brief}, tk::Encoding::json, namespaceOf)),
              expected);
}

TEST(ErrorDocument, SaysTheSameInXml)
{
    pugi::xml_document document;
    ASSERT_TRUE(
        document.load_string(errorDocument({deviceRefusal()}, tk::Encoding::xml, namespaceOf).c_str()));
    const pugi::xml_node errors = document.child("errors"), error = errors.child("error");
    EXPECT_STREQ(errors.attribute("xmlns").value(), "urn:ietf:params:xml:ns:yang:ietf-restconf");
    EXPECT_STREQ(error.child_value("error-type"), "application");
    EXPECT_STREQ(error.child_value("error-tag"), "operation-failed");
    EXPECT_STREQ(error.child_value("error-app-tag"), "1042");
    EXPECT_STREQ(error.child_value("error-message"), deviceRefusal().message.c_str());
    const pugi::xml_node path = error.child("error-path");
    EXPECT_STREQ(path.child_value(), "/m:a/l[k='x:y']/n:b");
    EXPECT_STREQ(path.attribute("xmlns:m").value(), "urn:m");
    EXPECT_STREQ(path.attribute("xmlns:n").value(), "urn:n");
    EXPECT_FALSE(path.attribute("xmlns:x")); // stands in a value only
}

TEST(ErrorDocument, IsWellFormedWhateverTheDeviceSays)
{
    tk::Error error = deviceRefusal();
    error.message = "bad \x01\x1f bytes \xff\xc3( and \xef\xbf\xbf, good \xc3\xbc";
    const std::string expected = "bad ?? bytes ?\?( and ?, good \xc3\xbc";
    pugi::xml_document xml;
    ASSERT_TRUE(xml.load_string(errorDocument({error}, tk::Encoding::xml, namespaceOf).c_str()));
    EXPECT_EQ(xml.child("errors").child("error").child_value("error-message"), expected);
    const auto json = nlohmann::json::parse(errorDocument({error}, tk::Encoding::json, namespaceOf));
    EXPECT_EQ(json["ietf-restconf:errors"]["error"][0]["error-message"], expected);
}

TEST(ErrorTag, HasTheStatusOfTheStandard)
{
    const std::pair<const char *, unsigned> cases[] = {
        {"invalid-value", 400}, {"malformed-message", 400},       {"in-use", 409},
        {"data-missing", 409},  {"resource-denied", 409},         {"too-big", 413},
        {"access-denied", 401}, {"operation-not-supported", 405}, {"operation-failed", 500},
        {"something-new", 500}};
    for (const auto &[tag, status] : cases)
        EXPECT_EQ(httpStatusOf(tag), status) << tag;
}

} // namespace
} // namespace agentd::restconf
