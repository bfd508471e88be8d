#!/usr/bin/env python3
"""A second client of the network game, written from docs/protocol.md alone: it finds or hosts a session, plays a match
with random shots, and prints what it saw. No packages beside Python's own.

  second_client.py host NAME [--rounds N] | join NAME [--address A]    [--speed N] [--seed N] [--cut N]

--speed  all times are so many times as short, for tests on a quick clock
--cut    cuts the connection by itself after every N messages sent

Prints "flick X Z" with the place where each flick came to rest, as the bits of two floats ("flick fell" for a fall),
and at the end "score OWN OTHER".
"""

import argparse
import collections
import math
import random
import select
import socket
import struct
import sys
import time

GAME = bytes.fromhex("7AB2F242475F11D4AF9B00C04F361528")
INTRODUCTION = b"SNWG" + struct.pack("<H", 1) + GAME
PORTS = range(28710, 28718)
ASK, ANSWER, JOIN, RESUME, WELCOME, RESUMED, REFUSE, DATA, ACK, BYE = range(1, 11)
MESSAGE, PLAYER = 0, 1

CARD, SIGN_OF_LIFE, SILENCE, GIVE_UP, LAST_WORDS = 3.0, 1.5, 10.0, 30.0, 60.0  # seconds
SPEED = 1.0


def now():
    return time.monotonic() * SPEED


def pack_frame(frame):
    return struct.pack("<I", len(frame)) + frame


class Lost(Exception):
    """The other side is lost for good or has left."""


class Ended(Exception):
    """A connection that has ended."""


# Connections and the session over them.


class Connection:
    """Frames on TCP."""

    def __init__(self, sock):
        sock.setblocking(False)
        sock.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self.sock, self.bytes, self.heard, self.sent = sock, b"", now(), now()

    def write(self, frame):
        try:
            self.sock.sendall(pack_frame(frame))  # some hundred bytes at a time: they always fit
        except OSError:
            pass  # the next read tells
        self.sent = now()

    def read(self):
        """All complete frames received."""
        try:
            while True:
                part = self.sock.recv(65536)
                if not part:
                    raise Ended
                self.bytes += part
                self.heard = now()
        except BlockingIOError:
            pass
        except OSError:
            raise Ended from None
        frames = []
        while len(self.bytes) >= 4:
            length = struct.unpack_from("<I", self.bytes)[0]
            assert 1 <= length <= 65532, "a forbidden length"
            if len(self.bytes) < 4 + length:
                break
            frames.append(self.bytes[4 : 4 + length])
            self.bytes = self.bytes[4 + length :]
        return frames

    def wait_for_frame(self, seconds):
        end = now() + seconds
        while now() < end:
            select.select([self.sock], [], [], 0.02)
            frames = self.read()
            if frames:
                # The bytes after it belong to the running session.
                self.bytes = b"".join(map(pack_frame, frames[1:])) + self.bytes
                return frames[0]
        raise Ended


