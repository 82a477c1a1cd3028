#!/usr/bin/env python3
"""Writes the module's tables of texts as a translation would have them: with other headings of result columns and other
names of the distributions.

    translate_texts.py STRINGS.cpp OUT.cpp
"""
import os
import re
import sys

# The headings and the kinds of variables, which tables show as texts; the names of the distributions.
PREFIXES = ((re.compile(r'(\{(?:"\w+"_column\.heading|kKind\w+),\s*")'), "Überschrift "),
            (re.compile(r'(\{NameResource\([\w:]+\),\s*")'), "Verteilung "))
TABLE = re.compile(r'#include "(brv_sra/resources/(?:\w+_texts|column_headings)\.h)"\n')


def translated(path, root):
    with open(os.path.join(root, path), encoding="utf-8") as source:
        text = source.read().replace("#pragma once\n", "")
    for pattern, prefix in PREFIXES:
        text = pattern.sub(r"\g<1>" + prefix, text)
    return text


with open(sys.argv[1], encoding="utf-8") as strings:
    root = os.path.join(os.path.dirname(sys.argv[1]), "..", "..")
    text = TABLE.sub(lambda match: translated(match[1], root), strings.read())
for _, prefix in PREFIXES:
    if prefix not in text:
        sys.exit(f"nothing was translated into '{prefix}…' in {sys.argv[1]}")
with open(sys.argv[2], "w", encoding="utf-8") as target:
    target.write(text)
