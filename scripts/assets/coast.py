"""Left half of the mode page: a mountainous coast from the air, on a clear morning."""

import numpy as np

from paper import Noise, bloom, gradient, linear, mix, smoothstep, to_image

WIDTH, HEIGHT = 1200, 1350
OVERSAMPLING = 1.5
GRID = 1024  # cells of the height map, 40 m each
CELL = 40.0
SUN = np.array([-0.72, 0.52, 0.46])  # towards the sun: east is left, up, ahead


def height_map():
    """Metres above the sea, GRID x GRID; ridges inland, a bay in front."""
    yy, xx = np.mgrid[0:GRID, 0:GRID].astype(np.float32)
    noise, wide = Noise(41), Noise(42)
    u, v = xx / 150, yy / 150
    warp = wide.fbm(u * 0.6, v * 0.6, 3) - 0.5
    ridges = 0.0
    weight = 1.0
    for octave in range(7):
        ridge = 1 - np.abs(2 * noise.at(u + 1.3 * warp + 31 * octave, v + 1.3 * warp) - 1)
        ridges = ridges + weight * ridge ** 2 * (1.0 if octave == 0 else np.clip(ridges, 0, 1))
        weight *= 0.48
        u, v = 1.9 * u + 0.5 * v, 1.9 * v - 0.5 * u
    hills = wide.fbm(xx / 60, yy / 60, 5)
    # The shore runs straight ahead, with coves and headlands; land lies to its right.
    shore = (xx - 530 + 0.05 * yy) / 150 + 1.9 * (wide.fbm(xx / 62 + 9, yy / 62, 6) - 0.5)
    land = smoothstep(-0.05, 1.25, shore)
    height = -60 + 190 * smoothstep(-0.3, 0.25, shore) * (0.25 + 0.75 * hills) + 1750 * land ** 1.5 * ridges * 0.62
    island = np.exp(-(((xx - 425) / 15) ** 2 + ((yy - 290) / 11) ** 2)) * 300 * (0.3 + hills)
    return height + island


def shade(height):
    """Linear light of the ground from above: what grows there, and how the sun falls on it."""
    slope_y, slope_x = np.gradient(height, CELL)
    normal = np.stack([-slope_x, np.ones_like(height), -slope_y], axis=-1)
    normal /= np.linalg.norm(normal, axis=-1, keepdims=True)
    sun = SUN / np.linalg.norm(SUN)
    light = np.clip(normal @ sun.astype(np.float32), 0, 1) * cast_shadow(height, sun)
    yy, xx = np.mgrid[0:GRID, 0:GRID].astype(np.float32)
    patches = Noise(43).fbm(xx / 14, yy / 14, 5)
    wooded = gradient([(0.25, "#2c4a2e"), (0.5, "#4d6a38"), (0.75, "#7d8a52")], patches)
    rock = gradient([(0.2, "#6d6355"), (0.8, "#958977")], patches)
    snow = linear("#f3f6fb")
    level = height + 260 * (patches - 0.5)
    colour = mix(linear("#cdbb92") + 0 * wooded, wooded, smoothstep(3, 12, height + 10 * (patches - 0.5)))
    colour = mix(colour, rock, smoothstep(640, 1000, level))
    steep = 1 - smoothstep(0.62, 0.82, normal[..., 1])
    colour = mix(colour, rock * 0.8, 0.75 * steep)
    colour = mix(colour, snow, smoothstep(1180, 1420, level) * (1 - 0.7 * steep))
    warm, cool = linear("#ffe2b4") * 1.75, linear("#9fbfe6") * 0.46
    return colour * (light[..., None] * warm + cool * (0.55 + 0.45 * normal[..., 1:2]))


def cast_shadow(height, sun):
    """1 in the sun, 0 behind a ridge; marches towards the sun in steps of one cell."""
    reach = 90
    drop = sun[1] / np.hypot(sun[0], sun[2])
    lit = np.ones_like(height)
    for step in range(2, reach, 2):
        dx, dy = int(round(step * sun[0] / np.hypot(sun[0], sun[2]))), int(round(step * sun[2] / np.hypot(sun[0], sun[2])))
        blocker = np.roll(height, (-dy, -dx), axis=(0, 1)) - step * CELL * drop
        lit = np.minimum(lit, 1 - smoothstep(0, 60, blocker - height))
    return lit


def water(right, ahead, height, sky_light):
    """The sea: turquoise over the shallows, the sky's mirror far out, a glitter below the sun."""
    noise = Noise(44)
    depth = np.clip(-height / 60, 0, 1)
    colour = gradient([(0, "#58b7ae"), (0.35, "#2a8a9b"), (1, "#155a80")], depth)
    ripple = noise.fbm(right / 26, ahead / 75, 5)
    far = smoothstep(3000, 26000, ahead)
    colour = mix(colour * (0.80 + 0.4 * ripple)[..., None], sky_light, 0.20 + 0.55 * far)
    glitter = np.clip(ripple - 0.52, 0, 1) * np.exp(-((right / ahead + 0.42) / 0.22) ** 2) * smoothstep(2500, 9000, ahead)
    foam = np.exp(-((height + 2.0) / 2.2) ** 2) * smoothstep(0.42, 0.62, noise.fbm(right / 35, ahead / 35, 3))
    return colour + glitter[..., None] * linear("#ffe9c2") * 2.0 + foam[..., None] * 0.55


