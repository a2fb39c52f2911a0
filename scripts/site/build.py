#!/usr/bin/python3 -B
"""Makes the site in build/docs/html: the guide from Markdown pages, and the reference from Doxygen's
output.

Each page gets the frame of docs/site/page.html: header, search, breadcrumb, menu. The pages of the
guide and their sections have fixed addresses: docs/threads.md#timeouts becomes
guide-threads.html#timeouts. The pages of the guide have the order of the lists under "Documentation"
in README.md. If a page is missing in these lists, or a link is dead, the script fails. It uses the
system's Python, which has the module markdown_it.
"""
import html
import json
import pathlib
import re
import shutil
import sys

from guide import HOME, ROOT, Guide, Markdown, read_guide
from reference import DOXYGEN, in_order, inner, read_reference, sections, tidy
from text import link, plain

OUT = ROOT / "build/docs/html"
SITE = ROOT / "docs/site"
TEMPLATE = (SITE / "page.html").read_text()


def contents_list(found):
    if len(found) < 3:
        return ""
    items = "".join(f"<li>{link('#' + anchor, title)}</li>" for anchor, title in found)
    return f'<nav class="toc" aria-label="On this page"><p>On this page</p><ul>{items}</ul></nav>'


class Site:
    def __init__(self):
        self.users, self.project = read_guide()
        self.compounds, self.areas, self.about = read_reference()
        self.errors = []
        self.index = []  # title, context, address, text
        self.home = Guide(HOME)
        self.version = re.search(r"\bVERSION (\d+\.\d+(?:\.\d+)?)",
                                 (ROOT / "CMakeLists.txt").read_text().split("project(")[1]).group(1)

    def menu(self, address, area):
        def items(pages):
            return "".join(
                f'<li><a href="{p.address}"{mark(p.address == address)}>{p.title}</a></li>'
                for p in pages)

        def mark(here):
            return ' aria-current="page"' if here else ""

        areas = "".join(
            f'<li><a href="reference.html#{a.lower()}"{mark(False)}'
            f'{" class=here" if a == area else ""}>{a}</a></li>' for a in self.areas)
        return (f"<h2>Guide</h2><ul>{items(self.users)}</ul>"
                f'<h2><a href="reference.html"{mark(address == "reference.html")}>Reference</a></h2><ul>'
                f"{areas}<li><a href=\"hierarchy.html\"{mark(address == 'hierarchy.html')}>"
                "Class hierarchy</a></li></ul>"
                f"<h2>Project</h2><ul>{items(self.project)}</ul>")

    def write(self, address, heading, contents, crumbs=(), area=None, scripts=""):
        title = plain(heading)
        trail = "".join(f"<li>{link(a, t)}</li>" for a, t in (("index.html", "Home"), *crumbs))
        bread = f'<nav class="crumbs" aria-label="Where this page is"><ol>{trail}<li aria-current="page">' \
                f"{html.escape(title)}</li></ol></nav>" if address != "index.html" else ""
        page = TEMPLATE
        for key, value in (("title", f"{title} – QBLCore" if title != "QBLCore" else title),
                           ("crumbs", bread), ("heading", heading), ("menu", self.menu(address, area)),
                           ("version", self.version), ("scripts", scripts), ("contents", contents)):
            page = page.replace("{" + key + "}", value, 1)
        (OUT / address).write_text(page)

    # --- guide

    def index_guide(self, page):
        title = html.unescape(page.title)
        parts = re.split(r'<h2 id="([^"]*)">(.*?) <a class="permalink".*?</h2>', page.contents)
        self.index.append((title, "Guide", page.address, plain(parts[0])))
        for anchor, name, body in zip(parts[1::3], parts[2::3], parts[3::3]):
            if page.source == "README.md" and plain(name) == "Documentation":  # only lists the other pages
                continue
            self.index.append((plain(name), f"Guide › {title}", f"{page.address}#{anchor}", plain(body)))

    def read_pages(self):
        names = {}
        for compound in self.compounds.values():
            for name, anchor, _, _ in compound.members:
                full = name if compound.kind == "file" else f"{compound.name}::{name}"
                # Links only names that have a prefix of the library. Other names, such as the severity
                # Error, may mean something else in a text.
                if re.match(r"(?:QBL|I18N|TAV|Tav|M_)\w|(?:qbl|i18n|tav)[A-Z]", full):
                    names.setdefault(full, f"{compound.address}#{anchor}")
        names.update((c.name, c.address) for c in self.compounds.values() if c.kind != "file")
        headers = {c.path: c.address for c in self.compounds.values() if c.kind == "file"}
        headers.update((path.split("/")[-1], address) for path, address in list(headers.items()))
        markdown = Markdown(names, headers)
        for page in self.users + self.project + [self.home]:
            page.title, page.contents = markdown.page((ROOT / page.source).read_text())
            if page.source == "README.md":
                page.title = "Overview"

    def write_guide(self):
        for page in self.users + self.project:
            self.index_guide(page)
            found = [(a, plain(t)) for a, t in
                     re.findall(r'<h2 id="([^"]*)">(.*?) <a class="permalink"', page.contents)]
            group = "Project" if page in self.project else "Guide"
            self.write(page.address, page.title, contents_list(found) + page.contents,
                       [("index.html#" + group.lower(), group)])

    def write_home(self):
        text = self.home.contents
        def cards(pages):
            return '<ul class="cards">' + "".join(
                f"<li>{link(p.address, html.unescape(p.title))}<p>{about(p)}</p></li>" for p in pages) + "</ul>"

        def about(page):
            return re.sub(r"`([^`]*)`", r"<code>\1</code>", html.escape(page.about))

        areas = '<ul class="cards">' + "".join(
            f"<li>{link('reference.html#' + a.lower(), a)}<p>{html.escape(self.about[a])}</p></li>"
            for a in self.areas) + "</ul>"
        # Each group of tasks becomes a section, one level below the heading of all tasks.
        text = re.sub(r"<(/?)h2\b", r"<\1h3", text)
        text = re.sub(r"(<h3.*?</ul>)", r"<section>\1</section>", text, flags=re.S)
        text = text.replace("<section>", f'<h2 id="tasks">{self.home.title}</h2><div class="tasks"><section>', 1)
        self.write("index.html", "QBLCore",
                   f"{text}</div>"
                   f'<h2 id="guide">Guide</h2>{cards(self.users)}'
                   f'<h2 id="reference">Reference</h2>{areas}'
                   f'<h2 id="project">Project</h2>{cards(self.project)}')

    # --- reference

    def trail(self, compound):
        return [("reference.html", "Reference"),
                (f"reference.html#{compound.area.lower()}", compound.area)]

    def write_compound(self, compound):
        title, text = inner((DOXYGEN / compound.address).read_text())
        title = re.sub(r" (?:(?:Class|Struct)(?: Template)?|Union|File) Reference.*", "", title, flags=re.S)
        text = re.sub(r"<hr/>The documentation for this .*?</ul>", "", text, flags=re.S)
        # Moves the description of the class before its members.
        details = re.search(r'<a name="details"[^>]*></a>(<h2 class="groupheader">.*?)'
                            r"(?=<h2 class=\"groupheader\">(?!Detailed)|\Z)", text, re.S)
        text = re.sub(r'<a href="[^"]*#details">More\.\.\.</a>', "", text)
        if details:
            contract = re.sub(r'<h2 class="groupheader">.*?</h2>', "", details.group(1), count=1)
            text = text.replace(details.group(0), "")
            text = re.sub(r"\A\s*<p>(?!<code>).*?</p>\s*", "", text, count=1, flags=re.S)
            at = re.search(r'<table class="memberdecls">|<h2 class="groupheader">|\Z', text).start()
            text = text[:at] + '<a id="details"></a>' + contract + text[at:]
        text = tidy(text)
        text = re.sub(r'<tr class="heading"><td colspan="2">(<h2.*?</h2>)</td></tr>', r"\1", text, flags=re.S)
        text = re.sub(r'<div class="wide" tabindex="0"><table class="memberdecls">\s*(<h2.*?</h2>)',
                      r'\1<div class="wide" tabindex="0"><table class="memberdecls">', text, flags=re.S)
        text = re.sub(r"(?<![\w/>\"])docs/(\w+)\.md\b", r'<a href="\1.md">docs/\1.md</a>', text)
        text, found = sections(in_order(text, compound))
        members = compound.id + "-members.html"
        every = f'<p>{link(members, "All members, inherited ones too")}</p>' \
            if (DOXYGEN / members).exists() else ""
        self.write(compound.address, title, contents_list(found) + text + every, self.trail(compound),
                   compound.area)
        self.index.append((compound.name.split("/")[-1], f"Reference › {compound.area}",
                           compound.address, compound.brief))
        known = set(re.findall(r'id="([^"]*)"', text))
        for name, anchor, brief, _ in compound.members:
            if anchor in known:
                self.index.append((name, f"Reference › {compound.area} › {compound.name}",
                                   f"{compound.address}#{anchor}", brief))
        if every:
            _, listed = inner((DOXYGEN / members).read_text())
            listed = re.sub(r" \(defined in <a [^>]*>.*?</a>\)", "", listed)
            self.write(members, f"Members of {title}", tidy(listed),
                       self.trail(compound) + [(compound.address, plain(title))], compound.area)
        source = compound.id + "_source.html"
        if compound.kind == "file" and (DOXYGEN / source).exists():
            _, lines = inner((DOXYGEN / source).read_text())
            self.write(source, f"Source of {title}", tidy(lines),
                       self.trail(compound) + [(compound.address, plain(title))], compound.area)

    def write_reference(self):
        for compound in self.compounds.values():
            self.write_compound(compound)
        text = "<p>What programs see: classes with their contracts, and headers with functions, types and " \
               "macros, by the area that they belong to. " \
               f"{link('hierarchy.html', 'The class hierarchy')} shows who derives from whom.</p>"
        for area in self.areas:
            own = [c for c in self.compounds.values() if c.area == area]
            rows = ""
            for kinds, title in ((("class", "struct", "union"), "Classes"), (("file",), "Headers")):
                listed = sorted((c for c in own if c.kind in kinds and (kinds[0] != "file" or c.members)),
                                key=lambda c: c.name.lower())
                if listed:
                    rows += f"<h3>{title}</h3><dl class=\"list\">" + "".join(
                        f"<dt>{link(c.address, c.name)}</dt><dd>{html.escape(c.brief)}</dd>"
                        for c in listed) + "</dl>"
            rest = sorted((c for c in own if c.kind == "file" and not c.members), key=lambda c: c.name)
            if rest:
                rows += '<p class="rest">Headers of the classes: ' + ", ".join(
                    link(c.address, c.name) for c in rest) + "</p>"
            text += f'<section><h2 id="{area.lower()}">{area}</h2><p>{html.escape(self.about[area])}</p>{rows}</section>'
        found = [(a.lower(), a) for a in self.areas]
        self.write("reference.html", "Reference", contents_list(found) + text)
        _, tree = inner((DOXYGEN / "hierarchy.html").read_text())
        tree = re.sub(r'<div class="levels">.*?</div>', "", tree)
        tree = re.sub(r'<span id="arr_[^>]*>.*?</span>', '<span style="width:16px;display:inline-block;"></span>',
                      tree)
        tree = re.sub(r'<span class="icona">.*?</span></span>|style="display:none;"', "", tree)
        self.write("hierarchy.html", "Class hierarchy", tidy(tree), [("reference.html", "Reference")])

    # --- search and links

    def write_search(self):
        self.write("search.html", "Search", '<p id="state" role="status">Type above what you look for.</p>'
                   '<noscript><p>The search needs JavaScript.</p></noscript><div id="results"></div>',
                   scripts='<script src="search-index.js"></script>\n<script src="search.js"></script>')
        lines = ",\n".join(json.dumps(entry, ensure_ascii=False) for entry in self.index)
        (OUT / "search-index.js").write_text(f"var searchIndex = [\n{lines}\n];\n")

    def target(self, address):
        """Returns the address on the site for an address in Doxygen's output or in the repository.
        Copies a file of the repository into the site if needed."""
        file, hash_, anchor = address.partition("#")
        for page in self.users + self.project + [self.home]:
            if file and pathlib.PurePosixPath(page.source).name == pathlib.PurePosixPath(file).name:
                return page.address + hash_ + anchor
        for folder in (ROOT, ROOT / "docs"):
            path = (folder / file).resolve()
            if file and not (OUT / file).exists() and path.is_file() and path.is_relative_to(ROOT):
                copy = "files/" + str(path.relative_to(ROOT)).replace("/", "-") + ".txt"
                (OUT / "files").mkdir(exist_ok=True)
                shutil.copyfile(path, OUT / copy)
                return copy
        return address

    def relink(self):
        """Rewrites the links in all pages, and reports dead links."""
        pages = {p.name: p.read_text() for p in OUT.glob("*.html")}
        for name in pages:
            pages[name] = re.sub(
                r'\b(href|src)="([^":]+)"',
                lambda m: f'{m.group(1)}="{html.escape(self.target(html.unescape(m.group(2))))}"', pages[name])
        ids = {name: set(re.findall(r'\bid="([^"]*)"', text)) for name, text in pages.items()}
        for name in pages:
            # Some members have no anchor on their page, such as friends and enumerators. Links to them
            # lead to the page.
            pages[name] = re.sub(r'"(\w+\.html)#(a[0-9a-f]{32,})"', lambda m: (
                m.group(0) if m.group(2) in ids.get(m.group(1), ()) else f'"{m.group(1)}"'), pages[name])
            (OUT / name).write_text(pages[name])
        for name, text in pages.items():
            for address in set(re.findall(r'\b(?:href|src)="([^":]+)"', text)):
                file, _, anchor = html.unescape(address).partition("#")
                if file and not (OUT / file).exists():
                    self.errors.append(f"{name}: link to {address}, which is no page")
                elif anchor and anchor not in ids.get(file or name, ()):
                    self.errors.append(f"{name}: link to {address}, which is no section")

    def make(self):
        shutil.rmtree(OUT, ignore_errors=True)
        OUT.mkdir(parents=True)
        for path in (*SITE.glob("*.css"), *SITE.glob("*.js"), SITE / "icon.svg", *(ROOT / "docs").glob("*.svg")):
            shutil.copyfile(path, OUT / path.name)
        self.read_pages()
        self.write_guide()
        self.write_home()
        self.write_reference()
        self.write_search()
        self.relink()


def main():
    site = Site()
    site.make()
    for error in sorted(set(site.errors)):
        print(error, file=sys.stderr)
    return 1 if site.errors else 0


if __name__ == "__main__":
    sys.exit(main())
