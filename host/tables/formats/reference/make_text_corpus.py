#!/usr/bin/env python3
"""Writes the corpus of text files of different shapes, text/, and what a reader must find in each, text/expected.json.

The files are such as instruments, spreadsheets, databases and statistics programs write them; what they mean is written
here beside them, by hand. Run it without arguments; it needs the standard library alone.
"""
import json
import pathlib
import random

FOLDER = pathlib.Path(__file__).parent / "text"
CASES = {}


def case(name, text, columns, read_as="", doubts=(), encoding="utf-8", options=None, rows=None, units=None):
    """columns: {name: first value (a number, a text, or None)}; doubts: the options that are named."""
    data = text if isinstance(text, bytes) else text.encode(encoding)
    (FOLDER / name).write_bytes(data)
    CASES[name] = {"columns": [[key, value] for key, value in columns.items()], "readAs": read_as,
                   "doubts": list(doubts), "rows": rows, "units": units or {}, "options": options or {}}


def table(rows, delimiter=",", end="\n"):
    return end.join(delimiter.join(row) for row in rows) + end


random.seed(7)
PLAIN = [[f"{random.gauss(20, 3):.2f}", f"{random.expovariate(1):.3f}", random.choice("ABC")] for _ in range(20)]
FIRST = {"temp": float(PLAIN[0][0]), "flow": float(PLAIN[0][1]), "lot": PLAIN[0][2]}
HEAD = [["temp", "flow", "lot"]]


def comma(rows):
    return [[cell.replace(".", ",") for cell in row] for row in rows]


SEMI, TABS, BARS, BLANKS = (f"fields separated by {name}" for name in ("semicolons", "tabs", "bars", "blanks"))
COMMAS = "decimal commas"

# Delimiters and decimal signs.
case("plain.csv", table(HEAD + PLAIN), FIRST, rows=20)
case("crlf.csv", table(HEAD + PLAIN, end="\r\n"), FIRST, rows=20)
case("no_newline_at_end.csv", table(HEAD + PLAIN)[:-1], FIRST, rows=20)
case("bom.csv", table(HEAD + PLAIN), FIRST, encoding="utf-8-sig", rows=20)
case("semicolon_point.csv", table(HEAD + PLAIN, ";"), FIRST, SEMI, rows=20)
case("semicolon_comma.csv", table(HEAD + comma(PLAIN), ";"), FIRST, SEMI + " and " + COMMAS, rows=20)
case("tab.txt", table(HEAD + PLAIN, "\t"), FIRST, TABS, rows=20)
case("tab_comma.txt", table(HEAD + comma(PLAIN), "\t"), FIRST, TABS + " and " + COMMAS, rows=20)
case("bar.txt", table(HEAD + PLAIN, "|"), FIRST, BARS, rows=20)
case("bar_padded.txt", table(HEAD + PLAIN, " | "), FIRST, BARS, rows=20)
case("blanks.dat", "".join("%8s %8s %4s\n" % tuple(row) for row in HEAD + PLAIN), FIRST, BLANKS, rows=20)
case("one_blank.dat", table(HEAD + PLAIN, " "), FIRST, BLANKS, rows=20)
case("blanks_comma.dat", "".join("%8s %8s %4s\n" % tuple(row) for row in HEAD + comma(PLAIN)), FIRST,
     BLANKS + " and " + COMMAS, rows=20)
case("comma_and_blank.csv", table(HEAD + PLAIN, ", "), FIRST, rows=20)
case("one_column.csv", "load\n" + "".join(row[0] + "\n" for row in PLAIN), {"load": FIRST["temp"]}, rows=20)
case("one_column_comma.csv", "load\n" + "".join(row[0].replace(".", ",") + "\n" for row in PLAIN),
     {"load": FIRST["temp"]}, COMMAS, rows=20)
case("two_rows.csv", "a,b\n1,2\n", {"a": 1, "b": 2}, rows=1)
case("two_rows_comma.csv", "a;b\n1,5;2,25\n", {"a": 1.5, "b": 2.25}, SEMI + " and " + COMMAS, rows=1)
case("integers_semicolon.csv", "a;b;c\n1;2;3\n4;5;6\n", {"a": 1, "b": 2, "c": 3}, SEMI, rows=2)
case("wide.csv", table([[f"s{i}" for i in range(400)]] + [[str(i * j) for i in range(400)] for j in range(1, 4)]),
     {"s0": 0, "s1": 1, "s399": 399}, rows=3)
