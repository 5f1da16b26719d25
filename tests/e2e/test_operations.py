"""The routing table, ping and traceroute, and the DHCP server, over RESTCONF: what comes back, what the switch is
asked for, and what each refusal says.
"""

import json
import pathlib
import re
import shutil
import tempfile
import urllib.parse

import pytest

from harness import Agent, errors_of, running_switch, switchctl

DATA, OPERATIONS = "/restconf/data", "/restconf/operations"
IPROUTE, DHCP = "lyn-openconfig-iproute", "lyn-openconfig-dhcp-server"
ALL_ROUTES = {"route-table": {"all": [None]}}
SERVER = f"{DATA}/{DHCP}:dhcp-server"
CONFIG = f"{SERVER}/config/ipv4-config"
BINDINGS = f"{SERVER}/state/ipv4-state/dhcp-server-binding"


@pytest.fixture(autouse=True)
def without_faults(agent):
    yield
    agent.switch("fault", "clear")


def invoke(agent, rpc, target):
    return agent.post(f"{OPERATIONS}/{rpc}", {rpc.split(":")[0] + ":input": target})


def result(answer, module):
    assert answer.status_code == 200, answer.text
    return answer.json()[f"{module}:output"]["response"]["result"]


def refused(answer, status, app_tag, message=None):
    assert answer.status_code == status, answer.text
    (error,) = errors_of(answer)
    assert error["error-app-tag"] == str(app_tag)
    if message is not None:
        assert error["error-message"] == message


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
        return invoke(agent, f"{IPROUTE}:iproute", ALL_ROUTES)

    def pages(self, agent, since):
        return sum(entry["call"] == "ui_get_ip_route" for entry in agent.journal(since))

    @pytest.mark.parametrize("routes, pages", [(0, 1), (3, 1), (5000, 50)])
    def test_a_table_of_any_size(self, agent, routes, pages):
        agent.switch("set", "routes", routes)
        since = agent.last_seq()
        text = result(self.ask(agent), IPROUTE)
        assert self.pages(agent, since) == pages
        head = self.HEAD.format(routes)
        assert text.startswith(head)
        numbers = re.findall(r"^(\d+) ", text[len(head):], re.MULTILINE)
        assert numbers == [str(number) for number in range(1, routes + 1)]

    def test_line_by_line(self, agent):
        agent.switch("set", "routes", 4)
        assert result(self.ask(agent), IPROUTE) == self.HEAD.format(4) + (
            "1       10.0.0.0/24        DIRECT          ve 1          0/0           D    1m15s \n"
            "2       10.0.1.0/24        192.0.2.1       e 1/1/1       1/1           S    2h3m  \n"
            "3       10.0.2.0/24        192.0.2.1       e 1/1/1       110/20        Oi   3d0h  \n"
            "        10.0.2.0/24        192.0.2.2       e 1/1/2       110/20        Oi   3d0h  \n"
            "4       10.0.3.0/24        192.0.2.1       e 1/1/1       20/5          Be   99d0h \n"
            "        10.0.3.0/24        192.0.2.2       e 1/1/2       20/5          Be   99d0h \n")

    @pytest.mark.parametrize("fault, app_tag, message", [
        (["null"], 4, None), (["refuse", "--text", "Error: busy"], 274, "Error: busy")])
    def test_a_page_that_does_not_come(self, agent, fault, app_tag, message):
        agent.switch("set", "routes", 1000)
        agent.switch("fault", "add", "ui_get_ip_route", *fault, "--after", 2)
        since = agent.last_seq()
        refused(self.ask(agent), 500, app_tag, message)
        assert self.pages(agent, since) == 3

    @pytest.mark.parametrize("target, app_tag, message", [
        ({}, 274, None), ({"route-table": {}}, 263, "IP route with ALL option is only supported currently")])
    def test_a_request_for_something_else(self, agent, target, app_tag, message):
        since = agent.last_seq()
        refused(invoke(agent, f"{IPROUTE}:iproute", target), 500, app_tag, message)
        assert self.pages(agent, since) == 0

    def test_with_a_switch_in_another_process(self):
        folder = pathlib.Path(tempfile.mkdtemp(prefix="sw-"))
        try:
            with running_switch(folder / "s"), Agent(device=f"unix:{folder}/s") as agent:
                switchctl("--socket", folder / "s", "set", "routes", 250)
                assert result(self.ask(agent), IPROUTE).startswith(self.HEAD.format(250))
        finally:
            shutil.rmtree(folder, ignore_errors=True)


