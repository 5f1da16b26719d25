"""The system tree end to end: what a provisioning script writes, and what the switch is told of it."""

import pytest

from harness import errors_of

DATA = "/restconf/data"
SYSTEM = DATA + "/openconfig-system:system"
AAA = SYSTEM + "/aaa"
GROUPS = AAA + "/server-groups"
AUG = "lyn-openconfig-aaa-aug:"
PASSWORD, HASH, SECRET = "correct-horse", "$5$battery$staple", "shared-by-two"


@pytest.fixture
def switch(make_agent):
    """An agent of the test's own, with helpers that check a write and return the requests it made."""
    agent = make_agent(log=9)

    def requests(do, status):
        mark = agent.last_seq()
        response = do()
        assert response.status_code == status, response.text
        return [(entry["call"], entry["request"]) for entry in agent.journal(mark)]

    agent.puts = lambda path, body: requests(lambda: agent.put(path, body), 204)
    agent.posts = lambda path, body: requests(lambda: agent.post(path, body), 201)
    agent.patches = lambda path, body: requests(lambda: agent.patch(path, body), 204)
    agent.deletes = lambda path: requests(lambda: agent.delete(path), 204)
    return agent


def dns(opcode, *addresses):
    servers = {"servers": [{"address": address} for address in addresses]} if addresses else {}
    return "ui_dns_server_addr_common_send", {"flag": 1, "opcode": opcode, "context": 1, **servers}


def ntp(**fields):
    return "ui_fe_ntp_global_config", {"flag": 2, **fields}


def plugin(tag, op, name, value, **sub):
    subs = [{"key": word.strip("_").replace("_", "-"), "value": text} for word, text in sub.items()]
    entry = {"op": op, "key": name, "value": value, **({"sub": subs} if subs else {})}
    return "ui_fe_plugin_config_send", {"plugin": tag, "entries": [entry]}


def log_host(op, value):
    return plugin("ZQ_SYSLOG", op, "logging host", value)


def hidden(text):
    return f"<{len(text)} bytes>"


def radius(operation, **fields):
    server = {"ipv4_address": "10.9.0.1", **fields}
    return "ui_radius_config_apply", {"operation": operation, "servers": [server]}


def name_server(address):
    return {"address": address, "config": {"address": address}}


def remote(host, port):
    return {"host": host, "config": {"host": host, "remote-port": port}}


def aaa_server(address, kind, config):
    return {"address": address, "config": {"address": address, "name": "srv", "timeout": 7}, kind: {"config": config}}


def group(name, server):
    return {"openconfig-system:server-group": [
        {"name": name, "config": {"name": name}, "servers": {"server": [server]}}]}


def test_names_time_and_logging(switch):
    config = {"openconfig-system:config": {"hostname": "edge-1"}}
    assert switch.puts(SYSTEM + "/config", config) == [
        ("ui_fe_hostname_set", {"flag": 2, "op": 1, "hostname": "edge-1", "hostname_source": 2})]

    servers = SYSTEM + "/dns/servers"
    three = ["10.0.0.1", "10.0.0.2", "2001:db8::53"]
    body = {"openconfig-system:servers": {"server": [name_server(address) for address in three]}}
    assert switch.puts(servers, body) == [dns(2, *three)]
    assert switch.posts(servers, {"openconfig-system:server": [name_server("10.0.0.4")]}) == [dns(1, "10.0.0.4")]
    fifth = switch.put(servers + "/server=10.0.0.5", {"openconfig-system:server": [name_server("10.0.0.5")]})
    assert errors_of(fifth)[0]["error-app-tag"] == "too-many-elements", "the switch takes four"
    assert switch.deletes(servers + "/server=10.0.0.2") == [dns(3, "10.0.0.2")]

    assert switch.puts(SYSTEM + "/ntp/config", {"openconfig-system:config": {"enabled": True}}) == [
        ntp(config_kind=2, enable=1), ntp(config_kind=1, global_enable=1)]
    peers = {"openconfig-system:servers": {"server": [name_server("time.example.net"), name_server("10.1.1.1")]}}
    assert switch.patches(SYSTEM + "/ntp/servers", peers) == [
        ntp(config_kind=2, server_op=1, has_server=1, addr_type=512, host_name="time.example.net"),
        ntp(config_kind=2, server_op=1, has_server=1, addr_type=4, address="10.1.1.1")]

    hosts = SYSTEM + "/logging/remote-servers"
    body = {"openconfig-system:remote-servers": {"remote-server": [remote("10.2.0.1", 514), remote("2001:db8::2", 514)]}}
    assert switch.patches(hosts, body) == [
        log_host("SET", "10.2.0.1 udp-port 514"), log_host("SET", "ipv6 2001:db8::2 udp-port 514")]
    assert switch.puts(hosts + "/remote-server=10.2.0.1/config/remote-port", {"openconfig-system:remote-port": 1514}) == [
        log_host("DELETE", "10.2.0.1 udp-port 514"), log_host("SET", "10.2.0.1 udp-port 1514")]

    read = switch.get(SYSTEM).json()["openconfig-system:system"]
    assert read["config"]["hostname"] == "edge-1"
    assert [server["address"] for server in read["dns"]["servers"]["server"]] == [three[0], three[2], "10.0.0.4"]
    assert read["logging"]["remote-servers"]["remote-server"][0] == remote("10.2.0.1", 1514)

    assert switch.deletes(servers) == [dns(3, "10.0.0.4"), dns(3, three[2]), dns(3, three[0]), dns(18)]
    assert switch.deletes(SYSTEM + "/ntp/servers/server=10.1.1.1") == [
        ntp(config_kind=2, server_op=3, has_server=1, addr_type=4, address="10.1.1.1")]
    assert switch.deletes(SYSTEM + "/ntp/config/enabled") == [ntp(config_kind=2, enable=0)]
    assert switch.deletes(hosts + "/remote-server=10.2.0.1") == [log_host("DELETE", "10.2.0.1 udp-port 1514")]
    assert switch.deletes(SYSTEM + "/config/hostname") == [("ui_fe_hostname_set", {"flag": 2, "op": 3})]


