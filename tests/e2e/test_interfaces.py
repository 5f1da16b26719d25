"""A new user's hour: ports, routed interfaces, LAGs, VLANs and their members, from RESTCONF to the switch."""

import json
from collections import Counter

import pytest

from harness import refused

DATA = "/restconf/data/"
INTERFACES = DATA + "openconfig-interfaces:interfaces"
VLANS = DATA + "openconfig-network-instance:network-instances/network-instance=default/vlans"


def interface(name, below=""):
    return INTERFACES + "/interface=" + name.replace(" ", "%20").replace("/", "%2F") + below


def ethernet(port, below):
    return interface(f"ethernet 1/1/{port}", "/openconfig-if-ethernet:ethernet" + below)


@pytest.fixture
def switch(agent):
    """The agent with a mark in the journal, and the requests behind it."""
    agent.mark = agent.last_seq()

    def sent():
        entries = agent.journal(agent.mark)
        agent.mark = agent.last_seq()
        return [(entry["call"], entry["request"]) for entry in entries]

    agent.sent = sent
    return agent


def done(response):
    assert response.status_code in (201, 204), response.text


def test_a_port_is_described_and_disabled(switch):
    done(switch.patch(interface("ethernet 1/1/1", "/config"),
                      {"openconfig-interfaces:config": {"description": "uplink", "enabled": False}}))
    assert switch.sent() == [("ui_fe_interface_config_msg", {
        "operation": 2, "name": "ethernet 1/1/1", "description_op": 2, "description": "uplink",
        "enabled_op": 2, "enabled": 0})]
    port = switch.show("interfaces")["ethernet 1/1/1"]
    assert (port["description"], port["enabled"]) == ("uplink", False)
    refused(switch.delete(interface("ethernet 1/1/1")), 405, 273)


def test_a_routed_interface_with_an_address(switch):
    done(switch.post(INTERFACES, {"openconfig-interfaces:interface": [{
        "name": "ve 20",
        "config": {"name": "ve 20", "type": "iana-if-type:l3ipvlan", "description": "office"},
        "subinterfaces": {"subinterface": [{"index": 0, "openconfig-if-ip:ipv4": {"addresses": {"address": [
            {"ip": "10.0.20.1", "config": {"ip": "10.0.20.1", "prefix-length": 24}}]}}}]}}]}))
    assert switch.sent() == [
        ("ui_set_intf_config", {"name": "ve 20", "id": 20, "if_type": 4, "operation": 1, "description": "office",
                                "description_op": 2}),
        ("ui_ip_interface_config", {"address_op": 1, "address": "10.0.20.1", "mask": "255.255.255.0",
                                    "name": "ve 20"})]
    assert switch.show("ip")["ve 20"] == {"description": "office", "addresses": ["10.0.20.1 255.255.255.0"]}


def test_a_lag_with_two_members(switch):
    done(switch.post(INTERFACES, {"openconfig-interfaces:interface": [{
        "name": "lag 5", "config": {"name": "lag 5", "type": "iana-if-type:ieee8023adLag"},
        "openconfig-if-aggregate:aggregation": {"config": {"lag-type": "LACP"}}}]}))
    assert [call for call, _ in switch.sent()] == ["ui_lag_config_apply", "ui_fe_interface_config_msg"]
    for port in (2, 3):
        done(switch.put(ethernet(port, "/config/openconfig-if-aggregate:aggregate-id"),
                        {"openconfig-if-aggregate:aggregate-id": "lag 5"}))
    assert [request for call, request in switch.sent() if call == "ui_lag_config_apply"] == [
        {"lag_id": 5, "id_valid": 1, "ports_op": 1, "ports": f"ethernet 1/1/{port}"} for port in (2, 3)]
    lag = switch.show("lag")["lag 5"]
    assert (lag["name"], lag["mode"], lag["members"]) == ("lg5", "dynamic", ["ethernet 1/1/2", "ethernet 1/1/3"])