class Session:
    """The messages of a session, over any number of connections."""

    def __init__(self, cut):
        self.connection, self.broken_at = None, now()
        self.kept, self.next_out, self.next_in = collections.deque(), 1, 1
        self.inbox, self.bye_came, self.cut = collections.deque(), False, cut

    def attach(self, connection, peer_next):
        self.acknowledged(peer_next)
        self.connection = connection
        for _, frame in self.kept:
            connection.write(frame)
        self.write_ack()

    def send(self, kind, payload=b""):
        frame = struct.pack("<BIB", DATA, self.next_out, kind) + payload
        self.kept.append((self.next_out, frame))
        self.next_out += 1
        if self.connection:
            self.connection.write(frame)
            if self.cut and self.next_out % self.cut == 0:
                self.connection.sock.close()

    def acknowledged(self, peer_next):
        assert 1 <= peer_next <= self.next_out, "acknowledges what was never sent"
        while self.kept and self.kept[0][0] < peer_next:
            self.kept.popleft()

    def write_ack(self):
        self.connection.write(struct.pack("<BI", ACK, self.next_in))

    def handle(self, frame):
        kind = frame[0]
        if kind == DATA:
            number, what = struct.unpack_from("<IB", frame, 1)
            assert number <= self.next_in, "a message is missing"
            if number == self.next_in:
                self.next_in += 1
                if what == MESSAGE:
                    self.inbox.append(frame[6:])
            self.write_ack()
        elif kind == ACK:
            self.acknowledged(struct.unpack("<I", frame[1:])[0])
        elif kind == BYE:
            assert struct.unpack("<I", frame[1:])[0] == self.next_in, "leaves with messages missing"
            self.write_ack()
            self.bye_came = True
        else:
            raise AssertionError("an unexpected frame in a running session")

    def poll(self, seconds=0.005):
        if self.connection is None:
            if now() - self.broken_at > GIVE_UP:
                raise Lost("a break that isn't mended")
            self.mend()
        if self.connection is None:
            time.sleep(seconds)
            return
        try:
            select.select([self.connection.sock], [], [], seconds)
            for frame in self.connection.read():
                self.handle(frame)
            if now() - self.connection.heard > SILENCE:
                raise Ended
            if now() - self.connection.sent > SIGN_OF_LIFE:
                self.write_ack()
        except (Ended, OSError, ValueError):  # select refuses a socket that is closed
            if self.bye_came:
                self.connection = None
                return
            self.connection.sock.close()
            self.connection, self.broken_at = None, now()

    def leave(self):
        """Waits until everything sent is acknowledged."""
        end = now() + LAST_WORDS
        while self.kept and not self.bye_came and now() < end:
            self.poll()
        if self.connection:
            self.connection.write(struct.pack("<BI", BYE, self.next_out))


class HostSession(Session):
    def __init__(self, name, rounds, cut):
        super().__init__(cut)
        self.rounds, self.name, self.playing = rounds, name.encode()[:128], False
        self.id, self.secret = random.getrandbits(64), random.randbytes(16)
        for port in PORTS:
            self.tcp, self.udp = socket.socket(), socket.socket(type=socket.SOCK_DGRAM)
            self.tcp.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
            try:
                self.tcp.bind(("127.0.0.1", port))
                self.udp.bind(("127.0.0.1", port))
                self.tcp.listen()
                break
            except OSError:
                continue
        else:
            sys.exit("no port is free")
        self.udp.setblocking(False)
        while self.connection is None:  # one stranger after the other: good enough for a friend
            self.broken_at = now()
            self.mend()
            if self.connection and not self.wait_for_player():
                self.connection = None
        self.playing = True

    def answer(self, ask):
        if self.playing or len(ask) < 256 or ask[:23] != bytes([ASK]) + INTRODUCTION:
            return None
        return (bytes([ANSWER]) + INTRODUCTION + ask[23:31]
                + struct.pack("<QBBIHB", self.id, 1, 2, 4, self.rounds, len(self.name)) + self.name)

    def mend(self):
        """Looks for whoever comes."""
        ready = select.select([self.tcp, self.udp], [], [], 0.01)[0]
        if self.udp in ready:
            ask, who = self.udp.recvfrom(512)
            answer = self.answer(ask)
            if answer:
                self.udp.sendto(answer, who)
        if self.tcp not in ready:
            return
        connection = Connection(self.tcp.accept()[0])
        try:
            first = connection.wait_for_frame(5)
        except Ended:
            return
        answer = self.answer(first)
        known = first[1:23] == INTRODUCTION and struct.unpack_from("<Q", first, 23)[0] == self.id
        if answer:
            connection.write(answer)
        elif first[0] == JOIN and known and not self.playing:
            connection.write(bytes([WELCOME]) + self.secret)
            self.attach(connection, 1)
        elif first[0] == RESUME and known and first[31:47] == self.secret:
            connection.write(struct.pack("<BI", RESUMED, self.next_in))
            self.attach(connection, struct.unpack_from("<I", first, 47)[0])

    def wait_for_player(self):
        end = now() + GIVE_UP
        while self.next_in == 1 and self.connection and now() < end:
            self.poll()
        return self.next_in > 1


