#!/usr/bin/env python3
"""Makes the folder made/: models with predictions that are not from our own code.

    make_models.py        needs NumPy, SciPy and scikit-learn (Debian: python3-sklearn)

    made/models/CASE.pmml      a model
    made/expected/CASE.csv     its predictions
    made/data/NAME.csv         what they are made from, the same file for all cases with the same data
    made/forests/NAME.txt      a trained forest, of which the test makes one model for each way to combine trees
    made/cases.csv             which data each case has

Where a library can train the model its own predictions are the expectation; elsewhere the published definition of
the element is written out below, one row at a time.
"""
import math
import os
import shutil
import numpy as np
from scipy import stats
from sklearn.cluster import KMeans
from sklearn.datasets import load_diabetes, load_iris
from sklearn.ensemble import GradientBoostingClassifier, GradientBoostingRegressor, RandomForestClassifier, RandomForestRegressor
from sklearn.linear_model import LogisticRegression
from sklearn.naive_bayes import GaussianNB
from sklearn.neighbors import KNeighborsClassifier, KNeighborsRegressor
from sklearn.neural_network import MLPClassifier, MLPRegressor
from sklearn.svm import SVC, SVR

FOLDER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "made")
CLASSES = ["setosa", "versicolor", "virginica"]
IRIS = load_iris()
X, Y = IRIS.data, IRIS.target
NAMES = ["a", "b", "c", "d"]
DIABETES = load_diabetes(scaled=False)
DX, DY = DIABETES.data[:200, :4], DIABETES.target[:200]
MISSING = None


def number(x):
    return repr(float(x))


def field(name, kind="continuous", data="double", inside=""):
    return f'<DataField name="{name}" optype="{kind}" dataType="{data}">{inside}</DataField>'


def values(texts):
    return "".join(f'<Value value="{text}"/>' for text in texts)


def schema(active, target=None):
    fields = "".join(f if f.startswith("<") else f'<MiningField name="{f}"/>' for f in active)
    return "<MiningSchema>" + fields + (f'<MiningField name="{target}" usageType="target"/>' if target else "") + "</MiningSchema>"


def pmml(fields, body, transformations="", version="4.4"):
    return (f'<?xml version="1.0" encoding="UTF-8"?>\n<PMML version="{version}" xmlns="http://www.dmg.org/PMML-{version.replace(".", "_")}">\n'
            f'<Header/>\n<DataDictionary>\n' + "\n".join(fields) + f'\n</DataDictionary>\n{transformations}\n{body}\n</PMML>\n')


FILES = {}  # the text of each file by its path in FOLDER
CASES = []  # name and data of each case that has a model file


def put(path, text):
    """Files are written once, and never with two contents."""
    if FILES.setdefault(path, text) != text:
        raise SystemExit(f"{path} would have two contents")


def put_table(path, head, lines):
    put(path, "".join(",".join(map(cell, line)) + "\n" for line in [head] + list(lines)))


def write(name, text, columns, rows, expected, answers, data=None):
    """A case; `data` is the name of its data where other cases have the same."""
    put(f"models/{name}.pmml", text.replace("><", ">\n<"))
    write_answers(name, columns, rows, expected, answers, data)
    CASES.append([name, data or name])


def write_answers(name, columns, rows, expected, answers, data=None):
    put_table(f"data/{data or name}.csv", columns, rows)
    put_table(f"expected/{name}.csv", expected, answers)


def cell(value):
    if value is None or (isinstance(value, float) and math.isnan(value)):
        return ""
    text = repr(float(value)) if isinstance(value, (float, np.floating)) else str(value)
    return f'"{text}"' if text != text.strip() or "," in text else text


def probabilities(classes=CLASSES):
    return [f"probability({c})" for c in classes]


IRIS_FIELDS = [field(n) for n in NAMES] + [field("species", "categorical", "string", values(CLASSES))]
IRIS_SCHEMA = schema(NAMES, "species")
DIABETES_FIELDS = [field(n) for n in NAMES] + [field("y")]
DIABETES_SCHEMA = schema(NAMES, "y")


def iris(name, body, predicted, chances=None):
    answers = [[CLASSES[k]] + (list(chances[i]) if chances is not None else []) for i, k in enumerate(predicted)]
    write(name, pmml(IRIS_FIELDS, body), NAMES, X.tolist(), ["species"] + (probabilities() if chances is not None else []), answers, "Iris")


# ---- scikit-learn ----

def tree_nodes(tree, node=0, predicate="<True/>"):
    """Thresholds as scikit-learn compares them: inputs rounded to single precision, x <= t goes left."""
    if tree.children_left[node] < 0:
        return f'<Node score="{number(tree.value[node][0][0])}">{predicate}</Node>'
    t = number(tree.threshold[node])
    f = NAMES[tree.feature[node]]
    left = tree_nodes(tree, tree.children_left[node], f'<SimplePredicate field="{f}" operator="lessOrEqual" value="{t}"/>')
    right = tree_nodes(tree, tree.children_right[node], f'<SimplePredicate field="{f}" operator="greaterThan" value="{t}"/>')
    return f'<Node>{predicate}{left}{right}</Node>'


def tree_model(tree):
    return f'<TreeModel functionName="regression" splitCharacteristic="binarySplit">{schema(NAMES)}{tree_nodes(tree)}</TreeModel>'


def tree_line(tree, leaf, node=0):
    """The tree in one line, every node before its branches: a split as field and threshold, a leaf as `leaf` has it."""
    if tree.children_left[node] < 0:
        return leaf(tree.value[node][0])
    branches = (tree_line(tree, leaf, branch[node]) for branch in (tree.children_left, tree.children_right))
    return " ".join([NAMES[tree.feature[node]], number(tree.threshold[node]), *branches])


def class_leaf(counts):
    """The class, and the shares of all."""
    share = counts / counts.sum()
    return " ".join([CLASSES[int(np.argmax(share))], *map(number, share)])


def segmentation(method, models, predicates=None):
    parts = "".join(f'<Segment id="{i + 1}">{predicates[i] if predicates else "<True/>"}{m}</Segment>'
                    for i, m in enumerate(models))
    return f'<Segmentation multipleModelMethod="{method}">{parts}</Segmentation>'


def as_single(fields):
    return [f.replace('dataType="double"', 'dataType="float"') for f in fields]


def forests():
    """Forests, whose trees the test combines in several ways; tree number i, from 0, has the weight 1 + i % 3."""
    forest = RandomForestClassifier(n_estimators=12, max_depth=5, random_state=1).fit(X, Y)
    put("forests/Iris.txt", "".join(tree_line(t.tree_, class_leaf) + "\n" for t in forest.estimators_))
    w = np.array([1 + i % 3 for i in range(12)], float)
    each = np.array([t.predict_proba(X) for t in forest.estimators_])
    winners = np.eye(3)[np.argmax(each, axis=2)]
    for method, chances in (("Average", forest.predict_proba(X)), ("Vote", winners.mean(axis=0)),
                            ("WeightedAverage", np.tensordot(w, each, axes=1) / w.sum()), ("WeightedVote", np.tensordot(w, winners, axes=1) / w.sum())):
        write_answers("Forest" + method, NAMES, X.tolist(), ["species"] + probabilities(), [[CLASSES[int(np.argmax(p))], *p] for p in chances], "Iris")

    forest = RandomForestRegressor(n_estimators=9, max_depth=6, random_state=2).fit(DX, DY)
    put("forests/Diabetes.txt", "".join(tree_line(t.tree_, lambda mean: number(mean[0])) + "\n" for t in forest.estimators_))
    w = np.array([1 + i % 3 for i in range(9)], float)
    each = np.array([t.predict(DX) for t in forest.estimators_])
    weighted_median = [sorted(zip(column, w))[int(np.searchsorted(np.cumsum([b for _, b in sorted(zip(column, w))]), w.sum() / 2))][0] for column in each.T]
    for method, answer in (("Average", each.mean(axis=0)), ("Sum", each.sum(axis=0)), ("Median", np.median(each, axis=0)),
                           ("Max", each.max(axis=0)), ("WeightedAverage", w @ each / w.sum()), ("WeightedSum", w @ each),
                           ("WeightedMedian", weighted_median)):
        write_answers("ForestNumber" + method, NAMES, DX.tolist(), ["y"], [[float(v)] for v in answer], "Diabetes")


def boosted_trees():
    boosted = GradientBoostingRegressor(n_estimators=4, max_depth=2, learning_rate=0.2, random_state=3).fit(DX, DY)
    models = [tree_model(t[0].tree_) for t in boosted.estimators_]
    start = float(boosted.init_.constant_[0][0])
    targets = f'<Targets><Target field="y" rescaleFactor="0.2" rescaleConstant="{number(start)}"/></Targets>'
    body = f'<MiningModel functionName="regression">{DIABETES_SCHEMA}{targets}{segmentation("sum", models)}</MiningModel>'
    fields = as_single(DIABETES_FIELDS[:4]) + DIABETES_FIELDS[4:]
    write("BoostedNumber", pmml(fields, body), NAMES, DX.tolist(), ["y"], [[float(v)] for v in boosted.predict(DX)], "Diabetes")

    # Boosted classes: one sum of trees per class, and a softmax over them at the end of a chain.
    boosted = GradientBoostingClassifier(n_estimators=2, max_depth=2, learning_rate=0.3, random_state=4).fit(X, Y)
    start = boosted._raw_predict_init(X[:1].astype(np.float32))[0]
    segments = []
    for k in range(3):
        models = [tree_model(t[k].tree_) for t in boosted.estimators_]
        targets = f'<Targets><Target rescaleFactor="0.3" rescaleConstant="{number(start[k])}"/></Targets>'
        output = f'<Output><OutputField name="f{k}" optype="continuous" dataType="double" feature="predictedValue" isFinalResult="false"/></Output>'
        segments.append(f'<MiningModel functionName="regression">{schema(NAMES)}{output}{targets}{segmentation("sum", models)}</MiningModel>')
    tables = "".join(f'<RegressionTable intercept="0" targetCategory="{c}"><NumericPredictor name="f{k}" coefficient="1"/></RegressionTable>' for k, c in enumerate(CLASSES))
    segments.append(f'<RegressionModel functionName="classification" normalizationMethod="softmax">{schema(["f0", "f1", "f2"], "species")}{tables}</RegressionModel>')
    body = f'<MiningModel functionName="classification">{IRIS_SCHEMA}{segmentation("modelChain", segments)}</MiningModel>'
    chances = boosted.predict_proba(X)
    write("BoostedClasses", pmml(as_single(IRIS_FIELDS), body), NAMES, X.tolist(), ["species"] + probabilities(), [[CLASSES[int(np.argmax(p))], *p] for p in chances], "Iris")


def logistic():
    model = LogisticRegression(max_iter=500).fit(X, Y)
    tables = "".join(f'<RegressionTable intercept="{number(model.intercept_[k])}" targetCategory="{c}">' +
                     "".join(f'<NumericPredictor name="{n}" coefficient="{number(b)}"/>' for n, b in zip(NAMES, model.coef_[k])) +
                     "</RegressionTable>" for k, c in enumerate(CLASSES))
    iris("LogisticSoftmax", f'<RegressionModel functionName="classification" normalizationMethod="softmax">{IRIS_SCHEMA}{tables}</RegressionModel>',
         model.predict(X), model.predict_proba(X))
    # Two classes, written as numbers.
    two = LogisticRegression(max_iter=500).fit(X, Y == 2)
    table = f'<RegressionTable intercept="{number(two.intercept_[0])}" targetCategory="1">' + "".join(
        f'<NumericPredictor name="{n}" coefficient="{number(b)}"/>' for n, b in zip(NAMES, two.coef_[0])) + "</RegressionTable>"
    fields = IRIS_FIELDS[:4] + [field("t", "categorical", "integer", values(["0", "1"]))]
    body = (f'<RegressionModel functionName="classification" normalizationMethod="logit">{schema(NAMES, "t")}{table}'
            '<RegressionTable intercept="0" targetCategory="0"/></RegressionModel>')
    chances = two.predict_proba(X)
    write("LogisticTwo", pmml(fields, body), NAMES, X.tolist(), ["t", "probability(0)", "probability(1)"],
          [[int(v), *p] for v, p in zip(two.predict(X), chances)], "Iris")


