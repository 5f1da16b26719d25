"""The routing table, ping and traceroute, and the DHCP server, over RESTCONF: what comes back, what the switch is
asked for, and a refusal of each.
"""

import re
import urllib.parse

import pytest

from harness import refused

DATA, OPERATIONS = "/restconf/data", "/restconf/operations"
IPROUTE, DHCP = "lyn-openconfig-iproute", "lyn-openconfig-dhcp-server"
CONFIG = f"{DATA}/{DHCP}:dhcp-server/config/ipv4-config"
BINDINGS = f"{DATA}/{DHCP}:dhcp-server/state/ipv4-state/dhcp-server-binding"


@pytest.fixture(autouse=True)
def without_faults(agent):
    yield
    agent.switch("fault", "clear")


def invoke(agent, rpc, target):
    return agent.post(f"{OPERATIONS}/{rpc}", {rpc.split(":")[0] + ":input": target})


def result(answer, module):
    assert answer.status_code == 200, answer.text
    return answer.json()[f"{module}:output"]["response"]["result"]


class TestRoutes:
    HEAD = """show ip route
Total number of IP routes: {}
Type Codes - B:BGP D:Connected O:OSPF R:RIP S:Static; Cost - Dist/Metric
BGP  Codes - i:iBGP e:eBGP
OSPF Codes - i:Inter Area 1:External Type 1 2:External Type 2
STATIC Codes - v:Inter-VRF
        Destination        Gateway         Port          Cost          Type Uptime
"""

    def ask(self, agent):
        return invoke(agent, f"{IPROUTE}:iproute", {"route-table": {"all": [None]}})

    def pages(self, agent, since):
        return sum(entry["call"] == "ui_get_ip_route" for entry in agent.journal(since))

    def test_a_table_of_many_pages(self, agent):
        agent.switch("set", "routes", 5000)
        since = agent.last_seq()
        text = result(self.ask(agent), IPROUTE)
        assert self.pages(agent, since) == 50
        head = self.HEAD.format(5000)
        assert text.startswith(head)
        numbers = re.findall(r"^(\d+) ", text[len(head):], re.MULTILINE)
        assert numbers == [str(number) for number in range(1, 5001)]

    def test_a_page_that_does_not_come(self, agent):
        agent.switch("set", "routes", 1000)
        agent.switch("fault", "add", "ui_get_ip_route", "refuse", "--text", "Error: busy", "--after", 2)
        since = agent.last_seq()
        refused(self.ask(agent), 500, 274, "Error: busy")
        assert self.pages(agent, since) == 3


@pytest.mark.parametrize("command", ["ping", "traceroute"])
class TestReaching:
    def ask(self, agent, command, target):
        return invoke(agent, f"lyn-openconfig-{command}:{command}", {"target": target})

    def test_by_address_and_by_name(self, agent, command):
        for target, address in (({"destination": "192.0.2.7"}, "192.0.2.7"),
                                ({"afi": "IPV6", "destination": "server.example.net"}, "2001:db8::7")):
            if command == "ping":
                target = {**target, "count": "2", "interval": "200"}
            text = result(self.ask(agent, command, target), f"lyn-openconfig-{command}")
            assert address in text and len(text.splitlines()) >= 2

    def test_refusals(self, agent, command):
        refused(self.ask(agent, command, {"destination": "a b"}), 400, 261,
                "Destination ipv4 address or hostname is not valid")
        agent.switch("fault", "add", "ui_resolve_dns", "null")
        refused(self.ask(agent, command, {"destination": "server.example.net"}), 500, 4)
        agent.logged(f"{command.capitalize()} Failed DNS: DNS query timed out...failed to resolve")


def dhcp_pool(name, **leaves):
    return {f"{DHCP}:dhcpv4-pool": [{"name": name, **leaves}]}


WHOLE = {
    "subnet_network": "10.1.1.0", "prefix-length": 24, "dhcp-default-router": ["10.1.1.1", "10.1.1.2"],
    "excl-ip-address": ["10.1.1.1"], "lease-time": {"day": 1, "hour": 12},
    "excl-ip-address-range": [{"low-ip-address": "10.1.1.10", "high-ip-address": "10.1.1.20"}],
    "option": {"dhcp-option": [{"option-number": 42, "ip-format": "10.1.1.3 10.1.1.4"},
                               {"option-number": 150, "ascii-format": "tftp"}]},
}
EXPECTED = {"lease": 129600, "options": {"150": "tftp", "ntp-servers": "10.1.1.3, 10.1.1.4"},
            "network": "10.1.1.0 255.255.255.0", "routers": "10.1.1.1, 10.1.1.2",
            "excluded": ["10.1.1.1", "10.1.1.10 - 10.1.1.20"]}


