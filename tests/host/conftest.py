"""The real program on copies of the example files. QOVXML_PROGRAM names it, QOVXML_LAUNCHER what runs it (Wine, or nothing)."""

import json
import os
import pathlib
import shutil
import subprocess

import pytest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
NAMES = {"configuration": "QovConfiguration.xml", "settings": "QovSettings.xml", "pipelines": "ApoPipelinesDefinition.xml"}


def pytest_configure(config):
    config.addinivalue_line("markers", "posix: by means that only POSIX has, so not for the program under Wine")
    config.addinivalue_line("markers", "traced: under strace, hundreds of times: not with sanitizers, which want to trace themselves")


PROGRAM = [*os.environ.get("QOVXML_LAUNCHER", "").split(), os.environ["QOVXML_PROGRAM"]]


class Folder:
    """Three files in a folder of their own, which is the program's current one."""

    def __init__(self, path):
        self.path = path
        self.names = dict(NAMES)
        for name in NAMES.values():
            shutil.copy(PROJECT / "examples" / "xml" / name, path / name)
            # As a run leaves them, so that a difference is an edit and not a line end.
            self[name] = self[name].replace(b"\r\n", b"\n").replace(b"\n", b"\r\n")

    def __getitem__(self, name):
        return (self.path / name).read_bytes()

    def __setitem__(self, name, data):
        (self.path / name).write_bytes(data)

    def contents(self):
        return {str(file.relative_to(self.path)): file.read_bytes() for file in self.path.rglob("*") if file.is_file()}

    def command(self, *arguments, machine="laptop-spatialf"):
        files = [word for role, name in self.names.items() for word in (f"--{role}", name)]
        simulated = ["--machine", str(PROJECT / "examples" / "machines" / f"{machine}.json")] if machine else []
        return [*PROGRAM, arguments[0], *files, *simulated, *arguments[1:]]

    def run(self, *arguments, machine="laptop-spatialf", **more):
        result = subprocess.run(self.command(*arguments, machine=machine), cwd=self.path, capture_output=True,
                                timeout=120, **more)
        result.stdout, result.stderr = result.stdout.decode(), result.stderr.decode()
        return result

    def json(self, *arguments, **more):
        """The exit code and the one object that --json prints."""
        result = self.run(*arguments, "--json", **more)
        return result.returncode, json.loads(result.stdout)


@pytest.fixture
def folder(tmp_path):
    return Folder(tmp_path)


@pytest.fixture
def applied(tmp_path_factory):
    """What apply makes of the three files, by name: the outcome that others are held against."""
    other = Folder(tmp_path_factory.mktemp("applied"))
    assert other.run("apply").returncode == 0
    return other.contents()
