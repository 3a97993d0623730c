# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The plug-in for OCRmyPDF finds text that OCRmyPDF alone does not find, and leaves valid files."""
import os
import re
import subprocess
import sys

import img2pdf
import pytest

# Lines that pagegen draws.
LINES = ["grips a little earlier than the other", "Then the reader of the archive searches for a word",
         "Straightening is cheap", "back by that angle", "The light of a scanner falls off towards the edges"]


def run(*command):
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, check=False)


def ocr(*options):
    return run(sys.executable, "-m", "ocrmypdf", "--output-type", "pdf", "-j", "2", *options)


def with_plugin(*options):
    return ocr("--plugin", "opcv_dlib.ocrmypdf", *options)


def images(pdf):
    """The columns of pdfimages for each image: page, width, height, colour, bits, encoding, dots per inch."""
    table = run("pdfimages", "-list", pdf).stdout.splitlines()[2:]
    rows = [line.split() for line in table]
    return [dict(page=int(r[0]), size=(int(r[3]), int(r[4])), colour=r[5], bits=int(r[7]), encoding=r[8], dpi=int(r[12]))
            for r in rows]


def page_sizes(pdf):
    return re.findall(r"Page.*size: *(.*)", run("pdfinfo", "-l", 9, pdf).stdout)


def found(text):
    return [line for line in LINES if line in text]


@pytest.fixture(scope="module")
def scan(tmp_path_factory):
    """Two skewed pages of 200 dots per inch as a PDF."""
    folder = tmp_path_factory.mktemp("scan")
    pages = []
    for number, skew in enumerate(("3.4", "-2.9")):
        page = folder / f"page{number}.jpg"
        subprocess.run([os.environ["OPCV_DLIB_PAGEGEN"], "--grey", "--dpi", "200", "--skew", skew, page], check=True)
        pages.append(str(page))
    pdf = folder / "scan.pdf"
    pdf.write_bytes(img2pdf.convert(pages))
    return pdf


def test_text_is_found_that_is_lost_without_it(scan, tmp_path):
    plain = ocr("--pages", "1", "--sidecar", tmp_path / "plain.txt", scan, tmp_path / "plain.pdf")
    assert plain.returncode == 0, plain.stderr
    done = with_plugin("--sidecar", tmp_path / "text", scan, tmp_path / "done.pdf")
    assert done.returncode == 0, done.stderr
    pages = (tmp_path / "text").read_text().split("\f")
    assert found(pages[0]) == LINES and found(pages[1]) == LINES
    assert len(found((tmp_path / "plain.txt").read_text())) < len(LINES)

    check = run("qpdf", "--check", tmp_path / "done.pdf")
    assert check.returncode == 0, check.stdout
    assert page_sizes(tmp_path / "done.pdf") == page_sizes(scan)
    assert [i["size"] for i in images(tmp_path / "done.pdf")] == [i["size"] for i in images(scan)]


def test_pages_that_are_left_out_stay_as_they_are(scan, tmp_path):
    done = with_plugin("--pages", "2", "--opcv-1-bit", "--tesseract-timeout", "0", scan,
                       tmp_path / "done.pdf")
    assert done.returncode == 0, done.stderr
    first, second = images(tmp_path / "done.pdf")
    assert first == images(scan)[0]
    assert (second["bits"], second["colour"]) == (1, "gray")
    assert second["size"] == images(scan)[1]["size"] and second["dpi"] == 200


def test_kept_skew_and_specks_keep_the_page(scan, tmp_path):
    done = with_plugin("--opcv-keep-skew", "--opcv-keep-specks", "--pages", "1", "--tesseract-timeout", "0", scan,
                       tmp_path / "done.pdf")
    assert done.returncode == 0, done.stderr
    straight = with_plugin("--pages", "1", "--tesseract-timeout", "0", scan, tmp_path / "straight.pdf")
    assert straight.returncode == 0, straight.stderr

    def grey_values(pdf):
        subprocess.run(["pdftoppm", "-gray", "-r", "50", "-f", "1", "-l", "1", pdf, tmp_path / "page"], check=True)
        return next(tmp_path.glob("page*.pgm")).read_bytes()[-40000:]

    def difference(pdf):
        return sum(abs(a - b) for a, b in zip(grey_values(pdf), grey_values(scan))) / 40000

    assert difference(tmp_path / "done.pdf") < 2 < difference(tmp_path / "straight.pdf")


@pytest.mark.parametrize("option, message", [("--redo-ocr", "cannot be used with this plug-in"),
                                             ("--deskew", "--opcv-keep-skew")])
def test_options_that_contradict_are_refused(option, message, scan, tmp_path):
    refused = with_plugin(option, scan, tmp_path / "done.pdf")
    assert refused.returncode != 0
    assert message in refused.stderr
    assert not (tmp_path / "done.pdf").exists()
