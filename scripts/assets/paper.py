"""Common drawing helpers: noise, blur, colour. Pictures are float arrays of linear light, height x width x 3."""

import numpy as np
from PIL import Image


def linear(colour):
    """Linear light of an sRGB colour given as "#rrggbb"."""
    channels = np.array([int(colour[i:i + 2], 16) for i in (1, 3, 5)]) / 255.0
    return (channels ** 2.2).astype(np.float32)


def to_image(light, dither_seed=1):
    """8-bit picture of linear light: a soft shoulder for highlights, half a step of dither against banding."""
    light = np.clip(light, 0, None)
    shoulder = np.where(light > 0.7, 0.7 + 0.3 * (1 - np.exp(-(light - 0.7) / 0.3)), light)
    levels = 255 * shoulder ** (1 / 2.2)
    levels += np.random.default_rng(dither_seed).uniform(-0.5, 0.5, levels.shape[:2])[..., None]
    return Image.fromarray(np.clip(np.rint(levels), 0, 255).astype(np.uint8))


def mix(a, b, amount):
    """a where amount is 0, b where it is 1; a sheet of amounts goes for all three channels."""
    amount = np.asarray(amount, np.float32)
    if amount.ndim == 2:
        amount = amount[..., None]
    return a + (b - a) * amount


def smoothstep(low, high, value):
    t = np.clip((value - low) / (high - low), 0, 1)
    return t * t * (3 - 2 * t)


def gradient(stops, position):
    """Colours along a gradient; stops are (position, "#rrggbb"), ascending."""
    places = [stop[0] for stop in stops]
    colours = np.array([linear(stop[1]) for stop in stops])
    return np.stack([np.interp(position, places, colours[:, c]) for c in range(3)], axis=-1).astype(np.float32)


class Noise:
    """Smooth tileable value noise from a table of random numbers."""

    def __init__(self, seed, size=256):
        self.size = size
        self.table = np.random.default_rng(seed).random((size, size), dtype=np.float32)

    def at(self, x, y):
        xi, yi = np.floor(x).astype(np.int64), np.floor(y).astype(np.int64)
        fx, fy = (x - xi).astype(np.float32), (y - yi).astype(np.float32)
        fx, fy = fx * fx * fx * (fx * (fx * 6 - 15) + 10), fy * fy * fy * (fy * (fy * 6 - 15) + 10)
        mask = self.size - 1
        x0, x1, y0, y1 = xi & mask, (xi + 1) & mask, yi & mask, (yi + 1) & mask
        top = self.table[y0, x0] * (1 - fx) + self.table[y0, x1] * fx
        bottom = self.table[y1, x0] * (1 - fx) + self.table[y1, x1] * fx
        return top * (1 - fy) + bottom * fy

    def fbm(self, x, y, octaves, gain=0.5):
        """Sum of octaves, 0 to 1, around 0.5."""
        total, weight, sum_of_weights = 0.0, 1.0, 0.0
        for octave in range(octaves):
            # Turning each octave hides the grid of the table.
            total = total + weight * self.at(x + 17.3 * octave, y - 9.1 * octave)
            sum_of_weights += weight
            weight *= gain
            x, y = 1.6 * x + 1.2 * y, 1.6 * y - 1.2 * x
        return total / sum_of_weights


def blur(light, radius):
    """Gaussian blur of each channel, edges extended."""
    margin = int(3 * radius)
    padded = np.pad(light, ((margin, margin), (margin, margin), (0, 0)), mode="edge")
    height, width = padded.shape[:2]
    fy = np.fft.fftfreq(height)[:, None]
    fx = np.fft.rfftfreq(width)[None, :]
    kernel = np.exp(-2 * (np.pi * radius) ** 2 * (fx * fx + fy * fy))
    out = np.fft.irfft2(np.fft.rfft2(padded, axes=(0, 1)) * kernel[..., None], s=(height, width), axes=(0, 1))
    return out[margin:height - margin, margin:width - margin].astype(np.float32)


def bloom(light, threshold, strength, radii):
    """Adds the glow that bright places leave in a lens."""
    bright = np.clip(light - threshold, 0, 6)
    glow = sum(blur(bright, radius) for radius in radii) / len(radii)
    return light + strength * glow


def add_spot(light, x, y, radius, colour):
    """Adds a small round light; its sum stays the same below a pixel's size."""
    reach = int(np.ceil(3 * max(radius, 0.7)))
    x0, x1 = int(x) - reach, int(x) + reach + 1
    y0, y1 = int(y) - reach, int(y) + reach + 1
    if x0 < 0 or y0 < 0 or x1 > light.shape[1] or y1 > light.shape[0]:
        return
    sigma = max(radius, 0.7)
    yy, xx = np.mgrid[y0:y1, x0:x1]
    spot = np.exp(-((xx - x) ** 2 + (yy - y) ** 2) / (2 * sigma * sigma)) * min(1, (radius / sigma) ** 2)
    light[y0:y1, x0:x1] += spot[..., None].astype(np.float32) * colour


def mask_of(size, draw_shapes, oversampling=4):
    """Coverage, 0 to 1, of what draw_shapes(draw, scale) paints in white on a size = (width, height) sheet."""
    from PIL import ImageDraw
    sheet = Image.new("L", (size[0] * oversampling, size[1] * oversampling), 0)
    draw_shapes(ImageDraw.Draw(sheet), oversampling)
    return np.asarray(sheet.resize(size, Image.LANCZOS), np.float32) / 255


def noise_tile(size=128):
    """The grain that lies over the main window's gradient; tiles without a seam because no pixel knows its neighbours."""
    values = np.random.default_rng(7).normal(128, 46, (size, size))
    return Image.fromarray(np.clip(values, 0, 255).astype(np.uint8) & 0xF0 | 0x08)
