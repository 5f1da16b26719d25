// Whether the running configuration is saved: files of the device, compared by size and checksum.
#include "change_tracking/change_tracking.h"

#include "backend/config_files.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/platform/device_folder.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdlib>

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kGiven = "/tmp/given.txt",
                  kFailedSums = "Running config: md5sum Error occured! "
                                "Startup config: md5sum Error occured! ";

// What a call prints on the standard output, and its result.
struct Said {
    long result;
    std::string text;
    bool operator==(const Said &) const = default;
};
void PrintTo(const Said &said, std::ostream *out)
{
    *out << said.result << " " << testing::PrintToString(said.text);
}

template <class Function>
Said said(Function function)
{
    testing::internal::CaptureStdout();
    const long result = function();
    std::fflush(stdout);
    return {result, testing::internal::GetCapturedStdout()};
}

// While it lives, programs are looked for in a folder with a single `md5sum`, or with nothing.
class OnlyProgram {
public:
    explicit OnlyProgram(const std::string &script = {})
        : before_(std::getenv("PATH"))
    {
        if (!script.empty()) {
            const auto file = folder_.path() / "md5sum";
            std::ofstream(file) << "#!/bin/sh\n" << script << "\n";
            std::filesystem::permissions(file, std::filesystem::perms::owner_all);
        }
        setenv("PATH", folder_.path().c_str(), 1);
    }
    ~OnlyProgram() { setenv("PATH", before_.c_str(), 1); }
    OnlyProgram(const OnlyProgram &) = delete;
    OnlyProgram &operator=(const OnlyProgram &) = delete;
    std::filesystem::path path() const { return folder_.path(); }

private:
    agentd::test::TemporaryFolder folder_;
    std::string before_;
};

struct Comparison {
    std::string name;
    std::optional<std::string> running, startup;
    Said said;
};
class GivenRunningConfig : public testing::TestWithParam<Comparison> { };

TEST_P(GivenRunningConfig, IsComparedAndLeftAlone)
{
    const Comparison &c = GetParam();
    const DeviceFolder device;
    if (c.running)
        device.write(kGiven, *c.running);
    if (c.startup)
        device.write(kStartup, *c.startup);
    EXPECT_EQ(said([] { return ui_is_config_data_changed(kGiven.c_str()); }), c.said);
    EXPECT_EQ(device.has(kGiven), c.running.has_value());
    EXPECT_EQ(device.has(kStartup), c.startup.has_value());
}
const Comparison kComparisons[] = {
    {"same", "ver 1.2\n", "ver 1.2\n", {0, ""}},
    {"same_size_but_different", "ver 1.2\n", "ver 1.3\n", {1, ""}},
    {"longer", "ver 1.2\n!\n", "ver 1.2\n", {1, ""}},
    {"shorter", "", "ver 1.2\n", {1, ""}},
    {"both_empty", "", "", {0, ""}},
    {"no_startup_file", "ver 1.2\n", std::nullopt, {2, ""}},
    {"no_such_running_file", std::nullopt, "ver 1.2\n", {1, "RCM Error in getting file size \r"}},
};
INSTANTIATE_TEST_SUITE_P(Table, GivenRunningConfig, testing::ValuesIn(kComparisons), CaseName());

TEST(OwnRunningConfig, IsAskedForComparedAndGoneAfterwards)
{
    const DeviceFolder device;
    SwitchBench bench;
    const auto changed = [&] {
        const Said answer = said([] { return ui_is_config_data_changed(nullptr); });
        EXPECT_EQ(answer.text, "");
        EXPECT_THAT(bench.sent(), ElementsAre(R"(ui_rcm_get_running_config_file {"first":0,"second":0})"));
        EXPECT_THAT(device.list("/tmp"), IsEmpty());
        return answer.result;
    };
    EXPECT_EQ(changed(), 2) << "nothing was ever saved";
    EXPECT_EQ(ui_execute_save_to_flash(), 0);
    bench.sent();
    EXPECT_EQ(changed(), 0);
    bench.device().setValue("running-config-dirty", 1);
    EXPECT_EQ(changed(), 1);
    EXPECT_EQ(ui_execute_save_to_flash(), 0);
    bench.sent();
    EXPECT_EQ(changed(), 0);
}

