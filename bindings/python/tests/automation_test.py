"""Dialogs as macros drive them: attributes, indexes, enumerations, documents, messages, interruption."""

import gc
import os
import pickle
import pydoc
import signal
import threading
import unittest
import warnings

import numpy

import brenvolt
from brenvolt import Analysis, Application, Array, Error, MessageWarning, Nothing, Spreadsheet, dialogs

EXAMPLES = os.path.join(os.environ["BRENVOLT_SOURCE_DIR"], "examples")


def fit_dialog(file="faithful.csv"):
    analysis = Analysis(brenvolt.read_csv(os.path.join(EXAMPLES, file)))
    analysis.Dialog.TypeOfAnalysis = brenvolt.scSRAFitDistribution
    analysis.Dialog.OK()
    analysis.Dialog.ContinuousVariable = "1"
    return analysis


class Members(unittest.TestCase):
    def test_values_come_back_as_what_they_mean(self):
        dialog = fit_dialog().Dialog
        dialog.ContinuousVariable = [1, 2]
        self.assertEqual(dialog.ContinuousVariable, "1-2")
        dialog.IsWeibullDistribution[2] = True
        dialog.IsWeibullDistribution[1] = numpy.bool_(False)
        self.assertEqual([dialog.IsWeibullDistribution[i] for i in (1, 2)], [False, True])
        self.assertIs(dialog.IsWeibullDistribution[2], True)
        dialog.WeibullOffset[1] = numpy.float64(0.25)
        self.assertEqual((dialog.WeibullOffset[1], dialog.WeibullOffset(1)), (0.25, 0.25))
        dialog.WeibullOffset[1] = Nothing
        self.assertEqual(dialog.WeibullOffset[1], brenvolt.NotSet)
        dialog.NumberOfMixtures[numpy.int64(1)] = 3
        self.assertEqual(dialog.NumberOfMixtures[1], 3)
        startup = Analysis(Spreadsheet("s")).Dialog
        startup.TypeOfAnalysis = 1
        self.assertIs(startup.TypeOfAnalysis, brenvolt.SRAOptions.scSRARunSimulation)

    def test_mistakes_are_told(self):
        dialog = fit_dialog().Dialog
        cases = [(lambda: setattr(dialog, "IsWiebullDistribution", True), AttributeError, "did you mean 'IsWeibull"),
                 (lambda: dialog.OKay, AttributeError, "no attribute 'OKay'"),
                 (lambda: setattr(dialog, "Name", "x"), AttributeError, "Name is read-only"),
                 (lambda: dialog.ResultsVariables, AttributeError, "ResultsVariables is write-only"),
                 (lambda: setattr(dialog, "IsWeibullDistribution", True), TypeError, r"IsWeibullDistribution\[iID\]"),
                 (lambda: dialog.IsWeibullDistribution[1, 2], TypeError, "has 1 index"),
                 (lambda: list(dialog.IsWeibullDistribution), TypeError, "cannot be iterated"),
                 (lambda: setattr(dialog, "ContinuousVariable", {}), TypeError, "cannot pass a"),
                 (lambda: setattr(dialog, "ContinuousVariable", "7"), Error, "no variable 7"),
                 (lambda: setattr(dialog, "BootstrapSamples", "x"), Error, "type mismatch"),
                 *((lambda value=value: setattr(dialog, "ContinuousVariable", value), kind, message)
                   for value, kind, message in self.unpassable())]
        for call, kind, message in cases:
            with self.assertRaisesRegex(kind, message):
                call()

    @staticmethod
    def unpassable():
        endless = [1]
        endless.append(endless)
        deep = []
        for _ in range(32):
            deep = [deep]
        yield from ((value, ValueError, "at most 32 sequences") for value in (endless, deep))
        yield from ((value, TypeError, "cannot pass a")
                    for value in (1 + 1j, numpy.array([1j]), b"1", [b"1"], bytearray(b"1"), memoryview(b"1"), object()))
        yield "\ud800", ValueError, "surrogate"
        yield 10**30, ValueError, "at most 64 bits"

    def test_sequences_may_lie_deep(self):
        """That many reach the system, whose refusal it is."""
        deep = []
        for _ in range(31):
            deep = [deep]
        with self.assertRaises(Error):
            fit_dialog().Dialog.ContinuousVariable = deep

    def test_an_error_tells_the_systems_method_and_how_it_failed(self):
        analysis = Analysis(brenvolt.read_csv(os.path.join(EXAMPLES, "faithful.csv")))
        closed = analysis.Dialog
        with self.assertRaises(Error) as disabled:
            closed.AutoProfiler = True
        analysis.Dialog.OK()
        dialog = analysis.Dialog
        cases = [(lambda: setattr(dialog, "ContinuousVariable", "7"), "CFitDistribution::put_ContinuousVariable",
                  "exception"),
                 (lambda: dialog.WeibullOffset[1], "CFitDistribution::get_WeibullOffset", "exception"),
                 (lambda: setattr(dialog, "ResultsOption", 1), "CFitDistribution::put_ResultsOption", "not available"),
                 (lambda: closed.TypeOfAnalysis, "CDefineTask::get_TypeOfAnalysis", "closed"),
                 (closed.OK, "CDefineTask::OK", "closed"),
                 (dialog.OK, "SRAFitDistribution::OK", "refused"),
                 (lambda: dialog.Parent.DialogInterface["SRAStartup"].TypeOfAnalysis,
                  "SRAStartup::get_TypeOfAnalysis", "closed"),
                 (lambda: dialog.Parent.DialogInterface["none"], "BrvAnalysis::get_DialogInterface", "exception"),
                 (lambda: brenvolt.read_csv("none.csv"), "", "")]
        for call, method, code in cases:
            with self.assertRaises(Error) as raised:
                call()
            self.assertEqual((raised.exception.method, raised.exception.code), (method, code))
        self.assertEqual((disabled.exception.method, disabled.exception.code),
                         ("CDefineTask::put_AutoProfiler", "refused"))
        copy = pickle.loads(pickle.dumps(raised.exception))
        self.assertEqual((copy.text, copy.where, copy.code), (raised.exception.text, "none.csv", ""))

    def test_help_texts_are_docstrings(self):
        text = pydoc.render_doc(dialogs.SRAFitDistribution, renderer=pydoc.plaintext)
        self.assertIn("IsWeibullDistribution[iID: int]: bool", text)
        self.assertIn("OK", dir(fit_dialog().Dialog))
        self.assertIn("returns True, or raises Error", dialogs.SRAFitDistribution.OK.__doc__)
        for name in dir(dialogs):
            for member, descriptor in vars(getattr(dialogs, name)).items():
                if not member.startswith("_"):
                    self.assertGreater(len(descriptor.__doc__ or ""), 10, f"{name}.{member}")

    def test_a_dialog_leads_to_its_analysis(self):
        dialog = fit_dialog().Dialog
        self.assertEqual(dialog.Parent.Dialog, dialog)
        self.assertEqual((dialog.Parent.CurrentStep, dialog.Application.Name), (102, "Brenvolt"))
        with self.assertRaisesRegex(Error, "the dialog is closed"):
            dialog.Parent.DialogInterface["SRAStartup"].TypeOfAnalysis

    def test_a_closed_dialog_refuses(self):
        analysis = fit_dialog()
        former = analysis.Dialog
        former.Cancel()
        with self.assertRaisesRegex(Error, "the dialog is closed"):
            former.ContinuousVariable
        self.assertEqual(type(analysis.Dialog).__name__, "SRAStartup")
        dialog = analysis.Dialog
        del analysis
        gc.collect()
        dialog.TypeOfAnalysis = 0
        self.assertEqual(dialog.TypeOfAnalysis, 0)


