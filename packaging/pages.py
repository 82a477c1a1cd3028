#!/usr/bin/env python3
"""Makes manual pages, completion and the reference of the command from the tables of options that programs print.

    pages.py FOLDER VERSION PROGRAM...   asks each PROGRAM for --help-json and writes into FOLDER
                                         man1/*.1, where @EXAMPLES@ stands for the folder of the examples' data,
                                         bash/PROGRAM, zsh/_PROGRAM, fish/PROGRAM.fish, and PROGRAM.md

Every text is one that --help prints: a command or an option that is new needs nothing here.
"""

import json
import os
import re
import shlex
import subprocess
import sys

# An option's value as the help shows it: words to choose from, or a file of some kind.
CHOICE = re.compile(r"[a-z0-9-]+(\|[a-z0-9-]+)+")
FILES = re.compile(r"FILE|OUT|PROJECT|DATA|FOLDER|MODEL")
# Names listed behind a colon at the end of a description, or alone before the next sentence.
LISTED = re.compile(r": ((?:[a-z]+, ){3,}[a-z]+)")


# ---- what the tables say ---------------------------------------------------------------------------------------------

def table_of(program):
    done = subprocess.run([program, "--help-json"], check=True, stdout=subprocess.PIPE, text=True)
    return json.loads(done.stdout)


def words_of(option):
    """The words among which a value is chosen, and whether several may follow each other behind commas."""
    if CHOICE.fullmatch(option["value"]):
        return option["value"].split("|"), False
    listed = LISTED.search(option["description"])
    if option["value"].startswith("NAME") and listed:
        return listed[1].split(", "), "," in option["value"]
    return [], False


def endings_of(option):
    """The endings of the files that a value names; empty for any file, None where it names no file."""
    text = option["value"] + " " + option.get("name", "")
    if not FILES.search(text.upper()):
        return None
    endings = re.findall(r"\.(bvw|csv|json|pmml|py)\b", text)
    return endings or (["bvw"] if "PROJECT" in text.upper() else [])


def footer_parts(footer):
    """Remarks, examples and exit statuses: what stands below the options of a command."""
    remarks, examples, statuses = [], [], []
    for line in footer.splitlines():
        head, _, rest = line.partition(":")
        if head in ("Example", "Examples"):
            examples += [rest.strip()] if rest.strip() else []
        elif head == "Exit status":
            statuses = [status.strip().rstrip(".") for status in rest.split(";")]
        elif line.startswith("  "):
            examples.append(line[2:])
        elif line:
            remarks.append(line)
    return remarks, examples, statuses


def synopsis(name, command):
    arguments = [f"{argument['name']}{'...' if argument['repeatable'] else ''}" for argument in command["arguments"]]
    arguments = [text if argument["required"] else f"[{text}]"
                 for text, argument in zip(arguments, command["arguments"])]
    return " ".join([name, "[OPTION...]", *arguments, *(["COMMAND"] if command["commands"] else [])])


def value_shown(option):
    return option["value"] + ("..." if option["repeatable"] and option["value"] else "")


# ---- manual pages ----------------------------------------------------------------------------------------------------

def roff(text):
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("'", "\\(aq").replace("…", "...")
    return "\\&" + text if text.startswith(".") else text


def bold(text):
    return f"\\fB{roff(text)}\\fR"


def man_options(command):
    lines = []
    for option in command["options"]:
        value = value_shown(option)
        lines += [".TP", ", ".join(map(bold, option["names"])) + (f" \\fI{roff(value)}\\fR" if value else ""),
                  roff(option["description"] + (" (required)" if option["required"] else ""))]
    return lines


def man_arguments(command):
    lines = []
    for argument in command["arguments"]:
        lines += [".TP", f"\\fI{roff(argument['name'])}\\fR", roff(argument["description"])]
    return lines


def man_footer(command):
    remarks, examples, statuses = footer_parts(command["footer"])
    lines = [".SH NOTES", "\n.PP\n".join(map(roff, remarks))] if remarks else []
    if examples:
        shown = [roff(re.sub(r"(^| )examples/", r"\1@EXAMPLES@/", example)) for example in examples]
        lines += [".SH EXAMPLES", ".nf", *shown, ".fi"]
    if statuses:
        lines += [".SH EXIT STATUS"]
        for status in statuses:
            number, _, meaning = status.partition(" ")
            lines += [".TP", bold(number), roff(meaning)]
    return lines


