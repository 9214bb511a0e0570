"""Drawn photographs: a valley with a lake, continuous in tone, and the screen that prints one in dots."""

import numpy as np
from PIL import Image

from drawing.damage import smooth_field, to_image


def _fractal(rng, shape, cell, octaves=6):
    """Hills upon hills, each octave half as wide and half as high as the one before."""
    total = np.zeros(shape, np.float32)
    for octave in range(octaves):
        total += smooth_field(rng, shape, max(2, cell >> octave)) * 0.5**octave
    return total


def _mix(under, over, cover):
    return under * (1.0 - cover[..., None]) + np.float32(over) * cover[..., None]


def _ridge(rng, width, height, cell):
    """The height of a range of hills over each column."""
    return _fractal(rng, (1, width), cell)[0] * height


def landscape(rng, width, height):
    """Evening over a mountain lake, as a float page: sky and clouds, three ranges, water, firs."""
    rows = np.linspace(0.0, 1.0, height, dtype=np.float32)[:, None] * np.ones((1, width), np.float32)
    columns = np.ones((height, 1), np.float32) * np.linspace(0.0, 1.0, width, dtype=np.float32)
    shore = 0.66
    scene = _mix(np.zeros((height, width, 3), np.float32) + np.float32([0.33, 0.50, 0.72]), [0.98, 0.83, 0.62],
                 np.clip(rows / 0.5, 0, 1) ** 1.3)
    sun = np.exp(-((columns - 0.7) ** 2 * (width / height) ** 2 + (rows - 0.36) ** 2) / 0.02)
    scene = _mix(scene, [1.0, 0.96, 0.80], sun * 0.9)
    scene = _clouds(rng, scene, rows, sun)
    ranges = ((0.42, 0.10, 3, (0.52, 0.58, 0.68)), (0.52, 0.07, 4, (0.36, 0.44, 0.48)), (0.60, 0.04, 6, (0.22, 0.30, 0.24)))
    for level, rise, cells, colour in ranges:
        crest = level - np.abs(_ridge(rng, width, rise * 1.5, width // cells))
        body = np.clip((rows - crest[None, :]) * height, 0, 1)
        folds = 1.0 + 0.25 * _fractal(rng, (height, width), width // 10)
        haze = np.clip((rows - crest[None, :]) * 3.0, 0, 0.45)
        hill = _mix(np.float32(colour) * folds[..., None], [0.86, 0.80, 0.72], haze)
        scene = scene * (1.0 - body[..., None]) + hill * body[..., None]
    scene = _reflect(rng, scene, rows, shore)
    return np.clip(_firs(rng, scene) + 0.02 * rng.standard_normal((height, width, 1), dtype=np.float32), 0.02, 1.0)


def _clouds(rng, scene, rows, sun):
    """Long clouds, lit from below where the sun is, thinning towards the ridges."""
    height, width = rows.shape
    narrow = _fractal(rng, (height, width // 4), height // 5, 7)
    puffs = np.asarray(Image.fromarray(narrow).resize((width, height), Image.BICUBIC))
    cover = np.clip((puffs - 0.05 + 0.35 * (0.45 - rows)) * 1.6, 0, 0.9)
    under = np.clip(np.roll(puffs, -height // 60, 0) - puffs + 0.4, 0, 1) * 0.25
    tone = np.float32([0.93, 0.88, 0.86]) - under[..., None] + sun[..., None] * np.float32([0.10, 0.06, -0.10])
    return scene * (1.0 - cover[..., None]) + tone * cover[..., None]


def _reflect(rng, scene, rows, shore):
    """Below the shore the scene again, upside down, darker and broken by ripples."""
    height, width = rows.shape
    line = int(shore * height)
    depth = np.arange(height - line)
    ripple = smooth_field(rng, (len(depth), 1), 3)[:, 0] * (1 + depth / 12.0)
    source = np.clip(line - 1 - depth * 1.6 + ripple, 0, line - 1).astype(int)
    glitter = 1.0 + 0.12 * np.asarray(Image.fromarray(smooth_field(rng, (len(depth), width // 10), 2)).resize(
        (width, len(depth)), Image.BICUBIC))
    scene[line:] = scene[source] * np.float32([0.74, 0.80, 0.86]) * glitter[..., None]
    return scene


def _firs(rng, scene):
    """A dark bank in front with firs on it."""
    height, width = scene.shape[:2]
    x = np.arange(width)
    ground = height * (0.95 - 0.05 * np.cos(x / width * 5)) + _ridge(rng, width, height * 0.02, width // 12)
    top = ground.copy()
    cover = np.clip(np.arange(height)[:, None] - top[None, :], 0, 1).astype(np.float32)
    for _ in range(34):
        centre = int(width * (rng.random() ** 1.8) * (1 if rng.random() < 0.7 else -1)) % width
        tall = height * (0.08 + 0.34 * rng.random() * (1 - 1.4 * min(centre, width - centre) / width))
        _fir(rng, cover, centre, ground[centre] + 4, tall)
    leaves = 1.0 + 0.5 * _fractal(rng, (height, width), 24, 4)
    firs = np.float32([0.08, 0.11, 0.09]) * leaves[..., None]
    return scene * (1.0 - cover[..., None]) + firs * cover[..., None]


def _fir(rng, cover, centre, foot, tall):
    """Adds one fir: tiers of boughs that hang down and grow wider, none quite like the other."""
    height, width = cover.shape
    top = foot - tall
    rows = np.arange(max(0, int(np.ceil(top))), min(height, int(foot)))
    along = (rows - top) / tall
    tiers = along * (7 + tall / 25)
    hang = 0.45 + 0.55 * (tiers % 1.0)
    reach = tall * 0.19 * along**0.85
    for side in (-1, 1):
        tier = np.floor(tiers + 0.35 * (side > 0)).astype(int)
        uneven = 0.7 + 0.5 * rng.random(tier.max() + 1)[tier]
        edge = reach * hang * uneven + 1.0 + 1.5 * rng.random(len(rows)) * along
        distance = (np.arange(width)[None, :] - centre) * side
        inside = np.clip(edge[:, None] - distance, 0, 1) * (distance >= 0)
        cover[rows] = np.maximum(cover[rows], inside)


def halftone(page, cell, angle=45.0):
    """The grey of a page as round dots `cell` pixels apart on a turned screen (an AM halftone)."""
    big = to_image(page).convert("L")
    big = big.resize((big.width * 3, big.height * 3), Image.BICUBIC)
    grey = np.asarray(big, np.float32) / 255.0
    y, x = np.indices(grey.shape, np.float32)
    turn = np.deg2rad(angle)
    u = (x * np.cos(turn) + y * np.sin(turn)) * (2 * np.pi / (3 * cell))
    v = (y * np.cos(turn) - x * np.sin(turn)) * (2 * np.pi / (3 * cell))
    screen = 0.5 + 0.25 * (np.cos(u) + np.cos(v))
    ink = np.where(0.06 + 0.88 * grey > screen, 255, 20).astype(np.uint8)
    return Image.fromarray(ink).reduce(3)