def test_users_and_servers(switch):
    login = AAA + f"/authentication/{AUG}login"
    assert switch.puts(login, {AUG + "login": {"default": ["local", "radius"]}}) == [
        ("ui_fe_aaa_set", {"opcode": 1, "delete_flag": 0, "login_methods": "local radius"})]

    hashed = {"openconfig-system:config": {"admin-password-hashed": HASH}}
    assert switch.puts(AAA + "/authentication/admin-user/config", hashed) == [
        plugin("USERDB", "SET", "username", "admin-user", _1=hidden(HASH), privilege="0")]
    users = AAA + "/authentication/users"
    two = [{"username": name, "config": {"username": name, "password": PASSWORD, AUG + "privilege": level}}
           for name, level in (("eve", 0), ("bob", 5))]
    assert switch.patches(users, {"openconfig-system:users": {"user": two}}) == [
        plugin("USERDB", "SET", "username", name, password=hidden(PASSWORD), privilege=str(level))
        for name, level in (("eve", 0), ("bob", 5))]

    body = group("radius-default-group", aaa_server("10.9.0.1", "radius", {"auth-port": 1812, "secret-key": SECRET}))
    server = {"auth_port": 1812, "authentication_only": 1, "accounting_only": 1, "key_encryption": 255,
              "secret_key": hidden(SECRET), "server_group": "radius-default-group"}
    left = {"server_name": "srv", "timeout": 7}
    assert switch.posts(GROUPS, body) == [radius(1, **server, **left)]
    body = group("tacacs-default-group", aaa_server("10.9.0.2", "tacacs", {"secret-key": SECRET}))
    assert switch.posts(GROUPS, body) == [
        plugin("TACACS", "SET", "tacacs-server host", "10.9.0.2",
               auth_port="49", default="", key=hidden(SECRET))]

    read = switch.get(AAA).json()["openconfig-system:aaa"]
    assert read["authentication"][AUG + "login"]["default"] == ["local", "radius"]
    assert [user["username"] for user in read["authentication"]["users"]["user"]] == ["eve", "bob"]

    assert switch.deletes(users + "/user=bob") == [plugin("USERDB", "DELETE", "username", "bob")]
    # The RADIUS config and its parents each ask. What a server's config leaves is taken by the next request: here
    # what the TACACS+ server left, and then what this server's own config leaves on its way out.
    gone, gone_and_left = radius(3, **server), radius(3, **server, **left)
    assert switch.deletes(GROUPS + "/server-group=radius-default-group/servers/server=10.9.0.1") == [
        gone_and_left, gone, gone_and_left]

    everything = switch.log + switch.switch("journal") + switch.switch("show") + "".join(switch.audit())
    for secret in (PASSWORD, HASH, SECRET):
        assert secret not in everything


def test_the_small_bundle_serves_its_modules_only(make_agent):
    agent = make_agent(bundle="app_yang_agent_aaa")
    modules = agent.get(DATA + "/ietf-yang-library:modules-state").text
    assert "openconfig-system" in modules and "lyn-openconfig-jumbo" not in modules
    assert agent.get(DATA + "/lyn-openconfig-jumbo:jumbo").status_code == 400
    assert agent.put(SYSTEM + "/config", {"openconfig-system:config": {"hostname": "small"}}).status_code == 204
    assert [entry["request"]["hostname"] for entry in agent.journal()
            if entry["call"] == "ui_fe_hostname_set"] == ["small"]
    # The factory data name ports, which nothing serves here.
    assert "openconfig-interfaces" not in agent.get(DATA).text
