"""Functions for pieces of HTML."""
import html
import re


def plain(fragment):
    """Returns the text of a piece of HTML, on one line."""
    text = html.unescape(re.sub(r"<[^>]*>", "", fragment))
    return re.sub(r"\s+", " ", text.replace("\u00a0", " ")).strip()


def slug(text):
    """Returns the anchor that Git hosts give a heading."""
    return re.sub(r"[^\w\- ]", "", plain(text).lower()).replace(" ", "-")


def link(address, text):
    return f'<a href="{address}">{html.escape(text)}</a>'
