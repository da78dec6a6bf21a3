"""The commands that only look: list, trace, report, snapshot, and what apply says of who is at fault."""

import base64
import html.parser
import json
import re
import shlex
import subprocess

import pytest
from conftest import NAMES, PROGRAM, PROJECT

MACHINES = PROJECT / "examples" / "machines"
SLOT = "{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},%d"
HOSTILE = "<script>alert('1')</script>\" onload=\"x\u202e\x1b[2J & Co"


def look(folder, *arguments):
    """Without naming the three files."""
    result = subprocess.run([*PROGRAM, *arguments], cwd=folder.path, capture_output=True, timeout=120)
    return result.returncode, result.stdout.decode(), result.stderr.decode()


def example(name):
    return json.loads((MACHINES / f"{name}.json").read_text(encoding="utf-8"))


def write(folder, machine):
    folder["own.json"] = json.dumps(machine).encode()
    return "--machine", "own.json"


class Page(html.parser.HTMLParser):
    def __init__(self, text):
        super().__init__()
        self.tags, self.attributes, self.text = [], [], ""
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        self.tags.append(tag)
        self.attributes += [(tag, *attribute) for attribute in attributes]

    def handle_data(self, data):
        self.text += data

    def machine(self):
        link = next(value for tag, name, value in self.attributes if (tag, name) == ("a", "href"))
        return base64.b64decode(link.removeprefix("data:application/json;base64,"), validate=True)


def test_list_tells_what_each_endpoint_has(folder):
    code, table, _ = look(folder, "list", "--example-machine")
    assert code == 0 and "SFX ZAN APO SFX *" in table and "pin 1 MFX SPATIALF *" in table and "not active" in table
    code, text, _ = look(folder, "list", "--json", "--machine", str(MACHINES / "laptop-denied-endpoint.json"))
    endpoints = json.loads(text)["endpoints"]
    assert code == 0 and [endpoint["state"] for endpoint in endpoints] == ["active", "unplugged", "active", "active"]
    assert endpoints[0]["why"].startswith("passed over: IPart::EnumPartsIncoming of ...\\espeakerwave/00010003 failed with 80070005")
    assert endpoints[2]["firmware"] == [
        {"slot": "SFX", "guid": "{59c0f3a4-7d2e-4b68-9e15-d4a8062fb7c3}", "pin": 0, "maker": None}]
    assert endpoints[2]["why"] is None and endpoints[3]["why"].startswith("pin 0 lists no module; pin 1 does not speak the PP API")


def test_trace_tells_every_call_under_its_line(folder):
    machine = ["--machine", str(MACHINES / "laptop-denied-endpoint.json")]
    whole = json.loads(look(folder, "trace", "--json", *machine)[1])["steps"]
    assert whole[0]["text"] == "QovXml: ConfigureQovXmls() starting..."
    denied = [(step["text"], call) for step in whole for call in step["calls"] if call["result"] == "80070005"]
    assert len(denied) == 1 and denied[0][0].startswith("Current connector details:")
    assert denied[0][1]["call"] == "IPart::EnumPartsIncoming" and denied[0][1]["object"].endswith("espeakerwave/00010003")
    failed = json.loads(look(folder, "trace", "--failed", "--json", *machine)[1])["steps"]
    assert [call for step in failed for call in step["calls"]] == \
        [call for step in whole for call in step["calls"] if call["failed"]]
    lines = look(folder, "trace", "--failed", *machine)[1].splitlines()
    assert any(line.startswith("!") and "espeakerwave/00010003 FAILED: 80070005" in line for line in lines)


@pytest.mark.parametrize("machine, change, code, who, command", [
    ("laptop-spatialf", lambda m: m["endpoints"][2]["fxProperties"].update({SLOT % 6: {"type": "REG_MULTI_SZ", "text": "x"}}),
     1, ["Microphone Array (", SLOT % 6, "REG_MULTI_SZ"], "trace"),
    ("laptop-spatialf", lambda m: m.update(faults=[{"call": "IMMDevice::OpenPropertyStore", "result": "0x80070005"}]),
     1, ["Speakers (", "IMMDevice::OpenPropertyStore", "80070005"], "trace --failed"),
    ("laptop-denied-endpoint", lambda m: None,
     0, ["Speakers (", "IPart::EnumPartsIncoming", "espeakerwave/00010003", "80070005"], "trace --failed")])
def test_apply_names_who_is_at_fault(folder, machine, change, code, who, command):
    described = example(machine)
    change(described)
    names = write(folder, described)
    before = folder.contents()
    told = folder.json("apply", "--dry-run", *names, machine=None)
    assert told[0] == code and len(told[1]["atFault"]) == 1 and all(text in told[1]["atFault"][0] for text in who)
    result = folder.run("apply", "--dry-run", *names, machine=None)
    assert folder.contents() == before
    assert told[1]["atFault"][0] in result.stderr + result.stdout
    assert f"qovxml-configure {command} --machine own.json\n" in result.stderr + result.stdout


@pytest.mark.parametrize("name", ["own.json", "my m'ach.json", "a$b.json"])
def test_what_tells_more_can_be_pasted(folder, name):
    folder[name] = json.dumps(example("laptop-denied-endpoint")).encode()
    told = folder.run("apply", "--dry-run", "--machine", name, machine=None).stdout
    assert shlex.split(told.split("More is told by:\n")[1].splitlines()[0])[-2:] == ["--machine", name]


