"""Chassis, stack and flash over RESTCONF, restarting and saving: what each request sends, what is read back, what a
refusal looks like, and which files the device has afterwards.
"""

import contextlib
import json

import pytest

from harness import Agent, errors_of

DATA, OPERATIONS = "/restconf/data", "/restconf/operations"
PLATFORM, AUG = "openconfig-platform", "lyn-openconfig-platform-aug"
STACK, FLASH = "lyn-openconfig-stack", "lyn-openconfig-flash"
CHASSIS = f"{DATA}/{PLATFORM}:components/component=chassis"
STACK_CONFIG, STACK_STATE = f"{DATA}/{STACK}:stack/config", f"{DATA}/{STACK}:stack/state"
UNSAVED = "Running Config data has been changed. Kindly save the config data before reload.\n"

CHASSIS_CALL, WARNING_CALL = "ui_fe_send_restconf_chassis_config", "ui_fe_chassis_info"
BOOT_CALL, RELOAD_CALL = "ui_fe_platform_boot_config", "ui_fe_reload_cmd_msg"
CONFIG_CALL, SAVE_CALL = "ui_rcm_get_running_config_file", "ui_execute_save_to_flash"
GLOBAL_CALL, UNIT_CALL, SHOW_CALL = "ui_fe_stack_glb_config_cmd", "ui_fe_stack_unit_config_cmd", "ui_fe_stack_show_cmd"

ASKED_FOR_CONFIG = (CONFIG_CALL, {"first": 0, "second": 0})
SAVED = (SAVE_CALL, {})
RELOADED = (RELOAD_CALL, {"reload_op": 1})
SHOWN = (SHOW_CALL, {"show_stack": 10, "show_op": 21})


@pytest.fixture(scope="module", params=[1, 3], ids=["platform_1", "platform_3"])
def of_platform(request):
    with Agent(platform=request.param) as running:
        yield running, request.param


@pytest.fixture
def agent(of_platform):
    running, _ = of_platform
    running.switch("fault", "clear")
    for name, value in ("download-busy", 0), ("running-config-dirty", 0), ("stack-units", 3):
        running.switch("set", name, value)
    return running


@contextlib.contextmanager
def sending(agent, *expected):
    """What is done inside sends exactly these requests, each a call with its fields."""
    since = agent.last_seq()
    yield
    assert [(entry["call"], entry["request"]) for entry in agent.journal(since)] == list(expected)


def refusal(response, status, text):
    assert response.status_code >= 400, response.text
    entry, = errors_of(response)
    assert (entry["error-app-tag"], entry["error-message"]) == (str(status), text)


def shown(agent, word):
    return json.loads(agent.switch("show", word))


# The chassis


def test_the_whole_chassis_in_one_get(agent):
    since = agent.last_seq()
    component, = agent.get(f"{DATA}/{PLATFORM}:components").json()[f"{PLATFORM}:components"]["component"]
    assert component["state"] == {
        f"{AUG}:switch-model": "LYN3200-24",
        "temperature": {f"{AUG}:stack_id": [1, 2, 3], f"{AUG}:actual_temperature": [35, 38, 40],
                        f"{AUG}:warning_temperature": [60, 60, 60], f"{AUG}:shutdown_temperature": [75, 75, 75]}}
    assert component["power-supply"]["state"] == {
        f"{AUG}:stack_id": [1, 2, 3], f"{AUG}:power-supply-1-status": ["status ok"] * 3,
        f"{AUG}:power-supply-2-status": ["status ok", "status nonexist", "status bad"]}
    fans = component["fan"]["state"]
    assert fans[f"{AUG}:stack_id"] == [1, 2, 3] and len(fans[f"{AUG}:fan-1-status"]) == 3
    assert fans[f"{AUG}:fan-6-status"] == ["ok, speed 3"]  # one unit has six
    asked = [entry["request"] for entry in agent.journal(since)]
    assert asked == [{"chassis_op": 5, "chassis_query": query} for query in (23, 22, 20, 19)]


def test_a_chassis_that_does_not_answer(agent):
    agent.switch("fault", "add", CHASSIS_CALL, "null")
    entry, = errors_of(agent.get(f"{CHASSIS}/fan/state"))
    assert entry["error-app-tag"] == "4"


def warning(**values):
    return {f"{PLATFORM}:config": {f"{AUG}:{name}": value for name, value in values.items()}}


