import json
import os
import subprocess

import pytest
from conftest import PROJECT

CONFIGURATION, SETTINGS, PIPELINES = "QovConfiguration.xml", "QovSettings.xml", "ApoPipelinesDefinition.xml"


def test_previews_applies_and_restores(folder):
    before = folder.contents()
    preview = folder.run("apply", "--dry-run", "--exit-code")
    assert (preview.returncode, folder.contents()) == (4, before)

    assert folder.run("apply", "--backup").returncode == 0
    after = folder.contents()
    assert {name: after[name + ".bak"] for name in before} == before
    assert b"<!--" not in next(line for line in after[CONFIGURATION].splitlines() if b'"OrvexZan_SPATIALF"' in line)

    again = folder.run("apply", "--dry-run", "--exit-code")
    assert again.returncode == 0
    unchanged = folder.run("apply")
    assert (unchanged.returncode, folder.contents()) == (0, after)
    assert "othing to change" in unchanged.stdout

    assert folder.run("restore").returncode == 0
    assert folder.contents() == before
    assert folder.run("restore").returncode == 3


def test_output_goes_where_it_belongs(folder):
    quiet = folder.run("apply", "--dry-run", "--quiet")
    assert (quiet.returncode, quiet.stdout, len(quiet.stderr.splitlines())) == (0, "", 1)
    account = folder.run("apply", "--dry-run")
    verbose = folder.run("apply", "--dry-run", "--verbose")
    last = "QovXml: ConfigureQovXmls() completed successfully"
    assert last in verbose.stderr and last not in account.stderr + account.stdout
    assert account.stdout == verbose.stdout and len(account.stderr.splitlines()) < 10
    assert "\x1b" not in account.stderr + account.stdout
    folder.run("apply", "--dry-run", "--log-file", "run.log")
    log = folder["run.log"].decode().splitlines()
    assert [line.split(":")[0] for line in log[1:4]] == ["System", "Machine", "Time"]
    assert "[info] " + last in log


@pytest.mark.parametrize("call", [
    [], ["apply"], ["apply", "--colour"], ["apply", "--backup="], ["apply", "--backup=a/b"], ["apply", "--exit-code"],
    ["apply", "--quiet", "--verbose"], ["apply", "--log-file", CONFIGURATION], ["apply", "--log-file", f"./{SETTINGS}"],
    ["apply", "--machine", "missing.json"], ["apply", "--machine", ""], ["apply", "--log-file", ""], ["restore", "--backup="],
    ["apply", "--backup", "--log-file", CONFIGURATION + ".bak"], ["restore", "--log-file", f"./{SETTINGS}.bak"],
    ["apply", "--backup", "--log-file", f"./{PIPELINES}.bak"], ["apply", "--log-file", CONFIGURATION + ".qovxml-old"],
    ["apply", "--machine", "own.json", "--log-file", "./own.json"]])
def test_wrong_usage(folder, call):
    folder["own.json"] = (PROJECT / "examples" / "machines" / "laptop-sfx.json").read_bytes()
    folder[SETTINGS + ".bak"] = b"precious"
    before = folder.contents()
    if call in ([], ["apply"]):
        result = subprocess.run(folder.command("apply")[:-8] + call if call else folder.command("apply")[:-9],
                                cwd=folder.path, capture_output=True, text=True, timeout=120)
    else:
        result = folder.run(*call, machine=None if "--machine" in call else "laptop-spatialf")
    assert (result.returncode, result.stdout) == (2, "")
    assert result.stderr and folder.contents() == before


@pytest.mark.parametrize("machine, message, path", [
    ("refused-two-modes", "APO module installed in more than one mode", None),
    ("laptop-spatialf", 'No tag found: DeviceId:', CONFIGURATION)])
def test_failed_runs_name_the_file_and_change_nothing(folder, machine, message, path):
    if path:
        folder[path] = folder[path].replace(b"DeviceId:", b"Device:")
    before = folder.contents()
    code, outcome = folder.json("apply", "--backup", machine=machine)
    assert (code, outcome["outcome"], folder.contents()) == (1, "failed", before)
    assert message in outcome["message"]
    named = [name for name in (CONFIGURATION, SETTINGS, PIPELINES) if name in outcome["message"]]
    assert named == ([path] if path else [])
    assert [file["changed"] for file in outcome["files"]] == [False] * 3


def test_outcome_that_would_not_be_xml_is_refused(folder):
    # A comment in front of a block on its line ends the comment that disabling begins.
    start = next(line for line in folder[CONFIGURATION].splitlines() if b'"OrvexZan_Sfx_Apo"' in line)
    folder[CONFIGURATION] = folder[CONFIGURATION].replace(start, b"<!-- a note -->" + start.replace(b"<!--", b""))
    before = folder.contents()
    result = folder.run("apply")
    assert (result.returncode, folder.contents()) == (1, before)
    assert CONFIGURATION in result.stderr


