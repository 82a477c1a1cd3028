"""Spreadsheets and workbooks: views that are safe, pandas there and back, files."""

import datetime
import decimal
import fractions
import gc
import os
import tempfile
import unittest
import uuid

import numpy
import pandas

import brenvolt
from brenvolt import Error, Spreadsheet, Workbook

EXAMPLES = os.path.join(os.environ["BRENVOLT_SOURCE_DIR"], "examples")


class Views(unittest.TestCase):
    def test_a_view_shows_the_sheets_own_values(self):
        sheet = brenvolt.read_csv(os.path.join(EXAMPLES, "faithful.csv"))
        first, second = sheet["waiting"], sheet.variable("waiting").values
        self.assertEqual(first.__array_interface__["data"], second.__array_interface__["data"])
        self.assertEqual((first.size, first[0]), (272, 79))
        with self.assertRaises(ValueError):
            first[0] = 1
        with self.assertRaises(ValueError):
            first.setflags(write=True)

    def test_a_view_outlives_everything_it_came_from(self):
        def views():
            workbook = brenvolt.open_workbook(os.path.join(EXAMPLES, "faithful.csv"))
            sheet = workbook.sheet()
            before = sheet["waiting"]
            sheet["waiting"] = numpy.zeros(272)
            assigned = sheet["waiting"]
            sheet.add_cases(100_000)
            longer = sheet["waiting"]
            workbook.remove("faithful")
            return before, assigned, longer

        before, assigned, longer = views()
        gc.collect()
        ballast = [numpy.full(272, 7.0) for _ in range(1000)]
        self.assertEqual((before.sum(), before.size), (19284, 272))
        self.assertEqual((assigned.sum(), assigned.size), (0, 272))
        self.assertEqual((longer.size, numpy.isnan(longer[-1])), (100_272, True))
        del ballast

    def test_a_sheet_outlives_its_workbook(self):
        sheet = brenvolt.open_workbook(os.path.join(EXAMPLES, "faithful.csv")).sheet()
        gc.collect()
        self.assertEqual(sheet.shape, (272, 2))
        workbook = Workbook()
        self.assertIs(workbook.add(sheet.copy()), workbook[0])
        taken = workbook.remove("faithful")
        del workbook
        gc.collect()
        self.assertEqual(taken.names, ["eruptions", "waiting"])


