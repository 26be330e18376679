"""How Sphinx makes the manual of the guides; package/manual.sh calls it."""

import json
import os
import re
from pathlib import Path
from urllib.parse import unquote

from docutils import nodes
from pygments.lexers.basic import VBScriptLexer
from sphinx.errors import ExtensionError

HERE = Path(__file__).parent
REPO = Path(os.environ["MANUAL_REPO"])
CONTENT = Path(os.environ["MANUAL_CONTENT"])

project = "MirvaneEFT"
html_title = "MirvaneEFT"
extensions = ["myst_parser"]
# Links are written for the repository; `rewrite` makes them the manual's.
myst_all_links_external = True
suppress_warnings = ["myst.header", "misc.highlighting_failure"]
html_theme = "furo"
html_static_path = ["static"]
html_css_files = ["manual.css"]
templates_path = ["templates"]
html_additional_pages = {"search": "search.html"}
html_sidebars = {
    "**": [
        "sidebar/brand.html",
        "sidebar/language.html",
        "sidebar/search.html",
        "sidebar/scroll-start.html",
        "sidebar/navigation.html",
        "sidebar/scroll-end.html",
    ]
}
html_copy_source = False
html_show_copyright = False
html_use_index = False
# Texts in quotes are literal.
smartquotes = False

GREEK_WORDS = {
    "Search": "Αναζήτηση",
    "On this page": "Σε αυτή τη σελίδα",
    "Next": "Επόμενο",
    "Previous": "Προηγούμενο",
    "Home": "Αρχή",
    "Back to top": "Στην αρχή της σελίδας",
    "Made with ": "Με ",
}


def read_contents():
    """The groups, each a caption with the names of its pages; and the names by the files of the repository."""
    groups, names = [], {}
    for line in (HERE / "contents.txt").read_text(encoding="utf-8").splitlines():
        if line.startswith("#"):
            continue
        if not line.startswith(" "):
            groups.append((line, []))
            continue
        file, name = line.split()
        groups[-1][1].append(name)
        names[file] = name
    return groups, names


def read_contact():
    """The address to write to, the second line of package/owner.txt; empty where there is none yet."""
    owner = REPO / "package/owner.txt"
    lines = owner.read_text(encoding="utf-8").splitlines() if owner.exists() else []
    return lines[1].strip() if len(lines) > 1 else ""


CONTACT = read_contact()
GROUPS, NAMES = read_contents()
FILES = {name: file for file, name in NAMES.items()}


def is_greek(name):
    return name.startswith("el/")


def relative(target, page):
    return os.path.relpath(target, os.path.dirname(page) or ".")


def add_contents(app, page, source):
    if page != "index":
        return
    for caption, names in GROUPS:
        pages = "\n".join(name for name in names if name != "index")
        source[0] += f"\n\n```{{toctree}}\n:hidden:\n:caption: {caption}\n\n{pages}\n```\n"


def rewritten(app, page, link):
    """A link of the repository as the manual has it; None when its target is not part of the release."""
    path, hash_, anchor = link.partition("#")
    if re.match("[a-z]+:", path):
        return link
    target = os.path.normpath(os.path.join(os.path.dirname(FILES[page]), path)) if path else FILES[page]
    if target in NAMES:
        name = NAMES[target]
        if anchor:
            app.env.anchors_wanted.add((name, unquote(anchor), FILES[page]))
        return (relative(name + ".html", page) if path else "") + hash_ + anchor
    if (CONTENT / target).exists():
        return relative(os.path.join("..", target), page)
    if not (REPO / target).exists():
        raise ExtensionError(f"{FILES[page]}: no {link}")
    return None


def slug(title, taken):
    """As the repository's host makes a heading's address."""
    text = re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-")
    count = taken[text] = taken.get(text, -1) + 1
    return f"{text}-{count}" if count else text


def rewrite(app, doctree):
    page = app.env.docname
    for reference in list(doctree.findall(nodes.reference)):
        link = rewritten(app, page, reference.get("refuri", ""))
        if link is None:
            reference.replace_self(reference.children)
        else:
            reference["refuri"] = link
    for node in list(doctree.findall(lambda node: isinstance(node, (nodes.comment, nodes.raw)))):
        if isinstance(node, nodes.comment) or node.astext().startswith("<!--"):
            node.parent.remove(node)
    taken = {}
    for section in doctree.findall(nodes.section):
        section["ids"] = [slug(section.next_node(nodes.title).astext(), taken)]
        if page in ("index", "el/index") and isinstance(section.parent, nodes.section):
            section["classes"].append("door")