def test_warning_temperature(agent):
    with sending(agent, (WARNING_CALL, {"thermal_stack_id": 2, "thermal_op": 2, "thermal_warning_level": 62.0})):
        assert agent.patch(f"{CHASSIS}/config", warning(stack_id=2, warning_temperature=62)).status_code == 204
    state = agent.get(f"{CHASSIS}/state/temperature").json()[f"{PLATFORM}:temperature"]
    assert state[f"{AUG}:warning_temperature"] == [60, 62, 60]
    with sending(agent, (WARNING_CALL, {"thermal_stack_id": 2, "thermal_op": 2, "thermal_warning_level": 60.0})):
        assert agent.patch(f"{CHASSIS}/config", warning(warning_temperature=60)).status_code == 204


@pytest.mark.parametrize("values, text", [
    ({"stack_id": 0, "warning_temperature": 50}, "The value of stack id should be between 1 and 12\n"),
    ({"stack_id": 13, "warning_temperature": 50}, "The value of stack id should be between 1 and 12\n"),
    ({"stack_id": 1, "warning_temperature": 63},
     "Bad value: warning level on this unit can have value from 0 to 62"),
    ({"warning_temperature": 50}, "Provide stack id for which the warning temperature has to set\n"),
])
def test_a_refused_warning_temperature(agent, values, text):
    before = agent.get(f"{CHASSIS}/config").json()
    with sending(agent):
        whole = warning(**values)
        whole[f"{PLATFORM}:config"]["name"] = "chassis"
        refusal(agent.put(f"{CHASSIS}/config", whole), 4, text)
    assert agent.get(f"{CHASSIS}/config").json() == before


# Restarting and saving


def boot(agent, **values):
    return agent.post(f"{OPERATIONS}/{AUG}:boot-sys-flash", {f"{AUG}:input": values})


def save(agent):
    answer = agent.post(f"{OPERATIONS}/{AUG}:save-config")
    assert answer.json() == {f"{AUG}:output": {"result": "success"}}


@pytest.mark.parametrize("values, request_sent", [
    ({"force-reboot": False}, RELOADED),
    ({"primary": [None]}, (BOOT_CALL, {"boot_source": 4})),
    ({"secondary": [None]}, (BOOT_CALL, {"boot_source": 5})),
])
def test_boot_sys_flash(agent, values, request_sent):
    save(agent)
    with sending(agent, ASKED_FOR_CONFIG, request_sent):
        assert boot(agent, **values).status_code == 204
    agent.switch("set", "running-config-dirty", 1)
    with sending(agent, ASKED_FOR_CONFIG):
        refusal(boot(agent, **values), 4, UNSAVED)
    with sending(agent, request_sent):
        assert boot(agent, **{**values, "force-reboot": True}).status_code == 204
    with sending(agent, SAVED, ASKED_FOR_CONFIG, request_sent):
        save(agent)
        assert boot(agent, **values).status_code == 204
    assert list((agent.state / "device" / "tmp").iterdir()) == []  # what was compared is gone


def test_an_edit_of_the_switch_is_an_unsaved_change(agent):
    save(agent)
    assert agent.patch(f"{DATA}/openconfig-system:system/config",
                       {"openconfig-system:config": {"hostname": f"switch-{agent.last_seq()}"}}).status_code == 204
    refusal(boot(agent, **{"force-reboot": False}), 4, UNSAVED)
    save(agent)
    startup = (agent.state / "device" / "grey_slab" / "startup-config.txt").read_text()
    assert startup == shown(agent, "config-files")["running"] and "\nhostname switch-" in startup
    assert boot(agent, **{"force-reboot": False}).status_code == 204


def start_from(agent, partition):
    for values in {partition: [None]}, {}:
        assert boot(agent, **{"force-reboot": True, **values}).status_code == 204


def test_the_partition_chosen_runs_after_the_restart(agent):
    start_from(agent, "primary")
    assert boot(agent, **{"force-reboot": True, "secondary": [None]}).status_code == 204
    running = f"{DATA}/{FLASH}:flash/running/code_version"
    assert agent.get(running).json() == {f"{FLASH}:code_version": "09.0.10T211"}
    assert boot(agent, **{"force-reboot": True}).status_code == 204
    assert agent.get(running).json() == {f"{FLASH}:code_version": "08.0.95T211"}
    start_from(agent, "primary")
    assert agent.get(running).json() == {f"{FLASH}:code_version": "09.0.10T211"}


def test_a_restart_that_the_switch_refuses(agent):
    agent.switch("set", "download-busy", 1)
    refusal(boot(agent, **{"force-reboot": True}), 4, "Error: an image is being downloaded, no reload now\n")
    agent.switch("fault", "add", BOOT_CALL, "refuse", "--text", "no such image")
    refusal(boot(agent, **{"force-reboot": True, "primary": [None]}), 4, "no such image")


