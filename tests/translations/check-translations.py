#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks the translation files: every entry finished and not empty, and every translation keeps the
placeholders (%1, %2, ..., %n) of its source, so that no number or name is lost or invented."""
import re
import sys
import xml.etree.ElementTree as ElementTree

PLACEHOLDER = re.compile(r"%(?:\d+|n)")


def problems(path):
    found = []
    root = ElementTree.parse(path).getroot()
    for context in root.iter("context"):
        name = context.findtext("name")
        for message in context.iter("message"):
            source = message.findtext("source") or ""
            translation = message.find("translation")
            where = "%s: %s: %r" % (path, name, source[:60])
            if translation is None or translation.get("type") in ("unfinished", "vanished", "obsolete"):
                found.append(where + " is not finished")
                continue
            forms = [form.text or "" for form in translation.iter("numerusform")]
            if message.get("numerus") == "yes":
                if not forms:
                    found.append(where + " has no plural forms")
            else:
                forms = [translation.text or ""]
            wanted = sorted(set(PLACEHOLDER.findall(source)))
            for form in forms:
                if not form.strip():
                    found.append(where + " has an empty translation")
                elif sorted(set(PLACEHOLDER.findall(form))) != wanted:
                    found.append("%s: %r does not keep the placeholders %s" % (where, form[:60], wanted))
    return found


def main():
    found = [problem for path in sys.argv[1:] for problem in problems(path)]
    for problem in found:
        print(problem)
    if not sys.argv[1:]:
        print("no translation files given")
        return 2
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
