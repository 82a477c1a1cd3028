#!/usr/bin/env python3
"""Makes the folder exports/: models in the words of programs that write PMML in ways of their own, with predictions
by the published definition of each element, written out below one row at a time. Needs nothing beyond Python.

    exports/models/CASE.pmml      a model
    exports/data/CASE.csv         what its predictions are made from
    exports/expected/CASE.csv     its predictions
    exports/cases.csv             the cases, in the form of made/cases.csv
"""
import csv
import math
import os

HERE = os.path.dirname(os.path.abspath(__file__))
FOLDER = os.path.join(HERE, "exports")
CLASSES = ["setosa", "versicolor", "virginica"]
CASES = []

with open(os.path.join(HERE, "interchange", "Iris.csv"), newline="") as file:
    ROWS = list(csv.DictReader(file))
COLUMN = {name.lower(): name for name in ROWS[0]}
LENGTH, WIDTH, SPECIES = COLUMN["petal.length"], COLUMN["petal.width"], COLUMN["species"]


def cell(value):
    return "" if value is None else repr(value) if isinstance(value, float) else str(value)


def put(kind, name, ending, text):
    path = os.path.join(FOLDER, kind, name + ending)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w") as file:
        file.write(text)


def table(head, rows):
    return "".join(",".join(map(cell, row)) + "\n" for row in [head, *rows])


def write(name, version, dictionary, model, columns, rows, expected, answers):
    put("models", name, ".pmml", f'<PMML version="{version}">\n<Header/>\n<DataDictionary>\n{dictionary}\n</DataDictionary>\n{model}\n</PMML>\n')
    put("data", name, ".csv", table(columns, rows))
    put("expected", name, ".csv", table(expected, answers))
    CASES.append([name, name])


def field(name, inside=""):
    return f'<DataField name="{name}" optype="continuous" dataType="double">{inside}</DataField>\n'


def classes(name, values):
    inside = "".join(f'<Value value="{value}"/>' for value in values)
    return f'<DataField name="{name}" optype="categorical" dataType="string">{inside}</DataField>'


def moments(column, name):
    x = [float(row[column]) for row in ROWS if row[SPECIES] == name]
    mean = sum(x) / len(x)
    return mean, sum((value - mean) ** 2 for value in x) / (len(x) - 1)


def bayes():
    """Normal inputs that versions before 4.1 have in extensions: one whole, one with its distributions. Of each class
    the prior count times the densities, each at least the threshold, over their sum."""
    threshold = 1e-6
    inputs = {}
    for column in ("length", "width"):
        inputs[column] = [moments({"length": LENGTH, "width": WIDTH}[column], name) for name in CLASSES]

    def stats(column):
        return "<TargetValueStats>" + "".join(
            f'<TargetValueStat value="{name}"><GaussianDistribution mean="{mean!r}" variance="{variance!r}"/></TargetValueStat>'
            for name, (mean, variance) in zip(CLASSES, inputs[column])) + "</TargetValueStats>\n"

    model = ('<NaiveBayesModel functionName="classification" threshold="1e-6">\n<MiningSchema><MiningField name="length"/>'
             '<MiningField name="width"/><MiningField name="species" usageType="predicted"/></MiningSchema>\n<BayesInputs>\n'
             f'<Extension name="inputs"><BayesInput fieldName="length">{stats("length")}</BayesInput></Extension>\n'
             f'<BayesInput fieldName="width"><Extension>{stats("width")}</Extension></BayesInput>\n</BayesInputs>\n'
             '<BayesOutput fieldName="species"><TargetValueCounts>'
             + "".join(f'<TargetValueCount value="{name}" count="50"/>' for name in CLASSES)
             + "</TargetValueCounts></BayesOutput>\n</NaiveBayesModel>")
    rows, answers = [], []
    for row in ROWS:
        x = {"length": float(row[LENGTH]), "width": float(row[WIDTH])}
        weights = []
        for k in range(3):
            weight = 50.0
            for column, value in x.items():
                mean, variance = inputs[column][k]
                density = math.exp(-(value - mean) ** 2 / (2 * variance)) / math.sqrt(2 * math.pi * variance)
                weight *= max(density, threshold)
            weights.append(weight)
        shares = [weight / sum(weights) for weight in weights]
        rows.append([x["length"], x["width"]])
        answers.append([CLASSES[shares.index(max(shares))], *shares])
    write("BayesExtensions", "4.0", field("length") + field("width") + classes("species", CLASSES), model, ["length", "width"], rows,
          ["species"] + [f"probability({name})" for name in CLASSES], answers)


