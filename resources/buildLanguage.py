#!/usr/bin/env python3
"""Packs a translation for the program: checks the JSON that translators edit and writes it base64-encoded.

usage: buildLanguage.py LANGUAGE.json resource.json

A translation that fails a check is refused as a whole, with one line for every fault, and nothing is written.
"""

import base64
import json
import os
import re
import sys

# A language file with fewer entries is taken as broken by the program.
MIN_ENTRIES = 10

CONVERSION = re.compile(r"%(?:%|(?:\d+\$)?[-+ #0']*(?:\d+|\*)?(?:\.(?:\d+|\*)?)?(?:hh|ll|[hlLqjzt])?[a-zA-Z])")


def conversions(text):
    """The printf conversions of a text in their order, and a lone "%" for each percent sign that opens none."""
    found = [match for match in CONVERSION.findall(text) if match != "%%"]
    return found + ["%"] * CONVERSION.sub("", text).count("%")


def outerBlanks(text):
    """The blanks and line breaks before and after the words."""
    return text[: len(text) - len(text.lstrip())], text[len(text.rstrip()):]


def textFaults(text):
    """What makes a text unusable by itself."""
    if not isinstance(text, str):
        return ["is missing or not a string"]
    if not text.strip():
        return ["is empty"]
    if any(ord(char) < 0x20 and char not in "\t\n" or 0xD800 <= ord(char) <= 0xDFFF for char in text):
        return ["holds a character that can't be shown"]
    return []


def entryFaults(entry, seen):
    """What is wrong with one entry; `seen` collects the keys of the entries before it."""
    if not isinstance(entry, dict):
        return ["is not an object"]
    faults = [f'"{name}" {fault}' for name in ("Key", "Value") for fault in textFaults(entry.get(name))]
    faults += [f'unknown member "{name}"' for name in entry if name not in ("Key", "Value")]
    if faults:
        return faults

    key, value = entry["Key"], entry["Value"]
    if key in seen:
        faults.append("the key was there before")
    seen.add(key)
    if conversions(key) != conversions(value):
        faults.append("key and value differ in their conversions")
    if outerBlanks(key) != outerBlanks(value):
        faults.append("key and value differ in leading or trailing blanks")
    return [f"{fault}: {key!r}" for fault in faults]


def tableFaults(table):
    """Everything that is wrong with a parsed language file."""
    if not isinstance(table, list):
        return ["not an array"]
    seen = set()
    faults = [f"entry {number}: {fault}"
              for number, entry in enumerate(table, 1) for fault in entryFaults(entry, seen)]
    if len(table) < MIN_ENTRIES:
        faults.append(f"only {len(table)} entries, at least {MIN_ENTRIES} are needed")
    return faults


def uniqueMembers(pairs):
    """Refuses an object that names a member twice."""
    members = dict(pairs)
    if len(members) != len(pairs):
        raise ValueError("an object names a member twice")
    return members


def main(arguments):
    if len(arguments) != 2:
        sys.exit(__doc__.strip().splitlines()[2])
    source, packed = arguments
    try:
        with open(source, encoding="utf-8") as file:
            table = json.load(file, object_pairs_hook=uniqueMembers)
    except (OSError, ValueError, RecursionError) as error:
        sys.exit(f"{source}: {error}")

    faults = tableFaults(table)
    if faults:
        sys.exit("\n".join(f"{source}: {fault}" for fault in faults))

    text = json.dumps(table, ensure_ascii=False, separators=(",", ":"))
    os.makedirs(os.path.dirname(os.path.abspath(packed)), exist_ok=True)
    with open(packed, "wb") as file:
        file.write(base64.b64encode(text.encode("utf-8")))


if __name__ == "__main__":
    main(sys.argv[1:])
