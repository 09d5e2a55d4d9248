"""Right half of the mode page: a night flight deck above a lit city, its displays glowing."""

import math

import numpy as np
from PIL import Image, ImageDraw, ImageFilter

from paper import Noise, add_spot, bloom, gradient, linear, mask_of, mix, smoothstep, to_image

WIDTH, HEIGHT = 1080, 1215
HORIZON = 560
GLARE = 800  # row of the glare shield's edge at the centre
SCALE = 3  # oversampling of what is drawn as shapes


def sky(xx, yy):
    up = np.clip((HORIZON - yy) / HORIZON, 0, 1)
    light = gradient([(0, "#e08a5a"), (0.03, "#b8657a"), (0.10, "#5d4f8c"), (0.24, "#2b3a78"), (0.5, "#15214d"),
                      (1, "#0a1029")], up)
    glow = np.exp(-np.hypot((xx - 300) / 420, (yy - HORIZON) / 70) ** 1.3)
    light = light + glow[..., None] * linear("#ffab66") * 0.8
    noise = Noise(51)
    band = noise.fbm(xx / 150 + yy / 400, yy / 46, 5)
    cover = smoothstep(0.50, 0.75, band) * smoothstep(0.02, 0.10, up) * (1 - smoothstep(0.16, 0.42, up))
    light = mix(light, mix(linear("#2a2c58"), linear("#e58a6c"), 0.6 * glow + 0.12), 0.7 * cover)
    random = np.random.default_rng(52)
    for _ in range(420):
        x, y = random.uniform(4, WIDTH - 4), random.uniform(4, HORIZON * 0.82)
        add_spot(light, x, y, 0.75, random.uniform(0.1, 0.9) ** 3 * 1.3 * (1 - y / HORIZON) * np.array([0.9, 0.95, 1.0]))
    return light


def city(light, xx, yy):
    """The ground far below: dark, with streets that run together towards the horizon."""
    below = np.clip((yy - HORIZON + 2) / 4, 0, 1)
    ground = gradient([(0, "#3a3560"), (0.10, "#171a38"), (1, "#080c1c")], np.clip((yy - HORIZON) / 300, 0, 1))
    light = mix(light, ground, below)
    random = np.random.default_rng(53)
    noise = Noise(54)

    def lamp(right, ahead, power, colour):
        x, y = WIDTH * 0.5 + right * 900 / ahead, HORIZON + 2 + 900 * 3.0 / ahead
        if 4 < x < WIDTH - 4 and y < GLARE + 40:
            fade = min(1.0, 9 / ahead)
            add_spot(light, x, y, min(1.6, 0.55 + 2.2 / ahead), power * (0.25 + fade) * np.array(colour))

    warm, white, red = (1.5, 0.95, 0.45), (1.1, 1.1, 1.2), (1.6, 0.25, 0.15)
    for _ in range(6500):
        ahead = 9.5 + 90 * random.random() ** 1.6
        right = random.uniform(-0.66, 0.66) * ahead
        dense = noise.fbm(np.array([right / 6 + 50]), np.array([ahead / 9]), 4)[0]
        if dense > 0.50:
            lamp(right, ahead, random.uniform(0.1, 0.75) ** 1.5, warm if random.random() < 0.75 else white)
    for road in range(16):  # avenues, straight as far as one can see
        angle, offset, ahead0 = random.uniform(-1.2, 1.2), random.uniform(-14, 14), random.uniform(11, 40)
        for step in np.arange(-30, 30, 0.32):
            right, ahead = offset + step * math.cos(angle), ahead0 + step * math.sin(angle)
            if ahead > 9.5:
                lamp(right, ahead, 0.55, warm)
    for _ in range(14):
        lamp(random.uniform(-8, 8), random.uniform(12, 30), 0.9, red)
    return light


def frame_mask():
    """Window posts and the glare shield."""

    def shapes(draw, s):
        def polygon(points):
            draw.polygon([(x * s, y * s) for x, y in points], fill=255)

        polygon([(500, 0), (580, 0), (560, GLARE), (520, GLARE)])  # centre post
        polygon([(0, 0), (WIDTH, 0), (WIDTH, 62), (840, 40), (540, 34), (240, 40), (0, 62)])
        polygon([(0, 0), (58, 0), (0, 420)])
        polygon([(WIDTH, 0), (WIDTH - 58, 0), (WIDTH, 420)])
        curve = [(x, GLARE - 46 * math.sin(math.pi * min(1, max(0, (x + 60) / (WIDTH + 120)))) ** 0.6 + 26)
                 for x in range(-20, WIDTH + 21, 10)]
        polygon([(-20, HEIGHT)] + curve + [(WIDTH + 20, HEIGHT)])

    return mask_of((WIDTH, HEIGHT), shapes)


