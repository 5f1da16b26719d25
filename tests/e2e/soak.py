"""Edits, reads and injected faults for a time, while running, the switch and a model of both must agree.

    BUILD=build python3 tests/e2e/soak.py SECONDS [SEED]

Not part of `make test`. Ends with a line that counts what was done, or with the first disagreement.
"""

import collections
import json
import random
import sys
import time

from harness import Agent

JUMBO = "/restconf/data/lyn-openconfig-jumbo:jumbo"
CONFIG, LEAF, STATE = JUMBO + "/config", JUMBO + "/config/enabled", JUMBO + "/operation-state"


def memory_of(process):
    with open(f"/proc/{process.pid}/status") as status:
        return next(int(line.split()[1]) for line in status if line.startswith("VmRSS"))


class Soak:
    def __init__(self, agent, seed):
        self.agent, self.random = agent, random.Random(seed)
        self.config, self.device = None, False  # the leaf in running; what the switch has
        self.done = collections.Counter()

    def edit(self):
        value = self.random.random() < 0.5
        method = self.random.choice(["put", "patch", "leaf", "delete-leaf", "delete", "bad"])
        self.done[method] += 1
        if method == "put":
            answer = self.agent.put(CONFIG, {"lyn-openconfig-jumbo:config": {"enabled": value}})
        elif method == "patch":
            answer = self.agent.patch(CONFIG, {"lyn-openconfig-jumbo:config": {"enabled": value}})
        elif method == "leaf":
            answer = self.agent.put(LEAF, {"lyn-openconfig-jumbo:enabled": value})
        elif method == "delete-leaf":
            answer, value = self.agent.delete(LEAF), None
        elif method == "delete":
            assert self.agent.delete(CONFIG).status_code in (404, 405, 501, 409), "a delete of config was taken"
            return
        else:
            assert self.agent.put(LEAF, {"lyn-openconfig-jumbo:enabled": "perhaps"}).status_code == 400
            return
        if answer.ok and value != self.config:
            self.config = value
            self.device = self.device if value is None else value

    def fault(self):
        """The next change is refused, or not answered; nothing changes then."""
        kind = self.random.choice(["refuse", "null"])
        self.agent.switch("fault", "add", "ui_fe_qos_jumbo", kind)
        value = not self.config
        answer = self.agent.put(LEAF, {"lyn-openconfig-jumbo:enabled": value})
        self.agent.switch("fault", "clear")
        assert not answer.ok, f"{kind}: {answer.status_code}"
        self.done["fault"] += 1

    def check(self):
        config = self.agent.get(CONFIG + "?content=config").json()["lyn-openconfig-jumbo:config"].get("enabled")
        state = self.agent.get(STATE).json()["lyn-openconfig-jumbo:operation-state"]["enabled"]
        shown = json.loads(self.agent.switch("show", "jumbo"))
        assert config == self.config, f"running has {config}, not {self.config}"
        assert state == self.device and self.device in (shown.get("enabled"), shown.get("jumbo", {}).get("enabled")), \
            f"the switch has {state} and {shown}, not {self.device}"
        self.done["check"] += 1

    def run(self, seconds):
        end, first = time.monotonic() + seconds, None
        while time.monotonic() < end:
            for _ in range(50):
                self.edit()
            self.fault()
            self.check()
            first = first or memory_of(self.agent.process)
        grown = memory_of(self.agent.process) - first
        assert grown < 8 * 1024, f"memory grew by {grown} kB"
        print(f"soak: {dict(self.done)}, memory {grown:+} kB")


if __name__ == "__main__":
    duration = float(sys.argv[1])
    start = int(sys.argv[2]) if len(sys.argv) > 2 else random.randrange(1 << 30)
    print(f"soak: {duration:g} s, seed {start}")
    with Agent() as running:
        Soak(running, start).run(duration)
