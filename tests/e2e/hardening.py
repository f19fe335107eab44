"""What the built program is hardened with: told by the file itself, and by the commands that compiled its sources."""

import json
import os
import pathlib
import shlex

from packageMachine import TOP, run

# What a file shows, in words of readelf.
_MARKS = {
    "addresses that differ each run": r"\(FLAGS_1\) .* PIE\b",
    "tables that become read-only": "GNU_RELRO",
    "tables that are complete at the start": r"\(FLAGS\) +BIND_NOW",
    "a stack that is no program": r"GNU_STACK( +0x[0-9a-f]+){5} RW ",
    "a checked stack": "__stack_chk_fail@",
    "checked copies": r"__\w+_chk@",
}
# Of all options of a kind the last one counts; it has to be the first of these, whatever else the kind has.
_KINDS = (
    ("-D_FORTIFY_SOURCE=3", ("-D_FORTIFY_SOURCE", "-U_FORTIFY_SOURCE")),
    ("-fstack-protector-strong", ("-fstack-protector", "-fno-stack-protector")),
    ("-fPIE", ("-fPIE", "-fpie", "-fno-PIE", "-fno-pie", "-fPIC", "-fpic", "-fno-PIC", "-fno-pic")),
)


def assert_hardened(case, program):
    told = run("readelf", "--wide", "--file-header", "--program-headers", "--dynamic", "--dyn-syms", program,
               env={**os.environ, "LC_ALL": "C"})
    for what, mark in _MARKS.items():
        case.assertRegex(told, mark, what)


def _lacking(words):
    """Which options a compiler's command lacks."""
    for wanted, kind in _KINDS:
        chosen = [word for word in words if word.startswith(kind)]
        if chosen[-1:] != [wanted]:
            yield wanted


def assert_compiled_hardened(case, build):
    """Every source of the program: one function that checks its stack would mark the whole file."""
    commands = {pathlib.Path(each["file"]): shlex.split(each["command"])
                for each in json.loads((build / "compile_commands.json").read_text())}
    sources = [path for folder in ("src", "Logger") for path in (TOP / folder).rglob("*.cpp")]
    case.assertIn(TOP / "src/main.cpp", sources)
    for source in sources:
        case.assertEqual(list(_lacking(commands[source])), [], source)
