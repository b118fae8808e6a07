#!/usr/bin/env python3
"""Hands a file to Doxygen as a reader of the headers understands it: a comment is that of all declarations
down to the next blank line, one behind a field is that of the field, and what the language gives by itself needs
none."""
import re
import sys

OF_THE_LANGUAGE = re.compile(r"= (default|delete);$")
BEHIND = re.compile(r"; +// ")
LANGUAGE = "/// As the language has it; the class tells what copies share."


ENCLOSES = re.compile(r"((template\b.*)?(class|struct|union)\b[^;(]*|enum\b[^;]*|namespace\b.*|extern \w*) \{$")
LABEL = re.compile(r"(public|protected|private):$")


def declarations(lines):
    """The lines, each with its code and whether a declaration begins there."""
    depth = 0  # of brackets of the declaration that goes on
    for line in lines:
        text = re.sub(r"//.*|\"[^\"]*\"|'[^']*'", "", line).strip()
        begins = depth == 0 and bool(text) and text[0] not in "#}" and not LABEL.match(text)
        yield line, text, begins
        if depth == 0 and (not begins or ENCLOSES.match(text)):
            continue  # what stands within has comments of its own
        if begins:
            depth = 1  # until its end
        depth += text.count("(") + text.count("{") - text.count(")") - text.count("}")
        if depth <= 1 and text.endswith((";", "}", ",")):
            depth = 0


def of_header(lines):
    comment, fresh = [], False  # the comment in force, and whether it still stands for the next line
    for line, text, begins in declarations(lines):
        if line.strip().startswith("///") and not line.strip().startswith("///<"):
            comment = comment + [line] if fresh else [line]
            fresh = True
        elif not line.strip():
            comment, fresh = [], False
        elif begins and re.match(r"using [\w:<>, ]+::", text):
            continue  # stands with the class that it comes from
        elif begins and not fresh and BEHIND.search(line):
            line = BEHIND.sub("; ///< ", line)
        elif begins and not fresh:
            yield from [LANGUAGE] if OF_THE_LANGUAGE.search(text) else comment
        else:
            fresh = fresh and not begins
        if begins:
            fresh = False
            if text.endswith("{"):
                comment = []
        yield line


def of_page(lines):
    """Headings have no names there that a link could lead to."""
    return (re.sub(r"\[([^]]*)\]\(#[^)]*\)", r"\1", line) for line in lines)


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        lines = file.read().split("\n")
    print("\n".join(of_page(lines) if sys.argv[1].endswith(".md") else of_header(lines)))


main()
