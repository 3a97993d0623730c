#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Makes the site: the documents, the reference by family, the manual pages and the files that they link to.

    make_site.py MAN_FOLDER TARGET

Doxygen reads what this program writes to TARGET/input, and the headers. The site is TARGET/html. Run it in the root of
the repository. A link to a file or heading that does not exist is an error, and so is every warning of Doxygen.
"""
import html
import os
import pathlib
import re
import shutil
import subprocess
import sys

from families import FAMILIES

# The documents: file and identifier.
IDENTIFIERS = {
    "README.md": "index",
    "docs/guide.md": "guide",
    "docs/gallery.md": "gallery",
    "docs/functions.md": "functions",
    "docs/performance.md": "performance",
    "docs/compatibility.md": "compatibility",
    "docs/reliability.md": "reliability",
    "docs/scale.md": "scale",
    "CHANGELOG.md": "changes",
    "CONTRIBUTING.md": "contributing",
    "SECURITY.md": "security",
}
# The menu after the start page. A group without a title is a row of single entries.
MENU = [
    (None, [("guide", "Guide"), ("gallery", "Gallery")]),
    ("Functions", [("tasks", "By task"), ("functions", "In a table"), ("manual", "Manual pages")]),
    (None, [("performance", "Performance")]),
    ("In production", [("compatibility", "Compatibility"), ("reliability", "Reliability"), ("scale", "Many machines")]),
    ("Project", [("changes", "Changes"), ("contributing", "Contributing"), ("security", "Security")]),
]
HEADERS = sorted(pathlib.Path("include").glob("*.h"))
LINK = re.compile(r"(!?)\[((?:[^\]\\]|\\.)*)\]\(([^)\s]+)\)")
HEADING = re.compile(r"^(#+) (.*)$")
LANGUAGES = {".cpp": "cpp", ".h": "cpp", ".c": "c", ".py": "py", ".sh": "sh"}


def slug(heading):
    """The anchor that Markdown viewers give a heading."""
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def identifier_of(title):
    return slug(title).replace("-", "_")


def label(document, heading):
    return f"{IDENTIFIERS[document]}_{identifier_of(heading)}"


def titled(family):
    return family.about[0].upper() + family.about[1:]


def page_of_group(name):
    """The file that Doxygen writes for a topic."""
    return "group__" + name.replace("_", "__") + ".html"


def exported_names():
    """The functions that the headers declare."""
    return {name for header in HEADERS for name in re.findall(r"\b(\w+)\(", re.sub(r"//.*", "", header.read_text()))}


def quoted_code(match):
    """Code with a single quote, at which Doxygen would end it."""
    return f"<code>{html.escape(match.group(1))}</code>"


def without_comment(text):
    return re.sub(r"\A<!--.*?-->\s*", "", text, flags=re.DOTALL)


class Site:
    """Writes the pages, and notes on the way which pictures and sources they need."""

    def __init__(self, target):
        self.input = target / "input"
        self.html = target / "html"
        self.pictures = set()
        self.sources = set()
        self.names = exported_names()
        shutil.rmtree(target, ignore_errors=True)
        self.input.mkdir(parents=True)

    def write(self, name, text):
        (self.input / name).write_text(text)

    def image(self, text, file):
        if not file.is_file():
            raise ValueError(f"no picture {file}")
        self.pictures.add(file)
        return f'<img src="images/{file.name}" alt="{text}"/>'

    def link(self, document, match):
        """Turns a link of a document into one of the site."""
        is_image, text, address = match.groups()
        if re.match(r"\w+:", address):
            return match.group(0)
        path, _, anchor = address.partition("#")
        file = pathlib.Path(os.path.normpath(pathlib.Path(document).parent / path)) if path else pathlib.Path(document)
        if is_image:
            return self.image(text, file)
        return f"[{text}](@ref {self.place(file, anchor)})"

    def reference(self, match):
        """A name in a document becomes a link if it is that of a function."""
        return f"[{match.group(1)}](@ref {match.group(1)})" if match.group(1) in self.names else match.group(0)

    def place(self, file, anchor):
        """The label of a file, or of a heading in it."""
        if str(file) in IDENTIFIERS:
            if not anchor:
                return IDENTIFIERS[str(file)]
            headings = [m.group(2) for m in map(HEADING.match, file.read_text().splitlines()) if m]
            return next(label(str(file), h) for h in headings if slug(h) == anchor)
        if file in HEADERS:
            return file.name
        if not file.exists():
            raise ValueError(f"no file {file}")
        return self.source(file)

    def source(self, path):
        """The page of a file or folder that a document links to."""
        self.sources.add(path)
        return "source_" + re.sub(r"\W", "_", str(path))

    def translated(self, document, text):
        """A document with labels at its headings and links within the site. Code blocks stay as they are."""
        out, in_code = [], False
        for line in without_comment(text).splitlines():
            if line.lstrip().startswith("```"):
                in_code = not in_code
            elif not in_code:
                line = LINK.sub(lambda match: self.link(document, match), line)
                heading = HEADING.match(line)
                if not heading:
                    line = re.sub(r"`([^`]*'[^`]*)`", quoted_code, line)
                    line = re.sub(r"(?<![\[`])`(\w+)`(?!\])", self.reference, line)
                if heading:
                    line = self.labelled(document, heading)
            out.append(line)
        return "\n".join(out) + "\n"

    def labelled(self, document, heading):
        """A heading with its label. Those of the start page stay out of the menu, beside the titles of documents."""
        level, text = len(heading.group(1)), heading.group(2)
        if level == 1:
            return f"{heading.group(0)} {{#{IDENTIFIERS[document]}}}"
        if document == "README.md":
            return f"<h{level}>{text}</h{level}>\n"
        return f"{heading.group(0)} {{#{label(document, text)}}}"

    def write_documents(self):
        for document, identifier in IDENTIFIERS.items():
            text = self.translated(document, pathlib.Path(document).read_text())
            if identifier == "index":
                text = text.replace("{#index}", "{#mainpage}", 1)
            self.write(identifier + ".md", text)

    def write_sources(self):
        """One page for each file that a document links to; a folder has a page that lists its files."""
        for path in sorted(self.sources):
            if path.is_dir():
                listed = sorted(f for f in path.iterdir() if f.is_file() and f.suffix in LANGUAGES)
                body = "\n".join(f"- [{f.name}](@ref {self.source(f)})" for f in listed)
                self.write(self.source(path) + ".md", f"# {path} {{#{self.source(path)}}}\n\n{body}\n")
        for path in sorted(p for p in self.sources if p.is_file()):
            language = LANGUAGES.get(path.suffix, "")
            self.write(self.source(path) + ".md",
                       f"# {path.name} {{#{self.source(path)}}}\n\n```{language}\n{path.read_text()}```\n")

    def write_families(self):
        """The topics, and the page that shows them with a picture each."""
        topics, cards = [], []
        for family in FAMILIES:
            title = titled(family)
            picture = self.image(family.picture_text, pathlib.Path("docs/images") / family.picture)
            topics.append(f"/** @defgroup {family.page} {title}\n\n{picture}\n\n"
                          f"Manual page: @ref man_{family.page} \"{family.page}(3)\" */")
            cards.append(f'<a class="family" href="{page_of_group(family.page)}">{picture}<span>{title}</span></a>')
        self.write("families.dox", "\n".join(topics) + "\n")
        self.write("tasks.md", "# Functions by task {#tasks}\n\n" + self.translated(
            "README.md", "Every function in a table: [all functions](docs/functions.md).\n") +
                   '\n@htmlonly[block]<div class="families">' + "".join(cards) + "</div>@endhtmlonly\n")

    def write_headers(self):
        """The headers, with the groups of each family as topics."""
        family_of = {group: family.page for family in FAMILIES for group in family.groups}
        for header in HEADERS:
            def topic(match):
                title = match.group(1)
                return f"/// @defgroup {identifier_of(title)} {title}\n/// @ingroup {family_of[title]}\n///"
            self.write(header.name, re.sub(r"/// @name (.*)\n///(?=\n)", topic, re.sub(
                r"(/// @name .*\n)(?!///\n)", r"\1///\n", header.read_text())))

    def write_manual(self, man):
        pages = sorted(p for p in man.glob("man?/*") if not p.read_text().startswith(".so "))
        listed = []
        for page in pages:
            name, section = page.name.rsplit(".", 1)
            body = subprocess.run(["mandoc", "-T", "html", "-O", "fragment", page], check=True, text=True,
                                  capture_output=True).stdout
            # The headings' anchors would occur on several pages, and Doxygen makes its own.
            body = re.sub(r'<a class="permalink"[^>]*>(.*?)</a>', r"\1", body, flags=re.DOTALL)
            self.write(f"man_{name}.html", f'<div class="manual">{body}</div>')
            self.write(f"man_{name}.md",
                       f"# {name}({section}) {{#man_{name}}}\n\n@htmlinclude[block] man_{name}.html\n")
            listed.append(f"- [{name}({section})](@ref man_{name})")
        self.write("manual.md", "# Manual pages {#manual}\n\n" + "\n".join(listed) + "\n")

    def write_layout(self):
        def tab(identifier, title):
            return f'<tab type="user" url="@ref {identifier}" title="{title}"/>'

        def group(title, identifier, tabs):
            return f'<tab type="usergroup" url="@ref {identifier}" title="{title}">{"".join(tabs)}</tab>'
        families = [group(titled(family), family.page, [tab(identifier_of(name), name) for name in family.groups])
                    for family in FAMILIES]
        tabs = ['<tab type="mainpage" title="Start"/>']
        for title, members in MENU:
            if title is None:
                tabs += [tab(*member) for member in members]
            else:
                listed = [tab(*member) for member in members]
                tabs.append(group(title, members[0][0], families + listed if title == "Functions" else listed))
        (self.input / "layout.xml").write_text(
            '<doxygenlayout version="1.0"><navindex>' + "".join(tabs) + "</navindex></doxygenlayout>\n")

    def run_doxygen(self):
        settings = (self.input / "Doxyfile")
        settings.write_text(f"@INCLUDE = docs/site/Doxyfile\nINPUT = {self.input}\nEXAMPLE_PATH = {self.input}\n"
                            f"LAYOUT_FILE = {self.input}/layout.xml\nOUTPUT_DIRECTORY = {self.html.parent}\n"
                            f"STRIP_FROM_PATH = {self.input}\n")
        subprocess.run(["doxygen", settings], check=True)
        (self.html / "images").mkdir()
        for picture in self.pictures:
            shutil.copy(picture, self.html / "images")


def main(man, target):
    site = Site(pathlib.Path(target))
    site.write_documents()
    site.write_families()
    site.write_headers()
    site.write_manual(pathlib.Path(man))
    site.write_sources()
    site.write_layout()
    site.run_doxygen()


if __name__ == "__main__":
    main(*sys.argv[1:])