def networks():
    for activation, name in (("tanh", "tanh"), ("relu", "rectifier"), ("logistic", "logistic")):
        model = MLPRegressor((5, 3), activation=activation, random_state=5, max_iter=300, solver="lbfgs").fit(X[:, :3], X[:, 3])
        layers, former = "", [f"i{k}" for k in range(3)]
        inputs = "".join(f'<NeuralInput id="i{k}"><DerivedField optype="continuous" dataType="double"><FieldRef field="{NAMES[k]}"/></DerivedField></NeuralInput>' for k in range(3))
        for l, (w, b) in enumerate(zip(model.coefs_, model.intercepts_)):
            last = l == len(model.coefs_) - 1
            neurons = "".join(f'<Neuron id="n{l}_{j}" bias="{number(b[j])}">' + "".join(f'<Con from="{f}" weight="{number(w[k][j])}"/>' for k, f in enumerate(former)) + "</Neuron>"
                              for j in range(w.shape[1]))
            layers += f'<NeuralLayer{" activationFunction=" + chr(34) + "identity" + chr(34) if last else ""}>{neurons}</NeuralLayer>'
            former = [f"n{l}_{j}" for j in range(w.shape[1])]
        outputs = f'<NeuralOutputs><NeuralOutput outputNeuron="{former[0]}"><DerivedField optype="continuous" dataType="double"><FieldRef field="d"/></DerivedField></NeuralOutput></NeuralOutputs>'
        body = f'<NeuralNetwork functionName="regression" activationFunction="{name}">{schema(NAMES[:3], "d")}<NeuralInputs>{inputs}</NeuralInputs>{layers}{outputs}</NeuralNetwork>'
        write("Network" + name.capitalize(), pmml(IRIS_FIELDS[:4], body), NAMES[:3], X[:, :3].tolist(), ["d"], [[float(v)] for v in model.predict(X[:, :3])], "IrisThree")
    model = MLPClassifier((4,), activation="tanh", random_state=6, max_iter=200, solver="lbfgs").fit(X, Y)
    inputs = "".join(f'<NeuralInput id="{n}"><DerivedField optype="continuous" dataType="double"><FieldRef field="{n}"/></DerivedField></NeuralInput>' for n in NAMES)
    layers, former = "", NAMES
    for l, (w, b) in enumerate(zip(model.coefs_, model.intercepts_)):
        neurons = "".join(f'<Neuron id="n{l}_{j}" bias="{number(b[j])}">' + "".join(f'<Con from="{f}" weight="{number(w[k][j])}"/>' for k, f in enumerate(former)) + "</Neuron>" for j in range(w.shape[1]))
        layers += (f'<NeuralLayer activationFunction="identity" normalizationMethod="softmax">{neurons}</NeuralLayer>' if l == 1 else f"<NeuralLayer>{neurons}</NeuralLayer>")
        former = [f"n{l}_{j}" for j in range(w.shape[1])]
    outputs = "".join(f'<NeuralOutput outputNeuron="{former[k]}"><DerivedField optype="categorical" dataType="string"><NormDiscrete field="species" value="{c}"/></DerivedField></NeuralOutput>' for k, c in enumerate(CLASSES))
    iris("NetworkClasses", f'<NeuralNetwork functionName="classification" activationFunction="tanh">{IRIS_SCHEMA}<NeuralInputs>{inputs}</NeuralInputs>{layers}<NeuralOutputs>{outputs}</NeuralOutputs></NeuralNetwork>',
         model.predict(X), model.predict_proba(X))


KERNELS = {
    "linear": lambda m: "<LinearKernelType/>",
    "poly": lambda m: f'<PolynomialKernelType gamma="{number(m._gamma)}" coef0="{number(m.coef0)}" degree="{m.degree}"/>',
    "rbf": lambda m: f'<RadialBasisKernelType gamma="{number(m._gamma)}"/>',
    "sigmoid": lambda m: f'<SigmoidKernelType gamma="{number(m._gamma)}" coef0="{number(m.coef0)}"/>',
}


def vectors(support):
    instances = "".join(f'<VectorInstance id="v{i}"><Array type="real" n="{len(v)}">{" ".join(map(number, v))}</Array></VectorInstance>' for i, v in enumerate(support))
    fields = "".join(f'<FieldRef field="{n}"/>' for n in NAMES[:support.shape[1]])
    return f'<VectorDictionary><VectorFields>{fields}</VectorFields>{instances}</VectorDictionary>'


def machine(rows, coefficients, bias, attributes=""):
    return (f'<SupportVectorMachine{attributes}><SupportVectors>' + "".join(f'<SupportVector vectorId="v{i}"/>' for i in rows) +
            f'</SupportVectors><Coefficients absoluteValue="{number(bias)}">' + "".join(f'<Coefficient value="{number(c)}"/>' for c in coefficients) + "</Coefficients></SupportVectorMachine>")


def machines():
    for kernel, xml in KERNELS.items():
        gamma = 0.05 if kernel == "sigmoid" else "scale"
        svr = SVR(kernel=kernel, gamma=gamma, coef0=0.5, degree=2, C=2).fit(X[:, :3], X[:, 3])
        body = (f'<SupportVectorMachineModel functionName="regression">{schema(NAMES[:3], "d")}{xml(svr)}{vectors(svr.support_vectors_)}'
                f'{machine(range(len(svr.support_)), svr.dual_coef_[0], svr.intercept_[0])}</SupportVectorMachineModel>')
        write("MachineNumber" + kernel.capitalize(), pmml(IRIS_FIELDS[:4], body), NAMES[:3], X[:, :3].tolist(), ["d"], [[float(v)] for v in svr.predict(X[:, :3])], "IrisThree")
        svc = SVC(kernel=kernel, gamma=gamma, coef0=0.5, degree=2, C=1).fit(X, Y)
        start = np.concatenate([[0], np.cumsum(svc.n_support_)])
        duels, number_of = "", 0
        for i in range(3):
            for j in range(i + 1, 3):
                rows = list(range(start[i], start[i + 1])) + list(range(start[j], start[j + 1]))
                c = list(svc.dual_coef_[j - 1, start[i]:start[i + 1]]) + list(svc.dual_coef_[i, start[j]:start[j + 1]])
                # The decision is positive for class i; the smaller side is the target category.
                duels += machine(rows, c, svc.intercept_[number_of], f' targetCategory="{CLASSES[j]}" alternateTargetCategory="{CLASSES[i]}"')
                number_of += 1
        body = f'<SupportVectorMachineModel functionName="classification" classificationMethod="OneAgainstOne">{IRIS_SCHEMA}{xml(svc)}{vectors(svc.support_vectors_)}{duels}</SupportVectorMachineModel>'
        iris("MachineClasses" + kernel.capitalize(), body, svc.predict(X))


def bayes():
    model = GaussianNB().fit(X, Y)
    inputs = "".join(f'<BayesInput fieldName="{n}"><TargetValueStats>' + "".join(
        f'<TargetValueStat value="{c}"><GaussianDistribution mean="{number(model.theta_[k][f])}" variance="{number(model.var_[k][f])}"/></TargetValueStat>' for k, c in enumerate(CLASSES)) + "</TargetValueStats></BayesInput>"
        for f, n in enumerate(NAMES))
    priors = "".join(f'<TargetValueCount value="{c}" count="{number(model.class_count_[k])}"/>' for k, c in enumerate(CLASSES))
    iris("BayesNormal", f'<NaiveBayesModel functionName="classification" threshold="0">{IRIS_SCHEMA}<BayesInputs>{inputs}</BayesInputs><BayesOutput fieldName="species"><TargetValueCounts>{priors}</TargetValueCounts></BayesOutput></NaiveBayesModel>',
         model.predict(X), model.predict_proba(X))

    # Counts, after the definition: L(T) = count(T) prod count(value, T) / count(*, T), the threshold for zero counts,
    # missing values and values without counts left out.
    colours = {"red": (4, 1), "green": (0, 5), "blue": (6, 2)}
    sizes = {"S": (7, 3), "L": (3, 5)}
    prior, threshold = (10, 8), 0.001
    inputs = "".join(f'<BayesInput fieldName="{n}">' + "".join(
        f'<PairCounts value="{v}"><TargetValueCounts><TargetValueCount value="yes" count="{a}"/><TargetValueCount value="no" count="{b}"/></TargetValueCounts></PairCounts>' for v, (a, b) in table.items()) + "</BayesInput>"
        for n, table in (("colour", colours), ("size", sizes)))
    body = (f'<NaiveBayesModel functionName="classification" threshold="{threshold}">{schema(["colour", "size"], "buys")}<BayesInputs>{inputs}</BayesInputs>'
            f'<BayesOutput fieldName="buys"><TargetValueCounts><TargetValueCount value="yes" count="{prior[0]}"/><TargetValueCount value="no" count="{prior[1]}"/></TargetValueCounts></BayesOutput></NaiveBayesModel>')
    rows = [(c, s) for c in ("red", "green", "blue", MISSING) for s in ("S", "L", MISSING)]
    answers = []
    for colour, size in rows:
        like = list(map(float, prior))
        for value, table in ((colour, colours), (size, sizes)):
            if value is MISSING:
                continue
            for k in range(2):
                count = table[value][k]
                like[k] *= count / sum(t[k] for t in table.values()) if count else threshold
        p = [v / sum(like) for v in like]
        answers.append(["yes" if p[0] >= p[1] else "no", *p])
    fields = [field("colour", "categorical", "string", values(colours)), field("size", "categorical", "string", values(sizes)), field("buys", "categorical", "string", values(["yes", "no"]))]
    write("BayesCounts", pmml(fields, body), ["colour", "size"], rows, ["buys", "probability(yes)", "probability(no)"], answers)


