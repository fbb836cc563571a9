#!/usr/bin/env python3
"""coverage_report.py REASONS.md LEAST_LINES LEAST_BRANCHES GCOV FOLDER [GCOV FOLDER]...: the line and branch coverage of the library.

Each FOLDER holds the counted objects of one build, GCOV is the tool of its compiler. Prints the figures and what is missing. Fails below
the least percentages, and where a source misses more branches than the table in REASONS.md gives reasons for.

What counts:
- Each line with code in KelInsInfra/, without the generated scanner and parser; it is covered when one of the builds runs it.
- Each way out of a condition. A call that may throw is none: neither its way on nor its way out is counted.
- Not what the compiler adds by itself (guards of static variables, the clean-up of temporaries, null tests of "delete"): branches in a
  statement without any of the words and operators of CONDITIONAL. They are counted apart, and that number is printed.
- Instances of one template or inline function are merged, branch by branch; where the compiler gave them different numbers of
  branches, and where two builds disagree, the one that is covered best stands for the line.
"""

import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
GENERATED = ("json/Scanner.cpp", "json/Parser.cpp", "json/internal/Parser.h")
CONDITIONAL = {"if", "else", "for", "while", "do", "switch", "case", "default", "catch", "&&", "||", "?"}
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
    return None if relative in GENERATED else relative


def decisions(branches):
    """Whether each way out of each condition was taken; a call's pair of ways, one of them a throw, is no condition."""
    taken = []
    for before, branch in zip([None, *branches], branches):
        if not branch["throw"]:
            taken.append(branch["count"] > 0)
        elif before and before["fallthrough"]:
            taken.pop()
    return taken


def merged(left, right):
    if len(left) == len(right):
        return [a or b for a, b in zip(left, right)]
    return max(left, right, key=lambda taken: (sum(taken) / len(taken) if taken else 1, len(taken)))


def plain_name(function):
    """Without template arguments, so that the instances of one template meet."""
    previous = None
    while previous != function:
        previous, function = function, re.sub(r"<[^<>]*>|\[with [^\]]*\]", "", function)
    return function


def read_build(gcov, folder):
    """{source: {line: (runs, {function: [taken, ...]})}}"""
    sources = {}
    notes = sorted(str(path) for path in pathlib.Path(folder).rglob("*.gcno") if "_counted.dir" in str(path))
    command = [gcov, "--json-format", "--stdout", "--branch-probabilities", "--branch-counts", *notes]
    answer = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    for document in filter(None, answer.splitlines()):
        data = json.loads(document)
        for file in data["files"]:
            source = source_of(file["file"])
            if source is None:
                continue
            names = {function["name"]: plain_name(function["demangled_name"]) for function in file["functions"]}
            lines = sources.setdefault(source, {})
            for line in file["lines"]:
                runs, functions = lines.get(line["line_number"], (0, {}))
                name = names.get(line.get("function_name"), "")
                taken = decisions(line["branches"])
                functions[name] = merged(functions[name], taken) if name in functions else taken
                lines[line["line_number"]] = (runs + line["count"], functions)
    return sources


def merge_builds(builds):
    """{source: {line: (runs, [taken, ...])}}"""
    sources = {}
    for build in builds:
        for source, lines in build.items():
            whole = sources.setdefault(source, {})
            for number, (runs, functions) in lines.items():
                taken = [way for ways in functions.values() for way in ways]
                if number in whole:
                    runs, taken = runs + whole[number][0], merged(whole[number][1], taken)
                whole[number] = (runs, taken)
    return sources


def reasons(document):
    """{source: branches for which the document's table gives reasons}"""
    rows = re.findall(r"^\| `([\w/.]+)` \| (\d+) \|", pathlib.Path(document).read_text(), re.MULTILINE)
    return {source: sum(int(count) for name, count in rows if name == source) for source, _ in rows}


def main(document, least_lines, least_branches, *tools_and_folders):
    sources = merge_builds(read_build(*pair) for pair in zip(tools_and_folders[::2], tools_and_folders[1::2]))
    known = reasons(document)
    line_count = lines_run = branch_count = branches_taken = added = 0
    failed = False
    for source in sorted(sources):
        conditional = conditional_lines((ROOT / "KelInsInfra" / source).read_text())
        missing_lines, missing_branches, missing = [], [], 0
        for number, (runs, taken) in sorted(sources[source].items()):
            line_count += 1
            lines_run += runs > 0
            if runs == 0:
                missing_lines.append(str(number))
            if number not in conditional:
                added += len(taken)
                continue
            branch_count += len(taken)
            branches_taken += sum(taken)
            missing += len(taken) - sum(taken)
            if not all(taken):
                missing_branches.append(f"{number} ({len(taken) - sum(taken)} of {len(taken)})")
        if missing_lines:
            print(f"{source}: lines {', '.join(missing_lines)}")
        if missing_branches:
            print(f"{source}: branches at lines {', '.join(missing_branches)}")
        if missing > known.get(source, 0):
            print(f"{source}: {missing} branches missing, with reasons in {document} for {known.get(source, 0)}")
            failed = True
    line_share = 100 * lines_run / line_count
    branch_share = 100 * branches_taken / branch_count
    print(f"lines: {lines_run} of {line_count}, {line_share:.2f} %; branches: {branches_taken} of {branch_count}, {branch_share:.2f} %; "
          f"{added} branches that the compiler added are not counted")
    failed = failed or line_share < float(least_lines) or branch_share < float(least_branches)
    print("coverage is too low" if failed else "coverage is as it should be")
    return failed


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
