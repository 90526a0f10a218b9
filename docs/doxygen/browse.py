# SPDX-License-Identifier: MIT

"""Opens every page of the reference in headless Chromium, as its reader does: browse.py [--pictures FOLDER].

It fails where a page logs an error, asks for a file that is not there, has a link that leads nowhere (anchors
included, also those that scripts make and those of the search), shows a picture that does not load, or leaves a formula
without its drawing; and where a page is wider than a phone.  With --pictures, a few pages as PNG files: wide and narrow,
light and dark.
"""

import base64
import json
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import urllib.parse

HTML = pathlib.Path(__file__).resolve().parents[2] / "build" / "docs" / "html"
WITH_FORMULAS = {"mathematics.html", "answers.html", "same_bits.html", "classTnLaHouseholder.html",
                 "tnla__linearsolve__i_8h.html"}
PICTURES = ["index", "classTnLaHouseholder", "classTnLaDblMat", "mathematics", "which_solver", "coming_from", "modules",
            "answers", "assertions", "tnla__linearsolve__i_8h"]

# What a page holds once its scripts are done.
LOOK = """(() => {
  const wrong = part => part && (part.type == 'merror' || (part.data ?? []).some(wrong));
  const formulas = window.MathJax?.Hub?.getAllJax() ?? [];
  return {
  links: [...document.querySelectorAll('a[href], area')].map(a => a.getAttribute('href') || a.getAttribute('xlink:href')),
  anchors: [...document.querySelectorAll('[id], a[name]')].flatMap(e => [e.id, e.name]),
  broken: [...document.images].filter(i => i.complete && i.naturalWidth == 0).map(i => i.src),
  formulas: document.querySelectorAll('script[type^="math/tex"]').length,
  drawn: document.querySelectorAll('.MathJax_SVG svg').length,
  wrong: formulas.filter(formula => wrong(formula.root)).map(formula => formula.originalText),
  };
})()"""

# What reaches beyond the right edge of the window, without a way to scroll to it.
OUTSIDE = """(() => {
  const scrolls = e => e && !e.matches('.contents') &&
      (['auto', 'scroll'].includes(getComputedStyle(e).overflowX) || scrolls(e.parentElement));
  return [...document.querySelectorAll('.contents *')].filter(e => {
    const box = e.getBoundingClientRect();
    return box.width > 0 && box.right > innerWidth + 1 && !scrolls(e.parentElement);
  }).map(e => e.tagName + '.' + (e.className.baseVal ?? e.className));
})()"""

# Done when the page is loaded and nothing is left to typeset.
SETTLED = """new Promise(done => {
  const typeset = () => window.MathJax && MathJax.Hub ? MathJax.Hub.Queue(() => done(true)) : done(true);
  document.readyState == 'complete' ? typeset() : addEventListener('load', typeset);
})"""