def test_a_run_that_fails_early_knows_no_modules(folder):
    machine = example("laptop-spatialf")
    machine["faults"] = [{"call": "IMMDeviceEnumerator::EnumAudioEndpoints", "occurrence": 2, "result": "0x80070005"}]
    machine["endpoints"][0]["friendlyName"] = ""
    names = write(folder, machine)
    code, text, _ = look(folder, "list", "--json", *names)
    first = json.loads(text)["endpoints"][0]
    assert (code, first["effects"], first["firmware"]) == (1, None, None) and first["why"].startswith("the run ended")
    device = re.escape(first["deviceId"])
    assert re.search(rf"^render +active +{device} +\? +\? +the run ended", look(folder, "list", *names)[1], re.MULTILINE)
    assert look(folder, "report", "--output", "page.html", *names)[0] == 0
    assert f"<h3>{first['deviceId']}</h3>" in folder["page.html"].decode()


def test_hostile_and_many_endpoints(folder):
    machine = example("laptop-denied-endpoint")
    first = machine["endpoints"][0]
    first["friendlyName"] = HOSTILE
    machine["endpoints"] += [{**first, "guid": f"{{00000000-0000-4000-8000-{number:012x}}}", "flow": "capture",
                              "deviceId": f"\"'><b>{number}"} for number in range(300)]
    names = write(folder, machine)
    listed = json.loads(look(folder, "list", "--json", *names)[1])["endpoints"]
    assert len(listed) == 304 and [endpoint["name"] for endpoint in listed].count(HOSTILE) == 301
    table = look(folder, "list", *names)[1]
    assert "\x1b" not in table and "\u202e" not in table
    assert look(folder, "report", "--output", "page.html", *names)[0] == 0
    page = Page(folder["page.html"].decode())
    assert page.tags.count("article") == 304 and not {"script", "b onload", "img", "link"} & set(page.tags)
    assert not [name for _, name, _ in page.attributes if name.startswith("on")]
    assert "<script>alert('1')</script>\" onload=\"x" in page.text and "\"'><b>299" in page.text
    assert "\x1b" not in folder["page.html"].decode()
    folder["own.json"] = page.machine()
    assert json.loads(look(folder, "list", "--json", *names)[1])["endpoints"] == listed


def test_snapshot_is_the_machine(folder):
    name = "Speakers (High Definition Audio Device)"
    for redacted in ([], ["--redact"]):
        code, text, _ = look(folder, "snapshot", *redacted, "--machine", str(MACHINES / "laptop-denied-endpoint.json"))
        folder["own.json"] = text.encode()
        assert code == 0 and look(folder, "snapshot", "--output", "again.json", "--machine", "own.json")[0] == 0
        assert folder["again.json"].decode() == text
        listed = json.loads(look(folder, "list", "--json", "--machine", "again.json")[1])["endpoints"]
        assert [endpoint["name"] for endpoint in listed][0] == ("Endpoint 1" if redacted else name)
        assert (name in text) == (not redacted) and "80070005" in listed[0]["why"]
    assert look(folder, "snapshot", "--machine", "own.json", "--output", "./own.json")[0] == 2


def test_report_is_one_page_that_needs_nothing(folder):
    before = folder.contents()
    assert folder.run("report", "--output", "page.html").returncode == 0
    text = folder["page.html"].decode()
    page = Page(text)
    assert {name: folder[name] for name in before} == before
    assert "Would change 3 files. No warnings." in page.text and {"details", "ol", "pre"} <= set(page.tags)
    assert re.findall(r"(?:src|href)=\"(?!data:)|url\(|@import|http", text.replace("http-equiv", "")) == []
    assert ("span", "class", "plus") in page.attributes and "espeakerwave" in page.text
    # A removed line that looks like the head of a diff.
    folder[NAMES["settings"]] = folder[NAMES["settings"]].replace(b"\r\n", b"\n") + b"<!-- a\n-->\n"
    diff = folder.run("apply", "--dry-run", "--diff").stdout
    assert "\n--->\n" in diff and folder.run("report", "--output", "page.html").returncode == 0
    before[NAMES["settings"]] = folder[NAMES["settings"]]
    heads = re.findall(r"^(?:--- |\+\+\+ |@@ )", diff, re.MULTILINE)
    assert Page(folder["page.html"].decode()).attributes.count(("span", "class", "head")) == len(heads)
    for path in (NAMES["settings"], "./" + NAMES["settings"]):
        assert folder.run("report", "--output", path).returncode == 2
    assert {name: folder[name] for name in before} == before
    assert folder.run("report", "--output", "missing/page.html").returncode == 3


def test_the_page_on_misbehaving_machines_is_true(folder):
    folder["laptop-denied-endpoint.json"] = (MACHINES / "laptop-denied-endpoint.json").read_bytes()
    page = (PROJECT / "docs" / "MISBEHAVING.md").read_text(encoding="utf-8").replace("\\\n", "")
    sessions = re.findall(r"^\$ qovxml-configure (.*)\n((?:(?!\$|```).*\n)*)", page, re.MULTILINE)
    assert len(sessions) == 6
    for command, expected in sessions:
        code, output, account = look(folder, *command.split())
        assert code == 0, account
        lines = iter(output.splitlines())
        told = expected.splitlines()
        assert all(line == "..." or line in lines for line in told), command
        assert "..." in told or told == output.splitlines()[:len(told)]


@pytest.mark.parametrize("call", [["report", "--example-machine"], ["trace", "--settings", "QovSettings.xml", "--example-machine"],
                                  ["list", "--machine", "missing.json"], ["report", "--output", ""],
                                  ["trace", "--configuration", "", "--settings", "s.xml", "--pipelines", "p.xml", "--example-machine"]])
def test_wrong_usage(folder, call):
    code, output, reason = look(folder, *call)
    assert (code, output) == (2, "") and reason
