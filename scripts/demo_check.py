#!/usr/bin/env python3
"""Independent answers about what the sample installer has to make of a payload.

  demo_check.py expect PAYLOAD EXPECTED TARGET_NAME   EXPECTED is a copy of PAYLOAD: writes into it the bytes that the
                                                      configured files must have once installed as TARGET_NAME (Windows)
  demo_check.py ini BEFORE AFTER TARGET_NAME          reads two INI files with Python's own reader and compares them
  demo_check.py properties BEFORE AFTER TARGET_NAME   the same for properties files, with a small reader of their format
  demo_check.py xml BEFORE AFTER TARGET_NAME          the same for server.xml, with Python's own reader
  demo_check.py server FILES FOLDER NAME PORT SITE    the files of the package, in FOLDER, which Windows calls NAME
  demo_check.py nsis FILES FOLDER NAME PORT SITE      the same for the NSIS installer
  demo_check.py registry EXPORT KEY NAME=VALUE...     the key in the export (UTF-8) has exactly these values
  demo_check.py uuid TEXT                             is a random UUID in small letters
  demo_check.py packed GUID                           prints a GUID as Windows Installer's registry keys spell it
"""

import configparser
import pathlib
import re
import sys
import uuid
import xml.etree.ElementTree as ElementTree

VERSION = "1.0"
NOTE = "Written by setup: do not edit!"


def lines_of(path):
    lines = path.read_bytes().split(b"\n")
    if lines[-1] == b"":
        lines.pop()
    return [line[:-1] if line.endswith(b"\r") else line for line in lines]


def replace_line(lines, old, *new):
    """The one line that is there before, by those that must be there afterwards."""
    old = old.encode()
    assert lines.count(old) == 1, f"{old} stands {lines.count(old)} times in the payload"
    at = lines.index(old)
    return lines[:at] + [line.encode() for line in new] + lines[at + 1:]


def write_golden(path, data):
    path.chmod(0o644)
    path.unlink()
    path.write_bytes(data)


def expect(payload, expected, target):
    slashed = target.replace("\\", "/")
    crlf = b"\r\n"

    lines = lines_of(payload / "settings.ini")
    lines = replace_line(lines, "Search=C:\\Tools;D:\\Büro", f"Search=C:\\Tools;D:\\Büro;{target}\\bin")
    lines = replace_line(lines, "Documents=D:\\Archive", f"Documents={target}\\docs;D:\\Archive")
    lines += [b"[Installation]", f"Directory={target}".encode(), f"Version={VERSION}".encode()]
    write_golden(expected / "settings.ini", b"".join(line + crlf for line in lines))

    lines = lines_of(payload / "start.env")
    quoted = "'" + slashed.replace("'", "'\\''") + "'"
    lines = replace_line(lines, "APP_HOME=nowhere", f"APP_HOME={quoted}")
    lines = replace_line(lines, "APP_MODULES=core", "APP_MODULES=core,documents")
    lines = replace_line(lines, "APP_LANGUAGES=en,fr", "APP_LANGUAGES=de,en,fr")
    lines += [f"APP_VERSION={VERSION}".encode(), b"export APP_VERSION"]
    write_golden(expected / "start.env", b"".join(line + crlf for line in lines))

    lines = lines_of(payload / "app.properties")
    escaped = target.replace("\\", "\\\\").replace(":", "\\:").replace("!", "\\!").replace("#", "\\#").replace("=", "\\=")
    lines = replace_line(lines, "install.dir = to be \\", f"install.dir={escaped}")
    lines = replace_line(lines, "    written by setup")
    lines.append(b"install\\ note=Written by setup\\: do not edit\\!")
    write_golden(expected / "app.properties", b"".join(line + crlf for line in lines))

    for template in sorted((payload / "templates").iterdir()):
        golden = [line.replace(b"@prefix@", slashed.encode()).replace(b"@VERSION@", VERSION.encode())
                  for line in lines_of(template)]
        assert golden != lines_of(template), f"{template} has nothing to replace"
        mode = template.stat().st_mode
        write_golden(expected / "templates" / template.name, crlf.join(golden))
        (expected / "templates" / template.name).chmod(mode)


def read_ini(path):
    reader = configparser.RawConfigParser(strict=False, allow_no_value=True, delimiters=("=",), default_section="\0none")
    reader.optionxform = str  # keys are told apart by case
    text = path.read_text(encoding="utf-8", errors="surrogateescape")
    # indented lines are keys of their own here, not continuations, as they are for Windows
    reader.read_string("\n".join(line.lstrip() for line in text.splitlines()))
    return {section: dict(reader.items(section)) for section in reader.sections()}


def check_ini(before, after, target):
    expected = read_ini(before)
    expected["Paths"]["Search"] += f";{target}\\bin"
    expected["Paths"]["Documents"] = f"{target}\\docs;" + expected["Paths"]["Documents"]
    expected["Installation"] = {"Directory": target, "Version": VERSION}
    actual = read_ini(after)
    assert actual == expected, difference(expected, actual)
    print(f"note: {len(actual)} sections, {sum(map(len, actual.values()))} keys")


