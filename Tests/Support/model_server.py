#!/usr/bin/python3
"""A server of language models on the loopback address, as far as the adviser asks one: speaks like the servers that
Quillbrook knows, and answers with the replies that it is given.

    model_server.py [--log FILE] '{"kind": "ollama", "replies": [...], "faults": {"/api/chat": "slow"}}' [COMMAND...]

prints the port once it listens, and writes every request to the log, a line of JSON each. With a command it stands
in a network of its own, in which nothing else listens, and becomes that command.

kind      ollama, llama.cpp, llamafile or vllm
port      0 takes a free one
version   of Ollama
models    names, or objects with "name" and what else the server is to say of it
replies   what the model says, first to last: objects, or texts as they are; the last one stays
context   tokens that a conversation has room for
faults    path: what is wrong there, each time it is asked for; or a list, one for each time, of which the last stays
awaits    with a command: a file that has to be there before the server listens"""

import argparse
import ctypes
import fcntl
import http.server
import json
import os
import signal
import socket
import struct
import sys
import threading
import time

PATIENCE = 60
SILENT = {"answer": "There is nothing to say.", "proposesRemoval": False, "groupID": "", "alsoConsiderGroupID": ""}


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True
    request_queue_size = 64

    def __init__(self, script, log):
        super().__init__(("127.0.0.1", script.get("port", 0)), Handler)
        self.script = script
        self.kind = script.get("kind", "ollama")
        self.faults = script.get("faults", {})
        self.models = [model if isinstance(model, dict) else {"name": model}
                       for model in script.get("models", ["small:1b"])]
        self.replies = list(script.get("replies", []))
        self.log = log
        self.lock = threading.Lock()

    def handle_error(self, request, client_address):
        """Whoever goes away in the middle of an answer may."""

    def next_fault(self, path):
        with self.lock:
            fault = self.faults.get(path, "")
            return fault if isinstance(fault, str) else fault.pop(0) if len(fault) > 1 else fault[0]

    def next_reply(self):
        with self.lock:
            reply = SILENT
            if self.replies:
                reply = self.replies.pop(0) if len(self.replies) > 1 else self.replies[0]
        return reply if isinstance(reply, str) else json.dumps(reply, ensure_ascii=False)

    def note(self, **entry):
        with self.lock:
            if self.log:
                self.log.write(json.dumps(entry, ensure_ascii=False) + "\n")
                self.log.flush()


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *_):
        pass

    def do_GET(self):
        self.take("")

    def do_POST(self):
        self.take(self.rfile.read(int(self.headers.get("Content-Length", 0))).decode())

    def take(self, body):
        self.server.note(method=self.command, path=self.path, headers=dict(self.headers.items()), body=body)
        fault = self.server.next_fault(self.path)
        if not getattr(self, "fault_" + fault.replace(" ", "_").partition(":")[0], lambda _: False)(fault):
            self.answer(body)

    def say(self, content, status=200, kind="application/json", **headers):
        content = content.encode() if isinstance(content, str) else content
        self.send_response(status)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(content)))
        for name, value in headers.items():
            self.send_header(name, value)
        self.end_headers()
        self.wfile.write(content)
        return True

    # What may be wrong. Each answers itself, or leaves the answer to come.

    def fault_slow(self, fault):
        time.sleep(float(fault.partition(":")[2] or PATIENCE))

    def fault_huge(self, _):
        return self.say('{"filler": "' + "x" * (1024 * 1024 + 1) + '"}')

    def fault_status(self, fault):
        return self.say('{"error": {"message": "no", "type": "none", "code": 0}}', int(fault.partition(":")[2]))

    def fault_loading(self, _):
        return self.say('{"error": {"code": 503, "message": "Loading model", "type": "unavailable_error"}}', 503)

    def fault_html(self, _):
        return self.say("<!doctype html><title>Something else</title>", kind="text/html")

    def fault_redirect(self, fault):
        return self.say("", 307, Location=fault.partition(":")[2] or "/elsewhere")

    def fault_text(self, fault):
        return self.say(fault.partition(":")[2])

    def fault_half(self, _):
        self.send_response(200)
        self.send_header("Content-Length", "1000")
        self.end_headers()
        self.wfile.write(b'{"message": {"role": "assistant"')
        self.wfile.flush()
        time.sleep(PATIENCE)
        return True

    def fault_cut(self, _):
        self.send_response(200)
        self.send_header("Content-Length", "1000")
        self.end_headers()
        self.wfile.write(b'{"message": ')
        self.close_connection = True
        return True

    def fault_closed(self, _):
        self.close_connection = True
        return True

    def fault_close_after(self, _):
        self.close_connection = True

    def answer(self, body):
        kind = self.server.kind
        ways = OLLAMA if kind == "ollama" else VLLM if kind == "vllm" else LLAMA
        way = ways.get((self.command, self.path))
        if way:
            self.say(json.dumps(way(self.server, json.loads(body) if body else None), ensure_ascii=False))
        else:
            self.say('{"error": "not found"}', 404)


