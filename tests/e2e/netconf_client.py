"""NETCONF clients for the tests: ncclient for what a controller does, a bare SSH channel for what none should do.

    with connect(agent) as manager:
        manager.get_config("running")

    with Wire(agent) as wire:
        wire.hello("1.1")
        wire.send(chunked(rpc("<get/>")))
"""

import socket
import time
import xml.etree.ElementTree as ET

import paramiko
from ncclient import manager
from ncclient.operations import RPCError

BASE = "urn:ietf:params:xml:ns:netconf:base:1.0"
JUMBO = "urn:lyn:yang:lyn-openconfig-jumbo"
END = b"]]>]]>"


def address(agent):
    host, port = agent.netconf.rsplit(":", 1)
    return host, int(port)


def connect(agent, user="admin", password=None, timeout=30, **options):
    host, port = address(agent)
    if "key_filename" not in options:
        options["password"] = password or agent.password
    return manager.connect(host=host, port=port, username=user, hostkey_verify=False, allow_agent=False,
                           look_for_keys=False, timeout=timeout, **options)


def jumbo(enabled, operation=""):
    """A <config> that switches jumbo frames."""
    attribute = f' nc:operation="{operation}"' if operation else ""
    return (f'<config xmlns:nc="{BASE}"><jumbo xmlns="{JUMBO}"><config{attribute}>'
            f"<enabled>{str(enabled).lower()}</enabled></config></jumbo></config>")


def config(text):
    return f'<config xmlns:nc="{BASE}" xmlns:y="urn:ietf:params:xml:ns:yang:1">{text}</config>'


def texts(reply, name):
    """The texts of all elements of that local name in a reply."""
    return [element.text for element in ET.fromstring(str(reply)).iter() if element.tag.endswith("}" + name)]


def refusal(action):
    """The rpc-error of a call that must be refused."""
    try:
        action()
    except RPCError as error:
        return error
    raise AssertionError("not refused")


def rpc(operation, message_id="1"):
    return f'<rpc message-id="{message_id}" xmlns="{BASE}">{operation}</rpc>'.encode()


def chunked(message):
    return b"\n#%d\n%s\n##\n" % (len(message), message)


class Wire:
    """An SSH channel with the subsystem netconf, for bytes of one's own."""

    def __init__(self, agent, user="admin", password=None):
        self.transport = paramiko.Transport(socket.create_connection(address(agent), timeout=30))
        self.transport.start_client(timeout=30)
        self.transport.auth_password(user, password or agent.password)
        self.channel = self.transport.open_session(timeout=30)
        self.channel.invoke_subsystem("netconf")
        self.channel.settimeout(30)
        self.taken = b""
        self.greeting = self.until(END)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        self.transport.close()

    def send(self, data):
        self.channel.sendall(data)

    def until(self, end):
        """What came up to and with the given bytes."""
        while end not in self.taken:
            data = self.channel.recv(65536)
            if not data:
                raise EOFError(self.taken)
            self.taken += data
        found, self.taken = self.taken.split(end, 1)
        return found + end

    def hello(self, version):
        self.send(f'<hello xmlns="{BASE}"><capabilities><capability>urn:ietf:params:netconf:base:{version}</capability>'
                  f"</capabilities></hello>".encode() + END)

    def ask(self, operation, message_id="1"):
        """A request and its reply in the framing of base:1.0."""
        self.send(rpc(operation, message_id) + END)
        return self.until(END)[:-len(END)].decode()

    def is_closed(self, limit=10):
        """Whether the server ends the session; what it still says is passed over."""
        self.channel.settimeout(0.2)
        end = time.monotonic() + limit
        while time.monotonic() < end:
            try:
                if not self.channel.recv(65536):
                    return True
            except socket.timeout:
                if not self.transport.is_active():
                    return True
        return False