class TestDhcpServer:
    def pools(self, agent):
        return agent.show("dhcp-server")["pools"]

    @pytest.fixture
    def pool(self, agent):
        path = f"{CONFIG}/dhcpv4-pool=staff"
        assert agent.put(path, dhcp_pool("staff", **WHOLE)).status_code == 201
        yield path
        agent.delete(path)
        assert self.pools(agent) == {}

    def test_a_pool_comes_and_its_parts_go(self, agent, pool):
        assert self.pools(agent) == {"staff": EXPECTED}
        for below in ("/lease-time", "/excl-ip-address-range=10.1.1.10,10.1.1.20", "/option/dhcp-option=150"):
            assert agent.delete(pool + below).status_code == 204
        assert self.pools(agent)["staff"] == {
            **EXPECTED, "lease": 86400, "options": {"ntp-servers": "10.1.1.3, 10.1.1.4"}, "excluded": ["10.1.1.1"]}

    def test_refusals_leave_nothing_behind(self, agent, pool):
        guests, net = f"{CONFIG}/dhcpv4-pool=guests", {"subnet_network": "10.2.0.0", "prefix-length": 24}
        for ip, message in (("1.1.1.1,2.2.2.2", "Invalid input ->1.1.1.1,2.2.2.2"),
                            ("1.1.1.1 2.2.2.2 3.3.3.3 4.4.4.4", "Error: accepts maximum of 3 values")):
            option = {"option": {"dhcp-option": [{"option-number": 6, "ip-format": ip}]}}
            refused(agent.put(guests, dhcp_pool("guests", **net, **option)), 500, 4, message)
            assert list(self.pools(agent)) == ["staff"]
        assert agent.get(guests).status_code == 404
        refused(agent.put(guests, dhcp_pool("guests", **{**net, "subnet_network": "10.1.0.0", "prefix-length": 16})), 500,
                4, "Error: the network overlaps with that of address pool staff\n")
        assert agent.put(guests, dhcp_pool("guests", **net)).status_code == 201
        assert agent.delete(guests).status_code == 204

    def test_leases_in_bulk_and_one_by_its_key(self, agent, pool):
        agent.switch("set", "dhcp-leases", 40)
        agent.switch("set", "dhcp-static-leases", 3)
        leases = agent.get(BINDINGS).json()[f"{DHCP}:dhcp-server-binding"]
        assert [lease["cli-ip"] for lease in leases] == [f"10.1.1.{10 + i}" for i in range(40)] + [
            f"10.1.1.{200 + i}" for i in range(3)]
        assert all(129500 < lease["lease-expiration"] <= 129600 for lease in leases[:40])
        assert all(lease["lease-expiration"] == 0 for lease in leases[40:])
        one = agent.get(f"{BINDINGS}={urllib.parse.quote(leases[39]['cli-id'], safe='')}")
        assert one.json()[f"{DHCP}:dhcp-server-binding"][0]["cli-ip"] == leases[39]["cli-ip"]
        assert agent.get(f"{BINDINGS}=02%3A00%3A00%3A00%3A09%3A00").status_code == 404
        agent.switch("set", "dhcp-leases", 0)
        agent.switch("set", "dhcp-static-leases", 0)
        assert agent.get(BINDINGS).status_code == 404


def test_helper_addresses(agent):
    """Of the DHCP relay: what comes and goes is told, the rest is not told again, and a refusal leaves running as it was."""
    path = f"{DATA}/openconfig-relay-agent:relay-agent/dhcp/interfaces/interface={urllib.parse.quote('ethernet 1/1/3', safe='')}"
    name, helpers, call = "ethernet 1/1/3", f"{path}/config/helper-address", "ui_ip_interface_config"

    def entry(*addresses):
        return {"openconfig-relay-agent:interface": [{"id": name, "config": {"id": name, "helper-address": list(addresses)}}]}

    mark = agent.last_seq()
    assert agent.put(path, entry("10.1.0.1", "10.1.0.2")).status_code == 201
    assert agent.delete(f"{helpers}=10.1.0.1").status_code == 204
    assert agent.patch(path, entry("10.1.0.3")).status_code == 204
    asked = [(e["request"]["helper_op"], e["request"]["address"]) for e in agent.journal(mark) if e["call"] == call]
    assert asked == [(1, "10.1.0.1"), (1, "10.1.0.2"), (3, "10.1.0.1"), (1, "10.1.0.3")]
    agent.switch("fault", "add", call, "refuse", "--text", "Error: busy", "--count", 1)
    refused(agent.patch(path, entry("10.1.0.4")), 500, 1042, "Error: busy")
    assert agent.get(path).json() == entry("10.1.0.2", "10.1.0.3")
    assert agent.delete(path).status_code == 204