class Browser:
    """Chromium, spoken to through a pipe: JSON messages that end with a zero byte."""

    def __init__(self, folder):
        to_read, self.write_end = os.pipe()
        self.read_end, to_write = os.pipe()

        def connect():
            for source, target in ((os.dup(to_read), 3), (os.dup(to_write), 4)):
                os.dup2(source, target)
                os.set_inheritable(target, True)

        self.process = subprocess.Popen(
            ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--no-first-run", "--disable-sync",
             "--disable-background-networking", "--disable-component-update", "--hide-scrollbars",
             f"--user-data-dir={folder}", "--remote-debugging-pipe"],
            preexec_fn=connect, close_fds=False, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(to_read)
        os.close(to_write)
        self.buffer = b""
        self.number = 0
        self.events = []
        target = self.ask("Target.createTarget", url="about:blank")["targetId"]
        self.session = None
        self.session = self.ask("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.ask(f"{domain}.enable")

    def message(self):
        while b"\0" not in self.buffer:
            signal.alarm(300)  # ends a browser that says nothing any more, and the check with it
            part = os.read(self.read_end, 1 << 20)
            if not part:
                sys.exit("Chromium has ended")
            self.buffer += part
        text, self.buffer = self.buffer.split(b"\0", 1)
        return json.loads(text)

    def ask(self, method, **parameters):
        self.number += 1
        request = {"id": self.number, "method": method, "params": parameters}
        if getattr(self, "session", None):
            request["sessionId"] = self.session
        os.write(self.write_end, json.dumps(request).encode() + b"\0")
        while (answer := self.message()).get("id") != self.number:
            self.events.append(answer)
        if "error" in answer:
            sys.exit(f"{method}: {answer['error']}")
        return answer["result"]

    def evaluate(self, script):
        result = self.ask("Runtime.evaluate", expression=script, awaitPromise=True, returnByValue=True)
        if "exceptionDetails" in result:
            sys.exit(f"{script}: {result['exceptionDetails']}")
        return result["result"].get("value")

    def size(self, width, dark=False):
        self.ask("Emulation.setDeviceMetricsOverride", width=width, height=900, deviceScaleFactor=1, mobile=width < 600)
        self.ask("Emulation.setEmulatedMedia",
                 features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])

    def open(self, page):
        """Opens a page and returns what it complained about."""
        self.events.clear()
        self.ask("Page.navigate", url=page.as_uri())
        while not any(event.get("method") == "Page.loadEventFired" for event in self.events):
            self.events.append(self.message())
        self.evaluate(SETTLED)
        complaints = []
        for event in self.events:
            told = event.get("params", {})
            if event.get("method") == "Runtime.exceptionThrown":
                complaints.append(told["exceptionDetails"].get("exception", {}).get("description", "an exception"))
            elif event.get("method") == "Log.entryAdded" and told["entry"]["level"] in ("error", "warning"):
                complaints.append(told["entry"]["text"] + " " + told["entry"].get("url", ""))
            elif event.get("method") == "Runtime.consoleAPICalled" and told["type"] in ("error", "warning", "assert"):
                complaints.append(str([argument.get("value") for argument in told["args"]]))
            elif event.get("method") == "Network.loadingFailed" and not told.get("canceled"):
                complaints.append("not loaded: " + told["errorText"])
        return complaints

    def picture(self, file):
        file.write_bytes(base64.b64decode(self.ask("Page.captureScreenshot")["data"]))

    def close(self):
        self.ask("Browser.close")
        self.process.wait()


def search_links():
    for file in (HTML / "search").glob("*.js"):
        for link in re.findall(r"'\.\./([^']+\.html[^']*)'", file.read_text()):
            yield link


def check(browser):
    defects, seen = [], {}
    pages = sorted(HTML.glob("*.html"))
    for page in pages:
        browser.size(1280)
        found = browser.open(page)
        look = seen[page.name] = browser.evaluate(LOOK)
        if look["formulas"] != look["drawn"]:
            found.append(f"{look['drawn']} of {look['formulas']} formulas drawn")
        found += [f"no formula: {text}" for text in look["wrong"]]
        if page.name in WITH_FORMULAS and look["drawn"] == 0:
            found.append("no formula")
        found += [f"the picture {source} does not load" for source in look["broken"]]
        browser.size(400)
        found += [f"{element} is wider than a phone" for element in sorted(set(browser.evaluate(OUTSIDE)))]
        defects += [f"{page.name}: {text}" for text in found]
    links = [(page, link) for page, look in seen.items() for link in look["links"] if link]
    links += [("the search", link) for link in search_links()]
    for page, link in links:
        address = urllib.parse.urlsplit(urllib.parse.urljoin(page if page in seen else "", link))
        if address.scheme in ("http", "https", "javascript"):
            continue
        name = urllib.parse.unquote(address.path)
        if not (HTML / name).is_file():
            defects.append(f"{page}: {link} is not there")
        elif address.fragment and name in seen and urllib.parse.unquote(address.fragment) not in seen[name]["anchors"]:
            defects.append(f"{page}: {link} has no such anchor")
    formulas = sum(look["drawn"] for look in seen.values())
    print(f"{len(pages)} pages, {len(links)} links, {formulas} formulas, {len(defects)} defects")
    return defects


def pictures(browser, folder):
    folder.mkdir(parents=True, exist_ok=True)
    for width in (1280, 400):
        for dark in (False, True):
            browser.size(width, dark)
            for name in PICTURES:
                browser.open(HTML / f"{name}.html")
                browser.picture(folder / f"{name}_{width}_{'dark' if dark else 'light'}.png")


def main():
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
        browser = Browser(folder)
        defects = check(browser)
        if sys.argv[1:2] == ["--pictures"]:
            pictures(browser, pathlib.Path(sys.argv[2]))
        browser.close()
    if defects:
        sys.exit("\n".join(sorted(set(defects))))


main()
