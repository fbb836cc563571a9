#!/usr/bin/env python3
"""coverage_report.py [--leave-out=SOURCE]... REASONS.md LEAST_LINES LEAST_BRANCHES GCOV FOLDER [GCOV FOLDER]...: the line and branch
coverage of the library.

Each FOLDER holds the counted objects of one build, GCOV is the tool of its compiler. Prints the figures and what is missing. Fails below
the least percentages, and where a source misses more branches than the table in REASONS.md gives reasons for.

What counts:
- Each line with code in KelInsInfra/, without the generated scanner and parser, and without lines of nothing but a closing brace, where
  the compiler puts what it cleans up, or the head of an empty "catch". A line is covered when one of the builds runs it.
- Each way out of a condition. A call that may throw is none: neither its way on nor its way out counts. Nor do ways that only an
  exception takes: those in blocks that gcov calls exceptional and that never ran, and whether an exception fits a "catch".
- Not what the compiler adds by itself (guards of static variables, loops over the elements of an array, null tests of "delete"):
  branches in a statement without any of the words and operators of CONDITIONAL. Their number is printed.
- Instances of one template or inline function are merged, branch by branch, and so are the builds; where their numbers of branches
  differ, the one that is covered best stands for the line.
"""

import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
GENERATED = ["json/Scanner.cpp", "json/Parser.cpp", "json/internal/Parser.h"]
CONDITIONAL = {"if", "else", "for", "while", "do", "switch", "case", "default", "&&", "||", "?"}
left_out = []  # sources of which this machine can run nothing
TOKEN = re.compile(
    r'(?P<skip>//[^\n]*|/\*.*?\*/|R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\')'
    r"|(?P<token>\w+|&&|\|\||\S)", re.DOTALL)


def conditional_lines(text):
    """The lines of all statements that hold a conditional word or operator. A statement ends at a brace, and at a semicolon
    outside parentheses: the head of a "for" stays whole, and so does a condition on several lines."""
    found, lines, conditional, depths = set(), set(), False, [0]
    for match in TOKEN.finditer(text):
        token = match["token"]
        if token is None:
            continue
        lines.add(text.count("\n", 0, match.start()) + 1)
        conditional = conditional or token in CONDITIONAL
        depths[-1] += (token == "(") - (token == ")")
        if token in "{}" or (token == ";" and depths[-1] <= 0):
            if token == "{":
                depths.append(0)
            elif token == "}" and len(depths) > 1:
                depths.pop()
            if conditional:
                found |= lines
            lines, conditional = set(), False
    return found


def source_of(name):
    """Path below KelInsInfra/, or nothing for what is not ours. The objects for Windows name sources from the project's folder on."""
    path = (ROOT / name).resolve()
    library = ROOT / "KelInsInfra"
    relative = path.relative_to(library).as_posix() if path.is_relative_to(library) else None
    return None if relative in GENERATED or relative in left_out else relative


def merged(left, right):
    if len(left) == len(right):
        return [b if a is None else a if b is None else a or b for a, b in zip(left, right)]
    return max(left, right, key=lambda ways: (share_taken(ways), len(ways)))


def share_taken(ways):
    counted = [way for way in ways if way is not None]
    return sum(counted) / len(counted) if counted else 1


class Line:
    """What one build tells of a line."""

    def __init__(self):
        self.runs = False
        self.ways = {}  # by function, or by place of all instances of a template: [taken, None for what does not count]

    def add(self, function, ways):
        self.ways[function] = merged(self.ways[function], ways) if function in self.ways else ways

    def all_ways(self):
        return [way for function in sorted(self.ways) for way in self.ways[function]]


SOURCE = re.compile(r" +-: +0:Source:(.*)")
BLOCK = re.compile(r" *(\S+): *\d+-block +\d+$")
LINE = re.compile(r" *([^ :]+): *(\d+):")


def exceptional_branches(text):
    """{(source, line, function): [whether the branch is in a block that never ran and that only an exception reaches, ...]}, from
    gcov's annotated sources. The function's name is given where several begin in one place, such as the instances of a template."""
    found = {}
    source = function = branches = None
    separated = exceptional = False
    for row in text.splitlines():
        if match := SOURCE.match(row):
            source, function = source_of(match[1]), None
        elif source is None:
            continue
        elif row.startswith("------------------"):
            function = None
        elif separated and row.endswith(":") and not LINE.match(row):
            function = row[:-1]
        elif match := BLOCK.match(row):
            exceptional = match[1] == "$$$$$"
        elif match := LINE.match(row):
            exceptional = match[1] == "====="
            branches = found.setdefault((source, int(match[2]), function), [])
        elif row.startswith("branch"):
            branches.append(exceptional)
        separated = row.startswith("------------------")
    return found


