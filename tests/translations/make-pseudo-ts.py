#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes a pseudo translation of a .ts file: every text 40 % longer than its English source, with accented
letters and in brackets, so that a view shown in it reveals texts that are cut off, elided or never
translated. Placeholders (%1, %n), line breaks and keyboard mnemonics stay as they are.
Usage: make-pseudo-ts.py SOURCE.ts PSEUDO.ts"""
import math
import re
import sys
import xml.etree.ElementTree as ElementTree

ACCENTED = str.maketrans(
    "abcdeghiklnorstuyzABCDEGHIKLNORSTUYZ",
    "áƀçđéĝĥíķĺñóŕšţúýžÁßÇĐÉĜĤÍĶĹÑÓŔŠŢÚÝŽ",
)
# Placeholders and mnemonics are kept; everything else is accented.
KEPT = re.compile(r"(%(?:\d+|n)|&&|&\w)")
FILLER = "ẋẍẋẍẋẍ"


def pseudo(text):
    if not text.strip():
        return text
    parts = KEPT.split(text)
    body = "".join(part if KEPT.fullmatch(part) else part.translate(ACCENTED) for part in parts)
    # Two brackets and the filler words make the text 40 % longer, and at least two characters.
    extra = max(2, math.ceil(len(text) * 0.4)) - 2
    words = []
    while extra > 0:
        word = FILLER[: min(len(FILLER), extra)]
        words.append(word)
        extra -= len(word) + 1
    filler = (" " + " ".join(words)) if words else ""
    lines = body.split("\n")
    # The filler goes on the longest line, where a cut-off shows first.
    longest = max(range(len(lines)), key=lambda i: len(lines[i]))
    lines[longest] = lines[longest] + filler
    return "[" + "\n".join(lines) + "]"


def main():
    source_path, pseudo_path = sys.argv[1], sys.argv[2]
    tree = ElementTree.parse(source_path)
    root = tree.getroot()
    root.set("language", "en_XA")
    for message in root.iter("message"):
        source = message.findtext("source") or ""
        translation = message.find("translation")
        for child in list(translation):
            translation.remove(child)
        translation.attrib.pop("type", None)
        if message.get("numerus") == "yes":
            translation.text = None
            for _ in range(2):
                form = ElementTree.SubElement(translation, "numerusform")
                form.text = pseudo(source)
        else:
            translation.text = pseudo(source)
    tree.write(pseudo_path, encoding="utf-8", xml_declaration=True)


if __name__ == "__main__":
    main()
