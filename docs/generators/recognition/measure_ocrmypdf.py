# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Measures OCRmyPDF on skewed pages, alone and with the plug-in.

    measure_ocrmypdf.py [NUMBER...] > RESULTS.tsv

The lines are options, seconds a page and the share of wrong characters. NUMBER selects one of OPTIONS.
"""

import io
import pathlib
import sys
import tempfile
import time

import img2pdf

import pages
import tools

OPTIONS = ["", "--deskew --clean", "--plugin opcv_dlib.ocrmypdf", "--plugin opcv_dlib.ocrmypdf --opcv-1-bit"]
SKEWS = (1.4, -1.4, 3.4)
ROUNDS = 2    # the faster one counts


def write_scan(pdf):
    """Three skewed sheets as a PDF. Returns their texts."""
    streams, texts = [], []
    for number, skew in enumerate(SKEWS):
        image, text = pages.sheet(number)
        stream = io.BytesIO()
        pages.scanned(image, skew).save(stream, "jpeg", quality=90, dpi=(pages.DPI, pages.DPI))
        streams.append(stream.getvalue())
        texts.append(text)
    pdf.write_bytes(img2pdf.convert(streams))
    return texts


def seconds_of(options, pdf, text):
    """One page at a time, and one thread, so that times do not depend on the number of cores."""
    start = time.monotonic()
    tools.run(sys.executable, "-m", "ocrmypdf", "-j", "1", "--output-type", "pdf", "--sidecar", text, *options.split(),
              pdf, pdf.with_name("result.pdf"))    # fmt: skip
    return (time.monotonic() - start) / len(SKEWS)


def main(numbers):
    with tempfile.TemporaryDirectory(prefix="recognition-") as name:
        folder = pathlib.Path(name)
        texts = write_scan(folder / "scan.pdf")
        for options in [OPTIONS[number] for number in numbers]:
            seconds = min(seconds_of(options, folder / "scan.pdf", folder / "text") for _ in range(ROUNDS))
            found = [" ".join(text.split()) for text in (folder / "text").read_text().split("\f")]
            errors = [tools.character_error(*pair) for pair in zip(texts, found)]
            print(f"{options}\t{seconds:.2f}\t{sum(errors) / len(errors):.5f}", flush=True)


if __name__ == "__main__":
    main([int(number) for number in sys.argv[1:]] or range(len(OPTIONS)))