@pytest.mark.parametrize("command", ["ping", "traceroute"])
class TestReaching:
    def ask(self, agent, command, target):
        return invoke(agent, f"lyn-openconfig-{command}:{command}", {"target": target})

    @pytest.mark.parametrize("target, address", [
        ({"destination": "192.0.2.7"}, "192.0.2.7"),
        ({"destination": "server.example.net"}, "192.0.2.7"),
        ({"afi": "IPV6", "destination": "2001:db8::7"}, "2001:db8::7"),
        ({"afi": "IPV6", "destination": "server.example.net"}, "2001:db8::7"),
        ({"afi": "IPV4", "destination": "127.0.0.1"}, "127.0.0.1"),
        ({"destination": "localhost"}, "127.0.0.1"),
    ])
    def test_by_address_and_by_name(self, agent, command, target, address):
        if command == "ping":
            target = {**target, "count": "2", "interval": "200"}
        text = result(self.ask(agent, command, target), f"lyn-openconfig-{command}")
        assert address in text
        assert len(text.splitlines()) >= 2

    def test_nobody_answers(self, agent, command):
        text = result(self.ask(agent, command, {"destination": "silent.example.net"}), f"lyn-openconfig-{command}")
        assert "198.51.100.9" in text.splitlines()[0]
        assert text.endswith({"ping": "5 sent, 0 received\n", "traceroute": "\n30  *\n"}[command])

    def test_refusals(self, agent, command):
        missing = {"ping": "Ping without destination is not supported",
                   "traceroute": "Traceroute without valid destination is not supported"}[command]
        bad_name = "Destination ipv4 address or hostname is not valid"
        for target, status, app_tag, message in [
                ({"afi": "UNKNOWN", "destination": "192.0.2.7"}, 500, 263, "Ping without afi is not supported"),
                ({"afi": "IPV4"}, 500, 263, missing),
                ({"destination": "a:b"}, 400, 261, bad_name),
                ({"destination": "a b"}, 400, 261, bad_name),
                ({"destination": "a\tb"}, 400, 261, bad_name),
                ({"destination": "nobody.example.net"}, 500, 4, None)]:
            refused(self.ask(agent, command, target), status, app_tag, message)
        since = agent.last_seq()
        if command == "traceroute":
            refused(self.ask(agent, command, {"destination": "192.0.2.7", "source-ip": "me"}), 400, 261,
                    "Source ipv4 address is not valid")
        assert agent.journal(since) == []

    def test_a_resolver_that_is_down(self, agent, command):
        agent.switch("fault", "add", "ui_resolve_dns", "null")
        refused(self.ask(agent, command, {"destination": "server.example.net"}), 500, 4)
        agent.logged(f"{command.capitalize()} Failed DNS: DNS query timed out...failed to resolve")


def dhcp_pool(name, **leaves):
    return {f"{DHCP}:dhcpv4-pool": [{"name": name, **{key.replace("-_", "_"): value for key, value in leaves.items()}}]}


