#!/usr/bin/env python3
"""A real browser follows the library's short address to a very long one.

A game under Wine loads the library and opens a long address while Chrome is its cold default browser; the library hands
out the short address. A headless browser of this machine, which shares the loopback network with the game, opens it, and
the server of this script must see the long address exactly as it was given.
"""
import argparse
import hashlib
import http.server
import os
import queue
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading

BROWSERS = ("chromium-headless-shell", "chromium", "google-chrome")
ADDRESS_BYTES = 60000
WAIT_S = 90


class Failure(Exception):
    pass


def require(holds, what):
    if not holds:
        raise Failure(what)


def find_browser():
    wanted = os.environ.get("ZEMO_TEST_BROWSER")
    for name in (wanted,) if wanted else BROWSERS:
        if path := shutil.which(name):
            return path
    raise Failure("no browser found; the ground brings chromium-headless-shell, ZEMO_TEST_BROWSER names another one")


class Landing(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        self.server.targets.put(self.path)
        page = f"<p>arrived {hashlib.sha256(self.path.encode()).hexdigest()}</p>".encode()
        self.send_response(200)
        self.send_header("Content-Type", "text/html")
        self.send_header("Content-Length", str(len(page)))
        self.end_headers()
        self.wfile.write(page)

    def log_message(self, *_):
        pass


class LongLineServer(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def __init__(self):
        super().__init__(("127.0.0.1", 0), Landing)
        self.targets = queue.Queue()


def long_target():
    parts = ["/landing/page?state="]
    length = len(parts[0])
    i = 0
    while length < ADDRESS_BYTES:
        piece = f"{i:05d}-%41%E3%85%8B~_."
        parts.append(piece)
        length += len(piece)
        i += 1
    return "".join(parts)


def read_line(stream):
    lines = queue.Queue()
    threading.Thread(target=lambda: lines.put(stream.readline()), daemon=True).start()
    try:
        return lines.get(timeout=WAIT_S).strip()
    except queue.Empty:
        raise Failure("the game handed out no address") from None


def answer_of(port, target):
    with socket.create_connection(("127.0.0.1", port), timeout=WAIT_S) as client:
        client.sendall(f"GET {target} HTTP/1.1\r\n\r\n".encode())
        return b"".join(iter(lambda: client.recv(65536), b"")).decode()


def end(process):
    """Ends a process group that this script started."""
    if process and process.poll() is None:
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()


def run(game_command, folder):
    browser_path = find_browser()
    server = LongLineServer()
    threading.Thread(target=server.serve_forever, daemon=True).start()
    target = long_target()
    url_file = os.path.join(folder, "address.txt")
    with open(url_file, "w", encoding="ascii") as out:
        out.write(f"http://127.0.0.1:{server.server_address[1]}{target}")

    game = browser = None
    try:
        game = subprocess.Popen([*game_command, "follow", "Z:" + url_file.replace("/", "\\")], stdin=subprocess.PIPE,
                                stdout=subprocess.PIPE, text=True, start_new_session=True)
        address = read_line(game.stdout)
        match = re.fullmatch(r"http://127\.0\.0\.1:(\d+)(/\?requestId=[0-9a-f]{16})", address)
        require(match, f"not a short address: {address!r}")

        browser = subprocess.Popen([browser_path, "--headless", "--no-sandbox", "--disable-gpu", "--no-first-run",
                                    "--user-data-dir=" + os.path.join(folder, "profile"), "--dump-dom", address],
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                   start_new_session=True, env={**os.environ, "HOME": folder, "NO_PROXY": "127.0.0.1"})
        try:
            page, noise = browser.communicate(timeout=WAIT_S)
        except subprocess.TimeoutExpired:
            raise Failure("the browser did not finish") from None
        require(browser.returncode == 0, f"the browser failed ({browser.returncode}): {noise[-2000:]}")

        seen = []
        while not server.targets.empty():
            seen.append(server.targets.get())
        landings = [path for path in seen if path.startswith("/landing/")]
        require(len(landings) == 1, f"{len(landings)} requests instead of one; other paths: {[p[:80] for p in seen]}")
        require(landings[0] == target, f"the address changed: {len(landings[0])} bytes instead of {len(target)}")
        require("arrived " + hashlib.sha256(target.encode()).hexdigest() in page, f"the page is not there: {page[:500]!r}")

        again = answer_of(int(match[1]), match[2])
        require(again == "HTTP/1.1 404 Not Found\r\n\r\n", f"the short address works twice: {again[:200]!r}")

        game.stdin.close()
        require(game.wait(WAIT_S) == 0, f"the game ended with {game.returncode}")
        print(f"{os.path.basename(browser_path)} followed {match[2]} to {len(target)} bytes, intact")
    finally:
        end(browser)
        end(game)
        server.shutdown()
        server.server_close()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("game", nargs="+", help="the command that starts browser_game.exe")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="zemo-follow-", ignore_cleanup_errors=True) as folder:
        try:
            run(arguments.game, folder)
        except Failure as failure:
            print(f"follow_redirect: {failure}", file=sys.stderr)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