def read_properties(path):
    """The format as java.util.Properties documents it, in UTF-8."""
    escapes = {"t": "\t", "n": "\n", "r": "\r", "f": "\f"}

    def unescape(text):
        return re.sub(r"\\(?:u([0-9a-fA-F]{4})|(.))",
                      lambda m: chr(int(m[1], 16)) if m[1] else escapes.get(m[2], m[2]), text)

    result = {}
    lines = iter(re.split(r"\r\n|\r|\n", path.read_text(encoding="utf-8", errors="surrogateescape")))
    for line in lines:
        line = line.lstrip(" \t\f")
        if not line or line[0] in "#!":
            continue
        while len(re.search(r"\\*$", line)[0]) % 2 == 1:
            line = line[:-1] + next(lines, "").lstrip(" \t\f")
        key, value = re.fullmatch(r"((?:\\.|[^=:\s\\])*)[ \t\f]*[=:]?[ \t\f]*(.*)", line, re.DOTALL).groups()
        result[unescape(key)] = unescape(value)
    return result


def check_properties(before, after, target):
    expected = read_properties(before)
    assert expected["install.dir"] == "to be written by setup", expected["install.dir"]
    expected["install.dir"] = target
    expected["install note"] = NOTE
    actual = read_properties(after)
    assert actual == expected, difference(expected, actual)
    print(f"note: {len(actual)} properties")


def difference(expected, actual):
    keys = [key for key in sorted(expected.keys() | actual.keys()) if expected.get(key) != actual.get(key)]
    return "\n".join(f"{key}: expected {expected.get(key)!r}, found {actual.get(key)!r}" for key in keys)


def read_xml(path):
    """The tree with its comments, and without the white space between its elements."""
    parser = ElementTree.XMLParser(target=ElementTree.TreeBuilder(insert_comments=True))
    root = ElementTree.parse(path, parser).getroot()
    for element in root.iter():
        element.text = element.text if element.text and element.text.strip() else None
        element.tail = element.tail if element.tail and element.tail.strip() else None
    return root


def facts_of(element):
    return element.tag, element.attrib, len(element), element.text, element.tail


def check_xml(before, after, target):
    expected = read_xml(before)
    service = expected.find("Service")
    service.find("Connector").set("home", target)
    for sample in service.findall("Sample"):
        service.remove(sample)
    ElementTree.SubElement(service, "Documents", path=target + "\\docs")
    actual = read_xml(after)
    pairs = list(zip(expected.iter(), actual.iter(), strict=True))
    for one, other in pairs:
        assert facts_of(one) == facts_of(other), \
            f"expected {ElementTree.tostring(one)}, found {ElementTree.tostring(other)}"


def check_server(files, folder, name, port, site, key="Search", value=None):
    """Every line end is CR LF afterwards; templates end without one."""
    lines = lines_of(files / "server.ini")
    lines = replace_line(lines, "Port=0", f"Port={port}")
    if key == "Search":
        lines = replace_line(lines, "Search=C:\\Orchard\\plugins", f"Search=C:\\Orchard\\plugins;{name}\\plugins")
    else:
        lines.append(f"{key}={value}".encode())
    expect_bytes(folder / "server.ini", b"".join(line + b"\r\n" for line in lines))
    page = b"\r\n".join(lines_of(files / "welcome.html"))
    page = page.replace(b"@SITENAME@", site.encode()).replace(b"@SERVERPORT@", port.encode())
    expect_bytes(folder / "welcome.html", page)


def expect_bytes(path, expected):
    actual = path.read_bytes()
    assert actual == expected, f"{path}: expected {expected!r}, found {actual!r}"


def registry_value(text):
    """A text without its quotes, a number as it stands; other types by their bytes."""
    if text.startswith('"'):
        return re.sub(r"\\(.)", r"\1", text[1:-1])
    if text.startswith("hex(1):"):  # a text with more than one NUL at its end
        return bytes.fromhex(text[7:].replace(",", "")).decode("utf-16-le").rstrip("\0")
    return text


def check_registry(export, key, *expected):
    text = export.read_text(encoding="utf-8").replace("\\\n  ", "")  # long values are continued
    section = key.replace("HKLM", "HKEY_LOCAL_MACHINE")
    found = re.search(r"^\[(?:%s)\]\n(.*?)(?:\n\n|\Z)" % re.escape(section), text, re.MULTILINE | re.DOTALL | re.IGNORECASE)
    assert found, f"{section} is not in the export"
    entries = re.findall(r'^"((?:\\.|[^"\\])*)"=(.*)$', found[1], re.MULTILINE)
    actual = {registry_value(f'"{name}"'): registry_value(value) for name, value in entries}
    expected = dict(each.split("=", 1) for each in expected)
    assert actual == expected, difference(expected, actual)


def packed(guid):
    first, second, third, *rest = guid.strip("{}").split("-")
    digits = "".join(rest)
    return first[::-1] + second[::-1] + third[::-1] + "".join(digits[i + 1] + digits[i] for i in range(0, len(digits), 2))


def main():
    command, *arguments = sys.argv[1:]
    path = pathlib.Path
    if command == "packed":
        print(packed(arguments[0]))
    elif command == "uuid":
        parsed = uuid.UUID(arguments[0])
        assert (parsed.version, parsed.variant, str(parsed)) == (4, uuid.RFC_4122, arguments[0]), arguments[0]
    elif command == "registry":
        check_registry(path(arguments[0]), *arguments[1:])
    elif command == "server":
        files, folder, *rest = arguments
        check_server(path(files), path(folder), *rest)
    elif command == "nsis":
        files, folder, name, port, site = arguments
        check_server(path(files), path(folder), name, port, site, key="Home", value=name)
    else:
        first, second, target = arguments
        checks = {"expect": expect, "ini": check_ini, "properties": check_properties, "xml": check_xml}
        checks[command](path(first), path(second), target)


if __name__ == "__main__":
    main()
