"""The page as a file: well-formed, closed in itself, safe against what drives and operators put into their texts, complete, and
cheap. usage: test_page.py BUILD-FOLDER RELEASE-BUILD-FOLDER"""

import json
import os
import re
import resource
import subprocess
import sys
import tempfile
import unittest
from html.parser import HTMLParser

import hardware
from hardware import shown
from skipping import need

HERE = os.path.dirname(os.path.abspath(__file__))
MOST_BYTES = 500_000  # of a page of 255 drives
MOST_MILLISECONDS = 20  # of processor time to make it, all of the run included
ELEMENTS = set(
    "html head meta link title style body header main footer section nav div p span strong a ul ol li h1 h2 h3 h4 time table caption "
    "thead tbody tr th td svg path rect circle text".split()
)
ATTRIBUTES = set(
    "aria-hidden aria-label aria-valuemax aria-valuemin aria-valuenow charset class content cx cy d datetime height href http-equiv id "
    "lang name pathlength r rel role rx scope stroke-dasharray style tabindex text-anchor title transform viewbox width x y".split()
)
EMPTY = {"meta", "link"}


class Page(HTMLParser):
    """What a parser of HTML finds in a page."""

    def __init__(self, markup):
        super().__init__(convert_charrefs=True)
        self.tags, self.open, self.errors, self.lines, self.style = [], [], [], [], ""
        self.feed(markup)
        self.close()
        self.text = "\n".join(self.lines)
        self.ids = [attributes["id"] for _, attributes in self.tags if "id" in attributes]

    def handle_starttag(self, tag, attrs):
        self.tags.append((tag, dict(attrs)))
        self.lines += [value or "" for name, value in attrs if name in ("title", "aria-label")]
        if tag not in EMPTY:
            self.open.append(tag)

    def handle_startendtag(self, tag, attrs):
        self.tags.append((tag, dict(attrs)))

    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            self.errors.append(f"</{tag}> closes something else")

    def handle_comment(self, data):
        self.errors.append(f"a comment: {data}")

    def handle_data(self, data):
        if self.open and self.open[-1] == "style":
            self.style += data
        else:
            self.lines.append(data)


def texts_of(value, key=""):
    """Every text of the document, but for the codes of findings, the format's own words and a drive without a role."""
    if isinstance(value, dict):
        for name, item in value.items():
            if name not in ("format", "host", "object", "code", "type", "severity", "health", "write_policy"):
                yield from texts_of(item, name)
    elif isinstance(value, list):
        for item in value:
            yield from texts_of(item, key)
    elif isinstance(value, str) and (key, value) != ("role", "none"):
        yield key, value


def processor_time():
    """Seconds that the programs run so far have taken."""
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


