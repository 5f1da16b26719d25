#include "server/users.h"

#include "server/files.h"
#include "server/state_folder.h"
#include "server/user_command.h"
#include "tests/unit/server/temporary_folder.h"

#include <gmock/gmock.h>
#include <sstream>
#include <sys/stat.h>

namespace agentd {
namespace {

using ::testing::HasSubstr;

class UsersTest : public ::testing::Test {
protected:
    static mode_t modeOf(const std::filesystem::path &file)
    {
        struct stat status { };
        return ::stat(file.c_str(), &status) == 0 ? status.st_mode & 0777U : 0;
    }
    int command(UserOptions::Action action, const std::string &name, const std::string &input)
    {
        std::istringstream in(input);
        errors.str("");
        return runUserCommand({action, name, dir}, in, errors);
    }
    test::TemporaryFolder folder;
    const std::filesystem::path dir = folder.path();
    std::ostringstream errors;
};

constexpr auto kHash = "$y$j9T$abcdefghijklmnop$0123456789012345678901234567890123456789012";

TEST(UsersFile, IsReadLineByLine)
{
    const std::string hash = kHash;
    const UserTable users = parseUsers("# comment\n\nadmin:" + hash + "\nop.2-x_:" + hash);
    EXPECT_EQ(users, (UserTable{{"admin", hash}, {"op.2-x_", hash}}));
}

TEST(UsersFile, IsRefusedWithTheNumberOfTheDamagedLine)
{
    const std::string good = std::string("admin:") + kHash + "\n";
    const std::string hash = kHash;
    for (const std::string &line :
         {std::string("admin"), ":" + hash, "a b:" + hash, "../x:" + hash, "admin:" + hash,
          std::string("x:plain password"), "x:" + hash + ":1", "x:" + hash + "\r"}) {
        SCOPED_TRACE(line);
        try {
            parseUsers(good + line + "\n");
            FAIL() << "was accepted";
        } catch (const UsersError &error) {
            EXPECT_THAT(error.what(), HasSubstr("line 2"));
        }
    }
}

TEST_F(UsersTest, KnowsTheRightPasswordAndNoOther)
{
    addUser(dir, "op", "s3cret:with colon");
    Users users(dir);
    EXPECT_FALSE(users.isVerified("op", "s3cret:with colon")); // only what was verified is remembered
    EXPECT_TRUE(users.verify("op", "s3cret:with colon"));
    EXPECT_TRUE(users.isVerified("op", "s3cret:with colon"));
    for (const char *password : {"", "s3cret", "s3cret:with colon ", "S3cret:with colon"})
        EXPECT_FALSE(users.verify("op", password) || users.isVerified("op", password)) << password;
    EXPECT_FALSE(users.verify("nobody", "s3cret:with colon"));
    EXPECT_FALSE(users.isVerified("nobody", "s3cret:with colon"));
    EXPECT_FALSE(users.verify("nobody", "decoy"));
    EXPECT_FALSE(users.verify("op", std::string(kLongestPassword + 1, 'x')));
    EXPECT_FALSE(users.verify("op", std::string("s3cret:with colon\0x", 19)));
}

TEST_F(UsersTest, NoticesChangesOfTheFile)
{
    addUser(dir, "op", "one");
    Users users(dir);
    ASSERT_TRUE(users.verify("op", "one"));
    changePassword(dir, "op", "two");
    EXPECT_FALSE(users.isVerified("op", "one"));
    EXPECT_FALSE(users.verify("op", "one"));
    EXPECT_TRUE(users.verify("op", "two"));
    deleteUser(dir, "op");
    EXPECT_FALSE(users.isVerified("op", "two"));
    EXPECT_FALSE(users.verify("op", "two"));
    EXPECT_FALSE(users.isKnown("op"));
}

TEST_F(UsersTest, KeepsTheUsersWhenTheFileIsDamagedWhileItRuns)
{
    addUser(dir, "op", "one");
    Users users(dir);
    writeFileAtomically(usersFileOf(dir), "rubbish\n", 0600);
    EXPECT_TRUE(users.verify("op", "one"));
    EXPECT_THROW(Users{dir}, UsersError);
}

TEST_F(UsersTest, FindsThePublicKeyOfAKnownUserOnly)
{
    addUser(dir, "op", "one");
    std::filesystem::create_directory(dir / "keys");
    writeFileAtomically(dir / "keys" / "op.pub", "ssh-ed25519 AAAA", 0600);
    writeFileAtomically(dir / "keys" / "gone.pub", "ssh-ed25519 AAAA", 0600);
    Users users(dir);
    EXPECT_EQ(users.publicKeyOf("op"), dir / "keys" / "op.pub");
    EXPECT_FALSE(users.publicKeyOf("gone"));
    EXPECT_FALSE(users.publicKeyOf("../keys/op"));
}

TEST_F(UsersTest, MakesAnAdministratorOnTheFirstStartOnly)
{
    ASSERT_TRUE(createAdministrator(dir));
    std::string password = readFile(dir / "admin-password");
    ASSERT_EQ(password.back(), '\n');
    password.pop_back();
    EXPECT_GE(password.size(), 16U);
    EXPECT_TRUE(Users(dir).verify("admin", password));
    EXPECT_EQ(modeOf(dir / "admin-password"), 0600U);
    EXPECT_EQ(modeOf(usersFileOf(dir)), 0600U);
    EXPECT_THAT(readFile(usersFileOf(dir)), ::testing::Not(HasSubstr(password)));
    EXPECT_FALSE(createAdministrator(dir));
    EXPECT_EQ(readFile(dir / "admin-password"), password + "\n");
}

TEST_F(UsersTest, CommandsSayInOneLineWhyNot)
{
    using Action = UserOptions::Action;
    addUser(dir, "op", "one");
    const struct {
        Action action;
        const char *name, *input, *reason;
    } cases[] = {
        {Action::add, "op", "x\n", "exists"},     {Action::add, "../op", "x\n", "user name"},
        {Action::add, "", "x\n", "user name"},    {Action::add, "new", "", "password"},
        {Action::add, "new", "\n", "password"},   {Action::passwd, "nobody", "x\n", "no user"},
        {Action::passwd, "op", "\n", "password"}, {Action::del, "nobody", "", "no user"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.reason);
        EXPECT_EQ(command(c.action, c.name, c.input), 1);
        EXPECT_THAT(errors.str(), HasSubstr(c.reason));
        EXPECT_EQ(errors.str().find('\n'), errors.str().size() - 1);
    }
    EXPECT_TRUE(Users(dir).verify("op", "one"));
}

TEST_F(UsersTest, FolderBelongsToOneServer)
{
    const auto state = dir / "new" / "state";
    const FileHandle first = takeStateFolder(state);
    EXPECT_EQ(modeOf(state), 0700U);
    EXPECT_THROW(takeStateFolder(state), std::runtime_error);
}

} // namespace
} // namespace agentd
