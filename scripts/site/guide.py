"""Makes the guide from Markdown pages. The pages look as on Git hosts."""
import html
import pathlib
import re

from markdown_it import MarkdownIt
from text import slug

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
HOME = "docs/tasks.md"  # the home page shows the sections of this page


class Guide:
    """A page of the guide, made from a Markdown file."""

    def __init__(self, source, about=""):
        self.source, self.about = source, about
        stem = pathlib.Path(source).stem.lower()
        self.address = "guide-" + stem + ".html" if source.startswith("docs/") else stem + ".html"
        if source == HOME:
            self.address = "index.html"
        self.title = ""


CPP = re.compile(
    r"(?P<comment>//[^\n]*|/\*.*?\*/)|(?P<preprocessor>^[ \t]*#[^\n]*)"
    r"|(?P<string>\"(?:\\.|[^\"\\\n])*\"|'(?:\\.|[^'\\\n])*')"
    r"|(?P<keyword>\b(?:alignas|auto|bool|break|case|catch|char|char16_t|char32_t|class|const|constexpr"
    r"|continue|default|delete|do|double|else|enum|explicit|extern|false|final|float|for|friend|if|inline"
    r"|int|long|namespace|new|noexcept|nullptr|operator|override|private|protected|public|return|short"
    r"|signed|sizeof|static|static_cast|struct|switch|template|this|throw|true|try|typedef|typename"
    r"|unsigned|using|virtual|void|volatile|wchar_t|while)\b)|(?P<name>\b[A-Za-z_]\w*)", re.S | re.M)


class Markdown:
    """Converts Markdown to HTML. Names that the reference describes become links to it."""

    def __init__(self, names, headers):
        self.names, self.headers = names, headers
        self.parser = MarkdownIt("commonmark").enable("table")

    def block(self, match):
        """Returns the HTML of a block of code. The block has its own scroll bar. A block without a
        language counts as C++ if it has statements."""
        language, code = match.group(1), html.unescape(match.group(2))
        if language in ("cpp", "c") or not language and re.search(r";( *//.*)?$", code, re.M):
            shown = self.highlight(code)
        else:
            shown = html.escape(code)
        return f'<pre class="fragment" tabindex="0">{shown}</pre>'

    def word(self, match):
        """Returns the HTML of code within a line. The code becomes a link if it begins with a known
        name and is not inside a link or a block."""
        code = match.group(2)
        if not code:
            return match.group(0)
        address = self.headers.get(code)
        name = re.match(r"(\w+)(?:::\w+)?", code)
        if name and not address:
            address = self.names.get(name.group(0), self.names.get(name.group(1)))
        return f'<a href="{address}">{match.group(0)}</a>' if address else match.group(0)

    def highlight(self, code):
        def mark(match):
            kind, text = match.lastgroup, match.group()
            shown = html.escape(text)
            if kind == "name":
                return f'<a href="{self.names[text]}">{shown}</a>' if text in self.names else shown
            if kind == "preprocessor":
                for header in re.findall(r'"([^"]*)"', text):
                    if header in self.headers:
                        shown = shown.replace(header, f'<a href="{self.headers[header]}">{header}</a>')
            return f'<span class="{kind}">{shown}</span>'

        result, at = "", 0
        for match in CPP.finditer(code):
            result += html.escape(code[at:match.start()]) + mark(match)
            at = match.end()
        return result + html.escape(code[at:])

    def page(self, text):
        """Returns the title and the contents of a page as HTML. The headings have the same anchors as
        on Git hosts."""
        tokens, seen = self.parser.parse(text), {}
        title = tokens[1].content
        for opening, inline, closing in zip(tokens[3:], tokens[4:], tokens[5:]):
            if opening.type == "heading_open":
                anchor = slug("".join(child.content for child in inline.children))
                seen[anchor] = seen.get(anchor, -1) + 1
                if seen[anchor]:
                    anchor += f"-{seen[anchor]}"
                opening.attrSet("id", anchor)
        result = self.parser.renderer.render(tokens[3:], self.parser.options, {})
        result = re.sub(r"(<pre>.*?</pre>|<a .*?</a>)|<code>(.*?)</code>", self.word, result, flags=re.S)
        result = re.sub(r'<pre><code(?: class="language-(\w+)")?>(.*?)</code></pre>', self.block, result, flags=re.S)
        result = re.sub(r'<(h\d) id="([^"]*)">(.*?)</\1>', r'<\1 id="\2">\3 <a class="permalink" href="#\2"'
                        r' aria-label="Link to this section">#</a></\1>', result)
        result = re.sub(r'<p>(<img src="[^"]*" alt="([^"]*)" ?/?>)</p>', r'<figure class="image" tabindex="0">'
                        r"\1<figcaption>\2</figcaption></figure>", result)
        result = re.sub(r"<th([^>]*)>\s*</th>", r"<td\1></td>", result)
        result = re.sub(r"(<table>.*?</table>)", r'<div class="wide" tabindex="0">\1</div>', result, flags=re.S)
        return html.escape(title), f'<div class="guide">{result}</div>'


def read_guide():
    """Returns the pages that README.md lists under "Documentation": the pages for users, and the pages
    about the project."""
    more = (ROOT / "README.md").read_text().split("\n## Documentation\n")[1]
    lists = []
    for part in re.split(r"\n\n(?=- )", more)[1:]:
        items = re.findall(r"^- \[[^]]*\]\(([\w/]+\.md)\): ((?:.|\n  )*)", part, re.M)
        lists.append([Guide(source, re.sub(r"\s+", " ", about)) for source, about in items if source != HOME])
    users, project = lists[0], sum(lists[1:], [])
    project.insert(0, Guide("README.md", "what the library is, how it is built, linked and packaged"))
    listed = {page.source for page in users + project} | {HOME}
    for path in sorted((ROOT / "docs").glob("*.md")):
        if f"docs/{path.name}" not in listed:
            raise SystemExit(f'README.md: docs/{path.name} is not listed under "Documentation"')
    return users, project
