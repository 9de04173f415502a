"""The program in a made-up language, in which every text stands in brackets: what a person reads goes through the
translation, each text as a whole."""

import re

import accessibility
import case
import desktop
import made_home
import waiting

PANES = 6
TRANSLATED = re.compile(r"\[[^\[\]]*~\]")
# Figures, keys and the program's own name are the same in every language.
SAME = re.compile(r"\b(\d[\d,.]*s?|B|KB|MB|GB|TB|Quillbrook)\b|Ctrl\+|\^\d|[–—→·•%~/.,:()+-]")


def left_over(text, names):
    """What of `text` is neither translated nor a name from the disk."""
    for name in sorted(names, key=len, reverse=True):
        text = text.replace(name, " ")
    before = None
    while before != text:
        before, text = text, TRANSLATED.sub(" ", text)
    return SAME.sub(" ", text).strip()


class Translated(case.Case):
    def setUp(self):
        super().setUp()
        made_home.fill(self.home)
        self.names = {path.name for path in self.home.path.rglob("*")} | {self.home.path.name, str(self.home.path)}

    def open(self):
        quillbrook = self.start(LANG="eo", LANGUAGE="eo", XDG_DATA_DIRS=f"{case.Run.helpers}:/usr/share")
        quillbrook.says(re.compile(r"^\[.*12.*~\]$|Řéšçåñ"), 30)
        quillbrook.activate()
        return quillbrook

    def settled(self, quillbrook):
        """The window's words, once they are the same twice."""
        words = []

        def same():
            nonlocal words
            before, words = words, quillbrook.words()
            return before == words and words

        return waiting.until("the same words twice", same, 20, 0.3)

    def testNothingIsLeftOutOnAnyScreen(self):
        quillbrook = self.open()
        bare = {}
        for digit in range(1, PANES + 1):
            desktop.keys(f"ctrl+{digit}")
            # The first list of the window is that of the screens.
            row = quillbrook.window().one("list").children[digit - 1]
            waiting.until(f"screen {digit} chosen", lambda: row.has(accessibility.SELECTED))
            for text in self.settled(quillbrook):
                if rest := left_over(text, self.names):
                    bare.setdefault(digit, []).append((text, rest))
        self.assertEqual(bare, {})
