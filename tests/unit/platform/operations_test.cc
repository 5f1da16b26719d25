// The RPCs on the whole switch: restart or choose a partition, and save the configuration.
#include "platform/u_lyn-openconfig-platform-aug.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/bundle/rpc_call.h"
#include "tests/unit/platform/device_folder.h"

namespace test {
namespace {

const std::string kModule = "lyn-openconfig-platform-aug",
                  kAskedForConfig = R"(ui_rcm_get_running_config_file {"first":0,"second":0})",
                  kReload = R"(ui_fe_reload_cmd_msg {"reload_op":1})",
                  kPrimary = R"(ui_fe_platform_boot_config {"boot_source":4})",
                  kSecondary = R"(ui_fe_platform_boot_config {"boot_source":5})",
                  kUnsaved =
                      "Running Config data has been changed. Kindly save the config data before reload.\n";

RpcAnswer save(SwitchBench &bench)
{
    return callRpc(bench, u_lyn_openconfig_platform_aug_save_config_invoke, kModule, "save-config",
                   std::nullopt);
}

enum class Config { saved, changed, neverSaved };
using enum Config;

struct Boot {
    std::string name;
    Config config;
    MaybeText input;
    Texts sent;
    RpcAnswer answer;
    std::string errors;
    std::optional<switchsim::Fault> fault;
};

Boot boot(std::string name, Config config, MaybeText input, Texts sent, RpcAnswer answer = {},
          std::string errors = {}, std::optional<switchsim::Fault> fault = {})
{
    return {name, config, input, sent, answer, errors, fault};
}

const std::string kNoForce = R"({"force-reboot":false})", kForce = R"({"force-reboot":true})",
                  kToPrimary = R"({"primary":[null]})", kToSecondary = R"({"secondary":[null]})",
                  kForceToPrimary = R"({"force-reboot":true,"primary":[null]})",
                  kAccepted = "reply buf is Reload accepted\n\n", kReloadCall = "ui_fe_reload_cmd_msg",
                  kBootCall = "ui_fe_platform_boot_config";
const RpcAnswer kRefused{4, {kUnsaved}};
const Boot kBoots[] = {
    boot("reload", saved, kNoForce, {kAskedForConfig, kReload}, {}, kAccepted),
    boot("reload of what is not saved", changed, kNoForce, {kAskedForConfig}, kRefused, kUnsaved),
    boot("reload of what was never saved", neverSaved, kNoForce, {kAskedForConfig}, kRefused, kUnsaved),
    boot("forced reload", changed, kForce, {kReload}, {}, kAccepted),
    boot("primary", saved, kToPrimary, {kAskedForConfig, kPrimary}),
    boot("secondary", saved, kToSecondary, {kAskedForConfig, kSecondary}),
    boot("secondary with changes", changed, kToSecondary, {kAskedForConfig}, kRefused, kUnsaved),
    boot("forced primary", changed, kForceToPrimary, {kPrimary}),
    boot("no input", saved, std::nullopt, {}, {274}),
    boot("a dead switch on reload", saved, kForce, {kReload}, {4}, "\n resp->response->reply_buf is NULL\n",
         noAnswer(kReloadCall)),
    boot("not accepted", saved, kForce, {kReload}, {4, {"not now"}}, "reply buf is not now\nnot now",
         refusal(kReloadCall, "not now", 0)),
    boot("refused without words", saved, kForce, {kReload}, {4, {""}}, "reply buf is \n",
         refusal(kReloadCall)),
    boot("a dead switch on a partition", saved, kForceToPrimary, {kPrimary}, {}, "", noAnswer(kBootCall)),
    boot("a refused partition", saved, kForceToPrimary, {kPrimary}, {4, {"no such image"}}, "no such image",
         refusal(kBootCall, "no such image")),
    // The configuration cannot be got: that counts as saved.
    boot("no configuration", changed, kToPrimary, {kAskedForConfig, kPrimary}, {}, "",
         noAnswer("ui_rcm_get_running_config_file")),
};

TEST(BootSysFlash, DoesExactlyThis)
{
    for (const Boot &c : kBoots) {
        SCOPED_TRACE(c.name);
        const DeviceFolder device;
        SwitchBench bench;
        if (c.config != neverSaved)
            save(bench);
        bench.device().setValue("running-config-dirty", c.config == changed);
        if (c.fault)
            bench.device().addFault(*c.fault);
        bench.sent();
        const LogCapture log;
        EXPECT_EQ(callRpc(bench, u_lyn_openconfig_platform_aug_boot_sys_flash_invoke, kModule,
                          "boot-sys-flash", c.input),
                  c.answer);
        EXPECT_EQ(bench.sent(), c.sent);
        EXPECT_EQ(log.errors(), c.errors);
        EXPECT_THAT(device.list("/tmp"), IsEmpty());
        const Status checked = callRpc(bench, u_lyn_openconfig_platform_aug_boot_sys_flash_validate, kModule,
                                       "boot-sys-flash", c.input)
                                   .status;
        EXPECT_EQ(checked, c.input ? kOk : 274);
        EXPECT_THAT(bench.sent(), IsEmpty());
    }
}

TEST(SaveConfig, AlwaysAnswersSuccess)
{
    const DeviceFolder device;
    SwitchBench bench;
    const RpcAnswer success{kOk, {}, {"success"}};
    device.write(kStartup, "ver 08.0.95\n");
    EXPECT_EQ(save(bench), success);
    EXPECT_THAT(bench.sent(), ElementsAre("ui_execute_save_to_flash {}"));
    EXPECT_THAT(device.list("/grey_slab"), ElementsAre("startup-config.backup", "startup-config.txt"));
    // What was saved before is the backup.
    std::ifstream backup(device.real("/grey_slab/startup-config.backup"));
    std::string line;
    std::getline(backup, line);
    EXPECT_EQ(line, "ver 08.0.95");
    bench.device().addFault(refusal("ui_execute_save_to_flash", "flash is full"));
    EXPECT_EQ(save(bench), success);
    bench.unplug();
    EXPECT_EQ(save(bench), success);
}

} // namespace
} // namespace test