def test_saving_is_a_success_whatever_the_switch_says(agent):
    agent.switch("fault", "add", SAVE_CALL, "null")
    with sending(agent, SAVED):
        save(agent)


def test_a_switch_that_never_saved_does_not_restart(make_agent):
    fresh = make_agent()
    refusal(boot(fresh, **{"force-reboot": False}), 4, UNSAVED)
    assert not (fresh.state / "device" / "grey_slab" / "startup-config.txt").exists()


# The stack


def unit(number, source, role, state):
    return {"unit-id": number, "state": {
        "unit-id": number, "dynamic-static": source, "unit-type": "LYN3200-24", "role": role,
        "mac-address": f"0200.5e10.0{number}00", "priority": 128, "state": state, "comment": "Ready",
        "unit-name": f"unit{number}"}}


UNITS = [unit(1, "S", "active", "local"), unit(2, "D", "standby", "remote"), unit(3, "D", "member", "remote")]


def test_units_as_a_list_and_by_key(agent):
    answer = agent.get(f"{STACK_STATE}/stack-units").json()
    assert answer == {f"{STACK}:stack-units": {"stack-unit": UNITS}}
    for one in UNITS:
        path = f"{STACK_STATE}/stack-units/stack-unit={one['unit-id']}"
        assert agent.get(path).json() == {f"{STACK}:stack-unit": [one]}
    assert agent.get(f"{STACK_STATE}/stack-units/stack-unit=4").status_code == 404
    agent.switch("set", "stack-units", 12)
    units = agent.get(f"{STACK_STATE}/stack-units").json()[f"{STACK}:stack-units"]["stack-unit"]
    assert [one["unit-id"] for one in units] == list(range(1, 13))


def configure(agent, **values):
    return agent.patch(STACK_CONFIG, {f"{STACK}:config": {name.replace("_", "-"): value
                                                           for name, value in values.items()}})


def test_global_settings_send_what_changes_and_nothing_else(agent):
    settings = {"enabled": True, "mac_address": "AABB.CCDD.EEFF", "suggested_id": 3, "zero_touch_enable": True,
                "ztp_force": True}
    with sending(agent, (GLOBAL_CALL, {"oper": 1, "global_config_op": 3, "settings": {
            "stack_enable_op": 1, "stack_enable": 1, "mac_addr_op": 1, "mac_addr": "aa:bb:cc:dd:ee:ff",
            "suggest_id_op": 1, "suggest_id": 3, "ztp_enable_op": 1, "ztp_enable": 1,
            "ztp_force_op": 1, "ztp_force": 1}})):
        assert configure(agent, **settings).status_code == 204
    with sending(agent):
        assert configure(agent, **settings).status_code == 204
    state = agent.get(f"{STACK_STATE}?depth=2").json()[f"{STACK}:state"]
    assert {name: state[name] for name in ("enabled", "mac-address", "suggested-id", "ztp-force")} == {
        "enabled": True, "mac-address": "aabb.ccdd.eeff", "suggested-id": 3, "ztp-force": True}
    with sending(agent, (GLOBAL_CALL, {"oper": 1, "global_config_op": 3, "settings": {
            "stack_enable_op": 3, "stack_enable": 0, "mac_addr_op": 3, "mac_addr": "00:00:00:00:00:00"}})):
        assert configure(agent, enabled=False, mac_address="0000.0000.0000").status_code == 204
    assert agent.get(f"{STACK_STATE}/mac-address").json() == {f"{STACK}:mac-address": "---"}


@pytest.mark.parametrize("values, status, text", [
    ({"mac_address": "aabb.ccdd.eef"}, 232, "Bad mac address len: exp:14, actual:13"),
    ({"mac_address": "aa.bbcc.ddeeff"}, 232, "Invalid chars in mac address string: aa.bbcc.ddeeff"),
    ({"mac_address": "ffff.ffff.ffff"}, 232, "Can't set mac addres to broadcast addr: ffff.ffff.ffff"),
    ({"mac_address": "0100.0000.0000"}, 232, "Can't set mac addres to multicast addr:0100.0000.0000"),
])
def test_a_refused_mac_address_sends_nothing(agent, values, status, text):
    with sending(agent):
        refusal(configure(agent, ztp_force=not shown(agent, "stack")["ztp-forced"], **values), status, text)


def test_what_the_switch_refuses(agent):
    refusal(configure(agent, suggested_id=13), 4, "Error: the suggested id must be in the range 1..12\n")
    assert shown(agent, "stack")["suggested-id"] != 13


