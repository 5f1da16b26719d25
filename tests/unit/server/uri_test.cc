#include "server/restconf/uri.h"

#include "tests/unit/server/status_of.h"

#include <gmock/gmock.h>
#include <random>

namespace agentd::restconf {
namespace {

using test::statusOf;

// The steps as one line: module:name[key][key], a list without keys as it is.
std::string shown(const std::vector<tk::PathStep> &steps)
{
    std::string text;
    for (const tk::PathStep &step : steps) {
        text += "/" + (step.module.empty() ? "" : step.module + ":") + step.name;
        for (const std::string &key : step.keys)
            text += "[" + key + "]";
    }
    return text;
}

struct GoodPath {
    const char *path;
    Resource resource;
    const char *steps;
};

TEST(ResourcePath, SaysWhatIsMeant)
{
    const GoodPath cases[] = {
        {"/.well-known/host-meta", Resource::hostMeta, ""},
        {"/restconf", Resource::api, ""},
        {"/restconf/", Resource::api, ""},
        {"/restconf/yang-library-version", Resource::yangLibraryVersion, ""},
        {"/restconf/data", Resource::data, ""},
        {"/restconf/data/", Resource::data, ""},
        {"/restconf/operations", Resource::operations, ""},
        {"/restconf/operations/m:reboot", Resource::operation, "/m:reboot"},
        {"/restconf/data/m:a", Resource::data, "/m:a"},
        {"/restconf/data/m:a/", Resource::data, "/m:a"},
        {"/restconf/data/m:a/b/n:c", Resource::data, "/m:a/b/n:c"},
        {"/restconf/data/m%3Aa", Resource::data, "/m:a"},
        {"/restconf/data/m:a/l=k", Resource::data, "/m:a/l[k]"},
        {"/restconf/data/m:if=ethernet%201%2F1%2f1/c", Resource::data, "/m:if[ethernet 1/1/1]/c"},
        {"/restconf/data/m:l=a,b%2Cc,d", Resource::data, "/m:l[a][b,c][d]"},
        {"/restconf/data/m:l=", Resource::data, "/m:l[]"},
        {"/restconf/data/m:l=,x,", Resource::data, "/m:l[][x][]"},
        {"/restconf/data/m:l=a=b", Resource::data, "/m:l[a=b]"},
        {"/restconf/data/m:l=%C3%BC", Resource::data, "/m:l[\xc3\xbc]"},
        {"/restconf/data/m:l=+", Resource::data, "/m:l[+]"},
    };
    for (const GoodPath &c : cases) {
        SCOPED_TRACE(c.path);
        const ResourcePath path = parseResource(c.path);
        EXPECT_EQ(path.resource, c.resource);
        EXPECT_EQ(shown(path.steps), c.steps);
    }
}

TEST(ResourcePath, TellsAnEmptyKeyFromNoKey)
{
    EXPECT_FALSE(parseResource("/restconf/data/m:l").steps[0].hasKeys);
    EXPECT_TRUE(parseResource("/restconf/data/m:l=").steps[0].hasKeys);
}

struct BadPath {
    const char *path;
    unsigned status;
};

TEST(ResourcePath, RefusesWhatCannotBeRead)
{
    const BadPath cases[] = {
        {"", 404},
        {"/", 404},
        {"/index.html", 404},
        {"/restconfig", 404},
        {"/restconf/datastore", 404},
        {"/restconf/streams", 404},
        {"/restconf/yang-library-version/x", 404},
        {"/restconf/data//m:a", 400},
        {"/restconf/data/m:a//b", 400},
        {"/restconf/data/a", 400}, // no module on the first step
        {"/restconf/data/:a", 400},
        {"/restconf/data/m:", 400},
        {"/restconf/data/m:n:a", 400},
        {"/restconf/data/1:a", 400},
        {"/restconf/data/m:a b", 400},
        {"/restconf/data/m:l%3Dk", 400}, // an encoded "=" separates nothing
        {"/restconf/data/m:l=%", 400},
        {"/restconf/data/m:l=%4", 400},
        {"/restconf/data/m:l=%zz", 400},
        {"/restconf/data/m:l=%00", 400},
        {"/restconf/data/m:l=%ff", 400},
        {"/restconf/data/m:l=%C3", 400},
        {"/restconf/data/m:l=%ED%A0%80", 400}, // a surrogate
        {"/restconf/data/m:l=%C0%AF", 400},    // an overlong slash
        {"/restconf/data/m:a#x", 400},
        {"/restconf/operations/reboot", 400},
        {"/restconf/operations/m:reboot=1", 400},
        {"/restconf/operations/m:reboot/x", 400},
    };
    for (const BadPath &c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(statusOf([&] { parseResource(c.path); }), c.status);
    }
}

TEST(Target, IsCutIntoPathAndQuery)
{
    struct Case {
        const char *target, *path, *query; // query null: none
    };
    const Case cases[] = {
        {"/restconf/data?depth=1", "/restconf/data", "depth=1"},
        {"/restconf/data?", "/restconf/data", ""},
        {"/restconf/data", "/restconf/data", nullptr},
        {"https://switch:8443/restconf?a?b", "/restconf", "a?b"},
        {"HTTP://switch", "", nullptr},
        {"/?https://x", "/", "https://x"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.target);
        const SplitTarget split = splitTarget(c.target);
        EXPECT_EQ(split.path, c.path);
        EXPECT_EQ(split.query.has_value(), c.query != nullptr);
        EXPECT_EQ(split.query.value_or(""), c.query ? c.query : "");
    }
}

TEST(DataUri, IsReadBackAsItWas)
{
    const std::vector<tk::PathStep> steps{
        {"m", "interfaces", {}, false},
        {"m", "interface", {"ethernet 1/1/1", "a,b%=\xc3\xbc", ""}, true},
        {"n", "config", {}, false},
    };
    const std::string uri = dataUri(steps);
    EXPECT_EQ(uri, "/restconf/data/m:interfaces/interface=ethernet%201%2F1%2F1,a%2Cb%25%3D%C3%BC,/n:config");
    EXPECT_EQ(shown(parseResource(uri).steps),
              "/m:interfaces/interface[ethernet 1/1/1][a,b%=\xc3\xbc][]/n:config");
}

// Whatever comes over the wire ends as a value or a refusal, never otherwise.
TEST(ResourcePath, SurvivesAnyBytes)
{
    std::mt19937 random(1);
    const std::string pieces[] = {"/", "=", ",",    ":",        "%",    "%41", "%2F",
                                  "m", "a", "\xff", "restconf", "data", "?"};
    std::size_t refused = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string path = "/restconf/data/";
        for (unsigned length = random() % 12; length > 0; --length)
            path += pieces[random() % std::size(pieces)];
        const unsigned status = statusOf([&] { parseResource(path); });
        EXPECT_TRUE(status == 0 || status == 400) << path;
        refused += status != 0;
    }
    EXPECT_GT(refused, 0U);
}

} // namespace
} // namespace agentd::restconf