def check_anchors(app, exception):
    pages = {name for name, _, _ in app.env.anchors_wanted}
    anchors = {
        name: {anchor for section in app.env.get_doctree(name).findall(nodes.section) for anchor in section["ids"]}
        for name in pages
    }
    for name, anchor, file in sorted(app.env.anchors_wanted):
        if anchor not in anchors[name]:
            raise ExtensionError(f"{file}: {FILES[name]} has no heading #{anchor}")


def text_of(node):
    if isinstance(node, (nodes.section, nodes.title, nodes.comment, nodes.raw)) or node.tagname == "toctree":
        return " "
    if isinstance(node, nodes.Text):
        return node.astext()
    blank = "" if isinstance(node, (nodes.TextElement, nodes.Inline)) else " "
    return blank.join(text_of(child) for child in node.children)


def sections_of(app):
    """What the search looks through: page, anchor, titles and text of each section."""
    for _, names in GROUPS:
        for name in names:
            doctree = app.env.get_doctree(name)
            page_title = app.env.titles[name].astext()
            for section in doctree.findall(nodes.section):
                text = " ".join(text_of(child) for child in section.children)
                is_page = isinstance(section.parent, nodes.document)
                anchor = "" if is_page else section["ids"][0]
                title = section.next_node(nodes.title).astext()
                yield [name + ".html", anchor, page_title, "" if is_page else title, re.sub(r"\s+", " ", text).strip()]


def write_index(app, exception):
    if exception:
        return
    text = json.dumps(list(sections_of(app)), ensure_ascii=False, separators=(",", ":"))
    Path(app.outdir, "_static", "sections.js").write_text(f"const sections = {text};\n", encoding="utf-8")


def add_to_page(app, page, template, context, doctree):
    greek = is_greek(page)
    names = [name for _, group in GROUPS for name in group]
    other = page[3:] if greek else "el/" + page
    context["other_language"] = other if other in names else "index" if greek else "el/index"
    context["is_greek"] = greek
    context["contact"] = CONTACT
    # A page shows the contents of its language; the Greek ones lead to the English too.
    groups = re.split(r'(?=<p class="caption")', context["furo_navigation_tree"])
    if greek:
        groups.sort(key=lambda group: "Ελληνικά" not in group)
        context["language"] = "el"
        context["master_doc"] = "el/index"
        context["_"] = context["gettext"] = lambda text, *_: GREEK_WORDS.get(text, text)
    else:
        groups = [group for group in groups if "Ελληνικά" not in group]
    context["furo_navigation_tree"] = "".join(groups)


def mend_theme(app, exception):
    """What Debian's build of the theme lacks, and what a browser does not load from a folder."""
    if exception:
        return
    static = Path(app.outdir, "_static")
    style = static / "styles/furo.css"
    css = style.read_text(encoding="utf-8")
    # A path of Debian's web server.
    normalize = Path("/usr/share/javascript/normalize.css/normalize.css").read_text(encoding="utf-8")
    css = replaced_once(css, "@import url(/javascript/normalize.css/normalize.css);", normalize)
    # The same colours where the system is dark and the reader has not chosen.
    dark = re.search(r'  body\[data-theme="dark"\] (\{[^}]*\})', css)
    css += f'@media screen and (prefers-color-scheme: dark) {{\nbody[data-theme="auto"] {dark[1]} }}\n'
    style.write_text(css, encoding="utf-8")
    # A module, which browsers refuse there.
    script, imported = static / "scripts/furo.js", static / "scripts/gumshoe-patched.js"
    own = replaced_once(script.read_text(encoding="utf-8"), 'import Gumshoe from "./gumshoe-patched.js";\n', "")
    script.write_text(imported.read_text(encoding="utf-8") + own, encoding="utf-8")
    imported.unlink()
    for unused in ("searchtools.js", "language_data.js", "debug.css", "file.png", "minus.png", "plus.png"):
        (static / unused).unlink(missing_ok=True)


def replaced_once(text, old, new):
    if text.count(old) != 1:
        raise ExtensionError(f"the theme has changed: {old}")
    return text.replace(old, new)


def prepare(app):
    app.env.anchors_wanted = set()
    # It finds whole pages only, no numbers, and no summary where pages come from a folder.
    app.builder.search = False


def setup(app):
    app.add_lexer("vb", VBScriptLexer)
    app.connect("builder-inited", prepare)
    app.connect("source-read", add_contents)
    app.connect("doctree-read", rewrite, priority=100)
    app.connect("html-page-context", add_to_page, priority=900)
    app.connect("build-finished", check_anchors)
    app.connect("build-finished", write_index)
    app.connect("build-finished", mend_theme, priority=900)
