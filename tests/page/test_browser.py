"""The page in a real browser, on screens and on paper, light and dark. usage: test_browser.py BUILD-FOLDER [PICTURES-FOLDER]
With a folder for pictures each page is also drawn there, for somebody to look at."""

import json
import os
import re
import subprocess
import sys
import tempfile
import unittest

import hardware
from browser import Browser
from hardware import shown
from skipping import need

HERE = os.path.dirname(os.path.abspath(__file__))
A4 = (595, 842)  # points
PHONE, DESK = 360, 1280


def bare(text):
    return re.sub(r"\s", "", text)


class InABrowser(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.browser = Browser("chromium")
        cls.addClassCleanup(cls.browser.close)
        with open(f"{HERE}/page_checks.js", encoding="utf-8") as file:
            cls.checks = file.read()

    def examine(self, name):
        document = json.loads(hardware.run(build, name, "json").stdout)
        file = f"{self.folder.name}/page.html"
        hardware.run(build, name, "html", "--output", file)
        self.browser.load(f"file://{file}")
        self.on_screens(name)
        self.for_screen_readers(document)
        self.on_paper()
        self.alone(f"file://{file}")

    def complaints(self, check, where):
        self.browser.run(self.checks)
        with self.subTest(check=check, where=where):
            self.assertEqual(self.browser.run(f"pageChecks.{check}()"), [])

    def on_screens(self, name):
        for width in (DESK, PHONE):
            for scheme in ("light", "dark"):
                self.browser.look(width, scheme)
                self.complaints("faint", f"{width} {scheme}")
                if pictures:
                    self.browser.picture(f"{pictures}/{name.replace(' ', '-')}-{width}-{scheme}.png")
            self.complaints("wide", width)
            self.complaints("crowded", width)
        self.complaints("headings", "everywhere")

    def for_screen_readers(self, document):
        names = self.browser.accessible_names()
        said = [(role, bare(name)) for role, name in names]
        verdict = {"ok": "All is well", "warning": "Warning", "critical": "Critical"}[document["health"]]
        with self.subTest("accessibility tree"):
            self.assertIn(("StaticText", bare(verdict)), said)
            for finding in document["findings"]:
                self.assertIn(("link", bare(shown(finding["text"]))), said)
            for controller in document["controllers"]:
                self.assertTrue(any(role == "heading" and name.startswith(f"Controller {controller['number']} ") for role, name in names))
                for drive in controller["physical_drives"] or []:
                    self.assertTrue(any(role == "image" and name.startswith(f"Slot {drive['slot']}: ") for role, name in names))

    def on_paper(self):
        self.browser.look(718, media="print")
        self.complaints("wide", "paper")
        self.complaints("faint", "paper")
        cells = self.browser.run("pageChecks.cells()")
        file = f"{self.folder.name}/page.pdf"
        with open(file, "wb") as out:
            out.write(self.browser.pdf())
        places = subprocess.run(["pdftotext", "-bbox", file, "-"], capture_output=True, check=True).stdout.decode()
        text = bare(subprocess.run(["pdftotext", "-raw", file, "-"], capture_output=True, check=True).stdout.decode())
        with self.subTest("paper"):
            pages = re.findall(r'<page width="([0-9.]+)" height="([0-9.]+)">(.*?)</page>', places, re.DOTALL)
            for width, height, words in pages:
                self.assertEqual((round(float(width)), round(float(height))), A4)
                boxes = re.findall(r'xMin="([-0-9.]+)" yMin="([-0-9.]+)" xMax="([-0-9.]+)" yMax="([-0-9.]+)"', words)
                self.assertNotEqual(boxes, [], "an empty page")
                for left, top, right, bottom in (map(float, box) for box in boxes):
                    self.assertTrue(20 < left and right < A4[0] - 20 and 20 < top and bottom < A4[1] - 20, "a word leaves its page")
            for line in (line for cell in cells for line in cell.splitlines()):
                if "\ufffd" not in line:  # which the font may lack
                    self.assertIn(bare(line), text)
            self.assertTrue(text.rstrip("\f").endswith("requests"), "the end is missing")

    def alone(self, url):
        """Nothing was asked for but the page, and the browser had nothing to say about it."""
        asked = [e["params"]["request"]["url"] for e in self.browser.events if e["method"] == "Network.requestWillBeSent"]
        words = [e for e in self.browser.events if e["method"] in
                 ("Runtime.consoleAPICalled", "Runtime.exceptionThrown", "Log.entryAdded", "Audits.issueAdded")]
        with self.subTest("alone"):
            self.assertEqual([u for u in asked if u != "data:,"], [url])
            self.assertEqual(words, [])


def examination(name):
    return lambda self: self.examine(name)


for scenario in hardware.SCENARIOS:
    setattr(InABrowser, "test_" + scenario.replace(" ", "_"), examination(scenario))

if __name__ == "__main__":
    build = sys.argv[1]
    pictures = sys.argv[2] if len(sys.argv) > 2 else None
    need("chromium", "pdftotext")
    unittest.main(argv=sys.argv[:1])