def clusters():
    model = KMeans(4, n_init=3, random_state=7).fit(X)
    fields = "".join(f'<ClusteringField field="{n}"/>' for n in NAMES)
    centres = "".join(f'<Cluster id="k{k}"><Array type="real" n="4">{" ".join(map(number, c))}</Array></Cluster>' for k, c in enumerate(model.cluster_centers_))
    output = "".join(f'<OutputField name="distance{k}" feature="affinity" value="k{k}" dataType="double"/>' for k in range(4))
    body = f'<ClusteringModel functionName="clustering" modelClass="centerBased" numberOfClusters="4">{schema(NAMES)}<Output>{output}</Output><ComparisonMeasure kind="distance"><euclidean/></ComparisonMeasure>{fields}{centres}</ClusteringModel>'
    answers = [[f"k{k}", *d] for k, d in zip(model.predict(X), model.transform(X))]
    write("ClustersEuclidean", pmml(IRIS_FIELDS[:4], body), NAMES, X.tolist(), ["cluster"] + [f"distance{k}" for k in range(4)], answers, "Iris")

    # The other measures after their definitions, with weights and missing values.
    weights, missing = [1.0, 2.0, 0.5, 1.5], [1.0, 2.0, 1.0, 3.0]
    centres3 = [[5.0, 3.4, 1.5, 0.2], [5.9, 2.8, 4.3, 1.3], [6.6, 3.0, 5.6, 2.0]]
    rows = [[None if (i + k) % 7 == 0 and k != i % 4 else float(v) for k, v in enumerate(x)] for i, x in enumerate(X[::5])]
    measures = {"squaredEuclidean": lambda c, w, q: sum(wi * ci ** 2 for ci, wi in zip(c, w)) * q,
                "cityBlock": lambda c, w, q: sum(wi * ci for ci, wi in zip(c, w)) * q,
                "chebychev": lambda c, w, q: max(wi * ci for ci, wi in zip(c, w)) * q,
                "minkowski": lambda c, w, q: (sum(wi * ci ** 3 for ci, wi in zip(c, w)) * q) ** (1 / 3)}
    compares = {"absDiff": lambda x, y: abs(x - y), "gaussSim": lambda x, y: math.exp(-math.log(2) * (x - y) ** 2 / 0.7 ** 2)}
    for metric, compare in (("squaredEuclidean", "absDiff"), ("cityBlock", "absDiff"), ("chebychev", "absDiff"), ("minkowski", "absDiff"), ("cityBlock", "gaussSim")):
        similar = compare == "gaussSim"
        fields = "".join(f'<ClusteringField field="{n}" fieldWeight="{w}"' + (' similarityScale="0.7"' if similar else "") + "/>" for n, w in zip(NAMES, weights))
        parameter = ' p-parameter="3"' if metric == "minkowski" else ""
        clusters_xml = "".join(f'<Cluster id="k{k}"><Array type="real">{" ".join(map(number, c))}</Array></Cluster>' for k, c in enumerate(centres3))
        output = "".join(f'<OutputField name="m{k}" feature="affinity" value="k{k}" dataType="double"/>' for k in range(3))
        body = (f'<ClusteringModel functionName="clustering" modelClass="centerBased">{schema(NAMES)}<Output>{output}</Output>'
                f'<ComparisonMeasure kind="{"similarity" if similar else "distance"}" compareFunction="{compare}"><{metric}{parameter}/></ComparisonMeasure>{fields}'
                f'<MissingValueWeights><Array type="real">{" ".join(map(number, missing))}</Array></MissingValueWeights>{clusters_xml}</ClusteringModel>')
        answers = []
        for row in rows:
            there = [k for k, v in enumerate(row) if v is not None]
            d = [measures[metric]([compares[compare](row[k], c[k]) for k in there], [weights[k] for k in there], sum(missing) / sum(missing[k] for k in there)) for c in centres3]
            best = int(np.argmax(d)) if similar else int(np.argmin(d))
            answers.append([f"k{best}", *d])
        write("Clusters" + metric[0].upper() + metric[1:] + ("Similarity" if similar else ""), pmml(IRIS_FIELDS[:4], body), NAMES, rows, ["cluster"] + [f"m{k}" for k in range(3)], answers, "ClustersWeighted")

    # Binary measures, after their definitions.
    centres2 = [[1, 1, 0, 0, 1], [0, 1, 1, 0, 0], [0, 0, 0, 1, 1]]
    rows = [[(i >> k) & 1 for k in range(5)] for i in range(1, 32)]
    c, d = (1, 0, 0, 2), (1, 1, 2, 2)

    def counts(x, y):
        return [sum(1 for a, b in zip(x, y) if (a, b) == pair) for pair in ((0, 0), (0, 1), (1, 0), (1, 1))]
    binary = {"simpleMatching": lambda a: (a[3] + a[0]) / sum(a), "jaccard": lambda a: a[3] / (a[1] + a[2] + a[3]),
              "tanimoto": lambda a: (a[3] + a[0]) / (a[3] + 2 * (a[1] + a[2]) + a[0]),
              "binarySimilarity": lambda a: sum(u * v for u, v in zip(c, a)) / sum(u * v for u, v in zip(d, a))}
    parameters = "".join(f' c{i:02b}-parameter="{c[i]}" d{i:02b}-parameter="{d[i]}"' for i in range(4))
    names = [f"x{k}" for k in range(5)]
    for metric, formula in binary.items():
        fields = "".join(f'<ClusteringField field="{n}"/>' for n in names)
        clusters_xml = "".join(f'<Cluster id="k{k}"><Array type="real">{" ".join(map(str, v))}</Array></Cluster>' for k, v in enumerate(centres2))
        output = "".join(f'<OutputField name="m{k}" feature="affinity" value="k{k}" dataType="double"/>' for k in range(3))
        body = (f'<ClusteringModel functionName="clustering" modelClass="centerBased">{schema(names)}<Output>{output}</Output>'
                f'<ComparisonMeasure kind="similarity"><{metric}{parameters if metric == "binarySimilarity" else ""}/></ComparisonMeasure>{fields}{clusters_xml}</ClusteringModel>')
        answers = []
        for row in rows:
            m = [formula(counts(row, v)) for v in centres2]
            answers.append([f"k{int(np.argmax(m))}", *map(float, m)])
        write("Clusters" + metric[0].upper() + metric[1:], pmml([field(n) for n in names], body), names, rows, ["cluster", "m0", "m1", "m2"], answers, "ClustersBinary")


def neighbours():
    # Other values than those of training, so that no two distances are equal.
    queries = X[:60] * 1.013 + np.array([0.0171, 0.0233, 0.0311, 0.0457])
    train = X[::2]
    rows = "".join("<row>" + "".join(f"<{n}>{number(v)}</{n}>" for n, v in zip(NAMES, x)) + f"<t>{CLASSES[y]}</t></row>" for x, y in zip(train, Y[::2]))
    instance = "".join(f'<InstanceField field="{n}" column="{n}"/>' for n in NAMES)
    inputs = "".join(f'<KNNInput field="{n}"/>' for n in NAMES)
    for weights, method in (("uniform", "majorityVote"), (lambda d: 1 / (d + 0.01), "weightedMajorityVote")):
        model = KNeighborsClassifier(7, weights=weights).fit(train, Y[::2])
        body = (f'<NearestNeighborModel functionName="classification" numberOfNeighbors="7" categoricalScoringMethod="{method}" threshold="0.01">{IRIS_SCHEMA}'
                f'<TrainingInstances><InstanceFields>{instance}<InstanceField field="species" column="t"/></InstanceFields><InlineTable>{rows}</InlineTable></TrainingInstances>'
                f'<ComparisonMeasure kind="distance"><euclidean/></ComparisonMeasure><KNNInputs>{inputs}</KNNInputs></NearestNeighborModel>')
        chances = model.predict_proba(queries)
        write("Neighbours" + method[0].upper() + method[1:], pmml(IRIS_FIELDS, body), NAMES, queries.tolist(), ["species"] + probabilities(), [[CLASSES[int(np.argmax(p))], *p] for p in chances], "NeighboursIris")
    rows = "".join("<row>" + "".join(f"<{n}>{number(v)}</{n}>" for n, v in zip(NAMES, x)) + f"<t>{number(y)}</t></row>" for x, y in zip(DX[:80], DY[:80]))
    queries = DX[80:140] * 1.0071 + 0.0137
    for weights, method in (("uniform", "average"), (lambda d: 1 / (d + 0.001), "weightedAverage"), (None, "median")):
        model = KNeighborsRegressor(5, weights=weights or "uniform", metric="manhattan").fit(DX[:80], DY[:80])
        # Where distances are equal up to rounding, no neighbour is the nearer one.
        queries = queries[np.diff(model.kneighbors(queries, 7)[0], axis=1).min(axis=1) > 1e-9]
        answer = model.predict(queries) if weights else [np.median(DY[:80][k]) for k in model.kneighbors(queries)[1]]
        nearest = model.kneighbors(queries)[1]
        output = "".join(f'<OutputField name="n{r}" feature="entityId" rank="{r}" dataType="string"/>' for r in (1, 2))
        body = (f'<NearestNeighborModel functionName="regression" numberOfNeighbors="5" continuousScoringMethod="{method}">{DIABETES_SCHEMA}<Output>{output}</Output>'
                f'<TrainingInstances><InstanceFields>{instance}<InstanceField field="y" column="t"/></InstanceFields><InlineTable>{rows}</InlineTable></TrainingInstances>'
                f'<ComparisonMeasure kind="distance"><cityBlock/></ComparisonMeasure><KNNInputs>{inputs}</KNNInputs></NearestNeighborModel>')
        write("Neighbours" + method[0].upper() + method[1:], pmml(DIABETES_FIELDS, body), NAMES, queries.tolist(), ["y", "n1", "n2"],
              [[float(v), int(k[0]) + 1, int(k[1]) + 1] for v, k in zip(answer, nearest)], "NeighboursDiabetes")


# ---- Definitions written out ----

LINKS = {
    "identity": lambda e: e,
    "logit": lambda e: 1 / (1 + math.exp(-e)),
    "probit": lambda e: float(stats.norm.cdf(e)),
    "cloglog": lambda e: 1 - math.exp(-math.exp(e)),
    "loglog": lambda e: math.exp(-math.exp(-e)),
    "cauchit": lambda e: 0.5 + math.atan(e) / math.pi,
    "log": math.exp,
    "logc": lambda e: 1 - math.exp(e),
    "negbin": lambda e: 1 / (2.5 * (math.exp(-e) - 1)),
    "oddspower": lambda e: 1 / (1 + (1 + 0.4 * e) ** (-1 / 0.4)),
    "power": lambda e: e ** (1 / 0.4),
}


def regressions():
    rows = [[x / 4, g] for x in range(-9, 10) for g in ("u", "v", "w")]
    fields = [field("x"), field("g", "categorical", "string", values("uvw")), field("y")]
    groups = {"u": 0.0, "v": 0.3, "w": -0.45}

    def eta(x, g):
        return 0.2 + 0.5 * x - 0.03 * x ** 3 + groups[g] + (0.25 * x if g == "w" else 0)
    table = ('<RegressionTable intercept="0.2"{0}><NumericPredictor name="x" coefficient="0.5"/><NumericPredictor name="x" exponent="3" coefficient="-0.03"/>'
             '<CategoricalPredictor name="g" value="v" coefficient="0.3"/><CategoricalPredictor name="g" value="w" coefficient="-0.45"/>'
             '<PredictorTerm coefficient="0.25"><FieldRef field="x"/><FieldRef field="isW"/></PredictorTerm></RegressionTable>')
    local = '<LocalTransformations><DerivedField name="isW" optype="continuous" dataType="double"><NormDiscrete field="g" value="w"/></DerivedField></LocalTransformations>'
    exp = {"none": LINKS["identity"], "softmax": LINKS["logit"], "exp": math.exp, **{k: LINKS[k] for k in ("logit", "probit", "cloglog", "loglog", "cauchit")}}
    missing = [[MISSING, "v"], [1.5, MISSING]]
    for norm, inverse in exp.items():
        body = f'<RegressionModel functionName="regression" normalizationMethod="{norm}">{schema(["x", "g"], "y")}{local}{table.format("")}</RegressionModel>'
        answers = [[inverse(eta(x, g))] for x, g in rows]
        # A missing number leaves no sum; a missing category adds nothing, but the product of isW is missing.
        write("Regression" + norm.capitalize(), pmml(fields, body), ["x", "g"], rows + missing[:1], ["y"], answers + [[None]], "Regression")
    # Classes: each but the last by its own table, the last what they leave; ordinal ones by differences.
    plain = ('<RegressionTable intercept="{0}" targetCategory="{1}"><NumericPredictor name="x" coefficient="{2}"/></RegressionTable>')
    xs = [[k / 5] for k in range(-10, 11)]
    for norm in ("none", "simplemax", "logit", "probit", "cloglog", "loglog", "cauchit"):
        for kind in ("categorical", "ordinal"):
            if kind == "ordinal" and norm in ("none", "simplemax"):
                continue
            two = kind == "categorical" and norm != "simplemax"
            labels = ["lo", "hi"] if two else ["lo", "mid", "hi"]
            lines = [(0.3, 0.1), (0, 0)] if two else [(-0.5, 0.8), (0.9, 0.8), (0, 0)]
            if norm == "simplemax":
                lines = [(3.0, 0.2), (2.5, -0.4), (1.5, 0.1)]
            tables = "".join(plain.format(a, c, b) for c, (a, b) in zip(labels, lines))
            body = f'<RegressionModel functionName="classification" normalizationMethod="{norm}">{schema(["x"], "t")}{tables}</RegressionModel>'
            answers = []
            for (x,) in xs:
                y = [a + b * x for a, b in lines]
                if norm == "simplemax":
                    p = [v / sum(y) for v in y]
                else:
                    f = [LINKS["identity" if norm == "none" else norm](v) for v in y[:-1]]
                    p = f + [1 - sum(f)] if kind == "categorical" else [b - a for a, b in zip([0] + f, f + [1])]
                answers.append([labels[int(np.argmax(p))], *p])
            write("Classes" + norm.capitalize() + kind.capitalize(), pmml([field("x"), field("t", kind, "string", values(labels))], body), ["x"], xs, ["t"] + probabilities(labels), answers, "Classes")


