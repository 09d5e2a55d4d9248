"""The login picture: dusk on short final, the runway lights on, the last light behind the hills."""

import numpy as np

from paper import Noise, add_spot, bloom, blur, gradient, linear, mask_of, mix, smoothstep, to_image

WIDTH, HEIGHT = 2000, 1400
HORIZON = 800  # row
SUN_X = 1180  # column of the glow
VANISHING_X = 900
FOCAL = 1500.0  # pixels
EYE = 22.0  # metres above the ground
RUNWAY_HALF_WIDTH = 22.5


def sky(xx, yy):
    elevation = np.clip((HORIZON - yy) / HORIZON, 0, 1)
    light = gradient([(0.0, "#ff9a52"), (0.05, "#f98f5a"), (0.13, "#d9787a"), (0.27, "#8f6796"), (0.48, "#4b4f8c"),
                      (0.75, "#27346b"), (1.0, "#151f48")], elevation)
    distance = np.hypot((xx - SUN_X) / 620, (yy - HORIZON) / 250)
    glow = np.exp(-distance ** 1.25 * 1.6)
    light = light + glow[..., None] * linear("#ffb45c") * 1.5
    side = smoothstep(200, 1300, np.abs(xx - SUN_X))
    return mix(light, light * np.array([0.52, 0.6, 0.86]), 0.75 * side)


def stars(light, xx, yy):
    random = np.random.default_rng(11)
    for _ in range(240):
        x, y = random.uniform(5, WIDTH - 5), random.uniform(5, 330)
        strength = random.uniform(0.05, 0.5) ** 2 * (1 - y / 360)
        add_spot(light, x, y, 0.7, strength * np.array([0.9, 0.95, 1.0]))


def clouds(light, xx, yy):
    """Two sheets of cloud on flat layers above, lit from below where they are near the sun."""
    for seed, height, scale, low, high, body, lit in (
            (3, 0.035, 0.9, 0.50, 0.78, "#3b3c6e", "#ff8a5c"),
            (8, 0.020, 0.42, 0.52, 0.74, "#2c2f5c", "#ffab6e")):
        noise = Noise(seed)
        elevation = np.clip((HORIZON - yy) / HORIZON, 0, 1) + height
        u = (xx - VANISHING_X) / WIDTH / elevation * scale * 3.0
        v = scale * 3.4 / elevation
        warp = noise.fbm(u * 0.7 + 5, v * 0.7, 3)
        density = noise.fbm(u + 1.5 * warp, v * 1.25 + warp, 6, 0.52)
        cover = smoothstep(low, high, density) * smoothstep(0.0, 0.05, elevation - height)
        cover *= 1 - smoothstep(0.60, 1.0, elevation)
        beyond = noise.fbm(u + 1.5 * warp + 0.05, v * 1.25 + warp + 0.16, 6, 0.52)
        edge = np.clip((density - beyond) * 5 + 0.45, 0, 1)
        near = np.exp(-np.hypot((xx - SUN_X) / 760, (HORIZON - yy) / 420) ** 1.5)
        colour = mix(linear(body), linear(lit) * 1.25, np.clip(near * (0.35 + 0.9 * edge) + 0.10 * edge, 0, 1))
        light = mix(light, colour, 0.86 * cover)
    return light


def hills(light, xx, yy):
    columns = np.arange(WIDTH) / WIDTH
    layers = ((21, 74, 2.2, "#6d4c68"), (22, 48, 4.1, "#45375a"), (23, 24, 7.5, "#241f3a"))
    for seed, height, frequency, colour in layers:
        noise = Noise(seed)
        ridge = noise.fbm(columns * frequency, np.zeros(WIDTH) + 0.37, 7, 0.47)
        valley = 0.55 + 0.75 * smoothstep(0.0, 0.45, np.abs(columns - 0.44))
        peaks = 1 - np.abs(2 * noise.fbm(columns * frequency * 2.7, np.zeros(WIDTH) + 5.1, 6, 0.5) - 1)
        top = HORIZON + 3 - height * (0.10 + 1.0 * ridge + 0.45 * peaks ** 3) * valley
        cover = np.clip(yy - top[None, :], 0, 1)
        warm = np.exp(-((xx - SUN_X) / 500) ** 2) * 0.5
        haze = np.clip((yy - top[None, :]) / 70, 0, 1) * 0.35
        tone = mix(linear(colour) + 0 * xx[..., None], linear("#e08a62"), warm * 0.35 + haze * 0.5 * warm)
        light = mix(light, tone, cover)
    return light


def ground_plane(xx, yy):
    """Metres to the right of the centre line and ahead, for the rows below the horizon."""
    depth = EYE * FOCAL / np.maximum(yy - HORIZON, 0.6)
    return (xx - VANISHING_X) * depth / FOCAL, depth