def sheet():
    return Image.new("RGB", (WIDTH * SCALE, HEIGHT * SCALE), 0)


class Pen:
    """Draws in picture pixels on an oversampled sheet."""

    def __init__(self, image):
        self.draw = ImageDraw.Draw(image)

    def line(self, points, colour, width=2.0):
        self.draw.line([(x * SCALE, y * SCALE) for x, y in points], fill=colour, width=max(1, round(width * SCALE)))

    def polygon(self, points, colour):
        self.draw.polygon([(x * SCALE, y * SCALE) for x, y in points], fill=colour)

    def box(self, x, y, w, h, colour, radius=0):
        self.draw.rounded_rectangle((x * SCALE, y * SCALE, (x + w) * SCALE, (y + h) * SCALE), radius * SCALE, fill=colour)

    def arc(self, x, y, r, start, end, colour, width=2.0):
        self.draw.arc(((x - r) * SCALE, (y - r) * SCALE, (x + r) * SCALE, (y + r) * SCALE), start, end, fill=colour,
                      width=max(1, round(width * SCALE)))

    def digits(self, x, y, size, text, colour):
        """Seven-segment figures, centred on y: no font of any machine gets into the picture."""
        segments = {"0": "abcdef", "1": "bc", "2": "abged", "3": "abgcd", "4": "fgbc", "5": "afgcd", "6": "afgedc",
                    "7": "abc", "8": "abcdefg", "9": "abcdfg", "-": "g", " ": ""}
        w, h, pitch = size * 0.52, size, size * 0.80
        for index, character in enumerate(text):
            left, top = x + index * pitch, y - h / 2
            a, b, c, d = (left, top), (left + w, top), (left + w, top + h), (left, top + h)
            e, f = (left, top + h / 2), (left + w, top + h / 2)
            lines = {"a": (a, b), "b": (b, f), "c": (f, c), "d": (c, d), "e": (d, e), "f": (e, a), "g": (e, f)}
            for segment in segments[character]:
                self.line(lines[segment], colour, max(0.9, size * 0.13))


GREEN, CYAN, MAGENTA, WHITE, AMBER, GREY = (60, 235, 110), (70, 205, 255), (240, 90, 235), (235, 240, 248), (255, 176, 56), (66, 76, 96)


def attitude(pen, x, y, w, h):
    """Primary flight display: a shallow climbing turn to the right."""
    pen.box(x, y, w, h, (3, 5, 9), 10)
    cx, cy, half_w, half_h, bank, pitch = x + w * 0.47, y + h * 0.46, w * 0.25, h * 0.33, math.radians(-8), 14
    layer = sheet()
    inner = Pen(layer)
    inner.box(cx - half_w, cy - half_h, 2 * half_w, 2 * half_h, (28, 108, 205), 14)
    mask = Image.new("L", layer.size, 0)
    ImageDraw.Draw(mask).rounded_rectangle([v * SCALE for v in (cx - half_w, cy - half_h, cx + half_w, cy + half_h)],
                                           14 * SCALE, fill=255)
    cos, sin = math.cos(bank), math.sin(bank)

    def turned(dx, dy):
        return cx + dx * cos - (dy + pitch) * sin, cy + dx * sin + (dy + pitch) * cos

    inner.polygon([turned(-400, 0), turned(400, 0), turned(400, 600), turned(-400, 600)], (110, 72, 34))
    inner.line([turned(-400, 0), turned(400, 0)], WHITE, 2)
    for step in range(-3, 4):
        if step:
            span = 30 if step % 2 == 0 else 16
            inner.line([turned(-span, step * 21), turned(span, step * 21)], WHITE, 1.6)
    pen.draw._image.paste(layer, (0, 0), mask)
    for side in (-1, 1):
        pen.line([(cx + side * 62, cy), (cx + side * 26, cy), (cx + side * 26, cy + 9)], (250, 220, 60), 4)
    pen.box(cx - 3, cy - 3, 6, 6, (250, 220, 60))
    pen.arc(cx, cy + 4, half_h * 0.94, 235, 305, WHITE, 1.6)
    pen.polygon([(cx, cy - half_h * 0.90), (cx - 6, cy - half_h * 0.79), (cx + 6, cy - half_h * 0.79)], WHITE)
    tape(pen, x + 8, cy - half_h, 40, 2 * half_h, 10.5, GREEN, "281")
    tape(pen, x + w - 64, cy - half_h, 50, 2 * half_h, 12.5, GREEN, "340")
    pen.line([(x + w - 9, cy - half_h * 0.7), (x + w - 9, cy + half_h * 0.7)], GREY, 1.5)
    pen.line([(x + w - 4, cy - 30), (x + w - 12, cy)], GREEN, 2.4)
    pen.arc(cx, y + h + 42, h * 0.25, 205, 335, WHITE, 1.8)
    for angle in range(210, 335, 10):
        a = math.radians(angle)
        r = h * 0.25
        pen.line([(cx + r * math.cos(a), y + h + 42 + r * math.sin(a)),
                  (cx + (r - 7) * math.cos(a), y + h + 42 + (r - 7) * math.sin(a))], WHITE, 1.4)
    for i, (colour, length) in enumerate(((GREEN, 34), (MAGENTA, 42), (GREEN, 30))):
        pen.box(cx - 84 + 60 * i, y + 12, length, 5, colour, 2)