case("exponents.csv", "x;y\n1,5E+03;-2e-3\n2,5E+03;4e-3\n", {"x": 1500, "y": -0.002}, SEMI + " and " + COMMAS, rows=2)
case("signs.csv", "x,y\n+1.5,-2\n-3,+4\n", {"x": 1.5, "y": -2}, rows=2)

# Quotes.
case("quoted_all.csv", table([[f'"{cell}"' for cell in row] for row in HEAD + PLAIN]), FIRST, rows=20)
case("quoted_numbers_comma.csv", 'a,b\n"1,5","2,25"\n"3,5","4,5"\n', {"a": 1.5, "b": 2.25}, COMMAS, rows=2)
case("quoted_delimiters.csv", 'name,x\n"Smith, J.",1\n"O""Neil; B.",2\n', {"name": "Smith, J.", "x": 1}, rows=2)
case("quoted_newlines.csv", 'note,x\n"first\nsecond",1\n"third",2\n', {"note": "first\nsecond", "x": 1}, rows=2)
case("semicolons_in_texts.csv", "name,x\na;b,1\nc;d,2\ne;f,3\n", {"name": "a;b", "x": 1}, rows=3)
case("commas_in_texts.csv", "name;x\nSmith, John;1,5\nDoe, Jane;2,5\nRoe, Ann;3,5\n", {"name": "Smith, John", "x": 1.5},
     SEMI + " and " + COMMAS, rows=3)
case("quoted_blanks.dat", 'name x\n"New York" 1.5\n"Los Angeles" 2.5\n', {"name": "New York", "x": 1.5}, BLANKS, rows=2)
case("texts_with_blanks.csv", "city\nNew York\nLos Angeles\nSan Diego\n", {"city": "New York"}, rows=3)
case("texts_only.csv", "name,lot\nann,A\nbob,B\ncid,C\n", {"name": "ann", "lot": "A"}, rows=3)

# Groups of digits.
case("groups_us.csv", 'sales,share\n"1,234.50",0.5\n"12,345.75",0.25\n', {"sales": 1234.5, "share": 0.5},
     "thousands separated by commas", rows=2)
case("groups_us_whole.csv", 'sales,share\n"1,234",0.5\n"12,345",0.25\n"999",0.1\n', {"sales": 1234, "share": 0.5},
     "thousands separated by commas", rows=3)
case("groups_german.csv", "umsatz;anteil\n1.234,50;0,5\n12.345,75;0,25\n", {"umsatz": 1234.5, "anteil": 0.5},
     SEMI + ", " + COMMAS + " and thousands separated by points", rows=2)
case("groups_swiss.csv", "betrag;x\n1'234.50;1\n12'345.75;2\n", {"betrag": 1234.5, "x": 1},
     SEMI + " and thousands separated by apostrophes", rows=2)
case("groups_french.csv", "montant;x\n1 234,50;1\n12 345,75;2\n", {"montant": 1234.5, "x": 1},
     SEMI + ", " + COMMAS + " and thousands separated by blanks", rows=2)
case("groups_no_break.csv", "montant;x\n1\u202f234,50;1\n12\u202f345,75;2\n", {"montant": 1234.5, "x": 1},
     SEMI + ", " + COMMAS + " and thousands separated by blanks", rows=2)
case("three_digits_comma.csv", "x;y\n1,234;1\n2,345;2\n", {"x": 1.234, "y": 1}, SEMI + " and " + COMMAS, ["decimal"], rows=2)
case("three_digits_point.csv", "x;y\n1.234;1\n2.345;2\n", {"x": 1.234, "y": 1}, SEMI, ["decimal"], rows=2)
case("three_digits_of_zero.csv", "x;y\n0,234;1\n2,345;2\n", {"x": 0.234, "y": 1}, SEMI + " and " + COMMAS, rows=2)

# Headers and what stands about them.
case("no_header.csv", table(PLAIN), {"Var1": FIRST["temp"], "Var2": FIRST["flow"], "Var3": FIRST["lot"]}, "no header",
     ["header"], rows=20)