def ground(light, xx, yy):
    below = np.clip(yy - HORIZON, 0, 1)
    right, ahead = ground_plane(xx, yy)
    noise = Noise(31)
    detail = noise.fbm(right / 3, ahead / 9, 5)
    patches = noise.fbm(right / 70, ahead / 160, 4)
    far = smoothstep(150, 2200, ahead)
    grass = mix(linear("#12182a") * (0.55 + 0.75 * detail)[..., None], linear("#1d1c33") + 0 * xx[..., None], patches)
    grass = mix(grass, linear("#4a3650"), far * 0.75)
    sheen = np.exp(-((xx - SUN_X) / 520) ** 2) * far
    grass = grass + sheen[..., None] * linear("#d07a50") * 0.35
    surface = mix(grass, tarmac(xx, yy, right, ahead, noise), runway_cover(right, ahead))
    return mix(light, surface, below)


def runway_cover(right, ahead):
    soft = np.maximum(ahead / FOCAL, 0.05)
    inside = np.clip((RUNWAY_HALF_WIDTH + 7.5 - np.abs(right)) / soft + 0.5, 0, 1)
    taxiway = np.clip((9 - np.abs(ahead - 330 - 0.10 * np.abs(right))) / (soft * 14), 0, 1) * (right > 0) * (right < 420)
    parallel = np.clip((10 - np.abs(right - 200)) / soft + 0.5, 0, 1) * (ahead > 120)
    return np.clip(np.maximum(inside * smoothstep(50, 52, ahead), np.maximum(taxiway, parallel) * 0.75), 0, 1)


def tarmac(xx, yy, right, ahead, noise):
    grain = noise.fbm(right * 1.7, ahead / 2.2, 4)
    wear = noise.fbm(right / 2.5, ahead / 60, 4)
    base = linear("#23263c")[None, None] * (0.62 + 0.55 * grain + 0.3 * wear)[..., None]
    rubber = np.exp(-((np.abs(right) - 4.5) / 3.2) ** 2) * smoothstep(130, 240, ahead) * (1 - smoothstep(420, 900, ahead))
    base = base * (1 - 0.45 * rubber)[..., None]
    # A damp surface mirrors the sky: stronger at flat angles, and warm below the glow.
    grazing = smoothstep(60, 1500, ahead)
    mirror = gradient([(0, "#2b3468"), (0.5, "#7d5f86"), (1, "#f29a62")], grazing)
    reflection = 0.16 + 0.50 * grazing * (0.6 + 0.8 * wear)
    base = mix(base, mirror, np.clip(reflection, 0, 1) * 0.62)
    return mix(base, linear("#b9bccb") * 0.62, 0.85 * markings(right, ahead) * (0.55 + 0.6 * wear))


def markings(right, ahead):
    soft = np.maximum(ahead / FOCAL, 0.03)

    def stripe(centre, half_width):
        return np.clip((half_width - np.abs(right - centre)) / soft + 0.5, 0, 1)

    def stretch(start, end):
        return np.clip((ahead - start) / (soft * 25) + 0.5, 0, 1) * np.clip((end - ahead) / (soft * 25) + 0.5, 0, 1)

    dashes = stripe(0, 0.5) * (((ahead - 20) % 60) < 34) * (ahead > 176)
    threshold = sum(stripe(side * (3.2 + 3.3 * i), 0.95) for side in (-1, 1) for i in range(6)) * stretch(82, 116)
    aiming = (stripe(-9, 3.2) + stripe(9, 3.2)) * stretch(400, 455)
    touchdown = sum(stripe(side * (6.5 + 3 * i), 0.9) for side in (-1, 1) for i in range(3)) * stretch(255, 280)
    edges = (stripe(-RUNWAY_HALF_WIDTH + 1, 0.5) + stripe(RUNWAY_HALF_WIDTH - 1, 0.5)) * (ahead > 78)
    return np.clip(dashes + threshold + aiming + touchdown + edges, 0, 1) * (1 - smoothstep(900, 2200, ahead))


