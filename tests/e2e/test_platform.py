"""Chassis, stack and flash over RESTCONF, restarting and saving: what a request sends, what is read back, a refusal of
each, and which files the device has afterwards.
"""

import pytest

from harness import refused

DATA, OPERATIONS = "/restconf/data", "/restconf/operations"
PLATFORM, AUG = "openconfig-platform", "lyn-openconfig-platform-aug"
STACK, FLASH = "lyn-openconfig-stack", "lyn-openconfig-flash"
CHASSIS = f"{DATA}/{PLATFORM}:components/component=chassis"
STACK_CONFIG, STACK_STATE = f"{DATA}/{STACK}:stack/config", f"{DATA}/{STACK}:stack/state"
UNSAVED = "Running Config data has been changed. Kindly save the config data before reload.\n"
WARNING_CALL, BOOT_CALL = "ui_fe_chassis_info", "ui_fe_platform_boot_config"
GLOBAL_CALL, UNIT_CALL = "ui_fe_stack_glb_config_cmd", "ui_fe_stack_unit_config_cmd"
ASKED_FOR_CONFIG = ("ui_rcm_get_running_config_file", {"first": 0, "second": 0})
SAVED = ("ui_execute_save_to_flash", {})
RELOADED = ("ui_fe_reload_cmd_msg", {"reload_op": 1})
SHOWN = ("ui_fe_stack_show_cmd", {"show_stack": 10, "show_op": 21})


@pytest.fixture
def device(agent):
    agent.switch("fault", "clear")
    for name, value in ("running-config-dirty", 0), ("stack-units", 3):
        agent.switch("set", name, value)
    return agent


# The chassis


def test_the_whole_chassis_in_one_get(device):
    with device.sending(*(("ui_fe_send_restconf_chassis_config", {"chassis_op": 5, "chassis_query": query})
                         for query in (23, 22, 20, 19))):
        component, = device.get(f"{DATA}/{PLATFORM}:components").json()[f"{PLATFORM}:components"]["component"]
    assert component["state"] == {
        f"{AUG}:switch-model": "LYN3200-24",
        "temperature": {f"{AUG}:stack_id": [1, 2, 3], f"{AUG}:actual_temperature": [35, 38, 40],
                        f"{AUG}:warning_temperature": [60, 60, 60], f"{AUG}:shutdown_temperature": [75, 75, 75]}}
    assert component["power-supply"]["state"][f"{AUG}:power-supply-2-status"] == [
        "status ok", "status nonexist", "status bad"]
    assert component["fan"]["state"][f"{AUG}:fan-6-status"] == ["ok, speed 3"]  # one unit has six


def test_warning_temperature(device):
    def warning(**values):
        return {f"{PLATFORM}:config": {f"{AUG}:{name}": value for name, value in values.items()}}

    with device.sending((WARNING_CALL, {"thermal_stack_id": 2, "thermal_op": 2, "thermal_warning_level": 62.0})):
        assert device.patch(f"{CHASSIS}/config", warning(stack_id=2, warning_temperature=62)).status_code == 204
    state = device.get(f"{CHASSIS}/state/temperature").json()[f"{PLATFORM}:temperature"]
    assert state[f"{AUG}:warning_temperature"] == [60, 62, 60]
    with device.sending():
        refused(device.patch(f"{CHASSIS}/config", warning(stack_id=13, warning_temperature=50)), 500, 4,
                "The value of stack id should be between 1 and 12\n")
    assert device.get(f"{CHASSIS}/config").json()[f"{PLATFORM}:config"][f"{AUG}:stack_id"] == 2


# Restarting and saving


def boot(agent, **values):
    return agent.post(f"{OPERATIONS}/{AUG}:boot-sys-flash",
                      {f"{AUG}:input": {name.replace("_", "-"): value for name, value in values.items()}})


def save(agent):
    answer = agent.post(f"{OPERATIONS}/{AUG}:save-config")
    assert answer.json() == {f"{AUG}:output": {"result": "success"}}


@pytest.mark.parametrize("values, request_sent", [
    ({"force_reboot": False}, RELOADED), ({"secondary": [None]}, (BOOT_CALL, {"boot_source": 5}))])
def test_boot_sys_flash(device, values, request_sent):
    save(device)
    with device.sending(ASKED_FOR_CONFIG, request_sent):
        assert boot(device, **values).status_code == 204
    device.switch("set", "running-config-dirty", 1)
    with device.sending(ASKED_FOR_CONFIG):
        refused(boot(device, **values), 500, 4, UNSAVED)
    with device.sending(request_sent):
        assert boot(device, **{**values, "force_reboot": True}).status_code == 204
    with device.sending(SAVED, ASKED_FOR_CONFIG, request_sent):
        save(device)
        assert boot(device, **values).status_code == 204
    assert list((device.state / "device" / "tmp").iterdir()) == []  # what was compared is gone


def test_an_edit_of_the_switch_is_an_unsaved_change(device):
    save(device)
    assert device.patch(f"{DATA}/openconfig-system:system/config",
                       {"openconfig-system:config": {"hostname": f"switch-{device.last_seq()}"}}).status_code == 204
    refused(boot(device, force_reboot=False), 500, 4, UNSAVED)
    save(device)
    startup = (device.state / "device" / "grey_slab" / "startup-config.txt").read_text()
    assert startup == device.show("config-files")["running"] and "\nhostname switch-" in startup
    assert boot(device, force_reboot=False).status_code == 204


def test_the_partition_chosen_runs_after_the_restart(device):
    for partition, version in ("secondary", "08.0.95T211"), ("primary", "09.0.10T211"):
        assert boot(device, force_reboot=True, **{partition: [None]}).status_code == 204
        assert boot(device, force_reboot=True).status_code == 204
        running = device.get(f"{DATA}/{FLASH}:flash/running/code_version")
        assert running.json() == {f"{FLASH}:code_version": version}