def ways_of(branches, exceptional):
    """Whether each way out of each condition was taken; nothing for the ways that do not count. A call's pair of ways, one of them
    a throw, is no condition."""
    ways = []
    for before, branch, never in zip([None, *branches], branches, exceptional):
        if not branch["throw"]:
            ways.append(None if never else branch["count"] > 0)
        elif before and before["fallthrough"]:
            ways.pop()
    return ways


def read_build(gcov, folder):
    """{source: {line: Line}}"""
    sources = {}

    def ask(note, *form):
        command = [gcov, "--stdout", "--branch-probabilities", "--branch-counts", *form, note]
        return subprocess.run(command, check=True, capture_output=True, text=True, errors="replace").stdout

    for note in sorted(str(path) for path in pathlib.Path(folder).rglob("*.gcno") if "_counted.dir" in str(path)):
        exceptional = exceptional_branches(ask(note, "--all-blocks"))
        for file in json.loads(ask(note, "--json-format"))["files"]:
            source = source_of(file["file"])
            if source is None:
                continue
            begins = {function["name"]: function["start_line"] for function in file["functions"]}
            for data in file["lines"]:
                number, function = data["line_number"], data.get("function_name")
                line = sources.setdefault(source, {}).setdefault(number, Line())
                line.runs = line.runs or data["count"] > 0
                never = exceptional.get((source, number, function), exceptional.get((source, number, None), []))
                if len(never) != len(data["branches"]): # it leaves out some templates: then all count
                    never = [False] * len(data["branches"])
                line.add(begins.get(function, 0), ways_of(data["branches"], never))
    return sources


def merge_builds(builds):
    """{source: {line: (runs, [taken, ...])}}"""
    sources = {}
    for build in builds:
        for source, lines in build.items():
            whole = sources.setdefault(source, {})
            for number, line in lines.items():
                runs, ways = whole.get(number, (False, line.all_ways()))
                whole[number] = (runs or line.runs, merged(ways, line.all_ways()))
    return sources


def reasons(document):
    """{source: branches for which the document's table gives reasons}"""
    rows = re.findall(r"^\| `([\w/.]+)` \| (\d+) \|", pathlib.Path(document).read_text(), re.MULTILINE)
    return {source: sum(int(count) for name, count in rows if name == source) for source, _ in rows}


def share(part, whole):
    return 100 * part / whole if whole else 0


def main(document, least_lines, least_branches, *tools_and_folders):
    sources = merge_builds(read_build(*pair) for pair in zip(tools_and_folders[::2], tools_and_folders[1::2]))
    known = reasons(document)
    line_count = lines_run = branch_count = branches_taken = added = 0
    failed = False
    for source in sorted(sources):
        text = (ROOT / "KelInsInfra" / source).read_text()
        rows = text.splitlines()
        conditional = conditional_lines(text)
        missing = 0
        for number, (runs, ways) in sorted(sources[source].items()):
            row = rows[number - 1].strip()
            taken = [way for way in ways if way is not None]
            empty_handler = row.startswith("} catch") and rows[number].strip() == "}"
            if row in ("}", "};") or empty_handler:
                added += len(taken)
                continue
            line_count += 1
            lines_run += runs
            if not runs:
                print(f"{source}:{number}: never run: {row}")
            if number not in conditional:
                added += len(taken)
                continue
            branch_count += len(taken)
            branches_taken += sum(taken)
            missing += len(taken) - sum(taken)
            if not all(taken):
                print(f"{source}:{number}: {len(taken) - sum(taken)} of {len(taken)} branches: {row}")
        if missing > known.get(source, 0):
            print(f"{source}: {missing} branches missing, {document} gives reasons for {known.get(source, 0)}")
            failed = True
    line_share, branch_share = share(lines_run, line_count), share(branches_taken, branch_count)
    print(f"lines: {lines_run} of {line_count}, {line_share:.2f} %; branches: {branches_taken} of {branch_count}, {branch_share:.2f} %; "
          f"{added} that the compiler added do not count")
    failed = failed or line_share < float(least_lines) or branch_share < float(least_branches)
    print("coverage is too low" if failed else "coverage is as it should be")
    return failed


if __name__ == "__main__":
    options = [argument for argument in sys.argv[1:] if argument.startswith("--leave-out=")]
    left_out = [option.partition("=")[2] for option in options]
    for name in left_out:
        print(f"{name}: left out")
    sys.exit(main(*[argument for argument in sys.argv[1:] if argument not in options]))