def general_regressions():
    rows = [[x / 5, g, o] for x in range(0, 8) for g in ("u", "v", "w") for o in (0.05, 0.1)]
    fields = [field("x"), field("g", "categorical", "string", values("uvw")), field("o"), field("y")]
    head = ('<ParameterList><Parameter name="p0"/><Parameter name="p1"/><Parameter name="p2"/><Parameter name="p3"/><Parameter name="p4"/></ParameterList>'
            '<FactorList><Predictor name="g"/></FactorList><CovariateList><Predictor name="x"/></CovariateList>'
            '<PPMatrix><PPCell value="1" predictorName="x" parameterName="p1"/><PPCell value="2" predictorName="x" parameterName="p2"/>'
            '<PPCell value="v" predictorName="g" parameterName="p3"/><PPCell value="w" predictorName="g" parameterName="p4"/><PPCell value="1" predictorName="x" parameterName="p4"/></PPMatrix>')

    def eta(x, g, b):
        return b[0] + b[1] * x + b[2] * x ** 2 + (b[3] if g == "v" else 0) + (b[4] * x if g == "w" else 0)
    for link, inverse in LINKS.items():
        if link == "cauchit":
            continue
        sign = -1 if link in ("logc", "negbin") else 1
        beta = [sign * v for v in (0.3, 0.2, 0.05, 0.1, 0.15)]
        offset = sign * 0.07
        cells = "".join(f'<PCell parameterName="p{k}" beta="{number(b)}"/>' for k, b in enumerate(beta))
        parameter = ' linkParameter="0.4"' if link in ("oddspower", "power") else ' distParameter="2.5" distribution="negbin"' if link == "negbin" else ""
        body = (f'<GeneralRegressionModel functionName="regression" modelType="generalizedLinear" linkFunction="{link}"{parameter} offsetValue="{offset}" trialsValue="3">'
                f'{schema(["x", "g"], "y")}{head}<ParamMatrix>{cells}</ParamMatrix></GeneralRegressionModel>')
        write("General" + link.capitalize(), pmml(fields, body), ["x", "g"], [r[:2] for r in rows], ["y"], [[3 * inverse(eta(x, g, beta) + offset)] for x, g, o in rows], "General")
    beta = [0.3, 0.2, 0.05, 0.1, 0.15]
    cells = "".join(f'<PCell parameterName="p{k}" beta="{number(b)}"/>' for k, b in enumerate(beta))
    body = f'<GeneralRegressionModel functionName="regression" modelType="generalLinear" offsetVariable="o">{schema(["x", "g", "o"], "y")}{head}<ParamMatrix>{cells}</ParamMatrix></GeneralRegressionModel>'
    write("GeneralLinear", pmml(fields, body), ["x", "g", "o"], rows + [[MISSING, "u", 0.1]], ["y"], [[eta(x, g, beta) + o] for x, g, o in rows] + [[None]])
    # Contrasts: the design's columns of the factor come from a matrix.
    contrast = [[1, 0], [0, 1], [-1, -1]]
    head2 = ('<ParameterList><Parameter name="p0"/><Parameter name="p1"/><Parameter name="p2"/></ParameterList><FactorList><Predictor name="g" contrastMatrixType="Sum">'
             '<Categories><Category value="u"/><Category value="v"/><Category value="w"/></Categories><Matrix nbRows="3" nbCols="2">' +
             "".join(f'<Array type="real" n="2">{" ".join(map(str, r))}</Array>' for r in contrast) + '</Matrix></Predictor></FactorList><CovariateList/>'
             '<PPMatrix><PPCell value="u" predictorName="g" parameterName="p1"/><PPCell value="v" predictorName="g" parameterName="p2"/></PPMatrix>')
    cells = "".join(f'<PCell parameterName="p{k}" beta="{b}"/>' for k, b in enumerate((1.5, 0.4, -0.7)))
    body = f'<GeneralRegressionModel functionName="regression" modelType="regression">{schema(["g"], "y")}{head2}<ParamMatrix>{cells}</ParamMatrix></GeneralRegressionModel>'
    write("GeneralContrasts", pmml(fields, body), ["g"], [["u"], ["v"], ["w"]], ["y"], [[1.5 + a * 0.4 + b * -0.7] for a, b in contrast])
    # Classes in order: cumulative probabilities F(r_1), F(r_2), 1, with thresholds by class and a common slope.
    xs = [[k / 4] for k in range(-12, 13)]
    labels = ["lo", "mid", "hi"]
    for link in ("logit", "probit", "cloglog", "loglog", "cauchit"):
        body = (f'<GeneralRegressionModel functionName="classification" modelType="ordinalMultinomial" cumulativeLink="{link}">{schema(["x"], "t")}'
                '<ParameterList><Parameter name="p0"/><Parameter name="p1"/></ParameterList><FactorList/><CovariateList><Predictor name="x"/></CovariateList><PPMatrix><PPCell value="1" predictorName="x" parameterName="p1"/></PPMatrix>'
                '<ParamMatrix><PCell targetCategory="lo" parameterName="p0" beta="-0.6"/><PCell targetCategory="mid" parameterName="p0" beta="0.8"/><PCell parameterName="p1" beta="-0.9"/></ParamMatrix></GeneralRegressionModel>')
        answers = []
        for (x,) in xs:
            a, b = (LINKS[link](t - 0.9 * x) for t in (-0.6, 0.8))
            p = [a, b - a, 1 - b]
            answers.append([labels[int(np.argmax(p))], *p])
        write("GeneralOrdinal" + link.capitalize(), pmml([field("x"), field("t", "ordinal", "string", values(labels))], body), ["x"], xs, ["t"] + probabilities(labels), answers, "GeneralOrdinal")
    # Two classes by a generalised linear model.
    body = (f'<GeneralRegressionModel functionName="classification" modelType="generalizedLinear" linkFunction="probit" targetReferenceCategory="no">{schema(["x"], "t")}'
            '<ParameterList><Parameter name="p0"/><Parameter name="p1"/></ParameterList><FactorList/><CovariateList><Predictor name="x"/></CovariateList><PPMatrix><PPCell value="1" predictorName="x" parameterName="p1"/></PPMatrix>'
            '<ParamMatrix><PCell targetCategory="yes" parameterName="p0" beta="0.2"/><PCell targetCategory="yes" parameterName="p1" beta="0.7"/></ParamMatrix></GeneralRegressionModel>')
    answers = []
    for (x,) in xs:
        p = LINKS["probit"](0.2 + 0.7 * x)
        answers.append(["yes" if p > 0.5 else "no", 1 - p, p])
    write("GeneralTwo", pmml([field("x"), field("t", "categorical", "string", values(["no", "yes"]))], body), ["x"], xs, ["t"] + probabilities(["no", "yes"]), answers, "GeneralOrdinal")


def activations():
    xs = [[k / 3] for k in range(-9, 10) if k]
    functions = {"threshold": lambda z: 1.0 if z > 0.25 else 0.0, "logistic": LINKS["logit"], "tanh": math.tanh, "identity": lambda z: z, "exponential": math.exp,
                 "reciprocal": lambda z: 1 / z, "square": lambda z: z * z, "Gauss": lambda z: math.exp(-z * z), "sine": math.sin, "cosine": math.cos,
                 "Elliott": lambda z: z / (1 + abs(z)), "arctan": lambda z: 2 * math.atan(z) / math.pi, "rectifier": lambda z: max(0.0, z)}
    for name, function in functions.items():
        body = (f'<NeuralNetwork functionName="regression" activationFunction="{name}" threshold="0.25">{schema(["x"], "y")}<NeuralInputs><NeuralInput id="i"><DerivedField optype="continuous" dataType="double"><FieldRef field="x"/></DerivedField></NeuralInput></NeuralInputs>'
                '<NeuralLayer><Neuron id="n" bias="0.1"><Con from="i" weight="0.7"/></Neuron></NeuralLayer>'
                '<NeuralOutputs><NeuralOutput outputNeuron="n"><DerivedField optype="continuous" dataType="double"><NormContinuous field="y"><LinearNorm orig="10" norm="0"/><LinearNorm orig="30" norm="1"/></NormContinuous></DerivedField></NeuralOutput></NeuralOutputs></NeuralNetwork>')
        write("Activation" + name.capitalize(), pmml([field("x"), field("y")], body), ["x"], xs, ["y"], [[10 + 20 * function(0.1 + 0.7 * x)] for (x,) in xs], "Activation")
    rows = [[x / 4, z / 3] for x in range(-4, 5) for z in range(-3, 4)]
    centres = [(0.1, 0.2, 0.9, 1.1), (-0.5, 0.4, 0.6, 1.0)]
    neurons = "".join(f'<Neuron id="n{k}" width="{w}" altitude="{a}"><Con from="x" weight="{u}"/><Con from="z" weight="{v}"/></Neuron>' for k, (u, v, w, a) in enumerate(centres))
    inputs = "".join(f'<NeuralInput id="{n}"><DerivedField optype="continuous" dataType="double"><FieldRef field="{n}"/></DerivedField></NeuralInput>' for n in "xz")
    body = (f'<NeuralNetwork functionName="regression" activationFunction="radialBasis" width="1">{schema(["x", "z"], "y")}<NeuralInputs>{inputs}</NeuralInputs><NeuralLayer>{neurons}</NeuralLayer>'
            '<NeuralLayer activationFunction="identity"><Neuron id="o" bias="0.5"><Con from="n0" weight="2"/><Con from="n1" weight="-1"/></Neuron></NeuralLayer>'
            '<NeuralOutputs><NeuralOutput outputNeuron="o"><DerivedField optype="continuous" dataType="double"><FieldRef field="y"/></DerivedField></NeuralOutput></NeuralOutputs></NeuralNetwork>')
    radial = [[math.exp(2 * math.log(a) - ((u - x) ** 2 + (v - z) ** 2) / (2 * w * w)) for u, v, w, a in centres] for x, z in rows]
    write("ActivationRadialBasis", pmml([field("x"), field("z"), field("y")], body), ["x", "z"], rows, ["y"], [[0.5 + 2 * a - b] for a, b in radial])


