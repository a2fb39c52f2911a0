#!/usr/bin/python3 -B
"""scripts/site/check.py AXE [--all]: checks build/docs/html in a browser.

Each page must load without an error on the console and must not scroll sideways at a width of 400
pixels. Some pages are checked more closely: the pages of the guide and 40 pages of the reference;
with --all, every page. They must also fit at a width of 1400 pixels, have no dead link, and pass the
checker axe (contrast, headings, names of controls) on a light phone and a dark desktop. The search
must find terms of the guide and of the reference. Writes two screenshots to build/docs.
"""
import base64
import functools
import http.server
import json
import os
import pathlib
import re
import select
import subprocess
import sys
import tempfile
import threading
import urllib.parse

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
OUT = ROOT / "build/docs/html"
SAMPLE = 40
LIMIT = 120  # seconds to wait for an answer of the browser
WIDTHS = ((400, 800, "light"), (1400, 900, "dark"))
AXE = """axe.run(document, {resultTypes: ["violations"],
  runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "best-practice"]}).then(result =>
    result.violations.map(v => v.id + ": " + v.help + ": " + v.nodes.length + " times, as " +
        v.nodes[0].html.slice(0, 160) + " " + (v.nodes[0].any[0] || {message: ""}).message))"""


class Browser:
    """A headless Chromium. Two pipes carry the messages; each message is a JSON text and a zero
    byte."""

    def __init__(self, profile):
        theirs_in, self.out = os.pipe()
        self.input, theirs_out = os.pipe()

        def arrange():  # the browser reads from descriptor 3 and writes to descriptor 4
            first, second = os.dup(theirs_in), os.dup(theirs_out)
            os.dup2(first, 3)
            os.dup2(second, 4)

        self.process = subprocess.Popen(
            ["chromium-headless-shell", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
             "--remote-debugging-pipe", "--hide-scrollbars", f"--user-data-dir={profile}", "about:blank"],
            preexec_fn=arrange, close_fds=False, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(theirs_in)
        os.close(theirs_out)
        self.count, self.rest, self.session, self.events = 0, b"", None, []
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(f"{domain}.enable")

    def receive(self):
        while b"\0" not in self.rest:
            ready = select.select([self.input], [], [], LIMIT)[0]
            piece = os.read(self.input, 1 << 20) if ready else b""
            if not piece:
                raise SystemExit("check: the browser " + ("has ended unexpectedly" if ready else "does not answer"))
            self.rest += piece
        text, self.rest = self.rest.split(b"\0", 1)
        return json.loads(text)

    def call(self, method, **params):
        self.count += 1
        message = {"id": self.count, "method": method, "params": params}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.out, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.receive()
            if answer.get("id") == self.count:
                if "error" in answer:
                    raise SystemExit(f"check: {method}: {answer['error']['message']}")
                return answer["result"]
            self.events.append(answer)

    def open(self, address):
        self.events.clear()
        self.call("Page.navigate", url=address)
        while not any(e.get("method") == "Page.loadEventFired" for e in self.events):
            self.events.append(self.receive())

    def run(self, script):
        result = self.call("Runtime.evaluate", expression=script, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in result:
            raise SystemExit(f"check: {result['exceptionDetails']}")
        return result["result"].get("value")

    def device(self, width, height, scheme):
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1,
                  mobile=width < 600)
        self.call("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])

    def complaints(self):
        """Yields the errors that the page wrote to the console, and the files that failed to load."""
        for event in self.events:
            params = event.get("params", {})
            if event.get("method") == "Runtime.exceptionThrown":
                yield params["exceptionDetails"]["text"]
            elif event.get("method") == "Runtime.consoleAPICalled" and params["type"] in ("error", "assert"):
                yield str(params["args"])
            elif event.get("method") == "Log.entryAdded" and params["entry"]["level"] == "error":
                yield params["entry"]["text"] + " " + params["entry"].get("url", "")
            elif event.get("method") == "Network.loadingFailed":
                yield params["errorText"]

    def shoot(self, path):
        path.write_bytes(base64.b64decode(self.call("Page.captureScreenshot", format="png")["data"]))

    def end(self):
        self.process.kill()
        self.process.wait()


class Quiet(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass


class Check:
    def __init__(self, browser, base, axe):
        self.browser, self.base, self.axe = browser, base, axe
        self.found = []
        self.ids = functools.lru_cache(None)(
            lambda name: set(re.findall(r'\bid="([^"]*)"', (OUT / name).read_text())))

    def fault(self, page, text):
        self.found.append(f"{page}: {text}")

    def links(self, page):
        for address in self.browser.run("[...new Set([...document.links].map(a => a.href))]"):
            if not address.startswith(self.base):
                continue
            path = urllib.parse.urlsplit(address[len(self.base):])
            name, anchor = urllib.parse.unquote(path.path), urllib.parse.unquote(path.fragment)
            if not (OUT / (name or "index.html")).is_file():
                self.fault(page, f"dead link to {name}")
            elif anchor and anchor not in self.ids(name):
                self.fault(page, f"dead link to {name}#{anchor}")

    def glance(self, name, width, height, scheme):
        self.browser.device(width, height, scheme)
        self.browser.open(self.base + name)
        for text in self.browser.complaints():
            self.fault(name, f"{width} px: {text}")
        wide = self.browser.run("document.documentElement.scrollWidth")
        if wide > width:
            self.fault(name, f"is {wide} px wide at {width}")

    def look(self, name):
        for width, height, scheme in WIDTHS:
            self.glance(name, width, height, scheme)
            self.browser.run(self.axe)
            for text in self.browser.run(AXE):
                self.fault(name, f"{width} px, {scheme}: {text}")
        self.links(name)

    def search(self, words, where, address):
        self.browser.open(self.base + "search.html?q=" + urllib.parse.quote(words))
        hits = self.browser.run("[...document.querySelectorAll('#results a')].map(a => a.getAttribute('href'))")
        if not any(hit.startswith(address) for hit in hits[:10]):
            self.fault("search.html", f'"{words}" does not find {address} of the {where} among the first ten')

    def shoot(self, name, device, picture):
        self.browser.device(*device)
        self.browser.open(self.base + name)
        self.browser.shoot(ROOT / "build/docs" / picture)


def chosen(pages, everything):
    reference = [p for p in pages if re.match(r"(class|struct|union)|.*_8h", p)]
    others = [p for p in pages if p not in reference]
    return pages if everything else others + reference[:: max(1, len(reference) // SAMPLE)][:SAMPLE]


def main():
    axe, everything = pathlib.Path(sys.argv[1]).read_text(), "--all" in sys.argv[2:]
    handler = functools.partial(Quiet, directory=OUT)
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    pages = sorted(path.name for path in OUT.glob("*.html"))
    closely = set(chosen(pages, everything))
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as profile:
        browser = Browser(profile)
        try:
            check = Check(browser, f"http://127.0.0.1:{server.server_port}/", axe)
            for name in pages:
                if name in closely:
                    check.look(name)
                else:
                    check.glance(name, *WIDTHS[0])
            check.search("timeouts", "guide", "guide-threads.html#timeouts")
            check.search("boundedWait", "reference", "classQBLThreadSemaphore.html#")
            check.shoot("index.html", (1400, 900, "light"), "home-1400-light.png")
            check.shoot("guide-threads.html", (400, 800, "dark"), "guide-400-dark.png")
        finally:
            browser.end()
    for text in check.found:
        print(text)
    print(f"{len(pages)} pages, {len(closely)} of them closely: {len(check.found)} faults; "
          "screenshots: build/docs/home-1400-light.png, build/docs/guide-400-dark.png")
    return 1 if check.found else 0


if __name__ == "__main__":
    sys.exit(main())