def test_vlans_and_their_members(switch):
    for vlan, name in ((10, "staff"), (20, "voice")):
        done(switch.post(VLANS, {"openconfig-network-instance:vlan": [
            {"vlan-id": vlan, "config": {"vlan-id": vlan, "name": name}}]}))
        assert switch.sent() == [("ui_vlan_config_apply", {
            "operation": 1, "vlan_type": {"kind": 2, "multi_vlan": {"vlan_mask": str(vlan)}},
            "name_op": 1, "name": name})]
    done(switch.put(ethernet(4, "/openconfig-vlan:switched-vlan/config"),
                    {"openconfig-vlan:config": {"access-vlan": 10, "trunk-vlans": [20]}}))
    assert switch.sent() == [
        ("ui_vlan_config_apply", {"vlan_type": {"kind": 2, "multi_vlan": {"vlan_mask": "10"}},
                                  "untagged_op": 1, "untagged_ports": "ethernet 1/1/4"}),
        ("ui_vlan_config_apply", {"vlan_type": {"kind": 2, "multi_vlan": {"vlan_mask": "20"}},
                                  "tagged_op": 1, "tagged_ports": "ethernet 1/1/4"})]
    done(switch.patch(interface("lag 5", "/openconfig-if-aggregate:aggregation/openconfig-vlan:switched-vlan/config"),
                      {"openconfig-vlan:config": {"access-vlan": 20, "trunk-vlans": [10]}}))
    assert [request["vlan_type"] for _, request in switch.sent()] == [
        {"kind": 1, "id": 20}, {"kind": 2, "multi_vlan": {"vlan_mask": "10"}}]
    vlans = switch.show("vlan")
    assert vlans["10"] == {"name": "staff", "tagged": ["lag 5"], "untagged": ["ethernet 1/1/4"]}
    assert vlans["20"] == {"name": "voice", "tagged": ["ethernet 1/1/4"], "untagged": ["lag 5"]}
    missing = switch.put(ethernet(5, "/openconfig-vlan:switched-vlan/config/access-vlan"),
                         {"openconfig-vlan:access-vlan": 99})
    assert missing.status_code >= 400 and "VLAN 99 does not exist" in missing.text


def test_one_get_reads_every_port(switch):
    def packets():
        interfaces = switch.get(INTERFACES).json()["openconfig-interfaces:interfaces"]["interface"]
        ports = [entry for entry in interfaces if entry["name"].startswith("ethernet")]
        assert len(ports) == 24
        return {entry["name"]: int(entry["state"]["counters"]["in-pkts"]) for entry in ports}

    before = packets()
    queries = switch.sent()
    # Each state container asks once, that of trust DSCP twice: for the port and for its trust.
    once = {"ui_fe_interface_config_msg": 3, "ui_fe_interface_ethernet_config_msg": 1,
            "ui_fe_poe_config_cmd_send": 1, "ui_fe_qos_port_oper": 1}
    for port in range(1, 25):
        name = f'"ethernet 1/1/{port}"'
        assert Counter(call for call, request in queries if name in json.dumps(request)) == once
    after = packets()
    assert after["ethernet 1/1/1"] == before["ethernet 1/1/1"], "the port is disabled"
    assert all(after[name] > before[name] for name in before if name != "ethernet 1/1/1")


def test_all_of_it_goes_again(switch):
    done(switch.delete(ethernet(4, "/openconfig-vlan:switched-vlan/config")))
    done(switch.delete(interface("lag 5", "/openconfig-if-aggregate:aggregation/openconfig-vlan:switched-vlan/config")))
    for port in (2, 3):
        done(switch.delete(ethernet(port, "/config/openconfig-if-aggregate:aggregate-id")))
    done(switch.delete(interface("lag 5")))
    switch.sent()
    done(switch.delete(interface("ve 20")))
    assert [(call, request.get("operation", request.get("address_op"))) for call, request in switch.sent()] == [
        ("ui_ip_interface_config", 3), ("ui_set_intf_config", 2), ("ui_set_intf_config", 3)]
    for vlan in (10, 20):
        done(switch.delete(f"{VLANS}/vlan={vlan}"))
    assert switch.show("lag") == {}
    assert switch.show("ip") == {}
    assert list(switch.show("vlan")) == ["1"]