TEST(OwnRunningConfig, ThatCannotBeGotCountsAsUnchanged)
{
    const DeviceFolder device;
    device.write(kStartup, "ver 1.2\n");
    const Said failure{0, "Error while generating running config"};
    SwitchBench bench;
    bench.device().addFault(noAnswer("ui_rcm_get_running_config_file"));
    EXPECT_EQ(said([] { return ui_is_config_data_changed(nullptr); }), failure);
    bench.device().clearFaults();
    bench.device().addFault(refusal("ui_rcm_get_running_config_file", "busy"));
    EXPECT_EQ(said([] { return ui_is_config_data_changed(nullptr); }), failure);
    EXPECT_THAT(device.list("/tmp"), IsEmpty());
}

TEST(Comparison, OfDifferentSizesNeedsNoChecksum)
{
    const DeviceFolder device;
    device.write(kGiven, "longer");
    device.write(kStartup, "short");
    const OnlyProgram program(": > \"${0%/*}/was-run\"");
    EXPECT_EQ(said([] { return ui_is_config_data_changed(kGiven.c_str()); }), (Said{1, ""}));
    EXPECT_FALSE(std::filesystem::exists(program.path() / "was-run"));
    device.write(kGiven, "SHORT");
    ui_is_config_data_changed(kGiven.c_str());
    EXPECT_TRUE(std::filesystem::exists(program.path() / "was-run"));
}

// The comparison goes on over what there is: nothing on both sides is the same.
TEST(Comparison, WithoutAChecksumProgramIsOfNothing)
{
    const DeviceFolder device;
    device.write(kGiven, "one");
    device.write(kStartup, "two");
    const OnlyProgram none;
    EXPECT_EQ(said([] { return ui_is_config_data_changed(kGiven.c_str()); }), (Said{0, kFailedSums}));
}

TEST(Checksum, IsThatOfTheFile)
{
    const DeviceFolder device;
    device.write("/grey_slab/a b;c", "abc");
    std::array<char, MD5_TEXT_SIZE> sum{};
    EXPECT_EQ(get_config_file_md5_chksum("/grey_slab/a b;c", sum.data()), 1);
    EXPECT_STREQ(sum.data(), "900150983cd24fb0d6963f7d28e17f72");
}

struct Output {
    std::string name;
    std::string script; // of md5sum; empty: there is none
    int result;
    std::string sum;
};
class ChecksumProgram : public testing::TestWithParam<Output> { };

TEST_P(ChecksumProgram, IsBelievedAsFarAsItPrintsDigits)
{
    const DeviceFolder device;
    device.write(kGiven, "abc");
    const OnlyProgram program(GetParam().script);
    std::array<char, MD5_TEXT_SIZE + 1> sum{};
    sum.fill('x');
    EXPECT_EQ(get_config_file_md5_chksum(kGiven.c_str(), sum.data()), GetParam().result);
    EXPECT_EQ(std::string(sum.data()), GetParam().sum);
    EXPECT_EQ(sum.back(), 'x');
}
const std::string kSum = "0123456789abcdef0123456789abcdef";
const Output kOutputs[] = {
    {"whole", "echo " + kSum + "' file'", 1, kSum},
    {"more_digits_than_a_sum", "echo " + kSum + "00", 1, kSum},
    {"cut_off", "printf 0123", 0, "0123"},
    {"no_digit_in_the_middle", "echo 0123456789abcdefg123456789abcdef", 0, "0123456789abcdef"},
    {"nothing", "exit 1", 0, ""},
    {"missing", "", 0, ""},
};
INSTANTIATE_TEST_SUITE_P(Table, ChecksumProgram, testing::ValuesIn(kOutputs), CaseName());

TEST(Checksum, OfAFileThatIsNotThereIsEmpty)
{
    const DeviceFolder device;
    for (const std::string &path : {std::string("/grey_slab/none"), std::string(), std::string("none"),
                                    "/grey_slab/" + std::string(1000, 'a')}) {
        std::array<char, MD5_TEXT_SIZE> sum{'x'};
        EXPECT_EQ(get_config_file_md5_chksum(path.c_str(), sum.data()), 0) << path;
        EXPECT_STREQ(sum.data(), "") << path;
    }
}

