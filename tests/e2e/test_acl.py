"""Access lists, from RESTCONF to the switch: filters, interfaces, and what it refuses."""

import pytest

from harness import refused

ACL = "/restconf/data/openconfig-acl:acl"
WEB = ACL + "/acl-sets/acl-set=web,ACL_IPV4"
PORT = ACL + "/interfaces/interface=ethernet%201%2F1%2F1"
HANDLER = "sec_protobuf_fe_config_handler"


def rule(number, action="ACCEPT", port=80):
    return {"sequence-id": number, "config": {"sequence-id": number},
            "ipv4": {"config": {"source-address": "10.0.0.0/8", "protocol": "openconfig-packet-match-types:IP_TCP"}},
            "transport": {"config": {"destination-port": port}}, "actions": {"config": {"forwarding-action": action}}}


def bound(*names):
    return {"openconfig-acl:interface": [{"id": "ethernet 1/1/1", "config": {"id": "ethernet 1/1/1"},
                                          "ingress-acl-sets": {"ingress-acl-set": [
                                              {"set-name": name, "type": "ACL_IPV4",
                                               "config": {"set-name": name, "type": "ACL_IPV4"}} for name in names]}}]}


@pytest.fixture
def sent(agent):
    """The security daemon's requests since the last look: message, operation and sequence."""
    mark = agent.last_seq()

    def look():
        nonlocal mark
        entries = agent.journal(mark)
        mark = agent.last_seq()
        assert {entry["call"] for entry in entries} <= {HANDLER}
        return [(r["message"], r["operation"], r.get("sequence")) for r in (entry["request"] for entry in entries)]

    return look


def test_a_list_with_rules_is_bound_and_goes_again(agent, sent):
    answer = agent.post(ACL + "/acl-sets", {"openconfig-acl:acl-set": [
        {"name": "web", "type": "ACL_IPV4", "config": {"name": "web", "type": "ACL_IPV4"},
         "acl-entries": {"acl-entry": [rule(10), rule(20, "DROP", "1..1023")]}}]})
    assert answer.status_code == 201, answer.text
    assert sent() == [("acl_definition_request", 1, None), ("ipv4_acl_filter", 1, 10), ("ipv4_acl_filter", 1, 20)]
    assert agent.put(WEB + "/acl-entries/acl-entry=10", {"openconfig-acl:acl-entry": [rule(10, port="gt 8000")]}).ok
    assert sent() == [("ipv4_acl_filter", 3, 10), ("ipv4_acl_filter", 1, 10)]
    assert agent.put(PORT, bound("web")).status_code == 201
    assert sent() == [("acl_interf_binding", 1, None)]
    web = agent.show("access-lists")["ipv4"]["web"]
    assert list(web["rules"]) == ["10", "20"]
    assert web["rules"]["10"]["destination_port_operator"] == 3
    assert web["bound"] == [{"to": "ethernet 1/1/1", "direction": "ingress"}]
    read = agent.get(ACL).json()["openconfig-acl:acl"]
    entry = read["acl-sets"]["acl-set"][0]["acl-entries"]["acl-entry"][0]
    assert entry["transport"]["config"]["destination-port"] == "gt 8000"
    assert not entry.get("state") and not entry["ipv4"].get("state")
    assert sent() == []

    assert agent.delete(WEB).status_code == 409, "an interface refers to it"
    assert agent.delete(PORT).status_code == 204
    assert agent.delete(WEB).status_code == 204
    assert sent() == [("acl_interf_binding", 3, None), ("ipv4_acl_filter", 3, 20), ("ipv4_acl_filter", 3, 10),
                      ("acl_definition_request", 3, None)]
    assert agent.show("access-lists") == {}


def test_what_cannot_be_told_to_the_switch_is_refused(agent, sent):
    body = {"openconfig-acl:acl-set": [{"name": "web", "type": "ACL_IPV4", "config": {"name": "web", "type": "ACL_IPV4"},
                                        "acl-entries": {"acl-entry": [rule(10)]}}]}
    assert agent.post(ACL + "/acl-sets", body).status_code == 201
    sent()
    action = WEB + "/acl-entries/acl-entry=10/actions/config"
    refused(agent.patch(action, {"openconfig-acl:config": {"forwarding-action": "DROP"}}), 405, 273)
    refused(agent.delete(ACL), 405, 273)
    incomplete = {key: value for key, value in rule(30).items() if key != "actions"}
    refused(agent.post(WEB + "/acl-entries", {"openconfig-acl:acl-entry": [incomplete]}), 400, 233)
    assert sent() == []
    refused(agent.put(ACL + "/interfaces/interface=vlan%20%205", {"openconfig-acl:interface": [
        {**bound("web")["openconfig-acl:interface"][0], "id": "vlan  5", "config": {"id": "vlan  5"}}]}),
        500, 4, "Should have single space between vlan and DECIMAL")
    agent.switch("set", "acl-rules", 1)
    refused(agent.post(WEB + "/acl-entries", {"openconfig-acl:acl-entry": [rule(20)]}), 500, 4)
    assert agent.get(WEB + "/acl-entries/acl-entry=20").status_code == 404
    assert list(agent.show("access-lists")["ipv4"]["web"]["rules"]) == ["10"]
    agent.switch("set", "acl-rules", 4096)
