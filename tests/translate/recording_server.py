"""A server for the tests of the translation client: it answers as it is told and keeps the bytes
of every request.

A test steers it through a control port. Each control connection carries one line and gets one
reply. Payloads are written in hexadecimal, "-" for an empty one.

  clear                forgets requests and orders
  next ACTION          the answer to the next request without one; may be given several times
  always ACTION        the answer to every request that no "next" is left for
  release              lets one held step go on
  wait N               replies when N requests were recorded, "timeout" after 30 s
  count                how many requests were recorded
  connections          how many connections were made
  request I            the bytes of request I, counted from 0

Actions:

  echo                          each text comes back with "T:" before it
  stubborn HEX                  as echo, but status 500 when the request holds these bytes
  answer STATUS HEX [HEADERS]   one whole answer; HEADERS are further header lines
  chunks STATUS HEX HEX...      a chunked answer; each piece after the first is a held step
  flood STATUS BYTES            a chunked answer of so many letters
  cut STATUS HEX                announces ten bytes more than it sends, then closes
  close                         closes without an answer
  reset                         resets the connection without an answer
  held ACTION                   the action as a held step
"""

import json
import socket
import ssl
import struct
import threading

WAIT_SECONDS = 30


class Recorder:
    """What the connections and the control port share."""

    def __init__(self):
        self.changed = threading.Condition()
        self.clear()

    def clear(self):
        with self.changed:
            self.requests = []
            self.connections = 0
            self.queue = []
            self.default = ["echo"]
            self.released = 0
            self.changed.notify_all()

    def connected(self):
        with self.changed:
            self.connections += 1

    def record(self, raw):
        """Keeps a request and gives the action that answers it."""
        with self.changed:
            self.requests.append(raw)
            self.changed.notify_all()
            return self.queue.pop(0) if self.queue else self.default

    def wait_for(self, count):
        with self.changed:
            return self.changed.wait_for(lambda: len(self.requests) >= count, WAIT_SECONDS)

    def release(self):
        with self.changed:
            self.released += 1
            self.changed.notify_all()

    def hold(self):
        with self.changed:
            self.changed.wait_for(lambda: self.released > 0, WAIT_SECONDS)
            self.released = max(0, self.released - 1)


def unhex(word):
    return b"" if word == "-" else bytes.fromhex(word)


def read_request(connection):
    """The raw bytes of one request; None when the peer has closed."""
    raw = b""
    while b"\r\n\r\n" not in raw:
        piece = connection.recv(65536)
        if not piece:
            return None
        raw += piece
        if not raw[:1].isalpha():
            return None  # no HTTP: somebody speaks TLS to the plain port
    head, body = raw.split(b"\r\n\r\n", 1)
    length = 0
    for line in head.split(b"\r\n")[1:]:
        name, _, value = line.partition(b":")
        if name.strip().lower() == b"content-length":
            length = int(value)
    while len(body) < length:
        piece = connection.recv(65536)
        if not piece:
            return None
        body += piece
        raw += piece
    return raw


def head_of(status, headers):
    lines = ["HTTP/1.1 %d Scripted" % status, "Content-Type: application/json; charset=utf-8"]
    return ("\r\n".join(lines + headers) + "\r\n\r\n").encode()


def whole(status, body, more=b""):
    headers = ["Content-Length: %d" % len(body)] + more.decode().splitlines()
    return head_of(status, headers) + body


def echo(raw):
    texts = json.loads(raw.split(b"\r\n\r\n", 1)[1].decode())["texts"]
    body = json.dumps({"translations": ["T:" + text for text in texts]}, ensure_ascii=False)
    return whole(200, body.encode())