def trees():
    xs = [[x, z, c] for x in (MISSING, 1.0, 4.0, 9.0) for z in (MISSING, 2.0, 8.0) for c in (MISSING, "u", "v", "w", "t")]
    fields = [field("x"), field("z"), field("c", "categorical", "string"), field("t", "categorical", "string", values(["A", "B"]))]

    def node(name, score, a, b, predicate, inside="", extra=""):
        return (f'<Node id="{name}" score="{score}" recordCount="{a + b}"{extra}>{predicate}<ScoreDistribution value="A" recordCount="{a}"/>'
                f'<ScoreDistribution value="B" recordCount="{b}"/>{inside}</Node>')

    def less(f, v):
        return f'<SimplePredicate field="{f}" operator="lessThan" value="{v}"/>'

    def more(f, v):
        return f'<SimplePredicate field="{f}" operator="greaterOrEqual" value="{v}"/>'
    in_set = '<SimpleSetPredicate field="c" booleanOperator="isIn"><Array n="2" type="string">u "v"</Array></SimpleSetPredicate>'
    not_in = '<SimpleSetPredicate field="c" booleanOperator="isIn"><Array n="1" type="string">w</Array></SimpleSetPredicate>'
    # The same tree as data: (name, score, A, B, test, default child, children); a test gives True, False or None.

    def cmp(k, f):
        return lambda row: None if row[k] is MISSING else f(row[k])
    tree = ("r", "A", 60, 40, lambda row: True, "m", [
        ("l", "A", 50, 10, cmp(0, lambda v: v < 5), "ll", [
            ("ll", "A", 40, 2, cmp(1, lambda v: v < 5), None, []),
            ("lr", "B", 8, 10, cmp(1, lambda v: v >= 5), None, [])]),
        ("m", "B", 10, 30, cmp(0, lambda v: v >= 5), "mu", [
            ("mu", "A", 6, 5, cmp(2, lambda v: v in "uv"), None, []),
            ("mw", "B", 4, 25, cmp(2, lambda v: v == "w"), None, [])])])

    def shares(n):
        return [n[2] / (n[2] + n[3]), n[3] / (n[2] + n[3])]

    def single(n, row, strategy, last):
        children = n[6]
        if not children:
            return n[1], shares(n), n[0]
        for child in children:
            outcome = child[4](row)
            if outcome:
                return single(child, row, strategy, last)
            if outcome is None and strategy != "none":
                if strategy == "lastPrediction":
                    return n[1], shares(n), n[0]
                if strategy == "nullPrediction":
                    return None
                chosen = next(c for c in children if c[0] == n[5])
                return single(chosen, row, strategy, last)
        return (n[1], shares(n), n[0]) if last else None

    def together(n, row, weigh):
        children = n[6]
        if not children:
            return shares(n) if weigh else [n[2], n[3]]
        for child in children:
            outcome = child[4](row)
            if outcome:
                return together(child, row, weigh)
            if outcome is None:
                open_ = [c for c in children if c[4](row) is not False]
                total = sum(c[2] + c[3] for c in open_)
                parts = [together(c, row, weigh) for c in open_]
                return [sum(((c[2] + c[3]) / total if weigh else 1) * p[k] for c, p in zip(open_, parts) if p) for k in range(2)]
        return None

    body_nodes = node("r", "A", 60, 40, "<True/>",
                      node("l", "A", 50, 10, less("x", 5), node("ll", "A", 40, 2, less("z", 5)) + node("lr", "B", 8, 10, more("z", 5)), ' defaultChild="ll"') +
                      node("m", "B", 10, 30, more("x", 5), node("mu", "A", 6, 5, in_set) + node("mw", "B", 4, 25, not_in), ' defaultChild="mu"'), ' defaultChild="m"')
    for strategy in ("none", "lastPrediction", "nullPrediction", "defaultChild", "weightedConfidence", "aggregateNodes"):
        for last in (False, True):
            grouped = strategy in ("weightedConfidence", "aggregateNodes")
            if grouped and last:
                continue
            output = '<Output><OutputField name="node" feature="entityId" dataType="string"/></Output>' if not grouped else ""
            body = (f'<TreeModel functionName="classification" missingValueStrategy="{strategy}" noTrueChildStrategy="{"returnLastPrediction" if last else "returnNullPrediction"}">'
                    f'{schema(["x", "z", "c"], "t")}{output}{body_nodes}</TreeModel>')
            answers = []
            for row in xs:
                if grouped:
                    found = together(tree, row, strategy == "weightedConfidence")
                    p = [v / sum(found) for v in found] if found and sum(found) else None
                    answers.append(["A" if p[0] >= p[1] else "B", *p] if p else [None] * 3)
                else:
                    found = single(tree, row, strategy, last)
                    answers.append([found[0], *found[1], found[2]] if found else [None] * 4)
            name = "Tree" + strategy[0].upper() + strategy[1:] + ("Last" if last else "")
            write(name, pmml(fields, body), ["x", "z", "c"], xs, ["t"] + probabilities("AB") + ([] if grouped else ["node"]), answers, "Tree")

    # Each predicate as the first of two children; the second is True.
    simple = {f"{o}": f'<SimplePredicate field="x" operator="{o}"' + ('' if "issing" in o else ' value="4"') + "/>"
              for o in ("equal", "notEqual", "lessThan", "lessOrEqual", "greaterThan", "greaterOrEqual", "isMissing", "isNotMissing")}
    tests = {"equal": lambda v: v == 4, "notEqual": lambda v: v != 4, "lessThan": lambda v: v < 4, "lessOrEqual": lambda v: v <= 4, "greaterThan": lambda v: v > 4, "greaterOrEqual": lambda v: v >= 4}
    functions = {o: cmp(0, f) for o, f in tests.items()}
    functions["isMissing"] = lambda row: row[0] is MISSING
    functions["isNotMissing"] = lambda row: row[0] is not MISSING
    for o, inside in (("isIn", lambda v: v in "uv"), ("isNotIn", lambda v: v not in "uv")):
        simple[o] = f'<SimpleSetPredicate field="c" booleanOperator="{o}"><Array n="2" type="string">u v</Array></SimpleSetPredicate>'
        functions[o] = cmp(2, inside)
    simple["True"], functions["True"] = "<True/>", lambda row: True
    simple["False"], functions["False"] = "<False/>", lambda row: False
    parts = [("lessThan", "isIn"), ("isIn", "greaterOrEqual", "isMissing")]

    def compound(kind, outcomes):
        if kind == "surrogate":
            return next((o for o in outcomes if o is not None), None)
        if kind == "and":
            return False if False in outcomes else None if None in outcomes else True
        if kind == "or":
            return True if True in outcomes else None if None in outcomes else False
        return None if None in outcomes else sum(outcomes) % 2 == 1
    for kind in ("and", "or", "xor", "surrogate"):
        for i, names in enumerate(parts):
            simple[kind + str(i)] = f'<CompoundPredicate booleanOperator="{kind}">' + "".join(simple[n] for n in names) + "</CompoundPredicate>"
            functions[kind + str(i)] = lambda row, kind=kind, names=names: compound(kind, [functions[n](row) for n in names])
    # One regression tree per predicate: a chain whose segments give 1 where true, 2 where unknown, 0 where false.
    segments, outputs = "", ""
    for i, (name, xml) in enumerate(simple.items()):
        segments += (f'<Segment id="{name}"><True/><TreeModel functionName="regression" missingValueStrategy="lastPrediction">{schema(["x", "c"])}'
                     f'<Node score="2"><True/><Node score="1">{xml}</Node><Node score="0"><True/></Node></Node></TreeModel></Segment>')
        outputs += f'<OutputField name="{name}" feature="predictedValue" segmentId="{name}" dataType="double"/>'
    body = (f'<MiningModel functionName="regression">{schema(["x", "c"], "y")}<Output>{outputs}</Output><Segmentation multipleModelMethod="selectAll">{segments}</Segmentation></MiningModel>')
    rows = [[x, c] for x in (MISSING, 1.0, 4.0, 9.0) for c in (MISSING, "u", "w")]
    write("Predicates", pmml(fields[:1] + fields[2:3] + [field("y")], body), ["x", "c"], rows, list(simple),
          [[{True: 1.0, False: 0.0, None: 2.0}[functions[n]([x, MISSING, c])] for n in simple] for x, c in rows])


def transformations():
    """Expressions and built-in functions, each an output of one model, with Python's own functions beside."""
    nan = float("nan")
    fields = [field("x"), field("z"), field("s", "categorical", "string"), field("day", "ordinal", "date"), field("y")]
    rows = [[x, z, s, d] for (x, z) in ((0.3, 0.7), (0.9, -0.2), (0.05, 2.5), (0.75, MISSING), (MISSING, MISSING)) for s, d in (("Abc def", "2004-02-29"), (" x-1 ", "1969-12-31"), (MISSING, MISSING))]

    def c(v, kind=None):
        return f'<Constant{" dataType=" + chr(34) + kind + chr(34) if kind else ""}>{v}</Constant>'

    def ref(name):
        return f'<FieldRef field="{name}"/>'

    def call(function, *arguments, more=""):
        return f'<Apply function="{function}"{more}>{"".join(arguments)}</Apply>'
    x, z, s, day = ref("x"), ref("z"), ref("s"), ref("day")
    columns = []

    def add(name, data, xml, function, uses="xzsd"):
        columns.append((name, data, xml, function, uses))
    one = {"ln": math.log, "log10": math.log10, "ln1p": math.log1p, "sqrt": math.sqrt, "abs": abs, "exp": math.exp, "expm1": math.expm1, "floor": math.floor,
           "ceil": math.ceil, "sin": math.sin, "asin": math.asin, "sinh": math.sinh, "cos": math.cos, "acos": math.acos, "cosh": math.cosh, "tan": math.tan,
           "atan": math.atan, "tanh": math.tanh, "erf": math.erf, "stdNormalCDF": lambda v: float(stats.norm.cdf(v)), "stdNormalPDF": lambda v: float(stats.norm.pdf(v)),
           "stdNormalIDF": lambda v: float(stats.norm.ppf(v)), "round": lambda v: math.floor(v + 0.5), "rint": round}
    for name, f in one.items():
        add(name, "double", call(name, x), lambda r, f=f: float(f(r[0])), "x")
    two = {"+": lambda a, b: a + b, "-": lambda a, b: a - b, "*": lambda a, b: a * b, "/": lambda a, b: a / b, "pow": math.pow, "hypot": math.hypot, "atan2": math.atan2,
           "threshold": lambda a, b: float(a > b), "modulo": lambda a, b: a - b * math.floor(a / b)}
    names = {"+": "plus", "-": "minus", "*": "times", "/": "over"}
    for name, f in two.items():
        add(names.get(name, name), "double", call(name, x, z), lambda r, f=f: f(r[0], r[1]), "xz")
    add("overZero", "double", call("/", x, c("0"), more=' defaultValue="-7"'), lambda r: -7.0, "")
    add("mapped", "double", call("+", x, z, more=' mapMissingTo="-1"'), lambda r: -1.0 if r[0] is MISSING or r[1] is MISSING else r[0] + r[1], "")
    add("refMapped", "double", '<FieldRef field="z" mapMissingTo="5"/>', lambda r: 5.0 if r[1] is MISSING else r[1], "")
    for name, f in (("normalCDF", stats.norm.cdf), ("normalPDF", stats.norm.pdf), ("normalIDF", stats.norm.ppf)):
        add(name, "double", call(name, x, c("0.4"), c("1.7")), lambda r, f=f: float(f(r[0], 0.4, 1.7)), "x")
    many = {"min": min, "max": max, "sum": sum, "avg": lambda v: sum(v) / len(v), "product": lambda v: float(np.prod(v)), "median": lambda v: float(np.median(v))}
    for name, f in many.items():
        add(name, "double", call(name, x, z, call("*", x, x)), lambda r, f=f: f([v for v in (r[0], r[1], None if r[0] is MISSING else r[0] * r[0]) if v is not MISSING]) if (r[0], r[1]) != (MISSING, MISSING) else None, "")
    order = {"equal": lambda a, b: a == b, "notEqual": lambda a, b: a != b, "lessThan": lambda a, b: a < b, "lessOrEqual": lambda a, b: a <= b, "greaterThan": lambda a, b: a > b, "greaterOrEqual": lambda a, b: a >= b}
    for name, f in order.items():
        add(name, "double", call("if", call(name, x, c("0.75")), c("1"), c("0")), lambda r, f=f: float(f(r[0], 0.75)), "x")
        add(name + "Text", "double", call("if", call(name, s, c("Abc def", "string")), c("1"), c("0")), lambda r, f=f: float(f(r[2], "Abc def")), "s")

    def logic(kind, a, b):
        if kind == "and":
            return False if False in (a, b) else None if None in (a, b) else True
        return True if True in (a, b) else None if None in (a, b) else False
    for kind in ("and", "or"):
        add(kind, "double", call("if", call(kind, call("greaterThan", x, c("0.5")), call("greaterThan", z, c("0.5"))), c("1"), c("0")),
            lambda r, kind=kind: {True: 1.0, False: 0.0, None: None}[logic(kind, None if r[0] is MISSING else r[0] > 0.5, None if r[1] is MISSING else r[1] > 0.5)], "")
    add("not", "double", call("if", call("not", call("lessThan", x, c("0.5"))), x, c("-1")), lambda r: r[0] if not r[0] < 0.5 else -1.0, "x")
    add("ifWithoutElse", "double", call("if", call("lessThan", x, c("0.5")), x), lambda r: r[0] if r[0] < 0.5 else None, "x")
    for name, value in (("isMissing", True), ("isNotMissing", False), ("isNotValid", True), ("isValid", False)):
        add(name, "double", call("if", call(name, z), c("1"), c("0")), lambda r, value=value: float((r[1] is MISSING) == value), "")
    add("isIn", "double", call("if", call("isIn", x, c("0.3"), c("0.9")), c("1"), c("0")), lambda r: float(r[0] in (0.3, 0.9)), "x")
    add("isNotIn", "double", call("if", call("isNotIn", s, c("Abc def", "string"), c("q", "string")), c("1"), c("0")), lambda r: float(r[2] != "Abc def"), "s")
    texts = {"uppercase": str.upper, "lowercase": str.lower, "trimBlanks": str.strip}
    for name, f in texts.items():
        add(name, "string", call(name, s), lambda r, f=f: f(r[2]), "s")
    add("stringLength", "integer", call("stringLength", s), lambda r: float(len(r[2])), "s")
    add("substring", "string", call("substring", s, c("2"), c("3")), lambda r: r[2][1:4], "s")
    add("concat", "string", call("concat", s, c("/", "string"), x), lambda r: r[2] + "/" + repr(r[0]), "sx")
    add("matches", "double", call("if", call("matches", s, c("[a-z]-[0-9]", "string")), c("1"), c("0")), lambda r: float("x-1" in r[2]), "s")
    add("replace", "string", call("replace", s, c("([a-z])", "string"), c("<![CDATA[<$1>]]>", "string")), lambda r: __import__("re").sub("([a-z])", r"<\1>", r[2]), "s")
    add("formatNumber", "string", call("formatNumber", x, c("v=%6.2f;", "string")), lambda r: "v=%6.2f;" % r[0], "x")
    add("formatDatetime", "string", call("formatDatetime", day, c("%d.%m.%y (%j)", "string")), lambda r: __import__("datetime").date.fromisoformat(r[3]).strftime("%d.%m.%y (%j)"), "d")

    def days(r):
        import datetime
        return (datetime.date.fromisoformat(r[3]) - datetime.date(1960, 1, 1)).days
    add("dateDaysSinceYear", "double", call("dateDaysSinceYear", day, c("1960")), lambda r: float(days(r)), "d")
    add("dateSecondsSinceYear", "double", call("dateSecondsSinceYear", day, c("1960")), lambda r: 86400.0 * days(r), "d")
    add("dateSecondsSinceMidnight", "double", call("dateSecondsSinceMidnight", c("13:05:09", "time")), lambda r: 13 * 3600 + 5 * 60 + 9.0, "")
    points = [(0.0, -1.0), (0.5, 2.0), (0.8, 0.0)]
    norm = "".join(f'<LinearNorm orig="{a}" norm="{b}"/>' for a, b in points)
    inside = {"asIs": lambda v: points[1][1] + (v - 0.5) / (0.8 - 0.5) * (0.0 - 2.0), "asMissingValues": lambda v: None, "asExtremeValues": lambda v: 0.0}
    for outliers, beyond in inside.items():
        add("norm" + outliers, "double", f'<NormContinuous field="x" outliers="{outliers}" mapMissingTo="9">{norm}</NormContinuous>',
            lambda r, beyond=beyond: 9.0 if r[0] is MISSING else (-1 + r[0] / 0.5 * 3 if r[0] <= 0.5 else (2.0 + (r[0] - 0.5) / (0.8 - 0.5) * (0.0 - 2.0) if r[0] <= 0.8 else (9.0 if outliers_of(beyond, r) is None else beyond(r[0])))), "")
    add("indicator", "double", '<NormDiscrete field="s" value="Abc def" mapMissingTo="0.5"/>', lambda r: 0.5 if r[2] is MISSING else float(r[2] == "Abc def"), "")
    bins = ('<DiscretizeBin binValue="low"><Interval closure="openOpen" rightMargin="0.3"/></DiscretizeBin><DiscretizeBin binValue="mid"><Interval closure="closedOpen" leftMargin="0.3" rightMargin="0.75"/></DiscretizeBin>'
            '<DiscretizeBin binValue="point"><Interval closure="closedClosed" leftMargin="0.75" rightMargin="0.75"/></DiscretizeBin>')
    add("discretize", "string", f'<Discretize field="x" defaultValue="rest" mapMissingTo="none" dataType="string">{bins}</Discretize>',
        lambda r: "none" if r[0] is MISSING else "low" if r[0] < 0.3 else "mid" if r[0] < 0.75 else "point" if r[0] == 0.75 else "rest", "")
    table = "".join(f"<row><k>{a}</k><m>{b}</m><out>{v}</out></row>" for a, b, v in (("Abc def", "0.3", "11"), ("Abc def", "0.9", "12"), ("other", "0.3", "13")))
    add("mapValues", "double", f'<MapValues outputColumn="out" defaultValue="-3" mapMissingTo="-4" dataType="double"><FieldColumnPair field="s" column="k"/><FieldColumnPair field="x" column="m"/><InlineTable>{table}</InlineTable></MapValues>',
        lambda r: -4.0 if MISSING in (r[0], r[2]) else {("Abc def", 0.3): 11.0, ("Abc def", 0.9): 12.0}.get((r[2], r[0]), -3.0), "")
    add("defined", "double", call("twice.plus", x, c("0.25")), lambda r: 2 * r[0] + 0.25, "x")
    add("chained", "double", ref("second"), lambda r: (r[0] + 1) ** 2, "x")
    add("global", "double", ref("first"), lambda r: r[0] + 1, "x")
    define = ('<TransformationDictionary><DefineFunction name="twice.plus" optype="continuous" dataType="double"><ParameterField name="a"/><ParameterField name="b" dataType="double"/>'
              + call("+", call("*", c("2"), ref("a")), ref("b")) + '</DefineFunction><DerivedField name="first" optype="continuous" dataType="double">' + call("+", x, c("1")) + '</DerivedField></TransformationDictionary>')
    local = f'<LocalTransformations><DerivedField name="second" optype="continuous" dataType="double">{call("*", ref("first"), ref("first"))}</DerivedField></LocalTransformations>'
    output = "".join(f'<OutputField name="{n}" feature="transformedValue" optype="{"categorical" if t == "string" else "continuous"}" dataType="{t}">{xml}</OutputField>' for n, t, xml, _, _ in columns)
    model = f'<RegressionModel functionName="regression">{schema(["x", "z", "s", "day"], "y")}<Output>{output}</Output>{local}<RegressionTable intercept="1"/></RegressionModel>'
    place = {"x": 0, "z": 1, "s": 2, "d": 3}
    answers = []
    for row in rows:
        answers.append([None if any(row[place[u]] is MISSING for u in uses) else f(row) for _, _, _, f, uses in columns])
    write("Expressions", pmml(fields, model, define), ["x", "z", "s", "day"], rows, [n for n, *_ in columns], answers)


