#!/usr/bin/env python3
"""Drives a running Vantor from Python; needs the standard library alone.

    vantor_remote.py FILE [START END [FRAME]]

opens FILE in the player, keeps to the frames START to END, and goes to FRAME. In a program of your own:

    from vantor_remote import Vantor
    with Vantor() as player:
        player.open("/films/clip.mov", 10, 50)
        player.frame(12)
"""
import os
import socket
import sys


class Vantor:
    """One connection. Frames are counted from 1. The player never answers; ConnectionError: none is running."""

    def __init__(self, port=int(os.environ.get("VANTOR_PORT", 17171))):
        self._socket = socket.create_connection(("127.0.0.1", port))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._socket.close()

    def tell(self, line):
        self._socket.sendall(os.fsencode(line) + b"\n")

    def open(self, path, start=-1, end=-1):  # a media file, or a bookmarks file that ends in bmk
        if '"' in path or "'" in path:
            raise ValueError("the player takes no name with quotation marks: " + path)
        self.tell(f'file "{os.path.abspath(path)}" {start} {end}')

    def frame(self, number):
        self.tell(f"frame {number}")


if __name__ == "__main__":
    if len(sys.argv) not in (2, 4, 5):
        sys.exit(__doc__)
    with Vantor() as player:
        player.open(sys.argv[1], *sys.argv[2:4])
        if len(sys.argv) == 5:
            player.frame(sys.argv[4])
