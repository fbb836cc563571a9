#!/usr/bin/env python3
"""demo_payload.py gather FOLDER: gathers the payload of the demo from files of installed packages, several thousand of
them, and adds what installers stumble over: names in many scripts, a path of more than 260 characters, read-only files,
an empty file, an empty folder. The files that the sample installer configures are made of real ones of their kind, with
the few entries of our imaginary product put between their lines.

demo_payload.py manifest FOLDER: writes the payload's manifest.json, with the digests of all files in it."""

import glob
import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree

LEAST_FILES = 3000
MOST_BYTES_PER_FILE = 2_000_000
# where from, called what in the payload, at most how many files
SOURCES = [
    ("/usr/share/cmake-*", "cmake", 1500),
    ("/usr/share/perl/*", "perl", 900),
    ("/usr/share/zoneinfo", "zoneinfo", 500),
    ("/usr/share/doc", "doc", 1000),
    ("/usr/share/mingw-w64/include", "include", 1500),
    ("/usr/src/googletest", "googletest", 300),
]
MOST_FILES = 4000
CONFIGURED = ["settings.ini", "start.env", "app.properties", "server.xml"]  # what is wrong with them shows first

# what Windows does not take as a name
FORBIDDEN = re.compile(r'[<>:"|?*\\\x00-\x1f]|[. ]$|^(con|prn|aux|nul|com\d|lpt\d)(\.|$)', re.IGNORECASE)


def is_name_for_windows(name):
    try:
        name.encode("utf-8")
    except UnicodeEncodeError:
        return False
    return not FORBIDDEN.search(name)


def copy_file(source, destination):
    destination.parent.mkdir(parents=True, exist_ok=True)
    shutil.copyfile(source, destination)
    destination.chmod(0o644)
    times = os.stat(source)
    os.utime(destination, (times.st_atime, times.st_mtime))


def gather_tree(root, target, most):
    count = 0
    for folder, folders, files in os.walk(root):
        folders.sort()
        taken = set()  # Windows does not tell "A" from "a"
        for name in list(folders):
            if is_name_for_windows(name) and name.lower() not in taken:
                taken.add(name.lower())
            else:
                folders.remove(name)
        for name in sorted(files):
            source = os.path.join(folder, name)
            if count >= most:
                return count
            if not is_name_for_windows(name) or name.lower() in taken or not os.path.isfile(source):
                continue
            if not os.access(source, os.R_OK) or os.path.getsize(source) > MOST_BYTES_PER_FILE:
                continue
            taken.add(name.lower())
            copy_file(source, target / os.path.relpath(source, root))
            count += 1
    return count


def gather(target):
    count = 0
    for pattern, name, most in SOURCES:
        for root in sorted(path for path in glob.glob(pattern) if not os.path.islink(path)):
            count += gather_tree(root, target / name, min(most, MOST_FILES - count))
    if count < LEAST_FILES:
        sys.exit(f"only {count} files were found in {', '.join(pattern for pattern, _, _ in SOURCES)}")


def add_stumbling_blocks(target):
    names = ["Größe & Maß.txt", "naïve café.txt", "Ελληνικά.txt", "Русский текст.txt", "日本語の文書.txt", "한국어.txt",
             "עברית.txt", "smile 😀.txt", "percent %PATH% ^ & (1).txt", "it's [one];, two!.txt", "e\u0301 decomposed.txt"]
    samples = sorted(path for path in target.glob("*/**/*") if path.is_file())[:200]
    for folder in ["Sprachen – 言語", "Sprachen – 言語/Вложенная папка"]:
        for number, name in enumerate(names):
            copy_file(samples[number * 7], target / folder / name)

    deep = pathlib.Path(*(f"a folder whose name is rather long, level {level} of six" for level in range(1, 7)))
    assert len(str(deep)) > 260
    copy_file(samples[0], target / deep / "deep file.txt")

    copy_file(samples[1], target / "read-only" / "read-only.txt")
    (target / "read-only" / "read-only.txt").chmod(0o444)
    (target / "empty").mkdir()
    (target / "empty" / "empty.txt").touch()
    (target / "empty" / "folder").mkdir()


def read_lines(paths):
    """All lines of the files, without their ends."""
    return [line for path in paths for line in pathlib.Path(path).read_bytes().decode("utf-8", "surrogateescape").splitlines()]


def write_lines(path, lines):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes("".join(line + "\n" for line in lines).encode("utf-8", "surrogateescape"))


def first_files(*patterns, most):
    found = []
    for pattern in patterns:
        found += sorted(path for path in glob.glob(pattern, recursive=True)
                        if os.path.isfile(path) and os.access(path, os.R_OK) and path not in found)
    if not found:
        sys.exit(f"no file like {' or '.join(patterns)} was found")
    return found[:most]


def is_plain_assignment(line):
    """Whether a shell only sets a variable there, so that the demo may source it."""
    return re.fullmatch(r"""[A-Z][A-Z0-9_]*=("[^"$`\\]*"|'[^']*'|[A-Za-z0-9._/:+@%-]*)""", line) is not None