WHOLE = {
    "subnet_network": "10.1.1.0", "prefix-length": 24, "dhcp-default-router": ["10.1.1.1", "10.1.1.2"],
    "excl-ip-address": ["10.1.1.1"], "lease-time": {"day": 1, "hour": 12},
    "excl-ip-address-range": [{"low-ip-address": "10.1.1.10", "high-ip-address": "10.1.1.20"}],
    "option": {"dhcp-option": [{"option-number": 42, "ip-format": "10.1.1.3 10.1.1.4"},
                               {"option-number": 150, "ascii-format": "tftp"}]},
}


class TestDhcpServer:
    def shown(self, agent):
        return json.loads(agent.switch("show", "dhcp-server"))

    def path(self, name, below=""):
        return f"{CONFIG}/dhcpv4-pool={name}{below}"

    @pytest.fixture
    def pool(self, agent):
        answer = agent.put(self.path("staff"), dhcp_pool("staff", **WHOLE))
        assert answer.status_code == 201, answer.text
        yield "staff"
        agent.delete(self.path("staff"))
        assert self.shown(agent)["pools"] == {}

    EXPECTED = {"lease": 129600, "options": {"150": "tftp", "ntp-servers": "10.1.1.3, 10.1.1.4"},
                "network": "10.1.1.0 255.255.255.0", "routers": "10.1.1.1, 10.1.1.2",
                "excluded": ["10.1.1.1", "10.1.1.10 - 10.1.1.20"]}

    def test_a_pool_with_everything(self, agent, pool):
        assert self.shown(agent)["pools"] == {pool: self.EXPECTED}

    def test_a_change_makes_the_pool_anew_and_loses_nothing(self, agent, pool):
        since = agent.last_seq()
        patch = dhcp_pool(pool, **{"excl-ip-address": ["10.1.1.2"]})
        assert agent.patch(self.path(pool), patch).status_code == 204
        assert self.shown(agent)["pools"][pool] == {
            **self.EXPECTED, "excluded": ["10.1.1.1", "10.1.1.2", "10.1.1.10 - 10.1.1.20"]}
        calls = [(entry["call"], entry["request"].get("add")) for entry in agent.journal(since)]
        assert calls[:2] == [("ui_fe_dhpsv4_set_pool_name", 0), ("ui_fe_dhpsv4_set_pool_name", 1)]

    def test_parts_of_a_pool_come_and_go(self, agent, pool):
        for below in ("/lease-time", "/excl-ip-address-range=10.1.1.10,10.1.1.20", "/option/dhcp-option=150"):
            assert agent.delete(self.path(pool, below)).status_code == 204
        assert self.shown(agent)["pools"][pool] == {
            **self.EXPECTED, "lease": 86400, "options": {"ntp-servers": "10.1.1.3, 10.1.1.4"}, "excluded": ["10.1.1.1"]}

    def test_refusals(self, agent, pool):
        incomplete = "Error: subnet_network/prefix-length is not present, unable to configure dhcpv4 server pool"
        for leaves, message in [
                ({"subnet_network": "10.2.0.0"}, incomplete), ({"prefix-length": 24}, incomplete),
                ({**WHOLE, "subnet_network": "10.2.0.0", "option": {"dhcp-option": [
                    {"option-number": 6, "ip-format": "1.1.1.1,2.2.2.2"}]}}, "Invalid input ->1.1.1.1,2.2.2.2"),
                ({"subnet_network": "10.2.0.0", "prefix-length": 24, "option": {"dhcp-option": [
                    {"option-number": 6, "ip-format": "1.1.1.1 2.2.2.2 3.3.3.3 4.4.4.4"}]}},
                 "Error: accepts maximum of 3 values"),
                ({"subnet_network": "10.2.0.0", "prefix-length": 24, "lease-time": {"minute": 4}}, None),
                ({"subnet_network": "10.2.0.0", "prefix-length": 24, "lease-time": {"day": 365, "minute": 1}}, None),
                ({"subnet_network": "10.2.0.0", "prefix-length": 24, "option": {"dhcp-option": [
                    {"option-number": 6}]}}, None)]:
            refused(agent.put(self.path("guests"), dhcp_pool("guests", **leaves)), 500, 4, message)
            assert list(self.shown(agent)["pools"]) == [pool]  # what was made of it is gone again
        assert agent.get(self.path("guests")).status_code == 404

    def test_the_switch_says_no_in_its_own_words(self, agent, pool):
        answer = agent.put(self.path("guests"), dhcp_pool("guests", **{"subnet_network": "10.1.0.0", "prefix-length": 16}))
        refused(answer, 500, 4, "Error: the network overlaps with that of address pool staff\n")
        good = dhcp_pool("guests", **{"subnet_network": "10.2.0.0", "prefix-length": 16})
        assert agent.put(self.path("guests"), good).status_code == 201
        assert agent.delete(self.path("guests")).status_code == 204

    def test_the_switch_and_the_client(self, agent):
        def enable(value):
            return agent.patch(CONFIG, {f"{DHCP}:ipv4-config": {"enable": value}})

        agent.switch("set", "dhcp-client-enabled", 1)
        refused(enable(True), 500, 4, "Error: cannot enable this feature while the DHCP-Client is enabled")
        assert enable(False).status_code == 204
        agent.switch("set", "dhcp-client-enabled", 0)
        assert enable(True).status_code == 204
        assert self.shown(agent)["enabled"] is True
        assert agent.delete(f"{CONFIG}/enable").status_code == 204
        assert self.shown(agent)["enabled"] is False

    def test_leases_in_bulk_and_one_by_its_key(self, agent, pool):
        agent.switch("set", "dhcp-leases", 40)
        agent.switch("set", "dhcp-static-leases", 3)
        leases = agent.get(BINDINGS).json()[f"{DHCP}:dhcp-server-binding"]
        assert [lease["cli-ip"] for lease in leases] == [f"10.1.1.{10 + i}" for i in range(40)] + [
            f"10.1.1.{200 + i}" for i in range(3)]
        assert all(lease["lease-type"] == 1 for lease in leases)
        assert all(129500 < lease["lease-expiration"] <= 129600 for lease in leases[:40])
        assert all(lease["lease-expiration"] == 0 for lease in leases[40:])
        for lease in (leases[0], leases[39], leases[42]):
            (one,) = agent.get(f"{BINDINGS}={urllib.parse.quote(lease['cli-id'], safe='')}").json()[
                f"{DHCP}:dhcp-server-binding"]
            assert one["cli-ip"] == lease["cli-ip"]
        assert agent.get(f"{BINDINGS}=02%3A00%3A00%3A00%3A09%3A00").status_code == 404
        agent.switch("set", "dhcp-leases", 0)
        agent.switch("set", "dhcp-static-leases", 0)
        assert agent.get(BINDINGS).status_code == 404

    def test_a_file_of_leases_as_another_program_left_it(self, agent):
        file = agent.state / "device" / "var" / "lib" / "dhcp-server" / "leases"
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text("# nothing yet\n")
        refused(agent.get(BINDINGS), 500, 4)
        good = "lease 10.0.0.{0} {{\n  ends never;\n  hardware ethernet 00:00:00:00:00:0{0};\n}}\n"
        file.write_text(good.format(1) + "lease 10.0.0.2 {\n  ends never;\n}\n" +  # no client
                        f"lease 10.0.0.3 {{\n  hardware ethernet {'ab:' * 1000};\n}}\n" + good.format(4) +
                        "lease 10.0.0.5 {\n  hardware ethernet 00:00:00:00")
        leases = agent.get(BINDINGS).json()[f"{DHCP}:dhcp-server-binding"]
        assert [(lease["cli-id"], lease["cli-ip"]) for lease in leases] == [
            ("00:00:00:00:00:01", "10.0.0.1"), ("ab:ab:ab:ab:ab:ab:a", "10.0.0.3"), ("00:00:00:00:00:04", "10.0.0.4")]
        file.unlink()
