"""Edits, reads, operations and injected faults over both protocols for a time, while running, the switch and a model of
both must agree.

    BUILD=build python3 tests/e2e/soak.py SECONDS [SEED]

Not part of `make test`. Ends with a line that counts what was done, or with the first disagreement.
"""

import collections
import json
import random
import sys
import threading
import time
import urllib.parse
import xml.etree.ElementTree as ElementTree

from harness import Agent
from netconf_client import BASE, JUMBO, Wire

DATA = "/restconf/data/"
INTERFACES = "http://openconfig.net/yang/interfaces"
STORM = "urn:lyn:yang:lyn-openconfig-stormcontrol"
INSTANCE = "http://openconfig.net/yang/network-instance"
SYSTEM = "http://openconfig.net/yang/system"
GROWTH = 8 * 1024  # kB of memory that the last three quarters of a run may cost
STARTUP_FIRST = "copy running to startup first"
DELETE = ' nc:operation="delete"'


def memory_of(process):
    with open(f"/proc/{process.pid}/status") as status:
        return next(int(line.split()[1]) for line in status if line.startswith("VmRSS"))


def quoted(text):
    return urllib.parse.quote(text, safe="")


def text_of(element, path):
    found = element.find(path)
    return None if found is None else found.text


class Feature:
    """Values by resource: how they are written, and how running and the switch show them. None: it is not there."""

    @property
    def top(self):
        """What an edit can hold only one of."""
        return type(self).__name__

    call = None  # the request that an edit sends, for faults
    faults = ["refuse", "null"]  # those that it tells the client of
    most = None  # so many are there at most

    def uri(self, resource):
        raise NotImplementedError

    def body(self, resource, value):
        """What a PUT to the URI writes."""
        raise NotImplementedError

    def xml(self, resource, value):
        """A merge of the value, or a deletion."""
        raise NotImplementedError

    def running(self, data):
        """From the whole configuration in JSON."""
        raise NotImplementedError

    def running_xml(self, data):
        """From the whole configuration in XML."""
        raise NotImplementedError

    def device(self, shown):
        """From what the switch shows."""
        raise NotImplementedError


class Jumbo(Feature):
    call, resources, values = "ui_fe_qos_jumbo", ["all"], [False, True]

    def uri(self, resource):
        return DATA + "lyn-openconfig-jumbo:jumbo/config"

    def body(self, resource, value):
        return {"lyn-openconfig-jumbo:config": {"enabled": value}}

    def xml(self, resource, value):
        return f'<jumbo xmlns="{JUMBO}"><config><enabled>{str(value).lower()}</enabled></config></jumbo>'

    def running(self, data):
        return {"all": data["lyn-openconfig-jumbo:jumbo"]["config"]["enabled"]}

    def running_xml(self, data):
        return {"all": text_of(data, f"{{{JUMBO}}}jumbo/{{{JUMBO}}}config/{{{JUMBO}}}enabled") == "true"}

    def device(self, shown):
        return {"all": shown["jumbo"]["enabled"]}


def ports(numbers):
    return [f"ethernet 1/1/{number}" for number in numbers]


class OfPorts(Feature):
    top = "interfaces"

    def uri(self, resource):
        return f"{DATA}openconfig-interfaces:interfaces/interface={quoted(resource)}/config{self.below}"

    def xml(self, resource, value):
        return (f'<interfaces xmlns="{INTERFACES}"><interface><name>{resource}</name><config>{self.element(value)}</config>'
                "</interface></interfaces>")

    def running(self, data):
        found = {}
        for entry in data["openconfig-interfaces:interfaces"]["interface"]:
            if entry["name"] in self.resources and (value := self.in_json(entry.get("config", {}))) is not None:
                found[entry["name"]] = value
        return found

    def running_xml(self, data):
        found = {}
        for entry in data.findall(f"{{{INTERFACES}}}interfaces/{{{INTERFACES}}}interface"):
            name = text_of(entry, f"{{{INTERFACES}}}name")
            if name in self.resources and (value := self.in_xml(entry.find(f"{{{INTERFACES}}}config"))) is not None:
                found[name] = value
        return found