def outliers_of(beyond, row):
    return beyond(row[0])


def schemas():
    """Treatments of missing and invalid values and outliers, by the definition of the mining schema."""
    interval = '<Interval closure="closedOpen" leftMargin="0" rightMargin="10"/>'
    marks = '<Value value="-99" property="missing"/>'
    fields = [field("x", inside=interval + marks), field("y"), field("c", "categorical", "string", values("uv") + '<Value value="?" property="missing"/>')]
    rows = [[v, c] for v in (-99.0, MISSING, -1.0, 0.0, 5.0, 9.5, 10.0) for c in ("u", "v", "q", "?", MISSING)]
    for name, attributes, treat in (
            ("AsIs", 'invalidValueTreatment="asIs"', lambda x, bad: x),
            ("AsMissing", 'invalidValueTreatment="asMissing" missingValueReplacement="{m}"', lambda x, bad: "m" if bad or x is MISSING else x),
            ("AsValue", 'invalidValueTreatment="asValue" invalidValueReplacement="{i}"', lambda x, bad: "i" if bad else x),
            ("Refused", '', lambda x, bad: "refused" if bad else x),
            ("RefusedMissing", 'invalidValueTreatment="asMissing" missingValueTreatment="returnInvalid"', lambda x, bad: "refused" if x is MISSING or bad else x)):
        xs = {"m": 2.5, "i": 7.5}
        cs = {"m": "u", "i": "v"}
        active = [f'<MiningField name="x" {attributes.format(**xs)}/>', f'<MiningField name="c" {attributes.format(**cs)}/>']
        output = '<Output><OutputField name="x2" feature="transformedValue" dataType="double"><FieldRef field="x"/></OutputField><OutputField name="c2" feature="transformedValue" optype="categorical" dataType="string"><FieldRef field="c"/></OutputField></Output>'
        body = f'<RegressionModel functionName="regression">{schema(active, "y")}{output}<RegressionTable intercept="1"><NumericPredictor name="x" coefficient="2"/><CategoricalPredictor name="c" value="u" coefficient="100"/></RegressionTable></RegressionModel>'
        answers = []
        for x, c in rows:
            x = MISSING if x == -99 else x
            c = MISSING if c == "?" else c
            x, c = treat(x, x is not MISSING and not 0 <= x < 10), treat(c, c is not MISSING and c not in "uv")
            if "refused" in (x, c):
                answers.append([None, None, None])
                continue
            x, c = xs.get(x, x), cs.get(c, c)
            answers.append([None if x is MISSING else 1 + 2 * x + (100 if c == "u" else 0), x, c])
        write("Schema" + name, pmml(fields, body), ["x", "c"], rows, ["y", "x2", "c2"], answers, "Schema")
    for treatment, f in (("asIs", lambda v: v), ("asMissingValues", lambda v: v if 2 <= v <= 8 else 4.0), ("asExtremeValues", lambda v: min(max(v, 2.0), 8.0))):
        active = [f'<MiningField name="x" outliers="{treatment}" lowValue="2" highValue="8" missingValueReplacement="4"/>']
        body = f'<RegressionModel functionName="regression">{schema(active, "y")}<RegressionTable intercept="1"><NumericPredictor name="x" coefficient="2"/></RegressionTable></RegressionModel>'
        xs = [[v] for v in (MISSING, 0.0, 2.0, 5.0, 8.0, 9.0)]
        write("Outliers" + treatment[0].upper() + treatment[1:], pmml(fields, body), ["x"], xs, ["y"], [[1 + 2 * (4.0 if v is MISSING else f(v))] for (v,) in xs], "Outliers")
    for name, attributes, f in (("Round", 'castInteger="round" rescaleFactor="3" rescaleConstant="0.5" min="-2" max="2"', lambda v: math.floor(min(max(v, -2), 2) * 3 + 0.5 + 0.5)),
                                ("Ceiling", 'castInteger="ceiling"', math.ceil), ("Floor", 'castInteger="floor"', math.floor)):
        targets = f'<Targets><Target field="y" {attributes}><TargetValue defaultValue="-5"/></Target></Targets>'
        xs = [[v / 3] for v in range(-10, 11)] + [[MISSING]]
        body = f'<RegressionModel functionName="regression">{schema(["x"], "y")}{targets}<RegressionTable intercept="0.1"><NumericPredictor name="x" coefficient="1"/></RegressionTable></RegressionModel>'
        write("Target" + name, pmml([field("x"), field("y")], body), ["x"], xs, ["y"], [[float(f(0.1 + v)) if v is not MISSING else -5.0] for (v,) in xs], "Target")


def rules():
    fields = [field("x"), field("c", "categorical", "string", values("uv")), field("t", "categorical", "string", values(["A", "B", "C"]))]
    rows = [[x, c] for x in (0.0, 2.0, 4.0, 6.0, 8.0, MISSING) for c in ("u", "v", MISSING)]

    def below(v):
        return f'<SimplePredicate field="x" operator="lessThan" value="{v}"/>'
    is_u = '<SimplePredicate field="c" operator="equal" value="u"/>'
    listed = [("r1", "B", 0.4, 0.7, [("x", 7)]), ("r2", "A", 0.9, 0.6, [("x", 3)]), ("r3", "A", 0.3, 0.8, [("c", "u")]), ("r4", "C", 0.35, 0.5, [("c", "u"), ("x", 5)])]
    rules_xml = (f'<SimpleRule id="r1" score="B" weight="0.4" confidence="0.7">{below(7)}</SimpleRule><SimpleRule id="r2" score="A" weight="0.9" confidence="0.6">{below(3)}</SimpleRule>'
                 f'<CompoundRule>{is_u}<SimpleRule id="r3" score="A" weight="0.3" confidence="0.8"><True/></SimpleRule><SimpleRule id="r4" score="C" weight="0.35" confidence="0.5">{below(5)}</SimpleRule></CompoundRule>')

    def fires(rule, x, c):
        return all((x is not MISSING and x < v) if f == "x" else c == v for f, v in rule[4])
    for criterion in ("firstHit", "weightedMax", "weightedSum"):
        output = '<Output><OutputField name="rule" feature="entityId" dataType="string"/><OutputField name="sure" feature="confidence" dataType="double"/></Output>'
        body = (f'<RuleSetModel functionName="classification">{schema(["x", "c"], "t")}{output}<RuleSet defaultScore="C" defaultConfidence="0.1"><RuleSelectionMethod criterion="{criterion}"/>{rules_xml}</RuleSet></RuleSetModel>')
        answers = []
        for x, c in rows:
            fired = [r for r in listed if fires(r, x, c)]
            if not fired:
                answers.append(["C", MISSING, 0.1])
            elif criterion == "firstHit":
                answers.append([fired[0][1], fired[0][0], fired[0][3]])
            elif criterion == "weightedMax":
                best = max(fired, key=lambda r: r[2])
                answers.append([best[1], best[0], best[3]])
            else:
                sums = {k: sum(r[2] for r in fired if r[1] == k) for k in "ABC"}
                best = max("ABC", key=lambda k: sums[k])
                answers.append([best, max((r for r in fired if r[1] == best), key=lambda r: r[2])[0], sums[best] / len(fired)])
        write("Rules" + criterion[0].upper() + criterion[1:], pmml(fields, body), ["x", "c"], rows, ["t", "rule", "sure"], answers, "Rules")


