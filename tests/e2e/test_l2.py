"""Spanning tree, LLDP and snooping over RESTCONF: what the switch is asked for, what it is like afterwards, and what it
refuses.
"""

import time

import pytest

from harness import refused

DATA = "/restconf/data/"
VLANS = DATA + "openconfig-network-instance:network-instances/network-instance=default/vlans"
PORT = "ethernet 1/1/3"
AT_PORT = "/interfaces/interface=ethernet%201%2F1%2F3"


def done(response):
    assert response.status_code in (201, 204), response.text


@pytest.fixture(scope="module", autouse=True)
def vlans(agent):
    for vlan in (10, 20):
        done(agent.post(VLANS, {"openconfig-network-instance:vlan": [{"vlan-id": vlan, "config": {"vlan-id": vlan}}]}))


class TestSpanningTree:
    STP = DATA + "openconfig-spanning-tree:stp"
    CLASSIC = "lyn-openconfig-spanning-tree-aug"

    def rapid(self, vlan, **config):
        return {"openconfig-spanning-tree:vlan": [{"vlan-id": vlan, "config": {"vlan-id": vlan, **config}}]}

    def test_trees_of_vlans(self, agent):
        vlan_type = {"vlan_type": {"kind": 1, "id": 10}}
        with agent.sending(("ui_rstp_config_apply", {"vlan_id": 10, "enable_op": 2, "enable": 2, "priority_op": 2,
                                                     "priority": 4096, **vlan_type})):
            done(agent.post(self.STP + "/rapid-pvst", self.rapid(10, **{"bridge-priority": 4096})))
        done(agent.put(self.STP + f"/{self.CLASSIC}:pvst/vlan=20", {
            f"{self.CLASSIC}:vlan": [{"vlan-id": 20, "config": {"vlan-id": 20}}]}))
        assert agent.show("spanning-tree")["vlans"] == {
            "10": {"kind": "rapid", "priority": 4096}, "20": {"kind": "classic", "priority": 32768}}

        refused(agent.post(self.STP + "/rapid-pvst", self.rapid(30)), 500, 1042, "Error: VLAN 30 does not exist\n")
        refused(agent.post(self.STP + "/rapid-pvst", self.rapid(20)), 500, 1042,
                "Error: VLAN 20 has a classic spanning tree\n")
        refused(agent.patch(self.STP + "/rapid-pvst/vlan=10/config",
                            {"openconfig-spanning-tree:config": {"bridge-priority": 65536}}), 500, 1042,
                "Error: the priority of a bridge must be in the range 0..65535\n")

        begun = time.monotonic()
        with agent.sending(("ui_rstp_config_apply", {"vlan_id": 10, "enable_op": 2, "enable": 0, **vlan_type})):
            done(agent.delete(self.STP + "/rapid-pvst/vlan=10"))
        assert time.monotonic() - begun >= 3
        done(agent.delete(self.STP + f"/{self.CLASSIC}:pvst/vlan=20"))
        assert agent.show("spanning-tree")["vlans"] == {}

    def test_a_port(self, agent):
        config = self.STP + AT_PORT + "/config"
        done(agent.post(self.STP + "/interfaces", {"openconfig-spanning-tree:interface": [{
            "name": PORT, "config": {"name": PORT, "guard": "ROOT", "bpdu-guard": True,
                                     "edge-port": "openconfig-spanning-tree-types:EDGE_ENABLE"}}]}))
        ports = {PORT: {"root-guard": True, "bpdu-guard": True, "edge": True}}
        assert agent.show("spanning-tree")["ports"] == ports
        with agent.sending(("ui_stp_common_port_config_apply",
                            {"name": PORT, "root_guard_op": 2, "root_guard": 0})):
            done(agent.delete(config + "/guard"))
        with agent.sending():  # a replaced container does not reach the switch
            done(agent.put(config, {"openconfig-spanning-tree:config": {"name": PORT, "bpdu-guard": False}}))
        assert agent.show("spanning-tree")["ports"] == {PORT: {**ports[PORT], "root-guard": False}}
        done(agent.delete(self.STP + AT_PORT))
        assert agent.show("spanning-tree")["ports"] == {PORT: {"root-guard": False, "bpdu-guard": False, "edge": True}}