class Description(OfPorts):
    """Without deletions: the switch keeps a description until it gets another one."""

    call, below = "ui_fe_interface_config_msg", "/description"
    resources, values = ports(range(1, 5)), ["north", "south", 'a "quoted" & <odd> one', "ü" * 20]

    def body(self, resource, value):
        return {"openconfig-interfaces:description": value}

    def element(self, value):
        return f"<description>{value.replace('&', '&amp;').replace('<', '&lt;')}</description>"

    def in_json(self, config):
        return config.get("description")

    def in_xml(self, config):
        return text_of(config, f"{{{INTERFACES}}}description")

    def device(self, shown):
        return {name: port["description"] for name, port in shown["interfaces"].items() if "description" in port}


class StormControl(OfPorts):
    faults = ["null"]
    call, below = "sec_protobuf_fe_config_handler", "/lyn-openconfig-stormcontrol:storm_control_config/broadcast"
    resources, values = ports(range(5, 9)), [None, 5, 10, 1000]

    def body(self, resource, value):
        return {"lyn-openconfig-stormcontrol:broadcast": {"limit": value}}

    def element(self, value):
        operation = DELETE if value is None else ""
        limit = "" if value is None else f"<limit>{value}</limit>"
        return f'<storm_control_config xmlns="{STORM}"><broadcast{operation}>{limit}</broadcast></storm_control_config>'

    def in_json(self, config):
        return config.get("lyn-openconfig-stormcontrol:storm_control_config", {}).get("broadcast", {}).get("limit")

    def in_xml(self, config):
        limit = text_of(config, f"{{{STORM}}}storm_control_config/{{{STORM}}}broadcast/{{{STORM}}}limit")
        return limit and int(limit)

    def device(self, shown):
        return {name: port["broadcast"]["limit"] for name, port in shown["storm-control"].items() if "broadcast" in port}


class Vlans(Feature):
    call, resources, values = "ui_vlan_config_apply", range(100, 120), [None, "staff", "voice", "guests"]

    def uri(self, resource):
        return f"{DATA}openconfig-network-instance:network-instances/network-instance=default/vlans/vlan={resource}"

    def body(self, resource, value):
        return {"openconfig-network-instance:vlan": [{"vlan-id": resource, "config": {"vlan-id": resource, "name": value}}]}

    def xml(self, resource, value):
        operation = DELETE if value is None else ""
        config = "" if value is None else f"<config><vlan-id>{resource}</vlan-id><name>{value}</name></config>"
        return (f'<network-instances xmlns="{INSTANCE}"><network-instance><name>default</name><vlans><vlan{operation}>'
                f"<vlan-id>{resource}</vlan-id>{config}</vlan></vlans></network-instance></network-instances>")

    def running(self, data):
        (instance,) = data["openconfig-network-instance:network-instances"]["network-instance"]
        return {entry["vlan-id"]: entry["config"]["name"] for entry in instance.get("vlans", {}).get("vlan", [])
                if entry["vlan-id"] in self.resources}

    def running_xml(self, data):
        found = {int(text_of(entry, f"{{{INSTANCE}}}vlan-id")): text_of(entry, f"{{{INSTANCE}}}config/{{{INSTANCE}}}name")
                 for entry in data.iter(f"{{{INSTANCE}}}vlan")}
        return {number: name for number, name in found.items() if number in self.resources}

    def device(self, shown):
        return {int(number): vlan["name"] for number, vlan in shown["vlan"].items() if int(number) in self.resources}


class NameServers(Feature):
    call, faults, most = "ui_dns_server_addr_common_send", ["refuse"], 4
    resources, values = [f"10.0.0.{number}" for number in range(1, 7)], [None, True]

    def uri(self, resource):
        return f"{DATA}openconfig-system:system/dns/servers/server={resource}"

    def body(self, resource, value):
        return {"openconfig-system:server": [{"address": resource, "config": {"address": resource}}]}

    def xml(self, resource, value):
        operation = DELETE if value is None else ""
        config = "" if value is None else f"<config><address>{resource}</address></config>"
        return (f'<system xmlns="{SYSTEM}"><dns><servers><server{operation}><address>{resource}</address>{config}</server>'
                "</servers></dns></system>")

    def running(self, data):
        servers = data.get("openconfig-system:system", {}).get("dns", {}).get("servers", {}).get("server", [])
        return {entry["address"]: True for entry in servers}

    def running_xml(self, data):
        return {text_of(entry, f"{{{SYSTEM}}}address"): True for entry in data.iter(f"{{{SYSTEM}}}server")}

    def device(self, shown):
        return {address: True for address in shown["system"]["name-servers"]}


