"""Chromium without a window, driven through the pipe of its DevTools protocol."""

import base64
import json
import os
import subprocess
import tempfile


class Browser:
    """One browser with one page in it."""

    def __init__(self, program):
        self._folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        to_browser, self._to = os.pipe()
        self._from, from_browser = os.pipe()

        def descriptors():  # the protocol's: 3 is read, 4 is written
            ends = [os.dup(to_browser), os.dup(from_browser)]
            while min(ends) < 5:
                ends = [os.dup(end) for end in ends]
            os.dup2(ends[0], 3)
            os.dup2(ends[1], 4)

        self._process = subprocess.Popen(
            [program, "--headless=new", "--no-sandbox", "--disable-gpu", "--no-first-run", "--disable-background-networking",
             "--disable-component-update", "--disable-extensions", "--hide-scrollbars", "--disable-dev-shm-usage",
             f"--user-data-dir={self._folder.name}", "--remote-debugging-pipe", "about:blank"],
            preexec_fn=descriptors, close_fds=False, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        )
        os.close(to_browser)
        os.close(from_browser)
        self._rest, self._number, self._session, self.events = b"", 0, None, []
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self._session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network", "Audits", "Accessibility"):
            self.call(f"{domain}.enable")

    def close(self):
        os.close(self._to)
        self._process.terminate()
        self._process.wait()
        os.close(self._from)
        self._folder.cleanup()

    def _message(self):
        while b"\0" not in self._rest:
            more = os.read(self._from, 1 << 20)
            if not more:
                raise RuntimeError("the browser has gone")
            self._rest += more
        message, self._rest = self._rest.split(b"\0", 1)
        return json.loads(message)

    def call(self, method, **parameters):
        """Calls a method and returns its result; events that come meanwhile are kept."""
        self._number += 1
        request = {"id": self._number, "method": method, "params": parameters}
        if self._session:
            request["sessionId"] = self._session
        data = json.dumps(request).encode() + b"\0"
        while data:
            data = data[os.write(self._to, data):]
        while True:
            message = self._message()
            if message.get("id") == self._number:
                if "error" in message:
                    raise RuntimeError(f"{method}: {message['error']}")
                return message["result"]
            self.events.append(message)

    def load(self, url):
        """Loads a page and waits until it is there; the events are those of this page from now on."""
        self.events = []
        self.call("Page.navigate", url=url)
        while not any(event["method"] == "Page.loadEventFired" for event in self.events):
            self.events.append(self._message())

    def look(self, width, scheme="light", media="screen"):
        """Lays the page out for a screen of this width, light or dark, or for paper."""
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=900, deviceScaleFactor=1, mobile=False)
        self.call("Emulation.setEmulatedMedia", media=media, features=[{"name": "prefers-color-scheme", "value": scheme}])

    def run(self, script):
        """The value of an expression on the page."""
        result = self.call("Runtime.evaluate", expression=script, returnByValue=True)
        if "exceptionDetails" in result:
            raise RuntimeError(result["exceptionDetails"])
        return result["result"].get("value")

    def accessible_names(self):
        """What a screen reader finds, as (role, name), from top to bottom."""
        nodes = self.call("Accessibility.getFullAXTree")["nodes"]
        return [(node["role"]["value"], node.get("name", {}).get("value", "")) for node in nodes if not node["ignored"]]

    def pdf(self):
        return base64.b64decode(self.call("Page.printToPDF", preferCSSPageSize=True)["data"])

    def picture(self, file):
        size = self.call("Page.getLayoutMetrics")["cssContentSize"]
        clip = {"x": 0, "y": 0, "width": size["width"], "height": size["height"], "scale": 1}
        data = self.call("Page.captureScreenshot", captureBeyondViewport=True, clip=clip)["data"]
        with open(file, "wb") as out:
            out.write(base64.b64decode(data))