class Constants(unittest.TestCase):
    def test_macro_text_can_be_evaluated(self):
        names = {}
        exec("from brenvolt import *", names)
        value = eval("Array(scNormalDistr, 1.000000e+00, Nothing, 0, 0, 0, 0)", names)
        self.assertEqual(value, [0, 1.0, None, 0, 0, 0, 0])
        self.assertEqual((names["scDiscrete"], names["Norta"], names["iCustom"]), (15, 4, 2))
        self.assertNotIn("open", names)

    def test_constants_are_not_the_classes_of_distributions(self):
        names = {}
        exec("from brenvolt import *", names)
        self.assertEqual((names["Weibull"], names["distributions"].Weibull(2, 3).code), (5, 5))

    def test_unknown_names_are_no_constants(self):
        with self.assertRaisesRegex(AttributeError, "no attribute 'scNothing'"):
            brenvolt.scNothing


class Messages(unittest.TestCase):
    def test_a_refusal_raises_what_the_dialog_says(self):
        analysis = Analysis(Spreadsheet.from_pandas(__import__("pandas").DataFrame({"x": ["a", "b"]})))
        analysis.Dialog.TypeOfAnalysis = brenvolt.scSRARunSimulation
        analysis.Dialog.OK()
        calls = ((analysis.Dialog.OK, []), (lambda: analysis.Dialog.SimulationResults, ["nothing was simulated"]))
        for call, notes in calls:
            with self.subTest(notes), warnings.catch_warnings():
                warnings.simplefilter("error", MessageWarning)
                with self.assertRaises(Error) as raised:
                    call()
                self.assertEqual(raised.exception.text, analysis.messages[-1].text)
                self.assertRegex(raised.exception.text, "^No variable of the input has a fitted distribution")
                self.assertEqual(getattr(raised.exception, "__notes__", []), notes)

    def test_a_message_on_the_way_is_a_warning(self):
        analysis = fit_dialog()
        analysis.Dialog.IsGaussianMixtureDistribution[1] = True
        analysis.Dialog.NumberOfMixtures[1] = 21
        with self.assertWarnsRegex(MessageWarning, r"Mixture value reverted .*\(eruptions: 20\)") as warned:
            analysis.Dialog.OK()
        self.assertEqual(warned.filename, __file__)
        self.assertEqual(len(analysis.messages), 1)
        self.assertEqual(type(analysis.Dialog).__name__, "SRAFitDistributionResults")

    def test_warnings_made_errors_lose_no_work(self):
        analysis = fit_dialog()
        analysis.Dialog.IsGaussianMixtureDistribution[1] = True
        analysis.Dialog.NumberOfMixtures[1] = 21
        with warnings.catch_warnings():
            warnings.simplefilter("error", MessageWarning)
            with self.assertRaises(MessageWarning):
                analysis.Dialog.OK()
        self.assertEqual(analysis.Dialog.SummaryStats.NumberOfCases, 1)


