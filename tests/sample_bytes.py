# SPDX-License-Identifier: MIT
"""The bytes of small audio files, put together by hand. For tests and fuzz targets."""


def synchsafe(number, bits=7):
    """Four bytes of so many bits each; with 8, a plain number."""
    return bytes(number >> bits * place & (1 << bits) - 1 for place in (3, 2, 1, 0))


def chunk(name, content, order="big"):
    return name + len(content).to_bytes(4, order) + content


def frame(name, content, flags=0, bits=8):
    """With a name of three bytes, one of version 2."""
    if len(name) == 3:
        return name + len(content).to_bytes(3, "big") + content
    return name + synchsafe(len(content), bits) + flags.to_bytes(2, "big") + content


def id3_tag(content, version=3, flags=0):
    return b"ID3" + bytes((version, 0, flags)) + synchsafe(len(content)) + content
