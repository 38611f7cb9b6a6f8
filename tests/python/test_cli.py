"""The command line: output, error output, exit status."""

from __future__ import annotations

import doctest
import io
import json
import os
import re
import signal
import subprocess
import sys
import time
from pathlib import Path

import pytest

import quorin_libs
from quorin_libs import cli
from quorin_libs.cli import main

ROOT = Path(__file__).resolve().parents[2]
SMALL = b"id,depth,site\n1,12.5,A\n2,*,B\n3,?,B\n"
SMALL_TABLE = """\
t.csv: 3 rows, 3 columns, delimiter comma

column  kind       markers  new  missing  share  distinct  flags
------  ---------  -------  ---  -------  -----  --------  --------
id      int_str                        0     0%         3  unique
depth   float_str  "?"      "*"        2  66.7%         1  constant
site    char_str                       0     0%         2
"""


@pytest.fixture
def folder(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    (tmp_path / "t.csv").write_bytes(SMALL)
    return tmp_path


def command(*arguments, **options):
    """Run ``python -m quorin_libs`` in a process of its own; bytes in and out."""
    env = dict(os.environ, PYTHONIOENCODING=options.pop("encoding", "utf-8"))
    return subprocess.run(
        [sys.executable, "-m", "quorin_libs"] + list(arguments),
        stdout=options.pop("stdout", subprocess.PIPE),
        stderr=subprocess.PIPE,
        env=env,
        timeout=120,
        **options,
    )


def python(code):
    return subprocess.run(
        [sys.executable, "-c", code], stdout=subprocess.PIPE, check=True, timeout=120
    ).stdout.decode()


# ---- in a process of its own --------------------------------------------------------------------


def test_process_prints_the_table(folder):
    result = command("t.csv")
    assert result.stdout.decode() == SMALL_TABLE
    assert (result.returncode, result.stderr) == (0, b"")


def test_process_reads_standard_input(folder):
    result = command("-", input=SMALL)
    assert result.stdout.decode() == SMALL_TABLE.replace("t.csv", "standard input")
    assert (result.returncode, result.stderr) == (0, b"")


def test_process_reports_bad_input_in_one_line(folder):
    result = command("none.csv")
    assert (result.returncode, result.stdout) == (2, b"")
    assert result.stderr == b"quorin-profile: none.csv: no such file\n"


def test_process_escapes_what_the_output_cannot_hold(folder):
    (folder / "u.csv").write_bytes("é,元\n1,2\n".encode())
    result = command("u.csv", encoding="ascii")
    assert (result.returncode, result.stderr) == (0, b"")
    assert result.stdout.decode("ascii").splitlines()[4:] == [
        "\\xe9    int_str                      0     0%         1  constant",
        "\\u5143  int_str                      0     0%         1  constant",
    ]


@pytest.mark.parametrize("arguments", [["t.csv"], ["t.csv", "--json"], ["--help"]])
def test_closed_pipe_is_no_error(folder, arguments):
    reader, writer = os.pipe()
    os.close(reader)
    try:
        result = command(*arguments, stdout=writer)
    finally:
        os.close(writer)
    assert (result.returncode, result.stderr) == (0, b"")


@pytest.mark.skipif(not os.path.exists("/dev/full"), reason="needs a device that is always full")
def test_full_device_is_reported(folder):
    with open("/dev/full", "wb") as full:
        result = command("t.csv", stdout=full)
    assert result.returncode == 1
    assert result.stderr == b"quorin-profile: standard output: No space left on device\n"


@pytest.mark.skipif(os.name != "posix", reason="needs a shell that can close a stream")
def test_closed_streams(folder):
    def shell(line):
        script = f'"{sys.executable}" -m quorin_libs {line}'
        return subprocess.run(
            ["sh", "-c", script], stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120
        )

    result = shell("t.csv >&-")
    assert (result.returncode, result.stdout) == (1, b"")
    assert result.stderr == b"quorin-profile: standard output: closed\n"
    result = shell("- <&-")
    assert (result.returncode, result.stdout) == (2, b"")
    assert result.stderr == b"quorin-profile: standard input: closed\n"
    result = shell("none.csv 2>&-")
    assert (result.returncode, result.stdout, result.stderr) == (2, b"", b"")


@pytest.mark.skipif(os.name != "posix", reason="needs POSIX signals")
def test_interrupt_is_quiet(folder):
    # The signal is sent after main() has begun to read.
    code = (
        "import io, signal, sys\n"
        # A shell that starts the tests in the background may have set the signal to be ignored.
        "signal.signal(signal.SIGINT, signal.default_int_handler)\n"
        "class Waiting(io.RawIOBase):\n"
        "    def read(self, size=-1):\n"
        "        print('reading', flush=True)\n"
        "        import time\n"
        "        time.sleep(60)\n"
        "class Input:\n"
        "    buffer = Waiting()\n"
        "sys.stdin = Input()\n"
        "from quorin_libs.cli import main\n"
        "sys.exit(main(['-']))\n"
    )
    with subprocess.Popen(
        [sys.executable, "-c", code], stdout=subprocess.PIPE, stderr=subprocess.PIPE
    ) as process:
        assert process.stdout.readline() == b"reading\n"
        process.send_signal(signal.SIGINT)
        assert process.communicate(timeout=60) == (b"", b"")
    assert process.returncode == 130


def test_quick_imports():
    heavy = "{'numpy', 'pandas', 'six', 'quorin_libs.utils'}"
    show = f"print(sorted({heavy} & set(sys.modules)))"
    assert python("import sys, quorin_libs; " + show) == "[]\n"
    printed = python("import sys; from quorin_libs.cli import main; main(['--help']); " + show)
    assert printed.endswith("\n[]\n")


# ---- in this process ----------------------------------------------------------------------------


def test_main_prints_the_table(folder, capsys):
    assert main(["t.csv"]) == 0
    assert capsys.readouterr() == (SMALL_TABLE, "")


def test_main_takes_the_arguments_of_the_process(folder, capsys, monkeypatch):
    monkeypatch.setattr(sys, "argv", ["quorin-profile", "t.csv"])
    assert main() == 0
    assert capsys.readouterr().out == SMALL_TABLE


def test_json(folder, capsys):
    assert main(["--json", "t.csv"]) == 0
    printed = capsys.readouterr()
    document = json.loads(printed.out)
    assert printed.err == ""
    assert [column["name"] for column in document["columns"]] == ["id", "depth", "site"]
    assert document["columns"][1]["new_markers"] == ["*"]
    assert document["columns"][1]["missing_share"] == 2 / 3


def test_standard_input(capsys, monkeypatch):
    monkeypatch.setattr(sys, "stdin", io.TextIOWrapper(io.BytesIO(SMALL)))
    assert main(["-"]) == 0
    assert capsys.readouterr().out == SMALL_TABLE.replace("t.csv", "stream")


@pytest.mark.parametrize(
    "data, arguments, row",
    [
        (b"a:b\n1:2\n2:3\n", ["--delimiter", "colon"], "a int_str 0 0% 2 unique"),
        (b"a:b\n1:2\n2:3\n", ["--delimiter=:"], "a int_str 0 0% 2 unique"),
        (b"a\tb\n1\t2\n2\t3\n", ["--delimiter", "tab"], "a int_str 0 0% 2 unique"),
        ("é\n1\n2\n".encode("latin-1"), ["--encoding", "latin-1"], "é int_str 0 0% 2 unique"),
        (b"a\nNA\n?\nx\n", ["--markers", "NA"], 'a char_str "NA" 1 33.3% 2 unique'),
        (b"a\nNA\n?\nx\n", ["--markers", "?,NA"], 'a char_str "?" "NA" 2 66.7% 1 constant'),
        (b"a,b\nx,1\n,2\ny,3\n", ["--markers", ""], 'a char_str "" 1 33.3% 2 unique'),
        (b"a,b\nx,1\n,2\ny,3\n", ["--markers", "NA,"], 'a char_str "" 1 33.3% 2 unique'),
        (b"a;b\nx;1\ny,z;2\n", ["--markers", '"y,z"'], 'a char_str "y,z" 1 50.0% 1 constant'),
        (b"a,b\nx,1\n-,2\n", ["--markers", "-"], 'a char_str "-" 1 50.0% 1 constant'),
        (b"a,b\nx,1\n-,2\n", ["--markers=-,?"], 'a char_str "-" 1 50.0% 1 constant'),
    ],
)
def test_options(tmp_path, capsys, data, arguments, row):
    path = tmp_path / "o.csv"
    path.write_bytes(data)
    assert main([str(path)] + arguments) == 0
    printed = capsys.readouterr()
    assert printed.err == ""
    assert printed.out.splitlines()[4].split() == row.split()


@pytest.mark.parametrize(
    "data, message",
    [
        (b"", "x.csv: the input is empty"),
        (b"\n\n", "x.csv: no column names: there are only blank lines"),
        (
            b"a;b\n1;2\n3;4;5\n",
            "x.csv: line 3: 3 cells where the header has 2 (delimiter semicolon, detected)",
        ),
        (b"a,a\n1,2\n", "x.csv: line 1: columns 1 and 2 have the same name 'a'"),
        (
            b"a\n\xff\n",
            "x.csv: line 2: byte 0xFF is not utf-8 text; name the encoding with --encoding",
        ),
        (
            b'a,b\n"1,2\n',
            "x.csv: line 2: the record that starts here opens a quote and never closes it",
        ),
        (
            b"a\n\0\n",
            "x.csv: line 2: a NUL character; this is not a text table, or its encoding is not "
            "utf-8",
        ),
    ],
)
def test_bad_input(folder, capsys, data, message):
    (folder / "x.csv").write_bytes(data)
    assert main(["x.csv"]) == 2
    assert capsys.readouterr() == ("", f"quorin-profile: {message}\n")


def test_directory(folder, capsys):
    (folder / "d").mkdir()
    assert main(["d"]) == 2
    assert capsys.readouterr() == ("", "quorin-profile: d: a directory, not a file\n")


def test_odd_file_names_stay_on_one_line(capsys):
    assert main(["a\nb\udcff.csv"]) == 2
    assert capsys.readouterr().err == "quorin-profile: a\\nb\\udcff.csv: no such file\n"


def test_header_only_is_profiled_and_said(folder, capsys):
    (folder / "x.csv").write_bytes(b"a,b\n")
    assert main(["x.csv"]) == 0
    printed = capsys.readouterr()
    assert printed.err == ("quorin-profile: x.csv: note: there is a header and no row below it\n")
    assert printed.out.splitlines()[0] == "x.csv: 0 rows, 2 columns, delimiter comma"
    assert printed.out.splitlines()[4].split() == ["a", "missing", "0", "0"]


@pytest.mark.parametrize(
    "arguments, message",
    [
        ([], "the following arguments are required: FILE"),
        (["t.csv", "--nope"], "unrecognized arguments: --nope"),
        (
            ["t.csv", "--delimiter", "ab"],
            "argument --delimiter: a delimiter is one character other than a quote or a line end, "
            "or one of the names comma, semicolon, tab, bar, pipe, space, colon; got 'ab'",
        ),
        (["t.csv", "--markers", "a\nb"], "argument --markers: 'a\\nb' is more than one line"),
        (["t.csv", "--markers", '"a'], "argument --markers: '\"a': unexpected end of data"),
    ],
)
def test_wrong_usage(folder, capsys, arguments, message):
    assert main(arguments) == 2
    expected = f"quorin-profile: {message} (see quorin-profile --help)\n"
    assert capsys.readouterr() == ("", expected)


def test_unknown_encoding(folder, capsys):
    assert main(["t.csv", "--encoding", "utf-9"]) == 2
    expected = "quorin-profile: t.csv: 'utf-9' is not a known text encoding\n"
    assert capsys.readouterr() == ("", expected)


def test_help_and_version(capsys):
    assert main(["--help"]) == 0
    printed = capsys.readouterr().out
    assert printed.startswith("usage: quorin-profile ")
    for option in ("--delimiter", "--encoding", "--markers", "--json", "--version"):
        assert f"\n  {option}" in printed
    assert main(["--version"]) == 0
    assert capsys.readouterr().out == f"quorin-profile {quorin_libs.__version__}\n"


def test_version_is_the_declared_one():
    if not any(list(Path(entry).glob("quorin_libs-*.dist-info")) for entry in sys.path):
        pytest.skip("the package is on the path without being installed")
    declared = re.search(r'^version = "(.+)"$', (ROOT / "pyproject.toml").read_text(), re.MULTILINE)
    assert quorin_libs.__version__ == declared.group(1)


@pytest.mark.parametrize("look_up", ["_installed_version", "_version_on_path"])
def test_version_comes_from_the_first_metadata_on_the_path(tmp_path, monkeypatch, look_up):
    others = [entry for entry in sys.path if not list(Path(entry).glob("quorin_libs-*.dist-info"))]
    monkeypatch.setattr(sys, "path", others)
    assert getattr(quorin_libs, look_up)() == "0+unknown"
    for version in ("4.5.6", "1.2.3"):
        folder = tmp_path / version
        (folder / f"quorin_libs-{version}.dist-info").mkdir(parents=True)
        (folder / f"quorin_libs-{version}.dist-info" / "METADATA").write_text(
            f"Metadata-Version: 2.1\nName: quorin_libs\nVersion: {version}\n"
        )
    monkeypatch.setattr(sys, "path", [str(tmp_path / "4.5.6"), str(folder), *others])
    assert getattr(quorin_libs, look_up)() == "4.5.6"


class Terminal(io.StringIO):
    def isatty(self):
        return True


def test_progress_goes_to_a_terminal_and_is_wiped(folder, capsys, monkeypatch):
    terminal = Terminal()
    monkeypatch.setattr(cli._Progress, "PATIENCE", 0.0)
    monkeypatch.setattr(sys, "stderr", terminal)
    assert main(["t.csv"]) == 0
    shown = terminal.getvalue()
    steps = [f"\rquorin-profile: {done} of 3 columns" for done in range(4)]
    assert shown == "".join(steps) + "\r" + " " * (len(steps[0]) - 1) + "\r"
    assert capsys.readouterr().out == SMALL_TABLE


def test_reading_shows_how_far_it_is(folder, monkeypatch):
    terminal = Terminal()
    monkeypatch.setattr(cli._Progress, "PATIENCE", 0.0)
    monkeypatch.setattr(sys, "stderr", terminal)
    (folder / "long.csv").write_bytes(b"a\n" + b"1\n" * 999)
    assert main(["long.csv"]) == 0
    assert terminal.getvalue().startswith("\rquorin-profile: reading, 50%\r")


def test_first_line_may_be_a_row(folder, capsys):
    (folder / "rows.csv").write_bytes(b"1,x\n2,y\n")
    assert main(["rows.csv", "--no-header", "--json"]) == 0
    printed = capsys.readouterr()
    document = json.loads(printed.out)
    assert [column["name"] for column in document["columns"]] == ["column 1", "column 2"]
    assert document["rows"] == 2
    assert printed.err == ""


def test_too_little_memory_is_told_in_one_line(folder, capsys, monkeypatch):
    def fail(*args, **kwargs):
        raise MemoryError

    monkeypatch.setattr("quorin_libs.reading.read_table", fail)
    assert main(["t.csv"]) == 1
    message = "quorin-profile: the table does not fit in memory\n"
    assert capsys.readouterr() == ("", message)


def test_no_progress_for_quick_work_or_without_a_terminal(folder, capsys, monkeypatch):
    terminal = Terminal()
    with monkeypatch.context() as patch:
        patch.setattr(time, "monotonic", lambda: 7.0)
        patch.setattr(sys, "stderr", terminal)
        assert main(["t.csv"]) == 0
    assert terminal.getvalue() == ""
    monkeypatch.setattr(cli._Progress, "PATIENCE", 0.0)
    assert main(["t.csv"]) == 0
    assert capsys.readouterr().err == ""


# ---- the documentation --------------------------------------------------------------------------


def fenced_blocks(language):
    text = (ROOT / "README.md").read_text(encoding="utf-8")
    return re.findall(rf"^```{language}\n(.*?)^```$", text, re.DOTALL | re.MULTILINE)


def test_readme_shows_the_example_as_it_is_printed(capsys, monkeypatch):
    monkeypatch.chdir(ROOT)
    assert main(["examples/elements.csv"]) == 0
    printed = capsys.readouterr()
    assert printed.err == ""
    assert printed.out in fenced_blocks("text")


def test_readme_program_prints_what_it_says(capsys, monkeypatch):
    monkeypatch.chdir(ROOT)
    (program,) = fenced_blocks("python")
    exec(compile(program, "README.md", "exec"), {})
    assert capsys.readouterr().out in fenced_blocks("text")


def test_examples_in_the_documentation(folder):
    for module in (cli, quorin_libs):
        result = doctest.testmod(module)
        assert result.attempted > 0
        assert result.failed == 0


def test_package_names():
    for name in quorin_libs.__all__:
        assert getattr(quorin_libs, name) is not None
        assert name in dir(quorin_libs)
    with pytest.raises(AttributeError, match="has no attribute 'nothing'"):
        quorin_libs.nothing  # noqa: B018