def network():
    """Infinity in an interval, misspelt attributes of derived fields, the winning neuron as entityId."""
    model = """<NeuralNetwork functionName="classification" activationFunction="logistic">
<MiningSchema><MiningField name="x"/><MiningField name="z"/><MiningField name="y" usageType="predicted"/></MiningSchema>
<Output><OutputField name="neuron" optype="categorical" dataType="string" feature="entityId" isMultiValued="0"/>
<OutputField name="doubt" feature="warning"/></Output>
<NeuralInputs>
<NeuralInput id="0,0"><DerivedField opttype="continuous" datatype="double"><NormContinuous field="x"><LinearNorm orig="0" norm="-1"/><LinearNorm orig="10" norm="1"/></NormContinuous></DerivedField></NeuralInput>
<NeuralInput id="0,1"><DerivedField optype="continuous" dataype="double" displayname="z"><FieldRef field="z"/></DerivedField></NeuralInput>
</NeuralInputs>
<NeuralLayer><Neuron id="1,0" bias="0.1"><Con from="0,0" weight="1.5"/><Con from="0,1" weight="-0.5"/></Neuron></NeuralLayer>
<NeuralLayer normalizationMethod="softmax" activationFunction="identity">
<Neuron id="2,0" bias="0.25"><Con from="1,0" weight="2"/></Neuron><Neuron id="2,1" bias="1.5"><Con from="1,0" weight="-1"/></Neuron></NeuralLayer>
<NeuralOutputs>
<NeuralOutput outputNeuron="2,1"><DerivedField optype="categorical" dataType="string"><NormDiscrete field="y" value="low"/></DerivedField></NeuralOutput>
<NeuralOutput outputNeuron="2,0"><DerivedField optype="categorical" dataType="string"><NormDiscrete field="y" value="high"/></DerivedField></NeuralOutput>
</NeuralOutputs></NeuralNetwork>"""
    everything = '<Interval closure="openOpen" leftMargin="-Infinity" rightMargin="Infinity"/>'
    rows, answers = [], []
    for i in range(40):
        x, z = i * 0.4 - 2, (i * 7 % 11) - 5.0
        hidden = 1 / (1 + math.exp(-(0.1 + 1.5 * (-1 + x / 5) - 0.5 * z)))
        high, low = math.exp(0.25 + 2 * hidden), math.exp(1.5 - hidden)
        share = low / (low + high)
        rows.append([x, z])
        answers.append(["low" if share > 0.5 else "high", "2,1" if share > 0.5 else "2,0", share, 1 - share])
    answers = [[y, f'"{neuron}"', low, high] for y, neuron, low, high in answers]
    write("NetworkExport", "4.2", field("x", everything) + field("z") + classes("y", ["low", "high"]), model, ["x", "z"], rows,
          ["y", "neuron", "probability(low)", "probability(high)"], answers)


def machine():
    """The other class of a single machine named at the model: the machine's own class wins below 0."""
    model = """<SupportVectorMachineModel functionName="classification" alternateBinaryTargetCategory="out" svmRepresentation="Coefficients">
<MiningSchema><MiningField name="x"/><MiningField name="z"/><MiningField name="y" usageType="predicted"/></MiningSchema>
<LinearKernelType/>
<VectorDictionary numberOfVectors="0"><VectorFields><FieldRef field="x"/><FieldRef field="z"/></VectorFields></VectorDictionary>
<SupportVectorMachine targetCategory="in"><Coefficients absoluteValue="-1.25"><Coefficient value="0.75"/><Coefficient value="-0.5"/></Coefficients></SupportVectorMachine>
</SupportVectorMachineModel>"""
    rows = [[i * 0.37 - 4, i * i * 0.11 % 5] for i in range(30)]
    answers = [["in" if -1.25 + 0.75 * x - 0.5 * z < 0 else "out"] for x, z in rows]
    write("MachineExport", "3.2", field("x") + field("z") + '<DataField name="y" optype="categorical" dataType="string"/>', model,
          ["x", "z"], rows, ["y"], answers)


def regression():
    """Outputs that cannot be given beside one that can, rawDataValue, and a field that the data lack and the model replaces."""
    model = """<RegressionModel functionName="classification" normalizationMethod="logit">
<MiningSchema><MiningField name="x"/><MiningField name="z" missingValueReplacement="2.5"/><MiningField name="y" usageType="predicted"/></MiningSchema>
<Output><OutputField name="error" feature="standardError"/><OutputField name="double" feature="transformedValue"><Apply function="*"><Constant>2</Constant><FieldRef field="x"/></Apply></OutputField>
<OutputField name="ofError" feature="transformedValue"><FieldRef field="error"/></OutputField></Output>
<Targets><Target field="y"><TargetValue value="yes" rawDataValue="1" displayValue="Yes"/><TargetValue value="no" rawDataValue="0"/></Target></Targets>
<RegressionTable intercept="-1.5" targetCategory="yes"><NumericPredictor name="x" coefficient="0.8"/><NumericPredictor name="z" coefficient="-0.3"/></RegressionTable>
<RegressionTable intercept="0" targetCategory="no"/></RegressionModel>"""
    rows = [[i * 0.5 - 3] for i in range(24)]
    answers = []
    for (x,) in rows:
        share = 1 / (1 + math.exp(1.5 - 0.8 * x + 0.3 * 2.5))
        answers.append(["yes" if share > 0.5 else "no", 2 * x, share, 1 - share])
    write("RegressionExport", "3.1", field("x") + field("z") + classes("y", ["yes", "no"]), model, ["x"], rows,
          ["y", "double", "probability(yes)", "probability(no)"], answers)


bayes()
network()
machine()
regression()
put("", "cases", ".csv", table(["case", "data"], CASES))