class JoinedSession(Session):
    def __init__(self, address, name, cut):
        super().__init__(cut)
        self.next_dial = 0.0
        self.address, self.id, self.rounds = self.search(address, name)
        connection = Connection(socket.create_connection(self.address, 5))
        connection.write(bytes([JOIN]) + INTRODUCTION + struct.pack("<Q", self.id))
        welcome = connection.wait_for_frame(5)
        if welcome[0] != WELCOME:
            sys.exit("refused: %d" % welcome[1])
        self.secret = welcome[1:]
        self.attach(connection, 1)
        self.send(PLAYER)
        end = now() + 5
        while self.kept and now() < end:
            self.poll()
        if self.kept:
            sys.exit("the host doesn't take this player")

    @staticmethod
    def search(address, wanted):
        nonce = random.randbytes(8)
        ask = (bytes([ASK]) + INTRODUCTION + nonce).ljust(256, b"\0")
        udp = socket.socket(type=socket.SOCK_DGRAM)
        for _ in range(100):
            for port in PORTS:
                udp.sendto(ask, (address, port))
            while select.select([udp], [], [], 0.3)[0]:
                try:
                    answer, who = udp.recvfrom(512)
                except ConnectionError:
                    continue  # nobody listens at one of the ports
                if answer[:31] != bytes([ANSWER]) + INTRODUCTION + nonce:
                    continue
                session, players, most, _, rounds, length = struct.unpack_from("<QBBIHB", answer, 31)
                name = answer[48 : 48 + length].decode()
                if name == wanted and players < most and 1 <= rounds <= 99:
                    return who, session, rounds
        sys.exit("no session is found")

    def mend(self):
        if now() < self.next_dial:
            return
        self.next_dial = now() + 1
        try:
            connection = Connection(socket.create_connection(self.address, 4))
            connection.write(bytes([RESUME]) + INTRODUCTION + struct.pack("<Q", self.id) + self.secret
                             + struct.pack("<I", self.next_in))
            answer = connection.wait_for_frame(4)
        except (OSError, Ended):
            return
        if answer[0] == REFUSE:
            raise Lost("the host knows nothing of this session")
        self.attach(connection, struct.unpack("<I", answer[1:])[0])


# Messages.


def pack_message(*fields):
    packed = b""
    for field in fields:
        if isinstance(field, str):
            packed += struct.pack("<BH", 1, len(field.encode())) + field.encode()
        elif isinstance(field, int):
            packed += struct.pack("<Bi", 2, field)
        else:
            packed += struct.pack("<Bf", 3, field)
    return packed


def unpack_message(packed):
    fields, at = [], 0
    while at < len(packed):
        kind, at = packed[at], at + 1
        if kind == 1:
            length = struct.unpack_from("<H", packed, at)[0]
            fields.append(packed[at + 2 : at + 2 + length].decode())
            at += 2 + length
        else:
            fields.append(struct.unpack_from("<i" if kind == 2 else "<f", packed, at)[0])
            at += 4
    return fields


# The match.


def f32(value):
    return struct.unpack("<f", struct.pack("<f", value))[0]


LOSS = f32(0.6)


def sine_and_cosine(a):
    q, s, c = a * a, 0.0, 0.0
    for k in range(17, 2, -2):
        s = (1.0 - s) * q / (k * (k - 1))
    for k in range(16, 1, -2):
        c = (1.0 - c) * q / (k * (k - 1))
    return a * (1.0 - s), 1.0 - c


def above_table(x, y, z):
    return abs(x) <= 88 and abs(z) <= 88 and y >= -0.5