class Connection(threading.Thread):
    def __init__(self, recorder, accepted, context):
        super().__init__(daemon=True)
        self.recorder = recorder
        self.socket = accepted
        self.context = context

    def run(self):
        try:
            if self.context is not None:
                self.socket = self.context.wrap_socket(self.socket, server_side=True)
            while True:
                raw = read_request(self.socket)
                if raw is None or not self.act(self.recorder.record(raw), raw):
                    break
        except (OSError, ValueError):
            pass  # the peer went away, which is what some tests are about
        finally:
            self.socket.close()

    def act(self, action, raw):
        """Answers; true when the connection stays open."""
        name, words = action[0], action[1:]
        if name == "held":
            self.recorder.hold()
            return self.act(words, raw)
        if name == "stubborn":
            refused = unhex(words[0]) in raw
            body = b'{"code":"engine_failed","message":"The engine failed"}'
            self.socket.sendall(whole(500, body) if refused else echo(raw))
            return True
        if name == "echo":
            self.socket.sendall(echo(raw))
            return True
        if name == "answer":
            more = unhex(words[2]) if len(words) > 2 else b""
            self.socket.sendall(whole(int(words[0]), unhex(words[1]), more))
            return True
        if name == "chunks":
            self.send_chunks(int(words[0]), [unhex(word) for word in words[1:]])
            return True
        if name == "flood":
            self.flood(int(words[0]), int(words[1]))
            return True
        if name == "cut":
            body = unhex(words[1])
            head = head_of(int(words[0]), ["Content-Length: %d" % (len(body) + 10)])
            self.socket.sendall(head + body)
        if name == "reset":
            # Lingering for no time makes the system send a reset in place of an orderly end.
            self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        return False

    def flood(self, status, length):
        piece = b"y" * (1 << 18)
        self.socket.sendall(head_of(status, ["Transfer-Encoding: chunked"]))
        while length > 0:
            part = piece[:length]
            self.socket.sendall(b"%x\r\n%s\r\n" % (len(part), part))
            length -= len(part)
        self.socket.sendall(b"0\r\n\r\n")

    def send_chunks(self, status, pieces):
        head = head_of(status, ["Transfer-Encoding: chunked"])
        for index, piece in enumerate(pieces):
            if index > 0:
                self.recorder.hold()
            self.socket.sendall(head + b"%x\r\n%s\r\n" % (len(piece), piece))
            head = b""
        self.socket.sendall(b"0\r\n\r\n")


class Control(threading.Thread):
    def __init__(self, recorder, accepted):
        super().__init__(daemon=True)
        self.recorder = recorder
        self.socket = accepted

    def run(self):
        with self.socket:
            line = b""
            while not line.endswith(b"\n"):
                piece = self.socket.recv(65536)
                if not piece:
                    return
                line += piece
            self.socket.sendall(self.reply(line.decode().split()))

    def reply(self, words):
        recorder, name = self.recorder, words[0]
        if name == "clear":
            recorder.clear()
        elif name == "release":
            recorder.release()
        elif name == "wait":
            if not recorder.wait_for(int(words[1])):
                return b"timeout"
        else:
            with recorder.changed:
                if name == "next":
                    recorder.queue.append(words[1:])
                elif name == "always":
                    recorder.default = words[1:]
                elif name == "count":
                    return b"%d" % len(recorder.requests)
                elif name == "connections":
                    return b"%d" % recorder.connections
                elif name == "request":
                    return recorder.requests[int(words[1])]
                else:
                    return b"unknown"
        return b"ok"


class Listener(threading.Thread):
    """Accepts on a free port of the loopback address and starts a thread for each connection."""

    def __init__(self, start_connection):
        super().__init__(daemon=True)
        self.socket = socket.create_server(("127.0.0.1", 0), backlog=128)
        self.port = self.socket.getsockname()[1]
        self.start_connection = start_connection
        self.start()

    def run(self):
        while True:
            accepted, _ = self.socket.accept()
            accepted.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            self.start_connection(accepted)


class RecordingServer:
    """One recorder behind a plain port, and a TLS port for each certificate given."""

    def __init__(self, certificates):
        self.recorder = Recorder()
        self.control_port = Listener(
            lambda accepted: Control(self.recorder, accepted).start()).port
        self.http_port = self.listen(None)
        self.https_ports = {}
        for name, (certificate, key) in certificates.items():
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(certificate, key)
            self.https_ports[name] = self.listen(context)

    def listen(self, context):
        def start(accepted):
            self.recorder.connected()
            Connection(self.recorder, accepted, context).start()

        return Listener(start).port
