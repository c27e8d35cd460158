"""libtavu for NumPy arrays, with ctypes only.

The library is found by the loader, or at the path in TAVU_LIBRARY. Arrays are 8-bit. This module
checks the arguments that the library does not check, so it never passes a pointer to too little
memory.
"""

import ctypes
import os
import weakref
from ctypes import POINTER, byref, c_int32, c_uint8, c_uint32, c_void_p

import numpy as np

YUV400, YUV420, YUV422, YUV444, YUV440, YUV444A8 = 10, 11, 12, 13, 18, 43
RGB565, RGB888, BGR888, RGBA8888, BGRA8888 = 200, 400, 401, 500, 501

_HALF_WIDTH, _HALF_HEIGHT = {YUV420, YUV422}, {YUV420, YUV440}
_PLANES = {YUV400: 1, YUV420: 3, YUV422: 3, YUV444: 3, YUV440: 3, YUV444A8: 4}
_BYTES = {RGB565: 2, RGB888: 3, BGR888: 3, RGBA8888: 4, BGRA8888: 4}  # of a packed pixel


class Error(Exception):
    """The library refused the arguments."""


class _Image(ctypes.Structure):
    """tavu_imgb_t up to the addresses of its planes, as declared in tavu.h."""


_METHOD = ctypes.CFUNCTYPE(c_int32, POINTER(_Image))
_Image._fields_ = [("refcnt", c_int32), ("addref", _METHOD), ("getref", _METHOD),
                   ("release", _METHOD), ("w", c_int32), ("h", c_int32), ("x", c_int32),
                   ("y", c_int32), ("cs", c_int32), ("stride", c_int32 * 4),
                   ("rows", c_int32 * 4), ("addr", c_void_p * 4)]


class _ResizeParam(ctypes.Structure):
    """tavu_irsz_param."""
    _fields_ = [("fmt", c_int32), ("mode", c_int32), ("src_w", c_int32), ("src_h", c_int32),
                ("src_s", c_int32), ("band_h", c_int32), ("dst_w", c_int32), ("dst_h", c_int32),
                ("dst_s", c_int32), ("dst", c_void_p)]


_WHOLE_IMAGES = 10  # TAVU_IRSZ_MODE_FULL
_PLANES_ARG, _STRIDES_ARG = c_void_p * 4, c_int32 * 4
_CONVERT = ctypes.CFUNCTYPE(None, _PLANES_ARG, c_int32, c_int32, _STRIDES_ARG, c_int32,
                            _PLANES_ARG, c_int32, c_int32, _STRIDES_ARG, c_int32)

_library = ctypes.CDLL(os.environ.get("TAVU_LIBRARY", "libtavu.so.1"))


def _function(name, result, *arguments):
    function = getattr(_library, name)
    function.restype, function.argtypes = result, arguments
    return function


_imgb_create = _function("tavu_imgb_create", POINTER(_Image), c_int32, c_int32, c_int32, c_int32,
                         POINTER(c_uint32), POINTER(c_uint32), c_void_p, c_void_p, POINTER(c_int32))
_md5_imgb = _function("tavu_md5_imgb", c_int32, POINTER(_Image), c_uint8 * 16)
_get_fn_csc = _function("tavu_imgp_get_fn_csc", c_void_p, *[c_int32] * 6, POINTER(c_int32))
_irsz_create = _function("tavu_irsz_create", c_void_p, POINTER(_ResizeParam), POINTER(c_int32))
_irsz = _function("tavu_irsz", c_int32, c_void_p, c_void_p, c_int32, c_int32)
_irsz_delete = _function("tavu_irsz_delete", None, c_void_p)
_satd2 = _function("tavu_satd2", c_int32, c_int32, c_int32, c_void_p, c_void_p, c_int32, c_int32)


