"""The conversation about what was found: with a server of made-up models, from the question to the Trash, and every
refusal on the way. The program runs in a network of its own, in which that server alone listens.

With QUILLBROOK_MODEL_SERVER=127.0.0.1:PORT, a real server's usual port, one scenario runs against that."""

import json
import os
import pathlib
import subprocess
import sys
import unittest
import urllib.request

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
PHONES = "There are 2 Android emulators."


def reply(group="", proposes=False, answer=PHONES, also=""):
    return json.dumps({"answer": answer, "proposesRemoval": proposes, "groupID": group, "alsoConsiderGroupID": also})


class Adviser(removing.Removing):
    @classmethod
    def setUpClass(cls):
        if subprocess.run([*OWN_NETWORK, "true"], capture_output=True, timeout=20).returncode != 0:
            raise unittest.SkipTest("this machine lets nobody have a network of their own")

    def setUp(self):
        super().setUp()
        self.log = self.folder / "asked.jsonl"
        for name, size in (("Pixel_7", 3_000_000), ("Tablet secret", 2_000_000)):
            self.home.file(f".android/avd/{name}.avd/disk.img", size)
        self.home.file(".npm/_cacache/content", 400_000)
        self.home.file(".thunderbird/profile/mail", 300_000)

    def converse(self, *replies, server=True, **script):
        """The program with a server that answers like this, on the screen of the conversation."""
        script = {"kind": "ollama", "port": 11434, "replies": list(replies)} | script
        serving = [sys.executable, "-B", SERVER, "--log", self.log, json.dumps(script)] if server else ["env"]
        self.through = (*OWN_NETWORK, *serving)
        self.quillbrook = self.start()
        self.quillbrook.scanned()
        self.quillbrook.open_pane("0", "Past answers")
        self.quillbrook.says(HERE if server else NONE)
        return self.quillbrook

    def ask(self, question):
        field = self.quillbrook.window().one("text", "Ask about what was found")
        field.focus()
        waiting.until("the field has the keyboard", lambda: field.has(accessibility.FOCUSED))
        desktop.type_text(question)
        desktop.keys("Return")
        self.quillbrook.says(question)

    def asked(self, path):
        lines = self.log.read_text(encoding="utf-8").splitlines() if self.log.exists() else []
        return [entry for entry in map(json.loads, lines) if entry["path"] == path]

    def testFromTheQuestionToTheTrash(self):
        quillbrook = self.converse(reply("android.avd", True))
        self.assertEqual(self.asked("/api/chat"), [])
        quillbrook.says("Ollama, small:1b")
        self.ask("remove one of my test phones")
        quillbrook.says(PHONES)
        quillbrook.says("Which one?")
        rows = quillbrook.window().one("list", "Which one?").all("list item")
        self.assertEqual([row.name.partition(",")[0] for row in rows], ["Pixel_7", "Tablet secret"])
        self.assertTrue(rows[0].has(accessibility.SELECTED))
        rows[0].focus()
        desktop.keys("Down")
        quillbrook.says("frees 1.9 MB")
        rows[0].act()
        quillbrook.says("frees 2.9 MB")
        rows[1].act()
        quillbrook.says("frees 1.9 MB")
        self.becomes(lambda: [row.has(accessibility.SELECTED) for row in rows], [False, True])
        quillbrook.press("Move to Trash")
        quillbrook.says("Move Tablet secret to the Trash?")
        self.assertEqual(self.trashed(), {})
        self.becomes(lambda: quillbrook.window().one("dialog").one("push button", "Cancel").has(accessibility.FOCUSED),
                     True)
        self.press("Move to Trash")
        waiting.until("the phone in the Trash",
                      lambda: list(self.trashed()) == [self.origin(".android/avd/Tablet secret.avd")])
        self.assertTrue((self.home.path / ".android/avd/Pixel_7.avd/disk.img").exists())
        ledger = self.data / "Quillbrook" / "ledger.json"
        waiting.until("the phone on the ledger", lambda: ledger.exists() and "Tablet secret" in ledger.read_text())
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
        quillbrook = self.converse(
            reply("mail.thunderbird", True), reply("everything", True), reply(str(self.home.path), True),
            "rm -rf ~", reply("", True, answer="Gone: ~/.npm"))
        before = self.inHome()
        self.ask("delete all")
        self.ask("delete everything")
        waiting.until("three answers", lambda: len(self.asked("/api/chat")) == 2)
        quillbrook.says("What's safe to delete?")
        self.ask("delete my home")
        self.ask("delete by a command")
        quillbrook.says(FAILED)
        self.ask("delete by a word")
        quillbrook.says("Gone: ~/.npm")
        self.assertNotIn("Move to Trash", quillbrook.words())
        self.assertEqual((self.inHome(), self.trashed()), (before, {}))

    def testWithoutAServerEverythingElseWorks(self):
        quillbrook = self.converse(server=False)
        quillbrook.says("It sees the findings, never your files.")
        quillbrook.press("What's safe to delete?")
        quillbrook.says(CAN_NOT_CHAT)
        quillbrook.press("Clear")
        quillbrook.says("It sees the findings, never your files.")
        quillbrook.open_pane("1", "Free up space")
        quillbrook.window().one("text", "On-device model unavailable — every other screen still works")
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


class Real(removing.Removing):
    @unittest.skipUnless(REAL, "QUILLBROOK_MODEL_SERVER names no server")
    def testARealModelAnswersAndNothingGoes(self):
        with urllib.request.urlopen(f"http://{REAL}/", timeout=10):
            pass
        self.home.file(".android/avd/Pixel_7.avd/disk.img", 3_000_000)
        before = self.inHome()
        self.quillbrook = self.start()
        self.quillbrook.scanned()
        self.quillbrook.open_pane("0", "Past answers")
        self.quillbrook.says(HERE)
        self.quillbrook.press("What's safe to delete?")
        waiting.until("an answer", lambda: "Stop" not in self.quillbrook.words(), 180)
        self.assertNotIn(FAILED, self.quillbrook.words())
        self.assertEqual(self.inHome(), before)
