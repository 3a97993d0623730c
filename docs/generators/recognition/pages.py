# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Draws scanned pages whose text is known: A5, 300 dots per inch, 8 bits of grey."""

import textwrap

import numpy as np
from PIL import Image, ImageDraw, ImageFont

FONTS = "/usr/share/fonts/opentype/urw-base35/"
DPI = 300
SIZE = (1748, 2480)
MARGIN = 200
PAPER, INK, DARK = 245, 35, 58

TALE = (
    "It was the best of times, it was the worst of times, it was the age of wisdom, it was the age of foolishness, "
    "it was the epoch of belief, it was the epoch of incredulity, it was the season of Light, it was the season of "
    "Darkness, it was the spring of hope, it was the winter of despair, we had everything before us, we had nothing "
    "before us, we were all going direct to Heaven, we were all going direct the other way. There were a king with a "
    "large jaw and a queen with a plain face, on the throne of England; there were a king with a large jaw and a queen "
    "with a fair face, on the throne of France. In both countries it was clearer than crystal to the lords of the State "
    "preserves of loaves and fishes, that things in general were settled for ever."
)
ISLANDS = (
    "When on board the ship as naturalist, I was much struck with certain facts in the distribution of the inhabitants "
    "of South America, and in the geological relations of the present to the past inhabitants of that continent. These "
    "facts seemed to me to throw some light on the origin of species, that mystery of mysteries, as it has been called "
    "by one of our greatest philosophers. On my return home, it occurred to me that something might perhaps be made out "
    "on this question by patiently accumulating and reflecting on all sorts of facts which could possibly have any "
    "bearing on it. After five years' work I allowed myself to speculate on the subject, and drew up some short notes."
)
LETTER = (
    "Dear Ms Carter, thank you for your order of 17 March 2025. We have sent 24 boxes of paper (80 g, A4) and 6 rollers "
    "to 41 Mill Lane, Exeter EX4 6TB. Invoice 20357 over 1,284.50 pounds is due within 30 days; please quote customer "
    "number 8816 with your payment. The two trays that were missing follow by Friday, 28 March, at no extra cost. If a "
    "roller grips a little earlier than the other, the sheet turns by a degree or two, and every line of text runs "
    "downhill: our service team will adjust it free of charge until 31 December. Call 01392 555 0142 between 9 am and "
    "5 pm, or write to us at any time. Yours sincerely, Thomas Hill"
)

# Text, font and its size in pixels.
SHEETS = [(TALE, "P052-Roman.otf", 46), (ISLANDS, "NimbusSans-Regular.otf", 42), (LETTER, "C059-Roman.otf", 42)]


def sheet(number):
    """A straight, clean page and its text."""
    text, name, pixels = SHEETS[number]
    font = ImageFont.truetype(FONTS + name, pixels)
    image = Image.new("L", SIZE, PAPER)
    draw = ImageDraw.Draw(image)
    columns = int((SIZE[0] - 2 * MARGIN) / draw.textlength(text, font) * len(text) * 0.97)
    for line, words in enumerate(textwrap.wrap(text, columns)):
        draw.text((MARGIN, 350 + line * pixels * 1.45), words, INK, font)
    return image, text


def scanned(image, skew=0, noise=5, shading=0, lid=PAPER, seed=1):
    """The sheet turned clockwise by `skew` degrees on the lid of the scanner.

    Its light decreases to the right edge by the share `shading`. The sensor adds noise with a standard deviation of
    `noise` levels.
    """
    pixels = np.asarray(image.rotate(-skew, Image.Resampling.BICUBIC, fillcolor=lid), float)
    pixels = pixels * (1 - shading * np.arange(pixels.shape[1]) / pixels.shape[1])
    pixels += np.random.default_rng(seed).normal(0, noise, pixels.shape)
    return Image.fromarray(pixels.round().clip(0, 255).astype(np.uint8))


def at_one_bit(image, threshold):
    """Values up to the threshold are black."""
    return image.point([0] * (threshold + 1) + [255] * (255 - threshold), "1")