class Pandas(unittest.TestCase):
    frame = pandas.DataFrame({
        "strength": [1.5, numpy.nan, -2.0], "count": pandas.array([1, None, 3], dtype="Int64"),
        "good": [True, False, True],
        "machine": ["b", None, "a"], "shift": pandas.Categorical(["early", "late", "early"])}, index=["p", "q", "r"])

    def test_a_frame_comes_back_as_it_went(self):
        sheet = Spreadsheet.from_pandas(self.frame, "parts")
        back = sheet.to_pandas()
        self.assertEqual([sheet.variable(name).is_text for name in sheet], [False, False, False, True, True])
        expected = self.frame.astype({"count": float, "good": float, "shift": object})
        expected["machine"] = expected["machine"].where(expected["machine"].notna(), numpy.nan)
        pandas.testing.assert_frame_equal(back, expected)

    def test_missing_codes_become_missing(self):
        sheet = Spreadsheet("s")
        sheet["x"] = [1, -999, 3]
        sheet.variable("x").missing_code = -999
        self.assertEqual(sheet.variable("x").missing.tolist(), [False, True, False])
        self.assertTrue(numpy.isnan(sheet.to_pandas()["x"][1]))
        self.assertEqual(sheet["x"][1], -999)

    def test_numbers_in_every_guise_are_numbers(self):
        nan = float("nan")
        columns = (numpy.ma.masked_array([1.0, 2.0, 3.0], [False, True, False]),
                   numpy.ma.masked_array([1, 2, 3], [False, True, False]),
                   pandas.Series([1, None, 3.0], dtype=object),
                   [decimal.Decimal("1"), None, decimal.Decimal("3")],
                   pandas.Categorical([1, None, 3]),
                   pandas.array([1, None, 3], dtype="Int64"))
        for column in columns:
            sheet = Spreadsheet("s")
            sheet["x"] = column
            self.assertFalse(sheet.variable("x").is_text, repr(column))
            numpy.testing.assert_array_equal(sheet["x"], [1, nan, 3], repr(column))
        sheet = Spreadsheet("s")
        sheet["t"] = numpy.ma.masked_array(["a", "b", "a"], [False, True, False])
        numpy.testing.assert_array_equal(sheet["t"], [1, nan, 1])

    def test_dates_are_texts_and_times_hours_as_in_workbooks(self):
        day = datetime.date(2024, 2, 29)
        moments = ["2024-02-29 10:30:00", None, "2024-03-01"]
        frame = pandas.DataFrame({"day": [day, None, day], "moment": pandas.to_datetime(moments),
                                  "zone": pandas.to_datetime(moments).tz_localize("Europe/Paris"),
                                  "clock": [datetime.time(10, 30), None, datetime.time(0, 0, 36)],
                                  "lasted": pandas.to_timedelta(["26:15:00", None, "-30min"])})
        shown = Spreadsheet.from_pandas(frame).to_pandas()
        self.assertEqual(list(shown["day"].fillna("-")), ["2024-02-29", "-", "2024-02-29"])
        for name in ("moment", "zone"):
            self.assertEqual(list(shown[name].fillna("-")), ["2024-02-29 10:30:00", "-", "2024-03-01"])
        numpy.testing.assert_allclose(shown["clock"], [10.5, numpy.nan, 0.01])
        numpy.testing.assert_allclose(shown["lasted"], [26.25, numpy.nan, -0.5])
        sheet = Spreadsheet("s")
        sheet["x"] = numpy.array(["2024-02-29"], dtype="datetime64[D]")
        self.assertEqual(sheet.variable("x").labels, {1.0: "2024-02-29"})

    def test_what_is_neither_numbers_nor_texts_is_left_out_unless_asked_for(self):
        columns = ([1j], pandas.period_range("2020-01", periods=1, freq="M"), [[1, 2]], [b"a"], [uuid.uuid4()])
        for column in columns:
            frame = pandas.DataFrame({"x": column, "y": [1.0]})
            with self.assertWarnsRegex(brenvolt.MessageWarning, r"left out: x \("):
                self.assertEqual(Spreadsheet.from_pandas(frame).names, ["y"])
            with self.assertRaisesRegex(TypeError, "column 'x' holds .* values, neither numbers nor texts"):
                Spreadsheet.from_pandas(frame, required=["x"])
            with self.assertRaisesRegex(TypeError, "column 'x' holds"):
                Spreadsheet("s")["x"] = column

    def test_numbers_that_python_mixes_are_numbers(self):
        for column in ([1, numpy.ma.masked, 3], [fractions.Fraction(1), pandas.NaT, 3.0],
                       [decimal.Decimal(1), pandas.NA, numpy.float64(3)]):
            for assign in (lambda sheet, values: sheet.__setitem__("x", values),
                           lambda sheet, values: setattr(sheet.variable("x"), "values", values)):
                sheet = Spreadsheet("s")
                sheet["x"] = numpy.zeros(3)
                assign(sheet, column)
                numpy.testing.assert_array_equal(sheet["x"], [1, float("nan"), 3], repr(column))

    def test_wrong_arguments_are_named_with_what_is_accepted(self):
        sheet, workbook, application = Spreadsheet("s"), Workbook(), brenvolt.Application()
        sheet["x"] = [1.0, 2.0]
        variable = sheet.variable("x")
        cases = ((lambda: brenvolt.read_csv(5), TypeError, "path must be a path, not int"),
                 (lambda: brenvolt.read_csv("x.csv", "yes"), TypeError, "decimal_comma must be True or False, not str"),
                 (lambda: brenvolt.open_workbook("a\0b"), ValueError, "path holds a null character"),
                 (lambda: Spreadsheet(5), TypeError, "name must be a text, not int"),
                 (lambda: Spreadsheet.from_pandas([1]), TypeError, "frame must be a DataFrame or a Series, not list"),
                 (lambda: sheet[5], TypeError, "name must be a text, not int"),
                 (lambda: sheet.__setitem__(5, [1, 2]), TypeError, "name must be a text, not int"),
                 (lambda: sheet.variable(1.5), TypeError, "name or number must be a text or a whole number, not float"),
                 (lambda: sheet.add_cases(-1), ValueError, "count must not be negative"),
                 (lambda: sheet.to_csv(5), TypeError, "path must be a path, not int"),
                 (lambda: setattr(sheet, "weight_variable", 5), TypeError,
                  "weight_variable must be a text or None, not int"),
                 (lambda: setattr(sheet, "case_names", [1, 2]), TypeError,
                  "case_names must be a list of texts or None"),
                 (lambda: setattr(variable, "name", None), TypeError, "name must be a text, not NoneType"),
                 (lambda: setattr(variable, "labels", {"a": 1}), TypeError, "labels must be a mapping {number: text}"),
                 (lambda: setattr(variable, "values", ["a", "b"]), TypeError,
                  "values of 'x' must be numbers, not texts"),
                 (lambda: setattr(variable, "values", [1j, 2]), TypeError,
                  "values of 'x' must be numbers, not complex"),
                 (lambda: variable.set_property("a", 5), TypeError, "value must be a text, not int"),
                 (lambda: workbook.add(5), TypeError, "sheet must be a Spreadsheet, not int"),
                 (lambda: workbook.add(None), TypeError, "sheet must be a Spreadsheet, not NoneType"),
                 (lambda: brenvolt.Analysis(None), TypeError,
                  "sheet must be a Spreadsheet or a TableDocument, not NoneType"),
                 (lambda: application.Append("p.bvw", None), TypeError,
                  "sheet must be a Spreadsheet or a TableDocument"),
                 (lambda: application.SaveFits(None, None, "p.bvw"), TypeError, "sheet must be a Spreadsheet or"),
                 (lambda: application.SaveFits(sheet, 5, "p.bvw"), TypeError, "matrix must be a Spreadsheet or"),
                 (lambda: application.SavedMatrix(None), TypeError, "sheet must be a Spreadsheet or"),
                 (lambda: application.NamedMatrix("m", None), TypeError, "sheet must be a Spreadsheet or"),
                 (lambda: application.NamedMatrix(5, sheet), TypeError, "name must be a text, not int"),
                 (lambda: application.TakeFormerProperties(None, "p.bvw"), TypeError, "sheet must be a Spreadsheet or"),
                 (lambda: application.WriteFitGraphs(None, "g.json"), TypeError, "analysis must be an Analysis"),
                 (lambda: application.Import(5, "p.bvw"), TypeError, "file must be a path, not int"),
                 (lambda: application.Export("p.bvw", 5), TypeError, "file must be a path, not int"),
                 (lambda: application.Score(5, sheet), TypeError, "model must be a path, not int"),
                 (lambda: application.Score("m.pmml", None), TypeError, "data must be a path, not NoneType"),
                 (lambda: workbook.save(5), TypeError, "path must be a path or None, not int"))
        for call, kind, message in cases:
            with self.subTest(message), self.assertRaisesRegex(kind, message):
                call()

    def test_properties_cannot_be_assigned_to(self):
        sheet = Spreadsheet("s")
        sheet["x"] = [1.0]
        sheet.variable("x").set_property("note", "tensile")
        with self.assertRaises(TypeError):
            sheet.variable("x").properties["note"] = "other"
        self.assertEqual(dict(sheet.variable("x").properties), {"note": "tensile"})

    def test_columns_of_another_length_are_refused(self):
        sheet = Spreadsheet("s")
        sheet["x"] = numpy.arange(3)
        for name in ("x", "y"):
            with self.assertRaises(Error):
                sheet[name] = numpy.arange(4)
        with self.assertRaises(ValueError):
            sheet["y"] = numpy.zeros((3, 1))
        self.assertEqual(sheet.names, ["x"])

    def test_columns_of_one_name_stay_apart(self):
        frame = pandas.DataFrame([[1.0, 2.0]], columns=["x", "x"])
        with self.assertRaisesRegex(ValueError, "'x' names two columns"):
            Spreadsheet.from_pandas(frame)