def tape(pen, x, y, w, h, pitch, colour, text):
    pen.box(x, y, w, h, (24, 29, 40), 4)
    for i in range(int(h / pitch)):
        long = i % 4 == 1
        pen.line([(x + w - (14 if long else 8), y + 6 + i * pitch), (x + w - 2, y + 6 + i * pitch)], WHITE, 1.3)
        if long and abs(6 + i * pitch - h / 2) > 16:
            pen.digits(x + 5, y + 6 + i * pitch, 8, str(290 - i), WHITE)
    pen.box(x - 3, y + h / 2 - 12, w - 4, 24, (2, 3, 6), 4)
    pen.line([(x - 3, y + h / 2 - 12), (x + w - 7, y + h / 2 - 12)], colour, 1.4)
    pen.line([(x - 3, y + h / 2 + 12), (x + w - 7, y + h / 2 + 12)], colour, 1.4)
    pen.digits(x + 4, y + h / 2, 13, text, colour)


def navigation(pen, x, y, w, h):
    """Map display: a route ahead, a compass arc, weather off to one side."""
    pen.box(x, y, w, h, (3, 5, 9), 10)
    cx, cy, r = x + w / 2, y + h * 0.86, h * 0.70
    random = np.random.default_rng(55)
    for _ in range(60):
        a, d = math.radians(random.uniform(280, 318)), r * random.uniform(0.48, 0.85)
        size = random.uniform(4, 13)
        colour = (14, 84, 34) if size < 10 else (120, 104, 14)
        px, py = cx + d * math.cos(a), cy + d * math.sin(a)
        pen.draw.ellipse([v * SCALE for v in (px - size, py - size * 0.8, px + size, py + size * 0.8)], fill=colour)
    pen.arc(cx, cy, r, 212, 328, WHITE, 2)
    pen.arc(cx, cy, r * 0.5, 205, 335, GREY, 1.5)
    for angle in range(214, 328, 4):
        a = math.radians(angle)
        length = 11 if angle % 12 == 2 else 6
        pen.line([(cx + r * math.cos(a), cy + r * math.sin(a)), (cx + (r - length) * math.cos(a), cy + (r - length) * math.sin(a))],
                 WHITE, 1.5)
    route = [(cx, cy - 8), (cx + 3, cy - r * 0.34), (cx + 36, cy - r * 0.60), (cx + 22, cy - r * 0.86), (cx - 40, cy - r * 1.06)]
    pen.line(route, MAGENTA, 2.4)
    for px, py in route[1:]:
        pen.polygon([(px, py - 7), (px + 3, py - 2), (px + 7, py), (px + 3, py + 2), (px, py + 7), (px - 3, py + 2), (px - 7, py),
                     (px - 3, py - 2)], WHITE)
        pen.digits(px + 12, py + 3, 8, str(110 + int(px) % 80), CYAN)
    for px, py in ((cx - 74, cy - r * 0.44), (cx - 50, cy - r * 0.72), (cx + 84, cy - r * 0.30)):
        pen.arc(px, py, 5, 0, 360, CYAN, 1.6)
    pen.polygon([(cx, cy - 14), (cx - 10, cy + 10), (cx + 10, cy + 10)], WHITE)
    pen.polygon([(cx, cy - 8), (cx - 6.4, cy + 7), (cx + 6.4, cy + 7)], (3, 5, 9))
    pen.box(cx - 24, y + 10, 48, 24, (20, 26, 38), 4)
    pen.digits(cx - 16, y + 22, 14, "052", GREEN)
    pen.digits(x + 14, y + 22, 10, "452", GREEN)
    pen.digits(x + w - 50, y + 22, 10, "0418", CYAN)


