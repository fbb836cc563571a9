#!/usr/bin/env python3
"""snippets.py MARKDOWN PROGRAM: makes a program of the C++ examples in a text.

Each block of C++ becomes a function; the program runs them in their order and compares what each prints to std::cout with the
block of text right below it.
"""

import pathlib
import re
import sys

source = pathlib.Path(sys.argv[1])
includes = {"#include <functional>", "#include <iostream>", "#include <sstream>", "#include <string>"}
functions = []
cases = []
blocks = re.compile(r"^```cpp\n(.*?)^```\n(?:```text\n(.*?)^```$)?", re.MULTILINE | re.DOTALL)
text = source.read_text(encoding="utf-8")
for number, block in enumerate(blocks.finditer(text), 1):
    code, output = block.group(1), block.group(2) or ""
    line = text.count("\n", 0, block.start(1)) + 1
    body = []
    for statement in code.splitlines():
        if statement.startswith("#include"):
            includes.add(statement)
            statement = ""
        body.append(statement)
    functions.append(f'void Snippet{number}()\n{{\n#line {line} "{source.name}"\n' + "\n".join(body) + "\n}\n")
    cases.append(f'    {{{line}, Snippet{number}, R"=({output})="}},\n')
if not cases:
    sys.exit(f"{source}: no example in it")

pathlib.Path(sys.argv[2]).write_text(
    "\n".join(sorted(includes))
    + "\n\nnamespace {\n\n"
    + "\n".join(functions)
    + f"""
struct Case
{{
    int line;
    void (*run)();
    std::string output;
}};

const Case kCases[] = {{
{"".join(cases)}}};

}} // namespace

int main()
{{
    int failures = 0;
    for (const Case& example : kCases) {{
        std::ostringstream captured;
        std::streambuf* const console = std::cout.rdbuf(captured.rdbuf());
        try {{
            example.run();
        }} catch (const std::exception& error) {{
            captured << "exception: " << error.what();
        }}
        std::cout.rdbuf(console);
        std::string output = captured.str();
        std::erase(output, '\\r');
        const bool same = output == example.output;
        failures += same ? 0 : 1;
        std::cout << "{source.name}:" << example.line << (same ? ": as it says\\n" : ": prints\\n" + output);
    }}
    return failures;
}}
""",
    encoding="utf-8",
)