class Files(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def file(self, name):
        return os.path.join(self.folder, name)

    def test_a_project_keeps_everything(self):
        sheet = Spreadsheet.from_pandas(Pandas.frame, "parts")
        sheet.weight_variable, sheet.selection = "count", "count = 1 or count = 3"
        sheet.variable("strength").set_property("note", "tensile")
        workbook = Workbook()
        workbook.add(sheet)
        with self.assertRaisesRegex(ValueError, "no file yet"):
            workbook.save()
        with self.assertRaisesRegex(ValueError, r"expected a file ending in .bvw, got p.csv \(path\)"):
            workbook.save("p.csv")
        workbook.save(self.file("p.bvw"))
        with self.assertRaisesRegex(ValueError, r"the data are a project.* \(decimal_comma\)"):
            brenvolt.open_workbook(self.file("p.bvw"), decimal_comma=True)
        sheet["strength"] = [1.0, 2.0, 3.0]
        workbook.save()
        again = brenvolt.open_workbook(self.file("p.bvw"))["parts"]
        self.assertEqual(again["strength"].tolist(), [1, 2, 3])
        self.assertEqual(again["machine"].tolist()[0::2], [1, 2])
        self.assertEqual(again.variable("machine").labels, {1: "b", 2: "a"})
        self.assertEqual((again.weight_variable, again.selection), ("count", "count = 1 or count = 3"))
        self.assertEqual(again.case_names, ["p", "q", "r"])

    def test_csv_reads_back_exactly(self):
        sheet = Spreadsheet("s")
        sheet["x"] = [0.1, 1e-300, numpy.nan]
        sheet["t"] = ["a,b", "c\nd", "e"]
        for comma in (False, True):
            sheet.to_csv(self.file("s.csv"), decimal_comma=comma)
            again = brenvolt.read_csv(self.file("s.csv"), decimal_comma=comma).to_pandas()
            pandas.testing.assert_frame_equal(again, sheet.to_pandas())

    def test_errors_say_what_and_where(self):
        sheet = brenvolt.read_csv(os.path.join(EXAMPLES, "faithful.csv"))
        cases = [(lambda: brenvolt.open_workbook(self.file("none.bvw")), "No such file", "none.bvw"),
                 (lambda: sheet.variable("eruption"), "no variable called 'eruption'", "sheet faithful"),
                 (lambda: sheet.variable(3), "no variable 3", "sheet faithful"),
                 (lambda: setattr(sheet, "selection", "waiting >"), "", "selection condition"),
                 (lambda: sheet.to_csv(self.file("no/such/folder.csv")), "", "folder.csv")]
        for call, text, where in cases:
            with self.assertRaises(Error) as raised:
                call()
            self.assertIn(text, raised.exception.text)
            self.assertIn(where, raised.exception.where)
            self.assertEqual(str(raised.exception), f"{raised.exception.text} ({raised.exception.where})")
        workbook = Workbook()
        for call in (lambda: workbook["x"], lambda: sheet["x"], lambda: workbook.remove("x")):
            with self.assertRaises(KeyError):
                call()
        with self.assertRaises(IndexError):
            workbook[0]


if __name__ == "__main__":
    unittest.main()
