"""Checks the built site: the target of every internal link exists, and every function named on a page
is in the header: only then does Doxygen make it a link.

usage: check_site.py FOLDER
"""

import glob
import html.parser
import os
import re
import sys
import urllib.parse

FUNCTION = re.compile(r"\b(?:tavu|bilinear)_\w+\(\)")


class Page(html.parser.HTMLParser):
    """The anchors and links of a page, and the functions that it names without a link."""

    def __init__(self, path):
        super().__init__()
        self.anchors, self.links, self.unknown, self.inside = set(), [], [], []
        with open(path, encoding="utf-8") as file:
            self.feed(file.read())

    def handle_starttag(self, tag, attrs):
        if tag in ("a", "pre", "code", "title", "script"):
            self.inside.append(tag)
        for key, value in attrs:
            if key in ("id", "name"):
                self.anchors.add(value)
            elif key in ("href", "src"):
                self.links.append(value or "")

    def handle_endtag(self, tag):
        if tag in self.inside:
            del self.inside[len(self.inside) - 1 - self.inside[::-1].index(tag):]

    def handle_data(self, data):
        if not self.inside:
            self.unknown += FUNCTION.findall(data)


def faults(folder):
    pages = {os.path.basename(path): Page(path) for path in glob.glob(f"{folder}/*.html")}
    for name, page in sorted(pages.items()):
        for link in page.links:
            url = urllib.parse.urlsplit(link)
            if url.scheme or url.netloc:
                continue
            target = urllib.parse.unquote(url.path) or name
            if not os.path.exists(os.path.join(folder, target)):
                yield f"{name}: {link} does not exist"
            elif url.fragment and target in pages and url.fragment not in pages[target].anchors:
                yield f"{name}: {link} has no such anchor"
        if name.startswith("md_") or name == "index.html":
            for function in page.unknown:
                yield f"{name}: {function} is not in the header"
    if len(pages) < 20:
        yield f"only {len(pages)} pages"


found = list(faults(sys.argv[1]))
for fault in found:
    print(fault, file=sys.stderr)
sys.exit(bool(found))