def tower(light):
    """Control tower and hangars on the left, in silhouette, their windows lit."""
    x, base = 388, HORIZON + 20

    def shapes(draw, s):
        def box(x0, y0, x1, y1):
            draw.rectangle((x0 * s, y0 * s, x1 * s, y1 * s), fill=255)

        draw.polygon([(p * s, q * s) for p, q in ((x - 10, base), (x - 7, base - 96), (x + 7, base - 96), (x + 10, base))],
                     fill=255)
        draw.polygon([(p * s, q * s) for p, q in ((x - 10, base - 92), (x - 19, base - 106), (x + 19, base - 106),
                                                  (x + 10, base - 92))], fill=255)
        box(x - 16, base - 126, x + 16, base - 104)
        draw.polygon([(p * s, q * s) for p, q in ((x - 21, base - 122), (x - 23, base - 127), (x + 23, base - 127),
                                                  (x + 21, base - 122))], fill=255)
        box(x - 0.8, base - 152, x + 0.8, base - 126)
        box(x + 7, base - 139, x + 8.2, base - 126)
        box(x + 34, base - 22, x + 130, base)
        box(x - 96, base - 15, x - 10, base)
        for left in (150, 232, 314):
            draw.pieslice(((x + left) * s, (base - 34) * s, (x + left + 74) * s, (base + 26) * s), 180, 360, fill=255)
        box(x - 250, base - 9, x + 420, base)

    def windows(draw, s):
        for i in range(5):
            left = x - 15.2 + 6.2 * i
            draw.polygon([(p * s, q * s) for p, q in ((left - 0.4, base - 120), (left + 5.4, base - 120),
                                                      (left + 5, base - 108), (left, base - 108))], fill=255)
        for i in range(11):
            if i not in (2, 7):
                draw.rectangle(((x + 39 + 8 * i) * s, (base - 15) * s, (x + 44 + 8 * i) * s, (base - 11) * s), fill=190)
        for i in range(7):
            draw.rectangle(((x - 90 + 11 * i) * s, (base - 9) * s, (x - 83 + 11 * i) * s, (base - 6) * s), fill=150)
        for left in (166, 330):
            draw.rectangle(((x + left) * s, (base - 16) * s, (x + left + 42) * s, (base - 3) * s), fill=90)

    light = mix(light, linear("#14142a"), mask_of((WIDTH, HEIGHT), shapes))
    light = light + mask_of((WIDTH, HEIGHT), windows)[..., None] * linear("#ffc27a") * 1.35
    add_spot(light, x, base - 153, 2.0, np.array([3.2, 0.25, 0.2]))
    for i in range(9):
        add_spot(light, x - 170 + 71 * i, base - 26, 1.6, np.array([1.5, 1.05, 0.6]))
    return light


def project(right, ahead, height=0.4):
    return VANISHING_X + right * FOCAL / ahead, HORIZON + (EYE - height) * FOCAL / ahead


def lamp(light, right, ahead, colour, power=1.0, height=0.4):
    x, y = project(right, ahead, height)
    size = 0.24 * power * FOCAL / ahead
    add_spot(light, x, y, np.clip(size, 0.85, 5.2), np.array(colour) * (0.55 + min(2.2, 350 / ahead)) * power)


def lamps(light):
    white, red, green, blue, amber = (2.6, 2.2, 1.6), (3.2, 0.28, 0.18), (0.25, 2.6, 0.8), (0.22, 0.5, 3.4), (2.9, 1.6, 0.4)
    for ahead in np.arange(80, 3000, 60):
        for side in (-1, 1):
            lamp(light, side * (RUNWAY_HALF_WIDTH + 1.5), ahead, white if ahead < 2400 else amber)
    for ahead in np.arange(90, 2900, 30):
        lamp(light, 0, ahead, white if ahead < 2200 else red, 0.55)
    for right in np.linspace(-RUNWAY_HALF_WIDTH, RUNWAY_HALF_WIDTH, 14):
        lamp(light, right, 80, green, 0.7)
        lamp(light, right, 3000, red, 0.8)
    for row, ahead in enumerate(np.arange(140, 700, 30)):  # touchdown zone barrettes
        for side in (-1, 1):
            for i in range(3):
                lamp(light, side * (9 + 1.5 * i), ahead, white, 0.45)
    for i in range(4):  # PAPI: two white, two red
        lamp(light, -RUNWAY_HALF_WIDTH - 15 - 9 * i, 410, white if i > 1 else red, 2.0, 0.9)
    for ahead in np.arange(130, 2600, 45):
        for right in (187.5, 212.5):
            lamp(light, right, ahead, blue, 0.8)
    for right in np.arange(45, 180, 16):
        for offset in (-9, 9):
            lamp(light, right, 330 + offset + 0.1 * right, blue, 0.8)


def render():
    yy, xx = np.mgrid[0:HEIGHT, 0:WIDTH].astype(np.float32)
    light = sky(xx, yy)
    stars(light, xx, yy)
    light = clouds(light, xx, yy)
    light = hills(light, xx, yy)
    light = ground(light, xx, yy)
    mist = np.exp(-((yy - HORIZON - 4) / 16) ** 2) * 0.30
    light = mix(light, mix(linear("#b97a78"), linear("#ffb27a"), np.exp(-((xx - SUN_X) / 420) ** 2)), mist)
    light = tower(light)
    before = light.copy()
    lamps(light)
    streaks = blur(np.clip(light - before, 0, 3), 7)
    light[6:] += 0.9 * streaks[:-6] * (yy[6:] > HORIZON + 8)[..., None]
    light = bloom(light, 0.75, 0.55, (4, 14, 44))
    vignette = 1 - 0.34 * smoothstep(0.45, 1.15, np.hypot((xx / WIDTH - 0.52), (yy / HEIGHT - 0.55)) * 1.45)
    return to_image(light * vignette[..., None])
