#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Reads the site in headless Chromium: no page is wider than a phone, and the search finds functions.

    browse_site.py HTML_FOLDER SCREENSHOT_FOLDER
"""
import functools
import http.server
import pathlib
import socket
import sys
import threading

from selenium import webdriver
from selenium.webdriver.common.by import By
from selenium.webdriver.support.ui import WebDriverWait

PHONE = (390, 844)
DESKTOP = (1280, 1000)
SHOWN = ["index.html", "tasks.html", "guide.html", "performance.html"]    # pages to look at
# The name of the first part of the page that is too wide, or nothing.
TOO_WIDE = """
    const wide = [document.documentElement, document.getElementById('doc-content')].find(
        part => part && part.scrollWidth > part.clientWidth + 1);
    return wide ? (wide.id || wide.tagName) + ' ' + wide.scrollWidth : null;
"""


class Quiet(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass


def serve(folder):
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(Quiet, directory=folder))
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return f"http://127.0.0.1:{server.server_port}/"


def name_this_machine():
    """Selenium connects to localhost. A machine without /etc/hosts does not know the name."""
    known = socket.getaddrinfo

    def found(host, *rest, **options):
        return known("127.0.0.1" if host == "localhost" else host, *rest, **options)

    socket.getaddrinfo = found


def browser():
    options = webdriver.ChromeOptions()
    for option in ("--headless=new", "--no-sandbox", "--disable-gpu", "--hide-scrollbars", "--disable-dev-shm-usage",
                   "--remote-debugging-pipe"):
        options.add_argument(option)
    return webdriver.Chrome(options=options)


def look_as(chromium, size, phone):
    chromium.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": size[0], "height": size[1], "deviceScaleFactor": 1, "mobile": phone})


def found_by_search(chromium, word):
    """The text of the search results."""
    field = chromium.find_element(By.ID, "MSearchField")
    field.click()
    field.send_keys(word)

    def results(_):
        frames = chromium.find_elements(By.CSS_SELECTOR, "iframe#MSearchResults")    # before Doxygen 1.9.5
        if frames:
            chromium.switch_to.frame(frames[0])
        text = "\n".join(e.text for e in chromium.find_elements(By.CSS_SELECTOR, ".SRResult") if e.is_displayed())
        chromium.switch_to.default_content()
        return text

    return WebDriverWait(chromium, 20).until(results)


def main(folder, screenshots):
    folder, screenshots = pathlib.Path(folder), pathlib.Path(screenshots)
    screenshots.mkdir(parents=True, exist_ok=True)
    root = serve(folder)
    faults = []
    name_this_machine()
    chromium = browser()
    try:
        look_as(chromium, PHONE, True)
        pages = sorted(path.name for path in folder.glob("*.html"))
        for page in pages:
            chromium.get(root + page)
            wide = chromium.execute_script(TOO_WIDE)
            if wide:
                faults.append(f"{page} is wider than a phone: {wide}")
        for size, phone in ((PHONE, True), (DESKTOP, False)):
            look_as(chromium, size, phone)
            for page in SHOWN:
                chromium.get(root + page)
                chromium.save_screenshot(str(screenshots / f"{page.split('.')[0]}_{size[0]}.png"))
        chromium.get(root + "index.html")
        if "opcv_read_page" not in found_by_search(chromium, "opcv_read"):
            faults.append("the search does not find opcv_read_page")
    finally:
        chromium.quit()
    print("\n".join(faults) or f"{len(pages)} pages")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
