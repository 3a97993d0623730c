# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Writes the manual pages from Doxygen's XML of the public headers.

    make_man.py XML_FOLDER VERSION DATE MAN_FOLDER HEADER...

Writes one page per family of functions in man3, opcv_dlib in man7, and for each function a page that refers to its
family. A function without a family below, or an empty manual page, is an error.
"""
import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree

from families import FAMILIES

STRUCTURES = {"Value types": ["IppiSize", "IppiPoint", "IppiRect", "KVRect"],
              "Records": ["KVIMG", "KVImageDescription", "KVImageHeader"],
              "JPEG reading with limits": ["opcv_read_options", "opcv_read_report", "opcv_rows"],
              "Skew of a page": ["opcv_skew"]}
OVERVIEW = "opcv_dlib"


def escaped(text):
    """Escapes text so that roff prints it unchanged."""
    return text.replace("\\", "\\e").replace("-", "\\-").replace("'", "\\(aq").replace("`", "\\(ga")


def inline(element):
    """Returns the text of an element, with emphasis as roff."""
    parts = [escaped(element.text or "")]
    for child in element:
        if child.tag == "computeroutput":
            parts.append("\\fB" + inline(child) + "\\fP")
        elif child.tag in ("bold", "emphasis"):
            parts.append("\\fI" + inline(child) + "\\fP")
        elif child.tag == "sp":
            parts.append(" ")
        elif child.tag in ("ref", "ulink"):
            parts.append(inline(child))
        elif child.tag in ("itemizedlist", "table", "parameterlist", "simplesect", "verbatim"):
            continue    # blocks, handled by paragraphs()
        else:
            raise ValueError(f"no manual page text for <{child.tag}>")
        parts.append(escaped(child.tail or ""))
    return "".join(parts)


def lines(text):
    """Splits text into one line per sentence; none begins like a roff request."""
    text = " ".join(text.split())
    sentences = re.split(r"(?<=[a-z0-9)P][.:]) (?=[A-Z\\])", text)
    return ["\\&" + s if s[:1] in ".'" else s for s in sentences if s]


def table(element):
    """Returns a table; a cell that lists several items has one line for each."""
    rows = [[inline(cell.find("para")).replace(", ", ",\n").split("\n") for cell in row] for row in element]
    columns, first = len(rows[0]), max(len(cell) for cell in rows[0])
    out = [".TS"] + ["lB2 " * (columns - 1) + "lB"] * first + ["l2 " * (columns - 1) + "l."]
    for row in rows:
        for line in range(max(len(cell) for cell in row)):
            out.append("\t".join(cell[line] if line < len(cell) else "" for cell in row))
    return out + [".TE"]


def bullets(element):
    out = []
    for item in element:
        body = [line for para in item for line in lines(inline(para))]
        out += [".IP \\(bu 2"] + body
    return out


def program(element):
    code = (element.text or "").strip("\n").split("\n")
    return [".PP", ".nf", ".RS"] + ["\\&" + escaped(line.strip()) for line in code] + [".RE", ".fi"]


def paragraphs(description):
    """Returns the blocks of a description, without parameters and results. Each begins with a roff request."""
    out = []
    for para in description:
        text = lines(inline(para))
        if text:
            out += [".PP"] + text
        for child in para:
            if child.tag == "itemizedlist":
                out += bullets(child)
            elif child.tag == "table":
                out += table(child)
            elif child.tag == "verbatim":
                out += program(child)
    return out


def entries(function, kind):
    """Yields the documented parameters, results or exceptions of a function as (name, text)."""
    for group in function.iter("parameterlist"):
        if group.get("kind") == kind:
            for item in group:
                names = ", ".join("".join(n.itertext()) for n in item.iter("parametername"))
                yield names, " ".join(inline(p) for p in item.find("parameterdescription"))


def returned(function):
    return [inline(p) for s in function.iter("simplesect") if s.get("kind") == "return" for p in s]


def parameter(element):
    """Returns one parameter as declared, with its name in italics."""
    kind = "".join(element.find("type").itertext()).replace(" *", "*").replace(" &", "&")
    name = element.findtext("declname") or ""
    array = element.findtext("array") or ""
    return ("\\fB" + escaped(kind) + "\\fP \\fI" + name + "\\fP" + escaped(array)).strip()


def prototype(function):
    result = "".join(function.find("type").itertext()).replace(" *", "*")
    arguments = [parameter(p) for p in function.findall("param")]
    if not arguments or "(void)" in function.findtext("argsstring"):
        arguments = ["\\fBvoid\\fP"]
    return f"\\fB{escaped(result)} {function.findtext('name')}(\\fP" + ", ".join(arguments) + "\\fB);\\fP"


def tagged(pairs):
    out = []
    for name, text in pairs:
        out += [".TP", ".I " + escaped(name)] + lines(text)
    return out


def function_text(function):
    name = function.findtext("name")
    out = [".SS " + name, ".HP", prototype(function)]
    text = paragraphs(function.find("briefdescription")) + paragraphs(function.find("detaileddescription"))
    if not text:
        raise ValueError(f"{name} has no description")
    out += text
    out += tagged(entries(function, "param"))
    results = list(entries(function, "retval"))
    if results:
        out += [".PP", "Returns:"] + tagged(results)
    elif returned(function):
        out += [".PP", "Returns:"] + [line for text in returned(function) for line in lines(text)]
    thrown = list(entries(function, "exception"))
    if thrown:
        out += [".PP", "Throws:"] + tagged(thrown)
    return out


def enumerator_text(enumeration):
    out = []
    for value in enumeration.findall("enumvalue"):
        title = value.findtext("name") + " " + value.findtext("initializer", "")
        out += [".TP", ".B " + escaped(title)]
        for part in ("briefdescription", "detaileddescription"):
            out += [line for para in value.find(part) for line in lines(inline(para))]
    return out


def type_text(member):
    text = paragraphs(member.find("briefdescription")) + paragraphs(member.find("detaileddescription"))
    return [".PP", "\\fB" + escaped(member.findtext("definition").replace(" *", "*")) + ";\\fP"] + text


def structure_text(name, folder):
    compound = ElementTree.parse(folder / f"struct{name.replace('_', '__')}.xml").getroot().find("compounddef")
    out = [".SS " + name]
    out += paragraphs(compound.find("briefdescription")) + paragraphs(compound.find("detaileddescription"))
    for field in compound.iter("memberdef"):
        kind = "".join(field.find("type").itertext()).replace(" *", "*")
        out += [".TP", "\\fB" + escaped(kind) + "\\fP \\fI" + field.findtext("name") + "\\fP"]
        for part in ("briefdescription", "detaileddescription"):
            out += [line for para in field.find(part) for line in lines(inline(para))]
    return out


def group_text(group, folder):
    """Returns the section of a group of the header: its description, then its types and functions."""
    title = group.findtext("header")
    out = [".SH " + title.upper()]
    if group.find("description") is not None:
        out += paragraphs(group.find("description"))
    for member in sorted(group.findall("memberdef"), key=lambda m: int(m.find("location").get("line"))):
        kind = member.get("kind")
        if kind == "function":
            out += function_text(member)
        elif kind == "enum":
            out += enumerator_text(member)
        elif kind == "typedef":
            out += type_text(member)
    for name in STRUCTURES.get(title, []):
        out += structure_text(name, folder)
    if len(out) == 1:
        raise ValueError(f"nothing under '{title}'")
    return out


def functions_of(groups):
    return [m for g in groups for m in g.findall("memberdef") if m.get("kind") == "function"]


def heading(page, section, version, date):
    return ["'\\\" t", f'.TH {page.upper()} {section} {date} "OPCV_dlib {version}" "OPCV_dlib"', ".nh", ".ad l"]


def see_also(page):
    others = [f"{family.page} (3)" for family in FAMILIES if family.page != page]
    if page != OVERVIEW:
        others.insert(0, f"{OVERVIEW} (7)")
    return [".SH SEE ALSO"] + [".BR " + o + ("," if o is not others[-1] else "") for o in others]


def include_lines(header="OPCV_dlib.h"):
    library = "OPCV_dlib_skew" if header == "OPCV_dlib_skew.h" else "OPCV_dlib"
    return [".nf", f"\\fB#include <{header}>\\fP", ".fi", ".PP", f"Link with \\fB\\-l{library}\\fP."]


class Header:
    """A public header: its groups, what it says about itself, and where its part for C++ begins."""

    def __init__(self, path, xml):
        path = pathlib.Path(path)
        self.name = path.name
        index = ElementTree.parse(xml / "index.xml").getroot()
        reference = next(c.get("refid") for c in index if c.get("kind") == "file" and c.findtext("name") == self.name)
        self.page = ElementTree.parse(xml / f"{reference}.xml").getroot().find("compounddef")
        self.groups = {g.findtext("header"): g for g in self.page.findall("sectiondef") if g.find("header") is not None}
        source = path.read_text(encoding="utf-8").splitlines()
        self.first_cplusplus_line = next(n for n, line in enumerate(source, 1) if line.startswith('}    // extern "C"'))

    def is_for_cplusplus(self, function):
        return int(function.find("location").get("line")) >= self.first_cplusplus_line

    def description(self):
        return paragraphs(self.page.find("detaileddescription"))


def synopsis(functions, header):
    out = [".SH SYNOPSIS"] + include_lines(header.name)
    for title, chosen in ((None, [f for f in functions if not header.is_for_cplusplus(f)]),
                          ("For C++ only:", [f for f in functions if header.is_for_cplusplus(f)])):
        if title and chosen:
            out += [".PP", title]
        for function in chosen:
            out += [".HP", prototype(function)]
    return out


def write(folder, section, page, content):
    # A heading already begins a paragraph.
    content = [line for before, line in zip([""] + content, content)
               if not (line == ".PP" and before.startswith((".SH", ".SS")))]
    path = folder / f"man{section}" / f"{page}.{section}"
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text("\n".join(content) + "\n", encoding="ascii")


def main(xml, version, date, target, *headers):
    xml, target = pathlib.Path(xml), pathlib.Path(target)
    headers = [Header(path, xml) for path in headers]
    header_of = {title: header for header in headers for title in header.groups}
    known = [title for family in FAMILIES for title in family.groups]
    if set(header_of) - set(known):
        raise ValueError(f"groups without a page: {sorted(set(header_of) - set(known))}")

    for family in FAMILIES:
        page, titles = family.page, family.groups
        header = next(header_of[t] for t in titles if t in header_of)
        functions = functions_of([header.groups[t] for t in titles if t in header.groups])
        names = [f.findtext("name") for f in functions]
        content = heading(page, 3, version, date)
        content += [".SH NAME", ", ".join([page] + names) + " \\- " + family.about]
        content += synopsis(functions, header)
        if header is not headers[0]:    # the first header's description is a separate page
            content += [".SH DESCRIPTION"] + header.description()
        for title in titles:
            if title in header.groups:
                content += group_text(header.groups[title], xml)
            else:    # Doxygen has no section for a group of structures only
                content += [".SH " + title.upper()]
                for name in STRUCTURES[title]:
                    content += structure_text(name, xml)
        write(target, 3, page, content + see_also(page))
        for name in names:
            write(target, 3, name, [f".so man3/{page}.3"])

    content = heading(OVERVIEW, 7, version, date)
    content += [".SH NAME", OVERVIEW + " \\- image primitives for document\\-scanner pipelines"]
    content += [".SH SYNOPSIS"] + include_lines()
    content += [".SH DESCRIPTION"] + headers[0].description()
    content += [".SH PAGES"]
    for family in FAMILIES:
        content += [".TP", f".BR {family.page} (3)", escaped(family.about[0].upper() + family.about[1:]) + "."]
    write(target, 7, OVERVIEW, content + see_also(OVERVIEW))


if __name__ == "__main__":
    main(*sys.argv[1:])