def test_rear_module(agent, of_platform):
    if of_platform[1] != 3:
        with sending(agent):
            refusal(configure(agent, rear_module="uplink-100g"), 227,
                    "Error - rear-module can only be set on a LYN4400")
        assert agent.get(f"{STACK_STATE}/rear-module").json() == {f"{STACK}:rear-module": "other"}
        return
    with sending(agent, (GLOBAL_CALL, {"oper": 1, "global_config_op": 3,
                                       "settings": {"rear_module_uplink_100g_op": 1}})):
        assert configure(agent, rear_module="uplink-100g").status_code == 204
    assert shown(agent, "stack")["rear-module"] == "uplink-100g"
    with sending(agent, (GLOBAL_CALL, {"oper": 3, "global_config_op": 3,
                                       "settings": {"rear_module_uplink_100g_op": 3}})):
        assert agent.delete(f"{STACK_CONFIG}/rear-module").status_code == 204
    assert agent.get(f"{STACK_STATE}/rear-module").json() == {f"{STACK}:rear-module": "stack-40g"}


def configure_unit(agent, number, **values):
    values = {name.replace("_", "-"): value for name, value in values.items()}
    return agent.patch(f"{STACK_CONFIG}/stack-units/stack-unit={number}/config", {f"{STACK}:config": values})


def test_priority_and_name_of_a_unit(agent):
    settings = {"unit": 3, "priority_op": 1, "priority": 255, "stack_name_op": 1, "stack_name": "a-b_c"}
    with sending(agent, SHOWN, SHOWN, (UNIT_CALL, {"oper": 1, "settings": settings})):
        assert configure_unit(agent, 3, priority=255, unit_name="a-b_c").status_code == 204
    state = agent.get(f"{STACK_STATE}/stack-units/stack-unit=3/state").json()[f"{STACK}:state"]
    assert (state["priority"], state["unit-name"]) == (255, "a-b_c")
    with sending(agent, SHOWN, SHOWN, (UNIT_CALL, {"oper": 1, "settings": {"unit": 3, **{
            name: value for name, value in settings.items() if name.startswith("priority")}, "priority": 128}})):
        assert configure_unit(agent, 3, priority=128).status_code == 204


@pytest.mark.parametrize("values, status, text", [
    ({"priority": 256}, 288, "Priority:256 out of range:0 - 255"),
    ({"unit_name": ""}, 228, "Error! unit-name must start with an alphabet"),
    ({"unit_name": "a b"}, 228, '" " is not allowed in name "a b" \n'),
])
def test_a_refused_unit_setting(agent, values, status, text):
    refusal(configure_unit(agent, 2, **values), status, text)


def test_units_that_are_not_there_and_names_that_are_taken(agent):
    created = agent.post(f"{STACK_CONFIG}/stack-units",
                         {f"{STACK}:stack-unit": [{"unit-id": 5, "config": {"unit-id": 5}}]})
    refusal(created, 225, "stack-id 5 is invalid")
    refusal(configure_unit(agent, 2, unit_name="unit1"), 4, "Error: another stack unit is called unit1\n")


# The flash

ITEMS = {
    "running": {"code_version": "09.0.10T211"},
    "primary": {"code_size": 33554432, "code_name": "LYN0901.bin", "code_version": "09.0.10T211",
                "boot_size": 786944, "boot_name": "boot101.bin", "boot_version": "10.1.22T235"},
    "secondary": {"code_size": 31457280, "code_name": "LYN0895.bin", "code_version": "08.0.95T211",
                  "boot_size": 786944, "boot_name": "boot101.bin", "boot_version": "10.1.18T235"},
    "freespace": {"freespace": 1073741824},
}


def test_flash_read_outs(agent):
    start_from(agent, "primary")
    with sending(agent, *(("ui_fe_flash_item_req", {"flash_item": item}) for item in (1, 2, 3, 4))):
        assert agent.get(f"{DATA}/{FLASH}:flash").json() == {f"{FLASH}:flash": ITEMS}


def test_flash_with_the_daemon_down(agent):
    agent.switch("fault", "add", "ui_fe_flash_item_req", "null", "--count", 100)
    for item in ITEMS:
        answer = agent.get(f"{DATA}/{FLASH}:flash/{item}")
        assert (answer.status_code, answer.json()) == (200, {f"{FLASH}:{item}": {}})
    whole = agent.get(f"{DATA}/{FLASH}:flash")
    assert whole.status_code == 200 and not any(whole.json()[f"{FLASH}:flash"].values())


def test_the_flash_cannot_be_configured(agent):
    answer = agent.put(f"{DATA}/{FLASH}:flash/running/code_version", {f"{FLASH}:code_version": "1"})
    assert 400 <= answer.status_code < 500, answer.text