def add_configured_files(target):
    ini = first_files("/usr/share/applications/*.desktop", "/usr/share/wine/applications/*.desktop",
                      "/usr/share/python3/debian_defaults", "/usr/share/doc/**/*.ini", most=3)
    more_ini = first_files("/usr/share/wine/wine.inf", "/etc/*/*.ini", *ini, most=1)
    write_lines(target / "settings.ini", [
        "; Settings of the demo", "", *read_lines(ini), "[Paths]", "; searched from left to right",
        "Search=C:\\Tools;D:\\Büro", "Search order=fixed", "# the newest first", "Documents=D:\\Archive", "", *read_lines(more_ini)])

    environment = first_files("/usr/lib/os-release", "/etc/default/*", "/etc/environment", most=20)
    write_lines(target / "start.env", [
        "# Environment of the demo", "APP_HOME=nowhere", "export APP_HOME",
        *(line for line in read_lines(environment) if is_plain_assignment(line) or line.startswith("#") or not line),
        "APP_MODULES=core", "export APP_MODULES", "APP_LANGUAGES=en,fr", "export APP_LANGUAGES"])

    properties = first_files("/etc/**/*.properties", "/usr/share/**/*.properties", "/usr/lib/os-release",
                             "/etc/debconf.conf", most=4)
    write_lines(target / "app.properties", [
        "# Properties of the demo", "! Both marks start a comment", *read_lines(properties[:2]), "install.dir = to be \\",
        "    written by setup", "title=Größe\\: 1", *read_lines(properties[2:])])

    templates = [path for path in first_files("/usr/share/cmake-*/Modules/*.in", "/usr/share/doc/flex/examples/**/*.in", most=60)
                 if "@CVF_VERSION@" in "\n".join(read_lines([path])) or "@prefix@" in "\n".join(read_lines([path]))]
    for path in templates:
        lines = [line.replace("@CVF_VERSION@", "@VERSION@") for line in read_lines([path])]
        write_lines(target / "templates" / os.path.basename(path), [*lines, "# installed in @prefix@, prefix = @prefix@"])
    if not templates:
        sys.exit("no templates were found")
    (target / "templates" / os.path.basename(templates[0])).chmod(0o444)


def add_server_xml(target):
    """A server's configuration, with all that the machine's font configuration holds in the middle of it."""
    fonts = []
    for path in first_files("/usr/share/fontconfig/conf.avail/*.conf", most=100):
        root = xml.etree.ElementTree.parse(path).getroot()
        if all("{" not in element.tag and not any("{" in name for name in element.attrib) for element in root.iter()):
            fonts += [xml.etree.ElementTree.tostring(child, "unicode").strip() for child in root]
    write_lines(target / "server.xml", [
        "<?xml version='1.0' encoding='UTF-8'?>", "<!-- Server of the demo: \"Gr\u00f6\u00dfe & Ma\u00df\" -->",
        "<Server shutdown='SHUT&amp;DOWN' port='8005'>", "  <!-- filled in by setup -->",
        "  <Service name='orchard'>", "    <Connector protocol='HTTP/1.1' port='8080' home='nowhere'/>",
        "    <Sample>delete me</Sample>", "    <Note>5 &lt; 6 &#x20AC;</Note>", "  </Service>",
        "  <Fonts>", *fonts, "  </Fonts>", "</Server>"])


def write_manifest(payload):
    """Names, versions and codes are those of the package, as msiinfo reads them."""
    package = "server/orchard.msi"
    table = subprocess.run(["msiinfo", "export", payload / package, "Property"], check=True, capture_output=True, text=True)
    properties = dict(line.split("\t") for line in table.stdout.splitlines())
    names = sorted(str(path.relative_to(payload)) for path in payload.rglob("*") if path.is_file())
    names = [name for name in names if name != "manifest.json"]
    names.sort(key=lambda name: name not in CONFIGURED)
    manifest = {
        "product": "Orchard Server",
        "publisher": properties["Manufacturer"],
        "version": properties["ProductVersion"],
        "upgradeCode": properties["UpgradeCode"],
        "package": {"file": package, "productCode": properties["ProductCode"], "options": ["SERVERPORT", "SITENAME", "SITESFILE"]},
        "files": {name: hashlib.sha256((payload / name).read_bytes()).hexdigest() for name in names},
    }
    (payload / "manifest.json").write_text(json.dumps(manifest, indent=4, ensure_ascii=False), encoding="utf-8")


def main():
    command, target = sys.argv[1], pathlib.Path(sys.argv[2])
    if command == "manifest":
        write_manifest(target)
        return
    gather(target)
    add_stumbling_blocks(target)
    add_configured_files(target)
    add_server_xml(target)
    for name in CONFIGURED:
        os.utime(target / name, (1_700_000_000, 1_700_000_000))
    (target / "settings.ini").chmod(0o444)


if __name__ == "__main__":
    main()
