"""Headless Chromium, driven through its debugging pipe."""

import fcntl
import json
import os
import select
import shutil
import subprocess
import tempfile
import time

# What a page shows once its pictures have loaded or failed.
LOOK = """
(async () => {
    const pictures = [...document.images];
    await Promise.all(pictures.map(picture => picture.complete || new Promise(done => {
        picture.onload = picture.onerror = done;
    })));
    return {
        pictures: pictures.map(p => ({source: p.src, loaded: p.naturalWidth > 0})),
        text: document.body ? document.body.innerText : '',
        links: [...document.querySelectorAll('a[href], area[href]')].map(link => link.href),
        anchors: [...document.querySelectorAll('[id]')].map(element => element.id)
            .concat([...document.querySelectorAll('a[name]')].map(link => link.name)),
    };
})()
"""


class BrowserError(Exception):
    pass


class Browser:
    """One tab. Every wait ends with the time limit, in seconds from the start."""

    def __init__(self, executable, limit):
        self._deadline = time.monotonic() + limit
        self._received = b""
        self._number = 0
        self.complaints = []  # failed requests and errors of scripts, as text
        self._profile = tempfile.mkdtemp(prefix="docs-browser-")
        command_read, self._commands = os.pipe()
        self._answers, answer_write = os.pipe()

        def place_pipes():  # Chromium reads from 3 and writes to 4
            read = fcntl.fcntl(command_read, fcntl.F_DUPFD, 10)
            write = fcntl.fcntl(answer_write, fcntl.F_DUPFD, 10)
            os.dup2(read, 3)
            os.dup2(write, 4)

        arguments = [executable, "--headless=new", "--remote-debugging-pipe", "--disable-gpu",
                     "--no-first-run", "--disable-extensions", "--disable-dev-shm-usage",
                     "--disable-background-networking", "--user-data-dir=" + self._profile]
        if os.geteuid() == 0:
            arguments.append("--no-sandbox")
        self._process = subprocess.Popen(arguments, close_fds=False, preexec_fn=place_pipes,
                                         stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                         stderr=subprocess.DEVNULL)
        os.close(command_read)
        os.close(answer_write)
        self._session = None
        target = self._call("Target.createTarget", url="about:blank")["targetId"]
        self._session = self._call("Target.attachToTarget", targetId=target,
                                   flatten=True)["sessionId"]
        for domain in ("Page", "Network", "Runtime"):
            self._call(domain + ".enable")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.kill()
        self._process.wait()
        os.close(self._commands)
        os.close(self._answers)
        shutil.rmtree(self._profile, ignore_errors=True)

    def look_at(self, url):
        """Opens a page and returns its pictures, text, links and anchors."""
        self._loaded = False
        answer = self._call("Page.navigate", url=url)
        if "errorText" in answer:
            raise BrowserError(url + ": " + answer["errorText"])
        while not self._loaded:
            self._receive()
        result = self._call("Runtime.evaluate", expression=LOOK, awaitPromise=True,
                            returnByValue=True)
        if "exceptionDetails" in result:
            raise BrowserError(url + ": " + str(result["exceptionDetails"]))
        return result["result"]["value"]

    def _call(self, method, **parameters):
        self._number += 1
        message = {"id": self._number, "method": method, "params": parameters}
        if self._session:
            message["sessionId"] = self._session
        os.write(self._commands, json.dumps(message).encode() + b"\0")
        while True:
            answer = self._receive()
            if answer.get("id") == self._number:
                if "error" in answer:
                    raise BrowserError(method + ": " + str(answer["error"]))
                return answer["result"]

    def _receive(self):
        while b"\0" not in self._received:
            left = self._deadline - time.monotonic()
            if left <= 0 or not select.select([self._answers], [], [], left)[0]:
                raise BrowserError("the browser did not answer in time")
            part = os.read(self._answers, 1 << 16)
            if not part:
                raise BrowserError("the browser ended")
            self._received += part
        text, self._received = self._received.split(b"\0", 1)
        message = json.loads(text)
        self._note(message.get("method"), message.get("params", {}))
        return message

    def _note(self, event, details):
        if event == "Page.loadEventFired":
            self._loaded = True
        elif event == "Network.requestWillBeSent":
            self._requests = getattr(self, "_requests", {})
            self._requests[details["requestId"]] = details["request"]["url"]
        elif event == "Network.loadingFailed" and not details.get("canceled"):
            url = self._requests.get(details["requestId"], "a request")
            self.complaints.append("failed request: " + url + ": " + details["errorText"])
        elif event == "Runtime.exceptionThrown":
            thrown = details["exceptionDetails"]
            text = thrown.get("exception", {}).get("description", thrown["text"])
            self.complaints.append("script: " + thrown.get("url", "") + ": " + text)
