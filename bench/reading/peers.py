"""What other tools make of a page before it is read. Leptonica is called through its shared object."""

import ctypes
import subprocess

from PIL import Image

_WINDOW, _FACTOR = 25, 0.34          # Sauvola: half width of the window, weight of the deviation
_TILE, _SCORE = 2000, 0.1            # Otsu: one threshold per tile
_FORMAT_TIFF_G4 = 8


def _library():
    lept = ctypes.CDLL("liblept.so.5")
    lept.setMsgSeverity(5)    # errors only
    pointer = ctypes.c_void_p
    lept.pixRead.restype = lept.pixConvertTo8.restype = lept.pixDeskew.restype = pointer
    lept.pixRead.argtypes = [ctypes.c_char_p]
    lept.pixConvertTo8.argtypes = [pointer, ctypes.c_int]
    lept.pixDeskew.argtypes = [pointer, ctypes.c_int]
    lept.pixWrite.argtypes = [ctypes.c_char_p, pointer, ctypes.c_int]
    lept.pixSauvolaBinarize.argtypes = [pointer, ctypes.c_int, ctypes.c_float, ctypes.c_int] + [pointer] * 4
    lept.pixOtsuAdaptiveThreshold.argtypes = [pointer] + [ctypes.c_int] * 4 + [ctypes.c_float] + [pointer] * 2
    return lept


def _leptonica(source, target, binarize):
    lept = _library()
    page = lept.pixConvertTo8(lept.pixRead(str(source).encode()), 0)
    bits = ctypes.c_void_p()
    binarize(lept, page, ctypes.byref(bits))
    lept.pixWrite(str(target).encode(), lept.pixDeskew(bits, 0), _FORMAT_TIFF_G4)


def leptonica_sauvola(source, target):
    _leptonica(source, target,
               lambda lept, page, bits: lept.pixSauvolaBinarize(page, _WINDOW, _FACTOR, 1, None, None, None, bits))


def leptonica_otsu(source, target):
    _leptonica(source, target,
               lambda lept, page, bits: lept.pixOtsuAdaptiveThreshold(page, _TILE, _TILE, 0, 0, _SCORE, None, bits))


def unpaper(source, target):
    grey = target.with_suffix(".in.pgm")
    Image.open(source).convert("L").save(grey)
    subprocess.run(["unpaper", "--overwrite", "-q", str(grey), str(target.with_suffix(".pgm"))], check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    Image.open(target.with_suffix(".pgm")).save(target)
    grey.unlink()
    target.with_suffix(".pgm").unlink()
