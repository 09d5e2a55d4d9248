"""The mark: an aircraft seen from above that is also a T, with the heading tick ahead of its nose."""

import numpy as np
from PIL import Image, ImageDraw

ICON_SIZES = (16, 24, 32, 48, 64, 128, 256)

# Half of each outline, in a square from -1 to 1, y down; mirrored at x = 0.
WINGS = [(0.0, -0.42), (0.10, -0.36), (0.74, -0.02), (0.74, 0.19), (0.10, 0.01), (0.0, 0.0)]
BODY = [(0.0, -0.42), (0.115, -0.30), (0.115, 0.20), (0.055, 0.72), (0.0, 0.78)]
TICK = [(0.0, -0.80), (0.135, -0.565), (0.0, -0.61)]


def mirrored(half):
    return half + [(-x, y) for x, y in reversed(half)]


def mark(size):
    """The logo at one size. Small ones lose the rounded square's margin, so that the mark stays legible."""
    scale = 8
    side = size * scale
    small = size <= 24
    yy, xx = np.mgrid[0:side, 0:side] / side
    fade = np.clip((xx * 0.35 + yy * 0.85), 0, 1)[..., None]
    background = (1 - fade) * np.array([43, 72, 122]) + fade * np.array([15, 23, 42])
    sheet = Image.fromarray(background.astype(np.uint8)).convert("RGBA")
    draw = ImageDraw.Draw(sheet)

    stretch = 1.2 if small else 1.0

    def points(half, shift=0.03):
        return [(side * (0.5 + 0.5 * x * stretch), side * (0.5 + 0.5 * (y + shift) * stretch)) for x, y in mirrored(half)]

    draw.polygon(points(WINGS), fill=(255, 255, 255, 255))
    draw.polygon(points(BODY), fill=(255, 255, 255, 255))
    draw.polygon(points(TICK), fill=(96, 165, 250, 255))

    outline = Image.new("L", (side, side), 0)
    margin = 0 if small else side * 0.02
    ImageDraw.Draw(outline).rounded_rectangle((margin, margin, side - 1 - margin, side - 1 - margin),
                                              radius=side * 0.235, fill=255)
    sheet.putalpha(outline)
    return sheet.resize((size, size), Image.LANCZOS)


def write(resources):
    mark(512).save(resources / "logo.png", optimize=True)
    pictures = [mark(size) for size in ICON_SIZES]
    for size, picture in zip(ICON_SIZES, pictures):
        picture.save(resources / "icons" / f"tarvo-{size}.png", optimize=True)
    pictures[-1].save(resources / "icons" / "tarvo.ico", append_images=pictures[:-1],
                      sizes=[(size, size) for size in ICON_SIZES])