case("no_header_numbers.csv", "1.5,2\n2.5,3\n3.5,4\n", {"Var1": 1.5, "Var2": 2}, "no header", ["header"], rows=3)
case("no_header_blanks.dat", "1.0  2.0\n3.0  4.0\n", {"Var1": 1, "Var2": 2}, BLANKS + " and no header", ["header"], rows=2)
case("years.csv", "2019,2020,2021\n1.5,2.5,3.5\n4.5,5.5,6.5\n", {"2019": 1.5, "2020": 2.5, "2021": 3.5}, "",
     ["header"], rows=2)
case("some_years.csv", "region,2019,2020\nnorth,1.5,2.5\nsouth,3.5,4.5\n", {"region": "north", "2019": 1.5, "2020": 2.5}, "",
     ["header"], rows=2)
case("title_above.csv", "Report of line 5\n\ntime,value\n0.1,5\n0.2,6\n0.3,7\n", {"time": 0.1, "value": 5},
     "the header in line 3", rows=3)
case("instrument.txt", "Instrument: TX-9\nOperator: Smith\nDate: 2024-02-29 10:15\n\nTime;Force;Way\n0,0;1,5;0,01\n"
     "0,1;2,5;0,02\n0,2;3,5;0,03\n", {"Time": 0, "Force": 1.5, "Way": 0.01}, SEMI + ", " + COMMAS + " and the header in line 5",
     rows=3)
case("keys_above.csv", "Operator;Smith\nBatch;A-17\nTime;Value\n0,1;5,5\n0,2;6,5\n0,3;7,5\n", {"Time": 0.1, "Value": 5.5},
     SEMI + ", " + COMMAS + " and the header in line 3", rows=3)
case("units.csv", "time,force\ns,N\n0.1,5\n0.2,6\n", {"time": 0.1, "force": 5}, "units in the line after the header",
     rows=2, units={"time": "s", "force": "N"})
case("units_in_brackets.csv", "time;force;way\n[s];[kN];[mm]\n0,1;5,5;1\n0,2;6,5;2\n", {"time": 0.1, "force": 5.5, "way": 1},
     SEMI + ", " + COMMAS + " and units in the line after the header", rows=2, units={"force": "[kN]"})
case("units_and_title.txt", "Test 7\n\ntime\tforce\ns\tkN\n0.1\t5.5\n0.2\t6.5\n0.3\t6.5\n", {"time": 0.1, "force": 5.5},
     TABS + ", the header in line 3 and units in the line after the header", rows=3, units={"force": "kN"})
case("comments.csv", "# made by logger 3\n# serial 17\nx,y\n1,2\n3,4\n", {"x": 1, "y": 2},
     "comments after #", rows=2)
case("comments_between.csv", "x,y\n1,2\n# paused\n3,4\n", {"x": 1, "y": 2}, "comments after #", rows=2)
case("comments_percent.txt", '% it is "so"\nx y\n1.5 2\n3.5 4\n', {"x": 1.5, "y": 2}, BLANKS + " and comments after %", rows=2)
case("numpy_savetxt.txt", "# x y\n1.000e+00 2.000e+00\n3.000e+00 4.000e+00\n", {"x": 1, "y": 2},
     BLANKS + ", comments after # and the header in the comment of line 1", rows=2)
case("hash_header.csv", "#x,y\n1,2\n3,4\n", {"x": 1, "y": 2}, "comments after # and the header in the comment of line 1", rows=2)
case("r_table.txt", '"temp" "flow"\n"1" 1.5 2\n"2" 3.5 4\n', {"Var1": 1, "temp": 1.5, "flow": 2},
     BLANKS + " and a first column that the header does not name", rows=2)
case("r_csv.csv", '"","temp","flow"\n"1",1.5,2\n"2",3.5,4\n', {"Var1": 1, "temp": 1.5, "flow": 2}, rows=2)
case("repeated_names.csv", "x,x,\n1,2,3\n", {"x": 1, "x_2": 2, "Var3": 3}, rows=1)
case("blank_lines.csv", "\n\nx,y\n\n1,2\n\n3,4\n\n", {"x": 1, "y": 2}, rows=2)

