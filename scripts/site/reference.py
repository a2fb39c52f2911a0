"""Makes the reference from Doxygen's output for the public headers, in build/docs/xml and
build/docs/doxygen."""
import pathlib
import re
import xml.etree.ElementTree as ET

from text import plain, slug

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
DOXYGEN, XML = (ROOT / "build/docs" / name for name in ("doxygen", "xml"))


class Compound:
    """A class or a header, read from Doxygen's XML. Members are tuples: name, anchor, brief
    description, line of the declaration."""

    def __init__(self, element):
        self.id, self.kind = element.get("id"), element.get("kind")
        self.name = element.findtext("compoundname")
        self.path = element.find("location").get("file")
        self.area = area_of(self.path)
        self.address = self.id + ".html"
        self.brief = text_of(element.find("briefdescription"))
        if not self.brief:
            self.brief = text_of(element.find("detaileddescription/para"))
        self.members = []
        for member in element.iter("memberdef"):
            if member.get("prot") == "private" or member.get("kind") == "friend":
                continue
            self.add(member, text_of(member.find("briefdescription")))
            for value in member.findall("enumvalue"):
                self.add(value, text_of(value.find("briefdescription")))

    def add(self, element, brief):
        anchor = element.get("id").rsplit("_1", 1)[1]
        place = element.find("location")
        line = int(place.get("line")) if place is not None and place.get("file") == self.path else None
        self.members.append((element.findtext("name"), anchor, brief, line))


def text_of(element):
    return "" if element is None else re.sub(r"\s+", " ", "".join(element.itertext())).strip()


def area_of(path):
    parts = path.split("/")
    return parts[1] if parts[0] == "QBLCore" else parts[0]


def read_reference():
    compounds = {}
    for entry in ET.parse(XML / "index.xml").getroot().findall("compound"):
        if entry.get("kind") in ("class", "struct", "union", "file"):
            compound = Compound(ET.parse(XML / f'{entry.get("refid")}.xml').getroot()[0])
            if (DOXYGEN / compound.address).exists() and not compound.path.endswith(".md"):
                compounds[compound.id] = compound
    layers = re.findall(r"^    ([\w/]+)  +(\S.*?) +->", (ROOT / "CONTRIBUTING.md").read_text(), re.M)
    about = {}
    for name, text in layers:
        about.setdefault(name, text)
    used = {compound.area for compound in compounds.values()}
    if used - set(about):
        raise SystemExit(f'CONTRIBUTING.md: "Layers" lacks {", ".join(used - set(about))}')
    return compounds, sorted(used, key=str.lower), about


def inner(text):
    """Returns the title and the contents of one of Doxygen's pages."""
    title = re.search(r'<div class="title">(.*?)</div></div>', text, re.S).group(1)
    contents = re.search(r'<div class="contents">(.*)</div><!-- contents -->', text, re.S).group(1)
    return re.sub(r"<div class=\"ingroups\">.*", "", title).strip(), contents


def tidy(text):
    """Removes elements that need Doxygen's scripts, and obsolete attributes."""
    text = re.sub(r'<div class="ttc".*?</div></div>\n?', "", text)
    text = re.sub(r'<tr class="[^"]* inherit [^"]*">.*?</tr>\n?', "", text, flags=re.S)
    text = re.sub(r' onclick="javascript:toggleInherit[^"]*"><img[^>]*>&#160;', ">", text)
    text = re.sub(r'<tr class="separator:.*?</tr>\n?', "", text, flags=re.S)
    text = re.sub(r' (?:align|valign|border|cellpadding|cellspacing|bgcolor|target)="[^"]*"', "", text)
    text = re.sub(r'(<a [^>]*?) name="[^"]*"', r"\1", text)
    text = re.sub(r'<a id="([^"]*)"></a>\n?&#160;', r'<a id="\1"></a>', text)
    text = text.replace("<p >", "<p>").replace("<dl >", "<dl>")
    text = re.sub(r'<span class="permalink"><a href="(#[^"]*)">&#9670;&nbsp;</a></span>(.*?)</h(\d)>',
                  r'\2 <a class="permalink" href="\1" aria-label="Link to this">#</a></h\3>', text)
    # Removes friend classes. Friend functions stay among the members.
    text = re.sub(r'<tr class="memitem:\w+"><td class="memItemLeft">(?:<a id="\w+"></a>\s*)?'
                  r"(?:class|struct)&#160;.*?</tr>\n?", "", text, flags=re.S)
    text = re.sub(r'<table class="memberdecls">\s*<tr class="heading">(?:(?!</tr>).)*</tr>\s*</table>', "", text,
                  flags=re.S)
    text = re.sub(r"<th([^>]*)>\s*</th>", r"<td\1></td>", text)
    # Wide blocks have their own scroll bars. tabindex makes them scroll by keyboard too.
    text = re.sub(r'<div class="(image|memproto)">', r'<div class="\1" tabindex="0">', text)
    text = re.sub(r'<(div|pre) class="fragment">', r'<\1 class="fragment" tabindex="0">', text)
    for name in ("markdownTable", "doxtable", "fieldtable", "memberdecls", "directory"):
        text = re.sub(rf'(<table class="{name}">.*?</table>)',
                      r'<div class="wide" tabindex="0">\1</div>', text, flags=re.S)
    return text


def sections(text):
    """Gives each heading of the second level an anchor. Returns the new text and a list of the
    headings."""
    found, seen = [], set()

    def name(match):
        attributes, content = match.groups()
        title = plain(content)
        if "memtitle" in attributes:
            return match.group(0)
        inside = re.search(r'<a [^>]*id="([^"]*)"[^>]*></a>\s*', content)
        anchor = inside.group(1) if inside else slug(title)
        while not inside and anchor in seen:
            anchor += "-1"
        seen.add(anchor)
        found.append((anchor, title))
        return match.group(0) if inside else f'<h2{attributes} id="{anchor}">{content}</h2>'

    return re.sub(r"<h2([^>]*)>(.*?)</h2>", name, text, flags=re.S), found


def in_order(text, compound):
    """Sorts the groups of members by their place in the header, whatever kinds of members they
    have."""
    lines = {anchor: line for _, anchor, _, line in compound.members if line}
    end = text.rfind('<table class="memberdecls">')
    start = text.find('<h2 class="groupheader">')
    if not 0 <= start < end:
        return text
    end = text.index("</table>", end) + len("</table></div>")
    groups = re.split(r'(?=<h2 class="groupheader">)', text[start:end])[1:]

    def place(group):
        known = [lines[a] for a in re.findall(r'"memitem:(\w+)"', group) if a in lines]
        return min(known) if known else 10**6 if 'id="inherited"' in group else 0

    return text[:start] + "".join(sorted(groups, key=place)) + text[end:]
