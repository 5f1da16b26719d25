#include "server/restconf/negotiation.h"

#include <gmock/gmock.h>

namespace agentd::restconf {
namespace {

constexpr auto json = tk::Encoding::json, xml = tk::Encoding::xml;
constexpr std::string_view yangJson = "application/yang-data+json", yangXml = "application/yang-data+xml";

std::string_view chosen(std::optional<std::string_view> accept, tk::Encoding preferred = json)
{
    const auto offer = negotiate(accept, dataOffers(), preferred);
    return offer ? offer->mediaType : "none";
}

TEST(Accept, ChoosesByQualityThenByPrecision)
{
    const struct {
        std::string_view accept;
        std::string_view type;
    } cases[] = {
        {"application/yang-data+xml", yangXml},
        {"application/xml", "application/xml"},
        {"application/json;charset=utf-8", "application/json"},
        {"*/*", yangJson},
        {"application/yang-data+xml;q=0.5, application/yang-data+json;q=0.6", yangJson},
        {"application/yang-data+xml; q=0.601 , application/yang-data+json;q=0.6", yangXml},
        {"*/*, application/yang-data+json;q=0, application/json;q=0", yangXml}, // precise ranges exclude
        {"text/html, application/xml;q=0.9, */*;q=0.8", "application/xml"},     // what browsers send
        {"application/yang-data+json;q=x, application/yang-data+xml;q=0.1", yangXml},
        {"rubbish, application/yang-data+xml", yangXml},
        {"text/html", "none"},
        {"*/*;q=0", "none"},
        {"application/yang-data+json;q=1.001", "none"},
        {"*/json", "none"},
        {"", "none"}};
    for (const auto &c : cases)
        EXPECT_EQ(chosen(c.accept), c.type) << c.accept;
}

TEST(Accept, LeavesAnOpenChoiceToTheEncodingOfTheRequest)
{
    EXPECT_EQ(chosen(std::nullopt, json), yangJson);
    EXPECT_EQ(chosen(std::nullopt, xml), yangXml);
    EXPECT_EQ(chosen("*/*", xml), yangXml);
    EXPECT_EQ(chosen("application/yang-data+json, application/yang-data+xml", xml), yangXml);
    EXPECT_EQ(chosen("application/yang-data+json", xml), yangJson);
}

TEST(Accept, OffersXrdForHostMeta)
{
    EXPECT_EQ(negotiate(std::nullopt, hostMetaOffers(), xml)->mediaType, "application/xrd+xml");
    EXPECT_EQ(negotiate("application/json", hostMetaOffers(), xml)->encoding, json);
    EXPECT_FALSE(negotiate("application/yang-data+json", hostMetaOffers(), xml));
}

TEST(ContentType, IsExactButForCaseAndParameters)
{
    const struct {
        const char *type;
        std::optional<tk::Encoding> encoding;
    } cases[] = {
        {"application/yang-data+json", json},
        {"application/YANG-data+xml", xml},
        {"application/json; charset=utf-8", json},
        {" application/xml ;x=y", xml},
        {"application/yang-patch+json", std::nullopt},
        {"text/xml", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto &c : cases)
        EXPECT_EQ(encodingOf(c.type), c.encoding) << c.type;
}

} // namespace
} // namespace agentd::restconf