TEST(FileSize, IsInBytes)
{
    const DeviceFolder device;
    device.write("/grey_slab/seven", "1234567");
    device.write("/grey_slab/empty", "");
    const auto size = [](const char *path) { return said([=] { return ui_rcm_get_file_size(path); }); };
    EXPECT_EQ(size("/grey_slab/seven"), (Said{7, ""}));
    EXPECT_EQ(size("/grey_slab/empty"), (Said{0, ""}));
    EXPECT_EQ(size("/grey_slab/none"), (Said{-1, "RCM Error in getting file size \r"}));
    EXPECT_EQ(size(nullptr), (Said{-1, "filename null\r"}));
}

struct Startup {
    std::string name;
    std::optional<std::string> text;
    Said said;
};
class StartupVersion : public testing::TestWithParam<Startup> { };

TEST_P(StartupVersion, IsReadOffTheFile)
{
    const DeviceFolder device;
    if (GetParam().text)
        device.write(kStartup, *GetParam().text);
    EXPECT_EQ(said(get_current_startup_version), GetParam().said);
}
const Startup kStartups[] = {
    {"plain", "ver 08.0.95\n", {8, ""}},
    {"behind_blanks", "!\n \t ver \t 10.1.2\n", {10, ""}},
    {"the_first_line_counts", "ver 9.0\nver 8.0\n", {9, ""}},
    {"a_first_line_without_a_point", "ver 9\nver 8.0\n", {0, ""}},
    {"other_words", "version 7.0\nverbose 6.0\nver.5.0\n", {0, ""}},
    {"no_number", "ver abc.1\n", {0, ""}},
    {"no_end_of_line", "ver 8.0", {8, ""}},
    {"empty", "", {0, ""}},
    // What does not fit is dropped, and is no line of its own.
    {"a_long_line", "hostname " + std::string(90, 'a') + "ver 7.0\nver 8.0\n", {8, ""}},
    {"a_point_beyond_the_line", "ver " + std::string(200, '1') + ".0\n", {0, ""}},
    {"no_file", std::nullopt, {0, "\n There is no startup config file, unable to save legacy config "}},
};
INSTANTIATE_TEST_SUITE_P(Table, StartupVersion, testing::ValuesIn(kStartups), CaseName());

TEST(ConfigFiles, NamesAreExported)
{
    EXPECT_STREQ(g_rcm_startup_config_filename, "startup-config.txt");
    EXPECT_STREQ(g_rcm_startup_config_backup, "startup-config.backup");
}

TEST(ConfigFiles, TheFileIsOnTheDeviceAndTheCallersToDelete)
{
    const DeviceFolder device;
    const SwitchBench bench;
    std::array<char, RCM_PATH_SIZE> path{};
    for (const auto get : {+[](char *out) { return ui_rcm_get_running_config_file(out, 0, 0); },
                           ui_rcm_get_running_config_file_not_wr_mem}) {
        EXPECT_EQ(get(path.data()), 0);
        EXPECT_TRUE(device.has(path.data()));
        EXPECT_EQ(ui_rcm_delete_file(path.data()), 0);
        EXPECT_FALSE(device.has(path.data()));
    }
    EXPECT_EQ(ui_rcm_delete_file(path.data()), 0) << "it is gone already";
    EXPECT_NE(ui_rcm_delete_file(nullptr), 0);
    EXPECT_NE(ui_rcm_delete_file("/grey_slab/../../etc/passwd"), 0);
}

TEST(ConfigFiles, ASwitchWithoutFilesTouchesNoneOfTheMachines)
{
    const SwitchBench bench;
    std::array<char, RCM_PATH_SIZE> path{'x'};
    EXPECT_NE(ui_rcm_get_running_config_file(path.data(), 0, 0), 0);
    EXPECT_STREQ(path.data(), "");
    EXPECT_NE(ui_execute_save_to_flash(), 0);
}

} // namespace
} // namespace test
