#!/usr/bin/env python3
"""Plays thousands of random shots with the replay tool and prints its reports.

  transcript.py MATCHES REPLAY...

REPLAY is the command that starts the tool. A Touchdown's kick is taken, so the tool is asked line by line. The shots
are the same on every computer: they come from a generator of our own.
"""
import contextlib
import json
import os
import subprocess
import sys

ROUNDS = 99
state = 20260101


def draw(low, high):
    """A number with three decimals."""
    global state
    state = (state * 6364136223846793005 + 1442695040888963407) % 2**64
    return round(low + (high - low) * (state >> 40) / 2**24, 3)


def play(command):
    """A match of two people with random shots, half of them close to a Touchdown."""
    tool = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def ask(line):
        # After the last shot the tool reports the end of the match and may be gone already.
        with contextlib.suppress(BrokenPipeError):
            os.write(tool.stdin.fileno(), f"{line}\n".encode())

    ask(f"rounds {ROUNDS}")
    attempt = 0
    kick = False
    while True:
        if kick:
            ask(f"kick {draw(0.5, 120)} {draw(-0.5, 0.5)} {int(draw(0, 300))}")
        else:
            near = draw(0, 1) < 0.5
            force = round(draw(-2, 2) + (96, 27, 18)[attempt], 3) if near else draw(0.5, 120)
            ask(f"flick {force} {0 if near else draw(-1, 1)}")
        line = tool.stdout.readline()
        print(line, end="")
        if not line or json.loads(line)["event"] == "over":
            break
        seen = json.loads(line)
        kick = seen.get("result") == "touchdown"
        attempt = 3 - seen.get("shots", 3)
    tool.stdin.close()
    tool.stdout.read()
    if tool.wait() != 0:
        sys.exit(f"{command[-1]} failed")


for _ in range(int(sys.argv[1])):
    play(sys.argv[2:])