def ollama_tags(server, _):
    return {"models": [model | {"model": model["name"], "size": 1, "details": {"family": "llama"}}
                       for model in server.models]}


def ollama_show(server, asked):
    model = next(model for model in server.models if model["name"] == asked["model"])
    told = {"details": {"family": "llama"}, "model_info": {"llama.context_length": server.script.get("context", 131072)},
            "capabilities": ["completion"]}
    return told | model.get("show", {})


def ollama_chat(server, asked):
    return {"model": asked["model"], "message": {"role": "assistant", "content": server.next_reply()}, "done": True,
            "done_reason": "stop"} | server.script.get("chat", {})


def completions(server, asked):
    choice = {"index": 0, "finish_reason": "stop", "message": {"role": "assistant", "content": server.next_reply()}}
    return {"object": "chat.completion", "model": asked["model"], "choices": [choice | server.script.get("chat", {})]}


def models(server, _):
    owner = "vllm" if server.kind == "vllm" else "llamacpp"
    return {"object": "list", "data": [{"id": model["name"], "object": "model", "owned_by": owner}
                                       | ({"max_model_len": server.script.get("context", 32768)}
                                          if server.kind == "vllm" else {}) | model for model in server.models]}


def properties(server, _):
    return {"default_generation_settings": {"n_ctx": server.script.get("context", 32768)}, "total_slots": 1}


OLLAMA = {
    ("GET", "/api/version"): lambda server, _: {"version": server.script.get("version", "0.12.3")},
    ("GET", "/api/tags"): ollama_tags,
    ("POST", "/api/show"): ollama_show,
    ("POST", "/api/chat"): ollama_chat,
}
VLLM = {("GET", "/v1/models"): models, ("POST", "/v1/chat/completions"): completions}
LLAMA = VLLM | {("GET", "/health"): lambda *_: {"status": "ok"}, ("GET", "/props"): properties}


def bring_up_loopback():
    """In a network of its own that interface is there, but down."""
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as any_socket:
        request = struct.pack("16sH14x", b"lo", 0)
        flags = struct.unpack("16sH14x", fcntl.ioctl(any_socket, 0x8913, request))[1]
        fcntl.ioctl(any_socket, 0x8914, struct.pack("16sH14x", b"lo", flags | 1))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("script")
    parser.add_argument("--log")
    parser.add_argument("command", nargs=argparse.REMAINDER)
    arguments = parser.parse_args()
    script = json.loads(arguments.script)
    log = open(arguments.log, "a", encoding="utf-8") if arguments.log else None
    if not arguments.command:
        server = Server(script, log)
        print(server.server_address[1], flush=True)
        return server.serve_forever()
    bring_up_loopback()
    awaited = script.get("awaits")
    server = None if awaited else Server(script, log)
    # It goes with the program: what stands in this process is replaced, and its network with it.
    if os.fork() == 0:
        ctypes.CDLL(None).prctl(1, signal.SIGKILL)
        while awaited and not os.path.exists(awaited):
            time.sleep(0.05)
        (server or Server(script, log)).serve_forever()
    os.execvp(arguments.command[0], arguments.command)


if __name__ == "__main__":
    sys.exit(main())
