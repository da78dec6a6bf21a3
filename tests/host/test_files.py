import os
import shutil
import signal
import subprocess
import time

import pytest

CONFIGURATION, SETTINGS, PIPELINES = NAMES = ("QovConfiguration.xml", "QovSettings.xml", "ApoPipelinesDefinition.xml")
posix_only = pytest.mark.posix


def as_nobody(folder, command):
    """Without root's rights, which no file mode stops."""
    if os.getuid() != 0:
        return subprocess.run(command, cwd=folder.path, capture_output=True, text=True, timeout=120)
    for parent in [folder.path, *folder.path.parents]:
        if parent.owner() == "root" and str(parent).startswith("/tmp/"):
            parent.chmod(parent.stat().st_mode | 0o011)
    return subprocess.run(command, cwd=folder.path, capture_output=True, text=True, timeout=120, user=65534,
                          extra_groups=[], group=65534)


def spoil(folder, what):
    path = folder.path / CONFIGURATION
    if what == "missing":
        path.unlink()
    elif what == "folder":
        path.unlink(), path.mkdir()
    elif what == "NUL byte":
        folder[CONFIGURATION] += b"\0"
    elif what == "UTF-16":
        folder[CONFIGURATION] = folder[CONFIGURATION].decode().encode("utf-16")
    elif what == "same path":
        folder.names["configuration"] = "./" + SETTINGS
    elif what == "link":
        path.unlink(), path.symlink_to(SETTINGS)
    elif what == "hard link":
        path.unlink(), path.hardlink_to(folder.path / SETTINGS)
    elif what == "pipe":
        path.unlink(), os.mkfifo(path)


@posix_only
@pytest.mark.parametrize("dry", [[], ["--dry-run"]])
@pytest.mark.parametrize("what", ["missing", "folder", "NUL byte", "UTF-16", "same path", "link", "hard link", "pipe"])
def test_preflight_tells_every_problem(folder, what, dry):
    spoil(folder, what)
    (folder.path / PIPELINES).unlink()
    (folder.path / PIPELINES).mkdir()
    before = folder.contents() if what != "pipe" else None
    result = folder.run("apply", *dry)
    assert (result.returncode, result.stdout) == (3, "")
    problems = [line for line in result.stderr.splitlines() if line.startswith("error: ")]
    assert len(problems) == 2 and any(PIPELINES in line for line in problems), result.stderr
    assert before is None or folder.contents() == before


@posix_only
def test_rights(folder):
    for name in NAMES:
        (folder.path / name).chmod(0o644)
    (folder.path / SETTINGS).chmod(0o000)
    (folder.path / CONFIGURATION).chmod(0o444)
    if os.getuid() == 0:
        for path in [folder.path, *folder.path.iterdir()]:
            os.chown(path, 65534, 65534)
    result = as_nobody(folder, folder.command("apply"))
    assert result.returncode == 3
    problems = [name for line in result.stderr.splitlines() for name in NAMES if name in line]
    assert problems == [CONFIGURATION, SETTINGS, SETTINGS]  # unwritable; unreadable and unwritable
    (folder.path / SETTINGS).chmod(0o444)
    dry = as_nobody(folder, folder.command("apply", "--dry-run"))
    assert dry.returncode == 0 and dry.stderr.count("warning: ") == 2, dry.stderr


def test_pipelines_file_is_missed_only_where_it_is_wanted(folder):
    (folder.path / PIPELINES).unlink()
    for arguments in (["apply"], ["apply", "--dry-run"]):
        result = folder.run(*arguments)
        assert result.returncode == 3 and PIPELINES in result.stderr, result.stderr
    assert folder.run("apply", machine="no-orvex-modules").returncode == 0


def test_existing_backup_is_never_overwritten(folder):
    folder[SETTINGS + ".bak"] = b"precious"
    before = folder.contents()
    result = folder.run("apply", "--backup")
    assert (result.returncode, folder.contents()) == (3, before)
    assert SETTINGS + ".bak" in result.stderr
    dry = folder.run("apply", "--backup", "--dry-run")
    assert dry.returncode == 0 and SETTINGS + ".bak" in dry.stderr
    # Of a file that does not change it is in nobody's way.
    assert folder.run("apply").returncode == 0
    assert folder.run("apply", "--backup").returncode == 0


