import sys
import pathlib

import pytest

sys.path.insert(0, str(pathlib.Path(__file__).parent))

pytest.register_assert_rewrite("harness")
from harness import Agent  # noqa: E402


@pytest.fixture(scope="module")
def agent():
    """One agentd for the tests of a file; its log is shown with a failed test."""
    with Agent() as running:
        yield running


@pytest.fixture
def make_agent():
    """Starts an agentd of the test's own, which ends with the test."""
    agents = []

    def make(**options):
        agents.append(Agent(**options))
        return agents[-1].start()

    yield make
    for one in agents:
        one.stop()
        one.remove()


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item):
    outcome = yield
    report = outcome.get_result()
    running = getattr(item, "funcargs", {}).get("agent")
    if report.failed and running is not None:
        report.sections.append(("log of agentd", running.log[-4000:]))