class Image:
    """An image buffer of the library. It is freed when neither it nor any plane array is in use."""

    def __init__(self, width, height, cs):
        if cs not in _PLANES and cs not in _BYTES:
            raise Error(f"unknown colour space {cs}")
        if width < 1 or height < 1:
            raise Error(f"no image of {width}x{height}")
        status = c_int32()
        self._record = _imgb_create(width, height, cs, 0, None, None, None, None, byref(status))
        if not self._record:
            raise Error(f"no image of {width}x{height}, colour space {cs}: status {status.value}")
        weakref.finalize(self, self._record.contents.release, self._record)

    width = property(lambda self: self._record.contents.w)
    height = property(lambda self: self._record.contents.h)
    cs = property(lambda self: self._record.contents.cs)

    @property
    def planes(self):
        """Arrays of shape (rows, columns), or (rows, columns, bytes) for packed pixels; no copies."""
        return [self._plane(index) for index in range(_PLANES.get(self.cs, 1))]

    def _plane(self, index):
        chroma = index in (1, 2)
        width = (self.width + 1) // 2 if chroma and self.cs in _HALF_WIDTH else self.width
        height = (self.height + 1) // 2 if chroma and self.cs in _HALF_HEIGHT else self.height
        pixel = _BYTES.get(self.cs, 1)
        stride, start = self._record.contents.stride[index], self._record.contents.addr[index]
        memory = (c_uint8 * (stride * (height - 1) + width * pixel)).from_address(start)
        memory.owner = self  # arrays keep their memory alive, and thus the image
        shape, strides = (height, width, pixel), (stride, pixel, 1)
        array = np.ndarray(shape, np.uint8, memory, strides=strides)
        return array if self.cs in _BYTES else array[:, :, 0]

    def md5(self):
        """MD5 digest of the visible samples, as 32 hexadecimal digits."""
        digest = (c_uint8 * 16)()
        if _md5_imgb(self._record, digest) != 0:
            raise Error(f"no digest of colour space {self.cs}")
        return bytes(digest).hex()

    def converted(self, cs, width=None, height=None):
        """A new image in another colour space and, if a size is given, of that size."""
        target = Image(width or self.width, height or self.height, cs)
        status = c_int32()
        routine = _get_fn_csc(self.width, self.height, self.cs, target.width, target.height, cs,
                              byref(status))
        if not routine:
            raise Error(f"no conversion from {self.cs} to {cs}: status {status.value}")
        own, other = self._record.contents, target._record.contents
        _CONVERT(routine)(_PLANES_ARG(*own.addr), own.w, own.h, own.stride, own.cs,
                          _PLANES_ARG(*other.addr), other.w, other.h, other.stride, cs)
        return target


def resized(picture, width, height):
    """A resized copy of an array of shape (rows, columns) or (rows, columns, 3 or 4)."""
    picture = np.ascontiguousarray(picture, np.uint8)
    channels = picture.shape[2] if picture.ndim == 3 else 1
    formats = {1: 20, 3: 21, 4: 29}  # TAVU_IRSZ_8B and so on
    if picture.ndim not in (2, 3) or channels not in formats:
        raise Error(f"no resizing of arrays of shape {picture.shape}")
    out = np.empty((height, width, *picture.shape[2:]), np.uint8)
    rows, columns = picture.shape[:2]
    param = _ResizeParam(formats[channels], _WHOLE_IMAGES, columns, rows, columns, 0, width, height, width,
                         out.ctypes.data)
    status = c_int32()
    resizer = _irsz_create(byref(param), byref(status))
    if not resizer:
        raise Error(f"no resizing of {columns}x{rows} to {width}x{height}: status {status.value}")
    _irsz(resizer, picture.ctypes.data, 0, 0)
    _irsz_delete(resizer)
    return out


def satd(a, b):
    """Sum of absolute transformed differences of two blocks, with 8x8 transforms."""
    a, b = (np.ascontiguousarray(block, np.uint8) for block in (a, b))
    rows, columns = a.shape
    if a.shape != b.shape or rows % 8 or columns % 8:
        raise Error(f"no SATD of arrays of shapes {a.shape} and {b.shape}")
    return _satd2(columns, rows, a.ctypes.data, b.ctypes.data, columns, columns)
