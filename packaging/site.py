#!/usr/bin/env python3
"""Builds the documentation as a site: HTML pages with navigation and search, from the same Markdown.

    site.py FOLDER [PAGES]   writes the site into FOLDER; PAGES holds the reference of commands and of Python, build/pages
    site.py --check          prints each page of docs/ that the navigation leaves out; exit status 1 if there is any

The index of the documents, docs/README.md, is the navigation: what it names is in it, under the same words.
Needs mkdocs.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
# The rooms of docs/ as the site calls them, in its order; what engineers of the system read stands apart.
SECTIONS = (("tutorial", "Tutorials"), ("guide", "How to"), ("reference", "Reference"), ("design", "Internals"),
            ("evidence", "Measurements"))
CONFIGURATION = """site_name: Brenvolt
docs_dir: {docs}
site_dir: {site}
theme:
  name: mkdocs
  highlightjs: false
  navigation_depth: 2
use_directory_urls: false
strict: true
extra_css:
  - wide.css
markdown_extensions:
  - tables
  - fenced_code
  - toc:
      permalink: false
nav:
{navigation}
"""


# Room for reports, whose lines have up to 120 characters.
STYLE = "@media (min-width: 1300px) { .container { max-width: 1280px; } }\npre code { font-size: 85%; }\n"


def read(*path):
    with open(os.path.join(*path), encoding="utf-8") as file:
        return file.read()


def navigation(made):
    """Lines of the navigation: titles with the pages that they lead to."""
    lines = ["  - Home: index.md"]
    index = read(ROOT, "docs/README.md")
    for folder, title in SECTIONS:
        lines.append(f"  - {title}:")
        if folder == "reference":
            lines += [f'      - "{title}": reference/made/{name}' for name, title in made]
        seen = []
        for text, page in re.findall(rf"\[([^\]]+)\]\(({folder}/[^)#]+\.md)\)", index):
            if page not in seen:
                seen.append(page)
                lines.append(f'      - "{text[0].upper() + text[1:]}": {page}')
    for text, page in re.findall(r"\[([^\]]+)\]\(([a-z-]+\.md)\)", index):
        lines.append(f'  - "{text[0].upper() + text[1:]}": {page}')
    lines += ["  - Changes: changes.md"]
    return lines


def missing_pages():
    named = "\n".join(navigation([]))
    for folder, _, names in os.walk(os.path.join(ROOT, "docs")):
        for name in names:
            page = os.path.relpath(os.path.join(folder, name), os.path.join(ROOT, "docs"))
            if name.endswith(".md") and page != "README.md" and f": {page}" not in named:
                yield page


def copy_documents(docs, pages):
    """The tree of documents as the site has it: README of the tree is its front page, other pages of the tree lie beside it."""
    shutil.copytree(os.path.join(ROOT, "docs"), docs)
    os.rename(os.path.join(docs, "README.md"), os.path.join(docs, "contents.md"))
    moved = {"README.md": "index.md", "CHANGELOG.md": "changes.md", "CONTRIBUTING.md": "contributing.md",
             "examples/README.md": "examples.md"}
    for source, target in moved.items():
        shutil.copy(os.path.join(ROOT, source), os.path.join(docs, target))
    made = []
    for name in sorted(name for name in os.listdir(pages) if name.endswith(".md")) if pages else ():
        os.makedirs(os.path.join(docs, "reference/made"), exist_ok=True)
        shutil.copy(os.path.join(pages, name), os.path.join(docs, "reference/made", name))
        heading = read(pages, name).partition("\n")[0].lstrip("# ")
        made.append((name, heading if " " in heading else f"Command {heading}"))
    for folder, _, names in os.walk(docs):
        for name in names:
            if name.endswith(".md"):
                relink(docs, os.path.join(folder, name), moved)
    return made


def relink(docs, path, moved):
    """Turns links of a page, as it lay in the tree, to where the site has what they mean; other files are named, not linked."""
    page = os.path.relpath(path, docs)
    origin = next((source for source, target in moved.items() if target == page), "docs/" + page.replace("contents.md", "README.md"))

    def link(found):
        text, target = found[1], found[2]
        if re.match(r"[a-z]+:", target) or target.startswith("#"):
            return found[0]
        name, hash_sign, anchor = target.partition("#")
        meant = os.path.normpath(os.path.join(os.path.dirname(origin), name))
        if meant == "docs/README.md" or meant == "docs":
            place = "contents.md"
        elif meant in moved:
            place = moved[meant]
        elif meant.startswith("docs/") and os.path.isfile(os.path.join(ROOT, meant)):
            place = meant[len("docs/"):]
        else:
            return text
        return f"[{text}]({os.path.relpath(os.path.join(docs, place), os.path.dirname(path))}{hash_sign}{anchor})"

    parts = re.split(r"(^```.*?^```$)", read(path), flags=re.MULTILINE | re.DOTALL)
    parts[::2] = [re.sub(r"\[([^\]\[]*)\]\(([^)\s]+)\)", link, part) for part in parts[::2]]
    # A bar in code ends no cell here, so that its backslash would be shown.
    parts[::2] = [re.sub(r"`[^`\n]*`", lambda code: code[0].replace("\\|", "|"), part) for part in parts[::2]]
    # A list needs a blank line above it here.
    parts[::2] = [re.sub(r"(?m)^(?![-*|> ]|\d+\.|$)(.+)\n(?=[-*] |\d+\. )", r"\1\n\n", part) for part in parts[::2]]
    with open(path, "w", encoding="utf-8") as file:
        file.write("".join(parts))


def broken_links(site):
    """Links of the site's own pages that lead nowhere, and anchors that the pages do not have."""
    for folder, _, names in os.walk(site):
        for name in (name for name in names if name.endswith(".html")):
            path = os.path.join(folder, name)
            for target in re.findall(r'(?:href|src)="([^"]+)"', read(path)):
                address, _, anchor = target.partition("#")
                if re.match(r"[a-z]+:", target) or name == "404.html":
                    continue
                file = os.path.normpath(os.path.join(folder, address)) if address else path
                file = os.path.join(file, "index.html") if os.path.isdir(file) else file
                if not os.path.exists(file) or anchor and not anchor.startswith("_") and f'id="{anchor}"' not in read(file):
                    yield f"{os.path.relpath(path, site)}: nothing at {target}"


def build(site, pages):
    with tempfile.TemporaryDirectory() as folder:
        docs = os.path.join(folder, "docs")
        made = copy_documents(docs, pages)
        with open(os.path.join(docs, "wide.css"), "w", encoding="utf-8") as file:
            file.write(STYLE)
        with open(os.path.join(folder, "mkdocs.yml"), "w", encoding="utf-8") as file:
            file.write(CONFIGURATION.format(docs=docs, site=os.path.abspath(site), navigation="\n".join(navigation(made))))
        subprocess.run(["mkdocs", "build", "--quiet", "--clean", "-f", file.name], check=True)
    return sorted(set(broken_links(site)))


def main(arguments):
    if arguments == ["--check"]:
        faults = [f"docs/README.md does not name {page}, so the site leaves it out" for page in missing_pages()]
    elif len(arguments) in (1, 2) and not arguments[0].startswith("-"):
        if len(arguments) == 2 and not os.path.isdir(arguments[1]):
            print(f"site.py: no folder {arguments[1]}; cmake --build build --target pages makes it", file=sys.stderr)
            return 2
        faults = build(arguments[0], arguments[1] if len(arguments) == 2 else None)
    else:
        print(__doc__, file=sys.stderr)
        return 2
    print("\n".join(faults) if faults else "every link leads somewhere")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