# Missing values.
case("missing.csv", "x,y\n,1\nNA,2\nnan,3\n5,4\n", {"x": None, "y": 1}, rows=4)
case("missing_dash.csv", "x,y\n-,1\n2,2\n-,3\n4,4\n5,5\n", {"x": "-", "y": 1}, "", ["missingText"], rows=5)
case("missing_dash_given.csv", "x,y\n-,1\n2,2\n-,3\n4,4\n5,5\n", {"x": None, "y": 1}, rows=5, options={"missingText": ["-"]})
case("missing_code_given.csv", "x,y\n-999,1\n2,2\n", {"x": None, "y": 1}, rows=2, options={"missingText": ["-999"]})
case("errors_of_sheets.csv", "x,y\n#DIV/0!,1\n2,2\n#N/A,3\n4,4\n5,1\n", {"x": "#DIV/0!", "y": 1}, "", ["missingText"], rows=5)

# Encodings.
GERMAN = "größe;maß;prüfer\n1,5;2,5;Jürgen Weiß\n3,5;4,5;Käthe Groß\n5,5;6,5;Björn Hügel\n"
GERMAN_FIRST = {"größe": 1.5, "maß": 2.5, "prüfer": "Jürgen Weiß"}
case("german_utf8.csv", GERMAN, GERMAN_FIRST, SEMI + " and " + COMMAS, rows=3)
case("german_latin1.csv", GERMAN, GERMAN_FIRST, "windows-1252 text, " + SEMI + " and " + COMMAS, encoding="latin-1", rows=3)
case("euro_1252.csv", "preis (€);x\n1,5;1\n2,5;2\n", {"preis (€)": 1.5, "x": 1}, "windows-1252 text, " + SEMI + " and " + COMMAS,
     encoding="cp1252", rows=2)
case("utf16_le.txt", GERMAN.replace(";", "\t"), GERMAN_FIRST, "UTF-16LE text, " + TABS + " and " + COMMAS, encoding="utf-16", rows=3)
case("utf16_be.csv", b"\xfe\xff" + GERMAN.encode("utf-16-be"), GERMAN_FIRST, "UTF-16BE text, " + SEMI + " and " + COMMAS, rows=3)
case("utf16_no_mark.csv", "x,y\n1.5,2\n3.5,4\n".encode("utf-16-le"), {"x": 1.5, "y": 2}, "UTF-16LE text", rows=2)
case("cyrillic_given.csv", "имя,x\nпетр,1\n", {"имя": "петр", "x": 1}, encoding="cp1251", options={"encoding": "windows-1251"}, rows=1)
case("dates.csv", "when;x\n2024-01-31 10:00;1,5\n2024-02-29 11:30;2,5\n", {"when": "2024-01-31 10:00", "x": 1.5},
     SEMI + " and " + COMMAS, rows=2)
case("dates_of_points.csv", "when;x\n31.01.2024;1,5\n29.02.2024;2,5\n", {"when": "31.01.2024", "x": 1.5},
     SEMI + " and " + COMMAS, rows=2)
case("given_delimiter.txt", "a:b\n1:2\n3:4\n", {"a": 1, "b": 2}, rows=2, options={"delimiter": ":"})
case("given_header.csv", "junk,junk\nx,y\n1,2\n", {"x": 1, "y": 2}, rows=1, options={"header": "2"})
case("given_no_header.csv", "1,2\n3,4\n", {"Var1": 1, "Var2": 2}, rows=2, options={"header": "no"})
case("given_text.csv", "id,x\n007,1\n008,2\n", {"id": "007", "x": 1}, rows=2, options={"text": ["id"]})

SINGLE = "fields in single quotes"
case("single_quotes.csv", "'city','x, mm',n\n'Paris, \"F\"','2.5',1\n'O''Fallon, US',3.5,2\n", {"city": 'Paris, "F"', "x, mm": 2.5, "n": 1},
     SINGLE, rows=2)
case("single_quotes_comma.csv", "ort;'x;y'\r\n'Köln; alt';1,5\r\nBonn;2,5\r\n", {"ort": "Köln; alt", "x;y": 1.5},
     SINGLE + ", " + SEMI + " and " + COMMAS, rows=2)
case("apostrophes.csv", "name,x\n't Hooft,1\n'Abd al-Malik',2\nrock 'n' roll,3\n", {"name": "'t Hooft", "x": 1}, rows=3)

(FOLDER / "expected.json").write_text(json.dumps(CASES, ensure_ascii=False, indent=1) + "\n", encoding="utf-8")
print(len(CASES), "files")