def above_bonus(x, z):
    """Inside a polygon of 128 corners on the circle."""
    z += 79.2
    half = math.pi / 128
    angle = math.atan2(x, z) % (2 * half) - half
    return math.hypot(x, z) * math.cos(angle) <= 8 * math.cos(half)


FELL, BONUS, SHORT, PENALTY, TOUCHDOWN = 4, 5, 7, 6, 3


class Piece:
    """The piece and its aim, in one possession."""

    def __init__(self):
        self.place, self.heading, self.attempts = (0.0, 0.0, 85.0), (0.0, 1.0), 3

    def flick(self, place, force, direction):
        """Plays a flick and returns its result, or None."""
        self.attempts -= 1
        (x, y, z), (dx, dy, dz), (hx, hz) = place, direction, self.heading
        while force != 0:
            p = f32(-force / 50)
            x, y, z = f32(x + dx * p), f32(y + dy * p), f32(z + dz * p)
            s, c = sine_and_cosine(f32(-force / 200))
            u, v = hz * s + hx * c, -hx * s + hz * c
            length = math.sqrt(u * u + v * v)
            hx, hz = f32(u / length), f32(v / length)
            force = max(f32(force - LOSS), 0.0)
            self.place, self.heading = (x, y, z), (hx, hz)
            if not above_table(x, y, z):
                print("flick fell", flush=True)
                return FELL
        print("flick", *(struct.pack(">f", self.place[i]).hex().upper() for i in (0, 2)), flush=True)
        return self.judge()

    def judge(self):
        (x, y, z), (hx, hz) = self.place, self.heading
        past, bonus = False, False
        for a, b in ((5, 2.5), (-5, 2.5), (0, -2.5)):
            cx, cz = f32(x + (hz * a + hx * b)), f32(z + (-hx * a + hz * b))
            past = past or cz < -88
            if not above_table(cx, y, cz):
                if past:
                    return PENALTY if self.attempts > 0 else TOUCHDOWN
                return SHORT if self.attempts < 1 else None
            bonus = bonus or above_bonus(cx, cz)
        if bonus and self.attempts == 2:
            return BONUS
        return SHORT if self.attempts < 1 else None