def engines(pen, x, y, w, h):
    pen.box(x, y, w, h, (3, 5, 9), 10)
    for row, (level, text) in enumerate(((0.78, "886"), (0.64, "612"), (0.71, "894"))):
        for column in (0, 1):
            cx, cy, r = x + w * (0.29 + 0.42 * column), y + h * (0.17 + 0.235 * row), min(w * 0.17, h * 0.10)
            pen.arc(cx, cy, r, 150, 390, WHITE, 1.8)
            pen.arc(cx, cy, r, 375, 390, (235, 60, 50), 3)
            a = math.radians(150 + 240 * level)
            pen.line([(cx, cy), (cx + r * math.cos(a), cy + r * math.sin(a))], GREEN, 2.4)
            pen.digits(cx + 1, cy + r * 0.62, 9, text, GREEN)
    for i, colour in enumerate((GREEN, GREEN, WHITE, AMBER)):
        pen.box(x + 14, y + h * 0.80 + 11 * i, (w - 28) * (0.85, 0.6, 0.7, 0.35)[i], 4, colour, 2)


def panel_displays():
    image = sheet()
    pen = Pen(image)
    attitude(pen, 44, 924, 292, 246)
    navigation(pen, 356, 924, 262, 246)
    engines(pen, 638, 924, 176, 246)
    navigation(pen, 834, 924, 246, 246)
    for i, text in enumerate(("281", "052", "34000", "-12")):  # the autopilot's windows on the glare shield
        x = 290 + 132 * i
        pen.box(x, 836, 88, 30, (8, 6, 3), 5)
        pen.digits(x + 44 - 0.40 * 15 * len(text), 851, 15, text, AMBER)
    return image


def buttons():
    image = sheet()
    pen = Pen(image)
    for i in range(14):
        x = 190 + 52 * i
        pen.box(x, 882, 30, 11, (30, 36, 50), 3)
        if i % 3 != 1:
            pen.box(x + 7, 886, 16, 3, (60, 235, 110) if i % 4 else (200, 215, 235), 1)
    for x in (256, 407, 539, 671, 815):
        pen.arc(x, 851, 11, 0, 360, (52, 60, 80), 5)
        pen.line([(x, 851), (x + 4, 843)], (190, 200, 220), 2)
    return image


def as_light(image):
    small = image.resize((WIDTH, HEIGHT), Image.LANCZOS)
    return (np.asarray(small, np.float32) / 255) ** 2.2


def render():
    yy, xx = np.mgrid[0:HEIGHT, 0:WIDTH].astype(np.float32)
    light = city(sky(xx, yy), xx, yy)
    light = bloom(light, 0.45, 0.5, (3, 12, 30))

    frame = frame_mask()
    soft = np.asarray(Image.fromarray((frame * 255).astype(np.uint8)).filter(ImageFilter.GaussianBlur(14)), np.float32) / 255
    light = light * (1 - 0.35 * soft)[..., None]
    depth = smoothstep(GLARE - 40, GLARE + 110, yy)
    hull = mix(linear("#05070d") + 0 * light, linear("#12161f"), depth * (1 - smoothstep(GLARE + 300, HEIGHT + 60, yy)))
    rim = np.clip(frame - np.roll(frame, -5, axis=0), 0, 1) * 0 + np.clip(np.roll(frame, -3, axis=0) - frame, 0, 1)
    light = mix(light, hull, frame)
    light = light + rim[..., None] * linear("#8a6f8f") * 0.25

    displays = as_light(panel_displays())
    knobs = as_light(buttons())
    bezels = mask_of((WIDTH, HEIGHT), lambda draw, s: [
        draw.rounded_rectangle((x0 * s, 914 * s, x1 * s, 1180 * s), 16 * s, fill=255)
        for x0, x1 in ((34, 346), (346, 628), (628, 824), (824, 1100))])
    light = mix(light, linear("#0b0e15") + 0 * light, 0.85 * bezels)
    light = light + knobs * 0.8
    glowing = bloom(displays * 1.25, 0.12, 0.55, (4, 18, 50))
    light = light + glowing * smoothstep(GLARE - 30, GLARE + 40, yy)[..., None]
    vignette = 1 - 0.40 * smoothstep(0.55, 1.15, np.hypot(xx / WIDTH - 0.5, (yy / HEIGHT - 0.55)) * 1.5)
    picture = to_image(light * vignette[..., None])
    # 256 colours, dithered: a night scene has few, and the file gets a third of the size.
    palette = picture.quantize(256, method=Image.Quantize.FASTOCTREE)
    return picture.quantize(palette=palette, dither=Image.Dither.FLOYDSTEINBERG)