def scorecards():
    fields = [field("age"), field("job", "categorical", "string", values(["none", "some"])), field("income"), field("y")]
    rows = [[a, j, i] for a in (MISSING, 15.0, 25.0, 35.0) for j in ("none", "some") for i in (0.0, 40.0, 400.0)]

    def attribute(score, predicate, code=""):
        return f'<Attribute partialScore="{score}"{code}>{predicate}</Attribute>'

    def test(f, o, v=None):
        return f'<SimplePredicate field="{f}" operator="{o}"' + (f' value="{v}"' if v is not None else "") + "/>"
    for algorithm in ("pointsBelow", "pointsAbove"):
        body = (f'<Scorecard functionName="regression" initialScore="5" useReasonCodes="true" reasonCodeAlgorithm="{algorithm}">{schema(["age", "job", "income"], "y")}'
                '<Output>' + "".join(f'<OutputField name="reason{r}" feature="reasonCode" rank="{r}" dataType="string"/>' for r in (1, 2, 3)) + '</Output><Characteristics>'
                '<Characteristic name="age" reasonCode="AGE" baselineScore="18">' + attribute(-1, test("age", "isMissing")) + attribute(-3, test("age", "lessThan", 20)) + attribute(0, test("age", "lessThan", 30), ' reasonCode="AGE2"') + attribute(20, "<True/>") + '</Characteristic>'
                '<Characteristic name="job" reasonCode="JOB" baselineScore="10">' + attribute(-10, test("job", "equal", "none")) + attribute(9, test("job", "equal", "some")) + '</Characteristic>'
                '<Characteristic name="income" reasonCode="INC" baselineScore="6"><Attribute><ComplexPartialScore><Apply function="*"><Constant>0.1</Constant><FieldRef field="income"/></Apply></ComplexPartialScore>' + test("income", "lessThan", 100) + '</Attribute></Characteristic>'
                '</Characteristics></Scorecard>')
        answers = []
        for a, j, i in rows:
            parts = [(-1, "AGE") if a is MISSING else (-3, "AGE") if a < 20 else (0, "AGE2") if a < 30 else (20, "AGE"), (-10, "JOB") if j == "none" else (9, "JOB")]
            if i >= 100:
                answers.append([None] * 4)
                continue
            parts.append((0.1 * i, "INC"))
            sign = 1 if algorithm == "pointsBelow" else -1
            points = sorted(((sign * (b - p), code) for (p, code), b in zip(parts, (18, 10, 6))), key=lambda v: -v[0])
            answers.append([float(5 + sum(p for p, _ in parts))] + [code for _, code in points])
        write("Scorecard" + algorithm[0].upper() + algorithm[1:], pmml(fields, body), ["age", "job", "income"], rows, ["y", "reason1", "reason2", "reason3"], answers, "Scorecard")


def choices():
    """selectFirst, and a vote, median and maximum of class probabilities with segments of their own predicates."""
    fields = [field("x"), field("y"), field("t", "categorical", "string", values(["A", "B"]))]
    xs = [[float(v)] for v in range(-4, 9)] + [[MISSING]]

    def regression(slope):
        return f'<RegressionModel functionName="regression">{schema(["x"])}<RegressionTable intercept="1"><NumericPredictor name="x" coefficient="{slope}"/></RegressionTable></RegressionModel>'

    def below(v):
        return f'<SimplePredicate field="x" operator="lessThan" value="{v}"/>'
    output = '<Output><OutputField name="which" feature="entityId" dataType="string"/></Output>'
    body = f'<MiningModel functionName="regression">{schema(["x"], "y")}{output}{segmentation("selectFirst", [regression(2), regression(3)], [below(0), below(5)])}</MiningModel>'
    write("SelectFirst", pmml(fields[:2], body), ["x"], xs, ["y", "which"],
          [[None, None] if x is MISSING or x >= 5 else [1 + 2 * x, 1] if x < 0 else [1 + 3 * x, 2] for (x,) in xs], "Choices")

    def logistic_of(a, b):
        return (f'<RegressionModel functionName="classification" normalizationMethod="logit">{schema(["x"])}<RegressionTable intercept="{a}" targetCategory="A"><NumericPredictor name="x" coefficient="{b}"/></RegressionTable>'
                '<RegressionTable intercept="0" targetCategory="B"/></RegressionModel>')
    lines = [(0.1, 0.5), (-1.2, 0.3), (0.7, -0.4)]
    for method in ("max", "median"):
        body = f'<MiningModel functionName="classification">{schema(["x"], "t")}{segmentation(method, [logistic_of(a, b) for a, b in lines])}</MiningModel>'
        answers = []
        for (x,) in xs:
            if x is MISSING:
                answers.append([None] * 3)
                continue
            p = [LINKS["logit"](a + b * x) for a, b in lines]
            if method == "median":
                chances = [float(np.median(p)), float(np.median([1 - v for v in p]))]
            else:
                best = max(max(v, 1 - v) for v in p)
                chosen = [v for v in p if max(v, 1 - v) == best]
                chances = [sum(chosen) / len(chosen), 1 - sum(chosen) / len(chosen)]
            answers.append(["A" if chances[0] >= chances[1] else "B", *chances])
        write("Classes" + method.capitalize(), pmml([fields[0], fields[2]], body), ["x"], xs, ["t", "probability(A)", "probability(B)"], answers, "Choices")
    for treatment in ("continue", "skipSegment", "returnMissing"):
        only = f'<TreeModel functionName="regression">{schema(["x"])}<Node><True/><Node score="10">{below(3)}</Node></Node></TreeModel>'
        segments = segmentation("average", [regression(2), only]).replace('Method="average"', f'Method="average" missingPredictionTreatment="{treatment}"')
        body = f'<MiningModel functionName="regression">{schema(["x"], "y")}{segments}</MiningModel>'
        write("Missing" + treatment[0].upper() + treatment[1:], pmml(fields[:2], body), ["x"], xs, ["y"],
              [[None if x is MISSING else (1 + 2 * x + 10) / 2 if x < 3 else 1 + 2 * x if treatment == "skipSegment" else None] for (x,) in xs], "Choices")