class Match:
    def __init__(self, session, host):
        self.session, self.host, self.rounds = session, host, session.rounds
        self.own, self.other, self.round = 0, 0, 0
        self.piece, self.posts, self.posts_step = Piece(), 0.0, 1.0
        self.other_over = False

    # Out and in.

    def send(self, *fields):
        self.session.send(MESSAGE, pack_message(*fields))

    def send_score(self):
        self.send("Score", self.own, self.other, self.round)

    def wait(self, seconds):
        """Waits without reading: a flight or a card."""
        end = now() + seconds
        while now() < end:
            self.session.poll()

    def take(self):
        """Waits for the next message."""
        while not self.session.inbox:
            if self.session.bye_came:
                raise Lost("the other side has left")
            self.session.poll()
        fields = unpack_message(self.session.inbox.popleft())
        if fields == ["END"]:
            raise Lost("the other player has left the game")
        return fields

    def read(self):
        """Waits for the next message and handles all but shots."""
        fields = self.take()
        tag = fields[0]
        if tag == "Score":
            self.other, self.own = max(self.other, fields[1]), max(self.own, fields[2])
            if not self.host and fields[3] == self.rounds:
                self.other_over = True
        elif tag == "OVER" and self.host:
            self.other_over = True
        elif tag == "MESSAGE":
            print("chat", fields[1], flush=True)
        elif tag == "RESULT":
            print("card", fields[1], flush=True)
            while self.take() != ["Continue"]:
                pass
        return fields

    def look(self):
        """Handles one message, if there is one."""
        if self.session.inbox:
            self.read()

    # The possession of this side.

    def possess(self):
        self.piece, self.posts = Piece(), 0.0
        planned = random.random() < 0.6
        for attempt in range(3):
            for _ in range(random.randrange(20)):
                self.session.poll(0.02 / SPEED)
                self.look()
            if random.random() < 0.2:
                self.send("MESSAGE", "well played")
            force = float((96, 24, 16)[attempt] if planned else 8 * random.randrange(13))
            turn = random.uniform(-0.03, 0.03) if planned else random.uniform(-0.2, 0.2)
            if not planned and random.random() < 0.1:
                force = 120.0
            direction = (f32(math.sin(turn)), 0.0, f32(math.cos(turn)))
            place = self.piece.place
            self.send("Flick", *place, force, *direction, 0.0, 1.0, 0.0, 1)
            result = self.piece.flick(place, force, direction)
            self.wait(force / 0.6 * 0.02)
            if result == BONUS:
                self.own += 3
            if result == TOUCHDOWN:
                self.own += 6
            if result is not None:
                self.show(result)
            if result == TOUCHDOWN:
                self.kick(place, direction)
            if result is not None and result != BONUS:
                return
        raise AssertionError("a possession ends with its third attempt")

    def show(self, result):
        self.send("RESULT", result)
        self.wait(CARD)
        self.send("Continue")

    def kick(self, place, direction):
        force = float(8 * random.randrange(1, 13))
        for _ in range(random.randrange(200)):
            self.move_posts()
        self.send("Goal", *place, force, *direction, 0.0, 1.0, 0.0, 1)
        p = f32(-force / 40)
        r, g = f32(-p / 3), f32(p / 20 * -1 / 10)
        y, z = 0.0, 87.0
        height, steps = 0.0, 0
        while z > -95 and height >= 0 and g > 0:
            self.move_posts()
            height, z = f32(y + r), f32(z + p)
            y, r = f32(height + r), f32(r - g)
            steps += 1
        self.wait(steps * 0.02)
        good = abs(self.posts) < 14 and height > 20
        self.own += good
        self.show(1 if good else 2)
        if good:
            self.send_score()

    def move_posts(self):
        self.posts += self.posts_step
        if abs(self.posts) > 88:
            self.posts_step = -self.posts_step

    # The possession of the other side.

    def watch(self):
        self.piece = Piece()
        while True:
            fields = self.read()
            if fields[0] != "Flick":
                continue
            place, force, direction = tuple(fields[1:4]), fields[4], tuple(fields[5:8])
            result = self.piece.flick(place, force, direction)
            self.wait(force / 0.6 * 0.02)
            if result == BONUS:
                self.other += 3
            if result == TOUCHDOWN:
                self.other += 6
            if result == TOUCHDOWN:
                while self.read()[0] != "Goal":
                    pass
            if result is not None and result != BONUS:
                return  # the card and a kick's point come when they come

    def play(self):
        self.send("Version", "SW", 1)
        self.send_score()
        if not self.host:
            self.send_score()
        for self.round in range(1, self.rounds + 1):
            if self.host:
                self.possess()
                self.send_score()
                self.watch()
                if self.round < self.rounds:
                    self.send_score()
            else:
                self.watch()
                if self.round < self.rounds:
                    self.send_score()
                self.possess()
                if self.round < self.rounds:
                    self.send_score()
        if not self.host:
            self.send("OVER")
        while not self.other_over:
            self.read()
        print("score", self.own, self.other, flush=True)
        self.session.leave()


def main():
    global SPEED
    parser = argparse.ArgumentParser()
    parser.add_argument("role", choices=["host", "join"])
    parser.add_argument("name", help="of the session")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--address", default="127.0.0.1")
    parser.add_argument("--speed", type=float, default=1.0)
    parser.add_argument("--seed", type=int)
    parser.add_argument("--cut", type=int, default=0)
    options = parser.parse_args()
    SPEED = options.speed
    random.seed(options.seed)
    try:
        if options.role == "host":
            Match(HostSession(options.name, options.rounds, options.cut), True).play()
        else:
            Match(JoinedSession(options.address, options.name, options.cut), False).play()
    except Lost as why:
        sys.exit(str(why))


if __name__ == "__main__":
    main()
