// The RPCs on the whole switch: restart or choose a partition, and save the configuration.
#include "platform/u_lyn-openconfig-platform-aug.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/bundle/log_capture.h"
#include "tests/unit/operations/rpc_call.h"
#include "tests/unit/platform/device_folder.h"

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kModule = "lyn-openconfig-platform-aug",
                  kAskedForConfig = R"(ui_rcm_get_running_config_file {"first":0,"second":0})",
                  kReload = R"(ui_fe_reload_cmd_msg {"reload_op":1})",
                  kPrimary = R"(ui_fe_platform_boot_config {"boot_source":4})",
                  kSecondary = R"(ui_fe_platform_boot_config {"boot_source":5})",
                  kUnsaved =
                      "Running Config data has been changed. Kindly save the config data before reload.\n",
                  kBusy = "Error: an image is being downloaded, no reload now\n";

enum class Config { saved, changed, neverSaved };

struct Boot {
    std::string name;
    Config config;
    std::optional<std::string> input;
    std::vector<std::string> sent;
    Status status = kOk;
    std::vector<std::string> texts = {};
    std::string errors = {};
    std::optional<switchsim::Fault> fault = {};
};
class BootSysFlash : public testing::TestWithParam<Boot> { };

TEST_P(BootSysFlash, DoesExactlyThis)
{
    const Boot &c = GetParam();
    const DeviceFolder device;
    SwitchBench bench;
    if (c.config != Config::neverSaved)
        callRpc(bench, u_lyn_openconfig_platform_aug_save_config_invoke, kModule, "save-config",
                std::nullopt);
    bench.device().setValue("running-config-dirty", c.config == Config::changed);
    if (c.fault)
        bench.device().addFault(*c.fault);
    bench.sent();
    const LogCapture log;
    const RpcAnswer answer = callRpc(bench, u_lyn_openconfig_platform_aug_boot_sys_flash_invoke, kModule,
                                     "boot-sys-flash", c.input);
    EXPECT_EQ(answer.status, c.status);
    EXPECT_EQ(answer.texts, c.texts);
    EXPECT_EQ(bench.sent(), c.sent);
    EXPECT_EQ(log.errors(), c.errors);
    EXPECT_THAT(answer.output, IsEmpty());
    EXPECT_THAT(device.list("/tmp"), IsEmpty());
}

const std::string kNoForce = R"({"force-reboot":false})", kForce = R"({"force-reboot":true})",
                  kToPrimary = R"({"primary":[null]})", kToSecondary = R"({"secondary":[null]})",
                  kForceToPrimary = R"({"force-reboot":true,"primary":[null]})",
                  kAccepted = "Reload accepted\n";
const Boot kBoots[] = {
    {"reload",
     Config::saved,
     kNoForce,
     {kAskedForConfig, kReload},
     0,
     {},
     "reply buf is " + kAccepted + "\n"},
    {"reload_of_what_is_not_saved", Config::changed, kNoForce, {kAskedForConfig}, 4, {kUnsaved}, kUnsaved},
    {"reload_of_what_was_never_saved",
     Config::neverSaved,
     kNoForce,
     {kAskedForConfig},
     4,
     {kUnsaved},
     kUnsaved},
    {"forced_reload", Config::changed, kForce, {kReload}, 0, {}, "reply buf is " + kAccepted + "\n"},
    {"primary", Config::saved, kToPrimary, {kAskedForConfig, kPrimary}},
    {"secondary", Config::saved, kToSecondary, {kAskedForConfig, kSecondary}},
    {"secondary_with_unsaved_changes",
     Config::changed,
     kToSecondary,
     {kAskedForConfig},
     4,
     {kUnsaved},
     kUnsaved},
    {"forced_primary", Config::changed, kForceToPrimary, {kPrimary}},
    {"no_input", Config::saved, std::nullopt, {}, 274},
    {"a_dead_switch_on_reload",
     Config::saved,
     kForce,
     {kReload},
     4,
     {},
     "\n resp->response->reply_buf is NULL\n",
     noAnswer("ui_fe_reload_cmd_msg")},
    {"a_reload_that_is_not_accepted",
     Config::saved,
     kForce,
     {kReload},
     4,
     {"not now"},
     "reply buf is not now\nnot now",
     refusal("ui_fe_reload_cmd_msg", "not now", 0)},
    {"a_reload_refused_without_words",
     Config::saved,
     kForce,
     {kReload},
     4,
     {""},
     "reply buf is \n",
     refusal("ui_fe_reload_cmd_msg", std::nullopt)},
    {"a_dead_switch_on_a_partition",
     Config::saved,
     kForceToPrimary,
     {kPrimary},
     0,
     {},
     "",
     noAnswer("ui_fe_platform_boot_config")},
    {"a_refused_partition",
     Config::saved,
     kForceToPrimary,
     {kPrimary},
     4,
     {"no such image"},
     "no such image",
     refusal("ui_fe_platform_boot_config", "no such image")},
    // The configuration cannot be got: that counts as saved.
    {"a_configuration_that_cannot_be_got",
     Config::changed,
     kToPrimary,
     {kAskedForConfig, kPrimary},
     0,
     {},
     "",
     noAnswer("ui_rcm_get_running_config_file")},
};
INSTANTIATE_TEST_SUITE_P(Table, BootSysFlash, testing::ValuesIn(kBoots), CaseName());

