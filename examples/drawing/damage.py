"""What time and a scanner do to a page.

Pages are float32 arrays of shape (height, width, 3) with 0 for black and 1 for white.  Each function returns the page
it was given, changed.  All chance comes from the generator that is handed in, so a page comes out the same each time.
"""

import numpy as np
from PIL import Image, ImageChops, ImageDraw, ImageFilter


def to_array(image):
    return np.asarray(image.convert("RGB"), np.float32) / 255.0


def to_image(page):
    return Image.fromarray((np.clip(page, 0.0, 1.0) * 255.0 + 0.5).astype(np.uint8))


def smooth_field(rng, shape, cell):
    """Soft hills and valleys between about -1 and 1, `cell` pixels apart."""
    height, width = shape[:2]
    grid = rng.random((height // cell + 3, width // cell + 3), dtype=np.float32) * 2.0 - 1.0
    return np.asarray(Image.fromarray(grid).resize((width, height), Image.BICUBIC))


def soften(page, radius):
    """Blurs the edges, as a lens does."""
    return to_array(to_image(page).filter(ImageFilter.GaussianBlur(radius)))


def starve_ink(page, rng, amount, cell=9):
    """Ink that did not take evenly: lightens it in patches and in fine grain."""
    patches = 0.5 * smooth_field(rng, page.shape, cell) + 0.5 * smooth_field(rng, page.shape, 2)
    keep = 1.0 - amount * (0.5 + 0.5 * patches)
    return 1.0 - (1.0 - page) * keep[..., None]


def show_through(page, back, strength, blur, shift=(0, 0)):
    """The back page shining through: mirrored, pale and out of focus."""
    mirrored = to_image(back).transpose(Image.FLIP_LEFT_RIGHT).filter(ImageFilter.GaussianBlur(blur))
    ghost = np.roll(to_array(mirrored).mean(axis=2), shift, (0, 1))
    return page * (1.0 - strength * (1.0 - ghost))[..., None]


def on_paper(page, rng, colour, mottle=0.012, foxing=0):
    """Puts the ink on tinted paper with cloudy fibre and, on old paper, brown spots."""
    fibre = mottle * (smooth_field(rng, page.shape, 5) * 0.6 + smooth_field(rng, page.shape, 60))
    page = page * (np.asarray(colour, np.float32) / 255.0) * (1.0 + fibre)[..., None]
    height, width = page.shape[:2]
    for _ in range(foxing):
        radius = int(rng.integers(width // 300, width // 60))
        x, y = int(rng.integers(radius, width - radius)), int(rng.integers(radius, height - radius))
        rows, columns = np.mgrid[-radius:radius, -radius:radius]
        stain = np.clip(1.0 - np.hypot(rows, columns) / radius, 0.0, 1.0) ** 0.7
        stain = stain * (0.7 + 0.3 * smooth_field(rng, stain.shape, max(2, radius // 3)))
        page[y - radius:y + radius, x - radius:x + radius] *= 1.0 - stain[..., None] * np.float32([0.08, 0.17, 0.26])
    return page


def falling_light(page, top_left, top_right, bottom_left, bottom_right, vignette=0.0):
    """Light that differs from corner to corner and falls off towards the rim."""
    height, width = page.shape[:2]
    across = np.linspace(0.0, 1.0, width, dtype=np.float32)[None, :]
    down = np.linspace(0.0, 1.0, height, dtype=np.float32)[:, None]
    upper = top_left + (top_right - top_left) * across
    lower = bottom_left + (bottom_right - bottom_left) * across
    light = upper + (lower - upper) * down
    light = light - vignette * ((2 * across - 1) ** 2 + (2 * down - 1) ** 2) / 2
    return page * light[..., None]


def gutter_shadow(page, dpi, at, width, depth):
    """The fold of an open book, `at` millimetres from the left: dark in the fold, clearing over `width`."""
    x = np.arange(page.shape[1], dtype=np.float32) / dpi * 25.4 - at
    shade = np.where(x >= 0, np.exp(-np.abs(x) / width), np.exp(-np.abs(x) / (width * 0.35)))
    light = 1.0 - depth * shade - 0.25 * np.exp(-(x / 0.5) ** 2)
    warm = np.float32([0.96, 1.0, 1.06])
    return page * np.clip(light, 0.0, 1.0)[None, :, None] ** warm


def specks(page, rng, dark, light, dpi, largest=0.35):
    """Dust: dark crumbs on the paper and light ones that cover the ink."""
    height, width = page.shape[:2]
    for count, tone in ((dark, 0.16), (light, 0.95)):
        mask = Image.new("L", (width, height), 0)
        pen = ImageDraw.Draw(mask)
        for _ in range(count):
            x, y = rng.random() * width, rng.random() * height
            radius = dpi / 25.4 * largest * (0.25 + 0.75 * rng.random() ** 3) / 2
            for _ in range(3):
                dx, dy, r = (rng.random(3) - 0.5) * radius * 1.4
                r = radius * 0.7 + abs(r)
                pen.ellipse([x + dx - r, y + dy - r, x + dx + r, y + dy + r], 255)
        cover = np.asarray(mask.filter(ImageFilter.GaussianBlur(0.6)), np.float32)[..., None] / 255.0 * 0.9
        page = page * (1.0 - cover) + tone * cover
    return page


def lay_on_glass(page, angle, lid, margin=0, shadow=0.25, shift=(0, 0)):
    """Lays the page on the glass, turned by `angle` degrees (positive: the lines rise to the right).

    The lid shows around it, `margin` pixels wide, and the page throws a soft shadow on it.
    """
    height, width = page.shape[:2]
    room = margin + width // 12
    size = (width + 2 * room, height + 2 * room)
    place = (room + shift[0], room + shift[1])
    sheet, mask = Image.new("RGB", size, lid), Image.new("L", size, 0)
    sheet.paste(to_image(page), place)
    mask.paste(255, (place[0], place[1], place[0] + width, place[1] + height))
    seen = (room - margin, room - margin, width + room + margin, height + room + margin)
    sheet = sheet.rotate(angle, Image.BICUBIC, fillcolor=lid).crop(seen)
    mask = mask.rotate(angle, Image.BICUBIC)
    soft = ImageChops.offset(mask.filter(ImageFilter.GaussianBlur(width / 250)), width // 300, height // 400).crop(seen)
    cover, soft = (np.asarray(layer, np.float32)[..., None] / 255.0 for layer in (mask.crop(seen), soft))
    ground = np.float32(lid) / 255.0 * (1.0 - shadow * soft)
    return to_array(sheet) * cover + ground * (1.0 - cover)


def dark_border(page, rng, angle, dpi, millimetres, shift=(0, 0)):
    """A page scanned with the lid open: turned, on near black, with the lamp's glow in the dark."""
    margin = round(millimetres / 25.4 * dpi)
    laid = lay_on_glass(page, angle, (24, 23, 26), margin, 0.5, shift)
    glow = 0.02 * (1.0 + smooth_field(rng, laid.shape, dpi))
    return np.maximum(laid, glow[..., None])


def add_noise(page, rng, sigma, grain=0.0):
    """The sensor's noise, new in every pixel, and a coarser grain that all colours share."""
    noisy = page + sigma * rng.standard_normal(page.shape, dtype=np.float32)
    return noisy + grain * smooth_field(rng, page.shape, 2)[..., None] if grain else noisy


def to_bitonal(page, rng, threshold=0.55, ragged=0.08, picture=None):
    """Black and white, with ragged edges.  Where `picture` is set, an ordered 8 x 8 dither keeps the greys."""
    grey = page.mean(axis=2)
    limit = threshold + ragged * (smooth_field(rng, grey.shape, 2) + smooth_field(rng, grey.shape, 7))
    if picture is not None:
        bayer = np.zeros((1, 1), np.float32)
        for _ in range(3):
            bayer = np.block([[4 * bayer, 4 * bayer + 2], [4 * bayer + 3, 4 * bayer + 1]])
        rows, columns = np.indices(grey.shape)
        limit = np.where(picture, (bayer[rows % 8, columns % 8] + 0.5) / 64.0, limit)
    return Image.fromarray(((grey > limit) * 255).astype(np.uint8)).convert("1", dither=Image.NONE)


def save_with_dpi(page, path, dpi, **options):
    """Writes the page with its resolution in the file."""
    image = page if isinstance(page, Image.Image) else to_image(page)
    image.save(path, dpi=(dpi, dpi), **options)