def test_json_says_it_all(folder, applied):
    code, preview = folder.json("apply", "--dry-run", "--diff")
    assert (code, preview["outcome"], preview["message"]) == (0, "would-change", None)
    assert list(preview) == ["outcome", "message", "warnings", "files", "log", "diff"]
    assert [file["path"] for file in preview["files"]] == [CONFIGURATION, SETTINGS, PIPELINES]
    assert preview["log"][0] == {"level": "info", "text": "QovXml: ConfigureQovXmls() starting..."}
    for file in preview["files"]:
        lines = folder[file["path"]].decode("latin-1").split("\r\n")
        for change in file["lines"]:
            assert lines[change["line"] - 1] == change["before"] != change["after"]
            lines[change["line"] - 1] = change["after"]
        assert "\r\n".join(lines).encode("latin-1") == applied[file["path"]]
        assert file["changed"] == bool(file["lines"]) and file["backup"] is None
    assert folder.json("apply", "--diff", machine="refused-two-modes")[1]["diff"] == ""
    code, done = folder.json("apply", "--backup=.old")
    assert (code, done["outcome"]) == (0, "done") and "diff" not in done
    assert [file["backup"] for file in done["files"]] == \
        [file["path"] + ".old" if file["changed"] else None for file in preview["files"]]
    assert folder.json("apply")[1]["outcome"] == "unchanged"
    code, back = folder.json("restore", "--backup=.old")
    assert (code, back["outcome"]) == (0, "done")
    for file, undone in zip(preview["files"], back["files"]):
        assert undone["changed"] == file["changed"] and undone["backup"] is None
        assert undone["lines"] == [{"line": change["line"], "before": change["after"], "after": change["before"]}
                                   for change in file["lines"]]


@pytest.mark.parametrize("ends", [b"\n", b"\r\n"])
def test_patch_applies_the_diff(folder, ends):
    for name in (CONFIGURATION, SETTINGS, PIPELINES):
        folder[name] = folder[name].replace(b"\r\n", ends)[:-len(ends)]
    (folder.path / "sub dir").mkdir()
    os.rename(folder.path / SETTINGS, folder.path / "sub dir" / "settings \u00e9.xml")
    folder.names["settings"] = "sub dir/settings \u00e9.xml"
    preview = folder.run("apply", "--dry-run", "--diff")
    originals = folder.contents()
    patched = subprocess.run(["patch", "-p0", "--binary"], cwd=folder.path, input=preview.stdout.encode(),
                             capture_output=True, timeout=60)
    assert patched.returncode == 0, patched.stdout
    by_patch = folder.contents()
    for name, data in originals.items():
        folder[name] = data
    assert folder.run("apply").returncode == 0
    assert by_patch == folder.contents()


def test_warnings_and_strict(folder):
    code, outcome = folder.json("apply", "--dry-run", machine="no-orvex-modules")
    assert code == 0 and len(outcome["warnings"]) == 1
    folder[SETTINGS] = folder[SETTINGS].replace(b"OrvexZan_SPATIALF", b"Other").replace(b"\r\n", b"\n")
    before = folder.contents()
    code, outcome = folder.json("apply", "--strict")
    assert (code, outcome["outcome"], folder.contents()) == (5, "warnings", before)
    assert any("OrvexZan_SPATIALF" in text and SETTINGS in text for text in outcome["warnings"])
    assert any("CR LF" in text for text in outcome["warnings"]) and len(outcome["warnings"]) == 2
    strict = folder.run("apply", "--strict", "--dry-run", "--exit-code", "--diff")
    assert strict.returncode == 5 and "--- " + CONFIGURATION in strict.stdout


def test_a_fault_that_no_call_meets_is_told_unless_it_is_of_an_object(folder):
    machine = json.loads((PROJECT / "examples" / "machines" / "laptop-spatialf.json").read_text(encoding="utf-8"))
    fault = {"call": "IDeviceTopology::GetConnectorCount", "result": "0x80070005", "object": machine["devices"][0]["id"]}
    for more, code in (({}, 0), ({"occurrence": 9}, 5)):
        machine["faults"] = [{**fault, **more}]
        folder["own.json"] = json.dumps(machine).encode()
        result = folder.run("apply", "--dry-run", "--strict", "--machine", "own.json", machine=None)
        assert result.returncode == code and ("IDeviceTopology::GetConnectorCount" in result.stderr) == bool(more), result.stderr


def test_file_content_and_names_of_any_script(folder):
    folder[CONFIGURATION] = folder[CONFIGURATION].replace(b"DeviceId:", b"DeviceId:\xff\xe9")
    machine = json.loads((folder.path / folder.command("apply")[-1]).read_text())
    text = json.dumps(machine).replace("espeakerwave", "\u30b9\u30d4\u30fc\u30ab\u30fc")
    (folder.path / "m\u00e4chine.json").write_text(text, encoding="utf-8")
    code, outcome = folder.json("apply", "--machine", "m\u00e4chine.json", "--diff", machine=None)
    assert code in (0, 1) and "\ufffd" in json.dumps(outcome, ensure_ascii=False) or code == 1


@pytest.mark.posix
def test_what_is_shown_of_a_path_is_harmless(folder):
    folder.names["settings"] = "\x1b[31m\nred\udcff.xml"
    result = folder.run("apply")
    assert result.returncode == 3 and result.stderr.startswith("error: \\x1B[31m\\x0Ared\ufffd.xml: does not exist")


def test_machine_that_cannot_be_simulated_is_wrong_usage(folder):
    text = (PROJECT / "examples" / "machines" / "laptop-sfx.json").read_text(encoding="utf-8")
    name = "{233164c8-1b2c-4c7d-bc68-b671687a2567},1"
    folder["twice.json"] = text.replace(f'"{name}":', f'"{name.upper()}": 1, "{name}":').encode()
    before = folder.contents()
    result = folder.run("apply", "--machine", "twice.json", machine=None)
    assert (result.returncode, result.stdout, folder.contents()) == (2, "", before), result.stderr