class Onlookers:
    """Clients beside the one that edits: they read what asks the switch nothing, and come and go."""

    def __init__(self, agent):
        self.agent, self.done, self.failures = agent, collections.Counter(), []
        self.is_over = threading.Event()
        self.threads = [threading.Thread(target=self.run, args=(work,)) for work in (self.read, self.visit)]

    def run(self, work):
        try:
            work()
        except Exception as failure:
            self.failures.append(failure)

    def read(self):
        session = self.agent.new_session("admin", self.agent.password)
        while not self.is_over.wait(0.02):
            answer = session.get(self.agent.url + DATA + "openconfig-interfaces:interfaces?content=config", timeout=10)
            assert answer.status_code == 200 and len(answer.json()["openconfig-interfaces:interfaces"]["interface"]) == 24
            self.done["onlooker-restconf"] += 1

    def visit(self):
        while not self.is_over.wait(0.1):
            with Wire(self.agent) as wire:
                wire.hello("1.0")
                assert "<data" in wire.ask("<get-config><source><running/></source></get-config>")
            self.done["onlooker-netconf"] += 1

    def end(self):
        self.is_over.set()
        for thread in self.threads:
            thread.join(30)


class Soak:
    def __init__(self, agent, seed):
        self.agent, self.random = agent, random.Random(seed)
        self.wire = Wire(agent)
        self.wire.hello("1.0")
        self.features = [Jumbo(), Description(), StormControl(), Vlans(), NameServers()]
        self.model = {feature: {} for feature in self.features}
        self.done = collections.Counter()
        self.edit(self.features[0], "all", False)

    # Edits

    def some_change(self):
        """A feature, a resource and a value that it does not have."""
        feature = self.random.choice(self.features)
        has = self.model[feature]
        resource = self.random.choice(list(feature.resources))
        if feature.most and len(has) >= feature.most:
            resource = self.random.choice(list(has))
        return feature, resource, self.random.choice([v for v in feature.values if v != has.get(resource)])

    def by_restconf(self, feature, resource, value):
        if value is None:
            answer = self.agent.delete(feature.uri(resource))
        else:
            answer = self.agent.put(feature.uri(resource), feature.body(resource, value))
        self.reply = answer.text
        return answer.ok

    def by_netconf(self, *changes):
        nodes = "".join(feature.xml(resource, value) for feature, resource, value in changes)
        reply = self.wire.ask(f'<edit-config><target><running/></target><config xmlns:nc="{BASE}">{nodes}</config></edit-config>')
        assert ("<ok/>" in reply) != ("rpc-error" in reply), reply
        self.reply = reply
        return "<ok/>" in reply

    def send(self, feature, resource, value):
        way = self.random.choice([self.by_restconf, self.by_netconf])
        self.done["edit-" + way.__name__[3:]] += 1
        return way(*((feature, resource, value),) if way == self.by_netconf else (feature, resource, value))

    def note(self, feature, resource, value):
        self.model[feature].pop(resource, None)
        if value is not None:
            self.model[feature][resource] = value

    def edit(self, *change):
        is_taken = self.send(*change)
        if not is_taken and STARTUP_FIRST in self.reply:
            self.save()  # what RESTCONF writes has to fit startup, too
            is_taken = self.by_restconf(*change)
            self.done["edit-after-save"] += 1
        assert is_taken, f"{change[1:]} is refused: {self.reply}"
        self.note(*change)

    def edit_together(self):
        """One edit of several features."""
        changes = {change[0].top: change for change in (self.some_change() for _ in range(3))}
        assert self.by_netconf(*changes.values()), f"{[change[1:] for change in changes.values()]} is refused: {self.reply}"
        for change in changes.values():
            self.note(*change)
        self.done["edit-together"] += 1

    def edit_candidate(self):
        """Through the candidate, or not at all."""
        feature, resource, value = self.some_change()
        assert "<ok/>" in self.wire.ask(f'<edit-config><target><candidate/></target><config xmlns:nc="{BASE}">'
                                        f"{feature.xml(resource, value)}</config></edit-config>")
        last = self.random.choice(["commit", "discard-changes"])
        assert "<ok/>" in self.wire.ask(f"<{last}/>")
        if last == "commit":
            self.note(feature, resource, value)
        self.done[last] += 1

    def fault(self):
        """The next change is refused, or not answered; nothing changes then."""
        feature, resource, value = self.some_change()
        kind = self.random.choice(feature.faults)
        self.agent.switch("fault", "add", feature.call, kind)
        taken = self.send(feature, resource, value)
        self.agent.switch("fault", "clear")
        assert not taken, f"{kind}: {feature.call} for {resource}={value} was taken"
        self.done["fault"] += 1

    def bad_edit(self):
        change = self.random.choice([
            lambda: self.agent.put(DATA + "lyn-openconfig-jumbo:jumbo/config/enabled",
                                   {"lyn-openconfig-jumbo:enabled": "perhaps"}).ok,
            lambda: self.agent.delete(DATA + "lyn-openconfig-jumbo:jumbo/config").ok,
            lambda: "<ok/>" in self.wire.ask("<edit-config><target><running/></target><config><a/></config></edit-config>"),
            lambda: self.agent.delete(DATA + "openconfig-interfaces:interfaces/interface=lag%2077").ok])
        assert not change()
        self.done["bad edit"] += 1

    # Reads and operations

    def read(self):
        path = self.random.choice(["lyn-openconfig-jumbo:jumbo",
                                   "openconfig-interfaces:interfaces/interface=ethernet%201%2F1%2F3",
                                   "openconfig-network-instance:network-instances", "openconfig-system:system/dns"])
        answer = self.agent.get(DATA + path)
        assert answer.status_code == 200, answer.text
        reply = self.wire.ask(f'<get><filter><jumbo xmlns="{JUMBO}"/></filter></get>')
        assert "operation-state" in reply, reply
        self.done["read"] += 1

    def operate(self):
        answer = self.agent.post("/restconf/operations/lyn-openconfig-ping:ping", {
            "lyn-openconfig-ping:input": {"target": {"destination": "192.0.2.7", "count": "1", "interval": "200"}}})
        assert answer.status_code == 200 and "192.0.2.7" in answer.text, answer.text
        self.done["operation"] += 1

    def save(self):
        assert "<ok/>" in self.wire.ask("<copy-config><target><startup/></target><source><running/></source></copy-config>")
        self.done["save"] += 1

    # Checks

    def check(self):
        shown = json.loads(self.agent.switch("show"))
        data = self.agent.get(DATA[:-1] + "?content=config").json()["ietf-restconf:data"]
        reply = self.wire.ask("<get-config><source><running/></source></get-config>")
        config = ElementTree.fromstring(reply).find(f"{{{BASE}}}data")
        for feature in self.features:
            views = {"RESTCONF": feature.running(data), "NETCONF": feature.running_xml(config),
                     "the switch": feature.device(shown)}
            for place, found in views.items():
                assert found == self.model[feature], \
                    f"{place} has {found} of {type(feature).__name__}, not {self.model[feature]}"
        self.done["check"] += 1

    def run(self, seconds):
        steps = [(lambda: self.edit(*self.some_change()), 60), (self.edit_together, 8), (self.edit_candidate, 8), (self.fault, 3),
                 (self.bad_edit, 4), (self.read, 10), (self.operate, 1), (self.save, 2)]
        begun, warm = time.monotonic(), None
        while time.monotonic() < begun + seconds:
            for step in self.random.choices([step for step, _ in steps], [weight for _, weight in steps], k=100):
                step()
            self.check()
            if warm is None and time.monotonic() > begun + seconds / 4:
                warm = memory_of(self.agent.process)
        grown = memory_of(self.agent.process) - (warm or 0)
        assert grown < GROWTH, f"memory grew by {grown} kB"
        return grown


def main(seconds, seed):
    print(f"soak: {seconds:g} s, seed {seed}")
    with Agent() as agent:
        soak, onlookers = Soak(agent, seed), Onlookers(agent)
        for thread in onlookers.threads:
            thread.start()
        try:
            grown = soak.run(seconds)
        finally:
            onlookers.end()
            soak.wire.close()
        assert not onlookers.failures, onlookers.failures
    print(f"soak: {dict(soak.done + onlookers.done)}, memory {grown:+} kB")


if __name__ == "__main__":
    main(float(sys.argv[1]), int(sys.argv[2]) if len(sys.argv) > 2 else random.randrange(1 << 30))