def test_a_switch_that_never_saved_does_not_restart(make_agent):
    fresh = make_agent()
    refused(boot(fresh, force_reboot=False), 500, 4, UNSAVED)
    assert not (fresh.state / "device" / "grey_slab" / "startup-config.txt").exists()


# The stack


def test_units_as_a_list_and_by_key(device):
    def units():
        return device.get(f"{STACK_STATE}/stack-units").json()[f"{STACK}:stack-units"]["stack-unit"]

    assert units()[1] == {"unit-id": 2, "state": {
        "unit-id": 2, "dynamic-static": "D", "unit-type": "LYN3200-24", "role": "standby",
        "mac-address": "0200.5e10.0200", "priority": 128, "state": "remote", "comment": "Ready", "unit-name": "unit2"}}
    assert device.get(f"{STACK_STATE}/stack-units/stack-unit=2").json() == {f"{STACK}:stack-unit": units()[1:2]}
    assert device.get(f"{STACK_STATE}/stack-units/stack-unit=4").status_code == 404
    device.switch("set", "stack-units", 12)
    assert [one["unit-id"] for one in units()] == list(range(1, 13))


def configure(agent, path=STACK_CONFIG, **values):
    return agent.patch(path, {f"{STACK}:config": {name.replace("_", "-"): value for name, value in values.items()}})


def test_global_settings_send_what_changes_and_nothing_else(device):
    settings = {"enabled": True, "mac_address": "AABB.CCDD.EEFF", "suggested_id": 3}
    with device.sending((GLOBAL_CALL, {"oper": 1, "global_config_op": 3, "settings": {
            "stack_enable_op": 1, "stack_enable": 1, "mac_addr_op": 1, "mac_addr": "aa:bb:cc:dd:ee:ff",
            "suggest_id_op": 1, "suggest_id": 3}})):
        assert configure(device, **settings).status_code == 204
    with device.sending():
        assert configure(device, **settings).status_code == 204
        refused(configure(device, mac_address="aabb.ccdd.eef"), 500, 232, "Bad mac address len: exp:14, actual:13")
    state = device.get(f"{STACK_STATE}?depth=2").json()[f"{STACK}:state"]
    assert (state["enabled"], state["mac-address"], state["suggested-id"]) == (True, "aabb.ccdd.eeff", 3)
    refused(configure(device, suggested_id=13), 500, 4, "Error: the suggested id must be in the range 1..12\n")
    assert device.show("stack")["suggested-id"] == 3


def test_priority_and_name_of_a_unit(device):
    def configure_unit(number, **values):
        return configure(device, f"{STACK_CONFIG}/stack-units/stack-unit={number}/config", **values)

    settings = {"unit": 3, "priority_op": 1, "priority": 255, "stack_name_op": 1, "stack_name": "a-b_c"}
    with device.sending(SHOWN, SHOWN, (UNIT_CALL, {"oper": 1, "settings": settings})):
        assert configure_unit(3, priority=255, unit_name="a-b_c").status_code == 204
    state = device.get(f"{STACK_STATE}/stack-units/stack-unit=3/state").json()[f"{STACK}:state"]
    assert (state["priority"], state["unit-name"]) == (255, "a-b_c")
    refused(configure_unit(2, unit_name="a b"), 500, 228, '" " is not allowed in name "a b" \n')
    refused(configure_unit(2, unit_name="unit1"), 500, 4, "Error: another stack unit is called unit1\n")


# The flash

ITEMS = {
    "running": {"code_version": "09.0.10T211"},
    "primary": {"code_size": 33554432, "code_name": "LYN0901.bin", "code_version": "09.0.10T211",
                "boot_size": 786944, "boot_name": "boot101.bin", "boot_version": "10.1.22T235"},
    "secondary": {"code_size": 31457280, "code_name": "LYN0895.bin", "code_version": "08.0.95T211",
                  "boot_size": 786944, "boot_name": "boot101.bin", "boot_version": "10.1.18T235"},
    "freespace": {"freespace": 1073741824},
}


def test_flash_read_outs(device):
    assert boot(device, force_reboot=True, primary=[None]).status_code == 204
    with device.sending(*(("ui_fe_flash_item_req", {"flash_item": item}) for item in (1, 2, 3, 4))):
        assert device.get(f"{DATA}/{FLASH}:flash").json() == {f"{FLASH}:flash": ITEMS}
    device.switch("fault", "add", "ui_fe_flash_item_req", "null", "--count", 100)
    whole = device.get(f"{DATA}/{FLASH}:flash")  # tells nothing, and no error
    assert whole.status_code == 200 and not any(whole.json()[f"{FLASH}:flash"].values())


def test_support_data(device):
    path, mark = f"{DATA}/lyn-openconfig-supportsave:invokeSS", device.last_seq()
    wanted = {"lyn-openconfig-supportsave:invokeSS": {"modName": "core", "httpSrvrIP": "192.0.2.9"}}
    assert device.put(path, wanted).status_code == 201
    refused(device.put(path, wanted), 405, 273)
    assert device.get(path).json() == wanted
    assert device.delete(path).status_code == 204
    assert device.put(path, wanted).status_code == 201
    assert [entry["request"] for entry in device.journal(mark)] == [
        {"reply": {"ui_err": 0, "app_err": 0}, "ss_server_kind": 5, "ss_server_ip": "192.0.2.9", "ss_module": 6, "ss_path": "/"}] * 2
    assert device.switch("show", "support-data")
    device.delete(path)
