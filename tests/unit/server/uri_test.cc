#include "server/restconf/uri.h"

#include "tests/unit/server/status_of.h"

#include <gmock/gmock.h>

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

TEST(ResourcePath, SaysWhatIsMeant)
{
    const struct {
        const char *path;
        Resource resource;
        const char *steps;
    } cases[] = {
        {"/.well-known/host-meta", Resource::hostMeta, ""},
        {"/restconf", Resource::api, ""},
        {"/restconf/", Resource::api, ""},
        {"/restconf/yang-library-version", Resource::yangLibraryVersion, ""},
        {"/restconf/data/", Resource::data, ""},
        {"/restconf/operations", Resource::operations, ""},
        {"/restconf/operations/m:reboot", Resource::operation, "/m:reboot"},
        {"/restconf/data/m:a/", Resource::data, "/m:a"},
        {"/restconf/data/m%3Aa/b/n:c", Resource::data, "/m:a/b/n:c"},
        {"/restconf/data/m:if=ethernet%201%2F1%2f1/c", Resource::data, "/m:if[ethernet 1/1/1]/c"},
        {"/restconf/data/m:l=a,b%2Cc,d", Resource::data, "/m:l[a][b,c][d]"},
        {"/restconf/data/m:l=,x,", Resource::data, "/m:l[][x][]"},
        {"/restconf/data/m:l=a=b", Resource::data, "/m:l[a=b]"},
        {"/restconf/data/m:l=%C3%BC", Resource::data, "/m:l[\xc3\xbc]"},
        {"/restconf/data/m:l=+", Resource::data, "/m:l[+]"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.path);
        const ResourcePath path = parseResource(c.path);
        EXPECT_EQ(path.resource, c.resource);
        EXPECT_EQ(shown(path.steps), c.steps);
    }
    EXPECT_FALSE(parseResource("/restconf/data/m:l").steps[0].hasKeys);
    EXPECT_TRUE(parseResource("/restconf/data/m:l=").steps[0].hasKeys);
}

TEST(ResourcePath, RefusesWhatCannotBeRead)
{
    for (const char *path :
         {"", "/", "/restconfig", "/restconf/datastore", "/restconf/yang-library-version/x"})
        EXPECT_EQ(statusOf([&] { parseResource(path); }), 404U) << path;
    // No module on the first step, an encoded "=" that separates nothing, a surrogate, an overlong slash.
    for (const char *path : {"data//m:a",
                             "data/m:a//b",
                             "data/a",
                             "data/:a",
                             "data/m:",
                             "data/m:n:a",
                             "data/1:a",
                             "data/m:a b",
                             "data/m:l%3Dk",
                             "data/m:l=%",
                             "data/m:l=%4",
                             "data/m:l=%zz",
                             "data/m:l=%00",
                             "data/m:l=%ff",
                             "data/m:l=%C3",
                             "data/m:l=%ED%A0%80",
                             "data/m:l=%C0%AF",
                             "data/m:a#x",
                             "operations/reboot",
                             "operations/m:reboot=1",
                             "operations/m:reboot/x"})
        EXPECT_EQ(statusOf([&] { parseResource(std::string("/restconf/") + path); }), 400U) << path;
}

TEST(Target, IsCutIntoPathAndQuery)
{
    const struct {
        const char *target, *path, *query; // query null: none
    } cases[] = {
        {"/restconf/data?depth=1", "/restconf/data", "depth=1"},
        {"/restconf/data?", "/restconf/data", ""},
        {"/restconf/data", "/restconf/data", nullptr},
        {"https://switch:8443/restconf?a?b", "/restconf", "a?b"},
        {"HTTP://switch", "", nullptr},
        {"/?https://x", "/", "https://x"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.target);
        const SplitTarget split = splitTarget(c.target);
        EXPECT_EQ(split.path, c.path);
        EXPECT_EQ(split.query.has_value(), c.query != nullptr);
        EXPECT_EQ(split.query.value_or(""), c.query ? c.query : "");
    }
}

TEST(DataUri, IsReadBackAsItWas)
{
    const std::vector<tk::PathStep> steps{{"m", "interfaces", {}, false},
                                          {"m", "interface", {"ethernet 1/1/1", "a,b%=\xc3\xbc", ""}, true},
                                          {"n", "config", {}, false}};
    const std::string uri = dataUri(steps);
    EXPECT_EQ(uri, "/restconf/data/m:interfaces/interface=ethernet%201%2F1%2F1,a%2Cb%25%3D%C3%BC,/n:config");
    EXPECT_EQ(shown(parseResource(uri).steps),
              "/m:interfaces/interface[ethernet 1/1/1][a,b%=\xc3\xbc][]/n:config");
}

} // namespace
} // namespace agentd::restconf