def extras():
    """Smaller parts, each after its definition."""
    xs = [[float(v) / 2] for v in range(-6, 7)]
    t = field("t", "categorical", "string", '<Value value="A" displayValue="class A"/><Value value="B"/>')

    def column(name, feature, more="", data="double"):
        return f'<OutputField name="{name}" feature="{feature}" dataType="{data}"{more}/>'
    # Priors where a predictor is missing; display values; probabilities without a value.
    tables = '<RegressionTable intercept="0.2" targetCategory="A"><NumericPredictor name="x" coefficient="1.5"/></RegressionTable><RegressionTable intercept="0" targetCategory="B"/>'
    targets = '<Targets><Target field="t"><TargetValue value="A" priorProbability="0.3"/><TargetValue value="B" displayValue="class B" priorProbability="0.7"/></Target></Targets>'
    output = "<Output>" + column("shown", "predictedDisplayValue", data="string") + column("p", "probability") + column("pA", "probability", ' value="A"') + '<OutputField name="odds" feature="transformedValue" dataType="double"><Apply function="/"><FieldRef field="pA"/><Apply function="-"><Constant>1</Constant><FieldRef field="pA"/></Apply></Apply></OutputField></Output>'
    body = f'<RegressionModel functionName="classification" normalizationMethod="logit">{schema(["x"], "t")}{output}{targets}{tables}</RegressionModel>'
    answers = []
    for x in [x for (x,) in xs] + [MISSING]:
        p = 0.3 if x is MISSING else LINKS["logit"](0.2 + 1.5 * x)
        answers.append(["A" if p >= 0.5 else "B", "class A" if p >= 0.5 else "class B", max(p, 1 - p), p, p / (1 - p)])
    write("TargetPriors", pmml([field("x"), t], body), ["x"], xs + [[MISSING]], ["t", "shown", "p", "pA", "odds"], answers)
    # Residuals need the observed target.
    body = f'<RegressionModel functionName="regression">{schema(["x"], "y")}<Output>{column("r", "residual")}</Output><RegressionTable intercept="1"><NumericPredictor name="x" coefficient="2"/></RegressionTable></RegressionModel>'
    write("OutputResidual", pmml([field("x"), field("y")], body), ["x", "y"], [[x, 3.5] for (x,) in xs], ["y", "r"], [[1 + 2 * x, 3.5 - 1 - 2 * x] for (x,) in xs])
    # Ordinal texts have the order of their values; truth values and dates compare as such.
    fields = [field("size", "ordinal", "string", values(["S", "M", "L", "XL"])), field("ok", "categorical", "boolean"), field("day", "continuous", "date"), field("sec", "continuous", "dateTimeSecondsSince[1960]"), field("y")]
    tests = {"lessThan": lambda k: k < 2, "lessOrEqual": lambda k: k <= 2, "greaterThan": lambda k: k > 2, "greaterOrEqual": lambda k: k >= 2}
    segments, names = [], []
    conditions = [f'<SimplePredicate field="size" operator="{o}" value="L"/>' for o in tests]
    conditions += ['<SimplePredicate field="ok" operator="equal" value="true"/>', '<SimplePredicate field="day" operator="lessThan" value="2000-01-01"/>', '<SimplePredicate field="sec" operator="greaterThan" value="86400"/>']
    for i, condition in enumerate(conditions):
        segments.append(f'<TreeModel functionName="regression">{schema(["size", "ok", "day", "sec"])}<Node score="0"><True/><Node score="{2 ** i}">{condition}</Node><Node score="0"><True/></Node></Node></TreeModel>')
    body = f'<MiningModel functionName="regression">{schema(["size", "ok", "day", "sec"], "y")}{segmentation("sum", segments)}</MiningModel>'
    rows = [[s, ok, d, sec] for s in ("S", "M", "L", "XL") for ok, d, sec in (("true", "1999-12-31", "1960-01-02T00:00:00"), ("false", "2000-01-01", "1960-01-02T00:00:01"))]
    answers = [[float(sum(2 ** i for i, f in enumerate(tests.values()) if f("S M L XL".split().index(s))) + 16 * (ok == "true") + 32 * (d < "2000") + 64 * sec.endswith("1"))] for s, ok, d, sec in rows]
    write("TypesOrdered", pmml(fields, body), ["size", "ok", "day", "sec"], rows, ["y"], answers)
    # A penalty for each missing answer on the way.
    body = (f'<TreeModel functionName="classification" missingValueStrategy="defaultChild" missingValuePenalty="0.8">{schema(["x", "z"], "t")}<Output>{column("sure", "confidence")}</Output>'
            '<Node id="0" defaultChild="1"><True/><Node id="1" defaultChild="3"><SimplePredicate field="x" operator="lessThan" value="0"/><Node id="3" score="A"><SimplePredicate field="z" operator="lessThan" value="0"/><ScoreDistribution value="A" recordCount="9"/><ScoreDistribution value="B" recordCount="1"/></Node>'
            '<Node id="4" score="B"><SimplePredicate field="z" operator="greaterOrEqual" value="0"/><ScoreDistribution value="A" recordCount="2" confidence="0.25"/><ScoreDistribution value="B" recordCount="6" confidence="0.6"/></Node></Node>'
            '<Node id="2" score="B"><SimplePredicate field="x" operator="greaterOrEqual" value="0"/><ScoreDistribution value="A" recordCount="1"/><ScoreDistribution value="B" recordCount="3"/></Node></Node></TreeModel>')
    rows = [[x, z] for x in (-1.0, 1.0, MISSING) for z in (-1.0, 1.0, MISSING)]
    answers = []
    for x, z in rows:
        penalty = 0.8 ** ((x is MISSING) + ((x is MISSING or x < 0) and z is MISSING))
        answers.append(["B", 0.75] if x is not MISSING and x >= 0 else ["A", 0.9 * penalty] if z is MISSING or z < 0 else ["B", 0.6 * penalty])
    write("TreePenalty", pmml([field("x"), field("z"), t], body), ["x", "z"], rows, ["t", "sure"], answers)
    # Machines of coefficients with a category among the inputs, each against all others, the least or greatest winning.
    group = field("g", "categorical", "string", values("uv"))
    inputs = '<VectorDictionary><VectorFields><FieldRef field="x"/><CategoricalPredictor name="g" value="v" coefficient="2"/></VectorFields></VectorDictionary>'
    lines = {"A": (0.5, 1.0, 0.3), "B": (-0.2, -0.7, 0.4), "C": (0.1, 0.2, -0.9)}
    three = field("t", "categorical", "string", values(lines))
    rows = [[x, g] for (x,) in xs for g in "uv"]
    for wins, best in (("true", max), ("false", min)):
        machines_xml = "".join(f'<SupportVectorMachine targetCategory="{c}"><Coefficients absoluteValue="{b}"><Coefficient value="{u}"/><Coefficient value="{v}"/></Coefficients></SupportVectorMachine>' for c, (b, u, v) in lines.items())
        body = f'<SupportVectorMachineModel functionName="classification" svmRepresentation="Coefficients" classificationMethod="OneAgainstAll" maxWins="{wins}">{schema(["x", "g"], "t")}<LinearKernelType/>{inputs}{machines_xml}</SupportVectorMachineModel>'
        write("MachineCoefficients" + ("Greatest" if wins == "true" else "Least"), pmml([field("x"), group, three], body), ["x", "g"], rows, ["t"],
              [[best(lines, key=lambda c: lines[c][0] + lines[c][1] * x + lines[c][2] * (2 if g == "v" else 0))] for x, g in rows], "MachineCoefficients")
    # One machine for two classes, with a threshold; sparse vectors.
    body = (f'<SupportVectorMachineModel functionName="classification" threshold="0.4">{schema(["x", "z"], "t")}<RadialBasisKernelType gamma="0.5"/><VectorDictionary><VectorFields><FieldRef field="x"/><FieldRef field="z"/></VectorFields>'
            '<VectorInstance id="1"><REAL-SparseArray n="2"><Indices>2</Indices><REAL-Entries>1.5</REAL-Entries></REAL-SparseArray></VectorInstance><VectorInstance id="2"><REAL-SparseArray n="2" defaultValue="-1"><Indices>1</Indices><REAL-Entries>0.5</REAL-Entries></REAL-SparseArray></VectorInstance></VectorDictionary>'
            + '<SupportVectorMachine targetCategory="A" alternateTargetCategory="B"><SupportVectors><SupportVector vectorId="1"/><SupportVector vectorId="2"/></SupportVectors><Coefficients absoluteValue="0.1"><Coefficient value="1"/><Coefficient value="-0.8"/></Coefficients></SupportVectorMachine></SupportVectorMachineModel>')
    rows = [[x, z / 2] for (x,) in xs for z in range(-3, 4)]
    answers = [["A" if 0.1 + math.exp(-0.5 * (x ** 2 + (z - 1.5) ** 2)) - 0.8 * math.exp(-0.5 * ((x - 0.5) ** 2 + (z + 1) ** 2)) < 0.4 else "B"] for x, z in rows]
    write("MachineTwo", pmml([field("x"), field("z"), t], body), ["x", "z"], rows, ["t"], answers)
    # Naive Bayes with other distributions, and counts of a discretised input.
    body = (f'<NaiveBayesModel functionName="classification" threshold="0.0001">{schema(["n", "u", "x"], "t")}<BayesInputs><BayesInput fieldName="n"><TargetValueStats><TargetValueStat value="A"><PoissonDistribution mean="2.5"/></TargetValueStat><TargetValueStat value="B"><PoissonDistribution mean="4"/></TargetValueStat></TargetValueStats></BayesInput>'
            '<BayesInput fieldName="u"><TargetValueStats><TargetValueStat value="A"><UniformDistribution lower="0" upper="2"/></TargetValueStat><TargetValueStat value="B"><UniformDistribution lower="1" upper="5"/></TargetValueStat></TargetValueStats></BayesInput>'
            '<BayesInput fieldName="x"><DerivedField name="bin" optype="categorical" dataType="string"><Discretize field="x"><DiscretizeBin binValue="low"><Interval closure="openClosed" rightMargin="0"/></DiscretizeBin><DiscretizeBin binValue="high"><Interval closure="openOpen" leftMargin="0"/></DiscretizeBin></Discretize></DerivedField>'
            '<PairCounts value="low"><TargetValueCounts><TargetValueCount value="A" count="3"/><TargetValueCount value="B" count="8"/></TargetValueCounts></PairCounts><PairCounts value="high"><TargetValueCounts><TargetValueCount value="A" count="7"/><TargetValueCount value="B" count="2"/></TargetValueCounts></PairCounts></BayesInput></BayesInputs>'
            '<BayesOutput fieldName="t"><TargetValueCounts><TargetValueCount value="A" count="10"/><TargetValueCount value="B" count="10"/></TargetValueCounts></BayesOutput></NaiveBayesModel>')
    rows = [[n, u, x] for n in (0, 3, 7) for u in (0.5, 1.5, 4.5, 9.0) for x in (-1.0, 1.0, MISSING)]
    answers = []
    for n, u, x in rows:
        like = [stats.poisson.pmf(n, 2.5) * max(0.5 if 0 <= u <= 2 else 0, 1e-4) * (1 if x is MISSING else 0.3 if x <= 0 else 0.7),
                stats.poisson.pmf(n, 4) * max(0.25 if 1 <= u <= 5 else 0, 1e-4) * (1 if x is MISSING else 0.8 if x <= 0 else 0.2)]
        p = [float(v / sum(like)) for v in like]
        answers.append(["A" if p[0] >= p[1] else "B", *p])
    write("BayesDistributions", pmml([field("n"), field("u"), field("x"), t], body), ["n", "u", "x"], rows, ["t"] + probabilities("AB"), answers)
    # Neighbours among texts.
    train = [("u", "p", 1.0), ("u", "q", 2.0), ("v", "p", 4.0), ("v", "q", 8.0)]
    table = "".join(f"<row><a>{a}</a><b>{b}</b><v>{v}</v></row>" for a, b, v in train)
    body = (f'<NearestNeighborModel functionName="regression" numberOfNeighbors="1" instanceIdVariable="y">{schema(["g", "h"], "y")}<Output>{column("who", "entityId", data="string")}</Output><TrainingInstances><InstanceFields><InstanceField field="g" column="a"/><InstanceField field="h" column="b"/><InstanceField field="y" column="v"/></InstanceFields><InlineTable>{table}</InlineTable></TrainingInstances>'
            '<ComparisonMeasure kind="similarity" compareFunction="equal"><cityBlock/></ComparisonMeasure><KNNInputs><KNNInput field="g" fieldWeight="3"/><KNNInput field="h"/></KNNInputs></NearestNeighborModel>')
    write("NeighboursTexts", pmml([group, field("h", "categorical", "string", values("pq")), field("y")], body), ["g", "h"], [r[:2] for r in train], ["y", "who"], [[v, v] for _, _, v in train])
    # A network that norms its layer by the sum.
    body = (f'<NeuralNetwork functionName="classification" activationFunction="logistic" normalizationMethod="simplemax">{schema(["x"], "t")}<NeuralInputs><NeuralInput id="i"><DerivedField optype="continuous" dataType="double"><FieldRef field="x"/></DerivedField></NeuralInput></NeuralInputs>'
            '<NeuralLayer><Neuron id="a" bias="0.1"><Con from="i" weight="0.9"/></Neuron><Neuron id="b" bias="-0.2"><Con from="i" weight="-0.5"/></Neuron></NeuralLayer><NeuralOutputs>'
            + "".join(f'<NeuralOutput outputNeuron="{n}"><DerivedField optype="categorical" dataType="string"><NormDiscrete field="t" value="{c}"/></DerivedField></NeuralOutput>' for n, c in (("b", "A"), ("a", "B"))) + '</NeuralOutputs></NeuralNetwork>')
    answers = []
    for (x,) in xs:
        a, b = LINKS["logit"](0.1 + 0.9 * x), LINKS["logit"](-0.2 - 0.5 * x)
        answers.append(["A" if b >= a else "B", b / (a + b), a / (a + b)])
    write("NetworkSimplemax", pmml([field("x"), t], body), ["x"], xs, ["t"] + probabilities("AB"), answers)
    # Clusters by vote.
    centres = [[0.0, 2.0], [0.5, 2.5], [-1.0, 1.0]]
    models = [f'<ClusteringModel functionName="clustering" modelClass="centerBased">{schema(["x"])}<ComparisonMeasure kind="distance"><squaredEuclidean/></ComparisonMeasure><ClusteringField field="x"/>' + "".join(f'<Cluster name="c{k}"><Array type="real">{v}</Array></Cluster>' for k, v in enumerate(c)) + "</ClusteringModel>" for c in centres]
    body = f'<MiningModel functionName="clustering">{schema(["x"])}{segmentation("majorityVote", models)}</MiningModel>'
    rows = [[float(x) / 4 + 0.01] for x in range(-8, 12)]
    write("ClustersVote", pmml([field("x")], body), ["x"], rows, ["cluster"], [["c1" if sum(abs(x - c[1]) < abs(x - c[0]) for c in centres) > 1 else "c0"] for (x,) in rows])


def texts():
    """Words in texts, and values of rows before, by their definitions; more rows than a block of a program has."""
    rows = [["The cat, the dog; the END.", 1.0], ["the  theme of the cat", 2.0], [MISSING, 3.0], ["dog", MISSING], ["!", 5.0]] * 206
    weights = {"termFrequency": lambda c, most: c, "binary": lambda c, most: min(c, 1), "logarithmic": lambda c, most: math.log10(1 + c),
               "augmentedNormalizedTermFrequency": lambda c, most: 0.5 * (min(c, 1) + c / most) if c else 0}

    def words(text, lower=True):
        return [w.strip(",;.!") for w in (text.lower() if lower else text).split() if w.strip(",;.!")]
    output, columns = "", []
    for term in ("the", "the cat"):
        for sensitive in ("false", "true"):
            for weight, f in weights.items():
                name = f"{weight}{len(columns)}"
                output += (f'<OutputField name="{name}" feature="transformedValue" dataType="double"><TextIndex textField="s" localTermWeights="{weight}" isCaseSensitive="{sensitive}">'
                           f'<Constant>{term}</Constant></TextIndex></OutputField>')

                def value(rows, i, f=f, term=term.split(), lower=sensitive == "false"):
                    if rows[i][0] is MISSING:
                        return None
                    w = words(rows[i][0], lower)
                    return float(f(sum(w[k:k + len(term)] == term for k in range(len(w))), max((w.count(v) for v in w), default=1)))
                columns.append((name, value))
    for n in (1, 3):
        output += f'<OutputField name="lag{n}" feature="transformedValue" dataType="double"><Lag field="x" n="{n}"/></OutputField>'
        columns.append((f"lag{n}", lambda rows, i, n=n: rows[i - n][1] if i >= n else None))
    body = f'<RegressionModel functionName="regression">{schema(["s", "x"], "y")}<Output>{output}</Output><RegressionTable intercept="1"/></RegressionModel>'
    write("TextsAndLags", pmml([field("s", "categorical", "string"), field("x"), field("y")], body), ["s", "x"], rows, [n for n, _ in columns], [[f(rows, i) for _, f in columns] for i in range(len(rows))])


if __name__ == "__main__":
    for make in (forests, boosted_trees, logistic, networks, machines, bayes, clusters, neighbours, regressions, general_regressions, activations, trees,
                 transformations, schemas, rules, scorecards, choices, extras, texts):
        make()
    put_table("cases.csv", ["case", "data"], sorted(CASES))
    shutil.rmtree(FOLDER, ignore_errors=True)
    for path, text in FILES.items():
        os.makedirs(os.path.dirname(os.path.join(FOLDER, path)), exist_ok=True)
        with open(os.path.join(FOLDER, path), "w") as file:
            file.write(text)
