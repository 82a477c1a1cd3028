#!/usr/bin/env python3
"""Writes the module's table of texts with other headings of result columns, as a translation would have them.

    translate_headings.py STRINGS.cpp OUT.cpp
"""
import re
import sys

# The headings, and the kinds of variables, which tables show as texts.
TEXT = re.compile(r'(\{(?:"\w+"_column\.heading|kKind\w+),\s*")')

with open(sys.argv[1], encoding="utf-8") as source:
    text, count = TEXT.subn(r"\1Überschrift ", source.read())
if count == 0:
    sys.exit("no heading found in " + sys.argv[1])
with open(sys.argv[2], "w", encoding="utf-8") as target:
    target.write(text)