class TestLldp:
    LLDP = DATA + "openconfig-lldp:lldp"
    AUG = "lyn-openconfig-lldp-aug"
    POLICY = f"{LLDP}/{AUG}:med/network-policy"

    def enable(self, agent, enabled):
        return agent.patch(self.LLDP + "/config", {"openconfig-lldp:config": {"enabled": enabled}})

    def port(self, enabled):
        return {"openconfig-lldp:interface": [{"name": PORT, "config": {"name": PORT, "enabled": enabled}}]}

    def test_a_port_that_is_silent(self, agent):
        assert PORT in agent.show("lldp")["neighbors"]
        with agent.sending(
                ("ui_fe_lldp_config_apply", {"flag": 2, "operation": 5}),
                ("ui_lldp_fe_int_config_apply", {
                    "operation": 2, "rx_op": 1, "rx": 0, "tx_op": 1, "tx": 0, "port_list": PORT, "port_list_flag": 0,
                    "interface_name": PORT, "interface_op": 1})):
            done(agent.post(self.LLDP + "/interfaces", self.port(False)))
        shown = agent.show("lldp")
        assert shown["ports"] == {PORT: {"receives": False, "sends": False}} and PORT not in shown["neighbors"]
        done(agent.delete(self.LLDP + AT_PORT + "/config/enabled"))  # on by default
        assert agent.show("lldp")["ports"] == {}

    def test_off_for_the_whole_switch(self, agent):
        done(self.enable(agent, False))
        assert agent.show("lldp")["neighbors"] == {}
        refused(agent.put(self.LLDP + AT_PORT, self.port(True)), 500, 4)
        agent.logged("Error: LLDP is disabled globally.")
        refused(agent.delete(self.LLDP + "/config"), 405, 273)
        done(agent.delete(self.LLDP + "/config/enabled"))  # on by default
        assert agent.show("lldp")["enabled"] is True
        done(agent.delete(self.LLDP + AT_PORT))

    def test_policies_of_media_endpoints(self, agent):
        keys = {"application-type": "voice", "name": "phones", "vlan": 20, "priority": 5, "dscp": 46}
        path = self.POLICY + "/tagged=voice,phones,20,5,46"

        def policy(*ports):
            return {f"{self.AUG}:tagged": [{**keys, "ports": [f"ethernet 1/1/{port}" for port in ports]}]}

        def announced():
            shown = agent.show("lldp")["med"]
            assert all(ofPort == {"1": {"vlan": 20, "priority": 5, "dscp": 46}} for ofPort in shown.values())
            return [int(port.rpartition("/")[2]) for port in shown]

        done(agent.put(path, policy(1, 2)))
        assert announced() == [1, 2]
        done(agent.patch(path, policy(3)))
        assert announced() == [1, 2, 3]
        done(agent.put(path, policy(2, 4)))
        assert announced() == [2, 4]
        done(agent.delete(path + "/ports=ethernet%201%2F1%2F4"))
        assert announced() == [2]
        refused(agent.patch(path, policy(99)), 500, 4)
        agent.logged("lldp aug tagged edit config Error: Error: port ethernet 1/1/99 does not exist")
        done(agent.delete(path))
        assert announced() == []


class TestSnooping:
    MODULE = "lyn-igmp-mld-snooping"
    TOP = f"{DATA}{MODULE}:igmp-mld-snooping"
    IGMP = TOP + "/vlans/vlan=10/proto/igmp"

    def config(self, **leaves):
        return {f"{self.MODULE}:config": {name.replace("_", "-"): value for name, value in leaves.items()}}

    def test_a_vlan_does_what_is_set_for_it_or_for_all(self, agent):
        def oper():
            return agent.get(self.IGMP + "/oper").json()[f"{self.MODULE}:oper"]

        done(agent.post(self.TOP + "/vlans", {f"{self.MODULE}:vlan": [{"vlan-id": 10, "proto": {
            "vlan-id": 10, "igmp": {"config": {"querier-mode": "active"}}}}]}))
        assert oper() == {"querier-mode": 1, "version": 2}
        done(agent.put(self.TOP + "/global/igmp/config", self.config(querier_mode="passive", version=3)))
        assert oper() == {"querier-mode": 1, "version": 3}
        with agent.sending(("mcast_snoop_vlan_config_apply", {
                "afi": 1, "vlan_id": 10, "vlan_type": {"kind": 1, "id": 10}, "mode_op": 3, "mode": 1})):
            done(agent.delete(self.IGMP + "/config/querier-mode"))
        assert oper() == {"querier-mode": 2, "version": 3}

        refused(agent.patch(self.IGMP + "/config", self.config(version=9)), 500, 4)
        done(agent.delete(self.TOP + "/vlans/vlan=10"))
        done(agent.delete(self.TOP + "/global/igmp/config"))
        assert agent.show("mcast-snooping") == {"global": {"mode": 0, "version": 0}, "vlans": {}}
