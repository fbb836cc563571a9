#!/usr/bin/env python3
"""plain_comments.py HEADER: the header as Doxygen is to read it.

Comments in our headers are plain text: "<path>", "\\\\server\\share" and "&amp;" mean just that. Here all that Doxygen
would take for markup is escaped, but for its @commands, `code` and blocks between @code and @endcode. An overload
without a comment of its own, right behind the one that has it, gets a reference to it.
"""

import re
import sys

NAME = re.compile(r"(operator\S+?|~?\w+)\(")


def escape(text):
    parts = text.split("`")
    for i in range(0, len(parts), 2):  # what stands between backquotes is code
        part = re.sub(r'([\\<>&#%$"])', r"\\\1", parts[i])
        parts[i] = re.sub(r"(?<!\w)::", r"\\::", part)  # a function of the system, not ours
    text = "`".join(parts)
    text = re.sub(r"(@throws +[\w:]+),", r"\1", text)
    return re.sub(r"@throws +(?![\w:]+(_error|Exception|failure|_alloc|_argument|_of_range)\b)", "@throws std::runtime_error ", text)


in_code = False
documented = None  # name of the last declaration with a comment, while nothing else came
commented = False
open_declaration = False
for line in open(sys.argv[1], encoding="utf-8"):
    code, mark, comment = line.rstrip("\n").partition("///")
    is_comment_line = bool(mark) and not code.strip()
    if mark:
        if "@code" in comment:
            in_code = True
        if not in_code:
            comment = ("<" + escape(comment[1:])) if comment.startswith("<") else escape(comment)
        if "@endcode" in comment:
            in_code = False
    if is_comment_line:
        commented = True
        documented = None
    elif not code.strip():
        documented, commented, open_declaration = None, False, False
    elif not open_declaration:
        found = NAME.search(code.replace("KELINS_API ", ""))
        name = found.group(1) if found else None
        if commented or mark:
            documented = name
        elif name and name == documented:
            print(code[: len(code) - len(code.lstrip())] + "/// As the one before.")
        else:
            documented = None
        commented = False
    if not is_comment_line and code.strip():
        open_declaration = not code.rstrip().endswith((";", "{", "}", ":"))
    print(code + mark + comment)