@posix_only
def test_links_names_and_rights_stay(folder, applied, tmp_path_factory):
    other = tmp_path_factory.mktemp("other")
    os.rename(folder.path / CONFIGURATION, other / "real.xml")
    (folder.path / CONFIGURATION).symlink_to(other / "real.xml")
    (other / "second.xml").hardlink_to(folder.path / SETTINGS)
    (folder.path / PIPELINES).chmod(0o640)
    subprocess.run(["setfacl", "-m", "u:daemon:r", folder.path / PIPELINES], check=True)
    acl = subprocess.check_output(["getfacl", "-cp", folder.path / PIPELINES])
    original = folder[PIPELINES]
    assert folder.run("apply", "--backup").returncode == 0
    assert (folder.path / CONFIGURATION).is_symlink() and not (folder.path / (CONFIGURATION + ".bak")).is_symlink()
    assert (other / "real.xml").read_bytes() == applied[CONFIGURATION]
    assert (other / "second.xml").read_bytes() == applied[SETTINGS] == folder[SETTINGS]
    assert (other / "second.xml").samefile(folder.path / SETTINGS)
    for name, data in ((PIPELINES, applied[PIPELINES]), (PIPELINES + ".bak", original)):
        assert folder[name] == data
        assert subprocess.check_output(["getfacl", "-cp", folder.path / name]) == acl
    assert sorted(os.listdir(other)) == ["real.xml", "second.xml"]


def on_disk_of(folder, size, command, out):
    """Runs the command on a disk of `size` KiB that holds the three files; gives its result and what the disk holds then."""
    script = f"""mount -t tmpfs -o size={size}k tmpfs {out} && cp *.xml {out} && cd {out} && "$@"; code=$?
                 cp -a {out}/. {folder.path}/after; exit $code"""
    shutil.rmtree(folder.path / "after", ignore_errors=True)
    (folder.path / "after").mkdir()
    result = subprocess.run(["unshare", "--map-root-user", "--mount", "bash", "-c", script, "-", *command],
                            cwd=folder.path, capture_output=True, text=True, timeout=120)
    return result, {file.name: file.read_bytes() for file in (folder.path / "after").iterdir()}


@posix_only
def test_full_disk_leaves_everything_as_it_was(folder, applied, tmp_path_factory):
    before = folder.contents()
    done = {**{name + ".bak": data for name, data in before.items()}, **applied}
    codes = []
    for size in range(48, 160, 4):
        result, after = on_disk_of(folder, size, folder.command("apply", "--backup"), tmp_path_factory.mktemp("disk"))
        codes.append(result.returncode)
        assert (result.returncode, after) in ((0, done), (3, before)), result.stderr
    # Full at the first backup, ..., at the last file; and wide enough.
    assert codes == sorted(codes, reverse=True) and codes.count(3) >= 6 and codes.count(0) >= 2


@posix_only
def test_no_room_for_copies(folder):
    before = folder.contents()
    result = folder.run("apply", env={**os.environ, "TMPDIR": str(folder.path / "missing")})
    assert (result.returncode, folder.contents()) == (1, before)
    assert "What to do: " in result.stderr and "TMPDIR" in result.stderr


@posix_only
@pytest.mark.traced
def test_second_run_on_a_file_is_refused(folder, tmp_path):
    """The first one is held at its first rename, inside a debugger; the second comes by another path."""
    log = tmp_path / "trace"
    first = subprocess.Popen(["strace", "-f", "-o", log, "-e", "inject=rename,renameat,renameat2:delay_enter=2000000",
                              *folder.command("apply")], cwd=folder.path, stderr=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
    try:
        time.sleep(1)
        link = folder.path / "link.xml"
        link.symlink_to(SETTINGS)
        folder.names["settings"] = "link.xml"
        for command in (["apply"], ["restore"]):
            result = folder.run(*command)
            assert result.returncode == 3 and "link.xml" in result.stderr, result.stderr
    finally:
        assert first.wait(timeout=60) == 0


@posix_only
@pytest.mark.traced
@pytest.mark.parametrize("number", [signal.SIGINT, signal.SIGTERM])
def test_interruption_leaves_nothing(folder, number):
    before = folder.contents()
    traced = subprocess.run(["strace", "-f", "-o", "/dev/null", "-e", f"inject=fsync:signal={number.name}:when=2",
                             *folder.command("apply", "--backup")], cwd=folder.path, capture_output=True, timeout=60)
    assert traced.returncode in (-number, 128 + number)
    assert folder.contents() == before


@posix_only
@pytest.mark.parametrize("closed, code", [(">&-", 1), ("2>&-", 0), ("<&- >&- 2>&-", 1)])
def test_closed_streams_are_no_files(folder, applied, closed, code):
    """The next file that is opened takes a closed stream's number, and with it what is printed."""
    script = f'exec {closed}; exec "$@"'
    result = subprocess.run(["bash", "-c", script, "-", *folder.command("apply")], cwd=folder.path, timeout=120)
    assert (result.returncode, folder.contents()) == (code, applied)
