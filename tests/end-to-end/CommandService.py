"""A scripted translation service on loopback for the command's tests."""

import http.server
import json
import threading


class ScriptedService:
    """Answers POST /v1/translate with the texts between "<" and ">", or as told.

    `answer` is a status and a body to give instead; `hold` makes every request wait until
    `release`; `delay` is in seconds before each answer.
    """

    def __init__(self, answer=None, hold=False, delay=0.0):
        self.answer = answer
        self.delay = delay
        self.requests = []
        self.headers = []
        self.asked = threading.Semaphore(0)
        self._go = threading.Event()
        if not hold:
            self._go.set()
        outer = self

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def do_POST(self):
                length = int(self.headers.get("Content-Length", "0"))
                body = json.loads(self.rfile.read(length))
                outer.requests.append(body)
                outer.headers.append(dict(self.headers))
                outer.asked.release()
                outer._go.wait()
                if outer.delay:
                    threading.Event().wait(outer.delay)
                status, text = outer.answer or (
                    200,
                    json.dumps({"translations": [f"<{t}>" for t in body["texts"]]}),
                )
                data = text.encode("utf-8")
                try:
                    self.send_response(status)
                    self.send_header("Content-Length", str(len(data)))
                    self.end_headers()
                    self.wfile.write(data)
                except OSError:
                    pass

            def log_message(self, *_):
                pass

        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self._server.daemon_threads = True
        self.url = f"http://127.0.0.1:{self._server.server_address[1]}"
        threading.Thread(target=self._server.serve_forever, daemon=True).start()

    def release(self):
        self._go.set()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._go.set()
        self._server.shutdown()
        self._server.server_close()
