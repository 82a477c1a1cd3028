#!/usr/bin/env python3
"""Writes sample files of office and statistics programs by programs other than the one under test, into packages/.

    make_package_files.py       needs Debian's python3-openpyxl, python3-odf, python3-pandas

book.xlsx   openpyxl: two sheets and one of notes, a header in row 3, dates, a formula with its cached value put in by hand,
            an error cell, a merged range, a truth value
times.xlsx  openpyxl: days, times of day, durations
dates.dta   pandas: days and moments
book.ods    odfpy: the same table with dates, a formula, a repeated cell
cars.dta    pandas: a Stata file of release 118 with value labels, a missing value, texts
arrays.npz  numpy: arrays of one and of two axes, of several types and orders of bytes
The files iris.sav, iris.sas7bdat are those of the R package haven (MIT licence), which SPSS and SAS wrote from R's iris.
iris.xpt is by haven::write_xpt of the first twenty rows, with underscores in the names; iris.sas7bdat is packed by gzip.
"""
import io
import pathlib
import re
import zipfile

import numpy
import openpyxl
import pandas
from odf.opendocument import OpenDocumentSpreadsheet
from odf.table import Table, TableCell, TableRow
from odf.text import P

FOLDER = pathlib.Path(__file__).parent / "packages"


def rewritten(path, part, change):
    """Changes a part of a zip file."""
    with zipfile.ZipFile(path) as archive:
        parts = [(name, archive.read(name)) for name in archive.namelist()]
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, content in parts:
            archive.writestr(name, change(content.decode()) if name == part else content)


def xlsx():
    book = openpyxl.Workbook()
    sheet = book.active
    sheet.title = "Data"
    sheet["A1"] = "Measured on line 5"
    sheet.merge_cells("A1:D1")
    sheet.append([])
    sheet.append(["when", "force", "lot", "double", "ok"])
    import datetime
    rows = [(datetime.datetime(2024, 2, 28), 1.5, "A", True), (datetime.datetime(2024, 2, 29, 10, 30), 2.5, "B, late", False),
            (datetime.datetime(2024, 3, 1), None, "A", True), (datetime.datetime(2024, 3, 2), 4.5, "C", True)]
    for number, (when, force, lot, ok) in enumerate(rows, start=4):
        sheet.append([when, force, lot, f"=2*B{number}", ok])
    second = book.create_sheet("Second")
    for row in (["x", "y"], [1, 10], [2, "#DIV/0!"], [3, 30]):
        second.append(row)
    second["B3"].data_type = "e"
    book.create_sheet("Empty")
    path = FOLDER / "book.xlsx"
    book.save(path)
    # Values of the formulas, as a spreadsheet program saves them.
    values = iter(["3", "5", "0", "9"])
    rewritten(path, "xl/worksheets/sheet1.xml", lambda xml: re.sub(r"</f><v ?/?>(</v>)?", lambda _: f"</f><v>{next(values)}</v>", xml))


def ods():
    document = OpenDocumentSpreadsheet()
    sheet = Table(name="Data")

    def row(*cells):
        line = TableRow()
        for cell in cells:
            line.addElement(cell)
        sheet.addElement(line)

    def text(value):
        cell = TableCell(valuetype="string")
        cell.addElement(P(text=value))
        return cell

    def number(value, **more):
        return TableCell(valuetype="float", value=value, **more)

    row(text("when"), text("force"), text("lot"), text("double"))
    row(TableCell(valuetype="date", datevalue="2024-02-29"), number(1.5), text("A"), number(3, formula="of:=2*[.B2]"))
    row(TableCell(valuetype="date", datevalue="2024-03-01T10:30:00"), number(2.5, numbercolumnsrepeated=1), text("B, late"), number(5))
    row(TableCell(valuetype="date", datevalue="2024-03-02"), TableCell(), text("A"), number(0))
    document.spreadsheet.addElement(sheet)
    document.save(str(FOLDER / "book.ods"))


def stata():
    frame = pandas.DataFrame({"mpg": [21.0, 22.5, numpy.nan], "cyl": [4, 6, 4], "make": ["Äpfel", "b", "c"]})
    frame.to_stata(FOLDER / "cars.dta", write_index=False, version=118, value_labels={"cyl": {4: "four", 6: "six"}},
                   variable_labels={"mpg": "miles per gallon"})


def dates():
    import datetime
    frame = pandas.DataFrame({"day": pandas.to_datetime(["2024-02-29", "1959-12-31", None]),
                              "moment": pandas.to_datetime(["2024-02-29 10:30:00", "1960-01-01", "2024-03-01 23:59:59"])})
    frame.to_stata(FOLDER / "dates.dta", write_index=False, version=118, convert_dates={"day": "td", "moment": "tc"})
    book = openpyxl.Workbook()
    for row in (["day", "clock", "lasted"], [datetime.date(2024, 2, 29), datetime.time(10, 30), datetime.timedelta(hours=26, minutes=15)],
                [datetime.date(2024, 3, 1), datetime.time(0, 0), datetime.timedelta(seconds=36)]):
        book.active.append(row)
    book.save(FOLDER / "times.xlsx")


def npz():
    numpy.savez_compressed(FOLDER / "arrays.npz", x=numpy.array([1.5, numpy.nan, 3]), i=numpy.array([1, -2, 3], dtype=">i4"),
                           m=numpy.arange(6, dtype=numpy.float32).reshape(3, 2), f=numpy.asfortranarray([[1., 2], [3, 4], [5, 6]]),
                           b=numpy.array([True, False, True]))


FOLDER.mkdir(exist_ok=True)
xlsx()
ods()
stata()
dates()
npz()
