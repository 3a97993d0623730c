#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Checks the site: every link leads somewhere, every page can be reached, every picture has a text.

    check_site.py HTML_FOLDER
"""
import html.parser
import pathlib
import re
import sys
import urllib.parse


class Page(html.parser.HTMLParser):
    """Reads a page and lists its links, anchors and pictures."""

    def __init__(self, path):
        super().__init__()
        self.links, self.anchors, self.pictures, self.without_text = [], set(), [], []
        self.feed(path.read_text())

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        for name in ("id", "name"):
            if attributes.get(name):
                self.anchors.add(attributes[name])
        if tag == "a" and attributes.get("href"):
            self.links.append(attributes["href"])
        if tag == "img":
            self.pictures.append(attributes["src"])
            if not attributes.get("alt", "").strip():
                self.without_text.append(attributes["src"])


def menu_links(folder):
    """The menu is a script: its addresses stand in strings."""
    text = (folder / "menudata.js").read_text()
    return [link.replace("\\/", "/") for link in re.findall(r'url:"([^"]+)"', text)]


def main(folder):
    folder = pathlib.Path(folder)
    pages = {path.name: Page(path) for path in sorted(folder.glob("*.html"))}
    faults = []

    def follow(source, link):
        """Returns the page that a link leads to, or None for one outside the site."""
        address = urllib.parse.urlparse(link)
        if address.scheme in ("http", "https", "mailto", "javascript"):
            return None
        target = urllib.parse.unquote(address.path) or source
        if target not in pages:
            if not (folder / target).is_file():
                faults.append(f"{source}: {link} leads nowhere")
            return None
        if address.fragment and address.fragment not in pages[target].anchors:
            faults.append(f"{source}: {link} names no place in {target}")
        return target

    links = {name: {follow(name, link) for link in page.links} for name, page in pages.items()}
    links["index.html"] |= {follow("index.html", link) for link in menu_links(folder)}
    reached, waiting = set(), ["index.html"]
    while waiting:
        name = waiting.pop()
        if name not in reached:
            reached.add(name)
            waiting += [target for target in links[name] if target]
    faults += [f"{name} cannot be reached" for name in sorted(set(pages) - reached)]
    for name, page in pages.items():
        faults += [f"{name}: the picture {picture} has no text" for picture in page.without_text]
        faults += [f"{name}: no picture {picture}" for picture in page.pictures if not (folder / picture).is_file()]
    print("\n".join(faults) or f"{len(pages)} pages")
    return 1 if faults or not pages else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