def man_page(program, command, version):
    """The page of a program, or of one of its commands."""
    is_program = command is program
    name = program["name"] if is_program else f"{program['name']} {command['name']}"
    title = name.replace(" ", "-")
    summary = re.sub(r"\.$", "", command["description"])
    lines = [f'.TH {title.upper()} 1 "" "{program["name"]} {version}" "User Commands"', ".SH NAME",
             f"{roff(title)} \\- {roff(summary[0].lower() + summary[1:])}",
             ".SH SYNOPSIS", bold(name) + " " + roff(synopsis("", command).strip())]
    for heading, part in (("ARGUMENTS", man_arguments(command)), ("OPTIONS", man_options(command))):
        lines += [f".SH {heading}", *part] if part else []
    if command["commands"]:
        lines.append(".SH COMMANDS")
        for part in command["commands"]:
            lines += [".TP", bold(f"{name}-{part['name']}") + "(1)", roff(part["description"])]
    lines += man_footer(command)
    others = [part["name"] for part in program["commands"] if part is not command]
    if others:
        pages = [program["name"], *(f"{program['name']}-{other}" for other in others)]
        lines += [".SH SEE ALSO", ", ".join(f"{bold(page)}(1)" for page in pages if page != title)]
    return f"man1/{title}.1", lines


# ---- bash ------------------------------------------------------------------------------------------------------------

def bash_value(option):
    """What completes a value, as a command of the script; empty where nothing is known."""
    words, is_list = words_of(option)
    if words:
        return f"_brenvolt_{'list' if is_list else 'words'} '{' '.join(words)}'"
    endings = endings_of(option)
    return None if endings is None else " ".join(["_brenvolt_files", *endings])


BASH_HELPERS = r"""# What is completed stands in $current.
_brenvolt_words() { COMPREPLY=($(compgen -W "$1" -- "$current")); }
# The last of several words behind commas.
_brenvolt_list() {
  local before=
  [[ $current == *,* ]] && before=${current%,*},
  COMPREPLY=($(compgen -P "$before" -W "$1" -- "${current##*,}"))
  compopt -o nospace 2>/dev/null
}
# Files with one of the endings, or any, and folders to look for them in.
_brenvolt_files() {
  local ending IFS=$'\n'
  compopt -o filenames 2>/dev/null
  [[ $# -gt 0 ]] || COMPREPLY=($(compgen -f -- "$current"))
  for ending in "$@"; do COMPREPLY+=($(compgen -f -X "!*.$ending" -- "$current")); done
  [[ $# -eq 0 ]] || COMPREPLY+=($(compgen -d -- "$current"))
}
"""


def bash_command(key, command):
    lines = [f"    {key})"]
    valued = [(option, bash_value(option)) for option in command["options"] if option["value"]]
    if valued:
        lines.append('      case "$previous" in')
        lines += [f"        {'|'.join(option['names'])}) {value or ':'}; return ;;" for option, value in valued]
        lines.append("      esac")
    names = " ".join(name for option in command["options"] for name in option["names"])
    lines.append(f"      if [[ $current == -* ]]; then _brenvolt_words '{names}'; return; fi")
    if command["commands"]:
        lines.append(f"      _brenvolt_words '{' '.join(part['name'] for part in command['commands'])}' ;;")
    else:
        lines.append(f"      {bash_value(command['arguments'][0]) or ':'} ;;" if command["arguments"] else "      ;;")
    return lines


def bash_script(program):
    """The command is the first word that is no option; behind an equals sign the option stands two words before."""
    name = program["name"]
    function = "_" + name.replace("-", "_")
    commands = program["commands"]
    lines = [f"# Completion of {name} for bash.", BASH_HELPERS, f"{function}() {{",
             '  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} command=""',
             "  COMPREPLY=()",
             "  if [[ $current == = ]]; then current=; elif [[ $previous == = ]]; then "
             "previous=${COMP_WORDS[COMP_CWORD-2]}; fi"]
    if commands:
        lines += ["  [[ $COMP_CWORD -gt 1 && ${COMP_WORDS[1]} != -* ]] && command=${COMP_WORDS[1]}"]
    lines += ['  case "$command" in', *bash_command('""', program)]
    for command in commands:
        lines += bash_command(command["name"], command)
    return f"bash/{name}", [*lines, "  esac", "}", f"complete -F {function} {name}"]


# ---- zsh -------------------------------------------------------------------------------------------------------------

def zsh_text(text):
    return re.sub(r"([\[\]:\\])", r"\\\1", text)


def zsh_value(option):
    words, is_list = words_of(option)
    if words:
        return f"_values -s , name {' '.join(words)}" if is_list else f"({' '.join(words)})"
    endings = endings_of(option)
    if endings is None:
        return " "
    return f'_files -g "*.({"|".join(endings)})"' if endings else "_files"


