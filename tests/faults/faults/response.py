"""Parses the output of a CGI program as strictly as a web server could."""

import html
import re


class MalformedResponse(Exception):
    pass


class Response:
    def __init__(self, status, headers, body):
        self.status = status
        self.headers = headers
        self.body = body

    @property
    def text(self):
        return html.unescape(self.body.decode("utf-8", "replace"))


def parse_response(output, without_body=False):
    """Parses `output` as exactly one response; raises MalformedResponse otherwise."""
    head, separator, body = output.partition(b"\r\n\r\n")
    if not separator:
        raise MalformedResponse("the headers have no end")
    headers = {}
    for line in head.split(b"\r\n"):
        match = re.fullmatch(rb"([A-Za-z-]+): ([^\r\n\0]*)", line)
        if not match:
            raise MalformedResponse(f"not a header: {line[:80]!r}")
        name = match[1].decode().lower()
        value = match[2].decode("utf-8", "replace")
        if name in headers and name != "set-cookie":
            raise MalformedResponse(f"the header {name} is there twice")
        # Each cookie has its own header; the values are joined in order.
        headers[name] = headers[name] + "\n" + value if name in headers else value
    status = re.fullmatch(r"([1-5]\d\d) .+", headers.get("status", ""))
    if not status:
        raise MalformedResponse(f"the status is {headers.get('status')!r}")
    length = headers.get("content-length", "")
    if not length.isdigit() or (int(length) != len(body) and not (without_body and not body)):
        raise MalformedResponse(f"Content-Length is {length!r}, the body has {len(body)} bytes")
    kind = headers.get("content-type", "")
    if kind.startswith("text/html") and body and not (
            body.startswith(b"<!DOCTYPE html>") and body.endswith(b"</html>\n")):
        raise MalformedResponse("the page is incomplete")
    return Response(int(status[1]), headers, body)
