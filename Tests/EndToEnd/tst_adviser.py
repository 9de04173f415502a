"""The conversation about what was found: with a server of made-up models, from the question to the Trash, and every
refusal on the way. The program runs in a network of its own, in which that server alone listens.

With QUILLBROOK_MODEL_SERVER=127.0.0.1:PORT, a real server's usual port, one scenario runs against that."""

import json
import os
import pathlib
import socket
import subprocess
import sys
import unittest

import accessibility
import case
import desktop
import removing
import waiting

SERVER = pathlib.Path(__file__).resolve().parent.parent / "Support" / "model_server.py"
OWN_NETWORK = ("unshare", "-U", "--map-current-user", "--keep-caps", "-n")
REAL = os.environ.get("QUILLBROOK_MODEL_SERVER", "")

HERE = "Answers are produced on this Mac — your files are never sent anywhere"
NONE = ("On-device model unavailable (no model server runs here: start Ollama, llama.cpp's server, llamafile or vLLM). "
        "Everything else still works.")
FAILED = "The on-device model couldn't answer that. Your findings are unaffected."
CAN_NOT_CHAT = ("The on-device model isn't available, so I can't chat — but everything on the other screens is produced "
                "without it and is unaffected.")
KEPT = "I can't offer to remove Mail — Only if every account is IMAP and fully re-syncable."
GENERAL = "What's safe to delete?"
NOBODY = "On-device model unavailable — every other screen still works"
PHONES = "There are 2 Android emulators."


def reply(group="", proposes=False, answer=PHONES, also=""):
    return json.dumps({"answer": answer, "proposesRemoval": proposes, "groupID": group, "alsoConsiderGroupID": also})


class Conversing(removing.Removing):
    def setUp(self):
        super().setUp()
        for name, size in (("Pixel_7", 3_000_000), ("Tablet secret", 2_000_000)):
            self.home.file(f".android/avd/{name}.avd/disk.img", size)
        self.home.file(".npm/_cacache/content", 400_000)
        self.home.file(".thunderbird/profile/mail", 300_000)

    def openConversation(self, expected):
        """The program on the screen of the conversation, which says that of the model."""
        self.quillbrook = self.start()
        self.quillbrook.scanned()
        self.quillbrook.open_pane("0", "Past answers")
        self.quillbrook.says(expected)
        return self.quillbrook

    def ask(self, question):
        self.write(question)
        self.quillbrook.says(question)

    def write(self, question):
        field = self.quillbrook.window().one("text", "Ask about what was found")
        field.focus()
        waiting.until("the field has the keyboard", lambda: field.has(accessibility.FOCUSED))
        desktop.type_text(question)
        desktop.keys("Return")

    def said(self):
        """The messages, oldest first."""
        return self.quillbrook.window().one("list", "Conversation").names("list item")

    def phones(self):
        """The rows of the card that lets one choose a phone."""
        self.quillbrook.says("Which one?")
        rows = self.quillbrook.window().one("list", "Which one?").all("list item")
        self.assertEqual([row.name.partition(",")[0] for row in rows], ["Pixel_7", "Tablet secret"])
        self.assertTrue(rows[0].has(accessibility.SELECTED))
        return rows

    def moveTheTablet(self, rows):
        """Through the question to the Trash and onto the ledger."""
        rows[1].act()
        self.quillbrook.says("frees 1.9 MB")
        self.becomes(lambda: [row.has(accessibility.SELECTED) for row in rows], [False, True])
        self.quillbrook.press("Move to Trash")
        self.quillbrook.says("Move Tablet secret to the Trash?")
        self.assertEqual(self.trashed(), {})
        self.becomes(lambda: self.quillbrook.window().one("dialog").one("push button", "Cancel").has(
            accessibility.FOCUSED), True)
        self.press("Move to Trash")
        waiting.until("the phone on the ledger", self.ledger)
        self.assertLedgerKnows([".android/avd/Tablet secret.avd"])
        self.assertTrue((self.home.path / ".android/avd/Pixel_7.avd/disk.img").exists())


