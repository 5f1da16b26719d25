#include "server/audit.h"

#include "server/files.h"
#include "tests/unit/server/temporary_folder.h"

#include <gmock/gmock.h>

namespace agentd {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

class AuditTest : public ::testing::Test {
protected:
    test::TemporaryFolder folder;
    const std::filesystem::path file = folder.path() / "audit.log";
};

TEST_F(AuditTest, WritesOneLineAnEvent)
{
    Audit audit(file);
    audit.record({"restconf", "admin", "127.0.0.1:4711", "PUT /restconf/data/m:a", "204"});
    EXPECT_THAT(readFile(file),
                MatchesRegex("[0-9]+-[0-9]+-[0-9]+T[0-9:.]+Z restconf user=\"admin\" from=127.0.0.1:4711 "
                             "request=\"PUT /restconf/data/m:a\" outcome=\"204\"\n"));
}

TEST_F(AuditTest, LetsNobodyForgeALine)
{
    Audit audit(file);
    audit.record({"restconf", "", "peer", "GET /x\" outcome=\"200\"\nfake", "401"});
    const std::string text = readFile(file);
    EXPECT_EQ(text.find('\n'), text.size() - 1);
    EXPECT_THAT(text, HasSubstr("user=- "));
    EXPECT_THAT(text, HasSubstr("GET /x\\x22 outcome=\\x22200\\x22\\x0afake"));
}

TEST_F(AuditTest, GoesOnWithTheFileThatIsThereAndKeepsItBelowItsLimit)
{
    for (int i = 0; i < 50; ++i) {
        Audit(file, 1000).record({"restconf", "admin", "peer", "request " + std::to_string(i), "204"});
        if (i == 1) {
            EXPECT_THAT(readFile(file), HasSubstr("request 0"));
        }
    }
    EXPECT_LE(readFile(file).size(), 1000U);
    EXPECT_LE(readFile(file.string() + ".1").size(), 1000U);
    EXPECT_THAT(readFile(file), HasSubstr("request 49"));
}

} // namespace
} // namespace agentd