def zsh_specs(command):
    for option in command["options"]:
        names = option["names"]
        value = f":{zsh_text(option['value'])}:{zsh_value(option)}" if option["value"] else ""
        exclusive = "*" if option["repeatable"] else f"({' '.join(names)})"
        for name in names:
            yield shlex.quote(f"{exclusive}{name}[{zsh_text(option['description'])}]{value}")
    for argument in command["arguments"]:
        place = "*" if argument["repeatable"] else "" if argument["required"] else ":"
        yield shlex.quote(f"{place}:{zsh_text(argument['name'])}:{zsh_value(argument)}")


def zsh_arguments(indent, command, extra=()):
    return [f"{indent}_arguments -S \\",
            " \\\n".join(f"{indent}  {spec}" for spec in (*zsh_specs(command), *extra))]


def zsh_script(program):
    name = program["name"]
    if not program["commands"]:
        return f"zsh/_{name}", [f"#compdef {name}", *zsh_arguments("", program)]
    described = [shlex.quote(f"{part['name']}:{part['description']}") for part in program["commands"]]
    lines = [f"#compdef {name}", "local -a commands", "commands=(", *(f"  {text}" for text in described), ")",
             "if (( CURRENT == 2 )) && [[ $words[2] != -* ]]; then", "  _describe command commands", "  return", "fi",
             "local command=$words[2]", "if [[ $command == -* ]]; then", *zsh_arguments("  ", program), "  return",
             "fi", "shift words", "(( CURRENT-- ))", 'case "$command" in']
    for command in program["commands"]:
        lines += [f"  {command['name']})", *zsh_arguments("    ", command), "    ;;"]
    return f"zsh/_{name}", [*lines, "esac"]


# ---- fish ------------------------------------------------------------------------------------------------------------

def fish_quoted(text):
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


def fish_value(option):
    words, is_list = words_of(option)
    if words and is_list:
        return f" -xa '(__fish_append , {' '.join(words)})'"
    if words:
        return f" -xa '{' '.join(words)}'"
    endings = endings_of(option)
    if endings is None:
        return " -x"
    return " -r" + (f" -ka '({'; '.join(f'__fish_complete_suffix .{ending}' for ending in endings)})'" if endings
                    else " -F")


def fish_options(name, command, condition):
    for option in command["options"]:
        names = "".join(f" -l {n[2:]}" if n.startswith("--") else f" -s {n[1:]}" for n in option["names"])
        yield (f"complete -c {name} -n {fish_quoted(condition)}{names}{fish_value(option) if option['value'] else ''}"
               f" -d {fish_quoted(option['description'])}")


def fish_script(program):
    name = program["name"]
    lines = [f"# Completion of {name} for fish.", *fish_options(name, program, "__fish_use_subcommand")]
    for command in program["commands"]:
        lines.append(f"complete -c {name} -n __fish_use_subcommand -f -a {command['name']} -d "
                     f"{fish_quoted(command['description'])}")
        lines += fish_options(name, command, f"__fish_seen_subcommand_from {command['name']}")
    return f"fish/{name}.fish", lines


# ---- reference -------------------------------------------------------------------------------------------------------

def cell(text):
    return text.replace("|", "\\|").replace("<", "&lt;")


def code_cell(text):
    """A bar in it ends no cell of a site's table."""
    return "`" + text + "`"


def reference_of(program, command):
    is_program = command is program
    name = program["name"] if is_program else f"{program['name']} {command['name']}"
    remarks, examples, statuses = footer_parts(command["footer"])
    description = re.sub(r"([^.])$", r"\1.", command["description"])
    lines = [f"{'#' if is_program else '##'} {name}", "", description, "",
             "```sh", synopsis(name, command), "```", ""]
    rows = [(argument["name"], argument["description"]) for argument in command["arguments"]]
    rows += [(", ".join(option["names"]) + " " + value_shown(option), option["description"])
             for option in command["options"]]
    lines += ["| | |", "|---|---|", *(f"| {code_cell(first.strip())} | {cell(second)} |" for first, second in rows), ""]
    lines += sum(([remark, ""] for remark in remarks), [])
    lines += ["```sh", *examples, "```", ""] if examples else []
    if is_program and statuses:
        lines += ["Exit status: " + "; ".join(statuses) + ".", ""]
    return lines


def reference(program):
    parts = [reference_of(program, command) for command in (program, *program["commands"])]
    return f"{program['name']}.md", sum(parts, [])


def main(arguments):
    if len(arguments) < 3:
        print(__doc__, file=sys.stderr)
        return 2
    folder, version, *programs = arguments
    for program in map(table_of, programs):
        pages = [man_page(program, command, version) for command in (program, *program["commands"])]
        for name, lines in (*pages, bash_script(program), zsh_script(program), fish_script(program),
                            reference(program)):
            os.makedirs(os.path.dirname(os.path.join(folder, name)), exist_ok=True)
            with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
                file.write("\n".join(lines) + "\n")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
