#!/usr/bin/python3
"""Makes up a language: every text gets accents, a third more letters and brackets at its ends, so that on a picture
one sees at once what is not translated, put together from pieces, or cut.

    made_up_language.py TEMPLATE.ts ... TRANSLATED.ts ..."""

import re
import sys
import xml.etree.ElementTree as ElementTree

ACCENTS = str.maketrans("ABCDEGHIKLNORSTUWYZabcdeghiklnorstuwyz", "ÅƁÇĎÉĜĤÎĶĹÑÖŘŠŢÛŴÝŽåƀçďéĝĥîķĺñöřšţûŵýž")
# What the program fills in, and what is markup, stays as it is.
KEPT = re.compile(r"(%L?\d+|%n|\{[a-z]+\}|<[^>]+>|&[a-z]+;)")


def translated(text):
    pieces = KEPT.split(text)
    accented = "".join(piece if KEPT.fullmatch(piece) else piece.translate(ACCENTS) for piece in pieces)
    letters = sum(character.isalpha() for character in text)
    return f"[{accented}{'~' * max(1, round(letters / 3))}]"


def translate(template, result):
    tree = ElementTree.parse(template)
    root = tree.getroot()
    root.set("language", "eo")
    for message in root.iter("message"):
        source, translation = message.find("source").text, message.find("translation")
        translation.attrib.pop("type", None)
        if message.get("numerus") == "yes":
            for form in list(translation):
                translation.remove(form)
            for _ in range(2):
                ElementTree.SubElement(translation, "numerusform").text = translated(source)
        else:
            translation.text = translated(source)
    tree.write(result, encoding="utf-8", xml_declaration=True)


def main():
    count = len(sys.argv) // 2
    for template, result in zip(sys.argv[1 : count + 1], sys.argv[count + 1 :]):
        translate(template, result)


if __name__ == "__main__":
    main()
