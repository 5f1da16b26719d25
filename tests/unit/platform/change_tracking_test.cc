// Whether the running configuration is saved: files of the device, compared by size and checksum.
#include "change_tracking/change_tracking.h"

#include "backend/config_files.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/platform/device_folder.h"

#include <array>
#include <cstdlib>

namespace test {
namespace {

const std::string kGiven = "/tmp/given.txt",
                  kFailedSums = "Running config: md5sum Error occured! "
                                "Startup config: md5sum Error occured! ",
                  kNoSize = "RCM Error in getting file size \r";

// What a call prints on the standard output, and its result.
using Said = std::pair<long, std::string>;

template <class Function>
Said said(Function function)
{
    testing::internal::CaptureStdout();
    const long result = function();
    std::fflush(stdout);
    return {result, testing::internal::GetCapturedStdout()};
}

Said compared()
{
    return said([] { return ui_is_config_data_changed(kGiven.c_str()); });
}

// While it lives, programs are looked for in a folder with a single `md5sum`, or with nothing.
class OnlyProgram {
public:
    explicit OnlyProgram(const std::string &script)
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
    bool wasRun() const { return std::filesystem::exists(folder_.path() / "was-run"); }

private:
    agentd::test::TemporaryFolder folder_;
    std::string before_;
};

TEST(GivenRunningConfig, IsComparedAndLeftAlone)
{
    using Case = std::tuple<MaybeText, MaybeText, Said>;
    for (const auto &[running, startup, expected] : {Case{"ver 1.2\n", "ver 1.2\n", {0, ""}},
                                                     {"ver 1.2\n", "ver 1.3\n", {1, ""}},
                                                     {"", "ver 1.2\n", {1, ""}},
                                                     {"ver 1.2\n", std::nullopt, {2, ""}},
                                                     {std::nullopt, "ver 1.2\n", {1, kNoSize}}}) {
        const DeviceFolder device;
        if (running)
            device.write(kGiven, *running);
        if (startup)
            device.write(kStartup, *startup);
        EXPECT_EQ(compared(), expected);
        EXPECT_EQ(device.has(kGiven), running.has_value());
        EXPECT_EQ(device.has(kStartup), startup.has_value());
    }
}

TEST(OwnRunningConfig, IsAskedForComparedAndGoneAfterwards)
{
    const DeviceFolder device;
    SwitchBench bench;
    const auto own = [] { return said([] { return ui_is_config_data_changed(nullptr); }); };
    const auto expect = [&](long result) {
        bench.sent();
        EXPECT_EQ(own(), Said(result, ""));
        EXPECT_THAT(bench.sent(), ElementsAre(R"(ui_rcm_get_running_config_file {"first":0,"second":0})"));
        EXPECT_THAT(device.list("/tmp"), IsEmpty());
    };
    expect(2); // nothing was ever saved
    EXPECT_EQ(ui_execute_save_to_flash(), 0);
    expect(0);
    bench.device().setValue("running-config-dirty", 1);
    expect(1);
    // One that cannot be got counts as unchanged.
    for (const auto &fault :
         {noAnswer("ui_rcm_get_running_config_file"), refusal("ui_rcm_get_running_config_file", "busy")}) {
        strike(bench, fault);
        EXPECT_EQ(own(), Said(0, "Error while generating running config"));
    }
    EXPECT_THAT(device.list("/tmp"), IsEmpty());
}

TEST(Comparison, AsksForAChecksumWhenTheSizesAreTheSame)
{
    const DeviceFolder device;
    device.write(kGiven, "longer");
    device.write(kStartup, "short");
    const OnlyProgram program(": > \"${0%/*}/was-run\"");
    EXPECT_EQ(compared(), Said(1, ""));
    EXPECT_FALSE(program.wasRun());
    device.write(kGiven, "SHORT");
    // It goes on over what there is: nothing on both sides is the same.
    EXPECT_EQ(compared(), Said(0, kFailedSums));
    EXPECT_TRUE(program.wasRun());
}

TEST(Checksum, IsThatOfTheFile)
{
    const DeviceFolder device;
    device.write("/grey_slab/a b;c", "abc");
    const auto sumOf = [](const std::string &path) {
        std::array<char, MD5_TEXT_SIZE> sum{'x'};
        const int result = get_config_file_md5_chksum(path.c_str(), sum.data());
        return Said(result, sum.data());
    };
    EXPECT_EQ(sumOf("/grey_slab/a b;c"), Said(1, "900150983cd24fb0d6963f7d28e17f72"));
    for (const char *path : {"/grey_slab/none", "", "none"})
        EXPECT_EQ(sumOf(path), Said(0, "")) << path;
    EXPECT_EQ(sumOf("/grey_slab/" + std::string(1000, 'a')), Said(0, ""));
}

TEST(Checksum, BelievesItsProgramAsFarAsItPrintsDigits)
{
    const std::string whole = "0123456789abcdef0123456789abcdef";
    using Case = std::pair<std::string, Said>; // a script of md5sum; empty: there is none
    for (const auto &[script, expected] : {Case{"echo " + whole + "' file'", {1, whole}},
                                           {"echo " + whole + "00", {1, whole}},
                                           {"printf 0123", {0, "0123"}},
                                           {"echo 0123456789abcdefg123456789abcdef", {0, "0123456789abcdef"}},
                                           {"exit 1", {0, ""}},
                                           {"", {0, ""}}}) {
        const DeviceFolder device;
        device.write(kGiven, "abc");
        const OnlyProgram program(script);
        std::array<char, MD5_TEXT_SIZE + 1> sum{};
        sum.fill('x');
        const int result = get_config_file_md5_chksum(kGiven.c_str(), sum.data());
        EXPECT_EQ(Said(result, sum.data()), expected) << script;
        EXPECT_EQ(sum.back(), 'x');
    }
}

TEST(FileSize, IsInBytes)
{
    const DeviceFolder device;
    device.write("/grey_slab/seven", "1234567");
    const auto size = [](const char *path) { return said([=] { return ui_rcm_get_file_size(path); }); };
    EXPECT_EQ(size("/grey_slab/seven"), Said(7, ""));
    EXPECT_EQ(size("/grey_slab/none"), Said(-1, kNoSize));
    EXPECT_EQ(size(nullptr), Said(-1, "filename null\r"));
}

TEST(StartupVersion, IsReadOffTheFirstLineThatHasOne)
{
    using Case = std::pair<MaybeText, Said>;
    for (const auto &[text, expected] :
         {Case{"!\n \t ver \t 10.1.2\n", {10, ""}},
          {"ver 9.0\nver 8.0\n", {9, ""}},
          {"ver 9\nver 8.0\n", {0, ""}},
          {"version 7.0\nverbose 6.0\nver.5.0\n", {0, ""}},
          {"ver 8.0", {8, ""}},
          // What does not fit is dropped, and is no line of its own.
          {"hostname " + std::string(90, 'a') + "ver 7.0\nver 8.0\n", {8, ""}},
          {"ver " + std::string(200, '1') + ".0\n", {0, ""}},
          {std::nullopt, {0, "\n There is no startup config file, unable to save legacy config "}}}) {
        const DeviceFolder device;
        if (text)
            device.write(kStartup, *text);
        EXPECT_EQ(said(get_current_startup_version), expected) << text.value_or("no file");
    }
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