class Documents(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.analysis = fit_dialog()
        cls.analysis.Dialog.OK()
        cls.dialog = cls.analysis.Dialog

    def test_a_table_is_a_spreadsheet(self):
        table = self.dialog.SummaryStats
        self.assertEqual((table.NumberOfCases, table.CaseName[1]), (1, "eruptions"))
        frame = table.to_pandas()
        self.assertEqual(frame.loc["eruptions", "Valid N"], 272)
        column = [table.VariableName[i] for i in range(1, table.NumberOfVariables + 1)].index("Mean") + 1
        self.assertEqual(table.Value[1, column], frame.loc["eruptions", "Mean"])
        view = table.sheet["Mean"]
        del table
        gc.collect()
        self.assertAlmostEqual(view[0], 3.4877830882352936, places=12)

    def test_a_graph_is_its_data(self):
        graph = self.dialog.HistogramWithFit
        self.assertEqual(graph.Kind, "histogram")
        bars, curve = graph.bars[0], graph.curves[0]
        self.assertEqual(len(bars["bounds"]), len(bars["heights"]) + 1)
        self.assertEqual(bars["heights"].sum(), 272)
        self.assertEqual(curve["x"].shape, curve["y"].shape)
        self.assertEqual(curve["formula"], graph.CurveFormula[1])
        points = self.dialog.QQPlot.series[0]
        gc.collect()
        self.assertEqual((points["style"], points["x"].size), ("points", 272))
        panels = self.dialog.SummaryGraph.panels
        self.assertGreater(len(panels), 1)

    def test_what_was_shown_is_kept_in_order(self):
        shown = len(self.analysis.documents)
        table = self.dialog.SummaryStats
        self.assertEqual(self.analysis.documents[shown:], [table])


class Interruption(unittest.TestCase):
    def bootstrap(self, handler=signal.default_int_handler):
        """A dialog whose OK takes minutes, while an interrupt is under way."""
        analysis = fit_dialog("portpirie_sea_level.csv")
        analysis.Dialog.BootstrapSamples = 1_000_000
        former = signal.signal(signal.SIGINT, handler)
        self.addCleanup(signal.signal, signal.SIGINT, former)
        timer = threading.Timer(0.2, os.kill, (os.getpid(), signal.SIGINT))
        timer.start()
        self.addCleanup(timer.join)
        return analysis

    def test_ctrl_c_cancels_and_leaves_the_dialog_as_it_was(self):
        analysis = self.bootstrap()
        with self.assertRaises(KeyboardInterrupt):
            analysis.Dialog.OK()
        self.assertEqual((analysis.messages, analysis.documents), ([], []))
        self.assertEqual(analysis.Dialog.BootstrapSamples, 1_000_000)
        analysis.Dialog.BootstrapSamples = 0
        analysis.Dialog.OK()
        self.assertEqual(analysis.Dialog.SummaryStats.NumberOfCases, 1)

    def test_a_handler_may_raise_what_it_likes_and_use_the_package(self):
        class Stop(Exception):
            pass

        def handler(number, frame):
            raise Stop(fit_dialog().Dialog.Name)

        analysis = self.bootstrap(handler)
        with self.assertRaisesRegex(Stop, "."):
            analysis.Dialog.OK()
        self.assertEqual(analysis.Dialog.BootstrapSamples, 1_000_000)


class Threads(unittest.TestCase):
    def together(self, *jobs):
        """Runs the jobs at the same time, and fails where one of them does."""
        failures = []

        def guarded(job):
            try:
                job()
            except BaseException as error:
                failures.append(error)

        threads = [threading.Thread(target=guarded, args=(job,)) for job in jobs]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(failures, [])

    def test_jobs_take_turns(self):
        """The random stream is the process's: samples drawn at the same time would share it."""
        fitted = brenvolt.fit(os.path.join(EXAMPLES, "faithful.csv"), distributions=["normal", "weibull"])
        fitted.keep()
        drawn = []

        def draw():
            drawn.append(brenvolt.simulate(fitted.sheet, 20_000, seed=11)["waiting"].to_numpy())

        draw()
        self.together(*[draw] * 8)
        self.assertEqual(len(drawn), 9)
        self.assertTrue(all((samples == drawn[0]).all() for samples in drawn))

    def test_a_sheet_grows_while_others_look_at_it(self):
        sheet = Spreadsheet("s")
        sheet["first"] = numpy.ones(50)

        def grow(letter):
            for i in range(200):
                sheet[f"{letter}{i}"] = numpy.ones(50)

        def look():
            for _ in range(50):
                for name in sheet:
                    self.assertEqual(sheet[name].sum(), 50)

        self.together(lambda: grow("a"), lambda: grow("b"), look, look)
        self.assertEqual(len(sheet.names), 401)


if __name__ == "__main__":
    unittest.main()