class ThePage(unittest.TestCase):
    longMessage = True

    @classmethod
    def setUpClass(cls):
        kept = hardware.kept_scenarios(f"{HERE}/../../simulator/scenarios")
        hardware.SCENARIOS.update(kept)
        cls.markup = {name: hardware.run(build, name, "html").stdout.decode() for name in hardware.SCENARIOS}
        cls.pages = {name: Page(markup) for name, markup in cls.markup.items()}
        cls.documents = {name: json.loads(hardware.run(release, name, "json").stdout) for name in hardware.SCENARIOS}

    def test_tidy_finds_nothing(self):
        for name, markup in self.markup.items():
            done = subprocess.run(["tidy", "-errors", "-quiet", "-utf8"], input=markup.encode(), capture_output=True, check=False)
            self.assertEqual((done.returncode, done.stderr.decode()), (0, ""), name)

    def test_nothing_but_known_markup_and_nothing_from_elsewhere(self):
        for name, page in self.pages.items():
            with self.subTest(name):
                self.assertEqual((page.errors, page.open), ([], []))
                self.assertLessEqual({tag for tag, _ in page.tags}, ELEMENTS)
                self.assertLessEqual({attribute for _, attributes in page.tags for attribute in attributes}, ATTRIBUTES)
                for _, attributes in page.tags:
                    target = attributes.get("href", "data:,")
                    self.assertTrue(target == "data:," or target[1:] in page.ids, f"{target} leads nowhere")
                    self.assertRegex(attributes.get("style", ""), r"^(|(flex-basis|width):[0-9.]+%|--columns:[0-9]+)$")
                self.assertEqual(len(page.ids), len(set(page.ids)), "an id stands twice")
                self.assertNotRegex(page.style, r"url\(|@import|http|//|expression|\\")
                if "hostile" not in name:
                    self.assertNotRegex(self.markup[name], r"https?:|script|src=")

    def test_hostile_texts_are_texts(self):
        page = self.pages["hostile texts"]
        names = [drive["product"] for drive in self.documents["hostile texts"]["controllers"][0]["physical_drives"]]
        self.assertEqual(len(names), 8)
        self.assertIn(hardware.ATTACK, names)
        for text in names + ["<script>alert(2)", "onerror=alert(1)>", "<b>\"'&", "'><b onclick=a()>"]:
            self.assertIn(shown(text), page.text)
        self.assertIn("\ufffd", page.text)
        self.assertNotRegex(self.markup["hostile texts"], "[\x00-\x09\x0b-\x1f\x7f-\x9f\u202e]")

    def test_every_text_of_the_document_is_on_the_page(self):
        for name, document in self.documents.items():
            words = self.pages[name].text.lower()
            for key, text in texts_of(document):
                said = shown(text) if key in ("product", "name", "text", "os_device") else shown(text.replace("_", " "))
                self.assertIn(said.lower(), words, f"{name}: {key}")

    def test_findings_stand_in_their_order_above_all_else(self):
        for name, document in self.documents.items():
            page = self.pages[name]
            places = [page.text.find(shown(finding["text"])) for finding in document["findings"]]
            self.assertEqual(places, sorted(places), name)
            self.assertNotIn(-1, places, name)
            first = page.text.find("\nEnclosures and drives\n")
            self.assertTrue(all(place < first for place in places), name)

    def test_bars_are_to_scale(self):
        for name in ("healthy", "255 drives"):
            bars = re.findall(r'<div class="bar"[^>]*>(.*?)</div></div>', self.markup[name])
            document = self.documents[name]["controllers"][0]
            self.assertEqual(len(bars), len(document["raid_groups"]))
            sizes = {ld["number"]: ld["size_bytes"] for ld in document["logical_drives"]}
            for bar, group in zip(bars, document["raid_groups"]):
                shares = [float(share) for share in re.findall(r"flex-basis:([0-9.]+)%", bar)]
                parts = [sizes[number] for number in group["logical_drives"]] + [group["free_bytes"]]
                wanted = [100 * part / group["usable_bytes"] for part in parts if part]
                self.assertEqual(len(shares), len(wanted), f"{name}: {group['name']}")
                for share, want in zip(shares, wanted):
                    self.assertAlmostEqual(share, want, delta=0.006)

    def test_redaction_leaves_nothing_of_the_originals(self):
        markup = hardware.run(build, "healthy", "html", "--redact").stdout.decode()
        document = self.documents["healthy"]
        controller = document["controllers"][0]
        secret = [document["host"]["name"], controller["serial"], "DATA", "LOGS"]
        secret += [address for drive in controller["physical_drives"] for address in drive["sas_addresses"]]
        text = Page(markup).text
        for word in secret:
            self.assertIsNone(re.search(rf"\b{re.escape(word)}\b", text), word)
        self.assertIn("host-1", text)
        self.assertIn("name-2", text)

    def test_the_file_is_the_page(self):
        with tempfile.TemporaryDirectory() as folder:
            done = hardware.run(build, "failed", "html", "--output", f"{folder}/page.html")
            self.assertEqual((done.returncode, done.stdout), (2, b""))
            with open(f"{folder}/page.html", encoding="utf-8") as file:
                text = file.read()
        without_time = [re.sub(r"<time.*?</time>", "", markup) for markup in (text, self.markup["failed"])]
        self.assertEqual(*without_time)

    def test_a_page_of_255_drives_is_small_and_cheap(self):
        self.assertLess(len(self.markup["255 drives"].encode()), MOST_BYTES)
        if release == build:
            self.skipTest("the time is measured on a release build")
        spent = []
        for _ in range(20):
            before = processor_time()
            hardware.run(release, "255 drives", "html")
            spent.append(1000 * (processor_time() - before))
        self.assertLess(min(spent), MOST_MILLISECONDS)


if __name__ == "__main__":
    build, release = sys.argv[1:3]
    need("tidy")
    unittest.main(argv=sys.argv[:1], verbosity=1)