def texture(right, ahead):
    """What the height map is too coarse for: trees and gullies, lit from the sun's side, fading with distance."""
    noise = Noise(46)
    near = np.exp(-ahead / 9000)
    patches = noise.fbm(right / 160 + 7, ahead / 160, 4)
    gullies = noise.fbm(right / 70, ahead / 70, 5) - noise.fbm(right / 70 + 0.13, ahead / 70 - 0.08, 5)
    trees = noise.fbm(right / 11, ahead / 14, 3) - noise.fbm(right / 11 + 0.3, ahead / 14 - 0.2, 3)
    return np.clip(0.72 + 0.56 * patches + near * (3.2 * gullies + 0.9 * trees * smoothstep(0.42, 0.6, patches)), 0.25, 1.9)


def sample(sheet, x, y):
    """Bilinear look-up; the edges go on outwards."""
    x, y = np.clip(x, 0, GRID - 1.001), np.clip(y, 0, GRID - 1.001)
    xi, yi = x.astype(np.int64), y.astype(np.int64)
    fx, fy = (x - xi).astype(np.float32), (y - yi).astype(np.float32)
    if sheet.ndim == 3:
        fx, fy = fx[..., None], fy[..., None]
    top = sheet[yi, xi] * (1 - fx) + sheet[yi, xi + 1] * fx
    return top * (1 - fy) + (sheet[yi + 1, xi] * (1 - fx) + sheet[yi + 1, xi + 1] * fx) * fy


def sky(width, height, horizon):
    yy, xx = np.mgrid[0:height, 0:width].astype(np.float32)
    up = np.clip((horizon - yy) / horizon, 0, 1)
    light = gradient([(0, "#fbe6c9"), (0.10, "#dfe4e6"), (0.35, "#9cc3e4"), (1, "#3f7fbd")], up)
    glow = np.exp(-np.hypot((xx / width - 0.12) / 0.45, (yy - horizon) / (0.35 * height)) ** 1.4 * 1.8)
    light = light + glow[..., None] * linear("#ffd9a0") * 0.55
    noise = Noise(45)
    lift = up + 0.05
    u, v = (xx / width - 0.5) / lift * 1.1, 1.5 / lift
    density = noise.fbm(u + noise.fbm(u, v, 3), v * 1.5, 6)
    cover = smoothstep(0.50, 0.78, density) * smoothstep(0.02, 0.16, up) * (1 - smoothstep(0.75, 1, up))
    return mix(light, linear("#fff6ea") * 1.05, 0.72 * cover)


def render():
    width, height = int(WIDTH * OVERSAMPLING), int(HEIGHT * OVERSAMPLING)
    horizon, focal, eye = 0.36 * height, 1.05 * width, 1750.0
    ground, colours = height_map(), None
    colours = shade(ground)
    light = sky(width, height, horizon)

    distances = 900 * 1.0044 ** np.arange(900)  # 0.9 km to 47 km ahead, denser near by
    distances = distances[distances < 45000]
    columns = (np.arange(width) - width / 2) / focal
    right = distances[:, None] * columns[None, :]
    x, y = right / CELL + 520, distances[:, None] / CELL * 0.93 + 0 * right + 5
    surface = np.maximum(sample(ground, x, y), 0)
    curve = distances[:, None] ** 2 / (2 * 6.371e6)
    rows = horizon + (eye - surface + curve) * focal / distances[:, None]
    nearest = np.minimum.accumulate(rows, axis=0)

    yy = np.arange(height)
    picked = np.full((height, width), -1)
    for column in range(width):
        # The first distance whose ground reaches up to the row: the profile only rises.
        index = np.searchsorted(-nearest[:, column], -yy.astype(np.float64), side="left")
        picked[:, column] = np.where(index < len(distances), index, -1)
    hit = picked >= 0
    near = np.maximum(picked, 0)
    columns_of = np.broadcast_to(np.arange(width), picked.shape)
    # Between two samples: where exactly the line of sight meets the ground.
    before = np.maximum(near - 1, 0)
    top, bottom = nearest[near, columns_of], nearest[before, columns_of]
    part = np.clip((bottom - yy[:, None]) / np.maximum(bottom - top, 1e-6), 0, 1)
    ahead = distances[before] + (distances[near] - distances[before]) * part
    aside = ahead * columns[None, :]
    gx, gy = aside / CELL + 520, ahead / CELL * 0.93 + 5
    level = sample(ground, gx, gy)
    land = sample(colours, gx, gy)
    land = land * texture(aside, ahead)[..., None]
    mirror = gradient([(0, "#7fb0d6"), (1, "#f4e3c8")], smoothstep(2000, 30000, ahead))
    sea = water(aside, ahead, level, mirror)
    scene = mix(sea, land, smoothstep(-1.5, 1.5, level))
    haze_colour = mix(linear("#a9c6de"), linear("#f6dfbe"), np.exp(-((columns[None, :] + 0.38) / 0.35) ** 2) + 0 * ahead)
    haze = (1 - np.exp(-(ahead / 21000) ** 1.35)) * np.exp(-np.clip(level, 0, None) / 4200)
    scene = mix(scene, haze_colour, 0.92 * haze)
    light = np.where(hit[..., None], scene, light)
    light = bloom(light, 0.85, 0.25, (6, 24))
    picture = to_image(light)
    return picture.resize((WIDTH, HEIGHT), 1)
