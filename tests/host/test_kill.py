"""The program is killed, interrupted or refused at every call that changes a file: each file is old or new, and the same
command finishes the work."""

import os
import signal
import subprocess

import pytest
from conftest import NAMES, PROGRAM

pytestmark = [pytest.mark.posix, pytest.mark.traced]

# Short, for every line is a write.
BLOCKS = ["OrvexZan_Lfx_Mfx_Apo", "OrvexZan_Sfx_Apo", "OrvexZan_Efx_Apo", "OrvexZan_SPATIALF"]
LINES = {
    "QovConfiguration.xml": ['<M A="DeviceId:old" B=""/>', '<M A="EndpointName:old"/>',
                             *(f'<ParameterBlock N="{name}"></ParameterBlock>' for name in BLOCKS)],
    "QovSettings.xml": [f'<ConfigurableDomain N="{name}"></ConfigurableDomain>' for name in BLOCKS],
    "ApoPipelinesDefinition.xml": ['<M A="ModuleGuid:old"/>', '<T N="Subeffects_DefaultMode" A="ParamId:old"/>',
                                   '<T N="Subeffects_SpeechMode" A="ParamId:old"/>']}
CHANGING = ["mkdir", "write", "pwrite64", "fchmod", "flock", "fsync", "ftruncate", "rename", "renameat2", "unlink",
            "unlinkat", "rmdir"]
REFUSED = {"pwrite64": "ENOSPC", "fchmod": "EPERM", "flock": "ENOLCK", "fsync": "EIO", "ftruncate": "EIO", "rename": "EIO",
           "renameat2": "EIO"}


class Files:
    """The three files in a folder of their own; with other names, each must be rewritten in place."""

    def __init__(self, folder, names=1):
        self.folder = folder / "files"
        self.temporary = folder / "tmp"
        self.temporary.mkdir(parents=True)
        self.folder.mkdir()
        for name, lines in LINES.items():
            (self.folder / name).write_text("\r\n".join(["<Q>", *lines, "</Q>", ""]), newline="")
            if names > 1:
                os.link(self.folder / name, folder / name)
        self.old = self.contents()

    def contents(self):
        return {name: (self.folder / name).read_bytes() for name in LINES}

    def names(self):
        return {path.name for path in self.folder.iterdir()}

    def run(self, *options, command="apply", inject=None):
        arguments = [*PROGRAM, command, "--example-machine", "--quiet", *options]
        for role, name in NAMES.items():
            arguments += [f"--{role}", name]
        if inject:
            arguments = ["strace", "-f", "-o", os.devnull, "-e", f"inject={inject}", *arguments]
        return subprocess.run(arguments, cwd=self.folder, env={**os.environ, "TMPDIR": str(self.temporary)},
                              capture_output=True, text=True, timeout=60)

    def check_whole(self, before, after):
        """Each file is as before or after, or has the bytes from before beside it; every backup is whole."""
        for name, bytes_now in self.contents().items():
            copy = self.folder / (name + ".qovxml-old")
            if copy.exists():
                assert copy.read_bytes() == before[name]
            else:
                assert bytes_now in (before[name], after[name])
            backup = self.folder / (name + ".bak")
            assert not backup.exists() or backup.read_bytes() == self.old[name]

    def check_finished(self, new, beside=frozenset()):
        assert self.contents() == new
        assert self.names() == set(LINES) | set(beside)
        assert list(self.temporary.iterdir()) == []


@pytest.fixture(scope="module")
def new(tmp_path_factory):
    files = Files(tmp_path_factory.mktemp("new"))
    assert files.run().returncode == 0
    contents = files.contents()
    assert all(contents[name] != files.old[name] for name in contents)
    return contents


def each_call(call, injection, tmp_path, names, *options):
    """A fresh set of files, on which the Nth such call of the program met the injection, until there are no more."""
    for index in range(1, 200):
        files = Files(tmp_path / str(index), names)
        ended = files.run(*options, inject=f"{call}:{injection}:when={index}")
        yield files, ended
        if ended.returncode == 0:
            return
    pytest.fail("the program never came to an end")


@pytest.mark.parametrize("names", [1, 2])
@pytest.mark.parametrize("call", CHANGING)
def test_killed_apply_is_finished_by_the_next(call, names, tmp_path, new):
    for files, ended in each_call(call, "signal=SIGKILL", tmp_path, names):
        assert ended.returncode in (0, -signal.SIGKILL), ended.stderr
        files.check_whole(files.old, new)
        assert files.run().returncode == 0
        files.check_finished(new)


@pytest.mark.parametrize("names", [1, 2])
@pytest.mark.parametrize("call", CHANGING)
def test_killed_apply_leaves_whole_backups(call, names, tmp_path, new):
    backups = {name + ".bak" for name in LINES}
    for files, ended in each_call(call, "signal=SIGKILL", tmp_path, names, "--backup"):
        files.check_whole(files.old, new)
        left = files.names() & backups
        in_the_way = {name for name in left if files.contents()[name[:-4]] != new[name[:-4]] or
                      (files.folder / (name[:-4] + ".qovxml-old")).exists()}
        again = files.run("--backup")
        assert again.returncode == (3 if in_the_way else 0), again.stderr
        assert all(name in again.stderr for name in in_the_way)
        assert files.run().returncode == 0
        files.check_finished(new, left if in_the_way else backups)


@pytest.mark.parametrize("names", [1, 2])
@pytest.mark.parametrize("call", CHANGING)
def test_killed_restore_is_finished_by_the_next(call, names, tmp_path, new):
    for index in range(1, 200):
        files = Files(tmp_path / str(index), names)
        assert files.run("--backup").returncode == 0
        ended = files.run(command="restore", inject=f"{call}:signal=SIGKILL:when={index}")
        files.check_whole(new, files.old)
        again = files.run(command="restore")
        # Killed after its last backup was removed, it has nothing left to do.
        assert again.returncode in (0, 3)
        files.check_finished(files.old)
        if ended.returncode == 0:
            return


@pytest.mark.parametrize("names", [1, 2])
@pytest.mark.parametrize("call", CHANGING)
def test_interrupted_apply_changes_nothing_or_all(call, names, tmp_path, new):
    for files, ended in each_call(call, "signal=SIGTERM", tmp_path, names, "--backup"):
        backups = {name + ".bak" for name in LINES}
        if ended.returncode == 0 or files.contents() == new:
            files.check_finished(new, backups)
        else:
            assert ended.returncode == -signal.SIGTERM, ended.stderr
            files.check_finished(files.old)


@pytest.mark.parametrize("names", [1, 2])
@pytest.mark.parametrize("call", REFUSED)
def test_refused_call_changes_nothing(call, names, tmp_path, new):
    for files, ended in each_call(call, f"error={REFUSED[call]}", tmp_path, names, "--backup"):
        if ended.returncode == 0:
            files.check_finished(new, {name + ".bak" for name in LINES})
        else:
            assert ended.returncode in (1, 3) and ended.stderr
            files.check_finished(files.old)
