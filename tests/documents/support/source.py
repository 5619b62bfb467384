"""Facts of the sources: constants and enumerators."""

import re

from support.document import PROJECT


def read(path):
    return (PROJECT / path).read_text(encoding="utf-8")


def constant(path, name):
    """The number that a header gives a constant or a default member initializer."""
    match = re.search(r"\b%s\s*(?:=|\{)\s*([^;{}]+?)\}?;" % re.escape(name), read(path))
    if match is None:
        raise AssertionError("%s has no %s" % (path, name))
    if not re.fullmatch(r"[0-9a-fA-Fx*' +]+", match[1]):
        raise AssertionError("%s: %s is not a number: %s" % (path, name, match[1]))
    return eval(match[1].replace("'", ""))  # pylint: disable=eval-used


def text_constant(path, name):
    """The text that a source gives a constant."""
    match = re.search(r"\b%s\s*=\s*\"([^\"]*)\";" % re.escape(name), read(path))
    if match is None:
        raise AssertionError("%s has no %s" % (path, name))
    return match[1]


def enumerators(path, name):
    """The names and numbers of an enumeration."""
    body = re.search(r"enum (?:class )?%s\b[^{]*\{(.*?)\};" % name, read(path), re.DOTALL)[1]
    return {key: int(value, 0) for key, value in re.findall(r"(\w+) = (\w+),", body)}