class Adviser(Conversing):
    @classmethod
    def setUpClass(cls):
        if subprocess.run([*OWN_NETWORK, "true"], capture_output=True, timeout=20).returncode != 0:
            raise unittest.SkipTest("this machine lets nobody have a network of their own")

    def setUp(self):
        super().setUp()
        self.log = self.folder / "asked.jsonl"

    def converse(self, *replies, server=True, **script):
        """The program with a server that answers like this, on the screen of the conversation."""
        script = {"kind": "ollama", "port": 11434, "replies": list(replies)} | script
        serving = [sys.executable, "-B", SERVER, "--log", self.log, json.dumps(script)] if server else ["env"]
        self.through = (*OWN_NETWORK, *serving)
        return self.openConversation(HERE if server and "awaits" not in script else NONE)

    def asked(self, path):
        lines = self.log.read_text(encoding="utf-8").splitlines() if self.log.exists() else []
        return [entry for entry in map(json.loads, lines) if entry["path"] == path]

    def testFromTheQuestionToTheTrash(self):
        quillbrook = self.converse(reply("android.avd", True))
        self.assertEqual(self.asked("/api/chat"), [])
        quillbrook.says("Ollama, small:1b")
        self.ask("remove one of my test phones")
        quillbrook.says(PHONES)
        rows = self.phones()
        rows[0].focus()
        desktop.keys("Down")
        quillbrook.says("frees 1.9 MB")
        rows[0].act()
        quillbrook.says("frees 2.9 MB")
        self.moveTheTablet(rows)
        # What was sent knows sizes and counts, and no name.
        body = self.asked("/api/chat")[0]["body"]
        self.assertIn("id=android.avd", body)
        self.assertIn("count=2", body)
        for name in ("Pixel", "secret", ".android", str(self.home.path), "disk.img"):
            self.assertNotIn(name, body)
        self.assertEqual([message["role"] for message in json.loads(body)["messages"]], ["system", "system", "user"])

    def testNothingGoesWithoutAYes(self):
        quillbrook = self.converse(reply("android.avd", True), reply("npm.cacache", True))
        before = self.inHome()
        self.ask("clear the phones")
        quillbrook.says("Which one?")
        quillbrook.press("Move to Trash")
        quillbrook.says("Move Pixel_7 to the Trash?")
        desktop.keys("Escape")
        quillbrook.press("Not now")
        quillbrook.says("Pick one to delete")
        self.assertNotIn("Which one?", quillbrook.words())
        self.ask("clear the packages")
        quillbrook.says("Remove Downloaded code packages?")
        self.assertEqual((self.inHome(), self.trashed()), (before, {}))

    def testWhatTheModelMayNotDo(self):
        refusals = {
            "delete my mail": (reply("mail.data", True, answer="Mail goes."), KEPT, "Why not?"),
            "delete everything": (reply("everything", True, answer="All goes."), "All goes.", GENERAL),
            "delete my home": (reply(str(self.home.path), True, answer="Home goes."), "Home goes.", GENERAL),
            "delete by a command": ("rm -rf ~", FAILED, None),
            "delete by a word": (reply("", True, answer="Gone: ~/.npm"), "Gone: ~/.npm", GENERAL),
            "delete by the wrong kind": ('{"answer": "x", "proposesRemoval": "true", "groupID": "npm.cacache", '
                                         '"alsoConsiderGroupID": ""}', FAILED, None),
        }
        quillbrook = self.converse(*(answer for answer, _, _ in refusals.values()))
        before = self.inHome()
        for question, (_, last, chip) in refusals.items():
            self.ask(question)
            self.becomes(lambda: self.said()[-1:], [last])
            if chip:
                quillbrook.window().one("push button", chip)
            self.assertNotIn("Move to Trash", quillbrook.words())
        self.assertEqual(len(self.asked("/api/chat")), len(refusals))
        self.assertEqual((self.inHome(), self.trashed()), (before, {}))

    def testAnswersAreAnnounced(self):
        quillbrook = self.converse(reply("npm.cacache", answer="There are packages."),
                                   reply("mail.data", True, answer="Mail goes."))
        announcements = quillbrook.announcements()
        self.ask("and packages?")
        self.becomes(announcements.told, ["There are packages."])
        self.ask("delete my mail")
        self.becomes(announcements.told, ["There are packages.", "Mail goes.\n" + KEPT])

    def testByTheKeyboardAlone(self):
        quillbrook = self.converse(reply("android.avd"), reply("android.avd", True))
        self.ask("what phones are there?")
        chip = quillbrook.window().one("push button", "Pick one to delete")
        # Messages come before what can be done after them.
        roles = [thing.role for thing in quillbrook.window().one("list", "Conversation").walk()]
        self.assertLess(roles.index("list item"), roles.index("push button"))
        quillbrook.tab_to(lambda: chip.has(accessibility.FOCUSED))
        desktop.keys("space")
        rows = self.phones()
        field = quillbrook.window().one("text", "Ask about what was found")
        # What was pressed has gone.
        self.becomes(lambda: field.has(accessibility.FOCUSED), True)
        quillbrook.tab_to(lambda: rows[0].has(accessibility.FOCUSED))
        desktop.keys("Down")
        quillbrook.says("frees 1.9 MB")
        quillbrook.tab_to(lambda: quillbrook.window().one("push button", "Not now").has(accessibility.FOCUSED))
        desktop.keys("Return")
        quillbrook.window().one("push button", "Pick one to delete")
        self.becomes(lambda: field.has(accessibility.FOCUSED), True)

    def testALongAnswerIsReadByTheKeyboard(self):
        quillbrook = self.converse(reply(answer="This goes on. " * 1500))
        self.write("tell me all")
        answer = waiting.until("the answer", lambda: next(iter(
            quillbrook.window().all("list item", lambda name: name.startswith("This goes on."))), None))
        place = self.still(lambda: answer.extents[1])
        desktop.keys("Prior")
        waiting.until("a page further up", lambda: answer.extents[1] > place + 100)
        desktop.keys("Next", "Next")
        self.becomes(lambda: quillbrook.window().one("push button", GENERAL).has(accessibility.SHOWING), True)

    def still(self, question):
        """The answer once it stays the same."""
        before = []

        def same():
            before.append(question())
            return len(before) > 4 and len(set(before[-4:])) == 1
        waiting.until("rest", same)
        return before[-1]

    def startServerLater(self):
        """The program without a server, on another screen; gives back what starts one."""
        quillbrook = self.converse(awaits=str(self.folder / "go"))
        quillbrook.open_pane("1", "Free up space")
        quillbrook.window().one("text", NOBODY)
        return quillbrook, (self.folder / "go").touch

    def testAServerThatComesLaterIsFoundByTheQuestionField(self):
        quillbrook, start_server = self.startServerLater()
        start_server()

        def focus_anew():
            quillbrook.window().one("list", "Screens").one("list item", "Free up space").focus()
            quillbrook.window().one("text", lambda name: name in (NOBODY, "Ask Quillbrook anything about this Mac")).focus()
            return "TRY" in quillbrook.words()
        waiting.until("questions to try", focus_anew)

    def testAServerThatComesLaterIsFoundByTheScreen(self):
        quillbrook, start_server = self.startServerLater()
        start_server()

        def open_anew():
            quillbrook.open_pane("1", "Free up space")
            quillbrook.open_pane("0", "Past answers")
            return HERE in quillbrook.words()
        waiting.until("the server found", open_anew)

    def testWithoutAServerEverythingElseWorks(self):
        quillbrook = self.converse(server=False)
        quillbrook.says("It sees the findings, never your files.")
        quillbrook.press("What's safe to delete?")
        quillbrook.says(CAN_NOT_CHAT)
        quillbrook.press("Clear")
        quillbrook.says("It sees the findings, never your files.")
        quillbrook.open_pane("1", "Free up space")
        quillbrook.window().one("text", NOBODY)
        self.assertNotIn("TRY", quillbrook.words())

    def testAQuestionFromBelowAnotherScreen(self):
        quillbrook = self.converse(reply("npm.cacache", answer="There are packages."), faults={"/api/chat": "slow:1"})
        quillbrook.open_pane("2", "What's using space")
        quillbrook.says("TRY")
        quillbrook.press("What's safe to delete?")
        quillbrook.selected("Past answers")
        quillbrook.says("thinking on-device…")
        quillbrook.says("There are packages.")
        self.becomes(lambda: "thinking on-device…" in quillbrook.words(), False)
        quillbrook.window().one("notification", "There are packages.")
        quillbrook.open_pane("2", "What's using space")
        self.assertNotIn("TRY", quillbrook.words())
        quillbrook.press("History")
        quillbrook.selected("Past answers")
        quillbrook.says("There are packages.")

    def testAnAnswerThatDoesNotComeCanBeStopped(self):
        quillbrook = self.converse(reply(), faults={"/api/chat": "half"})
        self.ask("well?")
        quillbrook.says("thinking on-device…")
        waiting.until("the question sent", lambda: self.asked("/api/chat"))
        quillbrook.press("Stop")
        quillbrook.says(FAILED)
        self.becomes(lambda: "Stop" in quillbrook.words(), False)


class Real(Conversing):
    @unittest.skipUnless(REAL, "QUILLBROOK_MODEL_SERVER names no server")
    def testFromTheQuestionToTheTrash(self):
        """A model answers as it likes: the test fails where it does not see that the phones are meant."""
        host, port = REAL.split(":")
        socket.create_connection((host, int(port)), 10).close()
        quillbrook = self.openConversation(HERE)
        before = self.inHome()
        self.ask("Delete one of my test Android phones")
        waiting.until("an answer", lambda: len(self.said()) > 1, 150)
        answer = self.said()[1]
        print(f"the model says: {answer}")
        self.assertNotEqual(answer, FAILED)
        self.assertEqual((self.inHome(), self.trashed()), (before, {}))
        # One that names the group and forgets that something is to be deleted is asked again by the program.
        waiting.until(f"the phones offered after {answer!r}",
                      lambda: {"Which one?", "Pick one to delete"} & set(quillbrook.words()))
        if "Which one?" not in quillbrook.words():
            quillbrook.press("Pick one to delete")
        self.moveTheTablet(self.phones())