TEST(BootSysFlashInput, IsNeeded)
{
    SwitchBench bench;
    const auto check = [&](const std::optional<std::string> &input) {
        return callRpc(bench, u_lyn_openconfig_platform_aug_boot_sys_flash_validate, kModule,
                       "boot-sys-flash", input)
            .status;
    };
    EXPECT_EQ(check(std::nullopt), 274);
    for (const std::string &input : {std::string("{}"), kForce, kToSecondary})
        EXPECT_EQ(check(input), kOk) << input;
    EXPECT_THAT(bench.sent(), IsEmpty());
}

TEST(BootSysFlashRpc, ASwitchThatIsBusySaysSoToTheClient)
{
    SwitchBench bench;
    bench.device().setValue("download-busy", 1);
    const auto reload = [&] {
        bench.host().invoke(bench.target(kModule + ":boot-sys-flash"),
                            R"({"lyn-openconfig-platform-aug:input":{"force-reboot":true}})", Encoding::json,
                            Encoding::json);
    };
    try {
        reload();
        FAIL() << "not refused";
    } catch (const Failure &failure) {
        ASSERT_EQ(failure.errors.size(), 1U);
        EXPECT_EQ(failure.errors[0].status, 4);
        EXPECT_EQ(failure.errors[0].message, kBusy);
    }
    bench.device().setValue("download-busy", 0);
    reload();
    EXPECT_EQ(bench.device().show("chassis").at("reloads"), 1);
}

TEST(SaveConfig, AlwaysAnswersSuccess)
{
    const DeviceFolder device;
    SwitchBench bench;
    const auto save = [&] {
        const RpcAnswer answer = callRpc(bench, u_lyn_openconfig_platform_aug_save_config_invoke, kModule,
                                         "save-config", std::nullopt);
        EXPECT_EQ(answer.status, kOk);
        EXPECT_THAT(answer.texts, IsEmpty());
        return answer.output;
    };
    EXPECT_THAT(save(), ElementsAre("success"));
    EXPECT_TRUE(device.has(kStartup));
    EXPECT_THAT(bench.sent(), ElementsAre("ui_execute_save_to_flash {}"));
    bench.device().addFault(refusal("ui_execute_save_to_flash", "flash is full"));
    EXPECT_THAT(save(), ElementsAre("success"));
    bench.unplug();
    EXPECT_THAT(save(), ElementsAre("success"));
    bench.plugIn();
    EXPECT_EQ(callRpc(bench, u_lyn_openconfig_platform_aug_save_config_validate, kModule, "save-config",
                      std::nullopt)
                  .status,
              kOk);
}

TEST(SaveConfig, WhatWasSavedBeforeBecomesTheBackup)
{
    const DeviceFolder device;
    SwitchBench bench;
    device.write(kStartup, "ver 08.0.95\n");
    EXPECT_EQ(bench.host()
                  .invoke(bench.target(kModule + ":save-config"), "", Encoding::json, Encoding::json)
                  .value_or("")
                  .find("error"),
              std::string::npos);
    EXPECT_THAT(device.list("/grey_slab"), ElementsAre("startup-config.backup", "startup-config.txt"));
    std::ifstream backup(device.real("/grey_slab/startup-config.backup"));
    std::string line;
    std::getline(backup, line);
    EXPECT_EQ(line, "ver 08.0.95");
}

} // namespace
} // namespace test
