"""Reads constants and enumerators from the sources."""

import re

from support.document import PROJECT


def read(path):
    return (PROJECT / path).read_text(encoding="utf-8")


def constant(path, name):
    """Returns the number of a constant or default member initializer in a header."""
    match = re.search(r"\b%s\s*(?:=|\{)\s*([^;{}]+?)\}?;" % re.escape(name), read(path))
    if match is None:
        raise AssertionError("%s has no %s" % (path, name))
    if not re.fullmatch(r"[0-9a-fA-Fx*' +]+", match[1]):
        raise AssertionError("%s: %s is not a number: %s" % (path, name, match[1]))
    return eval(match[1].replace("'", ""))  # pylint: disable=eval-used


def text_constant(path, name):
    """Returns the text of a constant in a source."""
    match = re.search(r"\b%s\s*=\s*\"([^\"]*)\";" % re.escape(name), read(path))
    if match is None:
        raise AssertionError("%s has no %s" % (path, name))
    return match[1]


def enumerators(path, name):
    """Returns the enumerators of an enumeration as {name: number}."""
    body = re.search(r"enum (?:class )?%s\b[^{]*\{(.*?)\};" % name, read(path), re.DOTALL)[1]
    return {key: int(value, 0) for key, value in re.findall(r"(\w+) = (\w+),", body)}
